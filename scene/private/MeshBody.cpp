#include "scene/private/MeshBody.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

using Point = Types::Vector3_Base<double>;
using Triangle = std::array<std::size_t, 3>;
using Edge = std::pair<std::size_t, std::size_t>;

constexpr double Tolerance = 1e-3; // of angles
constexpr std::size_t Most = 8192; // corners of symbols; those of larger meshes are not looked at

Point At(const Triangles& p_triangles, std::size_t p_vertex) {
  const GpuMesh::Record& record = p_triangles.positions[p_vertex];
  return Point(static_cast<double>(record.x), static_cast<double>(record.y), static_cast<double>(record.z)) -
         p_triangles.origin;
}

/// Points without duplicates, triangles that are not degenerate, and their edges without a neighbour.
struct Surface {
  explicit Surface(const Triangles& p_triangles);

  std::vector<Point> points;
  std::vector<Triangle> triangles;
  std::set<Edge> borders;
  bool isOrientable = true; ///< no two triangles have an edge in the same direction
};

Surface::Surface(const Triangles& p_triangles) {
  const std::size_t corners = p_triangles.indices.empty() ? p_triangles.positions.size() : p_triangles.indices.size();
  if (corners > Most || corners % 3 != 0)
    return;
  std::map<std::tuple<float, float, float>, std::size_t> numbers;
  const auto numberOf = [&](std::size_t p_corner) {
    const std::size_t vertex = p_triangles.indices.empty() ? p_corner : p_triangles.indices[p_corner];
    const GpuMesh::Record& record = p_triangles.positions[vertex];
    const auto [found, isNew] = numbers.emplace(std::tuple(record.x, record.y, record.z), points.size());
    if (isNew)
      points.push_back(At(p_triangles, vertex));
    return found->second;
  };
  for (std::size_t corner = 0; corner < corners; corner += 3) {
    const Triangle triangle{numberOf(corner), numberOf(corner + 1), numberOf(corner + 2)};
    if (triangle[0] == triangle[1] || triangle[1] == triangle[2] || triangle[2] == triangle[0])
      continue;
    triangles.push_back(triangle);
    for (std::size_t i = 0; i < 3; ++i) {
      const Edge edge(triangle[i], triangle[(i + 1) % 3]);
      if (borders.erase({edge.second, edge.first}) == 0)
        isOrientable = borders.insert(edge).second && isOrientable;
    }
  }
}

/// A. van Oosterom and J. Strackee, "The Solid Angle of a Plane Triangle", 1983.
double SolidAngle(const Point& p_a, const Point& p_b, const Point& p_c) {
  const double a = Length(p_a), b = Length(p_b), c = Length(p_c);
  return 2 *
         std::atan2(Dot(p_a, Cross(p_b, p_c)), a * b * c + Dot(p_a, p_b) * c + Dot(p_b, p_c) * a + Dot(p_c, p_a) * b);
}

} // namespace

double OuterRadius(const Triangles& p_triangles) {
  double radius = 0;
  for (std::size_t i = 0; i < p_triangles.positions.size(); ++i)
    if (const double length = Length(At(p_triangles, i)); std::isfinite(length))
      radius = std::max(radius, length);
  return radius;
}

double EnclosedRadius(const Triangles& p_triangles) {
  const Surface surface(p_triangles);
  if (surface.triangles.empty() || !surface.borders.empty() || !surface.isOrientable)
    return 0;
  double angle = 0, radius = HUGE_VAL;
  for (const Triangle& triangle : surface.triangles) {
    const Point& a = surface.points[triangle[0]];
    const Point& b = surface.points[triangle[1]];
    const Point& c = surface.points[triangle[2]];
    angle += SolidAngle(a, b, c);
    const Point normal = Cross(b - a, c - a);
    if (const double length = Length(normal); length > 0) // the plane is at least as near as the triangle
      radius = std::min(radius, std::abs(Dot(normal, a)) / length);
  }
  return std::abs(std::abs(angle) - 4 * M_PI) < Tolerance ? radius : 0;
}

double CoveredRadius(const Triangles& p_triangles) {
  const Surface surface(p_triangles);
  if (!surface.isOrientable ||
      std::any_of(surface.points.begin(), surface.points.end(), [](const Point& p_p) { return p_p.z != 0; }))
    return 0;
  double angle = 0, radius = HUGE_VAL;
  for (const Edge& edge : surface.borders) {
    const Point& a = surface.points[edge.first];
    const Point& b = surface.points[edge.second];
    const double area = Cross(a, b).z;
    angle += std::atan2(area, Dot(a, b));
    if (const double length = Length(b - a); length > 0) // likewise
      radius = std::min(radius, std::abs(area) / length);
  }
  return std::abs(std::abs(angle) - 2 * M_PI) < Tolerance ? radius : 0;
}

} // namespace Vek::Chart::Scene::Private
