#include "scene/private/BarsContent.h"

#include "scene/private/Thinning.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

/// A corner of a box from (0, 0, 0) to (1, 1, 1), and a normal.
struct Vertex {
  std::array<int, 3> corner;
  std::array<int, 3> normal;
};

/// Four corners a face, counter-clockwise seen from outside.
constexpr std::array<Vertex, 24> Faces{{
    {{0, 0, 0}, {-1, 0, 0}}, {{0, 0, 1}, {-1, 0, 0}}, {{0, 1, 1}, {-1, 0, 0}}, {{0, 1, 0}, {-1, 0, 0}}, // left
    {{1, 0, 0}, {1, 0, 0}},  {{1, 1, 0}, {1, 0, 0}},  {{1, 1, 1}, {1, 0, 0}},  {{1, 0, 1}, {1, 0, 0}},  // right
    {{0, 0, 0}, {0, -1, 0}}, {{1, 0, 0}, {0, -1, 0}}, {{1, 0, 1}, {0, -1, 0}}, {{0, 0, 1}, {0, -1, 0}}, // front
    {{0, 1, 0}, {0, 1, 0}},  {{0, 1, 1}, {0, 1, 0}},  {{1, 1, 1}, {0, 1, 0}},  {{1, 1, 0}, {0, 1, 0}},  // back
    {{0, 0, 0}, {0, 0, -1}}, {{0, 1, 0}, {0, 0, -1}}, {{1, 1, 0}, {0, 0, -1}}, {{1, 0, 0}, {0, 0, -1}}, // bottom
    {{0, 0, 1}, {0, 0, 1}},  {{1, 0, 1}, {0, 0, 1}},  {{1, 1, 1}, {0, 0, 1}},  {{0, 1, 1}, {0, 0, 1}},  // top
}};

/// The points of a list, or of a grid with x fastest.
std::vector<Point> BarsAt(const Array1& p_x, const Array1& p_y, const Array1& p_heights) {
  const std::vector<double> x = Values(p_x), y = Values(p_y), heights = Values(p_heights);
  std::vector<Point> bars;
  bars.reserve(heights.size());
  if (x.size() == heights.size() && y.size() == heights.size()) {
    for (std::size_t i = 0; i < heights.size(); ++i)
      bars.emplace_back(x[i], y[i], heights[i]);
    return bars;
  }
  const bool isGrid = !x.empty() && heights.size() % x.size() == 0 && heights.size() / x.size() == y.size();
  if (!isGrid)
    throw std::invalid_argument("Bars: expected as many heights as positions along x and along y, or for each pair of "
                                "both, got " +
                                std::to_string(heights.size()) + " for " + std::to_string(x.size()) + " and " +
                                std::to_string(y.size()));
  for (std::size_t i = 0; i < heights.size(); ++i)
    bars.emplace_back(x[i % x.size()], y[i / x.size()], heights[i]);
  return bars;
}

/// Different positions along an axis, ascending.
std::vector<double> Distinct(const std::vector<Point>& p_points, std::size_t p_axis) {
  std::vector<double> numbers;
  for (const Point& point : p_points)
    if (IsFinite(point))
      numbers.push_back(At(point, p_axis));
  std::sort(numbers.begin(), numbers.end());
  const double same = numbers.empty() ? 0 : 1e-9 * (numbers.back() - numbers.front()); // but for rounding
  numbers.erase(std::unique(numbers.begin(), numbers.end(), [=](double p_a, double p_b) { return p_b - p_a <= same; }),
                numbers.end());
  return numbers;
}

/// The smallest distance of neighbours; 0 for a single number.
double LeastGap(const std::vector<double>& p_ascending) {
  double gap = HUGE_VAL;
  for (std::size_t i = 1; i < p_ascending.size(); ++i)
    gap = std::min(gap, p_ascending[i] - p_ascending[i - 1]);
  return std::isfinite(gap) ? gap : 0;
}

} // namespace

BarsContent::BarsContent(const Array1& p_x, const Array1& p_y, const Array1& p_heights)
    : PointsContent(BarsAt(p_x, p_y, p_heights)) {
  constexpr std::size_t Most = std::numeric_limits<int>::max() / 36; // indices of a bar
  if (Count() > Most)
    throw std::invalid_argument("Bars: expected at most " + std::to_string(Most) + " bars, got " +
                                std::to_string(Count()));
}

void BarsContent::ColorByHeight() {
  std::vector<double> heights; // bars without a height are not drawn, so they are no missing values of the colour bar
  for (const Point& bar : _positions)
    if (IsFinite(bar))
      heights.push_back(bar.z);
  coloring.SetPlacedValues(heights);
  PlacedContent::ValuesChanged();
  _isByHeight = true;
}

void BarsContent::SetWidth(double p_fraction) {
  _width = p_fraction;
  DataChanged(); // the bounds of a row follow
}

void BarsContent::UpdateHeights(const Array1& p_heights) {
  RequireCount("UpdateHeights", p_heights.Count(), Count());
  const std::vector<double> heights = Values(p_heights);
  for (std::size_t i = 0; i < heights.size(); ++i)
    _positions[i].z = heights[i];
  DataChanged();
  if (_isByHeight)
    ColorByHeight();
}

void BarsContent::ValuesChanged() {
  _isByHeight = false;
  PlacedContent::ValuesChanged();
}

/// Where bars begin: at 0, or the limit next to it; on a logarithmic axis at the lower limit, or a power of ten below
/// all bars.
double BarsContent::BaseOf(const AxisRules& p_rules) const {
  const auto& limits = p_rules.limits[2];
  if (!p_rules.logarithmic[2])
    return limits ? std::clamp(0.0, limits->min, limits->max) : 0;
  if (limits)
    return limits->min;
  double least = HUGE_VAL;
  for (const Point& bar : _positions)
    if (IsFinite(bar) && bar.z > 0)
      least = std::min(least, bar.z);
  return std::isfinite(least) ? std::pow(10, std::ceil(std::log10(least) - 1e-9) - 1) : 1;
}

BarsContent::Span BarsContent::SpanOf(std::size_t p_index, const AxisRules& p_rules, double p_base) const {
  Point place = _positions[p_index];
  const double height = place.z;
  place.z = p_base;
  Span span{p_base, height};
  if (!IsFinite(_positions[p_index]) || !p_rules.Shows(place) || (p_rules.logarithmic[2] && height <= 0))
    return span;
  if (const auto& limits = p_rules.limits[2]) {
    // A bar may have only its base at the limit, where the limits leave out 0.
    const bool isBeyond = (p_base > 0 && height < p_base) || (p_base < 0 && height > p_base);
    if (isBeyond)
      return span;
    span.to = std::clamp(height, limits->min, limits->max);
    span.isCut = span.to != height;
  }
  span.isShown = true;
  return span;
}

Box BarsContent::BoundsOf(const AxisRules& p_rules) const {
  const double base = BaseOf(p_rules);
  Box box;
  for (std::size_t i = 0; i < _positions.size(); ++i)
    if (const Span span = SpanOf(i, p_rules, base); span.isShown) {
      box += Point(_positions[i].x, _positions[i].y, span.from);
      box += Point(_positions[i].x, _positions[i].y, span.to);
    }
  if (box.Empty())
    return box;
  // A row of bars is as deep as they are wide.
  Point low = box.Min(), high = box.Max();
  for (const std::size_t axis : {0, 1})
    if (At(low, axis) == At(high, axis) && !p_rules.logarithmic[axis] && !p_rules.limits[axis]) {
      const double half = LeastGap(Distinct(_positions, 1 - axis)) * _width / 2;
      At(low, axis) -= half, At(high, axis) += half;
    }
  return {low, high};
}

Box BarsContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved)
    PlaceBars();
  if (p_changes.values)
    _mesh.UpdateValues(VertexValues());
  return _box;
}

/// Of all bars in the scene.
Point BarsContent::HalfWidth() const {
  std::vector<Point> feet;
  std::vector<std::uint32_t> all;
  for (const Point& bar : _positions) {
    const Point foot = _placement.transform({bar.x, bar.y, _placement.rules.logarithmic[2] ? 1.0 : 0.0});
    if (!IsFinite(foot))
      continue;
    all.push_back(static_cast<std::uint32_t>(feet.size()));
    feet.push_back(foot);
  }
  const std::vector<double> x = Distinct(feet, 0), y = Distinct(feet, 1);
  constexpr std::size_t LeastFilled = 4; // one of so many nodes has a bar, or it is no grid
  double gapX = LeastGap(x), gapY = LeastGap(y);
  if (!feet.empty() && x.size() > LeastFilled * feet.size() / y.size())
    gapX = gapY = MedianSpacing(feet, all) / std::sqrt(2.0);
  constexpr double Alone = 0.1; // of the diagonal, for a single bar
  if (gapX <= 0)
    gapX = gapY > 0 ? gapY : Alone * _placement.diagonal;
  if (gapY <= 0)
    gapY = gapX;
  return Point(gapX, gapY, 0) * (_width / 2);
}

void BarsContent::PlaceBars() {
  const Point half = HalfWidth();
  _base = BaseOf(_placement.rules);
  _box = {};
  _cut = 0;
  _leftOut = {};
  std::vector<Point> corners;
  corners.reserve(Faces.size() * _positions.size());
  for (std::size_t i = 0; i < _positions.size(); ++i) {
    const Span span = SpanOf(i, _placement.rules, _base);
    if (!span.isShown) {
      ++(IsFinite(_positions[i]) ? _leftOut.hidden : _leftOut.missing);
      corners.insert(corners.end(), Faces.size(), Point()); // triangles without area
      continue;
    }
    _cut += span.isCut ? 1 : 0;
    const Point& bar = _positions[i];
    const Box box(_placement.transform({bar.x, bar.y, std::min(span.from, span.to)}) - half,
                  _placement.transform({bar.x, bar.y, std::max(span.from, span.to)}) + half);
    for (const Vertex& vertex : Faces)
      corners.emplace_back(vertex.corner[0] != 0 ? box.Max().x : box.Min().x,
                           vertex.corner[1] != 0 ? box.Max().y : box.Min().y,
                           vertex.corner[2] != 0 ? box.Max().z : box.Min().z);
    _box += box;
  }
  if (!_mesh.Empty()) {
    _mesh.UpdatePositions(corners);
    return;
  }
  if (corners.empty())
    return;
  GpuMesh::Arrays arrays;
  std::vector<Point> normals;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const std::array<int, 3>& normal = Faces[i % Faces.size()].normal;
    normals.emplace_back(normal[0], normal[1], normal[2]);
    if (const auto first = static_cast<std::uint32_t>(i); i % 4 == 0)
      arrays.indices.insert(arrays.indices.end(), {first, first + 1, first + 2, first, first + 2, first + 3});
  }
  arrays.positions = corners;
  arrays.normals = normals;
  _mesh = GpuMesh(arrays);
}

std::vector<float> BarsContent::VertexValues() const {
  std::vector<float> values;
  if (_mesh.Empty() || (!_isByHeight && coloring.Values().empty()))
    return values;
  values.reserve(Faces.size() * _positions.size());
  for (std::size_t i = 0; i < _positions.size(); ++i)
    values.insert(values.end(), Faces.size(), _isByHeight ? coloring.Placed(_positions[i].z) : coloring.Values()[i]);
  return values;
}

void BarsContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  _mesh.Draw(p_gl, coloring.Map(p_gl), coloring.Scale(), p_frame.layer);
}

void BarsContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame&, const PickPass&) {
  _mesh.Draw(p_gl);
}

Picked BarsContent::Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const {
  constexpr std::size_t Triangles = Faces.size() / 2; // of a bar
  if (!p_number || *p_number / Triangles >= Count())
    return PlotContent::Identify({}, p_scene);
  Picked picked = PickedAt(*p_number / Triangles, _positions[*p_number / Triangles]);
  if (_isByHeight)
    picked.value = picked.position.z;
  return picked;
}

std::vector<QString> BarsContent::Notes() const {
  std::vector<QString> notes = PointsContent::Notes();
  AddCount(notes, _cut, {"bar", "bars"}, "cut at the end of the axis");
  if (_base != 0 && !_box.Empty())
    notes.push_back(QStringLiteral("bars start at %1").arg(_base));
  return notes;
}

} // namespace Vek::Chart::Scene::Private
