#include "apps/gallery/GalleryBars.h"

#include "apps/gallery/GalleryTheme.h"
#include "scene/LegendBlock.h"
#include "scene/Theme.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace Vek::Chart::Gallery {

namespace {

constexpr double ArrowLength = 16, ArrowGap = 3;

LegendBlock Layout(ColorBar& p_bar, const Canvas& p_canvas, const Canvas::Rect& p_rect, const QString& p_title,
                   const Ticks& p_ticks) {
  p_bar.orientation = ColorBar::Orientation::Horizontal;
  p_bar.title = p_title;
  p_bar.ticks = p_ticks;
  p_bar.metrics = {p_rect.top - p_rect.bottom, ArrowLength, ArrowGap, 6, 4, 1.5, 9, 6, -2, 0};
  Theme theme = Theme::Dark();
  theme.textSize = theme.smallSize = GalleryTheme::SmallSize;
  theme.line = theme.text;
  return p_bar.Layout(p_rect.right - p_rect.left, theme, p_canvas.PointSize());
}

/// An arrow that points left when `p_to` is less than `p_from`.
void DrawArrow(Canvas& p_canvas, double p_from, double p_to, double p_bottom, double p_top, const QColor& p_color) {
  p_canvas.Triangle({p_from, p_bottom}, {p_from, p_top}, {p_to, (p_bottom + p_top) / 2}, p_color);
}

} // namespace

Ticks TicksFromZero(double p_max, std::size_t p_most, bool p_open) {
  const Ticks round = Ticks::Linear(0, p_max, p_most);
  std::vector<QString> strings = round.Strings();
  if (round.Note().isEmpty()) // without zeros at the end
    std::transform(round.Values().begin(), round.Values().end(), strings.begin(),
                   [](double p_value) { return QString::number(p_value); });
  if (p_open && round.Values().back() == p_max)
    strings.back().prepend("≥ ");
  return {round.Values(), strings, round.Note()};
}

Ticks LogTicksWithEnds(double p_min, double p_max, std::size_t p_most) {
  const Ticks round = Ticks::Logarithmic(p_min, p_max, p_most);
  std::vector<double> values = round.Values();
  std::vector<QString> strings = round.Strings();
  if (values.front() != p_min) {
    values.insert(values.begin(), p_min);
    strings.insert(strings.begin(), QString());
  }
  if (values.back() != p_max) {
    values.push_back(p_max);
    strings.push_back(QString());
  }
  strings.front() = QString::number(p_min);
  strings.back() = QString::number(p_max);
  return {values, strings, round.Note()};
}

void DrawBar(Canvas& p_canvas, const Canvas::Rect& p_colors, ColorBar p_bar, const QString& p_title,
             const Ticks& p_ticks) {
  Layout(p_bar, p_canvas, p_colors, p_title, p_ticks).Draw(p_canvas, {p_colors.left, p_colors.bottom});
}

void DrawPointedBar(Canvas& p_canvas, const Canvas::Rect& p_rect, ColorBar p_bar, const QString& p_title,
                    const Ticks& p_ticks) {
  p_bar.largest = std::numeric_limits<double>::infinity();
  p_bar.least = -p_bar.largest;
  Layout(p_bar, p_canvas, p_rect, p_title, p_ticks)
      .Draw(p_canvas, {p_rect.left + ArrowLength + ArrowGap, p_rect.bottom});
}

void DrawOutsideKey(Canvas& p_canvas, double p_left, double p_y, const Library::ColorScale::Outside& p_outside,
                    const QString& p_nan) {
  constexpr double Column = 210, Half = 9, TextGap = 12;
  const double bottom = p_y - Half, top = p_y + Half;
  const TextRenderer::Style text{GalleryTheme::SmallSize, GalleryTheme::Text, false};
  DrawArrow(p_canvas, p_left + ArrowLength, p_left, bottom, top, p_outside.below);
  DrawArrow(p_canvas, p_left + Column, p_left + Column + ArrowLength, bottom, top, p_outside.above);
  p_canvas.Fill({p_left + 2 * Column, bottom, p_left + 2 * Column + 2 * Half, top}, p_outside.nan);
  const QString texts[] = {"below the range", "above the range", p_nan};
  for (int i = 0; i < 3; ++i)
    p_canvas.Text(texts[i], {p_left + i * Column + ArrowLength + TextGap, p_y}, {0, 0.5}, text);
}

} // namespace Vek::Chart::Gallery
