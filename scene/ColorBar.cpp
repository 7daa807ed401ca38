#include "scene/ColorBar.h"

#include "scene/Theme.h"

#include <cmath>

namespace Vek::Chart::Scene {

namespace {

constexpr double ArrowLength = 16;

/// An arrow in a square, or in half of a bar's end; it points left when `p_to` is less than `p_from`.
void DrawArrow(Canvas& p_canvas, double p_from, double p_to, double p_bottom, double p_top, const QColor& p_color) {
  p_canvas.Triangle({p_from, p_bottom}, {p_from, p_top}, {p_to, (p_bottom + p_top) / 2}, p_color);
}

} // namespace

std::vector<Canvas::Tick> LogTicks(double p_min, double p_max) {
  if (!(p_min > 0 && p_max > p_min && std::isfinite(p_max)))
    return {};
  const auto place = [&](double p_value) { return std::log(p_value / p_min) / std::log(p_max / p_min); };
  std::vector<Canvas::Tick> ticks{{0, QString::number(p_min)}};
  for (int decade = static_cast<int>(std::floor(std::log10(p_min))); std::pow(10.0, decade) < p_max; ++decade)
    for (int i = 1; i < 10; ++i) {
      const double value = i * std::pow(10.0, decade);
      if (value > p_min * (1 + 1e-9) && value < p_max * (1 - 1e-9))
        ticks.push_back({place(value), i == 1 ? QString::number(value) : QString()});
    }
  ticks.push_back({1, QString::number(p_max)});
  return ticks;
}

std::vector<Canvas::Tick> ClassTicks(const std::vector<double>& p_bounds) {
  std::vector<Canvas::Tick> ticks;
  for (std::size_t i = 0; i < p_bounds.size(); ++i)
    ticks.push_back({static_cast<double>(i) / static_cast<double>(p_bounds.size() - 1), QString::number(p_bounds[i])});
  return ticks;
}

void DrawColorBar(Canvas& p_canvas, const Canvas::Rect& p_rect, const Library::ColorMap& p_colors,
                  const Library::ColorScale::Outside& p_outside, const QString& p_title,
                  const std::vector<Canvas::Tick>& p_ticks) {
  constexpr double Gap = 3;
  const double left = p_rect.left + ArrowLength + Gap, right = p_rect.right - ArrowLength - Gap;
  p_canvas.Bar({left, p_rect.bottom, right, p_rect.top}, p_colors, p_title, p_ticks);
  DrawArrow(p_canvas, left - Gap, p_rect.left, p_rect.bottom, p_rect.top, p_outside.below);
  DrawArrow(p_canvas, right + Gap, p_rect.right, p_rect.bottom, p_rect.top, p_outside.above);
}

void DrawOutsideKey(Canvas& p_canvas, double p_left, double p_y, const Library::ColorScale::Outside& p_outside,
                    const QString& p_nan) {
  constexpr double Column = 210, Half = 9, TextGap = 12;
  const double bottom = p_y - Half, top = p_y + Half;
  const TextRenderer::Style text{18, Theme::Dark().text};
  DrawArrow(p_canvas, p_left + ArrowLength, p_left, bottom, top, p_outside.below);
  DrawArrow(p_canvas, p_left + Column, p_left + Column + ArrowLength, bottom, top, p_outside.above);
  p_canvas.Fill({p_left + 2 * Column, bottom, p_left + 2 * Column + 2 * Half, top}, p_outside.nan);
  const QString texts[] = {"below the range", "above the range", p_nan};
  for (int i = 0; i < 3; ++i)
    p_canvas.Text(texts[i], {p_left + i * Column + ArrowLength + TextGap, p_y}, {0, 0.5}, text);
}

} // namespace Vek::Chart::Scene
