#include "scene/StreamlineTracer.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene {

namespace {

using Point = Types::Vector3_Base<double>;

/// One direction of a streamline, from the seed on.
class Tracer {
public:
  Tracer(const FlowFunction& p_flow, const TraceOptions& p_options, double p_sign)
      : _flow(p_flow)
      , _options(p_options)
      , _sign(p_sign) {}

  Streamline Trace(const Point& p_seed, const GoOnFunction& p_goOn) {
    Streamline line;
    Point direction;
    if (!Direction(p_seed, direction))
      return line;
    line.push_back(p_seed);
    double step = _options.largestStep;
    double arc = 0;
    while (arc < _options.length) {
      Point next;
      step = std::min({step, _options.largestStep, std::max(_options.length - arc, _options.smallestStep)});
      if (!Advance(line.back(), direction, step, next))
        break;
      arc += _taken;
      if (!p_goOn.empty() && !p_goOn(next, arc))
        break;
      line.push_back(next);
    }
    return line;
  }

private:
  bool Direction(const Point& p_place, Point& p_direction) const {
    Point vector;
    if (!_flow(p_place, vector))
      return false;
    const double length = Length(vector);
    if (!(length > _options.stagnation) || !std::isfinite(length))
      return false;
    p_direction = vector * (_sign / length);
    return true;
  }

  /// One accepted step. `p_direction` is the direction at its start, then that at its end; `p_step` the step to try,
  /// then the one to try next. False where no step is possible, however small.
  bool Advance(const Point& p_place, Point& p_direction, double& p_step, Point& p_next) {
    for (;;) {
      double error = 0;
      Point k4;
      const double taken = p_step;
      const bool inside = Try(p_place, p_direction, taken, p_next, k4, error);
      const bool smallest = taken <= _options.smallestStep;
      if (inside && (error <= _options.tolerance || smallest)) {
        const double growth = error > 0 ? 0.9 * std::cbrt(_options.tolerance / error) : 2.0;
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

  bool Try(const Point& p_place, const Point& p_k1, double p_step, Point& p_next, Point& p_k4, double& p_error) const {
    Point k2, k3;
    if (!Direction(p_place + p_k1 * (p_step / 2), k2) || !Direction(p_place + k2 * (p_step * 3 / 4), k3))
      return false;
    p_next = p_place + (p_k1 * 2.0 + k2 * 3.0 + k3 * 4.0) * (p_step / 9);
    // A flow that turns around within the step has a stagnation point there.
    if (!Direction(p_next, p_k4) || Dot(p_k1, p_k4) < -0.5)
      return false;
    p_error = Length(p_k1 * (-5.0 / 72) + k2 * (1.0 / 12) + k3 * (1.0 / 9) + p_k4 * (-1.0 / 8)) * p_step;
    return true;
  }

  const FlowFunction& _flow;
  const TraceOptions& _options;
  double _sign;
  double _taken = 0;
};

/// Finds out whether points lie near those that were added.
class Neighbourhood {
public:
  explicit Neighbourhood(double p_distance)
      : _cell(p_distance) {}

  void Add(const Point& p_point) { _points[CellOf(p_point)].push_back(p_point); }

  /// `p_distance` is at most that of the constructor.
  bool HasNear(const Point& p_point, double p_distance) const {
    const auto [cx, cy, cz] = CellOf(p_point);
    for (long x = cx - 1; x <= cx + 1; ++x)
      for (long y = cy - 1; y <= cy + 1; ++y)
        for (long z = cz - 1; z <= cz + 1; ++z) {
          const auto found = _points.find({x, y, z});
          if (found != _points.end() &&
              std::any_of(found->second.begin(), found->second.end(),
                          [&](const Point& p_other) { return Length(p_other - p_point) < p_distance; }))
            return true;
        }
    return false;
  }

private:
  using Cell = std::tuple<long, long, long>;
  Cell CellOf(const Point& p_point) const {
    const auto index = [this](double p_place) { return std::lround(std::clamp(p_place / _cell, -1e9, 1e9)); };
    return {index(p_point.x), index(p_point.y), index(p_point.z)};
  }

  double _cell;
  std::map<Cell, std::vector<Point>> _points;
};

/// Keeps a line from coming near to what it passed itself: its points are added once they lie far enough behind.
class OwnTrail {
public:
  explicit OwnTrail(double p_distance)
      : _distance(p_distance)
      , _passed(p_distance) {}

  bool MayPass(const Point& p_point, double p_arc) {
    for (; _next < _trail.size() && p_arc - _trail[_next].arc > 2 * _distance; ++_next)
      _passed.Add(_trail[_next].place);
    if (_passed.HasNear(p_point, _distance))
      return false;
    _trail.push_back({p_point, p_arc});
    return true;
  }

private:
  struct Mark {
    Point place;
    double arc;
  };
  double _distance;
  std::size_t _next = 0;
  std::vector<Mark> _trail;
  Neighbourhood _passed;
};

Streamline Joined(Streamline p_upstream, const Streamline& p_downstream) {
  std::reverse(p_upstream.begin(), p_upstream.end());
  if (!p_upstream.empty() && !p_downstream.empty())
    p_upstream.pop_back(); // the seed, which both have
  p_upstream.insert(p_upstream.end(), p_downstream.begin(), p_downstream.end());
  return p_upstream;
}

} // namespace

Streamline TraceDownstream(const FlowFunction& p_flow, const Point& p_seed, const TraceOptions& p_options,
                           const GoOnFunction& p_goOn) {
  return Tracer(p_flow, p_options, 1).Trace(p_seed, p_goOn);
}

Streamline TraceBoth(const FlowFunction& p_flow, const Point& p_seed, const TraceOptions& p_options,
                     const GoOnFunction& p_goOn) {
  return Joined(Tracer(p_flow, p_options, -1).Trace(p_seed, p_goOn),
                Tracer(p_flow, p_options, 1).Trace(p_seed, p_goOn));
}

double ArcLength(const Streamline& p_line) {
  double length = 0;
  for (std::size_t i = 1; i < p_line.size(); ++i)
    length += Length(p_line[i] - p_line[i - 1]);
  return length;
}

void Shuffle(std::vector<Point>& p_seeds, std::mt19937& p_random) {
  // Drawn by hand, since the standard's shuffle differs from library to library.
  for (std::size_t i = p_seeds.size(); i > 1; --i)
    std::swap(p_seeds[i - 1], p_seeds[p_random() % i]);
}

std::vector<Streamline> SpacedStreamlines(const FlowFunction& p_flow, const std::vector<Point>& p_seeds,
                                          const Spacing& p_spacing, const TraceOptions& p_options,
                                          std::vector<Streamline> p_before) {
  Neighbourhood others(p_spacing.seeds);
  for (const Streamline& line : p_before)
    for (const Point& point : line)
      others.Add(point);
  const double nearest = p_spacing.lines;
  for (const Point& seed : p_seeds) {
    if (others.HasNear(seed, p_spacing.seeds))
      continue;
    OwnTrail upTrail(nearest);
    const Streamline upstream = Tracer(p_flow, p_options, -1).Trace(seed, [&](const Point& p_place, double p_arc) {
      return !others.HasNear(p_place, nearest) && upTrail.MayPass(p_place, p_arc);
    });
    // The way downstream must not run into the one upstream either, but where both begin they are near each other.
    const double beginning = 2 * p_spacing.seeds;
    Neighbourhood passed(p_spacing.seeds);
    Neighbourhood passedFar(p_spacing.seeds);
    double arc = 0;
    for (std::size_t i = 1; i < upstream.size(); ++i) {
      arc += Length(upstream[i] - upstream[i - 1]);
      (arc < beginning ? passed : passedFar).Add(upstream[i]);
    }
    OwnTrail downTrail(nearest);
    const Streamline downstream = Tracer(p_flow, p_options, 1).Trace(seed, [&](const Point& p_place, double p_arc) {
      return !others.HasNear(p_place, nearest) && !passedFar.HasNear(p_place, nearest) &&
             (p_arc < beginning || !passed.HasNear(p_place, nearest)) && downTrail.MayPass(p_place, p_arc);
    });
    Streamline line = Joined(upstream, downstream);
    if (line.size() < 2 || ArcLength(line) < p_spacing.shortest)
      continue;
    for (const Point& point : line)
      others.Add(point);
    p_before.push_back(std::move(line));
  }
  return p_before;
}

} // namespace Vek::Chart::Scene
