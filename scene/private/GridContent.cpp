#include "scene/private/GridContent.h"

#include "scene/Ticks.h"
#include "scene/private/BoxView.h"
#include "scene/private/VertexStream.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

/// Graphics memory for half a gigabyte of floats, and sizes that all devices of today take.
constexpr double MostVoxels = 1 << 27;
constexpr int MostAlongAnAxis = 2048;

/// The edge of larger voxels, so that there are few enough of them.
int FactorFor(const VoxelGrid::Sizes& p_sizes) {
  int factor = 1;
  const auto along = [&](int p_size) { return (p_size + factor - 1) / factor; };
  const auto isTooMuch = [&] {
    const double voxels = 1.0 * along(p_sizes[0]) * along(p_sizes[1]) * along(p_sizes[2]);
    return voxels > MostVoxels || along(*std::max_element(p_sizes.begin(), p_sizes.end())) > MostAlongAnAxis;
  };
  while (isTooMuch())
    ++factor;
  return factor;
}

/// The values in brief: extremes of all, quantiles of a million of them at most.
ValueSummary Summarize(const std::vector<float>& p_values, bool p_logarithmic) {
  constexpr std::size_t Most = 1 << 20;
  constexpr double GoldenRatio = 0.6180339887498949; // its multiples are spread evenly, whatever the sizes of the grid
  std::vector<double> sample;
  if (p_values.size() <= Most)
    sample.assign(p_values.begin(), p_values.end());
  else
    for (std::size_t i = 0; i < Most; ++i) {
      double whole = 0;
      const double share = std::modf(static_cast<double>(i) * GoldenRatio, &whole);
      sample.push_back(p_values[static_cast<std::size_t>(share * static_cast<double>(p_values.size()))]);
    }
  ValueSummary summary = Private::Summarize(sample, p_logarithmic);
  summary.missing = 0;
  for (const float value : p_values) {
    if (std::isnan(value))
      ++summary.missing;
    else if (p_logarithmic && value <= 0)
      summary.hasBelow = true;
    else
      summary.all += static_cast<double>(value);
  }
  if (summary.most.Empty())
    summary.most = summary.all;
  return summary;
}

/// Knots of an axis in the scene. Those that have no place (not above 0 on a logarithmic axis) lie one after another
/// beyond the others.
std::vector<double> SceneKnots(const std::vector<double>& p_knots, const DataTransform& p_transform,
                               std::size_t p_axis) {
  std::vector<double> knots(p_knots.size());
  for (std::size_t i = 0; i < knots.size(); ++i) {
    Point point(1, 1, 1);
    At(point, p_axis) = p_knots[i];
    knots[i] = At(p_transform(point), p_axis);
  }
  const double step = p_knots.front() < p_knots.back() ? 1 : -1;
  for (std::size_t i = knots.size() - 1; i-- > 0;)
    if (!std::isfinite(knots[i]) && std::isfinite(knots[i + 1]))
      knots[i] = knots[i + 1] - step;
  for (std::size_t i = 0; i < knots.size(); ++i)
    if (!std::isfinite(knots[i]))
      knots[i] = i == 0 ? 0 : knots[i - 1] + step;
  return knots;
}

} // namespace

GridContent::GridContent(VoxelGrid p_grid, bool p_isTexture)
    : _grid(p_grid)
    , _placed(p_grid)
    , _isTexture(p_isTexture) {
  Replace(std::move(p_grid));
  coloring.SetMissing(Qt::transparent);
  coloring.SetTitle(_grid.name + (_grid.name.isEmpty() || _grid.unit.isEmpty() ? QString() : QStringLiteral(" in ")) +
                    _grid.unit);
}

void GridContent::Replace(VoxelGrid p_grid) {
  _grid = std::move(p_grid);
  const std::vector<float> values = _grid.Values();
  _all = Summarize(values, false);
  _positive = Summarize(values, true);
  _drawn.reset();
  DataChanged();
}

void GridContent::ColorByValue() {
  coloring.SetSummaries(_all, _positive);
}

void GridContent::UpdateValues(const Array1& p_values) {
  RequireCount("UpdateValues", p_values.Count(), Count());
  Replace(_grid.WithValues(p_values));
  ValuesUpdated();
}

void GridContent::TakeColorValues() {
  if (coloring.Values().empty())
    return; // one colour
  Replace(_grid.WithValues(coloring.Values()));
  ColorByValue();
}

void GridContent::SetBlock(const Box& p_part, const std::array<std::vector<double>, 3>& p_knots) {
  if (p_part.Empty())
    throw std::invalid_argument("Block: expected the box of a part, got an empty one");
  for (const std::vector<double>& knots : p_knots)
    if (knots.size() < 3)
      throw std::invalid_argument("Block: expected three knots and more along an axis, got " +
                                  std::to_string(knots.size()));
  _grid.BlockOf(p_knots); // checks
  _block = p_part;
  _wholeKnots = p_knots;
  _whole = {};
  _whole += Point(p_knots[0].front(), p_knots[1].front(), p_knots[2].front());
  _whole += Point(p_knots[0].back(), p_knots[1].back(), p_knots[2].back());
  DataChanged();
}

double GridContent::Diagonal() const {
  return Length((IsBlock() ? _placement.transform(_whole) : _placed.Bounds()).Extent());
}

void GridContent::SetFilter(VoxelGrid::Filter p_filter) {
  _filter = p_filter;
  SettingsChanged();
}

Box GridContent::BoundsOf(const AxisRules& p_rules) const {
  Point low = _grid.Bounds().Min(), high = _grid.Bounds().Max();
  for (std::size_t axis = 0; axis < 3 && IsBlock(); ++axis) {
    At(low, axis) = std::max(At(low, axis), At(_block.Min(), axis));
    At(high, axis) = std::min(At(high, axis), At(_block.Max(), axis));
  }
  const bool isEmpty = !(low.x < high.x && low.y < high.y && low.z < high.z);
  return isEmpty ? Box() : Shown(Box(low, high), p_rules);
}

Box GridContent::Shown(const Box& p_box, const AxisRules& p_rules) const {
  Point low = p_box.Min(), high = p_box.Max();
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (const auto& limits = p_rules.limits[axis]) {
      At(low, axis) = std::max(At(low, axis), limits->min);
      At(high, axis) = std::min(At(high, axis), limits->max);
    }
    if (!p_rules.logarithmic[axis] || At(low, axis) > 0)
      continue;
    double least = HUGE_VAL; // no position between the smallest one above 0 and 0 is shown
    for (const double knot : IsBlock() ? _wholeKnots[axis] : _grid.Knots(static_cast<int>(axis)))
      least = knot > 0 ? std::min(least, knot) : least;
    At(low, axis) = std::max(At(low, axis), least);
  }
  return low.x < high.x && low.y < high.y && low.z < high.z ? Box(low, high) : Box();
}

void GridContent::PlaceGrid(const Changes& p_changes) {
  if (!_drawn) {
    _factor = _isTexture ? FactorFor(_grid.Size()) : 1;
    _drawn = _factor > 1 ? _grid.Coarsened(_factor) : _grid;
  }
  const auto knots = [&](std::size_t p_axis) {
    return SceneKnots(_drawn->Knots(static_cast<int>(p_axis)), _placement.transform, p_axis);
  };
  _placed = p_changes.isBent ? _drawn->MovedTo({knots(0), knots(1), knots(2)}) : _drawn->MovedTo(_placed);
  if (IsBlock() && p_changes.isBent && _factor == 1) {
    std::array<std::vector<double>, 3> whole;
    for (std::size_t axis = 0; axis < 3; ++axis)
      whole[axis] = SceneKnots(_wholeKnots[axis], _placement.transform, axis);
    _placed = _placed.BlockOf(whole);
  }
  _region = _placement.transform(BoundsOf(_placement.rules));
  _wholeRegion = IsBlock() ? _placement.transform(Shown(_whole, _placement.rules)) : _region;
}

ValueScale GridContent::Scale() const {
  if (coloring.HasValues())
    return coloring.Scale();
  const Range range = DefaultRange(_all, false);
  ValueScale scale;
  scale.lower = range.min;
  scale.upper = range.max;
  return scale;
}

QString GridContent::Text(std::size_t p_axis, double p_position) const {
  constexpr std::size_t Steps = 6;
  const double low = At(_grid.Bounds().Min(), p_axis), high = At(_grid.Bounds().Max(), p_axis);
  if (_placement.rules.dates[p_axis])
    return Ticks::Dates(low, high, Steps).Format(p_position, {}, 1);
  return Ticks::Linear(low, high, Steps).Format(p_position, _grid.lengthUnit, 1);
}

std::vector<QString> GridContent::Notes() const {
  std::vector<QString> notes;
  if (_grid.MissingCount() == _grid.Count())
    notes.push_back(QStringLiteral("all %1 voxels missing").arg(Grouped(_grid.Count())));
  else
    AddCount(notes, _grid.MissingCount(), Names(), "missing");
  if (_region.Empty())
    notes.push_back(QStringLiteral("the volume lies outside of the axes"));
  else if (!(BoundsOf(_placement.rules) == _grid.Bounds()))
    notes.push_back(QStringLiteral("the volume is cut at the axes"));
  if (_factor > 1)
    notes.push_back(QStringLiteral("drawn as means of %1 \u00D7 %1 \u00D7 %1 voxels").arg(_factor));
  if (_grid.Tilt() > 0)
    notes.push_back(QStringLiteral("drawn along its own axes, which are tilted by up to %1\u00B0")
                        .arg(_grid.Tilt(), 0, 'f', _grid.Tilt() < 1 ? 2 : 0));
  return notes;
}

Picked GridContent::VoxelAt(const Point& p_scene) const {
  Point within; // depths are rounded
  for (std::size_t axis = 0; axis < 3; ++axis)
    At(within, axis) = std::clamp(At(p_scene, axis), At(_region.Min(), axis), At(_region.Max(), axis));
  const Point position = _placement.transform.Inverse(within), coordinate = _grid.TexCoord(position);
  std::size_t voxel = 0;
  for (std::size_t axis = 3; axis-- > 0;) {
    const double count = _grid.Size()[axis];
    const double index = std::clamp(std::floor(At(coordinate, axis) * count), 0.0, count - 1);
    voxel = voxel * static_cast<std::size_t>(count) + static_cast<std::size_t>(index);
  }
  return {voxel, position, _placed.Sample(within, _filter)};
}

void GridContent::DrawEdges(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) const {
  if (IsBlock())
    return;
  constexpr double LineOpacity = 0.45;
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT | RGL_DEPTH_BUFFER_BIT |
                                           RGL_COLOR_BUFFER_BIT);
  p_gl->Disable(RGL_LIGHTING);
  p_gl->Enable(RGL_BLEND);
  p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
  p_gl->DepthMask(false);
  p_gl->LineWidth(static_cast<float>(p_frame.pixelRatio));
  QColor color = p_frame.ink;
  color.setAlphaF(LineOpacity);
  p_gl->Color(color);
  const BoxView view(_region, p_frame.camera, p_frame.viewport, p_frame.pixelRatio);
  std::vector<VertexStream::Vertex> ends;
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (unsigned int edge = 0; edge < 4; ++edge)
      if (view.SeenFacesAt(axis, edge) < 2) // not in front of the inside
        for (const double end : {0.0, 1.0})
          ends.emplace_back(view.PointAt(axis, edge, end));
  VertexStream(*p_gl, ends, VertexStream::Positions).Draw(RGL_LINES);
}

} // namespace Vek::Chart::Scene::Private
