#include "platform/ogl/MultisampleTexture.h"

#include <epoxy/gl.h>

namespace Vek::Chart::Ogl {

boost::shared_ptr<Texture> MakeMultisampleTexture(const Rgl& p_gl, GlEnum p_internal, Types::Size p_size,
                                                  int p_samples) {
  if (glGetString(GL_VERSION) == nullptr || epoxy_gl_version() < 32)
    return {};
  const boost::shared_ptr<Texture> texture = p_gl.GenTexture();
  if (!texture)
    return {};
  p_gl.BindTexture(MultisampleTarget, texture->Name());
  // Fixed locations, as attachments of one frame buffer must have.
  glTexImage2DMultisample(MultisampleTarget, p_samples, p_internal, p_size.width, p_size.height, GL_TRUE);
  int width = 0;
  p_gl.GetTexLevelParameteriv(MultisampleTarget, 0, RGL_TEXTURE_WIDTH, &width);
  return width == p_size.width ? texture : nullptr;
}

} // namespace Vek::Chart::Ogl
