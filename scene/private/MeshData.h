#pragma once

#include "scene/GpuMesh.h"
#include "scene/private/DataTransform.h"

#include "library/ObjScene.h"

#include <QColor>
#include <QImage>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Triangles that are drawn together, with vertices of their own.
struct MeshPart {
  std::vector<std::uint32_t> elements;      ///< the vertex of the plot that each one is
  std::vector<std::uint32_t> indices;       ///< three a triangle
  std::vector<GpuMesh::Rgba> colors;        ///< one a vertex, or none
  std::vector<GpuMesh::TexCoord> texCoords; ///< one a vertex, or none
  QImage texture;                           ///< null without texture coordinates
  QColor tint;                              ///< of the texture
};

/// The triangles of a mesh plot.
struct MeshData {
  std::vector<Point> positions; ///< of the vertices of the plot
  std::vector<Point> normals;   ///< one a vertex, or none
  std::vector<MeshPart> parts;
  std::size_t unreadTextures = 0; ///< images that cannot be read
};

/// Triangles of one colour. Throws std::invalid_argument for an index past the end.
MeshData DataOf(std::vector<Point> p_positions, std::vector<std::uint32_t> p_indices);
/// The triangles of a file with its normals, and the colours of its vertices times those of their materials. There are
/// no colours where all vertices are white and no material has another colour than by default. Each texture makes a
/// part, with the diffuse colour of its material as tint. A vertex of several materials is one of the plot, and several
/// of the parts. Throws std::invalid_argument for indices past the end.
MeshData DataOf(const Library::ObjScene& p_mesh);

/// A normal on axes that are stretched, or logarithmic, at a point of the data.
Point PlacedNormal(const DataTransform& p_transform, const Point& p_position, const Point& p_normal);

} // namespace Vek::Chart::Scene::Private
