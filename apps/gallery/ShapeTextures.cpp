#include "apps/gallery/ShapeTextures.h"

#include "apps/gallery/Palettes.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Gallery {

boost::shared_ptr<Ogl::Texture> VoxelTexture(Utility::Scoped<Rgl>& p_gl) {
  constexpr std::size_t Side = 5;
  std::array<std::array<unsigned char, 4>, Side * Side * Side> texels{};
  const auto level = [](std::size_t p_index) { return static_cast<unsigned char>(60 + p_index * 190 / (Side - 1)); };
  for (std::size_t i = 0; i < texels.size(); ++i)
    texels[i] = {level(i % Side), level(i / Side % Side), level(i / Side / Side), 255};
  const boost::shared_ptr<Ogl::Texture> texture = p_gl->GenTexture();
  if (!texture) // reported; the texels would go into the host's texture
    return {};
  const auto state = p_gl->PushAttribScope(RGL_TEXTURE_BIT);
  p_gl->Bind(texture, Rgl::Sampler3D);
  p_gl->TexImage3D(RGL_TEXTURE_3D, 0, RGL_RGBA8, Side, Side, Side, 0, RGL_RGBA, RGL_UNSIGNED_BYTE, texels.data());
  for (const Ogl::GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
    p_gl->TexParameteri(RGL_TEXTURE_3D, filter, RGL_NEAREST);
  for (const Ogl::GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T, RGL_TEXTURE_WRAP_R})
    p_gl->TexParameteri(RGL_TEXTURE_3D, wrap, RGL_CLAMP_TO_EDGE);
  return texture;
}

QImage PanelImage(int p_border) {
  QImage image(3 * p_border, 3 * p_border, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const double line = p_border / 10.0;
  const QRectF frame = QRectF(image.rect()).adjusted(line, line, -line, -line);
  QLinearGradient shade(frame.topLeft(), frame.bottomLeft());
  shade.setColorAt(0, QColor(0x3D5A78));
  shade.setColorAt(1, QColor(0x22344A));
  painter.setBrush(shade);
  painter.setPen(QPen(QColor(0x8FB4D8), line));
  painter.drawRoundedRect(frame, 0.7 * p_border, 0.7 * p_border);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0xF6B44B));
  for (const double x : {0.6, 2.4})
    for (const double y : {0.6, 2.4})
      painter.drawEllipse(QPointF(x * p_border, y * p_border), 0.12 * p_border, 0.12 * p_border);
  painter.end();
  return image.convertToFormat(QImage::Format_ARGB32);
}

QImage GroundImage() {
  QImage image(256, 256, QImage::Format_ARGB32);
  const std::vector<QColor> colors = Palettes::Viridis(0.1, 0.95);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const QColor color = colors[static_cast<std::size_t>(x) * (colors.size() - 1) / 255];
      image.setPixelColor(x, y, (x + y) / 32 % 2 == 0 ? color : color.darker(140));
    }
  return image;
}

QImage DiskImage() {
  QImage image(256, 256, QImage::Format_ARGB32);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const double inside = std::min(1.0, std::max(0.0, 84 - std::hypot(x - 127.5, y - 127.5)));
      const auto mix = [&](int p_disk) { return static_cast<int>(210 + (p_disk - 210) * inside); };
      image.setPixelColor(x, y, QColor(mix(240), mix(110), mix(70), static_cast<int>(255 * inside)));
    }
  return image;
}

} // namespace Vek::Chart::Gallery
