#include "scene/private/VertexStream.h"

#include "scene/private/MeshDraw.h"

#include "platform/debug/Check.h"

#include <cstddef>
#include <cstring>
#include <limits>

namespace Vek::Chart::Scene::Private {

namespace {

using Vertex = VertexStream::Vertex;

constexpr const char* Signature = "Vek::Chart::Scene::Private::VertexStream::VertexStream";

/// Empty without vertices and after a report.
Ogl::Buffer<unsigned char> Uploaded(const Rgl& p_gl, const std::vector<Vertex>& p_vertices) {
  constexpr std::size_t Most = std::numeric_limits<int>::max() / sizeof(Vertex);
  if (p_vertices.empty() || !VEK_ENSURE_TEXT(p_vertices.size() <= Most, "p_vertices.size() <= Most", Signature))
    return {};
  const std::size_t bytes = p_vertices.size() * sizeof(Vertex);
  const auto buffer = p_gl.GetBufferPool().CreateBuffer<unsigned char>(bytes, Ogl::BufferUsage::Stream);
  if (buffer.Count() == 0)
    return {}; // reported by the pool
  {
    const Ogl::BufferPool::WriteArray<unsigned char> mapped(buffer, 0, bytes, RGL_ARRAY_BUFFER);
    if (!VEK_ENSURE_TEXT(mapped.Count() == bytes, "mapped.Count() == bytes", Signature))
      return {};
    std::memcpy(mapped.Data(), p_vertices.data(), bytes);
  }
  return buffer.Storage()->ContentsLost() ? Ogl::Buffer<unsigned char>() : buffer; // reported by the mapping
}

void Bind(const Rgl& p_gl, unsigned int p_buffer, unsigned int p_attributes) {
  const auto enable = [&](Ogl::GlEnum p_array, unsigned int p_attribute) {
    const bool isRead = (p_attributes & p_attribute) != 0;
    if (isRead)
      p_gl.EnableClientState(p_array);
    else
      p_gl.DisableClientState(p_array);
    return isRead;
  };
  constexpr int Stride = sizeof(Vertex);
  p_gl.BindBuffer(RGL_ARRAY_BUFFER, p_buffer);
  p_gl.EnableClientState(RGL_VERTEX_ARRAY);
  p_gl.VertexPointer(3, RGL_FLOAT, Stride, Offset(offsetof(Vertex, position)));
  p_gl.DisableClientState(RGL_NORMAL_ARRAY);
  p_gl.ClientActiveTexture(RGL_TEXTURE0);
  if (enable(RGL_TEXTURE_COORD_ARRAY, VertexStream::TexCoords))
    p_gl.TexCoordPointer(3, RGL_FLOAT, Stride, Offset(offsetof(Vertex, texCoord)));
  if (enable(RGL_COLOR_ARRAY, VertexStream::Colors))
    p_gl.ColorPointer(4, RGL_FLOAT, Stride, Offset(offsetof(Vertex, color)));
}

} // namespace

std::vector<Vertex> VertexStream::Rectangle(double p_left, double p_bottom, double p_right, double p_top) {
  std::vector<Vertex> corners = {
      {p_left, p_bottom, 0}, {p_right, p_bottom, 0}, {p_right, p_top, 0}, {p_left, p_top, 0}};
  corners[1].texCoord = {1, 0, 0};
  corners[2].texCoord = {1, 1, 0};
  corners[3].texCoord = {0, 1, 0};
  return corners;
}

VertexStream::VertexStream(const Rgl& p_gl, const std::vector<Vertex>& p_vertices, unsigned int p_attributes)
    : _gl(p_gl)
    , _buffer(Uploaded(p_gl, p_vertices)) {
  if (_buffer.Count() == 0)
    return;
  _current = p_gl.PushAttribScope(RGL_CURRENT_BIT);
  _arrays = ArrayScope(p_gl);
  Bind(p_gl, _buffer.Name(), p_attributes);
}

void VertexStream::Draw(Ogl::GlEnum p_mode, std::size_t p_first, std::size_t p_count) const {
  if (_buffer.Count() != 0 && p_count != 0)
    _gl.DrawArrays(p_mode, static_cast<int>(p_first), static_cast<int>(p_count));
}

} // namespace Vek::Chart::Scene::Private
