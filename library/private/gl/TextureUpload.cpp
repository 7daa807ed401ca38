#include "library/private/gl/TextureUpload.h"

#include "library/private/gl/GlFormat.h"
#include "platform/debug/Check.h"
#include "platform/ogl/PixelStore.h"

#include <algorithm>
#include <string>

namespace Vek::Chart::Library::Private {

bool FitsDevice(Utility::Scoped<Rgl>& p_gl, int p_width, int p_height, const char* p_signature) {
  const int limit = p_gl->GetMaxTextureSize();
  const int largest = std::max(p_width, p_height);
  return limit < 1 || // not known: the upload will show it
         VEK_ENSURE_TEXT(largest <= limit,
                         "largest <= GL_MAX_TEXTURE_SIZE && \"" + std::to_string(p_width) + " x " +
                             std::to_string(p_height) + " texels, the limit is " + std::to_string(limit) + "\"",
                         p_signature);
}

boost::shared_ptr<Ogl::Texture> MakeTexture(Utility::Scoped<Rgl>& p_gl, Rgl::TexSamplerType p_sampler,
                                            const char* p_signature) {
  p_gl->CheckError(std::string("before ") + p_signature);
  const boost::shared_ptr<Ogl::Texture> texture = p_gl->GenTexture();
  if (texture)
    p_gl->Bind(texture, p_sampler);
  else // images would go into the host's texture
    p_gl->CheckError(p_signature);
  return texture;
}

boost::shared_ptr<Ogl::Texture> MakeTexture(Utility::Scoped<Rgl>& p_gl, const QImage& p_image,
                                            Ogl::GlEnum p_internalFormat, const char* p_signature) {
  const boost::shared_ptr<Ogl::Texture> texture = MakeTexture(p_gl, Rgl::Sampler2D, p_signature);
  if (!texture)
    return {};
  p_gl->PixelStorei(RGL_UNPACK_ALIGNMENT, 1);
  if (p_image.isNull())
    return texture;
  const QImage texels = GlFormat(p_image);
  if (!VEK_ENSURE(!texels.isNull(), p_signature)) // no memory for a second image
    return {};
  {
    const boost::shared_ptr<void> unpacking = Ogl::ImageUnpackScope(*p_gl);
    p_gl->TexImage2D(RGL_TEXTURE_2D, 0, static_cast<int>(p_internalFormat), texels.width(), texels.height(), 0,
                     RGL_RGBA, RGL_UNSIGNED_BYTE, texels.constBits());
  }
  return p_gl->CheckError(p_signature) ? texture : nullptr;
}

} // namespace Vek::Chart::Library::Private
