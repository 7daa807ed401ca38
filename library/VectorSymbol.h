#pragma once

#include "library/Export.h"
#include "platform/model/Symbol.h"
#include "platform/ogl/BufferPool.h"
#include "platform/ogl/VertexData.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"
#include "platform/utility/Threads.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace Vek::Chart::Library {

namespace Private {
class GlyphLayer;
}

/// The mesh of one built-in glyph (an arrow, a cone, a sphere, …), placed at the data points of a chart.
///
/// A glyph is built in a unit frame of its own:
/// - The axis of directional glyphs is +z. The base lies at z = 0 (arrows, cone) or below (cylinder), the tip at
///   z = `length`, which is 3 for arrows with a shaft and 1 for the others.
/// - Flat arrows lie in the x-z plane with normal +y, the plane in the x-y plane.
/// - Plane, cylinder, cube, sphere and circular arrow are centred.
/// - Radii and half extents are fractions of one unit.
/// - Triangles run counter-clockwise seen from outside. Solid arrows, arrow heads, cube and sphere are closed; cylinder
///   and cone have no caps.
///
/// The constructor builds the mesh, which never changes afterwards. All other operations are const and may be called
/// from several threads, each with its own target.
///
/// No operation needs a GL context. Memory exhaustion throws std::bad_alloc and leaves the targets unchanged.
///
/// \snippet GlyphSnippets.cpp VectorSymbol
/// \image html wind.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API VectorSymbol {
public:
  /// The kind of primitive.
  enum TopologyType : std::uint32_t {
    TopologyPoints = 0,    ///< one vertex per point; no indices
    TopologyLines = 1,     ///< two indices per line
    TopologyTriangles = 2, ///< three indices per triangle
  };

  /// The point glyph.
  VectorSymbol();
  /// Copies the mesh.
  VectorSymbol(const VectorSymbol&) = default;
  /// Copies the mesh.
  VectorSymbol& operator=(const VectorSymbol&) = default;
  /// `p_resolution` is the number of segments around round shapes, rounded down to a multiple of 4, at least 4; for the
  /// circular arrow at most 24.
  ///
  /// ShapeCustom and unknown values are reported and give an empty glyph of topology TopologyPoints.
  VectorSymbol(Model::Symbol::Shape p_shape, unsigned int p_resolution);
  ~VectorSymbol() = default;

  /// The topology of the shape, also if it could not be built.
  TopologyType GeometryDefinedAs() const { return _topology; }
  /// True if the glyph has its own normals; all others get +y.
  bool HasNormals() const { return !_normals.empty(); }
  /// True if points were built, and for an empty glyph.
  bool HasPoints() const { return _primitive == TopologyPoints; }
  /// True if the glyph has an axis (+z) that should follow a direction.
  bool IsDirectionalSymbol() const { return _directional; }
  /// The length of the glyph along its axis at size × scale = 1, which is also what an anchor of 1 shifts it by: 3 for
  /// arrows with a shaft, 1 for all others, 0 for the point and an empty glyph. A scale of s / Length() draws each
  /// glyph s × its size long.
  double Length() const { return _length; }

  /// The number of vertices of one glyph; 0 for an empty one.
  std::size_t VertexCount() const { return _vertices.size(); }
  /// The number of indices of one glyph: two per line, three per triangle, 0 for points.
  std::size_t IndexCount() const { return _indices.size(); }

  /// Writes the untransformed glyph, without texture coordinates, as OrientShape does. Returns false and writes nothing
  /// if the glyph is empty.
  bool BuildShape(Ogl::VertexData& p_vertexData) const;

  /// Writes a placed copy of the glyph: each vertex v becomes
  ///
  ///     rotation * ((v - (0, 0, anchor * length)) * (size * scale)) + position
  ///
  /// in double precision, stored as floats. Anchor 0 keeps the origin of the glyph at `p_position`, anchor 1 puts the
  /// tip of a directional glyph there. Normals are rotated but not normalised.
  ///
  /// Writes vertices (3 floats), normals (3 floats), indices (unsigned 32 bit; none for points) and, with
  /// `p_writeTexCoord`, texture coordinates (1 float, equal for all vertices), each into a new array. Other arrays of
  /// `p_vertexData` stay. The primitive type is marked changed only if it differs.
  ///
  /// Returns false and writes nothing if the glyph is empty or size * scale <= 0. NaN is not refused.
  bool OrientShape(double p_size, double p_anchor, const Types::Vector3_Base<double>& p_position, bool p_writeTexCoord,
                   double p_texCoord, double p_scale, const Types::Matrix3& p_rotation,
                   Ogl::VertexData& p_vertexData) const;

  /// The glyphs of a layer: arrays of the caller with one element per instance.
  struct Instances {
    std::size_t count = 0;                                  ///< number of elements of each array
    const Types::Vector3_Base<double>* positions = nullptr; ///< positions of the anchors
    const Types::Matrix3* rotations = nullptr;              ///< frames of the glyphs: column 3 is the axis
    const double* sizes = nullptr;                          ///< multiplied by the scale of the layer
    const double* texCoords = nullptr;                      ///< null: the layer gets no texture coordinates
  };

  /// Memory of the caller for the scalars of one attribute. The attribute is skipped if default-constructed.
  template <class T>
  struct Target {
    T* data = nullptr;     ///< the first scalar
    std::size_t count = 0; ///< number of scalars
    bool wanted = false;   ///< false: the attribute is skipped

    Target() = default; ///< skipped
    /// Room for `p_count` scalars; none if the pointer is null.
    Target(T* p_data, std::size_t p_count)
        : data(p_data)
        , count(p_data == nullptr ? 0 : p_count)
        , wanted(true) {}
    /// The scalars of mapped records whose components have type T.
    template <class Record>
    Target(const Ogl::BufferPool::WriteArray<Record>& p_array) // NOLINT: implicit, the same memory under another type
        : Target(reinterpret_cast<T*>(p_array.Data()), p_array.Count() * (sizeof(Record) / sizeof(T))) {
      static_assert(std::is_same_v<decltype(Record::x), T>, "the records must have components of this type");
    }
  };

  /// The target of a layer. Memory may be write-only; it is filled from front to back.
  struct LayerMemory {
    Target<float> vertices;       ///< 3 floats per vertex
    Target<float> normals;        ///< 3 floats per vertex
    Target<float> texCoords;      ///< 1 float per vertex
    Target<unsigned int> indices; ///< IndexCount() per instance
    unsigned int firstVertex = 0; ///< index of the first vertex written, if the memory is part of a larger buffer
  };

  /// Writes a whole layer as one mesh, instance after instance, with consecutive indices. Each instance has the same
  /// bits as OrientShape gives. Returns the number of instances written.
  ///
  /// Left out are instances with size * scale <= 0, and those with a NaN vertex or normal: NaN in size, position or
  /// rotation, or infinities that give one. The latter are reported once per layer ("notANumber == 0"; the detail has
  /// the first index and the number).
  ///
  /// Each attribute is one array. An array that an earlier call wrote to `p_vertexData` is reused if it has the right
  /// size and no other owner, so that rebuilding a layer into the same object takes no memory. Indices and texture
  /// coordinates that the layer lacks are removed.
  ///
  /// `p_vertexData` stays unchanged and 0 is returned if no instance is left, and after these reports: a null array of
  /// positions, rotations or sizes; more vertices than 32-bit indices can address.
  std::size_t OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                           Ogl::VertexData& p_vertexData) const;

  /// Writes the layer to memory of the caller, for example mapped buffers. Also reported is memory that is too small
  /// for the instances to write, or that could not be mapped; then nothing is written and 0 is returned.
  ///
  /// \snippet GlyphSnippets.cpp MappedLayer
  std::size_t OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                           const LayerMemory& p_memory) const;
  ///@{
  /// As above, on several threads, with the same bits. Memory is filled block by block, each from front to back. Fewer
  /// than 100,000 vertices start no thread.
  std::size_t OrientShapes(const Instances& p_instances, double p_anchor, double p_scale, Ogl::VertexData& p_vertexData,
                           Utility::Threads p_threads) const;
  std::size_t OrientShapes(const Instances& p_instances, double p_anchor, double p_scale, const LayerMemory& p_memory,
                           Utility::Threads p_threads) const;
  ///@}

  /// The glyphs of a layer by direction: arrays of the caller with one element per instance.
  struct DirectedInstances {
    std::size_t count = 0;                                   ///< number of elements of each array
    const Types::Vector3_Base<double>* positions = nullptr;  ///< positions of the anchors
    const Types::Vector3_Base<double>* directions = nullptr; ///< directions of the axes, of any length
    const double* sizes = nullptr;     ///< multiplied by the scale of the layer; null: the lengths of the directions
    const double* texCoords = nullptr; ///< null: the layer gets no texture coordinates
    Types::Vector3_Base<double> up{0, 0, 1}; ///< the side +y of all glyphs, as Matrix3::FromAxis takes it
  };

  /// The instances of a layer by direction.
  struct DirectedCounts {
    std::size_t written = 0;    ///< instances in the mesh
    std::size_t undirected = 0; ///< instances left out because their direction is zero, NaN or infinite
  };

  /// OrientShapes with rotations `Matrix3::FromAxis(directions[i], up)`: flat glyphs face `up`, and the roll follows
  /// from direction and up alone. The rotations are computed into temporary memory of 80 bytes per instance.
  ///
  /// An instance without direction is left out, counted and not reported; what else leaves out an instance, errors and
  /// reports are those of OrientShapes. Null arrays of positions or directions are reported; both counts are 0 then,
  /// and for an empty glyph. Neither result nor reports depend on the number of threads; fewer than 100,000 instances
  /// or vertices start none.
  ///
  /// \snippet GlyphSnippets.cpp DirectedLayer
  DirectedCounts OrientAlong(const DirectedInstances& p_instances, double p_anchor, double p_scale,
                             Ogl::VertexData& p_vertexData, Utility::Threads p_threads = {}) const;
  /// Writes to memory of the caller.
  DirectedCounts OrientAlong(const DirectedInstances& p_instances, double p_anchor, double p_scale,
                             const LayerMemory& p_memory, Utility::Threads p_threads = {}) const;

private:
  template <class Memory>
  DirectedCounts OrientAlongInto(const DirectedInstances& p_instances, double p_anchor, double p_scale,
                                 Memory& p_target, Utility::Threads p_threads) const;
  void BuildPredefinedShape(Model::Symbol::Shape p_shape);
  Private::GlyphLayer MakeLayer(const Instances& p_instances, double p_anchor, double p_scale) const;

  bool _directional = false;
  TopologyType _topology = TopologyPoints;
  unsigned int _resolution = 4;
  TopologyType _primitive = TopologyPoints;
  std::vector<Types::Vector3_Base<double>> _vertices;
  std::vector<Types::Vector3_Base<double>> _normals;
  std::vector<unsigned int> _indices;
  double _length = 0.0;
};

} // namespace Vek::Chart::Library
