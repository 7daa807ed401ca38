#include "library/ModelCache.h"

#include "algorithms/InterpretArray.h"
#include "platform/debug/Check.h"

#include <boost/make_shared.hpp>

#include <algorithm>

namespace Vek::Chart::Library {
namespace {

using VertexRecord = ModelCache::VertexRecord;
using IndexRecord = ModelCache::IndexRecord;

namespace Signature {
constexpr const char* NumPrimitives = "unsigned int __cdecl `anonymous-namespace'::NumPrimitives(const enum "
                                      "Vek::Chart::Ogl::VertexBuffer::PrimitiveType,const unsigned int)";
constexpr const char* Register = "unsigned __int64 __cdecl Vek::Chart::Library::ModelCache::Register(const class "
                                 "vekfile::filepath &)";
constexpr const char* RegisterModel = "unsigned __int64 __cdecl Vek::Chart::Library::ModelCache::Register(const class "
                                      "Vek::Chart::Library::ObjModel &)";
} // namespace Signature

/// The number of primitives that `p_count` indices make, in unsigned arithmetic that wraps.
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
  VEK_SENTRY(Signature::NumPrimitives, 50);
  return 0;
}

/// The arrays of a model, null ones replaced by empty ones.
class Mesh {
public:
  explicit Mesh(const ObjModel& p_model)
      : _groups(OrEmpty(p_model.Groups()))
      , _positions(OrEmpty(p_model.Vertices()))
      , _normals(OrEmpty(p_model.Normals())) {
    if (!VEK_ENSURE_TEXT(_normals->empty() || _normals->size() >= _positions->size(),
                         "p_model.Normals()->size() >= p_model.Vertices()->size()", Signature::RegisterModel))
      _normals = boost::make_shared<ObjModel::VertexArray>();
    for (const boost::shared_ptr<ObjModel::ObjGroup>& group : *_groups)
      VEK_CHECK_POINTER(group, Signature::RegisterModel);
  }

  const ObjModel::VertexArray& Positions() const { return *_positions; }
  /// Empty, or as many as positions or more.
  const ObjModel::VertexArray& Normals() const { return *_normals; }

  /// Calls p_use(indices) for each group that has indices.
  template <class Use>
  void ForIndices(Use p_use) const {
    for (const boost::shared_ptr<ObjModel::ObjGroup>& group : *_groups)
      if (group && !group->indices.empty())
        p_use(group->indices);
  }
  std::size_t IndexCount() const {
    std::size_t count = 0;
    ForIndices([&count](const std::vector<std::uint32_t>& p_indices) { count += p_indices.size(); });
    return count;
  }

private:
  template <class T>
  static boost::shared_ptr<T> OrEmpty(const boost::shared_ptr<T>& p_array) {
    return VEK_CHECK_POINTER(p_array, Signature::RegisterModel) ? p_array : boost::make_shared<T>();
  }

  boost::shared_ptr<ObjModel::GroupList> _groups;
  boost::shared_ptr<ObjModel::VertexArray> _positions;
  boost::shared_ptr<ObjModel::VertexArray> _normals;
};

/// The buffer, filled by p_fill(records); an empty one if it cannot be mapped, which is reported, or is empty.
template <class Record, class Fill>
Ogl::Buffer<Record> Filled(const Ogl::Buffer<Record>& p_buffer, Fill p_fill) {
  Ogl::BufferPool::WriteArray<Record> records(p_buffer, 0, p_buffer.Count(), RGL_ARRAY_BUFFER);
  if (!VEK_ENSURE_TEXT(records.Count() == p_buffer.Count(), "p_records.Count() == p_buffer.Count()",
                       Signature::Register) ||
      records.Count() == 0)
    return {};
  p_fill(records);
  return p_buffer;
}
using VertexRecords = Ogl::BufferPool::WriteArray<VertexRecord>;
using IndexRecords = Ogl::BufferPool::WriteArray<IndexRecord>;

void WriteVertices(const Mesh& p_mesh, VertexRecords& p_records) {
  const ObjModel::VertexArray& positions = p_mesh.Positions();
  const ObjModel::VertexArray& normals = p_mesh.Normals();
  if (normals.empty()) {
    using Floats = DataInterface::Array<float, 0>;
    Algorithms::InterpretArray<Floats, Floats>::CopyArrayToWithOffset<Ogl::Vec3<float>>(
        Floats(&positions.front().x, 3 * positions.size()), p_records, 0);
    return;
  }
  DataInterface::Array<VertexRecord, 2> interleaved(p_records.Data(), p_records.Count());
  for (std::size_t i = 0; i < positions.size(); ++i) {
    interleaved[2 * i] = positions[i];
    interleaved[2 * i + 1] = normals[i];
  }
}

void WriteIndices(const Mesh& p_mesh, IndexRecords& p_records) {
  using Integers = DataInterface::Array<unsigned int, 0>;
  std::uint64_t offset = 0;
  p_mesh.ForIndices([&](const std::vector<std::uint32_t>& p_indices) {
    Algorithms::InterpretArray<Integers, Integers>::CopyArrayToWithOffset<Ogl::Vec1<unsigned int>>(
        Integers(p_indices.data(), p_indices.size()), p_records, offset);
    offset += p_indices.size();
  });
}

Types::BoundingBox_Base<double> BoundsOf(const ObjModel::VertexArray& p_positions) {
  Types::BoundingBox_Base<double> bounds;
  for (const VertexRecord& position : p_positions)
    bounds += Types::Vector3_Base<double>(position.x, position.y, position.z);
  return bounds;
}

/// Makes room for one element, so that appending it cannot throw.
template <class T>
void MakeRoom(std::vector<T>& p_vector) {
  if (p_vector.size() == p_vector.capacity())
    p_vector.reserve(std::max<std::size_t>(16, 2 * p_vector.size()));
}

} // namespace

ModelCache::ModelCache(const Utility::Unscoped<Ogl::Rgl>& p_gl)
    : _gl(p_gl) {}

std::size_t ModelCache::Register(const vekfile::filepath& p_path) {
  const Utility::Scoped<Ogl::Rgl> gl(_gl);
  Ogl::BufferPool& pool = gl->GetBufferPool();
  return Upload(*LoadPolygonObjFile(p_path), pool);
}

std::size_t ModelCache::Register(const ObjModel& p_model) {
  const Utility::Scoped<Ogl::Rgl> gl(_gl);
  return Upload(p_model, gl->GetBufferPool());
}

std::size_t ModelCache::Upload(const ObjModel& p_model, Ogl::BufferPool& p_pool) {
  const Mesh mesh(p_model);
  const std::size_t indexCount = mesh.IndexCount();
  const std::size_t positionCount = mesh.Positions().size();
  const bool hasNormals = !mesh.Normals().empty();
  IndexDescription indices{p_model.PrimitiveType(), 0,
                           NumPrimitives(p_model.PrimitiveType(), static_cast<std::uint32_t>(indexCount))};
  const VertexDescription vertices =
      hasNormals ? VertexDescription{VertexBuffer::Positions | VertexBuffer::Normals, 2 * sizeof(VertexRecord),
                                     2 * sizeof(VertexRecord), 0, sizeof(VertexRecord)}
                 : VertexDescription{VertexBuffer::Positions, sizeof(VertexRecord), 0, 0, 0};

  const auto newVertices =
      p_pool.CreateBuffer<VertexRecord>(positionCount * (hasNormals ? 2 : 1), Ogl::BufferUsage::Default);
  const auto newIndices = p_pool.CreateBuffer<IndexRecord>(indexCount, Ogl::BufferUsage::Default);
  const auto vertexBuffer = Filled(newVertices, [&](VertexRecords& p_records) { WriteVertices(mesh, p_records); });
  const auto indexBuffer = Filled(newIndices, [&](IndexRecords& p_records) { WriteIndices(mesh, p_records); });
  if (indexCount != 0 && indexBuffer.Count() == 0)
    indices.count = 0; // the buffer could not be made or mapped
  const Types::BoundingBox_Base<double> bounds = BoundsOf(mesh.Positions());

  // After this nothing throws or reports, so that the arrays stay in step.
  const std::size_t id = _boundingBoxes.size();
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

ModelCache::Model ModelCache::GetModel(std::size_t p_id) const {
  return {GetVertexBuffer(p_id), GetIndexBuffer(p_id), GetBoundingBox(p_id)};
}

bool ModelCache::Release(std::size_t p_id) {
  if (p_id >= _vertexDescriptions.size() || _vertexDescriptions[p_id].attributes == 0) // every model has positions
    return false;
  const Utility::Scoped<Ogl::Rgl> gl(_gl);
  _vertexBuffers[p_id] = {};
  _indexBuffers[p_id] = {};
  _indexDescriptions[p_id] = {Ogl::VertexBuffer::Undecided, 0, 0};
  _vertexDescriptions[p_id] = {};
  _boundingBoxes[p_id] = {};
  return true;
}

Ogl::BufferDraw ModelDraw(const ModelCache::Model& p_model) {
  Ogl::BufferDraw draw;
  draw.type = p_model.indices.type;
  draw.indices = p_model.indices.buffer;
  draw.vertices = p_model.vertices.buffer;
  draw.attributes = p_model.vertices.attributes;
  draw.positionStride = p_model.vertices.positionStride;
  draw.normalStride = p_model.vertices.normalStride;
  draw.positionOffset = p_model.vertices.positionOffset;
  draw.normalOffset = p_model.vertices.normalOffset;
  return draw;
}

} // namespace Vek::Chart::Library
