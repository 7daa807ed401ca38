#pragma once

#include "platform/types/StyleProperty.h"

#include <QColor>

#include <cstdint>

namespace Vek::Chart::Types {

/// How a text is drawn. A new record is black text of 12 pixels on nothing.
struct TextStyle {
  /// The colour of the letters.
  StyleProperty<QColor> color{QColor(Qt::black)};
  /// The colour behind or around the letters.
  StyleProperty<QColor> secondColor{QColor(Qt::transparent)};
  /// Handed to the text object as it is.
  StyleProperty<bool> flag{false};
  /// In pixels; text objects take 2 to 96.
  StyleProperty<std::uint32_t> size{12};
};

} // namespace Vek::Chart::Types
