#pragma once

#include "scene/GpuMesh.h"
#include "scene/VolumeSlices.h"
#include "scene/private/GridContent.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// A plane perpendicular to an axis, or any other one.
struct PlaneSlice {
  std::size_t axis = 0;
  double position = 0;
  std::optional<Types::Plane> plane{}; ///< takes the place of axis and position
};

class SlicesContent : public GridContent {
public:
  explicit SlicesContent(VoxelGrid p_grid);

  /// Adds a slice; the first one replaces the default ones.
  void Add(const PlaneSlice& p_slice);
  void Move(std::size_t p_slice, double p_position);
  void Clear();
  /// Leaves out values outside of a range.
  void Show(const Types::MinMax_Base<double>& p_values);
  const std::vector<PlaneSlice>& Slices() const { return _slices; }

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

  std::vector<PlaneSlice> _slices;
  bool _areDefault = true;

  // What was placed.
  std::vector<PlaneSlice> _shown; ///< within the part; positions are those of the scene
  std::vector<Slice> _outlines;
  GpuMesh _lines; ///< along the outlines
  VolumeSlices _part;
};

} // namespace Vek::Chart::Scene::Private
