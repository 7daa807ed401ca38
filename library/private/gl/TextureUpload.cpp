#include "library/private/gl/TextureUpload.h"

#include "library/private/gl/GlFormat.h"

namespace Vek::Chart::Library::Private {

void UploadImage(Utility::Scoped<Rgl>& p_gl, const QImage& p_image, Ogl::GlEnum p_internalFormat) {
  p_gl->PixelStorei(RGL_UNPACK_ALIGNMENT, 1);
  if (p_image.isNull())
    return;
  const QImage texels = GlFormat(p_image);
  if (texels.isNull()) // no memory for a second image
    return;
  p_gl->TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(p_internalFormat), texels.width(), texels.height(), 0, RGL_RGBA,
                   RGL_UNSIGNED_BYTE, texels.constBits());
}

} // namespace Vek::Chart::Library::Private
