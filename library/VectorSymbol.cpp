#include "library/VectorSymbol.h"

#include "library/private/memory/SharedArray.h"
#include "library/private/mesh/GlyphLayer.h"
#include "library/private/mesh/GlyphShapes.h"
#include "platform/debug/Check.h"
#include "platform/types/Geometry.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace Vek::Chart::Library {

namespace {

using Ogl::VertexData;
using Types::Vector3_Base;
using VectorList = std::vector<Vector3_Base<double>>;

namespace Signature {
#define VEK_CLASS "Vek::Chart::Library::VectorSymbol::"
#define VEK_SHAPE "const enum Vek::Chart::Model::Symbol::Shape"
#define VEK_INSTANCES "const struct Vek::Chart::Library::VectorSymbol::Instances &"
constexpr const char* IsDirectionalShape = "bool __cdecl `anonymous-namespace'::IsDirectionalShape(" VEK_SHAPE ")";
constexpr const char* GeometryDefinedAs =
    "enum " VEK_CLASS "TopologyType __cdecl `anonymous-namespace'::GeometryDefinedAs(" VEK_SHAPE ")";
constexpr const char* Constructor = "__cdecl " VEK_CLASS "VectorSymbol(" VEK_SHAPE ",const unsigned int)";
constexpr const char* BuildPredefinedShape = "void __cdecl " VEK_CLASS "BuildPredefinedShape(" VEK_SHAPE ")";
constexpr const char* CountShown =
    "unsigned __int64 __cdecl " VEK_CLASS "CountShown(" VEK_INSTANCES ",double,unsigned int) const";
constexpr const char* OrientShapes = "unsigned __int64 __cdecl " VEK_CLASS "OrientShapes(" VEK_INSTANCES
                                     ",double,double,const struct " VEK_CLASS "LayerMemory &) const";
constexpr const char* OrientAlong =
    "struct " VEK_CLASS "DirectedCounts __cdecl " VEK_CLASS "OrientAlongInto(const struct " VEK_CLASS
    "DirectedInstances &,double,double) const";
#undef VEK_CLASS
#undef VEK_SHAPE
#undef VEK_INSTANCES
} // namespace Signature

/// A built-in shape.
struct ShapeRow {
  Model::Symbol::Shape shape;
  VectorSymbol::TopologyType topology;
  bool directional;
  double length; ///< z of the tip
  void (*build)(const Private::GlyphSize&, Private::GlyphMesh&);
};

namespace Symbol = Model::Symbol;
constexpr auto TopologyPoints = VectorSymbol::TopologyPoints;
constexpr auto TopologyLines = VectorSymbol::TopologyLines;
constexpr auto TopologyTriangles = VectorSymbol::TopologyTriangles;

constexpr ShapeRow Shapes[] = {
    // shape, topology, whether it has an axis, length, builder
    {Symbol::ShapePoint, TopologyPoints, false, 0.0, Private::BuildPoint},
    {Symbol::ShapeArrowHead1D, TopologyLines, true, 1.0, Private::BuildArrowHead1D},
    {Symbol::ShapeArrow1D, TopologyLines, true, 3.0, Private::BuildArrow1D},
    {Symbol::ShapeArrowHead2D, TopologyTriangles, true, 1.0, Private::BuildArrowHead2D},
    {Symbol::ShapeArrow2D, TopologyTriangles, true, 3.0, Private::BuildArrow2D},
    {Symbol::ShapePlane, TopologyTriangles, true, 1.0, Private::BuildPlane},
    {Symbol::ShapeArrowHead3D, TopologyTriangles, true, 1.0, Private::BuildArrowHead3D},
    {Symbol::ShapeArrow3D, TopologyTriangles, true, 3.0, Private::BuildArrow3D},
    {Symbol::ShapeCylinder, TopologyTriangles, true, 1.0, Private::BuildCylinder},
    {Symbol::ShapeCone, TopologyTriangles, true, 1.0, Private::BuildCone},
    {Symbol::ShapeCircularArrow3D, TopologyTriangles, false, 1.0, Private::BuildCircularArrow},
    {Symbol::ShapeCrosshair, TopologyLines, false, 1.0, Private::BuildCrosshair},
    {Symbol::ShapeCube, TopologyTriangles, false, 1.0, Private::BuildCube},
    {Symbol::ShapeSphere, TopologyTriangles, false, 1.0, Private::BuildSphere},
};

/// The row of a shape; null if it has none.
const ShapeRow* FindShape(Model::Symbol::Shape p_shape) {
  const auto* const row = std::find_if(std::begin(Shapes), std::end(Shapes),
                                       [p_shape](const ShapeRow& p_row) { return p_row.shape == p_shape; });
  return row == std::end(Shapes) ? nullptr : row;
}

bool IsDirectionalShape(const Model::Symbol::Shape p_shape) {
  if (p_shape == Model::Symbol::ShapeCustom)
    VEK_SENTRY(Signature::IsDirectionalShape, 92);
  const ShapeRow* const row = FindShape(p_shape);
  return row != nullptr && row->directional;
}

VectorSymbol::TopologyType GeometryDefinedAs(const Model::Symbol::Shape p_shape) {
  if (const ShapeRow* const row = FindShape(p_shape); row != nullptr)
    return row->topology;
  if (p_shape == Model::Symbol::ShapeCustom)
    VEK_SENTRY(Signature::GeometryDefinedAs, 122);
  VEK_SENTRY(Signature::GeometryDefinedAs, 124);
  return TopologyPoints;
}

unsigned int NormalizedResolution(unsigned int p_resolution) {
  return std::max(p_resolution / 4, 1u) * 4;
}

/// The unit normal of each triangle.
VectorList ComputeFaceNormals(const VectorList& p_vertices, const std::vector<unsigned int>& p_indices) {
  VectorList normals;
  normals.reserve(p_indices.size() / 3);
  for (std::size_t i = 0; i + 2 < p_indices.size(); i += 3) {
    const Types::Plane face(p_vertices[p_indices[i]], p_vertices[p_indices[i + 1]], p_vertices[p_indices[i + 2]]);
    normals.push_back(Types::Normalize(face.Normal()));
  }
  return normals;
}

/// The mean of the normals of the triangles around each vertex, at unit length; zero where there are none.
void AccumulateVertexNormals(const VectorList& p_faceNormals, const std::vector<unsigned int>& p_indices,
                             std::size_t p_vertexCount, VectorList& p_normals) {
  p_normals.resize(p_vertexCount);
  std::vector<unsigned int> faceCounts(p_vertexCount);
  for (std::size_t i = 0; i < p_indices.size(); ++i) {
    p_normals[p_indices[i]] += p_faceNormals[i / 3];
    ++faceCounts[p_indices[i]];
  }
  for (std::size_t v = 0; v < p_vertexCount; ++v)
    if (faceCounts[v] != 0)
      p_normals[v] = Types::Normalize(p_normals[v] / static_cast<double>(faceCounts[v]));
}

Ogl::VertexBuffer::PrimitiveType PrimitiveOf(VectorSymbol::TopologyType p_topology) {
  switch (p_topology) {
  case VectorSymbol::TopologyTriangles:
    return Ogl::VertexBuffer::Triangles;
  case VectorSymbol::TopologyLines:
    return Ogl::VertexBuffer::LineSegments;
  default:
    return Ogl::VertexBuffer::Points;
  }
}

/// The arrays of a glyph or a layer while they are written; absent ones are null.
struct GlyphArrays {
  std::size_t vertexCount = 0;
  std::size_t indexCount = 0;
  Private::SharedArray<float> vertices;
  Private::SharedArray<float> normals;
  Private::SharedArray<float> texCoords;
  Private::SharedArray<unsigned int> indices;

  /// Reuses the arrays of `p_old` that fit and have no other owner; allocates the others.
  GlyphArrays(std::size_t p_vertices, std::size_t p_indices, bool p_texCoords, const VertexData& p_old)
      : vertexCount(p_vertices)
      , indexCount(p_indices)
      , vertices(Private::ReuseOrNew<float>(p_old.Vertices(), p_vertices, 3, VertexData::Float))
      , normals(Private::ReuseOrNew<float>(p_old.Normals(), p_vertices, 3, VertexData::Float)) {
    if (p_indices != 0)
      indices = Private::ReuseOrNew<unsigned int>(p_old.Indices(), p_indices, 1, VertexData::UnsignedInt);
    if (p_texCoords)
      texCoords = Private::ReuseOrNew<float>(p_old.TexCoords(), p_vertices, 1, VertexData::Float);
  }

  void Share(VectorSymbol::TopologyType p_topology, VertexData& p_vertexData) const {
    p_vertexData.PrimitiveType() = PrimitiveOf(p_topology);
    p_vertexData.SetVertices(vertices.memory, vertexCount, 3, VertexData::Float);
    p_vertexData.SetNormals(normals.memory, vertexCount, 3, VertexData::Float);
    if (indices.data != nullptr)
      p_vertexData.SetIndices(indices.memory, indexCount, VertexData::UnsignedInt);
    if (texCoords.data != nullptr)
      p_vertexData.SetTexCoords(texCoords.memory, vertexCount, 1, VertexData::Float);
  }
};

/// The normal of glyphs without their own.
constexpr Vector3_Base<double> DefaultNormal(0, 1, 0);

/// Nothing to reuse.
const VertexData NoArrays;

void StoreFloats(const Vector3_Base<double>& p_vector, float* p_out) {
  p_out[0] = static_cast<float>(p_vector.x);
  p_out[1] = static_cast<float>(p_vector.y);
  p_out[2] = static_cast<float>(p_vector.z);
}

} // namespace

VectorSymbol::VectorSymbol() {
  BuildPredefinedShape(Model::Symbol::ShapePoint);
}

VectorSymbol::VectorSymbol(const Model::Symbol::Shape p_shape, const unsigned int p_resolution)
    : _directional(IsDirectionalShape(p_shape))
    , _topology(Library::GeometryDefinedAs(p_shape))
    , _resolution(NormalizedResolution(p_resolution)) {
  VEK_ENSURE(p_shape != Model::Symbol::ShapeCustom, Signature::Constructor);
  BuildPredefinedShape(p_shape);
}

void VectorSymbol::BuildPredefinedShape(const Model::Symbol::Shape p_shape) {
  const ShapeRow* const row = FindShape(p_shape);
  if (row == nullptr) {
    VEK_SENTRY(Signature::BuildPredefinedShape, 977);
    return;
  }
  Private::GlyphMesh mesh;
  row->build({_resolution, row->length}, mesh);
  if (row->topology == TopologyTriangles)
    AccumulateVertexNormals(ComputeFaceNormals(mesh.vertices, mesh.indices), mesh.indices, mesh.vertices.size(),
                            mesh.normals);
  _primitive = row->topology;
  _vertices = std::move(mesh.vertices);
  _normals = std::move(mesh.normals);
  _indices = std::move(mesh.indices);
  _length = row->length;
}

bool VectorSymbol::BuildShape(VertexData& p_vertexData) const {
  if (_vertices.empty())
    return false;
  const GlyphArrays arrays(_vertices.size(), _indices.size(), false, NoArrays);
  for (std::size_t i = 0; i < _vertices.size(); ++i) {
    StoreFloats(_vertices[i], arrays.vertices.data + 3 * i);
    StoreFloats(HasNormals() ? _normals[i] : DefaultNormal, arrays.normals.data + 3 * i);
  }
  std::copy(_indices.begin(), _indices.end(), arrays.indices.data);
  arrays.Share(_primitive, p_vertexData);
  return true;
}

bool VectorSymbol::OrientShape(double p_size, double p_anchor, const Vector3_Base<double>& p_position,
                               bool p_writeTexCoord, double p_texCoord, double p_scale,
                               const Types::Matrix3& p_rotation, VertexData& p_vertexData) const {
  if (_vertices.empty())
    return false;
  const double factor = p_size * p_scale;
  if (factor <= 0.0)
    return false;

  const GlyphArrays arrays(_vertices.size(), _indices.size(), p_writeTexCoord, NoArrays);
  const Vector3_Base<double> shift(0, 0, p_anchor * _length);
  for (std::size_t i = 0; i < _vertices.size(); ++i) {
    StoreFloats(p_rotation * ((_vertices[i] - shift) * factor) + p_position, arrays.vertices.data + 3 * i);
    StoreFloats(p_rotation * (HasNormals() ? _normals[i] : DefaultNormal), arrays.normals.data + 3 * i);
  }
  std::copy(_indices.begin(), _indices.end(), arrays.indices.data);
  if (p_writeTexCoord)
    std::fill_n(arrays.texCoords.data, _vertices.size(), static_cast<float>(p_texCoord));
  arrays.Share(_primitive, p_vertexData);
  return true;
}

namespace {

/// True if the layer has instances, with all arrays that they need; reports a null array.
bool HasArrays(const VectorSymbol::Instances& p_instances) {
  return p_instances.count != 0 && VEK_CHECK_POINTER(p_instances.positions, Signature::CountShown) &&
         VEK_CHECK_POINTER(p_instances.rotations, Signature::CountShown) &&
         VEK_CHECK_POINTER(p_instances.sizes, Signature::CountShown);
}

/// The number of instances to write; 0 after a report. Also reports the instances left out because of a NaN.
std::size_t CountShown(const Private::GlyphLayer& p_layer, const VectorSymbol& p_symbol, unsigned int p_firstVertex) {
  const std::vector<std::size_t>& notANumber = p_layer.NotANumber();
  VEK_ENSURE_AT(notANumber.empty(), "notANumber == 0", Signature::CountShown,
                {{}, 0, {}, notANumber.front(), notANumber.size()});
  const std::size_t most = (std::numeric_limits<unsigned int>::max() - p_firstVertex) / p_symbol.VertexCount();
  if (!VEK_ENSURE_TEXT(p_symbol.IndexCount() == 0 || p_layer.Count() <= most,
                       "shown * VertexCount() <= max_index - firstVertex", Signature::CountShown))
    return 0;
  return p_layer.Count();
}

} // namespace

Private::GlyphLayer VectorSymbol::MakeLayer(const Instances& p_instances, double p_anchor, double p_scale) const {
  return {_vertices,
          HasNormals() ? _normals : VectorList(_vertices.size(), DefaultNormal),
          _indices,
          {p_instances.count, p_instances.positions, p_instances.rotations, p_instances.sizes, p_instances.texCoords,
           p_scale, p_anchor * _length}};
}

std::size_t VectorSymbol::OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                                       VertexData& p_vertexData) const {
  return OrientShapes(p_instances, p_anchor, p_scale, p_vertexData, Utility::Threads());
}

std::size_t VectorSymbol::OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                                       const LayerMemory& p_memory) const {
  return OrientShapes(p_instances, p_anchor, p_scale, p_memory, Utility::Threads());
}

std::size_t VectorSymbol::OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                                       VertexData& p_vertexData, Utility::Threads p_threads) const {
  if (_vertices.empty() || !HasArrays(p_instances))
    return 0;
  const Private::GlyphLayer layer = MakeLayer(p_instances, p_anchor, p_scale);
  const std::size_t shown = CountShown(layer, *this, 0);
  if (shown == 0)
    return 0;
  const GlyphArrays arrays(shown * _vertices.size(), shown * _indices.size(), p_instances.texCoords != nullptr,
                           p_vertexData);
  layer.Write({arrays.vertices.data, arrays.normals.data, arrays.texCoords.data, arrays.indices.data, 0}, p_threads);

  p_vertexData.SetIndices(nullptr, 0, VertexData::UnsignedInt);
  p_vertexData.SetTexCoords(nullptr, 0, 1, VertexData::Float);
  arrays.Share(_primitive, p_vertexData);
  return shown;
}

std::size_t VectorSymbol::OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                                       const LayerMemory& p_memory, Utility::Threads p_threads) const {
  if (_vertices.empty() || !HasArrays(p_instances))
    return 0;
  const Private::GlyphLayer layer = MakeLayer(p_instances, p_anchor, p_scale);
  const std::size_t shown = CountShown(layer, *this, p_memory.firstVertex);
  const std::size_t vertices = shown * _vertices.size();
  const auto hasRoom = [](const auto& p_target, std::size_t p_scalars, const char* p_expression) {
    return VEK_ENSURE_AT(!p_target.wanted || p_target.count >= p_scalars, p_expression, Signature::OrientShapes,
                         {{}, 0, {}, {}, p_target.count});
  };
  if (shown == 0 || !hasRoom(p_memory.vertices, 3 * vertices, "p_memory.vertices.count >= 3 * vertices") ||
      !hasRoom(p_memory.normals, 3 * vertices, "p_memory.normals.count >= 3 * vertices") ||
      !hasRoom(p_memory.texCoords, vertices, "p_memory.texCoords.count >= vertices") ||
      !hasRoom(p_memory.indices, shown * _indices.size(), "p_memory.indices.count >= indices"))
    return 0;
  layer.Write({p_memory.vertices.data, p_memory.normals.data, p_memory.texCoords.data, p_memory.indices.data,
               p_memory.firstVertex},
              p_threads);
  return shown;
}

namespace {

/// False for the zero vector and for one that is not finite.
bool HasDirection(const Vector3_Base<double>& p_vector) {
  return std::isfinite(p_vector.x) && std::isfinite(p_vector.y) && std::isfinite(p_vector.z) &&
         p_vector != Vector3_Base<double>();
}

} // namespace

template <class Memory>
VectorSymbol::DirectedCounts VectorSymbol::OrientAlongInto(const DirectedInstances& p_instances, double p_anchor,
                                                           double p_scale, Memory& p_target,
                                                           Utility::Threads p_threads) const {
  DirectedCounts counts;
  if (_vertices.empty() || p_instances.count == 0 ||
      !VEK_CHECK_POINTER(p_instances.positions, Signature::OrientAlong) ||
      !VEK_CHECK_POINTER(p_instances.directions, Signature::OrientAlong))
    return counts;
  std::vector<Types::Matrix3> rotations(p_instances.count);
  std::vector<double> sizes(p_instances.count, 0.0); // a size of 0 leaves an instance out
  constexpr std::size_t BlockSize = 4096;
  std::atomic<std::size_t> undirected = 0;
  Utility::RunRanges(p_threads, p_instances.count, BlockSize, [&](std::size_t p_first, std::size_t p_last) {
    for (std::size_t i = p_first; i < p_last; ++i) {
      const Vector3_Base<double>& direction = p_instances.directions[i];
      if (!HasDirection(direction)) {
        ++undirected;
        continue;
      }
      rotations[i] = Types::Matrix3::FromAxis(direction, p_instances.up);
      sizes[i] =
          p_instances.sizes != nullptr ? p_instances.sizes[i] : std::hypot(direction.x, direction.y, direction.z);
    }
  });
  counts.undirected = undirected;
  const Instances rotated{p_instances.count, p_instances.positions, rotations.data(), sizes.data(),
                          p_instances.texCoords};
  counts.written = OrientShapes(rotated, p_anchor, p_scale, p_target, p_threads);
  return counts;
}

VectorSymbol::DirectedCounts VectorSymbol::OrientAlong(const DirectedInstances& p_instances, double p_anchor,
                                                       double p_scale, VertexData& p_vertexData,
                                                       Utility::Threads p_threads) const {
  return OrientAlongInto(p_instances, p_anchor, p_scale, p_vertexData, p_threads);
}

VectorSymbol::DirectedCounts VectorSymbol::OrientAlong(const DirectedInstances& p_instances, double p_anchor,
                                                       double p_scale, const LayerMemory& p_memory,
                                                       Utility::Threads p_threads) const {
  return OrientAlongInto(p_instances, p_anchor, p_scale, p_memory, p_threads);
}

} // namespace Vek::Chart::Library
