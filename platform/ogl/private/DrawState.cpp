#include "platform/ogl/private/DrawState.h"

#include "platform/ogl/Guard.h"

#include <iterator>

namespace Vek::Chart::Ogl {

std::optional<GlEnum> PrimitiveToken(VertexBuffer::PrimitiveType p_type) {
  constexpr GlEnum tokens[] = {RGL_POINTS,         RGL_LINES,           RGL_LINE_STRIP, RGL_TRIANGLES,
                               RGL_TRIANGLE_STRIP, RGL_LINES_ADJACENCY, RGL_QUAD_STRIP, RGL_QUADS};
  const unsigned int number = p_type;
  if (number >= std::size(tokens))
    return std::nullopt;
  return tokens[number];
}

boost::shared_ptr<void> ClientArrayScope(const Rgl& p_gl) {
  int array_buffer = 0;
  int element_buffer = 0;
  p_gl.GetIntegerv(RGL_ARRAY_BUFFER_BINDING, &array_buffer);
  p_gl.GetIntegerv(RGL_ELEMENT_ARRAY_BUFFER_BINDING, &element_buffer);
  p_gl.PushClientAttrib(RGL_CLIENT_VERTEX_ARRAY_BIT);
  p_gl.BindBuffer(RGL_ARRAY_BUFFER, 0);
  p_gl.BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, 0);
  return MakeGuard([gl = p_gl.Functions(), array_buffer, element_buffer] {
    gl->PopClientAttrib();
    gl->BindBuffer(RGL_ARRAY_BUFFER, static_cast<unsigned int>(array_buffer));
    gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, static_cast<unsigned int>(element_buffer));
  });
}

void EnableArray(const Rgl& p_gl, GlEnum p_array, bool p_enable) {
  if (p_enable)
    p_gl.EnableClientState(p_array);
  else
    p_gl.DisableClientState(p_array);
}

} // namespace Vek::Chart::Ogl
