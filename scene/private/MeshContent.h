#pragma once

#include "scene/GpuMesh.h"
#include "scene/private/PlacedContent.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

class MeshContent : public PointsContent {
public:
  /// Three indices a triangle. Throws std::invalid_argument for an index past the end.
  MeshContent(std::vector<Point> p_positions, std::vector<std::uint32_t> p_indices);

  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;

private:
  bool IsUsed(std::size_t p_index) const override { return _isUsed[p_index]; }
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override { _mesh.Release(p_gl); }
  Noun Names() const override { return {"vertex", "vertices"}; }
  void PlaceVertices();

  std::vector<std::uint32_t> _indices;
  std::vector<bool> _isUsed; ///< whether a triangle has the vertex

  // What was placed.
  std::vector<bool> _isShown; ///< one a vertex
  Box _box;                   ///< of the vertices in the scene
  GpuMesh _mesh;
};

} // namespace Vek::Chart::Scene::Private
