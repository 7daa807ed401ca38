#include "scene/private/ScatterContent.h"

#include "library/VectorSymbol.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Scene::Private {

ScatterContent::ScatterContent(const Array3& p_positions)
    : PointsContent(Points(p_positions)) {}

void ScatterContent::SetDiameter(double p_fraction) {
  _diameter = p_fraction;
  SettingsChanged();
}

double ScatterContent::Fraction() const {
  if (_diameter > 0)
    return _diameter;
  constexpr double Equal = 0.01, Largest = 0.04, Least = 0.015, FewPoints = 250; // many large symbols overlap
  return _sizes.empty() ? Equal
                        : std::clamp(Largest * std::sqrt(FewPoints / static_cast<double>(Count())), Least, Largest);
}

void ScatterContent::SetSizes(std::vector<double> p_values) {
  _sizes = std::move(p_values);
  FindSizeRange();
}

void ScatterContent::SetSizeGrowth(double p_factor) {
  _growth = p_factor;
  FindSizeRange();
}

void ScatterContent::FindSizeRange() {
  Range seen;
  for (const double value : _sizes)
    if (std::isfinite(value) && (_growth > 0 || value > 0))
      seen += value;
  _least = seen.Empty() ? NAN : seen.min;
  _largest = seen.Empty() ? NAN : seen.max;
  _sizesChanged = true;
  SettingsChanged();
}

void ScatterContent::SetColors(const std::vector<QColor>& p_colors) {
  _colors.clear();
  for (const QColor& color : p_colors)
    _colors.push_back({static_cast<unsigned char>(color.red()), static_cast<unsigned char>(color.green()),
                       static_cast<unsigned char>(color.blue()), static_cast<unsigned char>(color.alpha())});
  PointsContent::ValuesChanged();
}

void ScatterContent::ValuesChanged() {
  _colors.clear();
  PointsContent::ValuesChanged();
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
  SettingsChanged();
}

Box ScatterContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isFirst) {
    const std::vector<Point> placed = PlacedPoints(_box);
    InstancedMesh::Instances instances;
    instances.positions = placed;
    _mesh = InstancedMesh(_levels, instances);
    _placedDiameter = 0;
  } else if (p_changes.isMoved) {
    _mesh.UpdatePositions(PlacedPoints(_box));
  }
  if (std::exchange(_sizesChanged, false)) {
    std::vector<double> factors(_sizes.size());
    const SizeKey key{{}, _least, _largest, 1, _growth};
    std::transform(_sizes.begin(), _sizes.end(), factors.begin(),
                   [&](double p_value) { return std::isfinite(p_value) ? key.Factor(p_value) : 0; });
    _mesh.UpdateSizes(factors);
  }
  if (p_changes.values) {
    _mesh.UpdateValues(coloring.Values());
    PlaceColors();
  }
  const double diameter = Fraction() * _placement.diagonal;
  if (diameter != _placedDiameter) {
    _placedDiameter = diameter;
    SetLevels();
  }
  if (_box.Empty())
    return _box;
  const Point half(diameter / 2, diameter / 2, _placement.isFlat ? 0 : diameter / 2);
  return {_box.Min() - half, _box.Max() + half};
}

void ScatterContent::PlaceColors() {
  _placedOpacity = opacity;
  std::vector<InstancedMesh::Rgba> colors = _colors;
  for (InstancedMesh::Rgba& color : colors)
    color[3] = static_cast<unsigned char>(color[3] * opacity + 0.5);
  _mesh.UpdateColors(std::move(colors));
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

void ScatterContent::SetLeastSize(const Frame& p_frame) {
  constexpr double LeastDiameter = 4; // points
  _mesh.SetLeastPixels(_sizes.empty() ? LeastDiameter * p_frame.pixelRatio / _placedDiameter : 0);
}

void ScatterContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame, const PickPass& p_pass) {
  SetLeastSize(p_frame);
  _mesh.Draw(p_gl, p_pass);
}

Picked ScatterContent::Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const {
  return p_number && *p_number < Count() ? PickedAt(*p_number, _positions[*p_number])
                                         : PlotContent::Identify({}, p_scene);
}

void ScatterContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  if (!_colors.empty() && _placedOpacity != opacity)
    PlaceColors();
  SetLeastSize(p_frame);
  _mesh.SetMostVertices(p_frame.mostVertices);
  _mesh.SetMostAtOnce(p_frame.mostAtOnce);
  _mesh.SetMostLayers(p_frame.mostLayers);
  _mesh.Draw(p_gl, coloring.Map(p_gl), coloring.Scale(), p_frame.layer);
}

std::optional<SizeKey> ScatterContent::Sizes() const {
  if (_sizes.empty() || std::isnan(_largest))
    return {};
  return SizeKey{_sizeTitle, _least, _largest, Fraction() * _placement.diagonal, _growth};
}

} // namespace Vek::Chart::Scene::Private
