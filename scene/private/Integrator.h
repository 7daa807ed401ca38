#pragma once

#include "scene/StreamlineTracer.h"

#include "platform/types/Vector.h"

namespace Vek::Chart::Scene::Private {

inline bool IsCancelled(const StreamlineTracer::Options& p_options) {
  return !p_options.isCancelled.empty() && p_options.isCancelled();
}

/// Integrates one direction of a streamline by the pair of methods of Bogacki and Shampine (1989), of orders 3 and 2.
/// Refers to the field and the options.
class Integrator {
public:
  using Point = Types::Vector3_Base<double>;

  /// Downstream for the sign 1, upstream for −1.
  Integrator(const StreamlineTracer::Field& p_field, const StreamlineTracer::Options& p_options, double p_sign)
      : _field(p_field)
      , _options(p_options)
      , _sign(p_sign) {}

  /// From the seed on until the criterion, the length, a stagnation point or the end of the field; empty where the seed
  /// has no direction.
  Streamline Trace(const Point& p_seed, const StreamlineTracer::TerminationCriterion& p_terminates);

private:
  bool Direction(const Point& p_position, Point& p_direction) const;
  bool Advance(const Point& p_position, Point& p_direction, double& p_step, Point& p_next);
  bool Try(const Point& p_position, const Point& p_k1, double p_step, Point& p_next, Point& p_k4,
           double& p_error) const;

  const StreamlineTracer::Field& _field;
  const StreamlineTracer::Options& _options;
  double _sign;
  double _taken = 0; ///< the last step
};

} // namespace Vek::Chart::Scene::Private
