#include "scene/private/SurfaceContent.h"

#include "scene/Ticks.h"
#include "scene/private/ContourSegments.h"
#include "scene/private/FigureCuts.h"
#include "scene/private/GridAxis.h"
#include "scene/private/NearestCorner.h"
#include "scene/private/Notes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

/// Positions of the nodes along an axis in the scene. Those that have none (not above 0 on a logarithmic axis), and
/// those that double precision does not tell apart, are moved so that the order is kept.
std::vector<double> SceneNodes(const std::vector<double>& p_nodes, const DataTransform& p_transform,
                               std::size_t p_axis) {
  std::vector<double> nodes(p_nodes.size());
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    Point point(1, 1, 1);
    At(point, p_axis) = p_nodes[i];
    nodes[i] = At(p_transform(point), p_axis);
  }
  const double step = p_nodes.front() < p_nodes.back() ? 1 : -1;
  for (std::size_t i = nodes.size() - 1; i-- > 0;)
    if (!std::isfinite(nodes[i]))
      nodes[i] = nodes[i + 1] - step;
  if (!std::isfinite(nodes.front()))
    nodes.front() = 0;
  for (std::size_t i = 1; i < nodes.size(); ++i) {
    if (!std::isfinite(nodes[i]))
      nodes[i] = nodes[i - 1] + step;
    else if ((nodes[i] - nodes[i - 1]) * step <= 0)
      nodes[i] = std::nextafter(nodes[i - 1], step * HUGE_VAL);
  }
  return nodes;
}

} // namespace

SurfaceContent::SurfaceContent(const Array1& p_x, const Array1& p_y, const Array1& p_heights)
    : _x(AxisNodes("Surface: x", p_x, 2))
    , _y(AxisNodes("Surface: y", p_y, 2))
    , _heights(Values(p_heights)) {
  const std::size_t count = NodeCount("Surface", {_x.size(), _y.size(), 1});
  if (_heights.size() != count)
    throw std::invalid_argument("heights: expected " + std::to_string(_x.size()) + " \u00D7 " +
                                std::to_string(_y.size()) + " = " + std::to_string(count) + " elements, got " +
                                std::to_string(_heights.size()));
  constexpr std::size_t Most = std::numeric_limits<int>::max() / 6; // indices of a cell
  if (count > Most)
    throw std::invalid_argument("Surface: expected at most " + std::to_string(Most) + " nodes, got " +
                                std::to_string(count));
}

void SurfaceContent::ColorByHeight() {
  std::vector<double> heights; // holes are not drawn, so they are no missing values of the colour bar
  std::copy_if(_heights.begin(), _heights.end(), std::back_inserter(heights),
               [](double p_height) { return std::isfinite(p_height); });
  coloring.SetPlacedValues(heights);
  PlacedContent::ValuesChanged();
  _isByHeight = true;
}

void SurfaceContent::SetContours(std::size_t p_most) {
  _mostContours = p_most;
  _givenLevels.clear();
  _contoursChanged = true;
  SettingsChanged();
}

void SurfaceContent::SetContours(std::vector<double> p_levels) {
  _mostContours = 0;
  _givenLevels = std::move(p_levels);
  _contoursChanged = true;
  SettingsChanged();
}

void SurfaceContent::UpdateHeights(const Array1& p_heights) {
  RequireCount("UpdateHeights", p_heights.Count(), Count());
  _heights = Values(p_heights);
  DataChanged();
  if (_isByHeight)
    ColorByHeight();
}

void SurfaceContent::ValuesChanged() {
  _isByHeight = false;
  PlacedContent::ValuesChanged();
}

Box SurfaceContent::BoundsOf(const AxisRules& p_rules) const {
  Box box;
  for (std::size_t i = 0; i < _heights.size(); ++i)
    if (const Point node = Node(i); p_rules.Shows(node))
      box += node;
  return box;
}

Box SurfaceContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved)
    PlaceNodes();
  if (p_changes.values && !_mesh.Empty())
    _mesh.UpdateValues(VertexValues());
  if (p_changes.isMoved || _contoursChanged)
    PlaceContours();
  _contoursChanged = false;
  return _box;
}

std::vector<float> SurfaceContent::VertexValues() const {
  if (!_isByHeight)
    return coloring.Values();
  std::vector<float> values(_heights.size());
  std::transform(_heights.begin(), _heights.end(), values.begin(),
                 [this](double p_height) { return coloring.Placed(p_height); });
  return values;
}

void SurfaceContent::PlaceNodes() {
  std::vector<double> z(_heights.size(), NAN);
  std::vector<bool> holes(_heights.size());
  _leftOut = {};
  _shown = {};
  for (std::size_t i = 0; i < _heights.size(); ++i) {
    const Point node = Node(i);
    const bool isShown = _leftOut.Shows(_placement.rules, node);
    holes[i] = !isShown && !_placement.rules.HasVertex(node);
    if (!holes[i])
      z[i] = _placement.transform(node).z;
    if (isShown)
      _shown += node.z;
  }
  SurfaceMesh surface(SceneNodes(_x, _placement.transform, 0), SceneNodes(_y, _placement.transform, 1), z);
  _box = surface.bounds;
  _positions = std::move(surface.positions);
  const bool areHolesKept = holes == _holes;
  _holes = std::move(holes);
  if (areHolesKept && !_mesh.Empty()) {
    _mesh.UpdatePositions(_positions);
    _mesh.UpdateNormals(surface.normals);
    Measure();
    return;
  }
  _indices = std::move(surface.indices.front());
  Measure();
  _mesh = {};
  if (_indices.empty())
    return; // without indices, all vertices would be drawn
  GpuMesh::Arrays arrays;
  const std::vector<float> values = VertexValues();
  arrays.positions = _positions;
  arrays.normals = surface.normals;
  arrays.values = values;
  arrays.indices = _indices;
  _mesh = GpuMesh(arrays);
}

Point SurfaceContent::PlacedNode(std::uint32_t p_index) const {
  const SurfaceMesh::Vector& node = _positions[p_index];
  return {static_cast<double>(node.x), static_cast<double>(node.y), static_cast<double>(node.z)};
}

/// The box and the heights of a surface that the limits cut.
void SurfaceContent::Measure() {
  if (!_placement.rules.cutsSurfaces)
    return;
  _box = CutBounds(
      _indices, [this](std::uint32_t p_index) { return PlacedNode(p_index); },
      LimitCuts(_placement.rules, _placement.transform));
  _shown = _box.Empty() ? Range() : Along(_placement.transform.Inverse(_box), 2);
}

std::vector<double> SurfaceContent::ContourLevels() const {
  if (_mostContours == 0)
    return _givenLevels;
  if (_shown.Empty())
    return {};
  return _placement.rules.logarithmic[2] ? Ticks::Logarithmic(_shown.min, _shown.max, _mostContours).Values()
                                         : Ticks::Linear(_shown.min, _shown.max, _mostContours).Values();
}

void SurfaceContent::PlaceContours() {
  std::vector<float> levels;
  for (const double level : ContourLevels())
    if (const double z = _placement.transform({1, 1, level}).z; std::isfinite(z))
      levels.push_back(static_cast<float>(z));
  GpuMesh::Arrays arrays;
  const std::vector<SurfaceMesh::Vector> points = ContourSegments(_positions, _indices, std::move(levels));
  arrays.positions = points;
  arrays.primitive = Ogl::VertexBuffer::LineSegments;
  _lines = GpuMesh(arrays);
}

void SurfaceContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_LINE_BIT | RGL_POLYGON_BIT | RGL_DEPTH_BUFFER_BIT |
                                           RGL_COLOR_BUFFER_BIT);
  if (!_lines.Empty()) { // behind its lines
    p_gl->Enable(RGL_POLYGON_OFFSET_FILL);
    p_gl->PolygonOffset(1, 1);
  }
  _mesh.Draw(p_gl, coloring.Map(p_gl), coloring.Scale(), p_frame.layer);
  if (_lines.Empty())
    return;
  constexpr double LineOpacity = 0.6;
  QColor color = p_frame.ink;
  color.setAlphaF(LineOpacity * opacity);
  p_gl->Enable(RGL_BLEND);
  p_gl->BlendFuncSeparate(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA, RGL_ONE, RGL_ONE_MINUS_SRC_ALPHA);
  p_gl->DepthFunc(RGL_LEQUAL);
  p_gl->DepthMask(false); // the surface has the depth of its lines
  p_gl->LineWidth(static_cast<float>(p_frame.pixelRatio));
  ValueScale scale; // values that are not given are 0
  scale.lower = 1;
  scale.upper = 2;
  scale.below = color;
  _lines.Draw(p_gl, coloring.Map(p_gl), scale, p_frame.layer);
}

void SurfaceContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame&, const PickPass&) {
  _mesh.Draw(p_gl);
}

Picked SurfaceContent::Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const {
  const auto corner =
      NearestCorner(_indices, p_number, [&](std::uint32_t p_index) { return Length(PlacedNode(p_index) - p_scene); });
  if (!corner)
    return PlotContent::Identify({}, p_scene);
  Picked picked = PickedAt(*corner, _placement.transform.Inverse(p_scene));
  if (_isByHeight)
    picked.value = _heights[*corner];
  return picked;
}

void SurfaceContent::ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const {
  _mesh.Release(p_gl);
  _lines.Release(p_gl);
}

std::vector<QString> SurfaceContent::Notes() const {
  std::vector<QString> notes = PlacedContent::Notes();
  if (_isByHeight && _leftOut.missing != 0) { // the heights are the values
    notes.erase(notes.begin());
    AddCount(notes, _leftOut.missing, {"value", "values"}, "missing");
    std::rotate(notes.begin(), notes.end() - 1, notes.end());
  }
  const std::vector<double> levels = ContourLevels();
  if (_mostContours != 0 && levels.size() > 1 && !_placement.rules.logarithmic[2])
    notes.push_back(QStringLiteral("contours every %1").arg(levels[1] - levels[0]));
  return notes;
}

} // namespace Vek::Chart::Scene::Private
