#include "library/VectorSymbol.h"

#include "library/private/mesh/GlyphLayer.h"
#include "library/private/memory/SharedArray.h"
#include "platform/debug/Check.h"
#include "platform/types/Geometry.h"

#include <algorithm>
#include <limits>

namespace Vek::Chart::Library {

namespace {

using Ogl::VertexData;
using Types::Vector3_Base;
using VectorList = std::vector<Vector3_Base<double>>;

bool IsDirectionalShape(const Model::Symbol::Shape p_shape) {
  if (p_shape == Model::Symbol::ShapeCustom)
    VEK_SENTRY("bool __cdecl `anonymous-namespace'::IsDirectionalShape(const enum Vek::Chart::Model::Symbol::Shape)",
               92);
  return p_shape >= Model::Symbol::ShapeArrowHead1D && p_shape <= Model::Symbol::ShapeCone;
}

VectorSymbol::TopologyType GeometryDefinedAs(const Model::Symbol::Shape p_shape) {
  constexpr const char* Signature = "enum Vek::Chart::Library::VectorSymbol::TopologyType __cdecl "
                                    "`anonymous-namespace'::GeometryDefinedAs(const enum "
                                    "Vek::Chart::Model::Symbol::Shape)";
  switch (p_shape) {
  case Model::Symbol::ShapePoint:
    return VectorSymbol::TopologyPoints;
  case Model::Symbol::ShapeArrowHead1D:
  case Model::Symbol::ShapeArrow1D:
  case Model::Symbol::ShapeCrosshair:
    return VectorSymbol::TopologyLines;
  case Model::Symbol::ShapeArrowHead2D:
  case Model::Symbol::ShapeArrow2D:
  case Model::Symbol::ShapePlane:
  case Model::Symbol::ShapeArrowHead3D:
  case Model::Symbol::ShapeArrow3D:
  case Model::Symbol::ShapeCylinder:
  case Model::Symbol::ShapeCone:
  case Model::Symbol::ShapeCircularArrow3D:
  case Model::Symbol::ShapeCube:
  case Model::Symbol::ShapeSphere:
    return VectorSymbol::TopologyTriangles;
  case Model::Symbol::ShapeCustom:
    VEK_SENTRY(Signature, 122);
    break;
  }
  VEK_SENTRY(Signature, 124);
  return VectorSymbol::TopologyPoints;
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

/// The arrays of a glyph or a layer while they are written; those that it does not have stay null.
struct GlyphArrays {
  std::size_t vertexCount = 0;
  std::size_t indexCount = 0;
  Private::SharedArray<float> vertices;
  Private::SharedArray<float> normals;
  Private::SharedArray<float> texCoords;
  Private::SharedArray<unsigned int> indices;

  /// Takes the arrays of `p_old` that can be written again, and makes the others.
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

  void HandOver(VectorSymbol::TopologyType p_topology, VertexData& p_vertexData) const {
    p_vertexData.PrimitiveType() = PrimitiveOf(p_topology);
    p_vertexData.SetVertices(vertices.memory, vertexCount, 3, VertexData::Float);
    p_vertexData.SetNormals(normals.memory, vertexCount, 3, VertexData::Float);
    if (indices.data != nullptr)
      p_vertexData.SetIndices(indices.memory, indexCount, VertexData::UnsignedInt);
    if (texCoords.data != nullptr)
      p_vertexData.SetTexCoords(texCoords.memory, vertexCount, 1, VertexData::Float);
  }
};

/// Normals for glyphs without their own.
constexpr Vector3_Base<double> DefaultNormal(0, 1, 0);

/// For new arrays: there are none to take.
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
  VEK_ENSURE(
      p_shape != Model::Symbol::ShapeCustom,
      "__cdecl Vek::Chart::Library::VectorSymbol::VectorSymbol(const enum Vek::Chart::Model::Symbol::Shape,const "
      "unsigned int)");
  BuildPredefinedShape(p_shape);
}

void VectorSymbol::BuildPredefinedShape(const Model::Symbol::Shape p_shape) {
  _primitive = TopologyPoints;
  _vertices.clear();
  _normals.clear();
  _indices.clear();
  switch (p_shape) {
  case Model::Symbol::ShapePoint:
    BuildShapePoint();
    break;
  case Model::Symbol::ShapeArrowHead1D:
  case Model::Symbol::ShapeArrow1D:
  case Model::Symbol::ShapeArrowHead2D:
  case Model::Symbol::ShapeArrow2D:
  case Model::Symbol::ShapeArrowHead3D:
  case Model::Symbol::ShapeArrow3D:
    BuildShapeArrow(p_shape);
    break;
  case Model::Symbol::ShapePlane:
  case Model::Symbol::ShapeCube:
    BuildShapeCube(p_shape);
    break;
  case Model::Symbol::ShapeCylinder:
    BuildShapeCylinder();
    break;
  case Model::Symbol::ShapeCone:
    BuildShapeCone();
    break;
  case Model::Symbol::ShapeCircularArrow3D:
    BuildCircularArrow(p_shape);
    break;
  case Model::Symbol::ShapeCrosshair:
    BuildShapeCrossHair();
    break;
  case Model::Symbol::ShapeSphere:
    BuildShapeSphere();
    break;
  default:
    VEK_SENTRY("void __cdecl Vek::Chart::Library::VectorSymbol::BuildPredefinedShape(const enum "
               "Vek::Chart::Model::Symbol::Shape)",
               977);
  }
  if (_primitive == TopologyTriangles)
    AccumulateVertexNormals(ComputeFaceNormals(_vertices, _indices), _indices, _vertices.size(), _normals);
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
  arrays.HandOver(_primitive, p_vertexData);
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
  arrays.HandOver(_primitive, p_vertexData);
  return true;
}

std::size_t VectorSymbol::CountShown(const Instances& p_instances, double p_scale, unsigned int p_firstVertex) const {
  constexpr const char* Signature = "unsigned __int64 __cdecl Vek::Chart::Library::VectorSymbol::CountShown(const "
                                    "struct Vek::Chart::Library::VectorSymbol::Instances &,double,unsigned int) const";
  if (_vertices.empty() || p_instances.count == 0)
    return 0;
  if (!VEK_CHECK_POINTER(p_instances.positions, Signature) || !VEK_CHECK_POINTER(p_instances.rotations, Signature) ||
      !VEK_CHECK_POINTER(p_instances.sizes, Signature))
    return 0;
  const auto shown =
      static_cast<std::size_t>(std::count_if(p_instances.sizes, p_instances.sizes + p_instances.count,
                                             [p_scale](double p_size) { return !(p_size * p_scale <= 0.0); }));
  const std::size_t most = (std::numeric_limits<unsigned int>::max() - p_firstVertex) / _vertices.size();
  if (!VEK_ENSURE_TEXT(_indices.empty() || shown <= most, "shown * VertexCount() <= max_index - firstVertex",
                       Signature))
    return 0;
  return shown;
}

void VectorSymbol::WriteLayer(const Instances& p_instances, double p_anchor, double p_scale,
                              const LayerMemory& p_memory) const {
  const Private::GlyphLayer layer(_vertices, HasNormals() ? _normals : VectorList(_vertices.size(), DefaultNormal),
                                  _indices);
  layer.Write(p_instances, p_anchor * _length, p_scale, p_memory);
}

std::size_t VectorSymbol::OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                                       VertexData& p_vertexData) const {
  const std::size_t shown = CountShown(p_instances, p_scale, 0);
  if (shown == 0)
    return 0;
  const GlyphArrays arrays(shown * _vertices.size(), shown * _indices.size(), p_instances.texCoords != nullptr,
                           p_vertexData);
  LayerMemory memory;
  memory.vertices = {arrays.vertices.data, 3 * arrays.vertexCount};
  memory.normals = {arrays.normals.data, 3 * arrays.vertexCount};
  memory.texCoords = {arrays.texCoords.data, arrays.vertexCount};
  memory.indices = {arrays.indices.data, arrays.indexCount};
  WriteLayer(p_instances, p_anchor, p_scale, memory);

  p_vertexData.SetIndices(nullptr, 0, VertexData::UnsignedInt);
  p_vertexData.SetTexCoords(nullptr, 0, 1, VertexData::Float);
  arrays.HandOver(_primitive, p_vertexData);
  return shown;
}

std::size_t VectorSymbol::OrientShapes(const Instances& p_instances, double p_anchor, double p_scale,
                                       const LayerMemory& p_memory) const {
  constexpr const char* Signature =
      "unsigned __int64 __cdecl Vek::Chart::Library::VectorSymbol::OrientShapes(const struct "
      "Vek::Chart::Library::VectorSymbol::Instances &,double,double,const struct "
      "Vek::Chart::Library::VectorSymbol::LayerMemory &) const";
  const std::size_t shown = CountShown(p_instances, p_scale, p_memory.firstVertex);
  const std::size_t vertices = shown * _vertices.size();
  const auto hasRoom = [](const auto& p_target, std::size_t p_scalars) {
    return !p_target.wanted || p_target.count >= p_scalars;
  };
  if (shown == 0 ||
      !VEK_ENSURE_TEXT(hasRoom(p_memory.vertices, 3 * vertices), "p_memory.vertices.count >= 3 * vertices",
                       Signature) ||
      !VEK_ENSURE_TEXT(hasRoom(p_memory.normals, 3 * vertices), "p_memory.normals.count >= 3 * vertices", Signature) ||
      !VEK_ENSURE_TEXT(hasRoom(p_memory.texCoords, vertices), "p_memory.texCoords.count >= vertices", Signature) ||
      !VEK_ENSURE_TEXT(hasRoom(p_memory.indices, shown * _indices.size()), "p_memory.indices.count >= indices",
                       Signature))
    return 0;
  WriteLayer(p_instances, p_anchor, p_scale, p_memory);
  return shown;
}

} // namespace Vek::Chart::Library
