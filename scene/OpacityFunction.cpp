#include "scene/OpacityFunction.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

OpacityFunction::OpacityFunction(double p_opacity)
    : OpacityFunction(std::vector<Point>{{0, p_opacity}}) {}

OpacityFunction::OpacityFunction(std::vector<Point> p_points)
    : _points(std::move(p_points)) {
  if (_points.empty())
    throw std::invalid_argument("OpacityFunction: expected at least one point, got none");
  for (std::size_t i = 0; i < _points.size(); ++i) {
    const Point& point = _points[i];
    if (!std::isfinite(point.value) || !(point.opacity >= 0 && point.opacity <= 1))
      throw std::invalid_argument("OpacityFunction: expected finite values with opacities of 0 to 1, got " +
                                  std::to_string(point.value) + " with " + std::to_string(point.opacity));
    if (i > 0 && point.value < _points[i - 1].value)
      throw std::invalid_argument("OpacityFunction: expected ascending values, got " + std::to_string(point.value) +
                                  " after " + std::to_string(_points[i - 1].value));
  }
}

OpacityFunction OpacityFunction::Ramp(double p_low, double p_high, double p_opacity) {
  return OpacityFunction(std::vector<Point>{{p_low, 0}, {p_high, p_opacity}});
}

double OpacityFunction::operator()(double p_value) const {
  if (std::isnan(p_value))
    return 0;
  const auto above = std::upper_bound(_points.begin(), _points.end(), p_value,
                                      [](double p_v, const Point& p_point) { return p_v < p_point.value; });
  if (above == _points.begin())
    return above->opacity;
  const Point& low = *(above - 1);
  if (above == _points.end())
    return low.opacity;
  const double share = (p_value - low.value) / (above->value - low.value);
  return low.opacity + share * (above->opacity - low.opacity);
}

} // namespace Vek::Chart::Scene
