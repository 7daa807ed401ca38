#include "platform/ogl/Text.h"

#include "platform/debug/Check.h"
#include "platform/ogl/PixelStore.h"
#include "platform/ogl/TextImage.h"

#include <QGuiApplication>

#include <algorithm>
#include <limits>
#include <string>

namespace Vek::Chart::Ogl {

namespace {

namespace Signature {
constexpr const char* Image = "const class QImage &__cdecl Vek::Chart::Ogl::Text::Image(void)";
constexpr const char* Painted = "class QImage __cdecl Vek::Chart::Ogl::Text::Painted(void) const";
constexpr const char* Draw = "void __cdecl Vek::Chart::Ogl::Text::operator ()(class Vek::Chart::Utility::Scoped<class "
                             "Vek::Chart::Ogl::Rgl> &)";
} // namespace Signature

} // namespace

Text::Text(const QString& p_text)
    : text(p_text) {}

bool Text::Changed() const {
  return text.Changed() || firstColor.Changed() || secondColor.Changed() || flag.Changed() || size.Changed();
}

QImage Text::Painted() const {
  if (text.Value().isEmpty())
    return {};
  TextFormat format;
  format.size = static_cast<int>(std::clamp(size.Value(), MinSize, MaxSize));
  format.color = firstColor;
  (flag ? format.background : format.outline) = secondColor;
  // Room for the outline, half of which lies outside the letters, and for letters that lean out of their box.
  const int margin = 2 + format.size / 6;
  format.margin = QSize(margin, margin);
  format.outlineWidth = margin - 1;
  const QImage image = TextImage(text, format);
  if (image.isNull()) {
    const QSize needed = TextImageSize(text, format);
    vekdebug::fail_ensure("!image.isNull() && \"" + std::to_string(needed.width()) + " x " +
                              std::to_string(needed.height()) + " pixels\"",
                          Signature::Painted);
  }
  return image;
}

const QImage& Text::Image() {
  const bool fonts = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
  if (!VEK_ENSURE_TEXT(fonts, "qGuiApp != nullptr && \"Text needs a QGuiApplication.\"", Signature::Image)) {
    _image = QImage();
  } else if (Changed()) {
    _image = Painted();
    _uploaded = false;
    if (_image.isNull() && !text.Value().isEmpty())
      return _image; // no memory: the next call tries again
    text.ClearChanged();
    firstColor.ClearChanged();
    secondColor.ClearChanged();
    flag.ClearChanged();
    size.ClearChanged();
  }
  return _image;
}

namespace {

/// A new texture of the image, bound to RGL_TEXTURE_2D; an empty pointer where it cannot be had, which is reported.
boost::shared_ptr<Texture> Upload(const Rgl& p_gl, const QImage& p_image) {
  const int limit = p_gl.GetMaxTextureSize();
  if (!VEK_ENSURE_TEXT(limit < 1 || std::max(p_image.width(), p_image.height()) <= limit,
                       "largest <= GL_MAX_TEXTURE_SIZE && \"" + std::to_string(p_image.width()) + " x " +
                           std::to_string(p_image.height()) + " texels, the limit is " + std::to_string(limit) + "\"",
                       Signature::Draw))
    return {};
  const QImage texels = p_image.convertToFormat(QImage::Format_RGBA8888_Premultiplied).mirrored();
  if (!VEK_ENSURE(!texels.isNull(), Signature::Draw)) // no memory for a second image
    return {};
  p_gl.CheckError(std::string("before ") + Signature::Draw);
  const boost::shared_ptr<Texture> texture = p_gl.GenTexture();
  if (!texture) { // the image would go into the host's texture
    p_gl.CheckError(Signature::Draw);
    return {};
  }
  p_gl.Bind(texture, Rgl::Sampler2D);
  {
    const boost::shared_ptr<void> unpacking = UnpackScope(p_gl);
    p_gl.TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGBA, texels.width(), texels.height(), 0, RGL_RGBA, RGL_UNSIGNED_BYTE,
                    texels.constBits());
  }
  if (!p_gl.CheckError(Signature::Draw))
    return {};
  for (const GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
    p_gl.TexParameteri(RGL_TEXTURE_2D, filter, RGL_NEAREST);
  for (const GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T})
    p_gl.TexParameteri(RGL_TEXTURE_2D, wrap, RGL_CLAMP_TO_EDGE);
  return texture;
}

} // namespace

void Text::operator()(Utility::Scoped<Rgl>& p_gl) {
  const QImage& image = Image();
  if (image.isNull())
    return;
  const boost::shared_ptr<void> state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_COLOR_BUFFER_BIT |
                                                              RGL_CURRENT_BIT | RGL_POLYGON_BIT);
  p_gl->ActiveTexture(RGL_TEXTURE0);
  if (_uploaded) {
    p_gl->Bind(_texture, Rgl::Sampler2D);
  } else {
    const boost::shared_ptr<Texture> texture = Upload(*p_gl, image);
    if (!texture)
      return;
    _texture = texture; // the last one may belong to a copy, too
    _uploaded = true;
  }
  p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE);
  for (const GlEnum off : {RGL_LIGHTING, RGL_FOG, RGL_DEPTH_TEST, RGL_CULL_FACE, RGL_ALPHA_TEST, RGL_TEXTURE_3D,
                           RGL_TEXTURE_GEN_S, RGL_TEXTURE_GEN_T, RGL_POLYGON_STIPPLE})
    p_gl->Disable(off);
  p_gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_FILL);
  p_gl->Enable(RGL_TEXTURE_2D);
  p_gl->Enable(RGL_BLEND);
  p_gl->BlendFunc(RGL_ONE, RGL_ONE_MINUS_SRC_ALPHA); // the image's colours are premultiplied

  const auto sum = [](int p_position, int p_extent) { // beyond any viewport, but within an int
    return static_cast<int>(std::min<qint64>(qint64{p_position} + p_extent, std::numeric_limits<int>::max()));
  };
  const int x0 = position.x, y0 = position.y, x1 = sum(x0, image.width()), y1 = sum(y0, image.height());
  p_gl->Begin(RGL_QUADS);
  p_gl->TexCoord(0, 0);
  p_gl->Pixel(x0, y0);
  p_gl->TexCoord(1, 0);
  p_gl->Pixel(x1, y0);
  p_gl->TexCoord(1, 1);
  p_gl->Pixel(x1, y1);
  p_gl->TexCoord(0, 1);
  p_gl->Pixel(x0, y1);
  p_gl->End();
}

} // namespace Vek::Chart::Ogl
