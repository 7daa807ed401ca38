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

#include <array>

namespace Vek::Chart::Scene {

/// The values of a volume: one number for each voxel of a regular grid that fills a box of the scene.
///
/// Layout: voxel (i, j, k) has the index i + n0 · (j + n1 · k). i counts along +x of the box, j along +y, k along +z,
/// or along −z for Layers::Downwards (depths of an ocean, for example). The voxels are cells: each is 1/n0 × 1/n1 ×
/// 1/n2 of the box, and its value belongs to its centre. Numbers of grid nodes with a spacing have the box of
/// `CellBounds`.
///
/// Values: numbers of an array, rounded to float; infinities and NaN are missing. Voxels of a VolumeImage are 0 to 1
/// for bytes (byte / 255), floats as they are. Between the centres, values are interpolated linearly among those of the
/// eight voxels around that are present, with their weights; a position is missing where the weights of the present
/// ones are below one half. Beyond the outermost centres, the values continue as they are there.
///
/// Ownership: the grid never changes. Copies share its values and its 3-D texture, of which there is one in each
/// context (see Ogl::PerContext). A VolumeImage is shared and must not change either.
///
/// Errors: std::invalid_argument for sizes below 1, a number of values other than the product of the sizes, a null or
/// empty image, one that does not have one channel, or a box without extent or not finite. A grid that is larger than
/// the device takes is reported once per context ("largest <= GL_MAX_3D_TEXTURE_SIZE"), as is a failed upload; it then
/// draws nothing.
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
  /// The voxels of an image of one channel; its sizes are Height(), Width() and Depth().
  VoxelGrid(boost::shared_ptr<const Library::VolumeImage> p_image, const Box& p_box, Layers p_layers = Layers::Upwards,
            ZeroVoxels p_zeros = ZeroVoxels::AreMissing);

  /// The box of the cells around grid nodes: the first node lies at `p_first`, the next ones `p_spacing` apart.
  static Box CellBounds(const Sizes& p_sizes, const Point& p_first, const Point& p_spacing);
  /// A box around the origin whose voxels are cubes and whose longest side is `p_longest`.
  static Box CubicBounds(const Sizes& p_sizes, double p_longest);

  /// Voxels along x, y and z.
  const Sizes& Size() const;
  /// The box that the voxels fill.
  const Box& Bounds() const;
  /// The extent of a voxel.
  Point VoxelSize() const;
  /// The smallest and the largest value; empty if all are missing.
  const Types::MinMax_Base<double>& Range() const;
  /// Whether some voxel is missing.
  bool HasMissing() const;

  /// The value of a voxel; NaN if it is missing or no voxel of the grid.
  double Value(int p_i, int p_j, int p_k) const;
  /// The value at a position, as it is drawn; NaN where it is missing and outside of the box.
  double Sample(const Point& p_position, Filter p_filter = Filter::Linear) const;
  /// The centre of the voxel at a position. Positions outside of the box are moved into it.
  Point NearestCenter(const Point& p_position) const;
  /// The texture coordinate of a position: 0 to 1 within the box; z runs from 1 to 0 for Layers::Downwards.
  Point TexCoord(const Point& p_position) const;

  /// Binds the 3-D texture on the texture unit `p_unit` (a token: RGL_TEXTURE0 + n), which becomes the active one. In
  /// each context the first call uploads the voxels; changes of the filter upload nothing. False, with nothing bound,
  /// where the device cannot take it.
  ///
  /// A shader reads a texel as `vec4 t = texture3D(volume, coordinate)`: `t.a` is the weight of the present voxels, and
  /// `t.r / t.a` the value where that is at least one half.
  bool Bind(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit, Filter p_filter = Filter::Linear) const;
  /// Frees the texture in the scope's context, for all copies.
  void Release(const Utility::Scoped<Rgl>& p_gl) const;

private:
  class Voxels;
  boost::shared_ptr<const Voxels> _voxels;
};

} // namespace Vek::Chart::Scene
