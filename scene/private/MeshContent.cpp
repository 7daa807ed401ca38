#include "scene/private/MeshContent.h"

#include "scene/private/Notes.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene::Private {

MeshContent::MeshContent(std::vector<Point> p_positions, std::vector<std::uint32_t> p_indices)
    : _positions(std::move(p_positions))
    , _indices(std::move(p_indices))
    , _isUsed(_positions.size()) {
  for (std::size_t i = 0; i < _indices.size(); ++i) {
    if (_indices[i] >= _positions.size())
      throw std::invalid_argument("triangles: expected indices below " + std::to_string(_positions.size()) + ", got " +
                                  std::to_string(_indices[i]) + " in triangle " + std::to_string(i / 3));
    _isUsed[_indices[i]] = true;
  }
}

void MeshContent::UpdatePositions(const Array3& p_positions) {
  RequireCount("UpdatePositions", p_positions.Count(), Count());
  _positions = Points(p_positions);
  _positionsChanged = true;
}

Box MeshContent::Bounds(const AxisRules& p_rules) const {
  Box box;
  for (std::size_t i = 0; i < _positions.size(); ++i)
    if (_isUsed[i] && p_rules.Shows(_positions[i]))
      box += _positions[i];
  return box;
}

Box MeshContent::Place(const Placement& p_placement) {
  const bool isMoved = !_isPlaced || _positionsChanged || _placement.transform != p_placement.transform ||
                       _placement.rules != p_placement.rules;
  _placement = p_placement;
  if (isMoved)
    PlaceVertices();
  if (std::exchange(_valuesChanged, false) && !_mesh.Empty())
    _mesh.UpdateValues(coloring.Values());
  return _box;
}

void MeshContent::PlaceVertices() {
  const bool wasPlaced = std::exchange(_isPlaced, true);
  _positionsChanged = false;
  std::vector<Point> placed(_positions.size()); // without a triangle, the position of a vertex does not matter
  std::vector<bool> isShown(_positions.size());
  _box = {};
  _missing = _hidden = 0;
  for (std::size_t i = 0; i < _positions.size(); ++i) {
    if (!_isUsed[i])
      continue;
    isShown[i] = _placement.rules.Shows(_positions[i]);
    if (isShown[i])
      _box += placed[i] = _placement.transform(_positions[i]);
    else
      ++(IsFinite(_positions[i]) ? _hidden : _missing);
  }
  const bool isSame = wasPlaced && isShown == _isShown;
  _isShown = std::move(isShown);
  if (isSame && !_mesh.Empty()) {
    _mesh.UpdatePositions(placed);
    return;
  }
  GpuMesh::Arrays arrays;
  for (std::size_t i = 0; i + 2 < _indices.size(); i += 3)
    if (_isShown[_indices[i]] && _isShown[_indices[i + 1]] && _isShown[_indices[i + 2]])
      arrays.indices.insert(arrays.indices.end(), {_indices[i], _indices[i + 1], _indices[i + 2]});
  _mesh = {};
  if (arrays.indices.empty())
    return; // without indices, all vertices would be drawn
  arrays.positions = placed;
  arrays.values = coloring.Values();
  _mesh = GpuMesh(arrays);
  _valuesChanged = false;
}

void MeshContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& /*p_frame*/) {
  _mesh.Draw(p_gl, coloring.Map(p_gl), coloring.Scale());
}

void MeshContent::Release(const Utility::Scoped<Rgl>& p_gl) const {
  _mesh.Release(p_gl);
  coloring.Release(p_gl);
}

std::vector<QString> MeshContent::Notes() const {
  std::vector<QString> notes;
  AddCount(notes, _missing, "vertex missing", "vertices missing");
  AddCount(notes, _hidden, "vertex outside of the axes", "vertices outside of the axes");
  AddCount(notes, coloring.MissingCount(), "value missing", "values missing");
  return notes;
}

} // namespace Vek::Chart::Scene::Private
