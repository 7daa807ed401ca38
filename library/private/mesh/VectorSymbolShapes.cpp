#include "library/VectorSymbol.h"

#include "library/private/mesh/MeshBuilder.h"
#include "platform/debug/Check.h"
#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>

// The meshes of the built-in glyphs. Triangles run counter-clockwise seen from outside.

namespace Vek::Chart::Library {

namespace {

using Private::MeshBuilder;
using Types::Vector3_Base;

constexpr double Third = 0.3333333333333333;
constexpr double Ninth = 0.1111111111111111;

struct Direction {
  double cosine;
  double sine;
};

Direction DirectionAt(double p_degrees) {
  const double radians = Types::Angle::FromDegrees(p_degrees).Radians();
  return {std::cos(radians), std::sin(radians)};
}

/// The full circle in equal segments.
class Circle {
public:
  explicit Circle(unsigned int p_segments)
      : _segments(p_segments)
      , _step(360.0 / p_segments) {}

  unsigned int Segments() const { return _segments; }
  Direction At(unsigned int p_segment) const { return DirectionAt(p_segment * _step); }
  /// The segment that follows; the first after the last.
  unsigned int Next(unsigned int p_segment) const { return p_segment + 1 == _segments ? 0 : p_segment + 1; }

private:
  unsigned int _segments;
  double _step;
};

void AddArrowHead3D(MeshBuilder& p_mesh, const Circle& p_circle, double p_length) {
  constexpr unsigned int PerSegment = 3;
  p_mesh.Reserve(1 + std::size_t(PerSegment) * p_circle.Segments(), std::size_t(6) * p_circle.Segments());
  p_mesh.AddVertex(0, 0, 0);
  for (unsigned int j = 0; j < p_circle.Segments(); ++j) {
    const auto [c, s] = p_circle.At(j);
    const unsigned int k = p_mesh.Count();
    const unsigned int next = 1 + PerSegment * p_circle.Next(j);
    p_mesh.AddVertex(c * Third, s * Third, 0);
    p_mesh.AddVertex(c * Third, s * Third, 0);
    p_mesh.AddVertex(0, 0, p_length);
    p_mesh.AddTriangle(0, next, k);             // base cap
    p_mesh.AddTriangle(k + 1, next + 1, k + 2); // side
  }
}

//  z = 3     6           one segment of the outline, with the vertices that it adds;
//           /            two at a corner keep the faces on its sides apart
//  z = 2   5,4 - 3,2
//                 |
//  z = 0         1,0 - axis
void AddArrow3D(MeshBuilder& p_mesh, const Circle& p_circle, double p_length) {
  constexpr unsigned int PerSegment = 7;
  constexpr double ShaftLength = 2.0;
  p_mesh.Reserve(1 + std::size_t(PerSegment) * p_circle.Segments(), std::size_t(18) * p_circle.Segments());
  p_mesh.AddVertex(0, 0, 0);
  for (unsigned int j = 0; j < p_circle.Segments(); ++j) {
    const auto [c, s] = p_circle.At(j);
    const unsigned int k = p_mesh.Count();
    const unsigned int next = 1 + PerSegment * p_circle.Next(j);
    p_mesh.AddVertex(c * Ninth, s * Ninth, 0);
    p_mesh.AddVertex(c * Ninth, s * Ninth, 0);
    p_mesh.AddVertex(c * Ninth, s * Ninth, ShaftLength);
    p_mesh.AddVertex(c * Ninth, s * Ninth, ShaftLength);
    p_mesh.AddVertex(c * Third, s * Third, ShaftLength);
    p_mesh.AddVertex(c * Third, s * Third, ShaftLength);
    p_mesh.AddVertex(0, 0, p_length);
    p_mesh.AddTriangle(0, next, k); // bottom cap
    p_mesh.AddTriangle(k + 1, next + 1, next + 2);
    p_mesh.AddTriangle(k + 1, next + 2, k + 2); // shaft
    p_mesh.AddTriangle(k + 4, next + 3, next + 4);
    p_mesh.AddTriangle(k + 4, k + 3, next + 3); // back of the head
    p_mesh.AddTriangle(k + 5, next + 5, k + 6); // head
  }
}

//   2 --------- 1     the head (0 to 4) at 45°: 0 and 4 lie on the ring's outer and inner edge, where the band
//     \        0       starts with copies of both (5 and 6), clockwise; 2 is the tip
//       \    4
//          3
struct RingPoints {
  Vector3_Base<double> outer;
  Vector3_Base<double> inner;
};

constexpr double RingRadius = 0.5;
constexpr double RingInnerPart = 0.6;

RingPoints RingAt(const Direction& p_direction, double p_z) {
  const double x = RingRadius * p_direction.cosine;
  const double y = RingRadius * p_direction.sine;
  return {{x, y, p_z}, {x * RingInnerPart, y * RingInnerPart, p_z}};
}

void AddRingHead(MeshBuilder& p_mesh, const RingPoints& p_ring) {
  constexpr double HeadOuterPart = 1.2;
  constexpr double HeadInnerPart = 0.3999999999999999;
  const auto [x, y, z] = p_ring.outer;
  p_mesh.AddVertex(x, y, z);
  p_mesh.AddVertex(HeadOuterPart * x, HeadOuterPart * y, z);
  p_mesh.AddVertex(HeadInnerPart * x, HeadOuterPart * y, z); // the tip, along the tangent at 45°
  p_mesh.AddVertex(HeadInnerPart * x, HeadInnerPart * y, z);
  p_mesh.AddVertex(p_ring.inner);
  p_mesh.AddTriangle(2, 0, 1);
  p_mesh.AddTriangle(2, 4, 0);
  p_mesh.AddTriangle(2, 3, 4);
}

void AddRingFace(MeshBuilder& p_mesh, unsigned int p_segments, double p_z) {
  const double step = 360.0 / p_segments;
  const unsigned int last = p_segments * 3 / 4;
  for (unsigned int i = 0; i <= last; ++i) {
    const RingPoints ring = RingAt(DirectionAt(45.0 - i * step), p_z);
    if (i == 0)
      AddRingHead(p_mesh, ring);
    const unsigned int b = p_mesh.Count();
    p_mesh.AddVertex(ring.outer);
    p_mesh.AddVertex(ring.inner);
    if (i == 0)
      continue;
    if (i < last) {
      p_mesh.AddTriangle(b, b - 2, b - 1);
    } else { // the tail, notched by a point between the last two
      p_mesh.AddVertex(ring.outer.x, ring.inner.y, p_z);
      p_mesh.AddTriangle(b, b - 2, b + 2);
      p_mesh.AddTriangle(b + 2, b - 2, b - 1);
    }
    p_mesh.AddTriangle(i < last ? b : b + 2, b - 1, b + 1);
  }
}

/// Walls between a face in front and its copy at the back. Each has vertices of its own, so that its edges stay hard.
class RingWalls {
public:
  RingWalls(MeshBuilder& p_mesh, unsigned int p_frontCount)
      : _mesh(p_mesh)
      , _frontCount(p_frontCount) {}

  void AddAll() {
    for (unsigned int v = 1; v <= 4; ++v)
      AddHeadEdge(v);
    const unsigned int notch = _frontCount - 1;
    for (unsigned int v = 5; v < notch; v += 2)
      AddBandStep(v);
    AddTail(notch);
  }

private:
  /// The copies of a vertex of the face at the back and in front.
  void AddPair(unsigned int p_vertex) {
    _mesh.AddCopy(p_vertex + _frontCount);
    _mesh.AddCopy(p_vertex);
  }
  void AddHeadEdge(unsigned int p_vertex) {
    const unsigned int c = _mesh.Count();
    AddPair(p_vertex - 1);
    AddPair(p_vertex);
    _mesh.AddTriangle(c, c + 2, c + 3);
    _mesh.AddTriangle(c, c + 3, c + 1);
  }
  void AddBandStep(unsigned int p_outer) {
    const unsigned int c = _mesh.Count();
    AddPair(p_outer);
    AddPair(p_outer + 1);
    if (p_outer == 5)
      return;
    _mesh.AddTriangle(c, c - 4, c - 3); // outer wall
    _mesh.AddTriangle(c, c - 3, c + 1);
    _mesh.AddTriangle(c + 2, c + 3, c - 1); // inner wall
    _mesh.AddTriangle(c + 2, c - 1, c - 2);
  }
  void AddTail(unsigned int p_notch) {
    const unsigned int c = _mesh.Count();
    AddPair(p_notch - 2);
    AddPair(p_notch - 1);
    AddPair(p_notch);
    AddPair(p_notch);
    _mesh.AddTriangle(c + 2, c + 4, c + 3); // from the inner edge to the notch
    _mesh.AddTriangle(c + 3, c + 4, c + 5);
    _mesh.AddTriangle(c + 6, c, c + 7); // from the notch to the outer edge
    _mesh.AddTriangle(c, c + 1, c + 7);
  }

  MeshBuilder& _mesh;
  unsigned int _frontCount;
};

} // namespace

void VectorSymbol::BuildShapePoint() {
  _primitive = TopologyPoints;
  MeshBuilder(_vertices, _indices).AddVertex(0, 0, 0);
}

void VectorSymbol::BuildShapeArrow(const Model::Symbol::Shape p_shape) {
  const Vector3_Base<double> up(0, 1, 0);
  const Circle circle(_resolution);
  MeshBuilder mesh(_vertices, _indices);
  switch (p_shape) {
  case Model::Symbol::ShapeArrowHead1D:
    _length = 1.0;
    _primitive = TopologyLines;
    _vertices = {{0, 0, _length}, {-Third, 0, 0}, {Third, 0, 0}};
    _normals.assign(_vertices.size(), up);
    mesh.AddLine(1, 0);
    mesh.AddLine(2, 0);
    break;
  case Model::Symbol::ShapeArrow1D:
    _length = 3.0;
    _primitive = TopologyLines;
    _vertices = {{0, 0, 0}, {0, 0, _length}, {-Third, 0, 2}, {Third, 0, 2}};
    _normals.assign(_vertices.size(), up);
    mesh.AddLine(0, 1);
    mesh.AddLine(2, 1);
    mesh.AddLine(3, 1);
    break;
  case Model::Symbol::ShapeArrowHead2D:
    _length = 1.0;
    _primitive = TopologyTriangles;
    _vertices = {{0, 0, _length}, {-Third, 0, 0}, {Third, 0, 0}};
    mesh.AddTriangle(0, 2, 1);
    break;
  case Model::Symbol::ShapeArrow2D:
    _length = 3.0;
    _primitive = TopologyTriangles;
    _vertices = {{0, 0, _length}, {-Third, 0, 2}, {Third, 0, 2}, // head
                 {-Ninth, 0, 0},  {Ninth, 0, 0},  {-Ninth, 0, 2}, {Ninth, 0, 2}};
    mesh.AddTriangle(0, 2, 1);
    mesh.AddTriangle(3, 5, 6);
    mesh.AddTriangle(3, 6, 4);
    break;
  case Model::Symbol::ShapeArrowHead3D:
    _length = 1.0;
    _primitive = TopologyTriangles;
    AddArrowHead3D(mesh, circle, _length);
    break;
  case Model::Symbol::ShapeArrow3D:
    _length = 3.0;
    _primitive = TopologyTriangles;
    AddArrow3D(mesh, circle, _length);
    break;
  default:
    VEK_SENTRY("void __cdecl Vek::Chart::Library::VectorSymbol::BuildShapeArrow(const enum "
               "Vek::Chart::Model::Symbol::Shape)",
               422);
  }
}

void VectorSymbol::BuildShapeCube(const Model::Symbol::Shape p_shape) {
  constexpr double H = 0.5;
  const bool isCube = p_shape == Model::Symbol::ShapeCube;
  const double front = isCube ? H : 0.0;
  const Vector3_Base<double> faces[6][4] = {
      {{-H, -H, front}, {H, -H, front}, {H, H, front}, {-H, H, front}}, // +z, the plane's only one
      {{H, -H, -H}, {-H, -H, -H}, {-H, H, -H}, {H, H, -H}},             // -z
      {{-H, H, -H}, {-H, -H, -H}, {-H, -H, H}, {-H, H, H}},             // -x
      {{H, -H, -H}, {H, H, -H}, {H, H, H}, {H, -H, H}},                 // +x
      {{-H, -H, -H}, {H, -H, -H}, {H, -H, H}, {-H, -H, H}},             // -y
      {{H, H, -H}, {-H, H, -H}, {-H, H, H}, {H, H, H}},                 // +y
  };
  _length = 1.0;
  _primitive = TopologyTriangles;
  MeshBuilder mesh(_vertices, _indices);
  for (int face = 0; face < (isCube ? 6 : 1); ++face) {
    const unsigned int b = mesh.Count();
    mesh.AddTriangle(b, b + 1, b + 2);
    mesh.AddTriangle(b, b + 2, b + 3);
    for (const Vector3_Base<double>& corner : faces[face])
      mesh.AddVertex(corner);
  }
}

void VectorSymbol::BuildShapeCylinder() {
  _length = 1.0;
  _primitive = TopologyTriangles;
  const Circle circle(_resolution);
  MeshBuilder mesh(_vertices, _indices);
  mesh.Reserve(std::size_t(2) * _resolution, std::size_t(6) * _resolution);
  for (unsigned int j = 0; j < _resolution; ++j) {
    const auto [c, s] = circle.At(j);
    const unsigned int b = 2 * j;
    const unsigned int next = 2 * circle.Next(j);
    mesh.AddVertex(0.5 * c, 0.5 * s, -0.5);
    mesh.AddVertex(0.5 * c, 0.5 * s, 0.5);
    mesh.AddTriangle(b, next, b + 1);
    mesh.AddTriangle(b + 1, next, next + 1);
  }
}

void VectorSymbol::BuildShapeCone() {
  _length = 1.0;
  _primitive = TopologyTriangles;
  const Circle circle(_resolution);
  MeshBuilder mesh(_vertices, _indices);
  mesh.Reserve(std::size_t(2) * _resolution, std::size_t(3) * _resolution);
  for (unsigned int j = 0; j < _resolution; ++j) {
    const auto [c, s] = circle.At(j);
    mesh.AddVertex(0.5 * c, 0.5 * s, 0);
    mesh.AddVertex(0, 0, _length);
    mesh.AddTriangle(2 * j, 2 * circle.Next(j), 2 * j + 1);
  }
}

void VectorSymbol::BuildCircularArrow(const Model::Symbol::Shape p_shape) {
  constexpr unsigned int MaximalSegments = 24;
  const bool isSolid = p_shape == Model::Symbol::ShapeCircularArrow3D;
  const double front = isSolid ? 0.5 : 0.0;
  _length = isSolid ? 1.0 : 0.0;
  _primitive = TopologyTriangles;
  MeshBuilder mesh(_vertices, _indices);
  AddRingFace(mesh, std::min(_resolution, MaximalSegments), front);
  if (!isSolid) {
    VEK_SENTRY("void __cdecl Vek::Chart::Library::VectorSymbol::BuildCircularArrow(const enum "
               "Vek::Chart::Model::Symbol::Shape)",
               927);
    return;
  }

  const unsigned int frontCount = mesh.Count();
  for (unsigned int v = 0; v < frontCount; ++v)
    mesh.AddVertex(_vertices[v].x, _vertices[v].y, -front);
  const std::size_t frontIndices = _indices.size();
  for (std::size_t i = 0; i < frontIndices; i += 3) // reversed, to face backwards
    mesh.AddTriangle(_indices[i] + frontCount, _indices[i + 2] + frontCount, _indices[i + 1] + frontCount);
  RingWalls(mesh, frontCount).AddAll();
}

void VectorSymbol::BuildShapeCrossHair() {
  _length = 1.0;
  _primitive = TopologyLines;
  _vertices = {{-0.5, 0, 0}, {0.5, 0, 0}, {0, -0.5, 0}, {0, 0.5, 0}, {0, 0, -0.5}, {0, 0, 0.5}};
  MeshBuilder mesh(_vertices, _indices);
  mesh.AddLine(0, 1);
  mesh.AddLine(2, 3);
  mesh.AddLine(4, 5);
}

void VectorSymbol::BuildShapeSphere() {
  constexpr double Radius = 0.5;
  _length = 1.0;
  _primitive = TopologyTriangles;
  const Circle circle(_resolution);
  const unsigned int n = _resolution;
  const unsigned int rings = n / 2 - 1;
  MeshBuilder mesh(_vertices, _indices);
  mesh.Reserve(2 + std::size_t(n) * rings, std::size_t(6) * n * rings);

  mesh.AddVertex(0, 0, -Radius);
  mesh.AddVertex(0, 0, Radius);
  for (unsigned int j = 0; j < n; ++j)
    mesh.AddTriangle(0, 2 + circle.Next(j), 2 + j);
  for (unsigned int r = 1; r <= rings; ++r) {
    const Direction polar = circle.At(r);
    const unsigned int b = mesh.Count();
    for (unsigned int j = 0; j < n; ++j) {
      const auto [c, s] = circle.At(j);
      mesh.AddVertex(c * polar.sine * Radius, s * polar.sine * Radius, -polar.cosine * Radius);
      if (r == rings)
        continue;
      const unsigned int m = circle.Next(j);
      mesh.AddTriangle(b + j, b + m, b + m + n);
      mesh.AddTriangle(b + j, b + m + n, b + j + n);
    }
  }
  const unsigned int last = mesh.Count() - n;
  for (unsigned int j = 0; j < n; ++j)
    mesh.AddTriangle(last + j, last + circle.Next(j), 1);
}

} // namespace Vek::Chart::Library
