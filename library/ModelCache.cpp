#include "library/ModelCache.h"

#include "algorithms/InterpretArray.h"
#include "platform/debug/Check.h"

#include <algorithm>

namespace Vek::Chart::Library {
namespace {

using VertexRecord = ModelCache::VertexRecord;
using IndexRecord = ModelCache::IndexRecord;

/// How many primitives `p_count` indices make, in unsigned arithmetic that wraps.
std::uint32_t NumPrimitives(const Ogl::VertexBuffer::PrimitiveType p_type, const std::uint32_t p_count) {
  switch (p_type) {
  case Ogl::VertexBuffer::Points:
    return p_count;
  case Ogl::VertexBuffer::LineSegments:
    return p_count / 2;
  case Ogl::VertexBuffer::LineStrip:
    return p_count - 1;
  case Ogl::VertexBuffer::Triangles:
    return p_count / 3;
  case Ogl::VertexBuffer::TriangleStrip:
    return p_count - 2;
  case Ogl::VertexBuffer::QuadStrip:
    return (p_count - 2) / 2;
  case Ogl::VertexBuffer::LinesAdjacency:
  case Ogl::VertexBuffer::Quads:
    return p_count / 4;
  case Ogl::VertexBuffer::Undecided:
    break;
  }
  VEK_SENTRY("unsigned int __cdecl `anonymous-namespace'::NumPrimitives(const enum "
             "Vek::Chart::Ogl::VertexBuffer::PrimitiveType,const unsigned int)",
             50);
  return 0;
}

std::size_t IndexCount(const ObjModel& p_model) {
  std::size_t count = 0;
  for (const auto& group : *p_model.Groups())
    count += group->indices.size();
  return count;
}

/// Whether there is memory to write to; one report when there should be.
template <class T>
bool IsMapped(const Ogl::BufferPool::WriteArray<T>& p_records, const Ogl::Buffer<T>& p_buffer) {
  return VEK_ENSURE_TEXT(p_records.Count() == p_buffer.Count(), "p_records.Count() == p_buffer.Count()",
                         "unsigned __int64 __cdecl Vek::Chart::Library::ModelCache::Register(const class "
                         "vekfile::filepath &)") &&
         p_records.Count() != 0;
}

void WriteVertices(const ObjModel& p_model, const Ogl::Buffer<VertexRecord>& p_buffer) {
  Ogl::BufferPool::WriteArray<VertexRecord> records(p_buffer, 0, p_buffer.Count(), RGL_ARRAY_BUFFER);
  if (!IsMapped(records, p_buffer))
    return;
  const ObjModel::VertexArray& positions = *p_model.Vertices();
  const ObjModel::VertexArray& normals = *p_model.Normals();
  if (normals.empty()) {
    using Floats = DataInterface::Array<float, 0>;
    Algorithms::InterpretArray<Floats, Floats>::CopyArrayToWithOffset<Ogl::Vec3<float>>(
        Floats(&positions.front().x, 3 * positions.size()), records, 0);
    return;
  }
  DataInterface::Array<VertexRecord, 2> interleaved(records.Data(), records.Count());
  for (std::size_t i = 0; i < positions.size(); ++i) {
    interleaved[2 * i] = positions[i];
    interleaved[2 * i + 1] = normals[i];
  }
}

void WriteIndices(const ObjModel& p_model, const Ogl::Buffer<IndexRecord>& p_buffer) {
  Ogl::BufferPool::WriteArray<IndexRecord> records(p_buffer, 0, p_buffer.Count(), RGL_ARRAY_BUFFER);
  if (!IsMapped(records, p_buffer))
    return;
  using Integers = DataInterface::Array<unsigned int, 0>;
  std::uint64_t offset = 0;
  for (const auto& group : *p_model.Groups()) {
    if (group->indices.empty())
      continue;
    Algorithms::InterpretArray<Integers, Integers>::CopyArrayToWithOffset<Ogl::Vec1<unsigned int>>(
        Integers(group->indices.data(), group->indices.size()), records, offset);
    offset += group->indices.size();
  }
}

Types::BoundingBox_Base<double> BoundsOf(const ObjModel::VertexArray& p_positions) {
  Types::BoundingBox_Base<double> bounds;
  for (const VertexRecord& position : p_positions)
    bounds += Types::Vector3_Base<double>(position.x, position.y, position.z);
  return bounds;
}

/// Makes sure that the next element can be appended without memory being taken.
template <class T>
void MakeRoom(std::vector<T>& p_vector) {
  if (p_vector.size() == p_vector.capacity())
    p_vector.reserve(std::max<std::size_t>(16, 2 * p_vector.size()));
}

} // namespace

ModelCache::ModelCache(const Utility::Unscoped<Ogl::Rgl>& p_gl)
    : _gl(p_gl) {}

std::size_t ModelCache::Register(const vekfile::filepath& p_path) {
  return Register(*LoadPolygonObjFile(p_path));
}

std::size_t ModelCache::Register(const ObjModel& p_model) {
  const std::size_t id = _boundingBoxes.size();
  const Utility::Scoped<Ogl::Rgl> gl(_gl);
  Ogl::BufferPool& pool = gl->GetBufferPool();

  const std::size_t indexCount = IndexCount(p_model);
  const std::size_t positionCount = p_model.Vertices()->size();
  const bool hasNormals = !p_model.Normals()->empty();
  const IndexDescription indices{p_model.PrimitiveType(), 0,
                                 NumPrimitives(p_model.PrimitiveType(), static_cast<std::uint32_t>(indexCount))};
  const VertexDescription vertices =
      hasNormals ? VertexDescription{VertexBuffer::Positions | VertexBuffer::Normals, 2 * sizeof(VertexRecord),
                                     2 * sizeof(VertexRecord), 0, sizeof(VertexRecord)}
                 : VertexDescription{VertexBuffer::Positions, sizeof(VertexRecord), 0, 0, 0};

  const auto vertexBuffer =
      pool.CreateBuffer<VertexRecord>(positionCount * (hasNormals ? 2 : 1), Ogl::BufferUsage::Default);
  const auto indexBuffer = pool.CreateBuffer<IndexRecord>(indexCount, Ogl::BufferUsage::Default);
  WriteVertices(p_model, vertexBuffer);
  WriteIndices(p_model, indexBuffer);
  const Types::BoundingBox_Base<double> bounds = BoundsOf(*p_model.Vertices());

  // Nothing throws from the first append on, so that the arrays stay in step.
  MakeRoom(_vertexBuffers);
  MakeRoom(_indexBuffers);
  MakeRoom(_indexDescriptions);
  MakeRoom(_vertexDescriptions);
  MakeRoom(_boundingBoxes);
  _vertexBuffers.push_back(vertexBuffer);
  _indexBuffers.push_back(indexBuffer);
  _indexDescriptions.push_back(indices);
  _vertexDescriptions.push_back(vertices);
  _boundingBoxes.push_back(bounds);
  return id;
}

Types::BoundingBox_Base<double> ModelCache::GetBoundingBox(std::size_t p_id) const {
  return p_id < _boundingBoxes.size() ? _boundingBoxes[p_id] : Types::BoundingBox_Base<double>();
}

ModelCache::IndexBuffer ModelCache::GetIndexBuffer(std::size_t p_id) const {
  if (p_id >= _indexBuffers.size())
    return {};
  const IndexDescription& description = _indexDescriptions[p_id];
  return {static_cast<Ogl::VertexBuffer::PrimitiveType>(description.type), description.first, description.count,
          _indexBuffers[p_id]};
}

ModelCache::VertexBuffer ModelCache::GetVertexBuffer(std::size_t p_id) const {
  if (p_id >= _vertexBuffers.size())
    return {};
  const VertexDescription& description = _vertexDescriptions[p_id];
  return {description.attributes,     description.positionStride, description.normalStride,
          description.positionOffset, description.normalOffset,   _vertexBuffers[p_id]};
}

} // namespace Vek::Chart::Library
