#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/OpacityFunction.h"
#include "scene/Plot.h"
#include "scene/VoxelGrid.h"

#include "platform/types/Geometry.h"

#include <array>
#include <vector>

namespace Vek::Chart::Scene {

/// A volume that is looked through. Made by `Figure::Volume`.
///
///     figure.Volume(Io::ReadVolume("head.nrrd")).OpacityBy({{600, 0}, {1300, 0.3}, {2500, 0.8}}).ColorMap("magma");
///
/// Rays: one for each pixel, as `VolumeRaycaster` describes. `Composite` shows all values along it by emission and
/// absorption, lit with the gradient of the values as normal; `Maximum` shows the largest one and `Average` their mean.
/// Rays end at opaque plots, which hide what lies behind them inside the volume as well. The edges of the volume behind
/// it are drawn.
///
/// Opacities belong to values. In Composite mode they are those of a layer whose thickness is a share of the diagonal
/// of the volume, as it is drawn. By default they are 0.9 · s^1.5 at a share s of the colour range; for Maximum and
/// Average they grow to 1 at a quarter of the range. The outer half of the colour bar, away from its ticks, shows the
/// colours in these opacities over the background.
///
/// Samples: by default one per edge of the shortest voxel, at most 1024 along the diagonal of the volume; if they are
/// farther apart than the shortest edge, the figure notes it. Values between the centres of voxels are linear by
/// default, and constant beyond the outermost ones. Missing voxels are transparent; the figure notes their number.
/// Elements are voxels, in the order of the grid; `ColorBy` replaces their values.
///
/// Large volumes: of more than 2048 voxels along an axis, or 2^27 in all, means of cubes of voxels are drawn, which the
/// figure notes. The range of the colours is that of all voxels; quantiles are those of a million at most.
///
/// A pick gives the nearest voxel and its value where a ray reaches half of its opacity, or its maximum.
/// Half-transparent plots are drawn over the whole volume. While the figure moves, a quarter of the samples is taken.
/// Settings upload no voxel.
///
/// \snippet SceneFigureSnippets.cpp VolumePlot
/// \image html parts/VolumePlot.png
/// \ingroup plots
class VEK_SCENE_API VolumePlot : public ColoredPlot<VolumePlot> {
public:
  /// All values along a line of sight, by their opacities; the default.
  VolumePlot& Composite();
  /// The largest value along a line of sight, which the figure notes.
  VolumePlot& Maximum();
  /// The mean of the values along a line of sight, which the figure notes.
  VolumePlot& Average();

  /// The opacities of values.
  VolumePlot& OpacityBy(const OpacityFunction& p_opacity);
  /// Likewise: points by ascending value (see OpacityFunction).
  VolumePlot& OpacityBy(std::vector<OpacityFunction::Point> p_points);
  /// The thickness of a layer that has those opacities, as a share of the diagonal: above 0 to 1, by default 0.05.
  VolumePlot& LayerThickness(double p_share);
  /// Whether Composite is lit, as it is by default.
  VolumePlot& Shading(bool p_shading);
  /// Samples per edge of the shortest voxel, finite and above 0.
  VolumePlot& SamplesPerVoxel(double p_samples);

  /// How values between the centres of voxels are found.
  VolumePlot& Filter(VoxelGrid::Filter p_filter);
  /// The volume is a block of a larger one, of which another figure may have the others: the plot draws the part of it
  /// that lies in the box `p_part`, without edges of the volume. `p_knots` are those of the larger volume (see
  /// VoxelGrid::KnotsOf), from which opacities and samples follow: rays have the samples of one plot, each of them in
  /// one block. Both are in data units. Values and gradients at the faces need two voxels of the neighbours. Throws
  /// std::invalid_argument for an empty box and for a volume that is no block of the larger one.
  VolumePlot& Block(const Types::BoundingBox_Base<double>& p_part, const std::array<std::vector<double>, 3>& p_knots);
  /// Colours by the values of the volume again, the default.
  VolumePlot& ColorByValue();
  /// Replaces the values by as many others, NaN for missing ones. Uploads them alone.
  VolumePlot& UpdateValues(const Array1& p_values);

private:
  friend class Figure;
  explicit VolumePlot(const VoxelGrid& p_volume);
};

} // namespace Vek::Chart::Scene
