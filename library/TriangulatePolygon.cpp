#include "library/TriangulatePolygon.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Library {

namespace {

using Vector = Types::Vector3_Base<double>;
using Indices = std::vector<std::uint32_t>;

struct Point {
  double x;
  double y;
};

bool operator==(const Point& p_a, const Point& p_b) {
  return p_a.x == p_b.x && p_a.y == p_b.y;
}

/// Twice the area of the triangle; positive where it is counter-clockwise.
double Turn(const Point& p_a, const Point& p_b, const Point& p_c) {
  return (p_b.x - p_a.x) * (p_c.y - p_a.y) - (p_b.y - p_a.y) * (p_c.x - p_a.x);
}

double LargestComponent(const Vector& p_vector) {
  return std::max({std::abs(p_vector.x), std::abs(p_vector.y), std::abs(p_vector.z)});
}

/// The corners in the plane of their Newell normal, counter-clockwise; none where there is no such plane.
std::vector<Point> Projected(const Vector* p_corners, std::size_t p_count) {
  double scale = 0;
  for (std::size_t i = 1; i < p_count; ++i) {
    const Vector edge = p_corners[i] - p_corners[0];
    if (!std::isfinite(edge.x) || !std::isfinite(edge.y) || !std::isfinite(edge.z))
      return {};
    scale = std::max(scale, LargestComponent(edge));
  }
  if (scale == 0)
    return {};
  const auto corner = [&](std::size_t p_index) { return (p_corners[p_index] - p_corners[0]) / scale; };
  Vector normal;
  for (std::size_t i = 1; i + 1 < p_count; ++i)
    normal += Cross(corner(i), corner(i + 1));
  constexpr double NoArea = 1e-14;
  if (!(Length(normal) > NoArea))
    return {};
  normal = Normalize(normal);
  const bool alongX = std::abs(normal.x) < 0.6;
  const Vector right = Normalize(Cross(alongX ? Vector(1, 0, 0) : Vector(0, 1, 0), normal));
  const Vector up = Cross(normal, right);
  std::vector<Point> points(p_count);
  for (std::size_t i = 0; i < p_count; ++i)
    points[i] = {Dot(right, corner(i)), Dot(up, corner(i))};
  return points;
}

/// Whether each corner turns to the left. A polygon that does not cross itself is strictly convex then.
bool IsStrictlyConvex(const std::vector<Point>& p_points) {
  const std::size_t count = p_points.size();
  for (std::size_t i = 0; i < count; ++i)
    if (!(Turn(p_points[i], p_points[(i + 1) % count], p_points[(i + 2) % count]) > 0))
      return false;
  return true;
}

/// The numbers of points by cells of a square grid, to find those within a rectangle.
class PointGrid {
public:
  PointGrid(const std::vector<Point>& p_points, const Indices& p_members) {
    constexpr double MostCells = 512;
    _cells = static_cast<int>(std::clamp(std::sqrt(double(p_members.size())), 1.0, MostCells));
    Point largest = _least = p_points.front();
    for (const Point& point : p_points) {
      _least = {std::min(_least.x, point.x), std::min(_least.y, point.y)};
      largest = {std::max(largest.x, point.x), std::max(largest.y, point.y)};
    }
    const double extent = std::max(largest.x - _least.x, largest.y - _least.y);
    _scale = extent > 0 ? _cells / extent : 0;
    _starts.assign(std::size_t(_cells) * std::size_t(_cells) + 1, 0);
    for (const std::uint32_t member : p_members)
      ++_starts[CellOf(p_points[member]) + 1];
    for (std::size_t i = 1; i < _starts.size(); ++i)
      _starts[i] += _starts[i - 1];
    _members.resize(p_members.size());
    Indices next(_starts.begin(), _starts.end() - 1);
    for (const std::uint32_t member : p_members)
      _members[next[CellOf(p_points[member])]++] = member;
  }

  /// Whether p_call returns true for any member near the rectangle.
  template <class Call>
  bool Any(const Point& p_least, const Point& p_largest, const Call& p_call) const {
    for (int y = Cell(p_least.y - _least.y); y <= Cell(p_largest.y - _least.y); ++y) {
      const std::size_t row = std::size_t(y) * std::size_t(_cells);
      const std::size_t first = _starts[row + std::size_t(Cell(p_least.x - _least.x))];
      const std::size_t last = _starts[row + std::size_t(Cell(p_largest.x - _least.x)) + 1];
      if (std::any_of(_members.begin() + std::ptrdiff_t(first), _members.begin() + std::ptrdiff_t(last), p_call))
        return true;
    }
    return false;
  }

private:
  int Cell(double p_offset) const { return static_cast<int>(std::clamp(p_offset * _scale, 0.0, _cells - 1.0)); }
  std::size_t CellOf(const Point& p_point) const {
    return std::size_t(Cell(p_point.y - _least.y)) * std::size_t(_cells) + std::size_t(Cell(p_point.x - _least.x));
  }

  int _cells;
  Point _least;
  double _scale;
  Indices _starts; ///< of each cell's members, and the end
  Indices _members;
};

class EarClipper {
public:
  explicit EarClipper(const std::vector<Point>& p_points)
      : _points(p_points)
      , _previous(p_points.size())
      , _next(p_points.size())
      , _reflex(p_points.size())
      , _budget((std::size_t(1) << 24) + 64 * p_points.size()) {
    const std::size_t count = p_points.size();
    for (std::size_t i = 0; i < count; ++i) {
      _previous[i] = static_cast<std::uint32_t>((i + count - 1) % count);
      _next[i] = static_cast<std::uint32_t>((i + 1) % count);
    }
    for (std::uint32_t i = 0; i < count; ++i)
      _reflex[i] = !(TurnAt(i) > 0);
  }

  Indices Triangles() {
    Indices reflex;
    for (std::uint32_t i = 0; i < _points.size(); ++i)
      if (_reflex[i])
        reflex.push_back(i);
    const PointGrid grid(_points, reflex);
    std::uint32_t corner = 0;
    std::size_t left = _points.size();
    std::size_t tried = 0; // corners in a row that are no ears
    while (left > 3 && _budget != 0) {
      if (IsEar(grid, corner, true)) {
        corner = Clip(corner);
      } else if (++tried < left) {
        corner = _next[corner];
        continue;
      } else {
        corner = Clip(NextBest(grid, corner, left));
      }
      --left;
      tried = 0;
    }
    for (; left >= 3; --left)
      corner = Clip(corner);
    return std::move(_triangles);
  }

private:
  double TurnAt(std::uint32_t p_corner) const {
    return Turn(_points[_previous[p_corner]], _points[p_corner], _points[_next[p_corner]]);
  }
  void Spend() { _budget -= _budget == 0 ? 0 : 1; }

  /// Whether the triangle at a convex corner has no other corner within; with p_closed, neither on its edges.
  bool IsEar(const PointGrid& p_grid, std::uint32_t p_corner, bool p_closed) {
    Spend();
    if (_reflex[p_corner])
      return false;
    const std::array<std::uint32_t, 3> corners{_previous[p_corner], p_corner, _next[p_corner]};
    const Point &a = _points[corners[0]], &b = _points[corners[1]], &c = _points[corners[2]];
    const Point least{std::min({a.x, b.x, c.x}), std::min({a.y, b.y, c.y})};
    const Point largest{std::max({a.x, b.x, c.x}), std::max({a.y, b.y, c.y})};
    return !p_grid.Any(least, largest, [&](std::uint32_t p_other) {
      Spend();
      return _reflex[p_other] && std::find(corners.begin(), corners.end(), p_other) == corners.end() &&
             Blocks(p_other, {a, b, c}, p_closed);
    });
  }

  bool Blocks(std::uint32_t p_other, const std::array<Point, 3>& p_triangle, bool p_closed) const {
    const Point& point = _points[p_other];
    bool within = true;
    for (std::size_t i = 0; i < 3; ++i) {
      const Point &corner = p_triangle[i], &after = p_triangle[(i + 1) % 3], &before = p_triangle[(i + 2) % 3];
      if (point == corner)
        return Enters(corner, after, before, _points[_next[p_other]]) ||
               Enters(corner, after, before, _points[_previous[p_other]]);
      const double side = Turn(corner, after, point);
      within = within && (p_closed ? side >= 0 : side > 0);
    }
    return within;
  }
  /// Whether an edge from a corner of a triangle to a point starts inside of it.
  static bool Enters(const Point& p_corner, const Point& p_after, const Point& p_before, const Point& p_point) {
    return Turn(p_corner, p_after, p_point) > 0 && Turn(p_corner, p_point, p_before) > 0;
  }

  /// The corner to clip where none is an ear: one without area, else an open ear, else a convex one, else any.
  std::uint32_t NextBest(const PointGrid& p_grid, std::uint32_t p_corner, std::size_t p_left) {
    std::array<std::uint32_t, 3> found{p_corner, p_corner, p_corner};
    bool any[3]{};
    for (std::size_t i = 0; i < p_left && _budget != 0; ++i, p_corner = _next[p_corner]) {
      if (TurnAt(p_corner) == 0)
        return p_corner;
      for (const int kind : {0, 1})
        if (!any[kind] && !_reflex[p_corner] && (kind == 1 || IsEar(p_grid, p_corner, false))) {
          found[std::size_t(kind)] = p_corner;
          any[kind] = true;
        }
      Spend();
    }
    return any[0] ? found[0] : any[1] ? found[1] : p_corner;
  }

  /// Cuts a corner off and returns the one to go on with: not its neighbour, which would make fans of thin triangles.
  std::uint32_t Clip(std::uint32_t p_corner) {
    const std::uint32_t previous = _previous[p_corner];
    const std::uint32_t next = _next[p_corner];
    _triangles.insert(_triangles.end(), {previous, p_corner, next});
    _next[previous] = next;
    _previous[next] = previous;
    _reflex[p_corner] = false;
    for (const std::uint32_t neighbour : {previous, next})
      _reflex[neighbour] = !(TurnAt(neighbour) > 0);
    return _next[next];
  }

  const std::vector<Point>& _points;
  Indices _previous;
  Indices _next;
  std::vector<bool> _reflex; ///< corners that do not turn to the left
  std::size_t _budget;       ///< tests left: polygons that cross themselves must not take for ever
  Indices _triangles;
};

} // namespace

std::vector<std::uint32_t> TriangulatePolygon(const Types::Vector3_Base<double>* p_corners, std::size_t p_count) {
  if (p_corners == nullptr || p_count < 3)
    return {};
  const std::vector<Point> points = p_count == 3 ? std::vector<Point>() : Projected(p_corners, p_count);
  if (!points.empty() && !IsStrictlyConvex(points))
    return EarClipper(points).Triangles();
  Indices fan;
  fan.reserve(3 * (p_count - 2));
  for (std::uint32_t i = 1; i + 1 < p_count; ++i)
    fan.insert(fan.end(), {0, i, i + 1});
  return fan;
}

} // namespace Vek::Chart::Library
