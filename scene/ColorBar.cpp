#include "scene/ColorBar.h"

#include "scene/private/Wrapped.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Position = LegendBlock::Position;
using String = LegendBlock::String;

/// Up to this many classes, all bounds are ticks; more of them look like a gradient.
constexpr std::size_t MostClasses = 24;

QColor OrElse(const QColor& p_color, const QColor& p_default) {
  return p_color.isValid() ? p_color : p_default;
}

/// If the bounds of many classes are spaced evenly in the logarithm.
bool IsLogarithmic(const std::vector<double>& p_bounds) {
  if (p_bounds.size() < 3 || !(p_bounds.front() > 0))
    return false;
  // The middle of an even number of classes.
  const std::size_t even = (p_bounds.size() - 1) / 2 * 2;
  const double low = p_bounds.front(), middle = p_bounds[even / 2], high = p_bounds[even];
  return std::abs(middle - std::sqrt(low) * std::sqrt(high)) < std::abs(middle - (low / 2 + high / 2));
}

/// The share of a value between two others.
double Share(double p_value, double p_low, double p_high, bool p_isLogarithmic) {
  if (p_isLogarithmic)
    return (std::log(p_value) - std::log(p_low)) / (std::log(p_high) - std::log(p_low));
  return (p_value / 2 - p_low / 2) / (p_high / 2 - p_low / 2); // the width of a range may be beyond that of double
}

bool Overlap(const Canvas::Rect& p_a, const Canvas::Rect& p_b) {
  constexpr double Gap = 1;
  return p_a.left < p_b.right + Gap && p_b.left < p_a.right + Gap && p_a.bottom < p_b.top + Gap &&
         p_b.bottom < p_a.top + Gap;
}

/// The line around a polygon. It begins within an edge, since only inner joints are mitred.
LegendBlock::Line Outline(const std::vector<Position>& p_corners, double p_width, const QColor& p_color) {
  const Position& first = p_corners.front();
  const Position& last = p_corners.back();
  const Position middle{(first.x + last.x) / 2, (first.y + last.y) / 2};
  std::vector<Position> line{middle};
  line.insert(line.end(), p_corners.begin(), p_corners.end());
  line.push_back(middle);
  return {line, p_width, p_color};
}

/// A bar in directions along it and across.
struct Frame {
  bool isVertical;
  double thickness;
  double length; ///< of the colours

  /// `p_out` is the distance from the side of the ticks, away from the bar.
  Position At(double p_along, double p_out) const {
    return isVertical ? Position{thickness + p_out, p_along} : Position{p_along, -p_out};
  }
  Canvas::Rect Rect(double p_from, double p_to) const {
    return isVertical ? Canvas::Rect{0, p_from, thickness, p_to} : Canvas::Rect{p_from, 0, p_to, thickness};
  }
  /// Half of the colours, away from the ticks.
  Canvas::Rect OuterHalf() const {
    return isVertical ? Canvas::Rect{0, 0, thickness / 2, length} : Canvas::Rect{0, thickness / 2, length, thickness};
  }
  String TickString(const QString& p_text, double p_along, double p_gap, const TextStyle& p_style) const {
    return {p_text, At(p_along, p_gap), isVertical ? TextRenderer::Anchor{0, 0.5} : TextRenderer::Anchor{0.5, 1},
            p_style};
  }
  /// The pointed end with its tip at a position.
  std::vector<Position> Point(double p_from, double p_tip) const {
    return {At(p_from, 0), At(p_from, -thickness), At(p_tip, -thickness / 2)};
  }
};

} // namespace

ColorBar::ColorBar(const Library::ColorMap& p_map, const ValueScale& p_scale)
    : _colors(Library::ColorMap(p_map).GetImage())
    , _bounds{p_scale.lower, p_scale.upper}
    , _isLogarithmic(p_scale.logarithmic)
    , _below(OrElse(p_scale.below, p_map.Color(0)))
    , _above(OrElse(p_scale.above, p_map.Color(p_map.Size() - 1)))
    , _missing(p_scale.missing) {
  p_scale.Check();
}

ColorBar::ColorBar(const Library::ColorScale& p_scale)
    : _colors(static_cast<int>(p_scale.Colors().size()), 1, QImage::Format_ARGB32)
    , _bounds(p_scale.Bounds())
    , _isLogarithmic(IsLogarithmic(p_scale.Bounds()))
    , _below(p_scale.OutsideColors().below)
    , _above(p_scale.OutsideColors().above)
    , _missing(p_scale.OutsideColors().nan) {
  for (std::size_t i = 0; i < p_scale.Colors().size(); ++i)
    _colors.setPixelColor(static_cast<int>(i), 0, p_scale.Colors()[i]);
}

double ColorBar::PositionOf(double p_value) const {
  if (_bounds.size() < 2 || std::isnan(p_value))
    return std::numeric_limits<double>::quiet_NaN();
  const auto classes = static_cast<double>(_bounds.size() - 1);
  const auto upper = std::upper_bound(_bounds.begin() + 1, _bounds.end() - 1, p_value);
  const auto index = static_cast<double>(upper - _bounds.begin() - 1);
  const double low = *(upper - 1), high = *upper;
  const double share = high > low ? Share(p_value, low, high, _isLogarithmic && p_value > 0) : 0;
  return (index + share) / classes;
}

Ticks ColorBar::TicksFor(std::size_t p_most) const {
  if (_bounds.size() > 2 && _bounds.size() <= MostClasses + 1)
    return Ticks::OfBounds(_bounds, p_most);
  return _isLogarithmic ? Ticks::Logarithmic(_bounds.front(), _bounds.back(), p_most)
                        : Ticks::Linear(_bounds.front(), _bounds.back(), p_most);
}

namespace {

/// The colours in their opacities over a background.
QImage Blended(const QImage& p_colors, const std::vector<double>& p_opacities, const QColor& p_background) {
  const int count = std::max(p_colors.width(), static_cast<int>(p_opacities.size()));
  QImage blended(count, 1, QImage::Format_ARGB32);
  for (int i = 0; i < count; ++i) {
    const QColor color = p_colors.pixelColor(i * p_colors.width() / count, 0);
    const double opacity =
        p_opacities[static_cast<std::size_t>(i) * p_opacities.size() / static_cast<std::size_t>(count)];
    const auto mix = [&](double p_of, double p_over) { return p_of * opacity + p_over * (1 - opacity); };
    blended.setPixelColor(i, 0,
                          QColor::fromRgbF(mix(color.redF(), p_background.redF()),
                                           mix(color.greenF(), p_background.greenF()),
                                           mix(color.blueF(), p_background.blueF())));
  }
  return blended;
}

} // namespace

/// A layout in the making.
struct ColorBar::Builder {
  Builder(const ColorBar& p_bar, double p_length, const Theme& p_theme, double p_pointSize)
      : bar(p_bar)
      , theme(p_theme)
      , small(p_theme.SmallStyle())
      , block(p_pointSize)
      , wholeLength(p_length)
      , pointSize(p_pointSize) {
    const double point = metrics.pointLength + metrics.pointGap;
    before = bar.IsPointedBelow() ? point : 0;
    after = bar.IsPointedAbove() ? point : 0;
    missing = {bar.missingName, {}, {0, 0.5}, small};
    const double taken = frame.isVertical ? 0 : TextRenderer::Size(bar.missingName, small, p_pointSize).width();
    frame.length = std::max(0.0, p_length - before - after - (bar.hasMissing ? Square() + taken : 0));
  }

  /// The length of the square of missing values and of the gap beside it.
  double Square() const { return small.size * 2 / 3 + metrics.thickness; }

  void AddColors() {
    block.Add(LegendBlock::Gradient{frame.Rect(0, frame.length), bar._colors, frame.isVertical});
    if (!bar.opacities.empty() && !bar._colors.isNull())
      block.Add(LegendBlock::Gradient{frame.OuterHalf(), Blended(bar._colors, bar.opacities, theme.backgroundBottom),
                                      frame.isVertical});
    const double low = -before, high = frame.length + after;
    if (before > 0)
      block.Add(LegendBlock::Shape{frame.Point(-metrics.pointGap, low), bar._below});
    if (after > 0)
      block.Add(LegendBlock::Shape{frame.Point(frame.length + metrics.pointGap, high), bar._above});
    if (!(metrics.edge > 0))
      return;
    const double middle = -metrics.thickness / 2;
    std::vector<Position> corners{frame.At(0, 0)};
    if (before > 0)
      corners.push_back(frame.At(low, middle));
    corners.push_back(frame.At(0, -metrics.thickness));
    corners.push_back(frame.At(frame.length, -metrics.thickness));
    if (after > 0)
      corners.push_back(frame.At(high, middle));
    corners.push_back(frame.At(frame.length, 0));
    block.Add(Outline(corners, metrics.edge, theme.line));
  }

  /// A square beyond the lower end of a vertical bar, or the upper one of a horizontal one.
  void AddMissing() {
    if (!bar.hasMissing)
      return;
    const double end = frame.isVertical ? -before - Square() : frame.length + after + Square() - metrics.thickness;
    const std::vector<Position> corners{frame.At(end, 0), frame.At(end, -metrics.thickness),
                                        frame.At(end + metrics.thickness, -metrics.thickness),
                                        frame.At(end + metrics.thickness, 0)};
    block.Add(LegendBlock::Shape{corners, bar._missing});
    block.Add(Outline(corners, std::max(metrics.edge, 1.0), theme.line));
    missing.position = frame.isVertical ? frame.At(end + metrics.thickness / 2, metrics.stringGap)
                                        : frame.At(end + metrics.thickness, -metrics.thickness / 2);
    block.Add(missing);
  }

  /// The strings of all ticks with one, in their order.
  std::vector<String> StringsOf(const Ticks& p_ticks) const {
    std::vector<String> strings;
    for (std::size_t i = 0; i < p_ticks.Values().size(); ++i)
      strings.push_back(frame.TickString(p_ticks.Strings()[i], frame.length * bar.PositionOf(p_ticks.Values()[i]),
                                         metrics.stringGap, small));
    return strings;
  }

  /// Empties strings that overlap one before them or one of `p_fixed`; returns how many remain.
  std::size_t DropOverlaps(std::vector<String>& p_strings, const std::vector<String>& p_fixed) const {
    std::vector<Canvas::Rect> taken;
    for (const String& string : p_fixed)
      taken.push_back(block.BoxOf(string));
    const std::size_t fixed = taken.size();
    for (String& string : p_strings) {
      if (string.text.isEmpty())
        continue;
      const Canvas::Rect box = block.BoxOf(string);
      if (std::any_of(taken.begin(), taken.end(), [&](const Canvas::Rect& p_other) { return Overlap(box, p_other); }))
        string.text.clear();
      else
        taken.push_back(box);
    }
    return taken.size() - fixed;
  }

  /// The most ticks without overlap, two at least; none otherwise.
  Ticks FittingTicks() const {
    const bool hasClasses = bar._bounds.size() > 2 && bar._bounds.size() <= MostClasses + 1;
    const std::size_t most = hasClasses ? bar._bounds.size() : MostTicks;
    for (std::size_t count = most; count > 1; --count) {
      Ticks fitting = bar.TicksFor(count);
      std::vector<String> strings = StringsOf(fitting);
      const auto labelled = static_cast<std::size_t>(std::count_if(
          strings.begin(), strings.end(), [](const String& p_string) { return !p_string.text.isEmpty(); }));
      if (labelled > 1 && DropOverlaps(strings, {}) == labelled)
        return fitting;
    }
    return {};
  }

  void AddTicks() {
    const Ticks shown = bar.ticks ? *bar.ticks : frame.length > 0 ? FittingTicks() : Ticks();
    note = shown.Note();
    const Ticks& precision = shown.Values().empty() ? bar.TicksFor(MostTicks) : shown;
    std::vector<String> extremes;
    if (before > 0 && std::isfinite(bar.least))
      extremes.push_back(frame.TickString(precision.Format(bar.least, {}, 1), -before, metrics.stringGap, small));
    if (after > 0 && std::isfinite(bar.largest))
      extremes.push_back(
          frame.TickString(precision.Format(bar.largest, {}, 1), frame.length + after, metrics.stringGap, small));

    std::vector<String> strings = StringsOf(shown);
    if (DropOverlaps(strings, extremes) == 0 && !bar._bounds.empty() && !bar.ticks) {
      const std::string text = "ColorBar: no room for two ticks along " +
                               std::to_string(static_cast<long>(frame.length)) + " points (\"" +
                               bar.title.toStdString() + "\")";
      if (bar.report)
        bar.report(text);
      else
        vekdebug::warn(text);
    }
    for (std::size_t i = 0; i < strings.size(); ++i) {
      const double along = frame.length * bar.PositionOf(shown.Values()[i]);
      if (!(along >= 0 && along <= frame.length))
        continue;
      const double length = shown.Strings()[i].isEmpty() ? metrics.minorTick : metrics.tick;
      block.Add(LegendBlock::Line{{frame.At(along, 0), frame.At(along, length)}, metrics.tickWidth, theme.line});
      block.Add(std::move(strings[i]));
    }
    for (String& string : extremes)
      block.Add(std::move(string));
  }

  /// Above, or along a vertical bar, to the right of all strings, where it is wider than those: in lines that are as
  /// long as the bar, or as a few words where that is shorter.
  void AddTitle() {
    const QString text = bar.title + (bar.title.isEmpty() || note.isEmpty() ? QString() : QString(" ")) + note;
    String label{text, {metrics.titleShift, block.Bounds().top + metrics.titleGap}, {0, 0}, theme.BodyStyle()};
    const Canvas::Rect box = block.BoxOf(label);
    constexpr double Wide = 8; // times the height of the letters
    const bool isAlong = frame.isVertical && box.right > std::max(block.Bounds().right, Wide * theme.textSize);
    if (isAlong || !frame.isVertical)
      label.text = Private::Wrapped(text, label.style, std::max(wholeLength, Wide * theme.textSize), pointSize);
    if (isAlong) {
      label.position = {block.Bounds().right + metrics.titleGap, frame.length / 2};
      label.anchor = {0.5, 1};
      label.rotation = 90;
    }
    block.Add(std::move(label));
  }

  static constexpr std::size_t MostTicks = 6;

  const ColorBar& bar;
  const Theme& theme;
  TextStyle small;
  LegendBlock block;
  double wholeLength; ///< with pointed ends and what is missing
  double pointSize;
  const Metrics& metrics = bar.metrics;
  Frame frame{bar.orientation == Orientation::Vertical, bar.metrics.thickness, 0};
  String missing;
  QString note;
  double before = 0; ///< the length of the pointed end and its gap
  double after = 0;
};

LegendBlock ColorBar::Layout(double p_length, const Theme& p_theme, double p_pointSize) const {
  Builder builder(*this, p_length, p_theme, p_pointSize);
  builder.AddColors();
  builder.AddMissing();
  builder.AddTicks();
  builder.AddTitle();
  return std::move(builder.block);
}

} // namespace Vek::Chart::Scene
