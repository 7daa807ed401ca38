#pragma once

#include "platform/types/StyleProperty.h"

#include <QColor>

#include <cstdint>

namespace Vek::Chart::Types {

/// The style record of a data point. A new record is a black symbol of the first shape, without an outline.
struct SymbolStyle {
  /// 0 draws nothing.
  StyleProperty<std::uint32_t> shape{1};
  /// In pixels; 0 draws nothing.
  StyleProperty<std::uint32_t> size{8};
  /// The colour of the area.
  StyleProperty<QColor> color{QColor(Qt::black)};
  /// The colour of the outline.
  StyleProperty<QColor> secondColor{QColor(Qt::transparent)};
};

} // namespace Vek::Chart::Types
