#include "platform/ogl/private/DrawState.h"

#include "platform/ogl/Guard.h"

#include <iterator>

namespace Vek::Chart::Ogl {

std::optional<GlEnum> PrimitiveToken(VertexBuffer::PrimitiveType p_type) {
  constexpr GlEnum Tokens[] = {RGL_POINTS,         RGL_LINES,           RGL_LINE_STRIP, RGL_TRIANGLES,
                               RGL_TRIANGLE_STRIP, RGL_LINES_ADJACENCY, RGL_QUAD_STRIP, RGL_QUADS};
  const unsigned int number = p_type;
  if (number >= std::size(Tokens))
    return std::nullopt;
  return Tokens[number];
}

boost::shared_ptr<void> ClientArrayScope(const Rgl& p_gl) {
  int arrayBuffer = 0;
  int elementBuffer = 0;
  p_gl.GetIntegerv(RGL_ARRAY_BUFFER_BINDING, &arrayBuffer);
  p_gl.GetIntegerv(RGL_ELEMENT_ARRAY_BUFFER_BINDING, &elementBuffer);
  p_gl.PushClientAttrib(RGL_CLIENT_VERTEX_ARRAY_BIT);
  p_gl.BindBuffer(RGL_ARRAY_BUFFER, 0);
  p_gl.BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, 0);
  return MakeGuard([gl = p_gl.Functions(), arrayBuffer, elementBuffer] {
    gl->PopClientAttrib();
    gl->BindBuffer(RGL_ARRAY_BUFFER, static_cast<unsigned int>(arrayBuffer));
    gl->BindBuffer(RGL_ELEMENT_ARRAY_BUFFER, static_cast<unsigned int>(elementBuffer));
  });
}

void EnableArray(const Rgl& p_gl, GlEnum p_array, bool p_enable) {
  if (p_enable)
    p_gl.EnableClientState(p_array);
  else
    p_gl.DisableClientState(p_array);
}

} // namespace Vek::Chart::Ogl
