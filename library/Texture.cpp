#include "library/Texture.h"

#include "library/private/gl/TextureUpload.h"
#include "platform/debug/Check.h"

#include <cstddef>
#include <iterator>

namespace Vek::Chart::Library {

namespace {

// The GL values of the settings, in the order of the enumerations.
constexpr Ogl::GlEnum Filters[] = {RGL_NEAREST, RGL_LINEAR};
constexpr Ogl::GlEnum Wraps[] = {RGL_CLAMP_TO_EDGE, RGL_REPEAT};
constexpr Ogl::GlEnum Environments[] = {RGL_MODULATE, RGL_DECAL, RGL_REPLACE};

template <std::size_t Count>
void SetParameter(Utility::Scoped<Rgl>& p_gl, Ogl::GlEnum p_name, const Ogl::GlEnum (&p_values)[Count],
                  std::uint32_t p_setting) {
  if (p_setting < Count)
    p_gl->TexParameteri(RGL_TEXTURE_2D, p_name, static_cast<int>(p_values[p_setting]));
}

/// The smallest power of two that is at least `p_extent`.
int PowerOfTwo(int p_extent) {
  int power = 1;
  while (power < p_extent && power < (1 << 30))
    power *= 2;
  return power;
}

} // namespace

Texture::Texture(const QImage& p_image, Utility::Scoped<Rgl>& p_gl)
    : _width(p_image.width())
    , _height(p_image.height())
    , _image(p_image) {
  if (p_gl->GlVersion() < Utility::VersionNo(2, 0, 0)) {
    _width = PowerOfTwo(p_image.width());
    _height = PowerOfTwo(p_image.height());
    if (!p_image.isNull() && (_width != p_image.width() || _height != p_image.height()))
      _image = p_image.scaled(_width, _height, Qt::IgnoreAspectRatio, Qt::FastTransformation);
  }
  VEK_ENSURE_TEXT(_width > 0 && _height > 0, "_width > 0 && _height > 0 && \"Invalid Texture Size\"",
                  "__cdecl Vek::Chart::Library::Texture::Texture(const class QImage &,class "
                  "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)");
}

Texture::~Texture() = default;

void Texture::operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  p_gl->ActiveTexture(p_unit);
  if (_handle) {
    p_gl->Bind(_handle, Target());
  } else {
    _handle = p_gl->GenTexture();
    p_gl->Bind(_handle, Target());
    const Ogl::GlEnum t = Target();
    VEK_ENSURE(t == RGL_TEXTURE_2D, "void __cdecl Vek::Chart::Library::Texture::operator ()(class "
                                    "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,unsigned int) const");
    Private::UploadImage(p_gl, _image, sRgb ? RGL_SRGB8_ALPHA8 : RGL_RGBA);
  }
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_BASE_LEVEL, 0);
  p_gl->TexParameteri(RGL_TEXTURE_2D, RGL_TEXTURE_MAX_LEVEL, 0);
  UseWrap(p_gl);
  UseFilter(p_gl);
  UseEnvironment(p_gl);
  p_gl->Enable(RGL_TEXTURE_2D);
  p_gl->Disable(RGL_TEXTURE_GEN_S);
  p_gl->Disable(RGL_TEXTURE_GEN_T);
}

void Texture::UseFilter(Utility::Scoped<Rgl>& p_gl) const {
  SetParameter(p_gl, RGL_TEXTURE_MIN_FILTER, Filters, minFilter);
  SetParameter(p_gl, RGL_TEXTURE_MAG_FILTER, Filters, magFilter);
}

void Texture::UseWrap(Utility::Scoped<Rgl>& p_gl) const {
  SetParameter(p_gl, RGL_TEXTURE_WRAP_S, Wraps, wrapS);
  SetParameter(p_gl, RGL_TEXTURE_WRAP_T, Wraps, wrapT);
}

void Texture::UseEnvironment(Utility::Scoped<Rgl>& p_gl) const {
  if (environment < std::size(Environments))
    p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, static_cast<int>(Environments[environment]));
}

} // namespace Vek::Chart::Library
