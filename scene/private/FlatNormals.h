#pragma once

#include "scene/GpuMesh.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// A list of triangles with the normal of each at its last vertex, for `flat` variables of shaders. Vertices at one
/// position are one, if their normals permit it.
struct FlatTriangles {
  std::vector<GpuMesh::Record> positions, normals;
  std::vector<std::uint32_t> indices;

  /// Empty where normals change within a triangle. Indices must be within the arrays.
  static FlatTriangles Of(const std::vector<GpuMesh::Record>& p_positions,
                          const std::vector<GpuMesh::Record>& p_normals, const std::vector<std::uint32_t>& p_indices);
};

} // namespace Vek::Chart::Scene::Private
