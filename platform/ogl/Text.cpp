#include "platform/ogl/Text.h"

#include "platform/debug/Check.h"

#include <QFont>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Ogl {

namespace {

/// Where a text's lines lie in its picture.
struct Layout {
  Layout(const QString& p_text, unsigned int p_size)
      : lines(p_text.split('\n')) {
    font.setPixelSize(static_cast<int>(p_size));
    const QFontMetrics metrics(font);
    // Room for the outline, half of which lies outside the letters, and for letters that lean out of their box.
    margin = 2 + static_cast<int>(p_size) / 6;
    ascent = metrics.ascent();
    lineHeight = metrics.lineSpacing();
    int textWidth = 0;
    for (const QString& line : lines)
      textWidth = std::max(textWidth, metrics.horizontalAdvance(line));
    width = textWidth + 2 * margin;
    height = lineHeight * (lines.size() - 1) + metrics.height() + 2 * margin;
  }
  QPainterPath Letters() const {
    QPainterPath letters;
    for (int i = 0; i < lines.size(); ++i)
      letters.addText(margin, margin + ascent + i * lineHeight, font, lines[i]);
    return letters;
  }
  QStringList lines;
  QFont font;
  int margin;
  int ascent;
  int lineHeight;
  int width;
  int height;
};

} // namespace

Text::Text(const QString& p_text)
    : text(p_text) {}

bool Text::Changed() const {
  return text.Changed() || firstColor.Changed() || secondColor.Changed() || flag.Changed() || size.Changed();
}

void Text::Paint() {
  text.ClearChanged();
  firstColor.ClearChanged();
  secondColor.ClearChanged();
  flag.ClearChanged();
  size.ClearChanged();
  _uploaded = false;
  _image = QImage();
  if (text.Value().isEmpty())
    return;

  const Layout layout(text, std::clamp(size.Value(), MinSize, MaxSize));
  _image = QImage(layout.width, layout.height, QImage::Format_ARGB32_Premultiplied);
  if (_image.isNull()) // too large to be made
    return;
  const bool box = flag && secondColor.Value().alpha() != 0;
  _image.fill(box ? secondColor.Value() : QColor(Qt::transparent));
  QPainter painter(&_image);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPainterPath letters = layout.Letters();
  if (!flag && secondColor.Value().alpha() != 0)
    painter.strokePath(letters,
                       QPen(secondColor.Value(), layout.margin - 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.fillPath(letters, firstColor.Value());
}

const QImage& Text::Image() {
  const bool fonts = qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
  if (!VEK_ENSURE_TEXT(fonts, "qGuiApp != nullptr && \"Text needs a QGuiApplication.\"",
                       "const class QImage &__cdecl Vek::Chart::Ogl::Text::Image(void)"))
    _image = QImage();
  else if (Changed())
    Paint();
  return _image;
}

void Text::operator()(Utility::Scoped<Rgl>& p_gl) {
  const QImage& image = Image();
  if (image.isNull())
    return;
  const boost::shared_ptr<void> state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_COLOR_BUFFER_BIT |
                                                              RGL_CURRENT_BIT | RGL_POLYGON_BIT);
  p_gl->ActiveTexture(RGL_TEXTURE0);
  if (!_uploaded)
    _texture = p_gl->GenTexture(); // the last one may belong to a copy, too
  p_gl->Bind(_texture, Rgl::Sampler2D);
  if (!_uploaded) {
    const QImage rows = image.convertToFormat(QImage::Format_RGBA8888_Premultiplied).mirrored();
    p_gl->PushClientAttrib(RGL_CLIENT_PIXEL_STORE_BIT);
    p_gl->PixelStorei(RGL_UNPACK_ALIGNMENT, 1);
    for (const GlEnum skipped : {RGL_UNPACK_ROW_LENGTH, RGL_UNPACK_SKIP_ROWS, RGL_UNPACK_SKIP_PIXELS})
      p_gl->PixelStorei(skipped, 0);
    p_gl->TexImage2D(RGL_TEXTURE_2D, 0, RGL_RGBA, rows.width(), rows.height(), 0, RGL_RGBA, RGL_UNSIGNED_BYTE,
                     rows.constBits());
    p_gl->PopClientAttrib();
    for (const GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
      p_gl->TexParameteri(RGL_TEXTURE_2D, filter, RGL_NEAREST);
    for (const GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T})
      p_gl->TexParameteri(RGL_TEXTURE_2D, wrap, RGL_CLAMP_TO_EDGE);
    _uploaded = true;
  }
  p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE);
  for (const GlEnum off : {RGL_LIGHTING, RGL_FOG, RGL_DEPTH_TEST, RGL_CULL_FACE, RGL_ALPHA_TEST, RGL_TEXTURE_3D,
                           RGL_TEXTURE_GEN_S, RGL_TEXTURE_GEN_T, RGL_POLYGON_STIPPLE})
    p_gl->Disable(off);
  p_gl->PolygonMode(RGL_FRONT_AND_BACK, RGL_FILL);
  p_gl->Enable(RGL_TEXTURE_2D);
  p_gl->Enable(RGL_BLEND);
  p_gl->BlendFunc(RGL_ONE, RGL_ONE_MINUS_SRC_ALPHA); // the picture's colours are premultiplied

  const int x0 = position.x, y0 = position.y, x1 = x0 + image.width(), y1 = y0 + image.height();
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
