#pragma once

#include "scene/Array.h"
#include "scene/GpuMesh.h"
#include "scene/private/PlotContent.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

class MeshContent : public PlotContent {
public:
  /// Three indices a triangle. Throws std::invalid_argument for an index past the end.
  MeshContent(std::vector<Point> p_positions, std::vector<std::uint32_t> p_indices);

  void UpdatePositions(const Array3& p_positions);

  void ValuesChanged() override { _valuesChanged = true; }
  std::size_t Count() const override { return _positions.size(); }
  Box Bounds(const AxisRules& p_rules) const override;
  Box Place(const Placement& p_placement) override;
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void Release(const Utility::Scoped<Rgl>& p_gl) const override;
  std::vector<QString> Notes() const override;

private:
  void PlaceVertices();

  std::vector<Point> _positions;
  std::vector<std::uint32_t> _indices;
  std::vector<bool> _isUsed; ///< whether a triangle has the vertex

  // What was placed.
  bool _isPlaced = false, _positionsChanged = true, _valuesChanged = true;
  Placement _placement;
  std::size_t _missing = 0, _hidden = 0;
  std::vector<bool> _isShown; ///< one a vertex
  Box _box;                   ///< of the vertices in the scene
  GpuMesh _mesh;
};

} // namespace Vek::Chart::Scene::Private
