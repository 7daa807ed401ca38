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
#include "platform/ogl/ShaderProgram.h"
#include "platform/ogl/Vec.h"
#include "platform/types/Geometry.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>
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
/// and the last level takes all others. A drawing is one call of GL for each level that has instances in the view
/// frustum. The number of GL calls does not depend on the number of instances.
///
/// Instances lie in GPU buffers of each context, made at the first drawing there and freed as `Ogl::PerContext`
/// describes: 12 bytes for a position, 4 for a size, 24 for a rotation or direction, 4 for a value or a colour, and 4
/// for an id once ids are drawn. Arrays that are not given take none. `Update…` replaces one array, and the next
/// drawing uploads that array alone. Another colour map, scale or level uploads nothing. A copy shares the arrays in
/// CPU memory and has its own buffers. With several levels, all arrays are sorted by level, and uploaded again when an
/// instance changes its level.
///
/// Left out are instances with a position that is not finite, a size that is not above 0, or a direction that is zero
/// or not finite. `Undirected` counts the last ones.
///
/// The matrices and the viewport of the scope are used: positions are in model units. Far from zero, subtract an origin
/// and load a matrix for positions relative to it.
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

    GpuMesh mesh;                       ///< drawn without its values and colours
    Types::Vector3_Base<double> origin; ///< the point of the mesh that lies at an instance's position
    double scale = 1;                   ///< instance units in a unit of the mesh
    double mostPixels = std::numeric_limits<double>::infinity(); ///< the largest size × pixels per unit
  };

  /// Spheres of 20, 80 and 320 triangles, each up to the size at which its outline leaves the circle by a fifth of a
  /// pixel, and one of 1280 triangles for all larger ones. The size of an instance is the diameter of its sphere.
  static std::vector<Level> Spheres();

  InstancedMesh() = default; ///< no instances
  /// Instances of one mesh, around its origin.
  InstancedMesh(GpuMesh p_mesh, const Instances& p_instances);
  /// Instances with levels of detail, from coarse to fine.
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
  using Axes = std::array<float, 6>; ///< x and y of the rotated mesh
  struct Buffers;
  /// What a drawing writes to each pixel.
  enum class Paint { Colors, Depths, Ids };

  void RequireLength(const char* p_name, std::size_t p_count) const;
  bool Prepare(Utility::Scoped<Rgl>& p_gl, Buffers& p_buffers, Paint p_paint) const;
  void DrawLevels(Utility::Scoped<Rgl>& p_gl, const Buffers& p_buffers, Paint p_paint,
                  const Ogl::ShaderProgram& p_program) const;

  std::vector<Level> _levels;
  Shared<Ogl::Vec3<float>> _positions;
  Shared<float> _sizes;
  Shared<Axes> _axes;
  Shared<float> _values;
  Shared<Rgba> _colors;
  Shared<Rgba> _ids;
  std::size_t _undirected = 0;
  double _leastPixels = 0;
  Ogl::PerContext<Buffers> _buffers;
};

} // namespace Vek::Chart::Scene
