#include "scene/Canvas.h"

#include "scene/Theme.h"

#include <cmath>

namespace Vek::Chart::Scene {

Canvas::Canvas(Utility::Scoped<Rgl>& p_gl, const View& p_view, TextRenderer& p_text)
    : _gl(p_gl)
    , _view(p_view)
    , _text(p_text)
    , _point(p_view.PointSize())
    , _width(static_cast<double>(p_view.viewport.width) / p_view.PointSize())
    , _attributes(p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_COLOR_BUFFER_BIT | RGL_TEXTURE_BIT))
    , _projection(p_gl->PixelProjection(p_view.viewport)) {
  for (const Ogl::GlEnum capability : {RGL_LIGHTING, RGL_DEPTH_TEST, RGL_CULL_FACE, RGL_TEXTURE_2D})
    _gl->Disable(capability);
  _gl->Enable(RGL_BLEND);
  _gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
}

void Canvas::Fill(const Rect& p_rect, const QColor& p_lower, const QColor& p_upper) {
  _gl->Begin(RGL_QUADS);
  _gl->Color(p_lower);
  _gl->Vertex(p_rect.left * _point, p_rect.bottom * _point, 0.0);
  _gl->Vertex(p_rect.right * _point, p_rect.bottom * _point, 0.0);
  _gl->Color(p_upper);
  _gl->Vertex(p_rect.right * _point, p_rect.top * _point, 0.0);
  _gl->Vertex(p_rect.left * _point, p_rect.top * _point, 0.0);
  _gl->End();
}

void Canvas::Frame(const Rect& p_rect, double p_width, const QColor& p_color) {
  Line(p_rect.left, p_rect.bottom, p_rect.right, p_rect.bottom, p_width, p_color);
  Line(p_rect.left, p_rect.top, p_rect.right, p_rect.top, p_width, p_color);
  Line(p_rect.left, p_rect.bottom, p_rect.left, p_rect.top, p_width, p_color);
  Line(p_rect.right, p_rect.bottom, p_rect.right, p_rect.top, p_width, p_color);
}

void Canvas::Triangle(const Place& p_a, const Place& p_b, const Place& p_c, const QColor& p_color) {
  _gl->Color(p_color);
  _gl->Begin(RGL_TRIANGLES);
  for (const Place& corner : {p_a, p_b, p_c})
    _gl->Vertex(corner.x * _point, corner.y * _point, 0.0);
  _gl->End();
}

void Canvas::Line(double p_x0, double p_y0, double p_x1, double p_y1, double p_width, const QColor& p_color) {
  // A quad, since the widths that GL offers for lines differ from device to device.
  const double length = std::hypot(p_x1 - p_x0, p_y1 - p_y0);
  if (!(length > 0))
    return;
  const double nx = -(p_y1 - p_y0) / length * p_width / 2;
  const double ny = (p_x1 - p_x0) / length * p_width / 2;
  _gl->Color(p_color);
  _gl->Begin(RGL_QUADS);
  _gl->Vertex((p_x0 - nx) * _point, (p_y0 - ny) * _point, 0.0);
  _gl->Vertex((p_x1 - nx) * _point, (p_y1 - ny) * _point, 0.0);
  _gl->Vertex((p_x1 + nx) * _point, (p_y1 + ny) * _point, 0.0);
  _gl->Vertex((p_x0 + nx) * _point, (p_y0 + ny) * _point, 0.0);
  _gl->End();
}

void Canvas::Text(const QString& p_text, double p_x, double p_y, TextRenderer::Anchor p_anchor,
                  const TextRenderer::Style& p_style) {
  _text.Draw(_gl, p_text, p_x * _point, p_y * _point, p_anchor, p_style, _point);
}

void Canvas::TextAt(const QString& p_text, const Types::Vector3_Base<double>& p_point, double p_dx, double p_dy,
                    TextRenderer::Anchor p_anchor, const TextRenderer::Style& p_style) {
  const Camera::Pixel pixel = _view.Project(p_point);
  if (!pixel.visible)
    return;
  Text(p_text, (pixel.x - static_cast<double>(_view.viewport.x)) / _point + p_dx,
       (pixel.y - static_cast<double>(_view.viewport.y)) / _point + p_dy, p_anchor, p_style);
}

void Canvas::Title(const QString& p_title, const QString& p_line) {
  Text(p_title, 48, Height() - 60, {0, 0.5}, {Theme::TitleSize, Theme::Title, true});
  Text(p_line, 49, Height() - 102, {0, 0.5}, {Theme::TextSize, Theme::Text, false});
}

void Canvas::Bar(const Rect& p_rect, const Library::ColorMap& p_colors, const QString& p_title,
                 const std::vector<Tick>& p_ticks) {
  {
    const auto guard = _gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
    p_colors(_gl, RGL_TEXTURE0);
    _gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE);
    _gl->Begin(RGL_QUADS);
    for (const auto& [s, t] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
      _gl->TexCoord(s, 0.5);
      _gl->Vertex((s == 0 ? p_rect.left : p_rect.right) * _point, (t == 0 ? p_rect.bottom : p_rect.top) * _point, 0.0);
    }
    _gl->End();
  }
  for (const Tick& tick : p_ticks) {
    const double x = p_rect.left + (p_rect.right - p_rect.left) * tick.place;
    Line(x, p_rect.bottom, x, p_rect.bottom - (tick.text.isEmpty() ? 4 : 6), 1.5, Theme::Text);
    if (!tick.text.isEmpty())
      Text(tick.text, x, p_rect.bottom - 9, {0.5, 1}, {Theme::SmallSize, Theme::Text, false});
  }
  if (!p_title.isEmpty())
    Text(p_title, p_rect.left - 2, p_rect.top + 6, {0, 0}, {Theme::SmallSize, Theme::Text, false});
}

Types::Viewport<0> PartOf(const View& p_view, const Canvas::Rect& p_rect) {
  const auto pixels = [&](double p_points) { return static_cast<float>(std::floor(p_points * p_view.PointSize())); };
  return {p_view.viewport.x + pixels(p_rect.left), p_view.viewport.y + pixels(p_rect.bottom),
          pixels(p_rect.right - p_rect.left), pixels(p_rect.top - p_rect.bottom)};
}

void DrawBackground(Utility::Scoped<Rgl>& p_gl, const View& p_view, TextRenderer& p_text) {
  p_gl->Viewport(p_view.viewport);
  p_gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT | RGL_STENCIL_BUFFER_BIT);
  Canvas canvas(p_gl, p_view, p_text);
  canvas.Fill({0, 0, canvas.Width(), canvas.Height()}, Theme::BackgroundBottom, Theme::BackgroundTop);
}

} // namespace Vek::Chart::Scene
