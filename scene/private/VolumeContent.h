#pragma once

#include "scene/OpacityFunction.h"
#include "scene/VolumeRaycaster.h"
#include "scene/private/GridContent.h"

#include <optional>

namespace Vek::Chart::Scene::Private {

class VolumeContent : public GridContent {
public:
  using Mode = VolumeRaycaster::Mode;

  explicit VolumeContent(VoxelGrid p_grid);

  void SetMode(Mode p_mode) { _mode = p_mode; }
  void SetOpacities(std::optional<OpacityFunction> p_opacity) { _opacity = std::move(p_opacity); }
  void SetLayer(double p_share) { _layer = p_share; }
  void SetShading(bool p_shading) { _shading = p_shading; }
  void SetSamples(double p_perVoxel) { _samples = p_perVoxel; }

  void ValuesChanged() override;
  bool IsBlended() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> /*p_number*/, const Point& p_scene) const override {
    return VoxelAt(p_scene);
  }
  std::vector<QString> Notes() const override;

private:
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override;
  void ValuesUpdated() override;
  VolumeRaycaster::Settings Settings() const;
  VolumeRaycaster::Settings Settings(const Frame& p_frame) const;
  OpacityFunction Opacities(const ValueScale& p_scale) const;

  Mode _mode = Mode::Composite;
  std::optional<OpacityFunction> _opacity;
  double _layer = 0.05; ///< of the diagonal
  double _samples = 1;  ///< along the edge of a voxel
  bool _shading = true;

  VolumeRaycaster _part;
};

} // namespace Vek::Chart::Scene::Private
