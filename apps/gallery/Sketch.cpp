#include "apps/gallery/Sketch.h"

#include "apps/gallery/GalleryTheme.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

using namespace Scene;

using Pair = Types::Vector2_Base<double>;

Sketch::Sketch(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas, const Canvas::Rect& p_rect, const Camera& p_camera)
    : _gl(p_gl)
    , _canvas(p_canvas)
    , _rect(static_cast<float>(p_rect.left), static_cast<float>(p_rect.bottom),
            static_cast<float>(p_rect.right - p_rect.left), static_cast<float>(p_rect.top - p_rect.bottom))
    , _camera(p_camera) {}

Pair Sketch::At(const Point& p_point) const {
  const Camera::Pixel pixel = _camera.Project(p_point, _rect);
  return {pixel.x, pixel.y};
}

void Sketch::Corner(const Pair& p_point) const {
  _gl->Vertex(p_point.x * _canvas.PointSize(), p_point.y * _canvas.PointSize(), 0.0);
}

void Sketch::Line(const Point& p_a, const Point& p_b, double p_width, const QColor& p_color) {
  const Pair a = At(p_a), b = At(p_b);
  _canvas.Line({a.x, a.y}, {b.x, b.y}, p_width, p_color);
}

void Sketch::DashedLine(const Point& p_a, const Point& p_b, double p_width, const QColor& p_color) {
  constexpr double Dash = 7, Period = 12;
  const Pair a = At(p_a), whole = At(p_b) - a;
  const double length = std::hypot(whole.x, whole.y);
  for (double at = Period - Dash; at < length; at += Period) {
    const Pair from = a + whole * (at / length), to = a + whole * (std::min(at + Dash, length) / length);
    _canvas.Line({from.x, from.y}, {to.x, to.y}, p_width, p_color);
  }
}

void Sketch::Outline(const std::vector<Point>& p_corners, double p_width, const QColor& p_color) {
  for (std::size_t i = 0; i < p_corners.size(); ++i)
    Line(p_corners[i], p_corners[(i + 1) % p_corners.size()], p_width, p_color);
}

void Sketch::Fill(const std::vector<Point>& p_corners, const QColor& p_color) {
  _gl->Color(p_color);
  _gl->Begin(RGL_POLYGON);
  for (const Point& corner : p_corners)
    Corner(At(corner));
  _gl->End();
}

void Sketch::Dot(const Point& p_center, double p_radius, const QColor& p_color) {
  constexpr int Corners = 24;
  const Pair center = At(p_center);
  _gl->Color(p_color);
  _gl->Begin(RGL_POLYGON);
  for (int i = 0; i < Corners; ++i)
    Corner(center + Pair(std::cos(2 * M_PI * i / Corners), std::sin(2 * M_PI * i / Corners)) * p_radius);
  _gl->End();
}

void Sketch::Text(const QString& p_text, const Point& p_place, double p_dx, double p_dy, const QColor& p_color) {
  const Pair place = At(p_place);
  _canvas.Text(p_text, {place.x + p_dx, place.y + p_dy}, {0.5, 0.5}, {GalleryTheme::SmallSize, p_color, true});
}

} // namespace Vek::Chart::Gallery
