#include "library/private/gl/PixelStore.h"

#include "platform/ogl/Guard.h"

#include <initializer_list>

namespace Vek::Chart::Library::Private {

namespace {

boost::shared_ptr<void> TightScope(Utility::Scoped<Rgl>& p_gl, Ogl::GlEnum p_buffer, Ogl::GlEnum p_alignment,
                                   std::initializer_list<Ogl::GlEnum> p_others) {
  const boost::shared_ptr<Rgl> gl = p_gl.Handle().Object();
  gl->PushClientAttrib(RGL_CLIENT_PIXEL_STORE_BIT);
  const boost::shared_ptr<void> scope = Ogl::MakeGuard([gl] { gl->PopClientAttrib(); });
  gl->BindBuffer(p_buffer, 0);
  gl->PixelStorei(p_alignment, 1);
  for (const Ogl::GlEnum other : p_others)
    gl->PixelStorei(other, 0);
  return scope;
}

} // namespace

boost::shared_ptr<void> PackScope(Utility::Scoped<Rgl>& p_gl) {
  return TightScope(p_gl, RGL_PIXEL_PACK_BUFFER, RGL_PACK_ALIGNMENT,
                    {RGL_PACK_ROW_LENGTH, RGL_PACK_SKIP_ROWS, RGL_PACK_SKIP_PIXELS, RGL_PACK_SWAP_BYTES});
}

boost::shared_ptr<void> PixelPackScope(Utility::Scoped<Rgl>& p_gl) {
  for (const Ogl::GlEnum name : {RGL_PIXEL_PACK_BUFFER_BINDING, RGL_PACK_SKIP_ROWS, RGL_PACK_SKIP_PIXELS}) {
    int value = 0;
    p_gl->GetIntegerv(name, &value);
    if (value != 0)
      return PackScope(p_gl);
  }
  return {};
}

boost::shared_ptr<void> UnpackScope(Utility::Scoped<Rgl>& p_gl) {
  return TightScope(p_gl, RGL_PIXEL_UNPACK_BUFFER, RGL_UNPACK_ALIGNMENT,
                    {RGL_UNPACK_ROW_LENGTH, RGL_UNPACK_SKIP_ROWS, RGL_UNPACK_SKIP_PIXELS, RGL_UNPACK_SWAP_BYTES,
                     RGL_UNPACK_IMAGE_HEIGHT, RGL_UNPACK_SKIP_IMAGES});
}

} // namespace Vek::Chart::Library::Private
