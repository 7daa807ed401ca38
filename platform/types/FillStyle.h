#pragma once

#include "platform/types/StyleProperty.h"

#include <QColor>

#include <cstdint>

namespace Vek::Chart::Types {

/// The style record of an area. A new record is a solid black fill.
struct FillStyle {
  /// The number of a `Library::Pattern::FillPattern`: 0 draws nothing, 1 is solid.
  StyleProperty<std::uint32_t> pattern{1};
  /// The colour of the area, or of a pattern's set bits.
  StyleProperty<QColor> color{QColor(Qt::black)};
  /// The colour in the gaps of a pattern.
  StyleProperty<QColor> secondColor{QColor(Qt::transparent)};
};

} // namespace Vek::Chart::Types
