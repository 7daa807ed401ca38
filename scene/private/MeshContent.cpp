#include "scene/private/MeshContent.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene::Private {

MeshContent::MeshContent(std::vector<Point> p_positions, std::vector<std::uint32_t> p_indices)
    : PointsContent(std::move(p_positions))
    , _indices(std::move(p_indices))
    , _isUsed(positions.size()) {
  for (std::size_t i = 0; i < _indices.size(); ++i) {
    if (_indices[i] >= positions.size())
      throw std::invalid_argument("triangles: expected indices below " + std::to_string(positions.size()) + ", got " +
                                  std::to_string(_indices[i]) + " in triangle " + std::to_string(i / 3));
    _isUsed[_indices[i]] = true;
  }
}

Box MeshContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved)
    PlaceVertices();
  if (p_changes.values && !_mesh.Empty())
    _mesh.UpdateValues(coloring.Values());
  return _box;
}

void MeshContent::PlaceVertices() {
  std::vector<Point> placed = PlacedPoints(_box);
  std::vector<bool> isShown(placed.size());
  for (std::size_t i = 0; i < placed.size(); ++i) {
    isShown[i] = IsFinite(placed[i]);
    if (!isShown[i])
      placed[i] = {}; // no triangle has it
  }
  const bool isSame = isShown == _isShown;
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
}

void MeshContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& /*p_frame*/) {
  _mesh.Draw(p_gl, coloring.Map(p_gl), coloring.Scale());
}

} // namespace Vek::Chart::Scene::Private
