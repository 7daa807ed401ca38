#pragma once

#include "platform/types/Vector.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Writes a mesh into the arrays of its owner, vertex by vertex and primitive by primitive.
class MeshBuilder {
public:
  using Point = Types::Vector3_Base<double>;

  MeshBuilder(std::vector<Point>& p_vertices, std::vector<unsigned int>& p_indices)
      : _vertices(p_vertices)
      , _indices(p_indices) {}

  /// Makes room for a mesh of known size, so that a large one is not moved while it grows.
  void Reserve(std::size_t p_vertices, std::size_t p_indices) {
    _vertices.reserve(p_vertices);
    _indices.reserve(p_indices);
  }

  /// How many vertices there are: the index of the next one.
  unsigned int Count() const { return static_cast<unsigned int>(_vertices.size()); }

  void AddVertex(double p_x, double p_y, double p_z) { _vertices.emplace_back(p_x, p_y, p_z); }
  void AddVertex(const Point& p_point) { _vertices.push_back(p_point); }
  /// Adds a copy of a vertex that is there already.
  void AddCopy(unsigned int p_index) { AddVertex(Point(_vertices[p_index])); }

  void AddLine(unsigned int p_a, unsigned int p_b) { _indices.insert(_indices.end(), {p_a, p_b}); }
  void AddTriangle(unsigned int p_a, unsigned int p_b, unsigned int p_c) {
    _indices.insert(_indices.end(), {p_a, p_b, p_c});
  }

private:
  std::vector<Point>& _vertices;
  std::vector<unsigned int>& _indices;
};

} // namespace Vek::Chart::Library::Private
