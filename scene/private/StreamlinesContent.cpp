#include "scene/private/StreamlinesContent.h"

#include "scene/private/FieldLines.h"

#include "library/VectorSymbol.h"
#include "platform/ogl/VertexData.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr double Shortest = 2;      // length of the shortest line in distances of lines
constexpr double LeastWidth = 0.25; // of the largest one, where widths follow speeds
constexpr double HeadLength = 4.5;  // in widths of the line; a head is three times as wide as its line
constexpr double HeadDistance = 8;  // along a line, in distances of lines

/// Calls `p_call(position, vector)` for each node.
template <class Call>
void ForNodes(const VectorField& p_field, Call&& p_call) {
  const auto [nx, ny, nz] = p_field.Size();
  for (std::size_t k = 0; k < nz; ++k)
    for (std::size_t j = 0; j < ny; ++j)
      for (std::size_t i = 0; i < nx; ++i)
        p_call(p_field.Position(i, j, k), p_field.Node(i, j, k));
}

/// A field on the nodes of another one.
VectorField OnNodesOf(const VectorField& p_field, const Array3& p_vectors) {
  VectorField field = VectorField::Rectilinear(p_field.Axis(0), p_field.Axis(1), p_field.Axis(2), p_vectors);
  if (p_field.Period() > 0)
    field.WrapX(p_field.Period());
  return field;
}

bool LeavesLayer(const VectorField& p_field) {
  bool leaves = false;
  ForNodes(p_field, [&](const Point&, const Point& p_vector) {
    for (std::size_t axis = 0; axis < 3; ++axis)
      leaves = leaves || (p_field.Size()[axis] == 1 && std::isfinite(At(p_vector, axis)) && At(p_vector, axis) != 0);
  });
  return leaves;
}

std::vector<InstancedMesh::Level> HeadLevel(bool p_isFlat) {
  constexpr unsigned int Segments = 12;
  Ogl::VertexData data;
  Library::VectorSymbol(p_isFlat ? Model::Symbol::ShapeArrowHead2D : Model::Symbol::ShapeArrowHead3D, Segments)
      .BuildShape(data);
  return {InstancedMesh::Level(GpuMesh(data))};
}

} // namespace

StreamlinesContent::StreamlinesContent(const VectorField& p_field)
    : _field(p_field)
    , _leavesLayer(LeavesLayer(p_field)) {
  if (p_field.NodeCount() == 0)
    throw std::invalid_argument("Streamlines: expected a field with nodes, got an empty one");
}

void StreamlinesContent::ColorBySpeed() {
  std::vector<double> speeds; // missing nodes have no line, so they are no missing values of the colour bar
  ForNodes(_field, [&](const Point&, const Point& p_vector) {
    if (IsFinite(p_vector))
      speeds.push_back(Length(p_vector));
  });
  coloring.SetValues(speeds);
  coloring.SetDefaultTitle("Speed");
  PlacedContent::ValuesChanged();
  _isBySpeed = true;
}

void StreamlinesContent::SetSpacing(double p_fraction) {
  _spacing = p_fraction;
  SettingsChanged();
}

void StreamlinesContent::SetWidth(double p_share) {
  _width = p_share;
  _areLinesChanged = true;
  SettingsChanged();
}

void StreamlinesContent::SetWidthBySpeed(bool p_bySpeed) {
  _isWidthBySpeed = p_bySpeed;
  SetWidth(_width);
}

void StreamlinesContent::SetHeads(bool p_hasHeads) {
  _hasHeads = p_hasHeads;
  SetWidth(_width);
}

void StreamlinesContent::UpdateVectors(const Array3& p_vectors) {
  RequireCount("UpdateVectors", p_vectors.Count(), Count());
  _field = OnNodesOf(_field, p_vectors);
  _leavesLayer = LeavesLayer(_field);
  DataChanged();
  if (_isBySpeed)
    ColorBySpeed();
}

void StreamlinesContent::ValuesChanged() {
  _isBySpeed = false;
  coloring.SetDefaultTitle({});
  PlacedContent::ValuesChanged();
}

Box StreamlinesContent::BoundsOf(const AxisRules& p_rules) const {
  // Without any vector there is nothing to show; otherwise all of the grid, as far as it wraps.
  return _field.Missing() == _field.NodeCount() ? Box() : RegionOf(_field, p_rules);
}

double StreamlinesContent::Spacing() const {
  if (_spacing > 0)
    return _spacing;
  const VectorField::Counts size = _field.Size();
  const bool isLayer = std::any_of(size.begin(), size.end(), [](std::size_t p_count) { return p_count == 1; });
  return isLayer ? 1.0 / 60 : 1.0 / 16;
}

double StreamlinesContent::WidthAt(double p_speed) const {
  const double share = _isWidthBySpeed && _fast > 0 ? std::min(p_speed / _fast, 1.0) : 1;
  return _width * _distance * (LeastWidth + (1 - LeastWidth) * share);
}

Box StreamlinesContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved || _tracedSpacing != Spacing())
    Trace();
  if (_areLinesChanged || p_changes.isMoved) {
    PlaceLines();
    PlaceHeads();
    PlaceValues();
  } else if (p_changes.values) {
    PlaceValues();
  }
  _areLinesChanged = false;
  return _placement.transform(RegionOf(_field, _placement.rules));
}

void StreamlinesContent::Trace() {
  _tracedSpacing = Spacing();
  const Box region = RegionOf(_field, _placement.rules);
  _lines = TracedLines(_field, region, _placement.transform, _tracedSpacing, Shortest);
  _distance = _tracedSpacing * Length(_placement.transform(region).Extent());
  _fast = _field.SpeedQuantile(0.98);
  _areLinesChanged = true;
  _speeds.clear();
  for (const Streamline& line : _lines)
    for (const Point& point : line) {
      Point vector;
      const bool isInside = SampleAt(_field, _placement.transform, point, vector);
      _speeds.push_back(isInside ? Length(vector) : 0);
    }
  _leftOut = {};
  ForNodes(_field, [&](const Point& p_position, const Point& p_vector) {
    if (IsFinite(p_vector))
      _leftOut.Shows(_placement.rules, p_position);
    else
      ++_leftOut.missing;
  });
}

void StreamlinesContent::PlaceLines() {
  std::vector<std::vector<TubeMesh::Point>> tubes;
  std::size_t next = 0;
  for (const Streamline& line : _lines) {
    tubes.emplace_back();
    for (const Point& point : line)
      tubes.back().push_back({point, WidthAt(_speeds[next++]), 0});
  }
  _tubes.SetLines(tubes, {}, _placement.isFlat);
}

void StreamlinesContent::PlaceHeads() {
  std::vector<Point> bases, directions;
  std::vector<double> lengths;
  _headPoints.clear();
  std::size_t first = 0;
  for (const Streamline& line : _lines) {
    const auto length = [&](std::size_t p_point) { return HeadLength * WidthAt(_speeds[first + p_point]); };
    if (_hasHeads)
      for (const LineHead& head : HeadsOf(line, HeadDistance * _distance, length)) {
        bases.push_back(head.base);
        directions.push_back(head.direction);
        lengths.push_back(length(head.nearest));
        _headPoints.push_back(first + head.nearest);
      }
    first += line.size();
  }
  InstancedMesh::Instances instances;
  instances.positions = bases;
  instances.directions = directions;
  instances.sizes = lengths;
  _heads = InstancedMesh(HeadLevel(_placement.isFlat), instances);
}

/// The values of the points of all lines; none in one colour.
std::vector<float> StreamlinesContent::PointValues() const {
  if (_isBySpeed)
    return {_speeds.begin(), _speeds.end()};
  std::vector<float> values;
  if (coloring.Values().empty())
    return values;
  const VectorField scalars = OnNodesOf(_field, Array3(coloring.Values(), coloring.Values(), 0.0));
  for (const Streamline& line : _lines)
    for (const Point& point : line) {
      Point sample;
      const bool isInside = SampleAt(scalars, _placement.transform, point, sample);
      values.push_back(isInside ? static_cast<float>(sample.x) : std::nanf(""));
    }
  return values;
}

void StreamlinesContent::PlaceValues() {
  _values = PointValues();
  _tubes.SetValues(_values);
  std::vector<float> ofHeads;
  if (!_values.empty())
    for (const std::size_t point : _headPoints)
      ofHeads.push_back(_values[point]);
  _heads.UpdateValues(ofHeads);
}

void StreamlinesContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  const Library::ColorMap& map = coloring.Map(p_gl);
  _tubes.Draw(p_gl, map, coloring.Scale(), QualityOf(p_frame), p_frame.layer);
  _heads.SetMostVertices(p_frame.mostVertices);
  _heads.Draw(p_gl, map, coloring.Scale(), p_frame.layer);
}

LineTubes::Quality StreamlinesContent::QualityOf(const Frame& p_frame) const {
  return {!p_frame.isMoving && (IsTransparent() || !p_frame.cuts.empty()), p_frame.mostVertices};
}

QString StreamlinesContent::Shortage(const Utility::Scoped<Rgl>& p_gl) const {
  QStringList lines{StepNote(_tubes.Step(p_gl), {"line", ""}), StepNote(_heads.Step(p_gl), {"arrow head", ""})};
  lines.removeAll({});
  return lines.join('\n');
}

void StreamlinesContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame&, const PickPass& p_pass) {
  _tubes.DrawPick(p_gl, p_pass);
  _heads.Draw(p_gl, p_pass);
}

/// The node that is nearest along each axis.
std::size_t StreamlinesContent::NearestNode(const Point& p_position) const {
  std::size_t node = 0, stride = 1;
  for (const std::size_t axis : {0, 1, 2}) {
    const std::vector<double>& nodes = _field.Axis(axis);
    const double position = At(p_position, axis), period = axis == 0 ? _field.Period() : 0;
    const auto distance = [&](double p_node) {
      return std::abs(period > 0 ? std::remainder(p_node - position, period) : p_node - position);
    };
    const auto nearest = std::min_element(nodes.begin(), nodes.end(),
                                          [&](double p_a, double p_b) { return distance(p_a) < distance(p_b); });
    node += stride * static_cast<std::size_t>(nearest - nodes.begin());
    stride *= nodes.size();
  }
  return node;
}

/// The nearest node, and the value at the nearest point of a line.
Picked StreamlinesContent::Identify(std::optional<std::uint32_t> /*p_number*/, const Point& p_scene) const {
  Picked picked = PlotContent::Identify({}, p_scene);
  double distance = HUGE_VAL;
  std::size_t nearest = 0, next = 0;
  for (const Streamline& line : _lines)
    for (const Point& point : line) {
      if (Length(point - p_scene) < distance) {
        distance = Length(point - p_scene);
        nearest = next;
      }
      ++next;
    }
  if (next != 0)
    picked.element = NearestNode(picked.position);
  if (nearest < _values.size())
    picked.value = coloring.ValueOf(_values[nearest]);
  return picked;
}

void StreamlinesContent::ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const {
  _tubes.Release(p_gl);
  _heads.Release(p_gl);
}

std::vector<QString> StreamlinesContent::Notes() const {
  std::vector<QString> notes = PlacedContent::Notes();
  if (_leavesLayer)
    notes.push_back("flow across the layer not shown");
  if (_lines.empty())
    return notes;
  notes.push_back(_isWidthBySpeed ? "width by speed" : "equal widths");
  notes.push_back(QStringLiteral("lines shorter than %1 % of the diagonal left out")
                      .arg(100 * Shortest * _tracedSpacing, 0, 'g', 2));
  return notes;
}

} // namespace Vek::Chart::Scene::Private
