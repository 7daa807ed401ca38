#include "scene/Canvas.h"

#include "platform/ogl/PixelStore.h"
#include "scene/private/FlatBatch.h"
#include "scene/private/FlatState.h"
#include "scene/private/VertexStream.h"

#include <QTransform>

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

namespace Vek::Chart::Scene {

namespace {

/// Sets the viewport, before attributes are pushed without it: Mesa (22.3) would not restore it afterwards.
boost::shared_ptr<void> ViewportScope(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport) {
  const boost::shared_ptr<void> guard = p_gl->PushAttribScope(RGL_VIEWPORT_BIT);
  p_gl->Viewport(p_viewport);
  return guard;
}

} // namespace

Canvas::Canvas(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const TextRenderer& p_text,
               double p_pointSize)
    : _gl(p_gl)
    , _text(p_text)
    , _viewport(p_viewport)
    , _point(p_pointSize > 0 ? p_pointSize : 1)
    , _batch(std::make_unique<Private::FlatBatch>())
    , _viewportGuard(ViewportScope(p_gl, p_viewport))
    , _flatGuard(FlatState(p_gl))
    , _projectionGuard(p_gl->PixelProjection(p_viewport)) {}

Canvas::~Canvas() {
  try {
    Flush();
  } catch (...) { // of a sink: nothing may leave a destructor
  }
}

void Canvas::Flush() {
  if (_batch->Size() == 0)
    return;
  const boost::shared_ptr<void> state = FlatState(_gl); // the host may have drawn since the constructor
  _batch->Draw(_gl);
}

/// Bounds the memory of the batch, to some megabytes.
void Canvas::FlushIfLarge() {
  constexpr std::size_t MostVertices = 1U << 16;
  if (_batch->Size() > MostVertices)
    Flush();
}

Types::Viewport<0> Canvas::Part(const Rect& p_rect) const {
  const auto pixels = [&](double p_points) { return static_cast<float>(std::floor(p_points * _point)); };
  return {_viewport.x + pixels(p_rect.left), _viewport.y + pixels(p_rect.bottom), pixels(p_rect.right - p_rect.left),
          pixels(p_rect.top - p_rect.bottom)};
}

/// In pixels, from the lower left one on.
std::array<Canvas::Position, 4> Canvas::Corners(const Rect& p_rect) const {
  return {Pixel({p_rect.left, p_rect.bottom}), Pixel({p_rect.right, p_rect.bottom}), Pixel({p_rect.right, p_rect.top}),
          Pixel({p_rect.left, p_rect.top})};
}

double Canvas::LineWidth(double p_width) const {
  return std::max(p_width, 1 / _point);
}

void Canvas::Fill(const Rect& p_rect, const QColor& p_lower, const QColor& p_upper) {
  FlushIfLarge();
  _batch->Add(Corners(p_rect), p_lower, p_upper);
}

void Canvas::Frame(const Rect& p_rect, double p_width, const QColor& p_color) {
  const double half = LineWidth(p_width) / 2;
  const Rect outer{p_rect.left - half, p_rect.bottom - half, p_rect.right + half, p_rect.top + half};
  const Rect inner{p_rect.left + half, p_rect.bottom + half, p_rect.right - half, p_rect.top - half};
  Fill({outer.left, outer.bottom, outer.right, inner.bottom}, p_color);
  Fill({outer.left, inner.top, outer.right, outer.top}, p_color);
  Fill({outer.left, inner.bottom, inner.left, inner.top}, p_color);
  Fill({inner.right, inner.bottom, outer.right, inner.top}, p_color);
}

void Canvas::Line(const Position& p_from, const Position& p_to, double p_width, const QColor& p_color) {
  // A quad, since the widths that GL offers for lines differ from device to device.
  const double length = std::hypot(p_to.x - p_from.x, p_to.y - p_from.y);
  if (!(length > 0))
    return;
  const double width = LineWidth(p_width);
  const double nx = -(p_to.y - p_from.y) / length * width / 2;
  const double ny = (p_to.x - p_from.x) / length * width / 2;
  FlushIfLarge();
  _batch->Add({Pixel({p_from.x - nx, p_from.y - ny}), Pixel({p_to.x - nx, p_to.y - ny}),
               Pixel({p_to.x + nx, p_to.y + ny}), Pixel({p_from.x + nx, p_from.y + ny})},
              p_color, p_color);
}

namespace {

using Position = Canvas::Position;

bool IsFinite(const Position& p_position) {
  return std::isfinite(p_position.x) && std::isfinite(p_position.y);
}

/// To the left of the way from one position to another, of length 1.
Position Normal(const Position& p_from, const Position& p_to) {
  const double length = std::hypot(p_to.x - p_from.x, p_to.y - p_from.y);
  return {-(p_to.y - p_from.y) / length, (p_to.x - p_from.x) / length};
}

/// The corners of a triangle strip that covers a line: pairs to the right and left of each position, all different.
std::vector<Position> StripOf(const std::vector<Position>& p_line, double p_halfWidth) {
  constexpr double LongestMiter = 4; // in half widths
  std::vector<Position> strip;
  const auto add = [&](const Position& p_position, const Position& p_offset) {
    strip.push_back({p_position.x - p_halfWidth * p_offset.x, p_position.y - p_halfWidth * p_offset.y});
    strip.push_back({p_position.x + p_halfWidth * p_offset.x, p_position.y + p_halfWidth * p_offset.y});
  };
  const std::size_t last = p_line.size() - 1;
  for (std::size_t i = 0; i <= last; ++i) {
    const Position before = Normal(p_line[i == 0 ? 0 : i - 1], p_line[i == 0 ? 1 : i]);
    const Position after = i == last ? before : Normal(p_line[i], p_line[i + 1]);
    // With the angle 2 a between the normals, the miter is 1 / cos a long and sum is 2 cos a.
    const Position sum{before.x + after.x, before.y + after.y};
    const double square = sum.x * sum.x + sum.y * sum.y;
    if (square * LongestMiter * LongestMiter > 4) {
      add(p_line[i], {sum.x * 2 / square, sum.y * 2 / square});
    } else {
      add(p_line[i], before);
      add(p_line[i], after);
    }
  }
  return strip;
}

} // namespace

void Canvas::Polyline(const std::vector<Position>& p_positions, double p_width, const QColor& p_color) {
  std::vector<Position> line;
  const auto draw = [&] {
    if (line.size() > 1) {
      FlushIfLarge();
      const std::vector<Position> strip = StripOf(line, LineWidth(p_width) / 2);
      for (std::size_t i = 0; i + 2 < strip.size(); ++i)
        _batch->Add(Pixel(strip[i]), Pixel(strip[i + 1]), Pixel(strip[i + 2]), p_color);
    }
    line.clear();
  };
  for (const Position& position : p_positions) {
    if (!IsFinite(position))
      draw();
    else if (line.empty() || position.x != line.back().x || position.y != line.back().y)
      line.push_back(position);
  }
  draw();
}

void Canvas::Triangle(const Position& p_a, const Position& p_b, const Position& p_c, const QColor& p_color) {
  Polygon({p_a, p_b, p_c}, p_color);
}

void Canvas::Polygon(const std::vector<Position>& p_corners, const QColor& p_color) {
  if (p_corners.size() < 3)
    return;
  FlushIfLarge();
  for (std::size_t i = 2; i < p_corners.size(); ++i)
    _batch->Add(Pixel(p_corners[0]), Pixel(p_corners[i - 1]), Pixel(p_corners[i]), p_color);
}

void Canvas::Text(const QString& p_text, const Position& p_position, TextRenderer::Anchor p_anchor,
                  const TextRenderer::Style& p_style, double p_rotation) {
  FlushIfLarge();
  _text.Add(*_batch, _gl, p_text, Pixel(p_position), p_anchor, p_style, _point, p_rotation);
}

void Canvas::TextAt(const QString& p_text, const View& p_view, const Types::Vector3_Base<double>& p_point,
                    const Position& p_offset, TextRenderer::Anchor p_anchor, const TextRenderer::Style& p_style,
                    double p_rotation) {
  const Camera::Pixel pixel = p_view.Project(p_point);
  if (!pixel.visible)
    return;
  const Position position = PositionOf(pixel);
  Text(p_text, {position.x + p_offset.x, position.y + p_offset.y}, p_anchor, p_style, p_rotation);
}

Canvas::Position Canvas::PositionOf(const Camera::Pixel& p_pixel) const {
  return {(p_pixel.x - static_cast<double>(_viewport.x)) / _point,
          (p_pixel.y - static_cast<double>(_viewport.y)) / _point};
}

void Canvas::Bands(const Rect& p_rect, const QImage& p_colors, bool p_isVertical) {
  const QImage row = p_colors.copy(0, 0, p_colors.width(), 1);
  Library::Texture texture(p_isVertical ? row.transformed(QTransform().rotate(-90)) : row, _gl);
  texture.minFilter = texture.magFilter = Library::Texture::Nearest;
  Image(p_rect, texture);
}

void Canvas::Image(const Rect& p_rect, const QImage& p_image) {
  Image(p_rect, Library::Texture(p_image, _gl));
}

void Canvas::Image(const Rect& p_rect, const Library::Texture& p_texture) {
  Flush();
  const auto guard = _gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_CURRENT_BIT);
  {
    const auto unpacking = p_texture.Handle() ? nullptr : Ogl::UnpackScope(*_gl); // an upload changes it
    p_texture(_gl, RGL_TEXTURE0);
  }
  if (!p_texture.Handle()) // reported
    return;
  const auto [left, bottom] = Pixel({p_rect.left, p_rect.bottom});
  const auto [right, top] = Pixel({p_rect.right, p_rect.top});
  _gl->Color(QColor(Qt::white));
  using Stream = Private::VertexStream;
  Stream(*_gl, Stream::Rectangle(left, bottom, right, top), Stream::TexCoords).Draw(RGL_QUADS);
}

} // namespace Vek::Chart::Scene
