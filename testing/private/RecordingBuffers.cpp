// The recorder's buffers, vertex arrays and draw calls.

#include "testing/private/RecordingModel.h"
#include "testing/private/RecordingText.h"

#include <algorithm>
#include <cstring>

namespace Vek::Chart::Testing::Recording {
namespace {

GlEnum BindingOf(GlEnum p_target) {
  switch (p_target) {
  case RGL_ARRAY_BUFFER:
    return RGL_ARRAY_BUFFER_BINDING;
  case RGL_ELEMENT_ARRAY_BUFFER:
    return RGL_ELEMENT_ARRAY_BUFFER_BINDING;
  case RGL_PIXEL_PACK_BUFFER:
    return RGL_PIXEL_PACK_BUFFER_BINDING;
  case RGL_PIXEL_UNPACK_BUFFER:
    return RGL_PIXEL_UNPACK_BUFFER_BINDING;
  default:
    return 0;
  }
}

/// Fills new buffers and invalidated mappings, so that a test does not find zeros by chance.
constexpr unsigned char Undefined = 0xCD;

} // namespace

void Model::DeleteBuffers(int p_count, const unsigned int* p_names) {
  for (int i = 0; i < p_count; ++i) {
    if (!Remove("DeleteBuffers", "buffer", p_names[i]))
      continue;
    if (buffers[p_names[i]].mapping)
      Complain("DeleteBuffers: buffer " + std::to_string(p_names[i]) + " is mapped");
    buffers.erase(p_names[i]);
    for (const GlEnum binding : {RGL_ARRAY_BUFFER_BINDING, RGL_ELEMENT_ARRAY_BUFFER_BINDING,
                                 RGL_PIXEL_PACK_BUFFER_BINDING, RGL_PIXEL_UNPACK_BUFFER_BINDING})
      Unbind(binding, p_names[i]);
  }
}

void Model::BindBuffer(GlEnum p_target, unsigned int p_name) {
  if (BindingOf(p_target) == 0)
    return Complain("BindBuffer: " + Name(p_target) + " is no target");
  if (p_name == 0 || Need("BindBuffer", "buffer", p_name))
    Set(BindingOf(p_target), {double(p_name)});
}

Model::BufferObject* Model::BoundBuffer(const std::string& p_call, GlEnum p_target) {
  const auto name = static_cast<unsigned int>(One(BindingOf(p_target)));
  if (name != 0)
    return &buffers[name];
  Complain(p_call + ": no buffer is bound to " + Name(p_target));
  return nullptr;
}

Model::BufferObject* Model::BoundRange(const std::string& p_call, GlEnum p_target, GlSize p_offset, GlSize p_size) {
  BufferObject* const buffer = BoundBuffer(p_call, p_target);
  if (buffer == nullptr)
    return nullptr;
  const auto bytes = static_cast<GlSize>(buffer->bytes.size());
  if (p_offset >= 0 && p_size >= 0 && p_offset <= bytes && p_size <= bytes - p_offset && !buffer->mapping)
    return buffer;
  Complain(p_call + ": " + std::to_string(p_size) + " bytes at " + std::to_string(p_offset) + " of a buffer of " +
           std::to_string(bytes) + (buffer->mapping ? " that is mapped" : ""));
  return nullptr;
}

void Model::BufferData(GlEnum p_target, GlSize p_size, const void* p_data, GlEnum) {
  BufferObject* const buffer = BoundBuffer("BufferData", p_target);
  if (buffer == nullptr)
    return;
  if (p_size < 0)
    return Complain("BufferData: a negative size");
  buffer->bytes.assign(static_cast<std::size_t>(p_size), Undefined);
  if (p_data != nullptr && p_size != 0)
    std::memcpy(buffer->bytes.data(), p_data, buffer->bytes.size());
}

void* Model::MapBufferRange(GlEnum p_target, GlSize p_offset, GlSize p_length, GlBitfield p_access) {
  BufferObject* const buffer = BoundRange("MapBufferRange", p_target, p_offset, p_length);
  if (buffer == nullptr)
    return nullptr;
  if (p_length == 0 || (p_access & (RGL_MAP_READ_BIT | RGL_MAP_WRITE_BIT)) == 0) {
    Complain("MapBufferRange: no bytes, or neither for reading nor for writing");
    return nullptr;
  }
  const bool lost = (p_access & (RGL_MAP_INVALIDATE_RANGE_BIT | RGL_MAP_INVALIDATE_BUFFER_BIT)) != 0;
  const auto first = buffer->bytes.begin() + p_offset;
  buffer->mapping = lost ? std::vector<unsigned char>(static_cast<std::size_t>(p_length), Undefined)
                         : std::vector<unsigned char>(first, first + p_length);
  buffer->mappingOffset = static_cast<std::size_t>(p_offset);
  buffer->mappingAccess = p_access;
  return buffer->mapping->data();
}

GlBoolean Model::UnmapBuffer(GlEnum p_target) {
  BufferObject* const buffer = BoundBuffer("UnmapBuffer", p_target);
  if (buffer == nullptr)
    return 0;
  if (!buffer->mapping) {
    Complain("UnmapBuffer: the buffer is not mapped");
    return 0;
  }
  if ((buffer->mappingAccess & RGL_MAP_WRITE_BIT) != 0)
    std::copy(buffer->mapping->begin(), buffer->mapping->end(),
              buffer->bytes.begin() + static_cast<std::ptrdiff_t>(buffer->mappingOffset));
  buffer->mapping.reset();
  return 1;
}

// Vertex arrays

void Model::SetArray(unsigned int p_array, int p_size, GlEnum p_type, int p_stride, const void* p_pointer) {
  if (p_size < 1 || p_size > 4 || ScalarBytes(p_type) == 0 || p_stride < 0)
    Complain("vertex array " + Name(p_array) + ": " + std::to_string(p_size) + " of " + Name(p_type) + ", stride " +
             std::to_string(p_stride));
  Array& array = _arrays[p_array];
  array.size = p_size;
  array.type = p_type;
  array.stride = p_stride;
  array.pointer = p_pointer;
  array.buffer = static_cast<unsigned int>(One(RGL_ARRAY_BUFFER_BINDING));
}

void Model::VertexPointer(int p_size, GlEnum p_type, int p_stride, const void* p_pointer) {
  SetArray(RGL_VERTEX_ARRAY, p_size, p_type, p_stride, p_pointer);
}
void Model::NormalPointer(GlEnum p_type, int p_stride, const void* p_pointer) {
  SetArray(RGL_NORMAL_ARRAY, 3, p_type, p_stride, p_pointer);
}
void Model::ColorPointer(int p_size, GlEnum p_type, int p_stride, const void* p_pointer) {
  SetArray(RGL_COLOR_ARRAY, p_size, p_type, p_stride, p_pointer);
}
void Model::TexCoordPointer(int p_size, GlEnum p_type, int p_stride, const void* p_pointer) {
  SetArray(RGL_TEXTURE_COORD_ARRAY, p_size, p_type, p_stride, p_pointer);
}
void Model::VertexAttribPointer(unsigned int p_index, int p_size, GlEnum p_type, GlBoolean, int p_stride,
                                const void* p_pointer) {
  SetArray(p_index, p_size, p_type, p_stride, p_pointer);
}

// Draw calls

void Model::DrawElements(GlEnum p_mode, int p_count, GlEnum p_type, const void* p_indices) {
  DrawIndexed("DrawElements", p_mode, p_count, p_type, p_indices, 1);
}
void Model::DrawArraysInstanced(GlEnum p_mode, int p_first, int p_count, int p_instances) {
  Draw("DrawArraysInstanced", p_mode, p_first, p_count, p_instances);
}
void Model::DrawElementsInstanced(GlEnum p_mode, int p_count, GlEnum p_type, const void* p_indices, int p_instances) {
  DrawIndexed("DrawElementsInstanced", p_mode, p_count, p_type, p_indices, p_instances);
}

void Model::Draw(const std::string& p_call, GlEnum p_mode, long long p_first, long long p_count, int p_instances) {
  if (p_mode > RGL_LINES_ADJACENCY)
    Complain(p_call + ": " + Name(p_mode) + " is no primitive");
  if (p_first < 0 || p_count < 0 || p_instances < 0)
    return Complain(p_call + ": a negative number");
  const bool any = std::any_of(_arrays.begin(), _arrays.end(), [](const auto& p_entry) {
    return p_entry.second.enabled && (p_entry.first == RGL_VERTEX_ARRAY || p_entry.first == 0);
  });
  if (!any)
    Complain(p_call + ": no positions, neither the vertex array nor attribute 0 is enabled");
  CheckArrayEnds(p_call, p_count == 0 ? 0 : p_first + p_count, p_instances);
}

void Model::CheckArrayEnds(const std::string& p_call, long long p_vertices, long long p_instances) {
  for (const auto& [key, array] : _arrays) {
    if (!array.enabled)
      continue;
    const long long elements =
        array.divisor == 0 ? p_vertices : (p_instances + array.divisor - 1) / static_cast<long long>(array.divisor);
    const auto elementBytes = static_cast<std::size_t>(array.size) * ScalarBytes(array.type);
    const std::size_t stride = array.stride == 0 ? elementBytes : static_cast<std::size_t>(array.stride);
    const std::string name = key < 16 ? "attribute " + std::to_string(key) : Name(key);
    if (array.buffer == 0) {
      if (array.pointer == nullptr && elements != 0)
        Complain(p_call + ": " + name + " is enabled without an array");
      continue;
    }
    const auto buffer = buffers.find(array.buffer);
    if (buffer == buffers.end() || buffer->second.mapping) {
      Complain(p_call + ": the buffer of " + name + (buffer == buffers.end() ? " was deleted" : " is mapped"));
      continue;
    }
    const std::size_t end = elements == 0 ? 0
                                          : reinterpret_cast<std::uintptr_t>(array.pointer) +
                                                (static_cast<std::size_t>(elements) - 1) * stride + elementBytes;
    if (end > buffer->second.bytes.size())
      Complain(p_call + ": " + name + " reaches to byte " + std::to_string(end) + " of a buffer of " +
               std::to_string(buffer->second.bytes.size()));
  }
}

namespace {

/// One more than the largest index; 0 without any.
template <class T>
long long IndexEnd(const unsigned char* p_bytes, int p_count) {
  long long end = 0;
  for (int i = 0; i < p_count; ++i) {
    T index;
    std::memcpy(&index, p_bytes + static_cast<std::size_t>(i) * sizeof(T), sizeof(T));
    end = std::max(end, static_cast<long long>(index) + 1);
  }
  return end;
}

} // namespace

void Model::DrawIndexed(const std::string& p_call, GlEnum p_mode, int p_count, GlEnum p_type, const void* p_indices,
                        int p_instances) {
  if (p_type != RGL_UNSIGNED_BYTE && p_type != RGL_UNSIGNED_SHORT && p_type != RGL_UNSIGNED_INT)
    return Complain(p_call + ": no indices of " + Name(p_type));
  if (p_count < 0)
    return Complain(p_call + ": a negative number");
  const unsigned char* indices = static_cast<const unsigned char*>(p_indices);
  if (const auto name = static_cast<unsigned int>(One(RGL_ELEMENT_ARRAY_BUFFER_BINDING)); name != 0) {
    const std::vector<unsigned char>& bytes = buffers[name].bytes;
    const auto offset = reinterpret_cast<std::uintptr_t>(p_indices);
    const std::size_t wanted = static_cast<std::size_t>(p_count) * ScalarBytes(p_type);
    if (offset > bytes.size() || wanted > bytes.size() - offset)
      return Complain(p_call + ": " + std::to_string(wanted) + " bytes of indices at " + std::to_string(offset) +
                      " of a buffer of " + std::to_string(bytes.size()));
    indices = bytes.data() + offset;
  } else if (indices == nullptr) {
    return Complain(p_call + ": no indices");
  }
  const long long end = p_type == RGL_UNSIGNED_BYTE    ? IndexEnd<unsigned char>(indices, p_count)
                        : p_type == RGL_UNSIGNED_SHORT ? IndexEnd<unsigned short>(indices, p_count)
                                                       : IndexEnd<unsigned int>(indices, p_count);
  Draw(p_call, p_mode, 0, end, p_instances);
}

} // namespace Vek::Chart::Testing::Recording
