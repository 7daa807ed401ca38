#include "scene/private/Integrator.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene::Private {

Streamline Integrator::Trace(const Point& p_seed, const StreamlineTracer::TerminationCriterion& p_terminates) {
  Streamline line;
  Point direction;
  if (!Direction(p_seed, direction))
    return line;
  line.push_back(p_seed);
  double step = _options.largestStep;
  double arc = 0;
  while (arc < _options.length && !IsCancelled(_options)) {
    Point next;
    step = std::min({step, _options.largestStep, std::max(_options.length - arc, _options.smallestStep)});
    if (!Advance(line.back(), direction, step, next))
      break;
    arc += _taken;
    if (!p_terminates.empty() && p_terminates(next, arc))
      break;
    line.push_back(next);
  }
  return line;
}

bool Integrator::Direction(const Point& p_position, Point& p_direction) const {
  Point vector;
  if (!_field(p_position, vector))
    return false;
  const double length = Length(vector);
  if (!(length > _options.stagnation) || !std::isfinite(length))
    return false;
  p_direction = vector * (_sign / length);
  return true;
}

/// One accepted step. `p_direction` is the direction at its start, then that at its end; `p_step` the step to try,
/// then the one to try next. False where no step is possible, however small.
bool Integrator::Advance(const Point& p_position, Point& p_direction, double& p_step, Point& p_next) {
  for (;;) {
    double error = 0;
    Point k4;
    const double taken = p_step;
    const bool inside = Try(p_position, p_direction, taken, p_next, k4, error);
    const bool smallest = taken <= _options.smallestStep;
    if (inside && (error <= _options.tolerance || smallest)) {
      // Far below the tolerance, the step doubles; 0.9 times the root is above 2 then.
      const double growth = error * 12 < _options.tolerance ? 2.0 : 0.9 * std::cbrt(_options.tolerance / error);
      p_step = std::max(_options.smallestStep, taken * std::clamp(growth, 0.2, 2.0));
      p_direction = k4;
      _taken = taken;
      return true;
    }
    if (smallest)
      return false;
    const double shrink = inside ? 0.9 * std::cbrt(_options.tolerance / error) : 0.5;
    p_step = std::max(_options.smallestStep, taken * std::clamp(shrink, 0.1, 0.5));
  }
}

bool Integrator::Try(const Point& p_position, const Point& p_k1, double p_step, Point& p_next, Point& p_k4,
                     double& p_error) const {
  Point k2, k3;
  if (!Direction(p_position + p_k1 * (p_step / 2), k2) || !Direction(p_position + k2 * (p_step * 3 / 4), k3))
    return false;
  p_next = p_position + (p_k1 * 2.0 + k2 * 3.0 + k3 * 4.0) * (p_step / 9);
  // A flow that turns back within the step has a stagnation point there.
  if (!Direction(p_next, p_k4) || Dot(p_k1, p_k4) < -0.5)
    return false;
  p_error = Length(p_k1 * (-5.0 / 72) + k2 * (1.0 / 12) + k3 * (1.0 / 9) + p_k4 * (-1.0 / 8)) * p_step;
  return true;
}

} // namespace Vek::Chart::Scene::Private
