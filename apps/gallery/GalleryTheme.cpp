#include "apps/gallery/GalleryTheme.h"

#include "scene/Background.h"

#include <cmath>

namespace Vek::Chart::Gallery {

Types::Viewport<0> PartOf(const View& p_view, const Canvas::Rect& p_rect) {
  const auto pixels = [&](double p_points) { return static_cast<float>(std::floor(p_points * PointSize(p_view))); };
  return {p_view.viewport.x + pixels(p_rect.left), p_view.viewport.y + pixels(p_rect.bottom),
          pixels(p_rect.right - p_rect.left), pixels(p_rect.top - p_rect.bottom)};
}

void DrawBackground(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
  Theme theme;
  theme.backgroundTop = GalleryTheme::BackgroundTop;
  theme.backgroundBottom = GalleryTheme::BackgroundBottom;
  DrawBackground(p_gl, p_view.viewport, theme);
}

void DrawTitle(Canvas& p_canvas, const QString& p_title, const QString& p_line) {
  using namespace GalleryTheme;
  p_canvas.Text(p_title, {48, p_canvas.Height() - 60}, {0, 0.5}, {TitleSize, Title, true});
  p_canvas.Text(p_line, {49, p_canvas.Height() - 102}, {0, 0.5}, {TextSize, Text});
}

void DrawEdge(Canvas& p_canvas, const Canvas::Rect& p_rect) {
  const auto& [left, bottom, right, top] = p_rect;
  for (const double y : {bottom, top})
    p_canvas.Line({left, y}, {right, y}, 1, GalleryTheme::Line);
  for (const double x : {left, right})
    p_canvas.Line({x, bottom}, {x, top}, 1, GalleryTheme::Line);
}

} // namespace Vek::Chart::Gallery
