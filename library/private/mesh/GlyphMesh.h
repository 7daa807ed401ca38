#pragma once

#include "platform/types/Vector.h"

#include <cstddef>
#include <new>
#include <vector>

namespace Vek::Chart::Library::Private {

/// The mesh of a glyph while it is built, vertex by vertex and primitive by primitive.
struct GlyphMesh {
  using Point = Types::Vector3_Base<double>;

  std::vector<Point> vertices;
  std::vector<Point> normals; ///< empty, or one per vertex
  std::vector<unsigned int> indices;

  /// Reserves memory for a mesh of known size. Throws std::bad_alloc also for one that no memory can hold.
  void Reserve(std::size_t p_vertices, std::size_t p_indices) {
    if (p_vertices > vertices.max_size() || p_indices > indices.max_size())
      throw std::bad_alloc(); // vectors throw std::length_error
    vertices.reserve(p_vertices);
    indices.reserve(p_indices);
  }

  /// The number of vertices, which is the index of the next one.
  unsigned int Count() const { return static_cast<unsigned int>(vertices.size()); }

  void AddVertex(double p_x, double p_y, double p_z) { vertices.emplace_back(p_x, p_y, p_z); }
  void AddVertex(const Point& p_point) { vertices.push_back(p_point); }
  /// Adds a copy of an existing vertex.
  void AddCopy(unsigned int p_index) { AddVertex(Point(vertices[p_index])); }

  void AddLine(unsigned int p_a, unsigned int p_b) { indices.insert(indices.end(), {p_a, p_b}); }
  void AddTriangle(unsigned int p_a, unsigned int p_b, unsigned int p_c) {
    indices.insert(indices.end(), {p_a, p_b, p_c});
  }
};

} // namespace Vek::Chart::Library::Private
