#include "scene/private/IsosurfaceContent.h"

#include "scene/Isosurface.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

/// A box of voxels of a grid, by the positions of their centres.
struct Nodes {
  std::array<std::vector<double>, 3> axes;
  std::vector<float> values;
};

/// The voxels whose centres lie in a box.
Nodes NodesIn(const VoxelGrid& p_grid, const Box& p_box) {
  Nodes nodes;
  std::array<int, 3> first{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::vector<double> knots = p_grid.Knots(static_cast<int>(axis));
    const Range range = Along(p_box, axis);
    for (std::size_t i = 1; i < knots.size(); i += 2)
      if (range.min <= knots[i] && knots[i] <= range.max) {
        if (nodes.axes[axis].empty())
          first[axis] = static_cast<int>(i / 2);
        nodes.axes[axis].push_back(knots[i]);
      }
  }
  for (std::size_t k = 0; k < nodes.axes[2].size(); ++k)
    for (std::size_t j = 0; j < nodes.axes[1].size(); ++j)
      for (std::size_t i = 0; i < nodes.axes[0].size(); ++i)
        nodes.values.push_back(static_cast<float>(p_grid.Value(
            first[0] + static_cast<int>(i), first[1] + static_cast<int>(j), first[2] + static_cast<int>(k))));
  return nodes;
}

QString Number(double p_number) {
  return QString::number(p_number, 'g', 6).replace('-', QChar(0x2212));
}

} // namespace

IsosurfaceContent::IsosurfaceContent(VoxelGrid p_grid, const std::vector<double>& p_levels)
    : GridContent(std::move(p_grid), false) {
  coloring.SetMissing(QColor(128, 128, 128));
  SetLevels(p_levels);
}

void IsosurfaceContent::SetLevels(const std::vector<double>& p_levels) {
  if (p_levels.empty())
    throw std::invalid_argument("Levels: expected one level at least, got none");
  for (const double level : p_levels)
    if (!std::isfinite(level))
      throw std::invalid_argument("Levels: expected finite numbers, got " + std::to_string(level));
  _levels = p_levels;
  std::sort(_levels.begin(), _levels.end());
  _levels.erase(std::unique(_levels.begin(), _levels.end()), _levels.end());
  _levelsChanged = true;
  SettingsChanged();
  if (_isByLevel)
    ColorByLevel();
}

void IsosurfaceContent::ColorByLevel() {
  _isByLevel = true;
  const bool hasOne = _levels.size() == 1; // in the colour of the plot
  coloring.SetValues(hasOne ? std::vector<double>() : _levels);
  coloring.SetLevels(hasOne ? std::vector<double>() : _levels);
  GridContent::ValuesChanged();
}

void IsosurfaceContent::ValuesChanged() {
  _isByLevel = false;
  coloring.SetLevels({});
  GridContent::ValuesChanged();
}

Box IsosurfaceContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved)
    PlaceGrid(p_changes);
  if (p_changes.isMoved || std::exchange(_levelsChanged, false))
    PlaceSurfaces();
  else if (p_changes.values)
    PlaceValues();
  return _region;
}

void IsosurfaceContent::PlaceSurfaces() {
  _levelsChanged = false;
  _surfaces.clear();
  if (_region.Empty())
    return;
  const Nodes nodes = NodesIn(_placed, _region);
  if (nodes.axes[0].size() < 2 || nodes.axes[1].size() < 2 || nodes.axes[2].size() < 2)
    return;
  for (const double level : _levels) {
    const Scene::Isosurface mesh(nodes.axes[0], nodes.axes[1], nodes.axes[2], nodes.values, Array1::Constant(level, 1),
                                 {}, Utility::Threads::All());
    if (mesh.indices.empty())
      continue;
    const std::vector<float> values(mesh.positions.size()); // set below
    GpuMesh::Arrays arrays;
    arrays.positions = mesh.positions;
    arrays.normals = mesh.normals;
    arrays.values = values;
    arrays.indices.assign(mesh.indices.begin(), mesh.indices.end());
    _surfaces.push_back({level, Points(mesh.positions), GpuMesh(arrays)});
  }
  PlaceValues();
}

void IsosurfaceContent::PlaceValues() {
  if (_isByLevel || coloring.Values().empty()) {
    for (Surface& surface : _surfaces)
      surface.mesh.UpdateValues(std::vector<float>(surface.vertices.size(), static_cast<float>(surface.level)));
    return;
  }
  const VoxelGrid other = _placed.WithValues(coloring.Values());
  for (Surface& surface : _surfaces) {
    std::vector<float> values(surface.vertices.size());
    std::transform(surface.vertices.begin(), surface.vertices.end(), values.begin(),
                   [&](const Point& p_vertex) { return static_cast<float>(other.Sample(p_vertex)); });
    surface.mesh.UpdateValues(values);
  }
}

void IsosurfaceContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  for (const Surface& surface : _surfaces)
    surface.mesh.Draw(p_gl, coloring.Map(p_gl), coloring.Scale(), p_frame.layer);
}

void IsosurfaceContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame& /*p_frame*/, const PickPass& /*p_pass*/) {
  for (const Surface& surface : _surfaces)
    surface.mesh.Draw(p_gl);
}

/// The value of the colours, or the level of the surface.
Picked IsosurfaceContent::Identify(std::optional<std::uint32_t> /*p_number*/, const Point& p_scene) const {
  Picked picked = VoxelAt(p_scene);
  if (!coloring.Values().empty() && !_isByLevel) {
    picked.value = _placed.WithValues(coloring.Values()).Sample(p_scene);
  } else if (picked.value && !_surfaces.empty()) {
    const auto distance = [&](const Surface& p_surface) { return std::abs(p_surface.level - *picked.value); };
    picked.value = std::min_element(_surfaces.begin(), _surfaces.end(), [&](const Surface& p_a, const Surface& p_b) {
                     return distance(p_a) < distance(p_b);
                   })->level;
  }
  return picked;
}

void IsosurfaceContent::ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const {
  for (const Surface& surface : _surfaces)
    surface.mesh.Release(p_gl);
}

std::vector<QString> IsosurfaceContent::Notes() const {
  std::vector<QString> notes;
  QStringList shown, missing;
  for (const double level : _levels) {
    const bool isShown = std::any_of(_surfaces.begin(), _surfaces.end(),
                                     [&](const Surface& p_surface) { return p_surface.level == level; });
    (isShown ? shown : missing).push_back(Number(level));
  }
  const QString unit = _grid.unit.isEmpty() ? QString() : ' ' + _grid.unit;
  if (!shown.empty() && !(_isByLevel && _levels.size() > 1))
    notes.push_back(QLatin1String(shown.size() == 1 ? "surface at " : "surfaces at ") +
                    shown.join(QStringLiteral(", ")) + unit);
  if (!missing.empty())
    notes.push_back(QStringLiteral("no surface at ") + missing.join(QStringLiteral(", ")) + unit);
  if (!_isByLevel)
    AddCount(notes, coloring.MissingCount(), {"value", "values"}, "missing");
  const std::vector<QString> others = GridContent::Notes();
  notes.insert(notes.end(), others.begin(), others.end());
  return notes;
}

} // namespace Vek::Chart::Scene::Private
