#pragma once

#include "scene/Array.h"
#include "scene/Export.h"

#include "library/VolumeImage.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Geometry.h"
#include "platform/types/Range.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QString>

#include <array>
#include <cstddef>
#include <vector>

namespace Vek::Chart::Io {
struct Volume;
} // namespace Vek::Chart::Io

namespace Vek::Chart::Scene {

namespace Private {
class VoxelAxis;
class VoxelPlaces;
struct DrawnPlaces;
class VoxelValues;
} // namespace Private

/// The values of a volume: one number for each voxel of a grid that fills a box.
///
/// Layout: voxel (i, j, k) has the index i + n0 · (j + n1 · k). i counts along +x of the box, j along +y, k along +z,
/// or along −z for Layers::Downwards (depths of an ocean, for example). The voxels are cells: each is 1/n0 × 1/n1 ×
/// 1/n2 of the box, and its value belongs to its centre. Numbers of grid nodes with a spacing have the box of
/// `CellBounds`. Cells of different widths are given by positions along each axis.
///
/// Values: numbers of an array, rounded to float; infinities and NaN are missing. Voxels of a VolumeImage are 0 to 1
/// for bytes (byte / 255), floats as they are. Between the centres, values are interpolated linearly among those of the
/// eight voxels around that are present, with their weights; a position is missing where the weights of the present
/// ones are below one half. Beyond the outermost centres, the values continue as they are there.
///
/// Ownership: values and positions never change. Copies share its values and its 3-D texture, of which there is one in
/// each context (see Ogl::PerContext). A VolumeImage is shared and must not change either.
///
/// Errors: std::invalid_argument for sizes below 1, a number of values other than the product of the sizes, a null or
/// empty image, one that does not have one channel, a box without extent or not finite, and positions that are not
/// finite or not in order. A grid that is larger than the device takes is reported once per context ("largest <=
/// GL_MAX_3D_TEXTURE_SIZE"), as is a failed upload; it then draws nothing.
///
/// \ingroup plots
/// \snippet SceneVolumeSnippets.cpp VoxelGrid
/// \image html parts/VoxelGrid.png
class VEK_SCENE_API VoxelGrid {
public:
  using Point = Types::Vector3_Base<double>;   ///< a position in the scene
  using Box = Types::BoundingBox_Base<double>; ///< a box of the scene
  using Sizes = std::array<int, 3>;            ///< voxels along the three axes, the fastest first
  /// The direction of the third index.
  enum class Layers {
    Upwards,   ///< the first layer is the lowest one
    Downwards, ///< the first layer is the highest one
  };
  /// What the positions along an axis are.
  enum class Positions {
    OfNodes,  ///< of n ≥ 2 values; the box ends at the first and the last one, and cells end half-way between two
    OfBounds, ///< n + 1 ends of n cells, whose values belong to their middles
  };
  /// How values between the centres of voxels are found.
  enum class Filter {
    Nearest, ///< the value of the nearest centre
    Linear,  ///< between the eight centres around, by distance
  };
  /// What a 0 of an image means.
  enum class ZeroVoxels {
    AreMissing, ///< no value, as NaN
    AreZero,    ///< the number 0
  };

  /// The numbers of an array; none of the caller's memory is kept.
  VoxelGrid(const Array1& p_values, const Sizes& p_sizes, const Box& p_box, Layers p_layers = Layers::Upwards);
  /// Numbers with the positions along x, y and z, even or not, that ascend or descend with the index. `p_values` has x
  /// fastest, then y, then z.
  VoxelGrid(const Array1& p_values, const Array1& p_x, const Array1& p_y, const Array1& p_z,
            Positions p_positions = Positions::OfNodes);
  /// A channel of a volume from a file, with its place, name and units. The axes of the grid become the axes x, y and z
  /// that they run along; where a volume is tilted against those, its box is not, and lies around the same centre (see
  /// `Tilt`). Throws std::invalid_argument also for a channel that does not exist.
  VoxelGrid(const Io::Volume& p_volume, std::size_t p_channel = 0); // NOLINT: implicit, so that plots take volumes
  /// The voxels of an image of one channel; its sizes are Height(), Width() and Depth().
  VoxelGrid(boost::shared_ptr<const Library::VolumeImage> p_image, const Box& p_box, Layers p_layers = Layers::Upwards,
            ZeroVoxels p_zeros = ZeroVoxels::AreMissing);

  /// The box of the cells around grid nodes: the first node lies at `p_first`, the next ones `p_spacing` apart.
  static Box CellBounds(const Sizes& p_sizes, const Point& p_first, const Point& p_spacing);
  /// A box around the origin whose voxels are cubes and whose longest side is `p_longest`.
  static Box CubicBounds(const Sizes& p_sizes, double p_longest);

  ///@{
  /// Other values at the same places, or the same voxels at other places: those of a grid of the same sizes, or bounds
  /// and centres of the cells along each axis, as `Knots` returns them. Voxels share their texture wherever they are.
  VoxelGrid WithValues(const Array1& p_values) const;
  VoxelGrid MovedTo(const VoxelGrid& p_places) const;
  VoxelGrid MovedTo(const std::array<std::vector<double>, 3>& p_knots) const;
  ///@}
  /// Means of the present values of blocks of `p_factor`³ voxels, at the upper ends of less; missing where there are
  /// none.
  VoxelGrid Coarsened(int p_factor) const;
  /// The same voxels as a block of a larger grid, all of whose knots are given. VolumeRaycaster and VolumeSlices then
  /// take positions and samples where the larger grid has them, so that blocks continue each other; all else remains
  /// that of the block. Throws std::invalid_argument for a grid of which these voxels are no block.
  VoxelGrid BlockOf(const std::array<std::vector<double>, 3>& p_knots) const;
  /// Bounds and centres of the cells of positions along x, y and z, as `Knots` returns them.
  static std::array<std::vector<double>, 3> KnotsOf(const Array1& p_x, const Array1& p_y, const Array1& p_z,
                                                    Positions p_positions = Positions::OfNodes);
  /// Bounds and centres of the cells along an axis, 0 to 2: bound, centre, bound, …, 2 n + 1 positions by the index.
  std::vector<double> Knots(int p_axis) const;

  QString name;       ///< what the values are, for titles; may be empty
  QString unit;       ///< of the values; may be empty
  QString lengthUnit; ///< of positions; may be empty

  /// Voxels along x, y and z.
  const Sizes& Size() const;
  /// The box that the voxels fill.
  const Box& Bounds() const;
  /// The extent of a voxel; along an uneven axis, of the shortest one.
  Point VoxelSize() const;
  /// The mean extent of the voxels.
  Point MeanVoxelSize() const;
  /// Whether all voxels have the same extent.
  bool IsEven() const;
  /// The largest angle between an axis of the grid in its file and the axis that it has become, in degrees.
  double Tilt() const { return _tilt; }
  /// The smallest and the largest value; empty if all are missing.
  const Types::MinMax_Base<double>& Range() const;
  /// Whether some voxel is missing.
  bool HasMissing() const { return MissingCount() != 0; }
  /// How many voxels are missing.
  std::size_t MissingCount() const;
  /// How many voxels there are.
  std::size_t Count() const;

  /// The value of a voxel; NaN if it is missing or no voxel of the grid.
  double Value(int p_i, int p_j, int p_k) const;
  /// All values in their order, NaN for missing ones.
  std::vector<float> Values() const;
  /// The value at a position, as it is drawn; NaN where it is missing and outside of the box.
  double Sample(const Point& p_position, Filter p_filter = Filter::Linear) const;
  /// The centre of the voxel at a position. Positions outside of the box are moved into it.
  Point NearestCenter(const Point& p_position) const;
  /// The texture coordinate of a position: 0 to 1 within the box, from 1 to 0 along an axis where the first voxel is
  /// the highest one; between the centres of the outermost voxels for Positions::OfNodes.
  Point TexCoord(const Point& p_position) const;
  /// The position as a share of the box: 0 to 1 within it.
  Point Share(const Point& p_position) const;

  /// Binds the 3-D texture on the texture unit `p_unit` (a token: RGL_TEXTURE0 + n), which becomes the active one. In
  /// each context the first call uploads the voxels; changes of the filter upload nothing. False, with nothing bound,
  /// where the device cannot take it.
  ///
  /// A shader reads a texel as `vec4 t = texture3D(volume, coordinate)`: `t.a` is the weight of the present voxels, and
  /// `t.r / t.a` the value where that is at least one half.
  bool Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit, Filter p_filter = Filter::Linear) const;
  /// Binds a texture for grids that are not even: the texture coordinate of a share s of the box is (r(s.x, 1/6),
  /// r(s.y, 1/2), r(s.z, 5/6)) of its 4096 × 3 texels, of which the first and the last one of a row belong to the
  /// shares 0 and
  /// 1. False, with nothing bound, after a report.
  bool BindPlaces(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;
  /// Frees the textures in the scope's context, for all copies.
  void Release(const Utility::Scoped<Rgl>& p_gl) const;

private:
  friend struct Private::DrawnPlaces;
  using Axes = std::array<Private::VoxelAxis, 3>;
  VoxelGrid(boost::shared_ptr<const Private::VoxelValues> p_voxels, const Axes& p_axes);
  VoxelGrid Named(VoxelGrid p_other) const;

  boost::shared_ptr<const Private::VoxelValues> _voxels;
  boost::shared_ptr<const Private::VoxelPlaces> _places;
  boost::shared_ptr<const Private::VoxelPlaces> _whole; ///< of which this is a block; null for none
  Sizes _first{};                                       ///< in it, the first voxel
  double _tilt = 0;
};

} // namespace Vek::Chart::Scene
