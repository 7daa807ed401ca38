#pragma once

#include "platform/types/Vector.h"

#include <boost/functional/hash.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace Vek::Chart::Scene {

/// Points in cells of a lattice, to find those near a position.
class Neighbourhood {
public:
  using Point = Types::Vector3_Base<double>;

  explicit Neighbourhood(double p_cell)
      : _cell(p_cell) {}

  void Add(const Point& p_point) { _points[CellOf(p_point)].push_back(p_point); }
  void Add(const std::vector<Point>& p_line) {
    for (const Point& point : p_line)
      Add(point);
  }

  /// Whether a point is nearer than `p_distance`, which is at most a cell.
  bool HasNear(const Point& p_point, double p_distance) const {
    const Point reach(p_distance, p_distance, p_distance);
    const Cell low = CellOf(p_point - reach), high = CellOf(p_point + reach);
    for (std::int64_t x = low[0]; x <= high[0]; ++x)
      for (std::int64_t y = low[1]; y <= high[1]; ++y)
        for (std::int64_t z = low[2]; z <= high[2]; ++z) {
          const auto found = _points.find({x, y, z});
          if (found != _points.end() &&
              std::any_of(found->second.begin(), found->second.end(),
                          [&](const Point& p_other) { return Length(p_other - p_point) < p_distance; }))
            return true;
        }
    return false;
  }

private:
  using Cell = std::array<std::int64_t, 3>;
  Cell CellOf(const Point& p_point) const {
    const auto index = [this](double p_position) {
      const double cells = p_position / _cell; // may be NaN
      return static_cast<std::int64_t>(std::floor(cells > -1e15 ? std::min(cells, 1e15) : -1e15));
    };
    return {index(p_point.x), index(p_point.y), index(p_point.z)};
  }

  double _cell;
  std::unordered_map<Cell, std::vector<Point>, boost::hash<Cell>> _points;
};

/// Keeps a line from coming near to its own earlier part. Points count once the line is two distances farther.
class OwnTrail {
public:
  using Point = Neighbourhood::Point;

  explicit OwnTrail(double p_distance)
      : _distance(p_distance)
      , _passed(p_distance) {}

  bool IsNear(const Point& p_point, double p_arc) {
    for (; _next < _trail.size() && p_arc - _trail[_next].arc > 2 * _distance; ++_next)
      _passed.Add(_trail[_next].position);
    if (_passed.HasNear(p_point, _distance))
      return true;
    _trail.push_back({p_point, p_arc});
    return false;
  }

private:
  struct Mark {
    Point position;
    double arc;
  };
  double _distance;
  std::size_t _next = 0;
  std::vector<Mark> _trail;
  Neighbourhood _passed;
};

} // namespace Vek::Chart::Scene
