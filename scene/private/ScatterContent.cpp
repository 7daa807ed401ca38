#include "scene/private/ScatterContent.h"

#include "scene/private/Notes.h"

#include "library/VectorSymbol.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene::Private {

ScatterContent::ScatterContent(const Array3& p_positions)
    : _positions(Points(p_positions)) {}

void ScatterContent::SetSizes(std::vector<double> p_values) {
  _sizes = std::move(p_values);
  Range positive;
  for (const double value : _sizes)
    if (std::isfinite(value) && value > 0)
      positive += value;
  _least = positive.min;
  _largest = positive.max; // below 0 if there is none
  _sizesChanged = true;
}

void ScatterContent::SetSymbol(Model::Symbol::Shape p_shape) {
  constexpr unsigned int Segments = 24;
  if (p_shape == Model::Symbol::ShapeSphere) {
    _levels = InstancedMesh::Spheres();
  } else {
    if (p_shape < Model::Symbol::ShapePoint || p_shape >= Model::Symbol::ShapeCustom)
      throw std::invalid_argument("Symbol: expected a built-in shape, got " + std::to_string(p_shape));
    Ogl::VertexData data;
    Library::VectorSymbol(p_shape, Segments).BuildShape(data);
    _levels = {InstancedMesh::Level::Centered(GpuMesh(data))};
  }
  _placedDiameter = 0;
}

void ScatterContent::UpdatePositions(const Array3& p_positions) {
  RequireCount("UpdatePositions", p_positions.Count(), Count());
  _positions = Points(p_positions);
  _positionsChanged = true;
}

Box ScatterContent::Bounds(const AxisRules& p_rules) const {
  Box box;
  for (const Point& point : _positions)
    if (p_rules.Shows(point))
      box += point;
  return box;
}

Box ScatterContent::Place(const Placement& p_placement) {
  const bool isMoved = !_isPlaced || _positionsChanged || _placement.transform != p_placement.transform ||
                       _placement.rules != p_placement.rules;
  _placement = p_placement;
  if (isMoved)
    PlacePoints();
  if (std::exchange(_sizesChanged, false)) {
    std::vector<double> factors(_sizes.size()); // areas in proportion to values
    std::transform(_sizes.begin(), _sizes.end(), factors.begin(),
                   [&](double p_value) { return p_value > 0 ? std::sqrt(p_value / _largest) : 0; });
    _mesh.UpdateSizes(factors);
  }
  if (std::exchange(_valuesChanged, false))
    _mesh.UpdateValues(coloring.Values());
  const double diameter = Fraction() * p_placement.diagonal;
  if (diameter != _placedDiameter) {
    _placedDiameter = diameter;
    SetLevels();
  }
  if (_box.Empty())
    return _box;
  const Point half(diameter / 2, diameter / 2, p_placement.isFlat ? 0 : diameter / 2);
  return {_box.Min() - half, _box.Max() + half};
}

void ScatterContent::PlacePoints() {
  std::vector<Point> placed(_positions.size(), Point(NAN, NAN, NAN));
  _box = {};
  _missing = _hidden = 0;
  for (std::size_t i = 0; i < _positions.size(); ++i) {
    if (_placement.rules.Shows(_positions[i]))
      _box += placed[i] = _placement.transform(_positions[i]);
    else
      ++(IsFinite(_positions[i]) ? _hidden : _missing);
  }
  if (_isPlaced) {
    _mesh.UpdatePositions(placed);
  } else {
    InstancedMesh::Instances instances;
    instances.positions = placed;
    _mesh = InstancedMesh(_levels, instances);
    _placedDiameter = 0;
  }
  _isPlaced = true;
  _positionsChanged = false;
}

void ScatterContent::SetLevels() {
  // Sizes are relative, so that another diameter uploads no instance.
  std::vector<InstancedMesh::Level> levels = _levels;
  for (InstancedMesh::Level& level : levels) {
    level.scale *= _placedDiameter;
    level.mostPixels /= _placedDiameter;
  }
  _mesh.SetLevels(std::move(levels));
}

void ScatterContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  constexpr double LeastDiameter = 4; // points
  _mesh.SetLeastPixels(_sizes.empty() ? LeastDiameter * p_frame.pixelRatio / _placedDiameter : 0);
  _mesh.Draw(p_gl, coloring.Map(p_gl), coloring.Scale());
}

void ScatterContent::Release(const Utility::Scoped<Rgl>& p_gl) const {
  _mesh.Release(p_gl);
  coloring.Release(p_gl);
}

std::vector<QString> ScatterContent::Notes() const {
  std::vector<QString> notes;
  AddCount(notes, _missing, "point missing", "points missing");
  AddCount(notes, _hidden, "point outside of the axes", "points outside of the axes");
  AddCount(notes, coloring.MissingCount(), "value missing", "values missing");
  return notes;
}

std::optional<SizeKey> ScatterContent::Sizes() const {
  if (_sizes.empty() || _largest <= 0)
    return {};
  return SizeKey{_sizeTitle, _least, _largest, Fraction() * _placement.diagonal};
}

} // namespace Vek::Chart::Scene::Private
