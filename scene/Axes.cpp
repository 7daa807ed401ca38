#include "scene/Axes.h"

#include "scene/private/AxesLayouter.h"

#include <algorithm>
#include <stdexcept>

namespace Vek::Chart::Scene {

namespace {

void Validate(const Axes::Target& p_target) {
  if (!p_target.measure || !(p_target.pointSize > 0))
    throw std::invalid_argument("Axes: expected a function that measures strings, and a point size above 0");
}

TextStyle StyleOf(const Theme& p_theme, AxesLayout::Font p_font) {
  return p_font == AxesLayout::Font::Title ? p_theme.BodyStyle() : p_theme.SmallStyle();
}

} // namespace

AxesLayout Axes::Layout(const Camera& p_camera, const Target& p_target, State& p_state) const {
  Validate(p_target);
  if (box.Empty() || !(p_target.viewport.width > 0 && p_target.viewport.height > 0))
    return {};
  return Private::LaidOut(*this, p_camera, p_target, p_state, true);
}

AxesLayout Axes::Fit(Camera& p_camera, const Target& p_target, const Camera::Margins& p_margins, State& p_state) const {
  Validate(p_target);
  constexpr int MostRounds = 12;
  Camera::Margins margins = p_margins;
  const double pixels = p_target.pointSize;
  const double width = static_cast<double>(p_target.viewport.width);
  const double height = static_cast<double>(p_target.viewport.height);
  for (int round = 0; round < MostRounds; ++round) {
    p_camera.Fit(box, p_target.viewport, margins);
    const AxesLayout::Rect taken = Private::LaidOut(*this, p_camera, p_target, p_state, false).Bounds();
    // What lies in the margins, in pixels.
    const double left = p_margins.left - taken.left * pixels, right = taken.right * pixels - width + p_margins.right;
    const double bottom = p_margins.bottom - taken.bottom * pixels, top = taken.top * pixels - height + p_margins.top;
    if (std::max({left, right, bottom, top}) <= 0)
      break;
    const auto widened = [](double p_margin, double p_excess) {
      constexpr double Rounding = 0.5;
      return p_excess > 0 ? p_margin + p_excess + Rounding : p_margin;
    };
    margins = {widened(margins.left, left), widened(margins.bottom, bottom), widened(margins.right, right),
               widened(margins.top, top)};
  }
  return Layout(p_camera, p_target, p_state);
}

AxesLayout Axes::Fit(Camera& p_camera, const Target& p_target, const Camera::Margins& p_margins) const {
  State state;
  return Fit(p_camera, p_target, p_margins, state);
}

AxesLayout::Measure Axes::MeasureIn(const Theme& p_theme, double p_pointSize) {
  return [theme = p_theme, p_pointSize](const QString& p_text, AxesLayout::Font p_font) {
    return TextRenderer::Size(p_text, StyleOf(theme, p_font), p_pointSize);
  };
}

void Axes::Draw(Canvas& p_canvas, const AxesLayout& p_layout, const Theme& p_theme) {
  constexpr double LineWidth = 1;
  constexpr TextRenderer::Anchor Middle{0.5, 0.5};
  for (const AxesLayout::Line& line : p_layout.lines)
    p_canvas.Line(line.from, line.to, LineWidth,
                  line.kind == AxesLayout::Line::Kind::Grid ? p_theme.grid : p_theme.line);
  for (const AxesLayout::Label& label : p_layout.labels)
    p_canvas.Text(label.text, label.center, Middle, StyleOf(p_theme, label.font), label.rotation);
}

} // namespace Vek::Chart::Scene
