#include "apps/gallery/Sheet.h"

#include "scene/Background.h"

#include "platform/ogl/OffscreenContext.h"

#include <cmath>

namespace Vek::Chart::Gallery {

Theme FigureTheme() {
  Theme theme = Theme::Dark();
  theme.titleSize = 25;
  return theme;
}

namespace {

Theme SheetTheme() {
  Theme theme = FigureTheme();
  for (double* size : {&theme.titleSize, &theme.textSize, &theme.smallSize})
    *size *= FigurePoint;
  return theme;
}

void DrawAll(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const QString& p_title,
             const QString& p_subtitle, const std::function<void(Sheet&)>& p_draw) {
  const TextRenderer text;
  const Theme theme = SheetTheme();
  DrawBackground(p_gl, p_viewport, theme);
  Sheet sheet{p_gl, p_viewport, theme, {p_gl, p_viewport, text, Canvas::ThousandthOfHeight(p_viewport)}};
  sheet.canvas.Text(p_title, {48, sheet.canvas.Height() - 52}, {0, 0.5}, theme.TitleStyle());
  sheet.canvas.Text(p_subtitle, {49, sheet.canvas.Height() - 92}, {0, 0.5}, theme.BodyStyle());
  p_draw(sheet);
}

} // namespace

Utility::Scoped<Rgl>& Sheet::Gl() {
  canvas.Flush();
  return scope;
}

void Sheet::Draw(Figure& p_figure, const Rect& p_rect) {
  // The background goes on.
  const auto background = [&](double p_y) {
    const auto mix = [&](int p_bottom, int p_top) {
      return static_cast<int>(std::lround(p_bottom + (p_top - p_bottom) * p_y / canvas.Height()));
    };
    const QColor &top = theme.backgroundTop, &bottom = theme.backgroundBottom;
    return QColor(mix(bottom.red(), top.red()), mix(bottom.green(), top.green()), mix(bottom.blue(), top.blue()));
  };
  p_figure.theme = FigureTheme();
  p_figure.theme.backgroundTop = background(p_rect.top);
  p_figure.theme.backgroundBottom = background(p_rect.bottom);
  p_figure.Draw(Gl(), canvas.Part(p_rect), FigurePoint * canvas.PointSize());
}

void Sheet::Draw(const Camera& p_camera, const Rect& p_rect, const std::function<void(const View&)>& p_draw) {
  const View view{p_camera, canvas.Part(p_rect)};
  Utility::Scoped<Rgl>& gl = Gl();
  const auto state = gl->PushAttribScope(RGL_ALL_ATTRIB_BITS);
  gl->Viewport(view.viewport);
  const auto camera = p_camera.Apply(gl, view.viewport);
  p_draw(view);
}

void Sheet::Label(const QString& p_text, double p_x, double p_y, TextRenderer::Anchor p_anchor) {
  canvas.Text(p_text, {p_x, p_y}, p_anchor, theme.SmallStyle());
}

void Sheet::Remark(const QString& p_text, double p_x, double p_y, TextRenderer::Anchor p_anchor) {
  TextStyle style = theme.SmallStyle();
  style.color = theme.faint;
  canvas.Text(p_text, {p_x, p_y}, p_anchor, style);
}

void Sheet::Heading(const QString& p_text, double p_x, double p_y, TextRenderer::Anchor p_anchor) {
  TextStyle style = theme.BodyStyle();
  style.bold = true;
  style.color = theme.title;
  canvas.Text(p_text, {p_x, p_y}, p_anchor, style);
}

QImage DrawSheet(const QString& p_title, const QString& p_subtitle, Types::Size p_size,
                 const std::function<void(Sheet&)>& p_draw, bool p_isSmooth) {
  const int scale = p_isSmooth ? 2 : 1;
  // Several samples of a poster would take gigabytes.
  const bool hasSamples = p_isSmooth && static_cast<long>(p_size.width) * p_size.height <= 4'000'000;
  const Types::Size large(p_size.width * scale, p_size.height * scale);
  Ogl::OffscreenContext context(large, hasSamples ? 4 : 0);
  {
    Utility::Scoped<Rgl> gl(context.Handle());
    DrawAll(gl, {0, 0, static_cast<float>(large.width), static_cast<float>(large.height)}, p_title, p_subtitle, p_draw);
    gl->CheckError(p_title.toStdString());
  }
  return context.Image()
      .convertToFormat(QImage::Format_RGB32)
      .scaled(p_size.width, p_size.height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace Vek::Chart::Gallery
