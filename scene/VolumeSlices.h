#pragma once

#include "scene/Export.h"
#include "scene/PeelPass.h"
#include "scene/PickPass.h"
#include "scene/ValueScale.h"
#include "scene/VoxelGrid.h"

#include "library/ColorMap.h"

#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Geometry.h"
#include "platform/types/Range.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <array>
#include <limits>
#include <vector>

namespace Vek::Chart::Scene {

/// A convex polygon in the box of a volume: its corners in order.
using Slice = std::vector<Types::Vector3_Base<double>>;

/// Plane cuts of a volume, filled with the colours of its values.
///
///     const VolumeSlices slices(grid);
///     const std::vector<Slice> cuts = {slices.Cut(2, 0.5), slices.Cut(Plane(center, normal))};
///     slices.Draw(gl, cuts, ColorMap::Named("viridis"), scale);
///     gl->Color(Qt::black);
///     DrawOutlines(gl, cuts);
///
/// Cuts are plain polygons in the coordinates of the box, drawn under GL's current matrices, depth test, blending and
/// clip planes; both sides are visible. Missing values are left out, neither coloured nor given a depth. Cuts that are
/// translucent (see `Draw`) are drawn from the farthest to the nearest, with GL's blending enabled by the caller.
///
/// Values are those of VoxelGrid::Sample at each pixel. On grids whose cells are uneven, bounds of cells are off by up
/// to 1/8000 of the box.
///
/// Cost: other cuts, colours, ranges and opacities upload no voxel. The GL objects are kept per context
/// (see Ogl::PerContext); slices of copies of one grid share its texture.
///
/// Errors: see VoxelGrid and Ogl::ShaderProgram; what cannot be drawn is reported and left out.
///
/// \ingroup plots
/// \snippet SceneVolumeSnippets.cpp VolumeSlices
/// \image html parts/VolumeSlices.png
class VEK_SCENE_API VolumeSlices {
public:
  /// Values outside of this range are left out as missing ones are; all by default.
  Types::MinMax_Base<double> shown{-std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()};
  /// Whether missing values have the colour that the scale has for them, unless it is transparent.
  bool fillsMissing = false;

  /// The part of the box that is filled; empty for all of it. A pixel belongs to one of two parts with a common face.
  Types::BoundingBox_Base<double> part;

  /// Cuts of that grid. With Filter::Nearest each voxel has one colour.
  explicit VolumeSlices(VoxelGrid p_grid, VoxelGrid::Filter p_filter = VoxelGrid::Filter::Linear);

  /// The grid.
  const VoxelGrid& Grid() const { return _grid; }
  /// Takes another grid and filter; programs are kept.
  void SetGrid(VoxelGrid p_grid, VoxelGrid::Filter p_filter);
  /// The polygon in which a plane cuts the box, counter-clockwise seen from where the normal points; empty where it
  /// does not. A plane that touches the box may give a polygon without an area.
  Slice Cut(const Types::Plane& p_plane) const;
  /// The cut perpendicular to an axis, 0 for x, 1 for y, 2 for z, at a coordinate of it. Throws std::invalid_argument
  /// for another axis.
  Slice Cut(int p_axis, double p_position) const;

  /// Fills polygons that lie in the box with the colours that `p_scale` and `p_colors` give the values. The opacity
  /// runs from `p_lowOpacity`, 0 to 1, at the lower limit of the scale to 1 at the upper one. Missing values are left
  /// out, whatever colour the scale has for them, unless `fillsMissing` is set.
  ///
  /// Polygons of fewer than three corners are left out. With a pass, draws what lies behind its layer alone. All GL
  /// state is left as it was.
  void Draw(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices, const Library::ColorMap& p_colors,
            const ValueScale& p_scale, double p_lowOpacity = 1, const PeelPass* p_pass = nullptr) const;
  /// Fills the same pixels with their depths, packed by DepthCodec. Belongs within a DepthPass.
  void DrawDepths(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices) const;
  /// Draws for a Picker: depths, or ids, with the index of the slice as element.
  void Draw(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices, const PickPass& p_pass) const;
  /// Frees the GL objects of the scope's context but the texture of the grid.
  void Release(const Utility::Scoped<Rgl>& p_gl) const { _programs.Release(p_gl); }

private:
  struct Programs;
  class Painting;

  VoxelGrid _grid;
  VoxelGrid::Filter _filter;
  Ogl::PerContext<Programs> _programs;
};

/// The two ends of each edge of a box.
VEK_SCENE_API std::array<std::array<Types::Vector3_Base<double>, 2>, 12>
Edges(const Types::BoundingBox_Base<double>& p_box);

///@{
/// Draws the outlines of polygons, or the edges of a box, as lines of GL's current width and colour, untextured unless
/// the caller has enabled that.
VEK_SCENE_API void DrawOutlines(Utility::Scoped<Rgl>& p_gl, const std::vector<Slice>& p_slices);
VEK_SCENE_API void DrawEdges(Utility::Scoped<Rgl>& p_gl, const Types::BoundingBox_Base<double>& p_box);
///@}

} // namespace Vek::Chart::Scene
