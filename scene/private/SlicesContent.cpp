#include "scene/private/SlicesContent.h"

#include "scene/private/FigureCuts.h"

#include "library/Intersect.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

/// A slice through a box perpendicular to an axis.
Slice RectangleOf(const Box& p_box, const PlaneSlice& p_slice) {
  const std::size_t u = (p_slice.axis + 1) % 3, v = (p_slice.axis + 2) % 3;
  Slice corners(4, p_box.Min());
  for (Point& corner : corners)
    At(corner, p_slice.axis) = p_slice.position;
  At(corners[1], u) = At(corners[2], u) = At(p_box.Max(), u);
  At(corners[2], v) = At(corners[3], v) = At(p_box.Max(), v);
  return corners;
}

/// A slice through a box by any plane; empty where they do not meet.
Slice PolygonOf(const Box& p_box, const Types::Plane& p_plane) {
  Slice corners;
  if (IsFinite(p_plane.Point()) && IsFinite(p_plane.Normal())) // else through a 0 of a logarithmic axis
    Library::Intersect::Intersection(p_box, p_plane, corners);
  return corners;
}

/// A part without bounds where those of the whole are: there, pixels may lie beyond by rounding.
Box OpenAt(const Box& p_part, const Box& p_whole) {
  Point low = p_part.Min(), high = p_part.Max();
  for (std::size_t axis = 0; axis < 3 && !p_part.Empty(); ++axis) {
    const double extent = At(p_whole.Max(), axis) - At(p_whole.Min(), axis);
    if (At(low, axis) <= At(p_whole.Min(), axis))
      At(low, axis) -= extent;
    if (At(high, axis) >= At(p_whole.Max(), axis))
      At(high, axis) += extent;
  }
  return p_part.Empty() ? Box() : Box(low, high);
}

} // namespace

SlicesContent::SlicesContent(VoxelGrid p_grid)
    : GridContent(std::move(p_grid))
    , _part(_grid) {
  const Point middle = _grid.Bounds().Center();
  for (std::size_t axis = 0; axis < 3; ++axis)
    _slices.push_back({axis, At(middle, axis)});
}

void SlicesContent::Add(const PlaneSlice& p_slice) {
  if (std::exchange(_areDefault, false))
    _slices.clear();
  _slices.push_back(p_slice);
  SettingsChanged();
}

void SlicesContent::Move(std::size_t p_slice, double p_position) {
  if (p_slice >= _slices.size())
    throw std::invalid_argument("Move: expected a slice below " + std::to_string(_slices.size()) + ", got " +
                                std::to_string(p_slice));
  if (_slices[p_slice].plane)
    throw std::invalid_argument("Move: expected a slice perpendicular to an axis, got an oblique one");
  _slices[p_slice].position = p_position;
  SettingsChanged();
}

void SlicesContent::Clear() {
  _areDefault = false;
  _slices.clear();
  SettingsChanged();
}

void SlicesContent::Show(const Types::MinMax_Base<double>& p_values) {
  _part.shown = p_values;
  SettingsChanged();
}

void SlicesContent::ValuesChanged() {
  TakeColorValues();
}

void SlicesContent::ValuesUpdated() {
  if (coloring.HasValues())
    ColorByValue();
}

Box SlicesContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved)
    PlaceGrid(p_changes);
  _part.SetGrid(_placed, _filter);
  _part.part = IsBlock() ? OpenAt(_region, _wholeRegion) : Box();
  _shown.clear();
  _outlines.clear();
  for (const PlaneSlice& slice : _slices) {
    if (slice.plane) {
      const Slice polygon = PolygonOf(_wholeRegion, SceneCut(*slice.plane, _placement.transform));
      if (polygon.size() < 3)
        continue;
      _shown.push_back(slice);
      _outlines.push_back(polygon);
      continue;
    }
    Point point(1, 1, 1);
    At(point, slice.axis) = slice.position;
    const double position = At(_placement.transform(point), slice.axis);
    if (!(At(_wholeRegion.Min(), slice.axis) <= position && position <= At(_wholeRegion.Max(), slice.axis)))
      continue;
    _shown.push_back({slice.axis, position});
    _outlines.push_back(RectangleOf(_wholeRegion, _shown.back()));
  }
  std::vector<Point> ends;
  for (const Slice& outline : IsBlock() ? std::vector<Slice>() : _outlines)
    for (std::size_t i = 0; i < outline.size(); ++i)
      ends.insert(ends.end(), {outline[i], outline[(i + 1) % outline.size()]});
  GpuMesh::Arrays lines;
  lines.positions = ends;
  lines.primitive = Ogl::VertexBuffer::LineSegments;
  _lines = GpuMesh(lines);
  return _region;
}

void SlicesContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  if (_region.Empty())
    return;
  if (p_frame.layer == nullptr)
    DrawEdges(p_gl, p_frame);
  const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_LINE_BIT | RGL_POLYGON_BIT | RGL_DEPTH_BUFFER_BIT |
                                           RGL_COLOR_BUFFER_BIT);
  p_gl->Enable(RGL_POLYGON_OFFSET_FILL); // behind their outlines
  p_gl->PolygonOffset(1, 1);
  ValueScale scale = Scale();
  _part.fillsMissing = scale.missing.alpha() != 0 && coloring.HasValues();
  _part.Draw(p_gl, _outlines, coloring.Map(p_gl), scale, 1, p_frame.layer);

  constexpr double LineOpacity = 0.6;
  QColor color = p_frame.ink;
  color.setAlphaF(LineOpacity * opacity);
  p_gl->Enable(RGL_BLEND);
  p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
  p_gl->DepthFunc(RGL_LEQUAL);
  p_gl->LineWidth(static_cast<float>(p_frame.pixelRatio));
  scale = {}; // values that are not given are 0
  scale.lower = 1;
  scale.upper = 2;
  scale.below = color;
  _lines.Draw(p_gl, coloring.Map(p_gl), scale, p_frame.layer);
}

void SlicesContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& /*p_frame*/, const PickPass& p_pass) {
  if (!_region.Empty())
    _part.Draw(p_gl, _outlines, p_pass);
}

Picked SlicesContent::Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const {
  Point position = p_scene; // on the slice, from which the depth buffer rounds
  if (p_number && *p_number < _shown.size() && !_shown[*p_number].plane)
    At(position, _shown[*p_number].axis) = _shown[*p_number].position;
  return VoxelAt(position);
}

void SlicesContent::ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const {
  _part.Release(p_gl);
  _lines.Release(p_gl);
  _placed.Release(p_gl);
}

std::vector<QString> SlicesContent::Notes() const {
  constexpr std::array<char, 3> Names{'x', 'y', 'z'};
  std::vector<QString> notes;
  QStringList positions;
  constexpr std::size_t MostNamed = 12;
  std::size_t oblique = 0;
  for (std::size_t i = 0; i < _slices.size() && i < MostNamed; ++i)
    if (_slices[i].plane)
      ++oblique;
    else
      positions.push_back(QString(QLatin1Char(Names[_slices[i].axis])) + QStringLiteral(" = ") +
                          Text(_slices[i].axis, _slices[i].position));
  if (_slices.size() > MostNamed)
    positions.push_back(QStringLiteral("%1 more").arg(_slices.size() - MostNamed));
  if (!positions.empty())
    notes.push_back(QLatin1String(positions.size() == 1 ? "slice at " : "slices at ") +
                    positions.join(QStringLiteral(", ")));
  AddCount(notes, oblique, {"oblique slice", "oblique slices"}, "through the volume");
  AddCount(notes, _slices.size() - _shown.size(), {"slice", "slices"}, "outside of the axes or the volume");
  for (const auto& [limit, side] : {std::pair(_part.shown.min, "below"), {_part.shown.max, "above"}})
    if (std::isfinite(limit))
      notes.push_back(QStringLiteral("values %1 %2 left out")
                          .arg(QLatin1String(side), QString::number(limit, 'g', 5).replace('-', QChar(0x2212))));
  const std::vector<QString> others = GridContent::Notes();
  notes.insert(notes.end(), others.begin(), others.end());
  return notes;
}

} // namespace Vek::Chart::Scene::Private
