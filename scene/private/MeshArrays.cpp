#include "scene/private/MeshArrays.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene::Private {

namespace {

using Ogl::VertexBuffer;
using Ogl::VertexData;
using Record = GpuMesh::Record;

/// The scalars of the first `p_count` elements as T.
template <class T>
std::vector<T> Scalars(const VertexData::Array& p_array, std::size_t p_count) {
  const std::size_t count = std::min(p_count, p_array.count) * p_array.components;
  const auto copy = [&](auto p_first) {
    std::vector<T> scalars(count);
    std::transform(p_first, p_first + count, scalars.begin(), [](auto p_scalar) { return static_cast<T>(p_scalar); });
    return scalars;
  };
  switch (p_array.type) {
  case VertexData::UnsignedByte:
    return copy(p_array.As<unsigned char>());
  case VertexData::UnsignedShort:
    return copy(p_array.As<unsigned short>());
  case VertexData::UnsignedInt:
    return copy(p_array.As<unsigned int>());
  case VertexData::Float:
    return copy(p_array.As<float>());
  case VertexData::Double:
    return copy(p_array.As<double>());
  }
  return std::vector<T>(count);
}

void RequireReal(const char* p_name, const VertexData::Array& p_array, unsigned int p_least, unsigned int p_most) {
  const bool isReal = p_array.type == VertexData::Float || p_array.type == VertexData::Double;
  if (!p_array.Empty() && !(isReal && p_array.components >= p_least && p_array.components <= p_most))
    throw std::invalid_argument(std::string("GpuMesh: ") + p_name + ": expected " + std::to_string(p_least) + " to " +
                                std::to_string(p_most) + " floats or doubles for each, got " +
                                std::to_string(p_array.components) + " components of type " +
                                std::to_string(p_array.type));
}

} // namespace

std::vector<Record> Records(const Array3& p_array, const Types::Vector3_Base<double>& p_origin) {
  const std::vector<Types::Vector3_Base<float>> points = FloatPoints(p_array, p_origin);
  std::vector<Record> records(points.size());
  std::transform(points.begin(), points.end(), records.begin(), [](const Types::Vector3_Base<float>& p_point) {
    return Record{p_point.x, p_point.y, p_point.z};
  });
  return records;
}

std::vector<Record> Records(const char* p_name, const VertexData::Array& p_array, std::size_t p_count) {
  RequireReal(p_name, p_array, 2, 3);
  const std::vector<float> scalars = Scalars<float>(p_array, p_count);
  std::vector<Record> records(std::min(p_count, p_array.count));
  for (std::size_t i = 0; i < records.size(); ++i) {
    const float* const first = scalars.data() + i * p_array.components;
    records[i] = {first[0], first[1], p_array.components > 2 ? first[2] : 0};
  }
  return records;
}

std::vector<float> TexCoords(const VertexData::Array& p_array, std::size_t p_count) {
  RequireReal("texture coordinates", p_array, 1, 4);
  return Scalars<float>(p_array, p_count);
}

std::vector<std::uint32_t> Indices(const VertexData::Array& p_array) {
  if (!p_array.Empty() && (p_array.type == VertexData::Float || p_array.type == VertexData::Double))
    throw std::invalid_argument("GpuMesh: indices: expected unsigned numbers, got type " +
                                std::to_string(p_array.type));
  return Scalars<std::uint32_t>(p_array, p_array.count);
}

std::vector<std::uint32_t> SoundIndices(const Library::ObjModel& p_model) {
  const VertexBuffer::PrimitiveType type = p_model.PrimitiveType();
  const std::size_t corners = type == VertexBuffer::Triangles ? 3 : type == VertexBuffer::LineSegments ? 2 : 1;
  const std::size_t vertices = p_model.Vertices()->size();
  std::vector<std::uint32_t> indices;
  for (const auto& group : *p_model.Groups())
    for (std::size_t i = 0; group && i + corners <= group->indices.size(); i += corners) {
      const std::uint32_t* const first = group->indices.data() + i;
      if (std::all_of(first, first + corners, [vertices](std::uint32_t p_index) { return p_index < vertices; }))
        indices.insert(indices.end(), first, first + corners);
    }
  return indices;
}

} // namespace Vek::Chart::Scene::Private
