#pragma once

#include "scene/GpuMesh.h"
#include "scene/TubeMesh.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Lines as tubes, or as ribbons in the plane z = const, whose colours change without a new mesh.
class LineTubes {
public:
  /// Replaces the lines; `value` of their points is not read. `p_values` has one value for each point of all lines, one
  /// after the other, or none. Throws std::invalid_argument for more than 2^24 points.
  void SetLines(std::vector<std::vector<TubeMesh::Point>> p_lines, const std::vector<float>& p_values, bool p_isFlat);
  /// Replaces the values.
  void SetValues(const std::vector<float>& p_values);

  /// The point, counted over all lines, that a triangle belongs to; empty past the end.
  std::optional<std::size_t> PointOf(std::uint32_t p_triangle) const;
  const GpuMesh& Mesh() const { return _mesh; }

private:
  GpuMesh _mesh;
  std::vector<std::uint32_t> _points;    ///< the point of each vertex
  std::vector<std::uint32_t> _triangles; ///< the point of each triangle
};

} // namespace Vek::Chart::Scene::Private
