#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/GpuMesh.h"
#include "scene/PeelPass.h"
#include "scene/PickPass.h"
#include "scene/ValueScale.h"

#include "library/ColorMap.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/Vec.h"
#include "platform/types/Geometry.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

/// Many copies of a mesh: the glyphs of a scatter plot or a quiver. Instances have a position, a size, a rotation or a
/// direction, a value or a colour, and an id.
///
/// Levels of detail: each level is a mesh that suits instances up to a size in pixels; larger ones take the next level,
/// and the last level takes all others. Instances outside of the view frustum are left out. A drawing is one call of GL
/// for each level that has instances. The number of GL calls does not depend on the number of instances.
///
/// Occlusion culling: where instances are opaque closed surfaces around their positions and cover what they span
/// several times, those that are hidden wholly behind another one are left out as well. A coarse depth buffer in CPU
/// memory finds them. The image stays the same. It takes place under the depth test RGL_LESS or RGL_LEQUAL alone,
/// without blending, clip planes, culled faces or `SetMostVertices`. For depth peeling, see `SetMostLayers`.
///
/// Levels need GL 4.0, for buffer textures. Other devices with instancing draw all instances with the last level.
///
/// Instances lie in GPU buffers of each context, made at the first drawing there and freed as `Ogl::PerContext`
/// describes: 12 bytes for a position, 4 for a size, 12 for a direction or 24 for a rotation, 4 for a value or a
/// colour, 4 for an id of the caller's once ids are drawn, and 4 for the order of levels. Arrays that are not given
/// take none. `Update…` replaces one array, and the next drawing uploads that array alone. Another colour map or scale
/// uploads nothing, another view the order. A copy shares the arrays in CPU memory and has its own buffers.
///
/// Left out are instances with a position that is not finite, a size that is not above 0, or a direction that is zero
/// or not finite. `Undirected` counts the last ones.
///
/// Meshes whose triangles are flat are drawn with fewer vertices, with normals of the provoking vertex, which is the
/// last one as by default. The matrices and the viewport of the scope are used: positions are in model units. Far from
/// zero, subtract an origin and load a matrix for positions relative to it.
///
/// Errors: std::invalid_argument for arrays of different lengths, for directions beside rotations, and for ids from
/// PickPass::NoElement on. A device without instancing is reported.
///
/// \snippet SceneMeshSnippets.cpp InstancedMesh
/// \image html parts/InstancedMesh.png
/// \ingroup plots
class VEK_SCENE_API InstancedMesh {
public:
  /// Red, green, blue, alpha.
  using Rgba = GpuMesh::Rgba;

  /// The arrays of the instances. All but the positions may be empty, or have one element for each position.
  struct Instances {
    Array3 positions;                           ///< of the instances' origins
    Types::Vector3_Base<double> origin;         ///< subtracted from the positions in double precision
    Array1 sizes;                               ///< factors of the level's scale; 1 if there are none
    Array3 directions;                          ///< of the mesh's axis +z, of any length
    Types::Vector3_Base<double> up = {0, 0, 1}; ///< where the mesh's +y points, as far as the direction permits
    std::vector<Types::Matrix3> rotations;      ///< in place of directions
    Array1 values;                              ///< NaN is missing; 0 if there are none
    std::vector<Rgba> colors;                   ///< take the place of values
    std::vector<std::uint32_t> ids;             ///< for picking; 0, 1, 2, … if there are none
  };

  /// A mesh for instances of some size in pixels. A vertex v of an instance of size s lies at
  /// position + rotation × (v − origin) × scale × s.
  struct VEK_SCENE_API Level {
    /// The mesh around its origin, in its own units.
    explicit Level(GpuMesh p_mesh)
        : mesh(std::move(p_mesh)) {}
    /// The mesh around the middle of its bounds, scaled to a diagonal of 1, so that the size of an instance is the
    /// diagonal of its box.
    static Level Centered(GpuMesh p_mesh);

    /// How the mesh is placed and lit.
    enum class Facing {
      Rotated, ///< by the rotation or direction of the instance
      /// Rotated about the instance's z axis until it faces the eye, as the outline of a body around that axis. x is
      /// across, z along the axis. y is added along the projection of the axis, as far as the axis points to the eye
      /// or away from it. x and z of the normals are those of the body; y is the least z that the projection has.
      /// The light is the mean of what is seen of the body.
      Outline,
      /// A polygon around the unit circle in the plane z = 0, through which a sphere of radius 1 is seen: fragments
      /// have its depth and normal.
      Sphere
    };

    GpuMesh mesh;                       ///< drawn without its values and colours
    Types::Vector3_Base<double> origin; ///< the point of the mesh that lies at an instance's position
    double scale = 1;                   ///< instance units in a unit of the mesh
    double mostPixels = std::numeric_limits<double>::infinity(); ///< the largest size × pixels per unit
    Facing facing = Facing::Rotated;                             ///< the last level is rotated
  };

  /// Discs of 3 to 64 corners through which spheres are seen, each up to the size at which its outline leaves the
  /// circle by a fifth of a pixel, and a mesh of 1280 triangles for all larger ones. The size of an instance is the
  /// diameter of its sphere. With `SetMostLayers`, targets with one sample a pixel show exact outlines.
  static std::vector<Level> Spheres();
  /// Solid arrows along +z from 0 to 1 with a shaft of 2/3 of the length, as those of `Model::Symbol::ShapeArrow3D`: a
  /// triangle, outlines of 2, 4 and 10 triangles, and meshes of 4 and 8 segments, each up to the length at which its
  /// outline is wrong by a fifth of a pixel, and a mesh of `p_segments`, a multiple of 4, for all longer ones. The size
  /// of an instance is the length of its arrow.
  static std::vector<Level> Arrows(unsigned int p_segments = 16);

  InstancedMesh() = default; ///< no instances
  /// Instances of one mesh, around its origin.
  InstancedMesh(GpuMesh p_mesh, const Instances& p_instances);
  /// Instances with levels of detail, from coarse to fine, at most 16.
  InstancedMesh(std::vector<Level> p_levels, const Instances& p_instances);

  /// Replaces the meshes; the instances stay.
  void SetLevels(std::vector<Level> p_levels);
  /// The meshes.
  const std::vector<Level>& Levels() const { return _levels; }

  ///@{
  /// Replaces one array by one of the same length; an empty one removes it, but for positions.
  void UpdatePositions(const Array3& p_positions, const Types::Vector3_Base<double>& p_origin = {});
  void UpdateSizes(const Array1& p_sizes);
  void UpdateDirections(const Array3& p_directions, const Types::Vector3_Base<double>& p_up = {0, 0, 1});
  void UpdateRotations(const std::vector<Types::Matrix3>& p_rotations);
  void UpdateValues(const Array1& p_values);
  void UpdateColors(std::vector<Rgba> p_colors);
  ///@}
  /// Instances smaller than that are drawn as large as that, in pixels of their size; 0 by default. Uploads nothing.
  void SetLeastPixels(double p_pixels) { _leastPixels = p_pixels; }
  /// Draws about that many vertices at most, 0 by default for any number: with levels for sizes up to a quarter, and
  /// then, if they are still too many, every k-th instance, where k is a power of two. Uploads no array. Has no effect
  /// on devices without levels.
  void SetMostVertices(std::size_t p_count) { _mostVertices = p_count; }
  /// Draws so many instances and waits for them before the next ones; 0, the default, draws all at once. For little
  /// memory: a rasteriser in software keeps the triangles that it has not drawn yet, hundreds of bytes each. Has no
  /// effect on devices without levels.
  void SetMostAtOnce(std::size_t p_count) { _mostAtOnce = p_count; }
  /// The number of layers of a depth peeling, for all of its drawings: what lies behind so many surfaces is not seen,
  /// and instances that are hidden so by others are left out, half-transparent ones as well. 0, the default, is for
  /// drawings of other kinds.
  void SetMostLayers(std::size_t p_count) { _mostLayers = p_count; }
  /// Every how many-th instance the last drawing in this context showed; 1 for all.
  std::size_t Step(const Utility::Scoped<Rgl>& p_gl) const;

  /// The number of instances, those left out included.
  std::size_t Count() const { return _positions ? _positions->size() : 0; }
  /// The number of directions that are zero or not finite.
  std::size_t Undirected() const { return _undirected; }
  /// The box around all instances with their whole meshes, in model units; empty if there are none.
  Types::BoundingBox_Base<double> Bounds() const;

  /// Draws each pixel in the colour of its instance, lit on both sides by GL's light 0 (see DirectionalLight); meshes
  /// of lines or points are not lit, and triangles without normals are lit face by face. Depth test,
  /// blending and culling are the caller's. With a pass, draws what lies behind its layer alone. Restores all state.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale = {},
            const PeelPass* p_pass = nullptr) const;
  /// Draws the depth of each pixel, packed by DepthCodec, with the levels of the last `Draw` in this context. Belongs
  /// within a DepthPass.
  void DrawDepths(Utility::Scoped<Rgl>& p_gl) const;
  /// Draws the id of each instance and the number of the plot, as PickPass describes, with the same levels.
  void DrawIds(Utility::Scoped<Rgl>& p_gl, unsigned int p_plot) const;
  /// Draws for a Picker: depths or ids.
  void Draw(Utility::Scoped<Rgl>& p_gl, const PickPass& p_pass) const;

  /// Frees the buffers and shaders of the scope's context.
  void Release(const Utility::Scoped<Rgl>& p_gl) const;

private:
  template <class T>
  using Shared = boost::shared_ptr<const std::vector<T>>;
  struct Buffers;
  struct Drawing;
  /// What an instance of size 1 surely fills, and what it reaches.
  struct Body {
    double reach = 0; ///< from its position
    double core = 0;  ///< radius of a ball around its position that is hidden from all sides; 0 for none
  };

  static constexpr std::size_t SquareCopies = 64;
  void RequireLength(const char* p_name, std::size_t p_count) const;
  static Body BodyOf(const Level& p_level);
  static GpuMesh FlatMesh(const Level& p_level);
  void CompleteLevels();

  std::vector<Level> _levels;
  std::vector<GpuMesh> _repeated;   ///< the mesh of each level, several times if it is small
  std::vector<bool> _areFlat;       ///< whether triangles there have the normal of their last vertex
  std::vector<std::size_t> _copies; ///< how many times
  GpuMesh _squares;                 ///< around the outlines of spheres, for targets with one sample
  std::vector<Body> _bodies;        ///< of the levels
  Shared<Ogl::Vec3<float>> _positions;
  Shared<float> _sizes;
  Shared<float> _axes; ///< directions or rotations
  std::size_t _axisFloats = 0;
  Types::Vector3_Base<double> _up;
  Shared<float> _values;
  Shared<Rgba> _colors;
  unsigned char _leastAlpha = 0; ///< of the colours
  Shared<Rgba> _ids;             ///< of the caller's
  std::size_t _undirected = 0;
  double _leastPixels = 0;
  std::size_t _mostVertices = 0;
  std::size_t _mostAtOnce = 0;
  std::size_t _mostLayers = 0;
  Ogl::PerContext<Buffers> _buffers;
};

} // namespace Vek::Chart::Scene
