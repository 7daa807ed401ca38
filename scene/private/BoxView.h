#pragma once

#include "scene/Camera.h"

#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

/// The box as a camera sees it. Faces and edges are named by axes and sides: a side is 0 at the lower, 1 at the upper
/// end of an axis; bit 0 of an edge is its side along the next axis, bit 1 that along the one after the next.
class BoxView {
public:
  using Point = Types::Vector3_Base<double>;
  using Position = Types::Vector2_Base<double>; ///< in points from the viewport's lower left corner

  BoxView(const Types::BoundingBox_Base<double>& p_box, const Camera& p_camera, const Types::Viewport<0>& p_viewport,
          double p_pointSize)
      : _box(p_box)
      , _camera(p_camera)
      , _viewport(p_viewport)
      , _pointSize(p_pointSize)
      , _back(p_camera.Directions().back) {
    const Point half = p_box.Extent() * 0.5;
    const Point toEye = p_camera.target - (p_box.Min() + half) + _back * p_camera.distance;
    const bool isParallel = p_camera.projection == Camera::Projection::Parallel;
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double outside = Component(isParallel ? _back : toEye, axis);
      const double reach = isParallel ? 1e-9 : Component(half, axis) + 1e-9 * Length(half);
      _sees[axis] = {outside<-reach, outside> reach};
    }
    for (unsigned int corner = 0; corner < 8; ++corner) {
      _isInFront = _isInFront && (isParallel || Ahead(Corner(corner)) >= Nearest());
      _corners.push_back(PositionOf(Corner(corner)));
    }
  }

  /// Whether the outside of a face is seen.
  bool Sees(std::size_t p_axis, unsigned int p_side) const { return _sees[p_axis][p_side]; }
  bool SeesAny() const {
    return std::any_of(_sees.begin(), _sees.end(), [](const auto& p_sides) { return p_sides[0] || p_sides[1]; });
  }
  /// Whether all corners are before the eye.
  bool IsInFront() const { return _isInFront; }
  const std::vector<Position>& Corners() const { return _corners; }

  /// How many of the two faces at an edge are seen.
  int SeenFacesAt(std::size_t p_axis, unsigned int p_edge) const {
    return (Sees((p_axis + 1) % 3, p_edge & 1U) ? 1 : 0) + (Sees((p_axis + 2) % 3, p_edge >> 1U) ? 1 : 0);
  }
  /// The point of an edge at a fraction of it.
  Point PointAt(std::size_t p_axis, unsigned int p_edge, double p_fraction) const {
    Point point = Corner((p_edge & 1U) << ((p_axis + 1) % 3) | (p_edge >> 1U) << ((p_axis + 2) % 3));
    Component(point, p_axis) += Component(_box.Extent(), p_axis) * p_fraction;
    return point;
  }
  Position PositionOf(const Point& p_point) const { return ToPoints(_camera.Project(p_point, _viewport)); }

  /// The part of a straight line that is before the eye.
  std::optional<std::pair<Position, Position>> Clipped(Point p_from, Point p_to) const {
    if (!_isInFront) {
      const double from = Ahead(p_from) - Nearest(), to = Ahead(p_to) - Nearest();
      if (from <= 0 && to <= 0)
        return {};
      if (from < 0)
        p_from = p_from + (p_to - p_from) * (from / (from - to));
      else if (to < 0)
        p_to = p_to + (p_from - p_to) * (to / (to - from));
    }
    return std::pair(PositionOf(p_from), PositionOf(p_to));
  }

private:
  static double& Component(Point& p_point, std::size_t p_axis) {
    return p_axis == 0 ? p_point.x : p_axis == 1 ? p_point.y : p_point.z;
  }
  static double Component(const Point& p_point, std::size_t p_axis) {
    return p_axis == 0 ? p_point.x : p_axis == 1 ? p_point.y : p_point.z;
  }

  Point Corner(unsigned int p_sides) const {
    const Point &low = _box.Min(), &high = _box.Max();
    return {(p_sides & 1U) != 0 ? high.x : low.x, (p_sides & 2U) != 0 ? high.y : low.y,
            (p_sides & 4U) != 0 ? high.z : low.z};
  }
  double Ahead(const Point& p_point) const { return _camera.distance - Dot(p_point - _camera.target, _back); }
  /// How far ahead of the eye positions are exact.
  double Nearest() const { return 0.01 * _camera.distance; }
  Position ToPoints(const Camera::Pixel& p_pixel) const {
    return Position(p_pixel.x - static_cast<double>(_viewport.x), p_pixel.y - static_cast<double>(_viewport.y)) /
           _pointSize;
  }

  const Types::BoundingBox_Base<double>& _box;
  const Camera& _camera;
  Types::Viewport<0> _viewport;
  double _pointSize;
  Point _back;
  std::array<std::array<bool, 2>, 3> _sees{};
  bool _isInFront = true;
  std::vector<Position> _corners;
};

} // namespace Vek::Chart::Scene
