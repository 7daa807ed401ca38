#include "scene/private/FigureState.h"

#include "scene/ArrowKey.h"
#include "scene/ColorBar.h"
#include "scene/Graticule.h"
#include "scene/SizeLegend.h"
#include "scene/private/FigureCuts.h"
#include "scene/private/FigureMap.h"
#include "scene/private/FigurePage.h"

#include "platform/debug/Check.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <tuple>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using Private::At;
using Private::Box;
using Private::PlotContent;
using Private::Point;
using Private::Range;

constexpr double LeastKeyLength = 25, MostKeyLength = 70; // points
constexpr std::array<const char*, 3> AxisNames{"x", "y", "z"};

/// How many glyphs there is room for, in powers of two, so that few sizes of windows differ.
std::size_t RoomForGlyphs(const QSizeF& p_size, bool p_isFlat) {
  // Square points of the image for each glyph: 12 x 12 of the scene's share, or four layers of such.
  const double area = p_isFlat ? 240 : 60;
  constexpr double LeastRoom = 64, MostRoom = 1 << 20;
  const double room = std::clamp(p_size.width() * p_size.height() / area, LeastRoom, MostRoom);
  return std::size_t{1} << static_cast<unsigned int>(std::log2(room));
}

} // namespace

void Figure::State::Adopt(std::unique_ptr<Plot> p_plot) {
  // Distinct hues of similar lightness, legible on light and dark backgrounds.
  constexpr std::array<QRgb, 6> Palette{0xFF2F7FC1, 0xFFD9662B, 0xFF2F9E6B, 0xFFB8499A, 0xFFC29A1F, 0xFF7560C4};
  PlotContent* const content = p_plot->_content.get();
  content->coloring.SetColor(QColor::fromRgb(Palette[added++ % Palette.size()]));
  entries.push_back({std::move(p_plot), content});
}

std::vector<PlotContent*> Figure::State::Having(const std::function<bool(const PlotContent&)>& p_isWanted) const {
  std::vector<PlotContent*> wanted;
  for (const Entry& entry : entries)
    if (entry.content->isVisible && p_isWanted(*entry.content))
      wanted.push_back(entry.content);
  return wanted;
}

std::vector<PlotContent*> Figure::State::Visible() const {
  return Having([](const PlotContent&) { return true; });
}

Box Figure::State::PlacePlots(const QSizeF& p_size) {
  Box data;
  bool leavesPlane = rules.limits[2].has_value();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    Entry& entry = entries[i];
    if (!entry.content->isVisible)
      continue;
    const Box bounds = entry.content->Bounds(rules);
    data += bounds;
    leavesPlane = leavesPlane || entry.content->LeavesPlane();
    if (bounds.Empty() && extent.Empty() && !std::exchange(entry.isEmptinessReported, bounds.Empty()))
      vekdebug::warn("Figure: plot " + std::to_string(i + 1) + " has no point to show");
  }
  if (!extent.Empty()) {
    data = extent;
    leavesPlane = rules.limits[2].has_value();
  }
  _isFlat = !leavesPlane && data.Extent().z == 0;

  const auto limited = [&](const Box& p_box) {
    Point low = p_box.Min(), high = p_box.Max();
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (rules.limits[axis])
        At(low, axis) = rules.limits[axis]->min, At(high, axis) = rules.limits[axis]->max;
    return Box(low, high);
  };
  data = limited(Private::Widened(data, rules.logarithmic, _isFlat));
  transform = Private::TransformFor(data, rules, transform);

  Private::Placement placement;
  placement.transform = transform;
  placement.rules = rules;
  placement.rules.cutsSurfaces = CutsSurfaces();
  placement.diagonal = Length(transform(data).Extent());
  placement.isFlat = _isFlat;
  placement.most = RoomForGlyphs(p_size, _isFlat);
  Box scene = transform(data);
  for (PlotContent* const content : Visible())
    scene += content->placedBox = content->Place(placement);
  if (!extent.Empty())
    scene = transform(data);

  // Round limits around whole glyphs.
  const Box bare = data;
  data = transform.Inverse(scene);
  constexpr int Steps = 40;
  Point low = data.Min(), high = data.Max();
  for (std::size_t axis = 0; axis < (_isFlat ? 2 : 3); ++axis) {
    const Range round = Private::RoundOutward(Private::Along(data, axis), rules.logarithmic[axis], Steps);
    At(low, axis) = round.min, At(high, axis) = round.max;
  }
  return limited(rules.isMap ? Private::MapLimits(Box(low, high), bare) : Box(low, high));
}

QString Figure::State::AxisName(std::size_t p_axis) const {
  constexpr std::array<const char*, 2> MapNames{"longitude", "latitude"};
  const bool isAngle = rules.isMap && p_axis < MapNames.size();
  return axisTitles[p_axis].isEmpty() ? QString::fromLatin1(isAngle ? MapNames[p_axis] : AxisNames[p_axis])
                                      : axisTitles[p_axis];
}

Axes::TickMaker Figure::State::TicksOf(std::size_t p_axis) const {
  if (ticks[p_axis])
    return ticks[p_axis];
  if (rules.dates[p_axis])
    return &Ticks::Dates;
  return !rules.isMap || p_axis == 2 ? Axes::TickMaker() : p_axis == 0 ? &Graticule::Meridians : &Graticule::Parallels;
}

Axes Figure::State::MakeAxes(const Box& p_limits) const {
  Axes axes;
  axes.box = transform(p_limits);
  const bool isUntitled = axisTitles[0].isEmpty() && axisTitles[1].isEmpty() && axisTitles[2].isEmpty();
  for (std::size_t axis = 0; axis < 3; ++axis) {
    axes.axes[axis].title =
        isUntitled && !_isFlat && !(rules.isMap && axis < 2) ? QString::fromLatin1(AxisNames[axis]) : axisTitles[axis];
    axes.axes[axis].ticks = TicksOf(axis);
    axes.axes[axis].low = At(p_limits.Min(), axis);
    axes.axes[axis].high = At(p_limits.Max(), axis);
    axes.axes[axis].scale = rules.logarithmic[axis] ? Axes::Scale::Logarithmic : Axes::Scale::Linear;
  }
  return axes;
}

std::vector<QString> Figure::State::Notes() const {
  if (notes)
    return *notes;
  std::vector<QString> found;
  const std::vector<PlotContent*> visible = Visible();
  for (const PlotContent* const content : visible)
    for (const QString& note : content->Notes())
      found.push_back(visible.size() > 1 && !content->label.isEmpty() ? content->label + ": " + note : note);
  for (std::size_t axis = 0; axis < (_isFlat ? 2 : 3); ++axis)
    if (transform.axes[axis].stretch != 1 && !rules.HasOwnUnit(axis))
      found.push_back(QStringLiteral("%1 \u00D7 %2").arg(AxisName(axis)).arg(transform.axes[axis].stretch));
  for (const QString& note : Private::CutNotes(clips, {AxisName(0), AxisName(1), AxisName(2)}))
    found.push_back(note);
  return found;
}

namespace {

std::vector<ColorBar> BarsOf(const std::vector<PlotContent*>& p_contents) {
  std::vector<Private::ColorKey> keys;
  for (const PlotContent* const content : p_contents) {
    auto key = content->coloring.Key();
    if (!key)
      continue;
    const auto same = std::find_if(keys.begin(), keys.end(), [&](const auto& p_key) { return p_key.Matches(*key); });
    if (same == keys.end())
      keys.push_back(*key);
    else
      same->Merge(*key);
  }
  std::vector<ColorBar> bars;
  for (const Private::ColorKey& key : keys) {
    ValueScale scale;
    scale.lower = key.range.min;
    scale.upper = key.range.max;
    scale.logarithmic = key.logarithmic;
    scale.missing = key.missing;
    ColorBar bar(Library::ColorMap(key.colors, Library::ColorMap::Interpolated), scale);
    bar.title = key.title;
    bar.hasMissing = key.hasMissing;
    bar.opacities = key.opacities;
    if (!key.levels.empty())
      bar.ticks = Ticks::OfBounds(key.levels, key.levels.size());
    if (key.hasBelow)
      bar.least = key.all.Empty() ? -HUGE_VAL : std::min(key.all.min, key.range.min);
    if (key.hasAbove)
      bar.largest = key.all.max;
    bars.push_back(std::move(bar));
  }
  return bars;
}

Camera OwnCamera(const std::optional<Camera>& p_direction, bool p_isFlat) {
  Camera camera;
  camera.Look(p_isFlat ? Camera::StandardView::Top : Camera::StandardView::Chart);
  camera.projection = p_isFlat ? Camera::Projection::Parallel : Camera::Projection::Perspective;
  if (p_direction) {
    camera.azimuth = p_direction->azimuth;
    camera.elevation = p_direction->elevation;
    camera.projection = p_direction->projection;
  }
  return camera;
}

} // namespace

/// The names of plots, and what lengths and sizes mean in a view.
std::vector<LegendBlock> Figure::State::Keys(const Theme& p_theme, const View& p_view, double p_pixelRatio) const {
  const double points = p_view.camera.PixelsPerUnit(p_view.camera.target, p_view.viewport) / p_pixelRatio;
  std::vector<LegendBlock> keys;
  Legend names;
  std::size_t named = 0;
  for (const PlotContent* const content : Visible()) {
    named += content->label.isEmpty() ? 0 : 1;
    names.entries.push_back({content->label, content->Mark(), content->coloring.Sample()});
  }
  const bool isOneColored = named == 1 && Visible().size() == 1 && !Visible()[0]->coloring.Key();
  for (const PlotContent* const content : Visible()) {
    if (const auto lengths = content->Lengths(); lengths && lengths->scale * points > 0)
      keys.push_back(ArrowKey{lengths->scale * points,
                              {},
                              lengths->title,
                              std::clamp(lengths->typical * points, LeastKeyLength, MostKeyLength),
                              lengths->color.isValid() ? lengths->color : p_theme.text}
                         .Layout(p_theme, p_pixelRatio));
    if (const auto sizes = content->Sizes()) {
      SizeLegend legend{sizes->title, sizes->least, sizes->largest};
      legend.diameter = [&](double p_value) { return sizes->Factor(p_value) * sizes->diameter * points; };
      keys.push_back(legend.Layout(p_theme, p_pixelRatio));
    }
  }
  keys.erase(std::remove_if(keys.begin(), keys.end(), [](const LegendBlock& p_key) { return p_key.Width() <= 0; }),
             keys.end());
  if (named > 1 || isOneColored) {
    const QSizeF page(static_cast<double>(p_view.viewport.width) / p_pixelRatio,
                      static_cast<double>(p_view.viewport.height) / p_pixelRatio);
    const QSizeF room = Private::RoomForKey(page, keys);
    keys.insert(keys.begin(), names.Layout(room.height(), room.width(), p_theme, p_pixelRatio));
  }
  return keys;
}

/// Layouts are made for each drawing.
void Figure::State::ReportOnce(const std::string& p_text) {
  std::string kind; // without lengths, which change with the size of a window
  std::copy_if(p_text.begin(), p_text.end(), std::back_inserter(kind), [](char p_c) { return p_c < '0' || p_c > '9'; });
  if (_reported.insert(kind).second)
    vekdebug::warn(p_text);
}

FigureLayout Figure::State::Arrange(const Figure& p_figure, const Types::Viewport<0>& p_viewport, double p_pixelRatio) {
  const QSizeF size(static_cast<double>(p_viewport.width) / p_pixelRatio,
                    static_cast<double>(p_viewport.height) / p_pixelRatio);
  const Axes axes = MakeAxes(PlacePlots(size));
  _box = axes.box;
  const Axes::Target target{p_viewport, p_pixelRatio, Axes::MeasureIn(p_figure.theme, p_pixelRatio)};
  const auto report = [this](const std::string& p_text) { ReportOnce(p_text); };
  Private::PageContent page{title, subtitle, Notes(), BarsOf(Visible()), {}, report};
  for (ColorBar& bar : page.bars)
    bar.report = report;
  View view{p_figure.camera ? *p_figure.camera : OwnCamera(direction, _isFlat), p_viewport};
  const auto lay = [&] {
    page.keys = Keys(p_figure.theme, view, p_pixelRatio);
    return Private::LayOutPage(size, page, p_figure.theme, p_pixelRatio);
  };
  if (p_figure.camera) {
    FigureLayout layout = lay();
    layout.camera = view.camera;
    layout.axes = axes.Layout(layout.camera, target, axesState);
    return layout;
  }

  // Keys depend on the camera, which depends on the room that keys leave: until both agree.
  view.camera.Fit(axes.box, p_viewport);
  constexpr int MostPasses = 4;
  FigureLayout layout;
  for (int pass = 0; pass < MostPasses; ++pass) {
    layout = lay();
    layout.camera = view.camera;
    const Canvas::Rect& scene = layout.scene;
    const Camera::Margins margins{scene.left * p_pixelRatio, scene.bottom * p_pixelRatio,
                                  (size.width() - scene.right) * p_pixelRatio,
                                  (size.height() - scene.top) * p_pixelRatio};
    layout.axes = axes.Fit(layout.camera, target, margins, axesState);
    if (page.keys.empty() || layout.camera == view.camera)
      break;
    view.camera = layout.camera;
  }
  if (!hasTriad || _isFlat) // the triad is below the axes
    Private::CloseUp(layout);
  return layout;
}

bool Figure::State::LayoutKey::operator==(const LayoutKey& p_other) const {
  const auto all = [](const LayoutKey& p_key) {
    return std::tie(p_key.viewport, p_key.pixelRatio, p_key.theme, p_key.camera, p_key.direction, p_key.title,
                    p_key.subtitle, p_key.axisTitles, p_key.rules, p_key.extent, p_key.notes, p_key.plots, p_key.added,
                    p_key.ticksSet);
  };
  return all(*this) == all(p_other) && Private::Equal(clips, p_other.clips);
}

std::shared_ptr<const FigureLayout> Figure::State::LayoutFor(const Figure& p_figure,
                                                             const Types::Viewport<0>& p_viewport, double p_pixelRatio,
                                                             bool p_hasOldTicks) {
  LayoutKey key{p_viewport, p_pixelRatio, p_figure.theme, p_figure.camera, direction, title, subtitle, axisTitles,
                rules,      extent,       notes,          clips,           {},        added, ticksSet};
  for (const Entry& entry : entries)
    key.plots.emplace_back(entry.content, entry.content->revision);
  const bool isHosts = std::any_of(ticks.begin(), ticks.end(), [](const auto& p_ticks) { return p_ticks != nullptr; });
  if (!keptLayout || !(key == keptKey) || (isHosts && !p_hasOldTicks)) {
    keptLayout.reset(); // none if the host's ticks throw
    keptLayout = std::make_shared<const FigureLayout>(Arrange(p_figure, p_viewport, p_pixelRatio));
    keptKey = std::move(key);
  }
  return keptLayout;
}

} // namespace Vek::Chart::Scene
