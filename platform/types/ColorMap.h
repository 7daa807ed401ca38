#pragma once

#include "platform/types/StyleProperty.h"

#include <QColor>

#include <vector>

namespace Vek::Chart::Types {

/// The style record of a mapping from values to colours, from which a `Library::ColorMap` is made. A new record has no
/// colours.
struct ColorMap {
  /// The colours from the lowest value to the highest.
  StyleProperty<std::vector<QColor>> colors;
  /// The widths of the colours relative to each other: none, or one for each colour.
  StyleProperty<std::vector<double>> weights;
  /// Whether neighbouring colours are blended.
  StyleProperty<bool> gradient{false};
};

} // namespace Vek::Chart::Types
