#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/PeelPass.h"
#include "scene/ValueScale.h"

#include "library/ColorMap.h"
#include "library/ModelCache.h"
#include "library/ObjModel.h"
#include "library/SymbolRegistry.h"
#include "platform/model/Symbol.h"
#include "platform/ogl/BufferPool.h"
#include "platform/ogl/PerContext.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/ogl/Vec.h"
#include "platform/ogl/VertexBuffer.h"
#include "platform/ogl/VertexData.h"
#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QColor>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

namespace Vek::Chart::Scene {

namespace Private {
struct MeshShading;
} // namespace Private

/// A mesh in GPU buffers: positions, normals, texture coordinates or values, colours, indices, and their bounds.
///
/// Arrays are copied and checked once, when the mesh is made. Each context gets its own buffers at the first drawing
/// there; `Update…` replaces one array, and the next drawing uploads that array alone. Nothing is drawn from client
/// memory. A copy shares the arrays in CPU memory and has its own buffers. Buffers are freed as `Ogl::PerContext`
/// describes.
///
/// A mesh of a cache or registry is different: it shares their buffers, has no arrays in CPU memory, and is drawn in
/// their context alone. Elsewhere it reports and draws nothing. Its last copy must end while that context is current.
///
/// Triangles without normals get smooth ones (`ComputeNormals`); so do single vertices whose normal is (0, 0, 0). Other
/// primitives, and the meshes of a cache, have the normals that they were given.
///
/// Errors: std::invalid_argument for arrays of different lengths, an index past the end, an undecided primitive type,
/// and updates of a mesh of a cache. Buffers that GL does not make are reported; the next drawing tries again.
///
/// \snippet SceneMeshSnippets.cpp GpuMesh
/// \snippet SceneMeshSnippets.cpp GpuMeshDraw
/// \image html parts/GpuMesh.png
/// \ingroup plots
class VEK_SCENE_API GpuMesh {
public:
  /// Red, green, blue, alpha.
  using Rgba = std::array<unsigned char, 4>;
  /// u and v of a texture; (0, 0) is the lower left of its image.
  using TexCoord = std::array<float, 2>;
  /// A position or a normal.
  using Record = Ogl::Vec3<float>;

  /// The arrays of a mesh. All but the positions and the indices may be empty, or have one element for each position.
  struct Arrays {
    Array3 positions;                   ///< relative to the origin after the subtraction in double precision
    Types::Vector3_Base<double> origin; ///< of the mesh, in the units of the positions
    Array3 normals;                     ///< need not have unit length
    Array1 values;                      ///< to be looked up on a colour map; the texture coordinate of `Draw(gl)`
    std::vector<Rgba> colors;           ///< take the place of values
    std::vector<std::uint32_t> indices; ///< zero-based; if empty, the positions are taken in their order
    Ogl::VertexBuffer::PrimitiveType primitive = Ogl::VertexBuffer::Triangles; ///< of indices or positions
  };

  GpuMesh() = default; ///< empty; draws nothing
  /// Copies the arrays.
  explicit GpuMesh(const Arrays& p_arrays);
  /// Copies the arrays. Positions and normals must have 2 or 3 components, texture coordinates 1 to 4. No positions
  /// make an empty mesh, whatever the primitive type.
  explicit GpuMesh(const Ogl::VertexData& p_data);
  /// Copies the groups into one mesh, without primitives that have an index past the end, which the reader of the model
  /// reported, or are incomplete. A model without any other primitives makes an empty mesh.
  explicit GpuMesh(const Library::ObjModel& p_model);
  /// Shares the buffers of a model. An unknown id makes an empty mesh. Indices past the end, which the reader of the
  /// model reported, are in those buffers and are drawn.
  GpuMesh(const Library::ModelCache& p_cache, std::size_t p_id);
  /// Shares the buffers of a built-in shape. A shape without a model is reported by the registry.
  GpuMesh(const Library::SymbolRegistry& p_registry, Model::Symbol::Shape p_shape);

  ///@{
  /// Replaces one array by one of the same length. New positions change the bounds, and normals that were computed;
  /// no values or colours remove the array.
  void UpdatePositions(const Array3& p_positions, const Types::Vector3_Base<double>& p_origin = {});
  void UpdateNormals(const Array3& p_normals);
  void UpdateValues(const Array1& p_values);
  void UpdateColors(std::vector<Rgba> p_colors);
  /// Texture coordinates take the place of values, and values that of texture coordinates.
  void UpdateTexCoords(const std::vector<TexCoord>& p_texCoords);
  ///@}

  /// True if there is nothing to draw.
  bool Empty() const;
  /// The number of vertices.
  std::size_t VertexCount() const;
  /// The number of indices; 0 if there are none.
  std::size_t IndexCount() const;
  /// The kind of primitive.
  Ogl::VertexBuffer::PrimitiveType Primitive() const { return _primitive; }
  /// Whether there are normals.
  bool HasNormals() const;
  /// The box around all vertices with finite positions; for a mesh of a cache, the bounds in its record.
  const Types::BoundingBox_Base<double>& Bounds() const { return _bounds; }

  /// Draws with GL's fixed vertex attributes under the current state, shader and matrices: positions, normals, values
  /// as texture coordinates of the active client unit, colours. Other client arrays stay enabled as the caller has set
  /// them. Restores the client state and the current colour. No vertex array object may be bound.
  void Draw(Utility::Scoped<Rgl>& p_gl) const;
  /// Draws each pixel in the colour of its value, or in its own colour, lit on both sides by GL's light 0 (see
  /// DirectionalLight); lines and points are not lit. A triangle with a missing value has the colour for that. Depth
  /// test, blending and culling are the caller's. With a pass, draws what lies behind its layer alone. Restores all
  /// state.
  void Draw(Utility::Scoped<Rgl>& p_gl, const Library::ColorMap& p_colors, const ValueScale& p_scale = {},
            const PeelPass* p_pass = nullptr) const;

  /// Likewise in the colours of the 2-D texture that is bound to unit 0, at the texture coordinates, times a tint.
  void DrawTextured(Utility::Scoped<Rgl>& p_gl, const QColor& p_tint, const PeelPass* p_pass = nullptr) const;

  /// An attribute of the caller's vertex shader that advances once per instance.
  struct InstanceAttribute {
    unsigned int location = 0;                     ///< of the attribute in the shader; not that of a fixed attribute
    boost::shared_ptr<Ogl::BufferStorage> records; ///< one for each instance
    std::size_t offset = 0;                        ///< bytes before the first record
    unsigned int stride = 12;                      ///< bytes from a record to the next one
    unsigned int components = 3;                   ///< 1 to 4
    bool bytes = false;                            ///< components are bytes of 0 to 1, otherwise floats
  };
  /// Draws `p_count` instances in one call, with fixed attributes as `Draw(gl)`, for the shader in use. Reports, and
  /// draws nothing, without instancing or with fewer records than instances.
  void DrawInstanced(Utility::Scoped<Rgl>& p_gl, std::size_t p_count,
                     const std::vector<InstanceAttribute>& p_attributes) const;

  /// Frees the buffers of the scope's context.
  void Release(const Utility::Scoped<Rgl>& p_gl) const;

private:
  friend class InstancedMesh;
  template <class T>
  using Shared = boost::shared_ptr<const std::vector<T>>;
  struct Buffers;

  /// The mesh several times, with the number of the copy as value, from 0 on; the mesh itself if it cannot be repeated.
  GpuMesh Repeated(std::size_t p_copies) const;
  using SetUniforms = std::function<void(const Ogl::ShaderProgram&)>;
  void DrawLit(Utility::Scoped<Rgl>& p_gl, const Private::MeshShading& p_shading, const char* p_signature,
               const SetUniforms& p_setUniforms) const;
  void Complete();
  void CompleteNormals();
  void RequireLength(const char* p_name, std::size_t p_count) const;
  bool Upload(const Rgl& p_gl, Buffers& p_buffers, const char* p_signature) const;
  void Draw(Utility::Scoped<Rgl>& p_gl, std::size_t p_instances, const std::vector<InstanceAttribute>& p_attributes,
            const char* p_signature) const;

  Shared<Record> _positions;
  Shared<Record> _givenNormals; ///< null if there are none
  Shared<Record> _normals;
  Shared<float> _texCoords;
  unsigned int _texCoordSize = 1; ///< floats for each
  Shared<Rgba> _colors;
  Shared<std::uint32_t> _indices;
  Library::ModelCache::Model _model; ///< of a cache
  Ogl::VertexBuffer::PrimitiveType _primitive = Ogl::VertexBuffer::Triangles;
  Types::BoundingBox_Base<double> _bounds;
  Ogl::PerContext<Buffers> _buffers;
};

} // namespace Vek::Chart::Scene
