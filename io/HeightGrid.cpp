#include "io/HeightGrid.h"

#include <cmath>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Io {

HeightGrid HeightGrid::Closed(double p_period) const {
  if (!(std::isfinite(p_period) && p_period > 0))
    throw std::invalid_argument("Closed: expected a period above 0, got " + std::to_string(p_period));
  constexpr double Rounding = 0.01; // of a step
  const std::size_t columns = x.size();
  HeightGrid closed = *this;
  if (columns < 2 || heights.size() != columns * y.size())
    return closed;
  const double step = (x.back() - x.front()) / static_cast<double>(columns - 1);
  const double next = x.back() + step, again = x.front() + std::copysign(p_period, step);
  if (!(std::abs(next - again) < Rounding * std::abs(step)))
    return closed;
  closed.x.push_back(again);
  closed.heights.clear();
  for (std::size_t row = 0; row < y.size(); ++row) {
    const auto first = heights.begin() + static_cast<std::ptrdiff_t>(row * columns);
    closed.heights.insert(closed.heights.end(), first, first + static_cast<std::ptrdiff_t>(columns));
    closed.heights.push_back(*first);
  }
  return closed;
}

} // namespace Vek::Chart::Io
