#include "scene/TubeMesh.h"

#include "scene/private/TubePieces.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Vector = Types::Vector3_Base<double>;
using Types::Matrix3;
using TubePoint = TubeMesh::Point;
using Private::TubeStation;

Vector ToVector(const Ogl::Vec3<float>& p_record) {
  return {static_cast<double>(p_record.x), static_cast<double>(p_record.y), static_cast<double>(p_record.z)};
}

Vector Column(const Matrix3& p_frame, std::size_t p_index) {
  return p_frame.Transposed().Row(p_index);
}

} // namespace

Matrix3 TubeMesh::Transported(const Matrix3& p_frame, const Vector& p_direction) {
  const Vector from = Column(p_frame, 2);
  const Vector axis = Cross(from, p_direction);
  const double cosine = Dot(from, p_direction);
  Vector x = Column(p_frame, 0);
  if (cosine > -1 + 1e-9)
    // Rodrigues' rotation, whose sine and cosine the two products are.
    x = x * cosine + Cross(axis, x) + axis * (Dot(axis, x) / (1 + cosine));
  // Rounding errors must not pile up along the line.
  x = Normalize(x - p_direction * Dot(p_direction, x));
  return Matrix3::FromColumns(x, Cross(p_direction, x), p_direction);
}

TubeMesh::TubeMesh(const Library::StreamLineShape& p_shape)
    : _shape(p_shape) {}

void TubeMesh::Add(const std::vector<TubePoint>& p_line, const Vector& p_up) {
  if (_shape.NumVertices() < 2)
    return;
  for (const std::vector<TubeStation>& piece : Private::TubePieces(p_line, p_up))
    AddPiece(piece);
}

void TubeMesh::AddPiece(const std::vector<TubeStation>& p_piece) {
  const auto first = static_cast<unsigned int>(_positions.size());
  const auto width = _shape.NumVertices();
  const bool closed = width > 2;
  for (const TubeStation& station : p_piece)
    AddRing(station.point, station.frame);
  for (unsigned int ring = 0; ring + 1 < p_piece.size(); ++ring)
    for (unsigned int side = 0; side < (closed ? width : width - 1); ++side) {
      const unsigned int a = first + ring * width + side;
      const unsigned int b = first + ring * width + (side + 1) % width;
      _indices.insert(_indices.end(), {a, b, b + width, a, b + width, a + width});
    }
  if (closed) {
    AddCap(first, -Column(p_piece.front().frame, 2), false);
    AddCap(first + width * static_cast<unsigned int>(p_piece.size() - 1), Column(p_piece.back().frame, 2), true);
  }
}

void TubeMesh::AddRing(const TubePoint& p_point, const Matrix3& p_frame) {
  _shape.OrientShape(p_point.width, p_point.position, 1.0, p_frame, _ring, _ringNormals);
  for (std::size_t i = 0; i < _ring.size(); ++i)
    AddVertex(_ring[i], _ringNormals[i], p_point.value);
}

void TubeMesh::AddCap(unsigned int p_ring, const Vector& p_normal, bool p_end) {
  const auto width = static_cast<unsigned int>(_shape.NumVertices());
  const auto center = static_cast<unsigned int>(_positions.size());
  const double value = static_cast<double>(_values[p_ring]);
  Vector middle;
  for (unsigned int i = 0; i < width; ++i)
    middle += ToVector(_positions[p_ring + i]) / static_cast<double>(width);
  AddVertex(middle, p_normal, value);
  // The positions of the ring, to the bit, with flat normals.
  for (unsigned int i = 0; i < width; ++i)
    AddVertex(ToVector(_positions[p_ring + i]), p_normal, value);
  for (unsigned int side = 0; side < width; ++side) {
    const unsigned int a = center + 1 + side;
    const unsigned int b = center + 1 + (side + 1) % width;
    _indices.insert(_indices.end(), {center, p_end ? a : b, p_end ? b : a});
  }
}

void TubeMesh::AddVertex(const Vector& p_position, const Vector& p_normal, double p_value) {
  const auto record = [](const Vector& p_vector) {
    return Record{static_cast<float>(p_vector.x), static_cast<float>(p_vector.y), static_cast<float>(p_vector.z)};
  };
  _positions.push_back(record(p_position));
  _normals.push_back(record(p_normal));
  _values.push_back(static_cast<float>(p_value));
}

Ogl::VertexData TubeMesh::TakeMesh() {
  Ogl::VertexData mesh;
  mesh.SetVertices(std::exchange(_positions, {}));
  mesh.SetNormals(std::exchange(_normals, {}));
  mesh.SetTexCoords(std::exchange(_values, {}));
  mesh.SetIndices(std::exchange(_indices, {}));
  mesh.PrimitiveType() = Ogl::VertexBuffer::Triangles;
  return mesh;
}

namespace {

/// Whether the straight piece between two points replaces a third one between them.
bool Covers(const TubePoint& p_from, const TubePoint& p_to, const TubePoint& p_between, double p_valueTolerance) {
  constexpr double Tolerance = 0.05; // of the width
  const Vector along = p_to.position - p_from.position;
  const Vector way = p_between.position - p_from.position;
  const double share = std::clamp(Dot(way, along) / std::max(Dot(along, along), 1e-300), 0.0, 1.0);
  const auto at = [share](double p_a, double p_b) { return p_a + (p_b - p_a) * share; };
  return Length(way - along * share) <= Tolerance * p_between.width &&
         std::abs(at(p_from.width, p_to.width) - p_between.width) <= Tolerance * p_between.width &&
         std::abs(at(p_from.value, p_to.value) - p_between.value) <= p_valueTolerance;
}

} // namespace

std::vector<TubePoint> TubeMesh::Thinned(const std::vector<TubePoint>& p_line, double p_valueTolerance) {
  constexpr std::size_t Longest = 32; // points in a piece
  std::vector<TubePoint> thinned;
  std::size_t from = 0;
  for (std::size_t i = 0; i < p_line.size(); ++i) {
    const auto begin = p_line.begin() + static_cast<std::ptrdiff_t>(from);
    const std::size_t count = i - from; // to the point
    const bool straight =
        count > 0 && count < Longest && i + 1 < p_line.size() &&
        std::all_of(begin + 1, begin + static_cast<std::ptrdiff_t>(count) + 1, [&](const TubePoint& p_between) {
          return Covers(p_line[from], p_line[i + 1], p_between, p_valueTolerance);
        });
    if (straight)
      continue;
    thinned.push_back(p_line[i]);
    from = i;
  }
  return thinned;
}

} // namespace Vek::Chart::Scene
