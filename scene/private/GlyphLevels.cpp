#include "scene/InstancedMesh.h"

#include "library/Icosphere.h"
#include "library/VectorSymbol.h"
#include "platform/ogl/VertexData.h"

#include <array>
#include <cmath>

// Levels of detail of spheres and arrows.

namespace Vek::Chart::Scene {

namespace {

using Point = Types::Vector3_Base<double>;
using Level = InstancedMesh::Level;

constexpr double Error = 0.2; // pixels

/// A regular polygon of the area of the unit circle.
GpuMesh Disc(std::uint32_t p_corners) {
  const double turn = 2 * M_PI / p_corners;
  const double radius = std::sqrt(turn / std::sin(turn));
  std::vector<Point> positions;
  GpuMesh::Arrays arrays;
  for (std::uint32_t i = 0; i < p_corners; ++i)
    positions.emplace_back(radius * std::cos(i * turn), radius * std::sin(i * turn), 0);
  // Triangles across the polygon, not around a corner, so that none is long and thin.
  for (std::uint32_t step = 1; step < p_corners; step *= 2)
    for (std::uint32_t i = 0; i + step < p_corners; i += 2 * step)
      if (const std::uint32_t third = i + 2 * step < p_corners ? i + 2 * step : 0; third != i)
        arrays.indices.insert(arrays.indices.end(), {i, i + step, third});
  const std::vector<Point> normals(p_corners, Point(0, 0, 1));
  arrays.positions = positions;
  arrays.normals = normals;
  return GpuMesh(arrays);
}

GpuMesh SphereMesh(unsigned int p_divisions) {
  const Library::Icosphere sphere(p_divisions);
  GpuMesh::Arrays arrays;
  arrays.positions = sphere.positions;
  arrays.normals = sphere.positions;
  arrays.indices = sphere.indices;
  return GpuMesh(arrays);
}

// An arrow of length 1, as parts of its length.
constexpr double Shaft = 1.0 / 27, Head = 1.0 / 9, Neck = 2.0 / 3; // radii; where the head begins

/// A vertex of an outline (see InstancedMesh::Level::Facing::Outline).
struct OutlineVertex {
  Point position;
  double least = -1000; ///< the least z that the projection has
  bool isHead = false;
};

GpuMesh Outline(const std::vector<OutlineVertex>& p_vertices, std::vector<std::uint32_t> p_indices) {
  const double slant = std::atan(Head / (1 - Neck));
  std::vector<Point> positions, normals;
  for (const OutlineVertex& vertex : p_vertices) {
    positions.push_back(vertex.position);
    normals.emplace_back(vertex.isHead ? std::cos(slant) : 1, vertex.least, vertex.isHead ? std::sin(slant) : 0);
  }
  GpuMesh::Arrays arrays;
  arrays.positions = positions;
  arrays.normals = normals;
  arrays.indices = std::move(p_indices);
  return GpuMesh(arrays);
}

/// Area and, nearly, centre of an arrow.
///
///     1---2
///      \ /
///       0
GpuMesh ArrowTriangle() {
  constexpr double Far = 0.9, End = 0.15;
  constexpr double Area = 2 * Shaft * Neck + Head * (1 - Neck), Half = Area / Far;
  return Outline({{{0, -End, 0}}, {{Half, End, Far}, Far}, {{-Half, End, Far}, Far}}, {0, 1, 2});
}

/// Two triangles.
///
///      0
///     1-2
///      3
///     4-5
GpuMesh SlimArrow() {
  return Outline({{{0, Head, 1}, Neck, true},
                  {{-Head, -Head / 2, Neck}, -1000, true},
                  {{Head, -Head / 2, Neck}, -1000, true},
                  {{0, 0, Neck}},
                  {{-2 * Shaft, 0, 0}},
                  {{2 * Shaft, 0, 0}}},
                 {0, 1, 2, 3, 4, 5});
}

/// A head of two triangles, with its base where it is seen, and a shaft of two.
GpuMesh FlatArrow() {
  return Outline({{{0, Head, 1}, Neck, true},
                  {{-Head, 0, Neck}, -1000, true},
                  {{Head, 0, Neck}, -1000, true},
                  {{0, -Head, Neck}, -1000, true},
                  {{-Shaft, 0, 0}},
                  {{Shaft, 0, 0}},
                  {{Shaft, 0, Neck}},
                  {{-Shaft, 0, Neck}}},
                 {0, 1, 2, 1, 3, 2, 4, 5, 6, 4, 6, 7});
}

/// A head with an octagon in place of the round base, and a shaft of three triangles.
GpuMesh RoundArrow() {
  constexpr int Corners = 8;
  std::vector<OutlineVertex> vertices{{{0, Head, 1}, Neck, true}};
  std::vector<std::uint32_t> indices;
  for (std::uint32_t i = 0; i < Corners; ++i) {
    const double angle = 2 * M_PI * i / Corners;
    const double along = Head * std::sin(angle);
    vertices.push_back({{Head * std::cos(angle), along, Neck}, along > 0 ? Neck : -1000, true});
    if (i >= 2)
      indices.insert(indices.end(), {1, i, i + 1});
  }
  indices.insert(indices.end(), {0, 1, 1 + Corners / 2});
  const auto shaft = static_cast<std::uint32_t>(vertices.size());
  for (const auto& [side, end] : {std::pair(-1, 0.0), {1, 0.0}, {1, Neck}, {-1, Neck}})
    vertices.push_back({{side * Shaft, 0, end}});
  vertices.push_back({{0, -Shaft, 0}});
  indices.insert(indices.end(),
                 {shaft, shaft + 1, shaft + 2, shaft, shaft + 2, shaft + 3, shaft + 4, shaft + 1, shaft});
  return Outline(vertices, std::move(indices));
}

GpuMesh SolidArrow(unsigned int p_segments) {
  Ogl::VertexData data;
  Library::VectorSymbol(Model::Symbol::ShapeArrow3D, p_segments).BuildShape(data);
  return GpuMesh(data);
}

Level OutlineLevel(GpuMesh p_mesh, double p_mostPixels) {
  Level level(std::move(p_mesh));
  level.mostPixels = p_mostPixels;
  level.facing = Level::Facing::Outline;
  return level;
}

} // namespace

std::vector<Level> InstancedMesh::Spheres() {
  std::vector<Level> levels;
  for (const std::uint32_t corners : {3U, 4U, 6U, 8U, 16U, 64U}) {
    const double turn = 2 * M_PI / corners;
    const double radius = std::sqrt(turn / std::sin(turn));
    Level level(Disc(corners));
    level.scale = 0.5;
    level.facing = Level::Facing::Sphere;
    // Corners lie outside of the circle, the middles of edges inside.
    level.mostPixels = 2 * Error / std::max(radius - 1, 1 - radius * std::cos(turn / 2));
    levels.push_back(std::move(level));
  }
  constexpr unsigned int Divisions = 3;
  levels.emplace_back(SphereMesh(Divisions));
  levels.back().scale = 0.5;
  return levels;
}

std::vector<Level> InstancedMesh::Arrows(unsigned int p_segments) {
  std::vector<Level> levels;
  levels.push_back(OutlineLevel(ArrowTriangle(), Error / 0.1));
  levels.push_back(OutlineLevel(SlimArrow(), Error / (Head / 2)));
  levels.push_back(OutlineLevel(FlatArrow(), Error / (0.3 * Head)));   // a square in place of the base
  levels.push_back(OutlineLevel(RoundArrow(), Error / (0.3 * Shaft))); // a corner in place of the end
  for (const unsigned int segments : {4U, 8U, p_segments}) {
    if (segments > p_segments)
      continue;
    Level level(SolidArrow(segments));
    const double flatness = 1 - std::cos(M_PI / segments);
    // The outline lies inside of the round one, by the flatness of edges that are seen from the side.
    level.scale = 1.0 / 3;
    level.mostPixels = Error / (flatness * Head);
    levels.push_back(std::move(level));
    if (segments == p_segments)
      break;
  }
  levels.back().mostPixels = std::numeric_limits<double>::infinity();
  return levels;
}

} // namespace Vek::Chart::Scene
