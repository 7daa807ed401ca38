#include "library/StreamLineShape.h"

#include "platform/types/Angle.h"
#include "platform/types/Geometry.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Vek::Chart::Library {

namespace {

using Vector2 = Types::Vector2_Base<double>;
using Vector3 = Types::Vector3_Base<double>;

constexpr int NumTubeVertices = 12;

/// The right-hand normal of each edge, from a vertex to the next one around the closed outline.
std::vector<Vector2> ComputeEdgeNormals(const std::vector<Vector2>& p_vertices) {
  std::vector<Vector2> normals(p_vertices.size());
  for (std::size_t i = 0; i < p_vertices.size(); ++i) {
    const Vector2& current = p_vertices[i];
    const Vector2& next = p_vertices[i + 1 == p_vertices.size() ? 0 : i + 1];
    normals[i] = Normalize(Vector2(next.y - current.y, -(next.x - current.x)));
  }
  return normals;
}

/// The normalised mean of the normals of the two edges at each vertex.
std::vector<Vector2> ComputeOutlineNormals(const std::vector<Vector2>& p_edgeNormals) {
  std::vector<Vector2> normals(p_edgeNormals.size());
  for (std::size_t i = 0; i < p_edgeNormals.size(); ++i) {
    const Vector2& previous = p_edgeNormals[i == 0 ? p_edgeNormals.size() - 1 : i - 1];
    normals[i] = Normalize((previous + p_edgeNormals[i]) / 2.0);
  }
  return normals;
}

/// Sets results[i] to p_place(x, y, 0) of point i. The results do not alias the points, so that the loop is vectorised.
template <class Place>
void PlaceEach(const std::vector<Vector2>& p_points, Vector3* __restrict p_results, const Place& p_place) {
  const Vector2* const points = p_points.data();
  const std::size_t count = p_points.size();
  for (std::size_t i = 0; i < count; ++i)
    p_results[i] = p_place(Vector3(points[i].x, points[i].y, 0));
}

} // namespace

StreamLineShape::StreamLineShape() {
  BuildPredefinedShape(ShapeLine);
}

StreamLineShape::StreamLineShape(Shape p_shape, const std::vector<Vector2>& p_outline) {
  if (p_shape != ShapeCustom)
    BuildPredefinedShape(p_shape);
  else if (p_outline.empty())
    BuildPredefinedShape(ShapeLine);
  else
    BuildCustomShape(p_outline);
}

unsigned StreamLineShape::NumVertices() const {
  return static_cast<unsigned>(_vertices.size());
}

bool StreamLineShape::HasNormals() const {
  return !_normals.empty();
}

bool StreamLineShape::OrientShape(double p_size, const Vector3& p_position, double p_scale,
                                  const Types::Matrix3& p_rotation, std::vector<Vector3>& p_outVertices,
                                  std::vector<Vector3>& p_outNormals) const {
  if (_vertices.empty())
    return false;
  const double factor = p_size * _extent * p_scale;
  if (factor <= 0.0)
    return false;

  const Vector3 position = p_position; // may be an element of a vector that is resized
  p_outVertices.resize(_vertices.size());
  p_outNormals.resize(_vertices.size());
  PlaceEach(_vertices, p_outVertices.data(),
            [&](const Vector3& p_vertex) { return p_rotation * (p_vertex * factor) + position; });
  if (HasNormals())
    PlaceEach(_normals, p_outNormals.data(), [&](const Vector3& p_normal) { return p_rotation * p_normal; });
  else
    std::fill(p_outNormals.begin(), p_outNormals.end(), p_rotation * Vector3(0, 1, 0));
  return true;
}

void StreamLineShape::BuildPredefinedShape(Shape p_shape) {
  _vertices.clear();
  _normals.clear();
  switch (p_shape) {
  case ShapeLine:
    _vertices = {{0, 0}};
    break;
  case ShapeRibbon:
    _vertices = {{-0.5, 0}, {0.5, 0}};
    _normals = {{0, -1}, {0, -1}};
    break;
  case ShapeTube:
    _vertices.reserve(NumTubeVertices);
    _normals.reserve(NumTubeVertices);
    for (int i = 0; i < NumTubeVertices; ++i) {
      const double angle = Types::Angle::FromDegrees(i * (360.0 / NumTubeVertices)).Radians();
      _vertices.emplace_back(0.5 * std::cos(angle), 0.5 * std::sin(angle));
      _normals.push_back(Normalize(_vertices.back()));
    }
    break;
  default:
    return;
  }
  _extent = 1.0;
}

void StreamLineShape::BuildCustomShape(const std::vector<Vector2>& p_outline) {
  Types::BoundingBox_Base<double> bounds;
  for (const Vector2& point : p_outline)
    bounds += Vector3(point.x, point.y, 0);
  const Vector3 size = bounds.Extent();
  _extent = size.y > size.x ? size.y : size.x;
  if (_extent == 0.0 || p_outline.size() == 1)
    return BuildPredefinedShape(ShapeLine);
  if (p_outline.size() == 2)
    return BuildPredefinedShape(ShapeRibbon);

  _vertices.reserve(p_outline.size());
  for (const Vector2& point : p_outline)
    _vertices.push_back(point / _extent);
  _extent = 1.0;
  _normals = ComputeOutlineNormals(ComputeEdgeNormals(_vertices));
}

} // namespace Vek::Chart::Library
