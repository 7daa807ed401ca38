#include "library/private/mesh/GlyphShapes.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Library::Private {

namespace {

using Types::Vector3_Base;

constexpr double Third = 0.3333333333333333;
constexpr double Ninth = 0.1111111111111111;
constexpr double ShaftLength = 2.0;
constexpr Vector3_Base<double> Up(0, 1, 0); // of flat arrows, which lie in the x-z plane

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

} // namespace

void BuildPoint(const GlyphSize&, GlyphMesh& p_mesh) {
  p_mesh.AddVertex(0, 0, 0);
}

void BuildArrowHead1D(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  p_mesh.vertices = {{0, 0, p_size.length}, {-Third, 0, 0}, {Third, 0, 0}};
  p_mesh.normals.assign(p_mesh.vertices.size(), Up);
  p_mesh.AddLine(1, 0);
  p_mesh.AddLine(2, 0);
}

void BuildArrow1D(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  p_mesh.vertices = {{0, 0, 0}, {0, 0, p_size.length}, {-Third, 0, ShaftLength}, {Third, 0, ShaftLength}};
  p_mesh.normals.assign(p_mesh.vertices.size(), Up);
  p_mesh.AddLine(0, 1);
  p_mesh.AddLine(2, 1);
  p_mesh.AddLine(3, 1);
}

void BuildArrowHead2D(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  p_mesh.vertices = {{0, 0, p_size.length}, {-Third, 0, 0}, {Third, 0, 0}};
  p_mesh.AddTriangle(0, 2, 1);
}

void BuildArrow2D(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  constexpr double S = ShaftLength;
  p_mesh.vertices = {{0, 0, p_size.length}, {-Third, 0, S}, {Third, 0, S}, // head
                     {-Ninth, 0, 0},        {Ninth, 0, 0},  {-Ninth, 0, S}, {Ninth, 0, S}};
  p_mesh.AddTriangle(0, 2, 1);
  p_mesh.AddTriangle(3, 5, 6);
  p_mesh.AddTriangle(3, 6, 4);
}

void BuildArrowHead3D(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  const Circle circle(p_size.resolution);
  constexpr unsigned int PerSegment = 3;
  p_mesh.Reserve(1 + std::size_t(PerSegment) * circle.Segments(), std::size_t(6) * circle.Segments());
  p_mesh.AddVertex(0, 0, 0);
  for (unsigned int j = 0; j < circle.Segments(); ++j) {
    const auto [c, s] = circle.At(j);
    const unsigned int k = p_mesh.Count();
    const unsigned int next = 1 + PerSegment * circle.Next(j);
    p_mesh.AddVertex(c * Third, s * Third, 0);
    p_mesh.AddVertex(c * Third, s * Third, 0);
    p_mesh.AddVertex(0, 0, p_size.length);
    p_mesh.AddTriangle(0, next, k);             // base cap
    p_mesh.AddTriangle(k + 1, next + 1, k + 2); // side
  }
}

//  z = 3     6           one segment of the outline, with the vertices that it adds;
//           /            two at a corner keep the faces on its sides apart
//  z = 2   5,4 - 3,2
//                 |
//  z = 0         1,0 - axis
void BuildArrow3D(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  const Circle circle(p_size.resolution);
  constexpr unsigned int PerSegment = 7;
  p_mesh.Reserve(1 + std::size_t(PerSegment) * circle.Segments(), std::size_t(18) * circle.Segments());
  p_mesh.AddVertex(0, 0, 0);
  for (unsigned int j = 0; j < circle.Segments(); ++j) {
    const auto [c, s] = circle.At(j);
    const unsigned int k = p_mesh.Count();
    const unsigned int next = 1 + PerSegment * circle.Next(j);
    p_mesh.AddVertex(c * Ninth, s * Ninth, 0);
    p_mesh.AddVertex(c * Ninth, s * Ninth, 0);
    p_mesh.AddVertex(c * Ninth, s * Ninth, ShaftLength);
    p_mesh.AddVertex(c * Ninth, s * Ninth, ShaftLength);
    p_mesh.AddVertex(c * Third, s * Third, ShaftLength);
    p_mesh.AddVertex(c * Third, s * Third, ShaftLength);
    p_mesh.AddVertex(0, 0, p_size.length);
    p_mesh.AddTriangle(0, next, k); // bottom cap
    p_mesh.AddTriangle(k + 1, next + 1, next + 2);
    p_mesh.AddTriangle(k + 1, next + 2, k + 2); // shaft
    p_mesh.AddTriangle(k + 4, next + 3, next + 4);
    p_mesh.AddTriangle(k + 4, k + 3, next + 3); // back of the head
    p_mesh.AddTriangle(k + 5, next + 5, k + 6); // head
  }
}

namespace {

constexpr double H = 0.5; // half of a unit
using Face = Vector3_Base<double>[4];

constexpr Face PlaneFace = {{-H, -H, 0}, {H, -H, 0}, {H, H, 0}, {-H, H, 0}};

constexpr Face CubeFaces[] = {
    {{-H, -H, H}, {H, -H, H}, {H, H, H}, {-H, H, H}},     // +z
    {{H, -H, -H}, {-H, -H, -H}, {-H, H, -H}, {H, H, -H}}, // -z
    {{-H, H, -H}, {-H, -H, -H}, {-H, -H, H}, {-H, H, H}}, // -x
    {{H, -H, -H}, {H, H, -H}, {H, H, H}, {H, -H, H}},     // +x
    {{-H, -H, -H}, {H, -H, -H}, {H, -H, H}, {-H, -H, H}}, // -y
    {{H, H, -H}, {-H, H, -H}, {-H, H, H}, {H, H, H}},     // +y
};

void AddFace(const Face& p_corners, GlyphMesh& p_mesh) {
  const unsigned int b = p_mesh.Count();
  p_mesh.AddTriangle(b, b + 1, b + 2);
  p_mesh.AddTriangle(b, b + 2, b + 3);
  for (const Vector3_Base<double>& corner : p_corners)
    p_mesh.AddVertex(corner);
}

} // namespace

void BuildPlane(const GlyphSize&, GlyphMesh& p_mesh) {
  AddFace(PlaneFace, p_mesh);
}

void BuildCube(const GlyphSize&, GlyphMesh& p_mesh) {
  for (const Face& face : CubeFaces)
    AddFace(face, p_mesh);
}

void BuildCylinder(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  const Circle circle(p_size.resolution);
  p_mesh.Reserve(std::size_t(2) * p_size.resolution, std::size_t(6) * p_size.resolution);
  for (unsigned int j = 0; j < p_size.resolution; ++j) {
    const auto [c, s] = circle.At(j);
    const unsigned int b = 2 * j;
    const unsigned int next = 2 * circle.Next(j);
    p_mesh.AddVertex(H * c, H * s, -0.5);
    p_mesh.AddVertex(H * c, H * s, 0.5);
    p_mesh.AddTriangle(b, next, b + 1);
    p_mesh.AddTriangle(b + 1, next, next + 1);
  }
}

void BuildCone(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  const Circle circle(p_size.resolution);
  p_mesh.Reserve(std::size_t(2) * p_size.resolution, std::size_t(3) * p_size.resolution);
  for (unsigned int j = 0; j < p_size.resolution; ++j) {
    const auto [c, s] = circle.At(j);
    p_mesh.AddVertex(H * c, H * s, 0);
    p_mesh.AddVertex(0, 0, p_size.length);
    p_mesh.AddTriangle(2 * j, 2 * circle.Next(j), 2 * j + 1);
  }
}

namespace {

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

void AddRingHead(GlyphMesh& p_mesh, const RingPoints& p_ring) {
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

void AddRingFace(GlyphMesh& p_mesh, unsigned int p_segments, double p_z) {
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
  RingWalls(GlyphMesh& p_mesh, unsigned int p_frontCount)
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

  GlyphMesh& _mesh;
  unsigned int _frontCount;
};

} // namespace

void BuildCircularArrow(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  constexpr unsigned int MaximalSegments = 24;
  constexpr double Front = 0.5;
  AddRingFace(p_mesh, std::min(p_size.resolution, MaximalSegments), Front);

  const unsigned int frontCount = p_mesh.Count();
  for (unsigned int v = 0; v < frontCount; ++v)
    p_mesh.AddVertex(p_mesh.vertices[v].x, p_mesh.vertices[v].y, -Front);
  const std::vector<unsigned int> front = p_mesh.indices;
  for (std::size_t i = 0; i < front.size(); i += 3) // reversed, to face backwards
    p_mesh.AddTriangle(front[i] + frontCount, front[i + 2] + frontCount, front[i + 1] + frontCount);
  RingWalls(p_mesh, frontCount).AddAll();
}

void BuildCrosshair(const GlyphSize&, GlyphMesh& p_mesh) {
  p_mesh.vertices = {{-0.5, 0, 0}, {0.5, 0, 0}, {0, -0.5, 0}, {0, 0.5, 0}, {0, 0, -0.5}, {0, 0, 0.5}};
  p_mesh.AddLine(0, 1);
  p_mesh.AddLine(2, 3);
  p_mesh.AddLine(4, 5);
}

void BuildSphere(const GlyphSize& p_size, GlyphMesh& p_mesh) {
  const Circle circle(p_size.resolution);
  const unsigned int n = p_size.resolution;
  const unsigned int rings = n / 2 - 1;
  p_mesh.Reserve(2 + std::size_t(n) * rings, std::size_t(6) * n * rings);

  p_mesh.AddVertex(0, 0, -H);
  p_mesh.AddVertex(0, 0, H);
  for (unsigned int j = 0; j < n; ++j)
    p_mesh.AddTriangle(0, 2 + circle.Next(j), 2 + j);
  for (unsigned int r = 1; r <= rings; ++r) {
    const Direction polar = circle.At(r);
    const unsigned int b = p_mesh.Count();
    for (unsigned int j = 0; j < n; ++j) {
      const auto [c, s] = circle.At(j);
      p_mesh.AddVertex(c * polar.sine * H, s * polar.sine * H, -polar.cosine * H);
      if (r == rings)
        continue;
      const unsigned int m = circle.Next(j);
      p_mesh.AddTriangle(b + j, b + m, b + m + n);
      p_mesh.AddTriangle(b + j, b + m + n, b + j + n);
    }
  }
  const unsigned int last = p_mesh.Count() - n;
  for (unsigned int j = 0; j < n; ++j)
    p_mesh.AddTriangle(last + j, last + circle.Next(j), 1);
}

} // namespace Vek::Chart::Library::Private
