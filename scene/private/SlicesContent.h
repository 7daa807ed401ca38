#pragma once

#include "scene/GpuMesh.h"
#include "scene/VolumeSlices.h"
#include "scene/private/GridContent.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// A plane perpendicular to an axis.
struct AxisSlice {
  std::size_t axis = 0;
  double position = 0;
};

class SlicesContent : public GridContent {
public:
  explicit SlicesContent(VoxelGrid p_grid);

  /// Adds a slice; the first one replaces the default ones.
  void Add(const AxisSlice& p_slice);
  void Move(std::size_t p_slice, double p_position);
  void Clear();
  const std::vector<AxisSlice>& Slices() const { return _slices; }

  void ValuesChanged() override;
  bool IsPeeled() const override { return true; }
  void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) override;
  void DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) override;
  Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const override;
  std::vector<QString> Notes() const override;

private:
  Box PlaceChanged(const Changes& p_changes) override;
  void ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const override;
  void ValuesUpdated() override;

  std::vector<AxisSlice> _slices;
  bool _areDefault = true;

  // What was placed.
  std::vector<AxisSlice> _shown; ///< within the part, in the scene
  std::vector<Slice> _outlines;
  GpuMesh _lines; ///< along the outlines
  VolumeSlices _part;
};

} // namespace Vek::Chart::Scene::Private
