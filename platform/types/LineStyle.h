#pragma once

#include "platform/types/StyleProperty.h"

#include <QColor>

#include <cstdint>

namespace Vek::Chart::Types {

/// The style record of a line. A new record is a solid black line of one pixel.
struct LineStyle {
  /// The number of a `Library::Pattern::LinePattern`: 0 draws nothing, 1 is solid.
  StyleProperty<std::uint32_t> pattern{1};
  /// The colour of the line, or of a pattern's set bits.
  StyleProperty<QColor> color{QColor(Qt::black)};
  /// The colour in the gaps of a pattern.
  StyleProperty<QColor> secondColor{QColor(Qt::transparent)};
  /// In pixels; dashes scale with it.
  StyleProperty<float> width{1.0f};
  /// Whether edges are antialiased.
  StyleProperty<bool> smooth{false};
};

} // namespace Vek::Chart::Types
