#include "library/Texture.h"

#include "library/private/gl/TextureSettings.h"
#include "library/private/gl/TextureUpload.h"
#include "platform/debug/Check.h"

namespace Vek::Chart::Library {

namespace {

namespace Signature {
constexpr const char* Constructor = "__cdecl Vek::Chart::Library::Texture::Texture(const class QImage &,class "
                                    "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &)";
constexpr const char* Bind = "void __cdecl Vek::Chart::Library::Texture::operator ()(class "
                             "Vek::Chart::Utility::Scoped<class Vek::Chart::Ogl::Rgl> &,unsigned int) const";
} // namespace Signature

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
  if (!VEK_ENSURE_TEXT(_width > 0 && _height > 0, "_width > 0 && _height > 0 && \"Invalid Texture Size\"",
                       Signature::Constructor))
    return;
  if (!Private::FitsDevice(p_gl, _width, _height, Signature::Constructor))
    _image = QImage();
}

Texture::~Texture() = default;

void Texture::operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const {
  p_gl->ActiveTexture(p_unit);
  if (_handle) {
    p_gl->Bind(_handle, Target());
  } else {
    const Ogl::GlEnum t = Target();
    VEK_ENSURE(t == RGL_TEXTURE_2D, Signature::Bind);
    _handle = Private::MakeTexture(p_gl, _image, sRgb ? RGL_SRGB8_ALPHA8 : RGL_RGBA, Signature::Bind);
    if (!_handle)
      return;
  }
  Private::SetOneLevel(*p_gl, RGL_TEXTURE_2D);
  UseWrap(p_gl);
  UseFilter(p_gl);
  UseEnvironment(p_gl);
  Private::Enable2D(*p_gl);
  p_gl->Disable(RGL_TEXTURE_GEN_S);
  p_gl->Disable(RGL_TEXTURE_GEN_T);
}

void Texture::UseFilter(Utility::Scoped<Rgl>& p_gl) const {
  Private::UseFilter(*p_gl, RGL_TEXTURE_2D, *this);
}

void Texture::UseWrap(Utility::Scoped<Rgl>& p_gl) const {
  Private::UseWrap(*p_gl, RGL_TEXTURE_2D, *this);
}

void Texture::UseEnvironment(Utility::Scoped<Rgl>& p_gl) const {
  Private::SetEnvironment(*p_gl, environment);
}

} // namespace Vek::Chart::Library
