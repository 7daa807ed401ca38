#pragma once

#include "scene/GpuMesh.h"
#include "scene/private/GridContent.h"

#include <QColor>

#include <vector>

namespace Vek::Chart::Scene::Private {

class IsosurfaceContent : public GridContent {
public:
  /// Throws std::invalid_argument without levels, and for one that is not finite.
  IsosurfaceContent(VoxelGrid p_grid, const std::vector<double>& p_levels);

  void SetLevels(const std::vector<double>& p_levels);
  void ColorByLevel();

  void ValuesChanged() override;
  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::vector<QString> Notes() const override;
  Legend::Mark Mark() const override { return Legend::Mark::Patch; }

private:
  /// The surface of a level.
  struct Surface {
    double level = 0;
    std::vector<Point> vertices;
    GpuMesh mesh;
  };

  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override;
  void PlaceSurfaces();
  void PlaceValues();

  std::vector<double> _levels; ///< ascending
  bool _isByLevel = true;
  bool _levelsChanged = true;

  // What was placed.
  std::vector<Surface> _surfaces; ///< of the levels that have one
};

} // namespace Vek::Chart::Scene::Private
