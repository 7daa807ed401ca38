#include "scene/TextRenderer.h"

#include "platform/debug/Check.h"
#include "platform/ogl/TextImage.h"
#include "scene/private/FlatBatch.h"
#include "scene/private/FlatState.h"
#include "scene/private/LetterCache.h"

#include <QGuiApplication>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

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

/// Letters whose alpha is their coverage, in an image with a margin.
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

} // namespace

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

/// The quad of an image that reaches beyond the box by the same width on opposite sides.
Private::FlatBatch::Quad QuadOver(const Box& p_box, const QSize& p_size, const QSize& p_image) {
  const double dx = (p_image.width() - p_size.width()) / 2.0, dy = (p_image.height() - p_size.height()) / 2.0;
  const double right = p_size.width() + dx, top = p_size.height() + dy;
  return {p_box.At(-dx, -dy), p_box.At(right, -dy), p_box.At(right, top), p_box.At(-dx, top)};
}

} // namespace

void TextRenderer::Add(Private::FlatBatch& p_batch, const Utility::Scoped<Rgl>& p_gl, const QString& p_text,
                       const Types::Vector2_Base<double>& p_position, Anchor p_anchor, const Style& p_style,
                       double p_pointSize, double p_rotation) const {
  if (p_text.isEmpty() || !HasFonts(Signature::Draw))
    return;
  Private::LetterCache& cache =
      *_letters.Get(p_gl, [] { return boost::make_shared<Private::LetterCache>(MostTexels); });
  const int pixels = std::max(1, Pixels(p_style.size * p_pointSize));
  const Ogl::TextFormat format = Coverage(p_style, pixels, 0);
  const Private::LetterCache::Entry* const found = cache.Get(p_gl, p_text, format, Signature::Draw);
  if (found == nullptr)
    return;
  const Private::LetterCache::Entry letters = *found;
  const QSize size = letters.size - QSize(0, 2); // without the rows for filtering
  const Box box(p_position, p_anchor, size, p_rotation);
  if (!std::isfinite(box.corner.x) || !std::isfinite(box.corner.y))
    return;
  const auto add = [&](const Private::LetterCache::Entry& p_entry, const QColor& p_color) {
    p_batch.Add(QuadOver(box, size, p_entry.size), p_color, p_entry.page, p_entry.corner, p_entry.size);
  };
  const int outline = p_style.halo.alpha() == 0 ? 0 : Pixels(p_style.haloWidth * p_pointSize);
  if (outline > 0)
    if (const auto* const halo = cache.Get(p_gl, p_text, Coverage(p_style, pixels, outline), Signature::Draw))
      add(*halo, p_style.halo);
  add(letters, p_style.color);
}

void TextRenderer::Draw(Utility::Scoped<Rgl>& p_gl, const QString& p_text,
                        const Types::Vector2_Base<double>& p_position, Anchor p_anchor, const Style& p_style,
                        double p_pointSize, double p_rotation) const {
  Private::FlatBatch batch;
  Add(batch, p_gl, p_text, p_position, p_anchor, p_style, p_pointSize, p_rotation);
  if (batch.Size() == 0)
    return;
  const boost::shared_ptr<void> state = FlatState(p_gl);
  batch.Draw(p_gl);
}

} // namespace Vek::Chart::Scene
