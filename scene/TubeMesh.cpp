#include "scene/TubeMesh.h"

#include <cmath>

namespace Vek::Chart::Scene {

namespace {

using Point = Types::Vector3_Base<double>;
using Types::Matrix3;

/// Not for NaN.
bool Sane(double p_number) {
  return std::abs(p_number) <= 1e30;
}

bool Sweepable(const SweepPoint& p_point) {
  const Point& place = p_point.position;
  return Sane(place.x) && Sane(place.y) && Sane(place.z) && Sane(p_point.value) && Sane(p_point.width) &&
         p_point.width > 0;
}

/// The points of a line that can be swept.
std::vector<SweepPoint> Cleaned(const std::vector<SweepPoint>& p_line) {
  std::vector<SweepPoint> line;
  for (const SweepPoint& point : p_line) {
    if (!Sweepable(point))
      continue;
    if (!line.empty()) {
      const double step = Length(point.position - line.back().position);
      if (!(step > 0) || step < 1e-6 * line.back().width)
        continue;
    }
    line.push_back(point);
  }
  return line;
}

Point Direction(const SweepPoint& p_from, const SweepPoint& p_to) {
  return Normalize(p_to.position - p_from.position);
}

Point ToPoint(const Ogl::Vec3<float>& p_record) {
  return {static_cast<double>(p_record.x), static_cast<double>(p_record.y), static_cast<double>(p_record.z)};
}

Point Column(const Matrix3& p_frame, std::size_t p_index) {
  return p_frame.Transposed().Row(p_index);
}

/// The frame with z along `p_direction` and −y as near to `p_up` as can be.
Matrix3 StartFrame(const Point& p_direction, const Point& p_up) {
  Point side = Cross(p_direction, p_up);
  if (!(Length(side) > 1e-9 * Length(p_up)))
    side = std::abs(p_direction.x) < 0.7 ? Cross(p_direction, Point(1, 0, 0)) : Cross(p_direction, Point(0, 1, 0));
  const Point x = Normalize(side);
  return Matrix3::FromColumns(x, Cross(p_direction, x), p_direction);
}

} // namespace

Matrix3 Transported(const Matrix3& p_frame, const Point& p_direction) {
  const Point from = Column(p_frame, 2);
  const Point axis = Cross(from, p_direction);
  const double cosine = Dot(from, p_direction);
  Point x = Column(p_frame, 0);
  if (cosine > -1 + 1e-9)
    // Rodrigues' rotation, whose sine and cosine the two products are.
    x = x * cosine + Cross(axis, x) + axis * (Dot(axis, x) / (1 + cosine));
  // Rounding errors must not pile up along the line.
  x = Normalize(x - p_direction * Dot(p_direction, x));
  return Matrix3::FromColumns(x, Cross(p_direction, x), p_direction);
}

Sweep::Sweep(const Library::StreamLineShape& p_shape)
    : _shape(p_shape) {}

void Sweep::Add(const std::vector<SweepPoint>& p_line, const Point& p_up) {
  const std::vector<SweepPoint> line = Cleaned(p_line);
  if (_shape.NumVertices() < 2 || line.size() < 2)
    return;
  Matrix3 frame = StartFrame(Direction(line[0], line[1]), p_up);
  constexpr double CosineOfSharpestTurn = -0.5;
  std::vector<SweepPoint> piece = {line[0]};
  for (std::size_t i = 1; i < line.size(); ++i) {
    piece.push_back(line[i]);
    if (i + 1 == line.size() ||
        Dot(Direction(line[i - 1], line[i]), Direction(line[i], line[i + 1])) < CosineOfSharpestTurn) {
      AddPiece(piece, frame);
      piece = {line[i]};
    }
  }
}

void Sweep::AddPiece(const std::vector<SweepPoint>& p_piece, Matrix3& p_frame) {
  const std::size_t sides = _shape.NumVertices();
  const auto first = static_cast<unsigned int>(_positions.size());
  const bool closed = sides > 2;
  p_frame = Transported(p_frame, Direction(p_piece[0], p_piece[1]));
  for (std::size_t i = 0; i < p_piece.size(); ++i) {
    // In the plane that halves the corner.
    const Point before = Direction(p_piece[i == 0 ? 0 : i - 1], p_piece[i == 0 ? 1 : i]);
    const Point after = i + 1 < p_piece.size() ? Direction(p_piece[i], p_piece[i + 1]) : before;
    p_frame = Transported(p_frame, Normalize(before + after));
    AddRing(p_piece[i], p_frame);
  }
  const auto width = static_cast<unsigned int>(sides);
  for (unsigned int ring = 0; ring + 1 < p_piece.size(); ++ring)
    for (unsigned int side = 0; side < (closed ? width : width - 1); ++side) {
      const unsigned int a = first + ring * width + side;
      const unsigned int b = first + ring * width + (side + 1) % width;
      _indices.insert(_indices.end(), {a, b, b + width, a, b + width, a + width});
    }
  if (closed) {
    AddCap(first, -Direction(p_piece[0], p_piece[1]), false);
    AddCap(first + width * static_cast<unsigned int>(p_piece.size() - 1), Column(p_frame, 2), true);
  }
}

void Sweep::AddRing(const SweepPoint& p_point, const Matrix3& p_frame) {
  _shape.OrientShape(p_point.width, p_point.position, 1.0, p_frame, _ring, _ringNormals);
  for (std::size_t i = 0; i < _ring.size(); ++i)
    AddVertex(_ring[i], _ringNormals[i], p_point.value);
}

void Sweep::AddCap(unsigned int p_ring, const Point& p_normal, bool p_end) {
  const auto width = static_cast<unsigned int>(_shape.NumVertices());
  const auto center = static_cast<unsigned int>(_positions.size());
  const double value = static_cast<double>(_values[p_ring]);
  Point middle;
  for (unsigned int i = 0; i < width; ++i)
    middle += ToPoint(_positions[p_ring + i]) / static_cast<double>(width);
  AddVertex(middle, p_normal, value);
  // The same places as in the ring, to the bit, but flat normals.
  for (unsigned int i = 0; i < width; ++i)
    AddVertex(ToPoint(_positions[p_ring + i]), p_normal, value);
  for (unsigned int side = 0; side < width; ++side) {
    const unsigned int a = center + 1 + side;
    const unsigned int b = center + 1 + (side + 1) % width;
    _indices.insert(_indices.end(), {center, p_end ? a : b, p_end ? b : a});
  }
}

void Sweep::AddVertex(const Point& p_position, const Point& p_normal, double p_value) {
  const auto record = [](const Point& p_vector) {
    return Record{static_cast<float>(p_vector.x), static_cast<float>(p_vector.y), static_cast<float>(p_vector.z)};
  };
  _positions.push_back(record(p_position));
  _normals.push_back(record(p_normal));
  _values.push_back(static_cast<float>(p_value));
}

Ogl::VertexData Sweep::TakeMesh() {
  Ogl::VertexData mesh;
  mesh.SetVertices(std::move(_positions));
  mesh.SetNormals(std::move(_normals));
  mesh.SetTexCoords(std::move(_values));
  mesh.SetIndices(std::move(_indices));
  mesh.PrimitiveType() = Ogl::VertexBuffer::Triangles;
  _positions = {};
  _normals = {};
  _values = {};
  _indices = {};
  return mesh;
}

} // namespace Vek::Chart::Scene
