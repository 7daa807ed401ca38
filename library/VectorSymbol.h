#pragma once

#include "library/Export.h"
#include "platform/model/Symbol.h"
#include "platform/ogl/BufferPool.h"
#include "platform/ogl/VertexData.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace Vek::Chart::Library {

/// The mesh of one built-in glyph (an arrow, a cone, a sphere, …), to be placed at the data points of a chart.
///
/// A glyph lives in a unit frame of its own. The axis of the directional ones is +z: base at z = 0 (arrows, cone, flat
/// arrows) or below (cylinder), tip at z = `length`, which is 1, or 3 for the arrows with a shaft. Flat arrows lie in
/// the x-z plane with normal +y, the plane in the x-y plane; plane, cylinder, cube, sphere and circular arrow are
/// centred. Radii and half extents are fractions of one unit. Triangles run counter-clockwise seen from outside; the
/// arrow heads, the solid arrows, cube and sphere are closed, cylinder and cone have no caps.
///
/// Built completely by its constructor and never changed afterwards: all other operations are const and may be called
/// from several threads, each with a target of its own.
///
/// No operation needs a GL context. Memory exhaustion is thrown as std::bad_alloc and leaves the targets as they were.
///
/// \snippet GlyphSnippets.cpp VectorSymbol
/// \image html wind.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API VectorSymbol {
public:
  /// What vertices or indices describe.
  enum TopologyType : std::uint32_t {
    TopologyPoints = 0,    ///< a point each; no indices
    TopologyLines = 1,     ///< two indices a line
    TopologyTriangles = 2, ///< three indices a triangle
  };

  /// The point glyph.
  VectorSymbol();
  /// Copies hold meshes of their own.
  VectorSymbol(const VectorSymbol&) = default;
  /// As the copy.
  VectorSymbol& operator=(const VectorSymbol&) = default;
  /// `p_resolution` is the number of segments around round shapes: rounded down to a multiple of 4, at least 4. The
  /// circular arrow has at most 24.
  ///
  /// ShapeCustom and unknown values are reported and give an empty glyph of topology TopologyPoints.
  VectorSymbol(Model::Symbol::Shape p_shape, unsigned int p_resolution);
  ~VectorSymbol() = default;

  /// What the shape is made of; for what was really built, see HasPoints.
  TopologyType GeometryDefinedAs() const { return _topology; }
  /// Whether the glyph has normals of its own; the others are given +y.
  bool HasNormals() const { return !_normals.empty(); }
  /// Whether points were built; also true for an empty glyph.
  bool HasPoints() const { return _primitive == TopologyPoints; }
  /// Whether the glyph has an axis (+z) that is meant to follow a direction.
  bool IsDirectionalSymbol() const { return _directional; }

  /// Vertices in one glyph; 0 for an empty one.
  std::size_t VertexCount() const { return _vertices.size(); }
  /// Two a line or three a triangle; 0 for points.
  std::size_t IndexCount() const { return _indices.size(); }

  /// Writes the glyph as it is. Returns false, and writes nothing, when it is empty. Otherwise as OrientShape.
  bool BuildShape(Ogl::VertexData& p_vertexData) const;

  /// Writes a placed copy of the glyph: each vertex v becomes
  ///
  ///     rotation * ((v - (0, 0, anchor * length)) * (size * scale)) + position
  ///
  /// in double precision, stored as floats. Anchor 0 keeps the origin of the glyph at `p_position`, 1 puts the tip of a
  /// directional glyph there. Normals are rotated only, so they keep their length under a rotation matrix.
  ///
  /// Sets vertices (3 floats), normals (3 floats), indices (unsigned 32 bit; not for points), texture coordinates
  /// (1 float, the same for all vertices; only with `p_writeTexCoord`), one new array each, and the primitive type,
  /// which is marked changed only if it was another one. Arrays that are not written stay as they were.
  ///
  /// Returns false, and writes nothing, when the glyph is empty or size * scale <= 0 (NaN is not).
  bool OrientShape(double p_size, double p_anchor, const Types::Vector3_Base<double>& p_position, bool p_writeTexCoord,
                   double p_texCoord, double p_scale, const Types::Matrix3& p_rotation,
                   Ogl::VertexData& p_vertexData) const;

  /// The glyphs of a layer, one element each in arrays of the caller's.
  struct Instances {
    std::size_t count = 0;                                  ///< elements in each array
    const Types::Vector3_Base<double>* positions = nullptr; ///< where the anchors go
    const Types::Matrix3* rotations = nullptr;              ///< the glyph's frame: column 3 is its axis
    const double* sizes = nullptr;                          ///< multiplied by the scale of the layer
    const double* texCoords = nullptr;                      ///< null: the layer gets no texture coordinates
  };

  /// Memory of the caller's for scalars of one attribute. An attribute whose target is default-constructed is left out.
  template <class T>
  struct Target {
    T* data = nullptr;     ///< the first scalar; may be null when nothing is to be written
    std::size_t count = 0; ///< scalars
    bool wanted = false;   ///< whether the attribute is written at all

    Target() = default; ///< not wanted
    /// Room for `p_count` scalars; a null pointer is wanted all the same, and has none.
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

  /// Where a layer is written to. Memory may be write-only and is filled from front to back.
  struct LayerMemory {
    Target<float> vertices;       ///< 3 floats a vertex
    Target<float> normals;        ///< 3 floats a vertex
    Target<float> texCoords;      ///< 1 float a vertex
    Target<unsigned int> indices; ///< IndexCount() an instance
    unsigned int firstVertex = 0; ///< the index of the first vertex written, where the memory is a part of a buffer
  };

  /// Writes a whole layer as one mesh, instance after instance, the indices counting on: the same floats, bit for bit,
  /// as OrientShape gives instance by instance. Instances with size * scale <= 0 are left out, as there; the mesh then
  /// has no gap in their place. Returns how many instances were written.
  ///
  /// There is one array per attribute. An array that an earlier call put into `p_vertexData` is written again instead
  /// of allocated when it has the right size and no other owner, so a layer that is rebuilt into the same object costs
  /// no memory traffic but its own. Indices and texture coordinates that the layer does not have are removed.
  ///
  /// When nothing is left to write, `p_vertexData` stays as it was and 0 comes back. Likewise after a report: a null
  /// array of positions, rotations or sizes, and more vertices than 32-bit indices can count.
  std::size_t OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                           Ogl::VertexData& p_vertexData) const;

  /// The same into the caller's memory, mapped buffers for example.
  ///
  /// Memory that is too small for the instances that are not left out, or that could not be mapped, is reported; then
  /// nothing is written and 0 comes back.
  ///
  /// \snippet GlyphSnippets.cpp MappedLayer
  std::size_t OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                           const LayerMemory& p_memory) const;

private:
  void BuildPredefinedShape(Model::Symbol::Shape p_shape);
  void BuildShapePoint();
  void BuildShapeArrow(Model::Symbol::Shape p_shape);
  void BuildShapeCube(Model::Symbol::Shape p_shape);
  void BuildShapeCylinder();
  void BuildShapeCone();
  void BuildCircularArrow(Model::Symbol::Shape p_shape);
  void BuildShapeCrossHair();
  void BuildShapeSphere();

  /// How many instances of a layer are written; 0 after a report.
  std::size_t CountShown(const Instances& p_instances, double p_scale, unsigned int p_firstVertex) const;
  /// Writes them; the memory has room.
  void WriteLayer(const Instances& p_instances, double p_anchor, double p_scale, const LayerMemory& p_memory) const;

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
