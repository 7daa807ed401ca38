#pragma once

#include <limits>

namespace Vek::Chart::Library::Private {

/// Truncates toward zero. Values beyond the range of int are clamped to it; NaN gives 0.
inline int Truncate(double p_value) {
  if (!(p_value == p_value))
    return 0;
  if (p_value >= static_cast<double>(std::numeric_limits<int>::max()))
    return std::numeric_limits<int>::max();
  if (p_value <= static_cast<double>(std::numeric_limits<int>::min()))
    return std::numeric_limits<int>::min();
  return static_cast<int>(p_value);
}

} // namespace Vek::Chart::Library::Private
