#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"
#include "scene/VoxelGrid.h"

#include "platform/types/Geometry.h"

#include <array>
#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene {

/// Plane slices through a volume, perpendicular to the axes or oblique, in the colours of its values. Made by
/// `Figure::Slices`.
///
///     figure.Slices(Io::ReadVolume("ocean.nc")).At(2, -500).At(0, 330).ColorMap("cividis").ColorTitle("Salinity");
///
/// Slices: one through the middle of each axis, until `At` or `Clear` is called. Their positions are in data units;
/// cells of different widths are drawn to scale. The figure notes all positions, and slices that lie outside of the
/// axes or of the volume. The edges of the volume behind the slices are drawn, and the outlines of the slices.
///
/// Values: those of `VoxelGrid::Sample` at each pixel, linear between the centres of voxels by default, constant beyond
/// the outermost ones. (On a logarithmic axis, linear in the logarithm of the position.) Missing voxels are transparent
/// unless `MissingColor` gives them a colour; the figure notes their number. Elements are voxels, in the order of the
/// grid; `ColorBy` replaces their values.
///
/// Large volumes: of more than 2048 voxels along an axis, or 2^27 in all, means of cubes of voxels are drawn, which the
/// figure notes. The range of the colours is that of all voxels; quantiles are those of a million at most.
///
/// A pick gives the nearest voxel and the value at the point. Other positions, colours and ranges upload no voxel.
///
/// \snippet SceneFigureSnippets.cpp SlicesPlot
/// \image html parts/SlicesPlot.png
/// \ingroup plots
class VEK_SCENE_API SlicesPlot : public ColoredPlot<SlicesPlot> {
public:
  /// Adds a slice perpendicular to an axis, 0 to 2 for x to z. The first one replaces the default slices. Throws
  /// std::invalid_argument for another axis and a position that is not finite.
  SlicesPlot& At(int p_axis, double p_position);
  /// Adds a slice in any plane, with point and normal in data units (on a logarithmic axis, the normal counts in
  /// decades, as in `Figure::Clip`); the figure notes the number of such slices. The first one replaces the default
  /// slices. Throws std::invalid_argument for a plane that is not finite or has no normal.
  ///
  ///     figure.Slices(head).At({{0, 0, 20}, {0, 1, 1}}); // tilted by 45 degrees about x
  SlicesPlot& At(const Types::Plane& p_plane);
  /// Moves a slice along its axis, by its number in the order of adding; the default ones are 0 to 2 for x to z. Throws
  /// std::invalid_argument for a slice that does not exist or is oblique, and for a position that is not finite.
  SlicesPlot& Move(std::size_t p_slice, double p_position);
  /// Removes all slices.
  SlicesPlot& Clear();
  /// A slice: the axis that it is perpendicular to, and its position.
  struct Slice {
    int axis = 0;        ///< 0 to 2 for x to z; −1 for an oblique slice
    double position = 0; ///< in data units; 0 for an oblique slice
  };
  /// How many slices there are.
  std::size_t SliceCount() const;
  /// A slice by its number. Throws std::invalid_argument for one that does not exist.
  Slice SliceAt(std::size_t p_slice) const;

  /// How values between the centres of voxels are found; VoxelGrid::Filter::Nearest shows the voxels.
  SlicesPlot& Filter(VoxelGrid::Filter p_filter);
  /// Leaves out values below `p_low` and above `p_high`, pixel by pixel; infinite for no limit. Throws
  /// std::invalid_argument for limits that are NaN or descend.
  SlicesPlot& Show(double p_low, double p_high);
  /// The volume is a block of a larger one, of which another figure may have the others: the plot draws the part of it
  /// that lies in the box `p_part`, without edges of the volume and outlines of slices. `p_knots` are those of the
  /// larger volume (see VoxelGrid::KnotsOf), so that the pixels of all blocks together are those of one plot; both are
  /// in data units. Values at the faces need a voxel of the neighbours. Throws std::invalid_argument for an empty box
  /// and for a volume that is no block of the larger one.
  SlicesPlot& Block(const Types::BoundingBox_Base<double>& p_part, const std::array<std::vector<double>, 3>& p_knots);
  /// Colours by the values of the volume again, the default.
  SlicesPlot& ColorByValue();
  /// Replaces the values by as many others, NaN for missing ones. Uploads them alone.
  SlicesPlot& UpdateValues(const Array1& p_values);

private:
  friend class Figure;
  explicit SlicesPlot(const VoxelGrid& p_volume);
};

} // namespace Vek::Chart::Scene
