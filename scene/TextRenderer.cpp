#include "scene/TextRenderer.h"

#include "library/Texture.h"
#include "platform/debug/Check.h"
#include "platform/ogl/PixelStore.h"
#include "platform/ogl/TextImage.h"
#include "scene/private/FlatState.h"

#include <QGuiApplication>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

namespace Signature {
constexpr const char* Size = "QSizeF Vek::Chart::Scene::TextRenderer::Size";
constexpr const char* Draw = "void Vek::Chart::Scene::TextRenderer::Draw";
} // namespace Signature

bool HasFonts(const char* p_signature) {
  return VEK_ENSURE_TEXT(qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr,
                         "qGuiApp != nullptr && \"Text needs a QGuiApplication.\"", p_signature);
}

/// A length in whole pixels, from 0 to the largest font. NaN becomes 0.
int Pixels(double p_length) {
  return p_length > 0 ? static_cast<int>(std::lround(std::min<double>(p_length, TextRenderer::MaxSize))) : 0;
}

/// White letters, whose alpha is their coverage, in an image with a margin.
///
/// The margin is that of the box, and one row above and below, which linear filtering needs at slanted edges; an
/// outline is as wide as `p_outline` outside of the letters and widens the margin on all sides.
Ogl::TextFormat Coverage(const TextStyle& p_style, int p_pixels, int p_outline) {
  Ogl::TextFormat format;
  format.size = p_pixels;
  format.bold = p_style.bold;
  format.family = p_style.family;
  format.color = QColor(Qt::white);
  format.outline = QColor(Qt::white);
  format.outlineWidth = 2 * p_outline;
  format.margin = QSize(std::max(1, p_pixels / 8), 1) + QSize(p_outline, p_outline);
  return format;
}

/// The image with straight alpha, white also where nothing is, so that filtering brings in no black.
QImage StraightWhite(const QImage& p_image) {
  QImage straight = p_image.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < straight.height(); ++y) {
    QRgb* const row = reinterpret_cast<QRgb*>(straight.scanLine(y));
    std::for_each(row, row + straight.width(), [](QRgb& p_texel) { p_texel |= 0x00FFFFFFU; });
  }
  return straight;
}

} // namespace

/// The textures of a context.
struct TextRenderer::Textures {
  using Key = std::tuple<QString, int, int, bool, QString>; ///< string, size, outline, weight, family
  struct Entry {
    Library::Texture texture;
    QSize size; ///< of the image
    std::uint64_t lastUse;
  };

  /// The texture of a string; null if there is none, which is reported. Valid until the next call.
  const Entry* Get(Utility::Scoped<Rgl>& p_gl, const QString& p_text, const Ogl::TextFormat& p_format) {
    const Key key{p_text, p_format.size, p_format.outlineWidth, p_format.bold, p_format.family};
    auto found = entries.find(key);
    if (found == entries.end()) {
      const QImage image = Image(p_gl, p_text, p_format);
      if (image.isNull())
        return nullptr;
      Library::Texture texture(image, p_gl);
      texture.environment = Library::Texture::Modulate;
      MakeRoom(Texels(image.size()));
      found = entries.emplace(key, Entry{std::move(texture), image.size(), 0}).first;
      texels += Texels(image.size());
    }
    found->second.lastUse = ++uses;
    return &found->second;
  }

  static QImage Image(Utility::Scoped<Rgl>& p_gl, const QString& p_text, const Ogl::TextFormat& p_format) {
    const QSize size = Ogl::TextImageSize(p_text, p_format);
    const std::string pixels = std::to_string(size.width()) + " x " + std::to_string(size.height());
    const int limit = p_gl->GetMaxTextureSize();
    if (!VEK_ENSURE_TEXT(limit < 1 || std::max(size.width(), size.height()) <= limit,
                         "largest <= GL_MAX_TEXTURE_SIZE && \"" + pixels + " texels, the limit is " +
                             std::to_string(limit) + "\"",
                         Signature::Draw))
      return {};
    const QImage image = StraightWhite(Ogl::TextImage(p_text, p_format));
    VEK_ENSURE_TEXT(!image.isNull(), "!image.isNull() && \"" + pixels + " pixels\"", Signature::Draw);
    return image;
  }

  static std::size_t Texels(const QSize& p_size) {
    return static_cast<std::size_t>(p_size.width()) * static_cast<std::size_t>(p_size.height());
  }

  void MakeRoom(std::size_t p_texels) {
    while (!entries.empty() && (entries.size() >= MostTextures || texels + p_texels > MostTexels)) {
      const auto oldest = std::min_element(entries.begin(), entries.end(), [](const auto& p_a, const auto& p_b) {
        return p_a.second.lastUse < p_b.second.lastUse;
      });
      texels -= Texels(oldest->second.size);
      entries.erase(oldest);
    }
  }

  std::map<Key, Entry> entries;
  std::size_t texels = 0;
  std::uint64_t uses = 0;
};

QSizeF TextRenderer::Size(const QString& p_text, const Style& p_style, double p_pointSize) {
  if (!(p_pointSize > 0) || !HasFonts(Signature::Size))
    return {0, 0};
  Ogl::TextFormat format = Coverage(p_style, std::max(1, Pixels(p_style.size * p_pointSize)), 0);
  format.margin.setHeight(0);
  return QSizeF(Ogl::TextImageSize(p_text, format)) / p_pointSize;
}

namespace {

using Pair = Types::Vector2_Base<double>;

/// The box of a string in pixels: its lower left corner, and the directions of its width and height.
struct Box {
  Box(const Pair& p_position, TextRenderer::Anchor p_anchor, const QSize& p_size, double p_rotation) {
    const double quarters = p_rotation / 90;
    const bool upright = quarters == std::round(quarters);
    const double radians = p_rotation * std::acos(-1.0) / 180;
    right = {std::cos(radians), std::sin(radians)};
    if (upright)
      right = {std::round(right.x), std::round(right.y)};
    const double x = p_anchor.x * p_size.width(), y = p_anchor.y * p_size.height();
    corner = {p_position.x - x * right.x + y * right.y, p_position.y - x * right.y - y * right.x};
    if (upright) // texels and pixels coincide
      corner = {std::round(corner.x), std::round(corner.y)};
  }
  /// A position that is given along the width and the height.
  Pair At(double p_x, double p_y) const {
    return {corner.x + p_x * right.x - p_y * right.y, corner.y + p_x * right.y + p_y * right.x};
  }
  Pair corner;
  Pair right;
};

/// A quad with the bound texture, whose image reaches beyond the box by the same width on opposite sides.
void DrawOver(Utility::Scoped<Rgl>& p_gl, const Box& p_box, const QSize& p_size, const QSize& p_image,
              const QColor& p_color) {
  const double dx = (p_image.width() - p_size.width()) / 2.0, dy = (p_image.height() - p_size.height()) / 2.0;
  p_gl->Color(p_color);
  p_gl->Begin(RGL_QUADS);
  for (const auto& [s, t] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
    const Pair position = p_box.At(s == 0 ? -dx : p_size.width() + dx, t == 0 ? -dy : p_size.height() + dy);
    p_gl->TexCoord(s, t);
    p_gl->Vertex(position.x, position.y, 0.0);
  }
  p_gl->End();
}

} // namespace

void TextRenderer::Draw(Utility::Scoped<Rgl>& p_gl, const QString& p_text,
                        const Types::Vector2_Base<double>& p_position, Anchor p_anchor, const Style& p_style,
                        double p_pointSize, double p_rotation) const {
  if (p_text.isEmpty() || !HasFonts(Signature::Draw))
    return;
  Textures& textures = *_textures.Get(p_gl, [] { return boost::make_shared<Textures>(); });
  const int pixels = std::max(1, Pixels(p_style.size * p_pointSize));
  const Ogl::TextFormat letters = Coverage(p_style, pixels, 0);
  const Textures::Entry* const entry = textures.Get(p_gl, p_text, letters);
  if (!entry)
    return;
  const QSize size = entry->size - QSize(0, 2); // without the rows for filtering
  const Box box(p_position, p_anchor, size, p_rotation);
  if (!std::isfinite(box.corner.x) || !std::isfinite(box.corner.y))
    return;
  const boost::shared_ptr<void> state = FlatState(p_gl);
  const auto draw = [&](const Ogl::TextFormat& p_format, const QColor& p_color) {
    const Textures::Entry* const drawn = textures.Get(p_gl, p_text, p_format);
    if (!drawn)
      return;
    if (drawn->texture.Handle()) {
      drawn->texture(p_gl, RGL_TEXTURE0);
    } else {
      const boost::shared_ptr<void> unpacking = Ogl::UnpackScope(*p_gl); // an upload changes it
      drawn->texture(p_gl, RGL_TEXTURE0);
    }
    if (drawn->texture.Handle()) // otherwise there was a report
      DrawOver(p_gl, box, size, drawn->size, p_color);
  };
  const int outline = p_style.halo.alpha() == 0 ? 0 : Pixels(p_style.haloWidth * p_pointSize);
  if (outline > 0)
    draw(Coverage(p_style, pixels, outline), p_style.halo);
  draw(letters, p_style.color);
}

} // namespace Vek::Chart::Scene
