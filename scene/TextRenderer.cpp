#include "scene/TextRenderer.h"

#include "platform/ogl/TextImage.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene {

QImage TextImage(const QString& p_text, int p_pixels, bool p_bold, const QColor& p_color) {
  Ogl::TextFormat format;
  format.size = p_pixels;
  format.bold = p_bold;
  format.color = p_color;
  // Slanted and wide letters may reach beyond their advance; a margin keeps them whole.
  format.margin = QSize(std::max(1, p_pixels / 8), 0);
  QImage straight = Ogl::TextImage(p_text, format).convertToFormat(QImage::Format_ARGB32);
  // Linear filtering and rounding must not bring in black from transparent texels.
  for (int y = 0; y < straight.height(); ++y) {
    QRgb* const row = reinterpret_cast<QRgb*>(straight.scanLine(y));
    for (int x = 0; x < straight.width(); ++x)
      row[x] = (p_color.rgb() & 0x00FFFFFFu) | (row[x] & 0xFF000000u);
  }
  return straight;
}

void TextRenderer::Draw(Utility::Scoped<Rgl>& p_gl, const QString& p_text, double p_x, double p_y, Anchor p_anchor,
                        const Style& p_style, double p_pointSize) {
  const int pixels = std::max(1, static_cast<int>(std::lround(p_style.size * p_pointSize)));
  const Key key{p_text, pixels, p_style.bold, p_style.color.rgba()};
  if (_textures.size() >= MostTextures && _textures.count(key) == 0)
    _textures.clear(); // those that are still shown come again
  std::unique_ptr<Library::Texture>& texture = _textures[key];
  if (!texture)
    texture = std::make_unique<Library::Texture>(TextImage(p_text, pixels, p_style.bold, p_style.color), p_gl);
  const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_COLOR_BUFFER_BIT);
  (*texture)(p_gl, RGL_TEXTURE0);
  p_gl->Enable(RGL_BLEND);
  p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
  // On whole pixels, texels and pixels coincide.
  const double x = std::round(p_x - p_anchor.x * texture->Width());
  const double y = std::round(p_y - p_anchor.y * texture->Height());
  p_gl->Begin(RGL_QUADS);
  for (const auto& [s, t] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
    p_gl->TexCoord(s, t);
    p_gl->Vertex(x + s * texture->Width(), y + t * texture->Height(), 0.0);
  }
  p_gl->End();
}

} // namespace Vek::Chart::Scene
