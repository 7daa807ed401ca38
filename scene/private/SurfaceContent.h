#pragma once

#include "scene/Array.h"
#include "scene/GpuMesh.h"
#include "scene/SurfaceMesh.h"
#include "scene/private/PlacedContent.h"

#include <vector>

namespace Vek::Chart::Scene::Private {

class SurfaceContent : public PlacedContent {
public:
  SurfaceContent(const Array1& p_x, const Array1& p_y, const Array1& p_heights);

  void ColorByHeight();
  void SetContours(std::size_t p_most);
  void SetContours(std::vector<double> p_levels);
  void UpdateHeights(const Array1& p_heights);

  void ValuesChanged() override;
  std::size_t Count() const override { return _heights.size(); }
  bool IsSurface() const override { return true; }
  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::vector<QString> Notes() const override;

private:
  Box BoundsOf(const AxisRules& p_rules) const override;
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override;
  Noun Names() const override { return {"height", "heights"}; }
  Point Node(std::size_t p_index) const {
    return {_x[p_index % _x.size()], _y[p_index / _x.size()], _heights[p_index]};
  }
  std::vector<double> ContourLevels() const;
  std::vector<float> VertexValues() const;
  void PlaceNodes();
  Point PlacedNode(std::uint32_t p_index) const;
  void Measure();
  void PlaceContours();

  std::vector<double> _x, _y, _heights;
  bool _isByHeight = true;
  std::size_t _mostContours = 0;
  std::vector<double> _givenLevels;

  // What was placed.
  bool _contoursChanged = true;
  Box _box;                 ///< of the nodes in the scene
  Range _shown;             ///< heights of the nodes that are shown
  std::vector<bool> _holes; ///< one a node
  std::vector<SurfaceMesh::Vector> _positions;
  std::vector<std::uint32_t> _indices;
  GpuMesh _mesh, _lines;
};

} // namespace Vek::Chart::Scene::Private
