#include "library/private/mesh/CircularArrowMesh.h"

#include "platform/types/Angle.h"
#include "platform/types/Vector.h"

#include <cmath>
#include <vector>

namespace Vek::Chart::Library::Private {

namespace {

using Types::Angle;
using Vector2 = Types::Vector2_Base<double>;

// The outline, counter-clockwise: along the outer arc from the tail to the neck of the head, round the head, and back
// along the inner arc. All angles are measured counter-clockwise from +x.
//
//     tail  o8 ..              tip
//        \ o7 .               /  \        .
//         \ o6            barb   /  the head's base lies on the ray at 30°:
//          ....                neck        outer barb, outer neck, inner neck, inner barb
constexpr Vector2 Center(0, 0.5);
constexpr double OuterRadius = 0.5;
constexpr double InnerRadius = 0.32;
constexpr double OuterBarbRadius = 0.57;
constexpr double InnerBarbRadius = 0.25;
constexpr double NeckAngle = 390;
constexpr double FirstAngle = 184.1;                     // the outer point that is stored first
constexpr double OuterStep = (355.9 - FirstAngle) / 7;   // mirrors the first point at the other side after seven steps
constexpr double TailAngle = FirstAngle - 2 * OuterStep; // close to 135
constexpr int InnerSteps = 10;
constexpr double InnerStep = (TailAngle - NeckAngle) / InnerSteps; // backwards
constexpr Vector2 Tip(0.2135, 0.95);

Vector2 Direction(double p_degrees) {
  const double radians = Angle::FromDegrees(p_degrees).Radians();
  return {std::cos(radians), std::sin(radians)};
}

/// One stored outline point, and the outward normal of the wall there.
struct Entry {
  Vector2 position;
  Vector2 normal;
};

/// The 30 entries in the order of the outline; the two of a hard corner follow each other.
class Outline {
public:
  Outline() {
    const double backward = -90; // from the direction of a point to the tangent against the arrow
    const double head = NeckAngle;
    for (int k = 0; k <= 8; ++k)
      AddArc(FirstAngle + k * OuterStep, OuterRadius, 1);
    const Vector2 out = Direction(head);
    const Vector2 back = Direction(head + backward);
    const Vector2 outerSide = Outward(Point(head, OuterBarbRadius), Tip);
    const Vector2 innerSide = Outward(Tip, Point(head, InnerBarbRadius));
    Add(Point(head, OuterRadius), Types::Normalize(out + back));
    Add(Point(head, OuterBarbRadius), back);
    Add(Point(head, OuterBarbRadius), outerSide);
    Add(Tip, Types::Normalize(outerSide + innerSide));
    Add(Point(head, InnerBarbRadius), innerSide);
    Add(Point(head, InnerBarbRadius), back);
    Add(Point(head, InnerRadius), Types::Normalize(back - out));
    for (int k = 1; k < InnerSteps; ++k)
      AddArc(head + k * InnerStep, InnerRadius, -1);
    const Vector2 tailOut = Direction(TailAngle);
    const Vector2 tailBack = Direction(TailAngle + backward);
    Add(Point(TailAngle, InnerRadius), -tailOut);
    Add(Point(TailAngle, InnerRadius), tailBack);
    Add(Point(TailAngle, OuterRadius), tailBack);
    Add(Point(TailAngle, OuterRadius), tailOut);
    AddArc(TailAngle + OuterStep, OuterRadius, 1);
  }

  std::vector<Entry> entries;

  // Indices of the entries of the faces, along the arrow from the tail to the neck.
  static int Outer(int p_step) { return (p_step + 28) % 30; } // 0: tail (entry 28 is its first), ..., 11: neck
  static int Inner(int p_step) { return 25 - p_step; }        // 0: tail, ..., 10: neck
  static constexpr int OuterBarb = 10, TipEntry = 12, InnerBarb = 13;

private:
  static Vector2 Point(double p_degrees, double p_radius) { return Center + Direction(p_degrees) * p_radius; }
  static Vector2 Outward(const Vector2& p_from, const Vector2& p_to) {
    return Types::Normalize(Vector2(p_to.y - p_from.y, p_from.x - p_to.x));
  }
  void AddArc(double p_degrees, double p_radius, double p_sign) {
    Add(Point(p_degrees, p_radius), Direction(p_degrees) * p_sign);
  }
  /// Rounds the coordinates to three decimals.
  void Add(const Vector2& p_position, const Vector2& p_normal) {
    entries.push_back({{std::round(p_position.x * 1000) / 1000, std::round(p_position.y * 1000) / 1000}, p_normal});
  }
};

/// The triangles of a face, as entries, counter-clockwise seen from +z.
std::vector<std::array<int, 3>> FaceTriangles() {
  std::vector<std::array<int, 3>> triangles;
  constexpr int OuterSteps = 11;
  // The band between the arcs: each triangle advances on the side that is behind.
  for (int i = 0, j = 0; i < OuterSteps || j < InnerSteps;) {
    const bool outerLags = j == InnerSteps || (i < OuterSteps && (i + 1) * InnerSteps <= (j + 1) * OuterSteps);
    if (outerLags) {
      triangles.push_back({Outline::Outer(i), Outline::Outer(i + 1), Outline::Inner(j)});
      ++i;
    } else {
      triangles.push_back({Outline::Outer(i), Outline::Inner(j + 1), Outline::Inner(j)});
      ++j;
    }
  }
  const int outerNeck = Outline::Outer(OuterSteps);
  const int innerNeck = Outline::Inner(InnerSteps);
  triangles.push_back({Outline::TipEntry, Outline::InnerBarb, innerNeck});
  triangles.push_back({Outline::TipEntry, innerNeck, outerNeck});
  triangles.push_back({Outline::TipEntry, outerNeck, Outline::OuterBarb});
  return triangles;
}

CircularArrowMesh Build() {
  enum { BottomWall, BottomFace, TopWall, TopFace }; // the four vertices of an entry
  CircularArrowMesh mesh{};
  const std::vector<Entry> entries = Outline().entries;
  for (std::size_t k = 0; k < entries.size(); ++k) {
    const float x = static_cast<float>(entries[k].position.x);
    const float y = static_cast<float>(entries[k].position.y);
    const CircularArrowMesh::Triple wall{static_cast<float>(entries[k].normal.x),
                                         static_cast<float>(entries[k].normal.y), 0};
    mesh.positions.at(4 * k + BottomWall) = mesh.positions.at(4 * k + BottomFace) = {x, y, 0};
    mesh.positions.at(4 * k + TopWall) = mesh.positions.at(4 * k + TopFace) = {x, y, CircularArrowMesh::Thickness};
    mesh.normals.at(4 * k + BottomWall) = mesh.normals.at(4 * k + TopWall) = wall;
    mesh.normals.at(4 * k + BottomFace) = {0, 0, -1};
    mesh.normals.at(4 * k + TopFace) = {0, 0, 1};
  }

  std::size_t used = 0;
  const auto add = [&](int p_a, int p_b, int p_c) {
    for (const int index : {p_a, p_b, p_c})
      mesh.indices.at(used++) = index;
  };
  for (const auto& [a, b, c] : FaceTriangles()) {
    add(4 * a + TopFace, 4 * b + TopFace, 4 * c + TopFace);
    add(4 * a + BottomFace, 4 * c + BottomFace, 4 * b + BottomFace);
  }
  const int count = static_cast<int>(entries.size());
  for (int p = 0; p < count; ++p) {
    const int q = (p + 1) % count;
    if (entries[static_cast<std::size_t>(p)].position == entries[static_cast<std::size_t>(q)].position)
      continue; // the two entries of a hard corner
    add(4 * p + BottomWall, 4 * q + BottomWall, 4 * q + TopWall);
    add(4 * p + BottomWall, 4 * q + TopWall, 4 * p + TopWall);
  }
  return mesh;
}

} // namespace

const CircularArrowMesh& CircularArrowMesh::Instance() {
  static const CircularArrowMesh Mesh = Build();
  return Mesh;
}

} // namespace Vek::Chart::Library::Private
