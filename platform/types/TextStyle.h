#pragma once

#include "platform/types/StyleProperty.h"

#include <QColor>

#include <cstdint>

namespace Vek::Chart::Types {

/// The style record of a string. A new record is black, 12 pixels high, without a background.
struct TextStyle {
  /// The colour of the letters.
  StyleProperty<QColor> color{QColor(Qt::black)};
  /// The colour behind or around the letters.
  StyleProperty<QColor> secondColor{QColor(Qt::transparent)};
  /// Passed to the text renderer unchanged.
  StyleProperty<bool> flag{false};
  /// In pixels; text renderers clamp it to 2 to 96.
  StyleProperty<std::uint32_t> size{12};
};

} // namespace Vek::Chart::Types
