#include "scene/private/MeshContent.h"

#include "scene/private/FigureCuts.h"
#include "scene/private/NearestCorner.h"

#include <cmath>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

/// What the vertices of a part have of that of the plot's vertices.
template <class T>
std::vector<T> OfPart(const MeshPart& p_part, const std::vector<T>& p_all) {
  std::vector<T> chosen;
  if (p_all.empty())
    return chosen;
  chosen.reserve(p_part.elements.size());
  for (const std::uint32_t element : p_part.elements)
    chosen.push_back(p_all[element]);
  return chosen;
}

} // namespace

MeshContent::MeshContent(MeshData p_data)
    : PointsContent(std::move(p_data.positions))
    , _normals(std::move(p_data.normals))
    , _parts(std::move(p_data.parts))
    , _unreadTextures(p_data.unreadTextures)
    , _isUsed(_positions.size())
    , _meshes(_parts.size()) {
  for (const MeshPart& part : _parts)
    _textures.emplace_back(part.texture);
  for (const MeshPart& part : _parts)
    for (const std::uint32_t index : part.indices)
      _isUsed[part.elements[index]] = true;
}

void MeshContent::ColorByFile() {
  _isByFile = true;
  PointsContent::ValuesChanged();
}

void MeshContent::ValuesChanged() {
  _isByFile = false;
  PointsContent::ValuesChanged();
}

void MeshContent::UpdatePositions(const Array3& p_positions) {
  PointsContent::UpdatePositions(p_positions);
  if (!std::exchange(_normals, {}).empty())
    _isShown.clear(); // makes meshes anew, whose normals are computed
}

Box MeshContent::PlaceChanged(const Changes& p_changes) {
  if (p_changes.isMoved)
    PlaceVertices();
  if (p_changes.values)
    PlaceColors();
  return _box;
}

void MeshContent::PlaceVertices() {
  std::vector<Point> placed = PlacedPoints(_box, true), normals;
  std::vector<bool> isShown(placed.size());
  for (std::size_t i = 0; i < placed.size(); ++i) {
    isShown[i] = IsFinite(placed[i]);
    if (!isShown[i])
      placed[i] = {}; // no triangle has it
    if (!_normals.empty())
      normals.push_back(isShown[i] ? PlacedNormal(_placement.transform, _positions[i], _normals[i]) : Point());
  }
  const bool isSame = isShown == _isShown;
  _isShown = std::move(isShown);
  _scene = placed;
  _triangles.resize(_parts.size());
  for (std::size_t i = 0; i < _parts.size(); ++i) {
    const MeshPart& part = _parts[i];
    GpuMesh& mesh = _meshes[i];
    const std::vector<Point> ownPositions = OfPart(part, placed), ownNormals = OfPart(part, normals);
    if (isSame && !mesh.Empty()) {
      mesh.UpdatePositions(ownPositions);
      if (!ownNormals.empty())
        mesh.UpdateNormals(ownNormals);
      continue;
    }
    GpuMesh::Arrays arrays;
    const auto shows = [&](std::size_t p_corner) { return _isShown[part.elements[part.indices[p_corner]]]; };
    for (std::size_t corner = 0; corner + 2 < part.indices.size(); corner += 3)
      if (shows(corner) && shows(corner + 1) && shows(corner + 2))
        for (std::size_t j = corner; j < corner + 3; ++j)
          arrays.indices.push_back(part.indices[j]);
    _triangles[i].clear();
    for (const std::uint32_t index : arrays.indices)
      _triangles[i].push_back(part.elements[index]);
    mesh = {};
    if (arrays.indices.empty())
      continue; // without indices, all vertices would be drawn
    arrays.positions = ownPositions;
    arrays.normals = ownNormals;
    mesh = GpuMesh(arrays);
  }
  if (_placement.rules.cutsSurfaces)
    for (const std::vector<std::uint32_t>& triangles : _triangles)
      _box += CutBounds(
          triangles, [&](std::uint32_t p_vertex) { return _scene[p_vertex]; },
          LimitCuts(_placement.rules, _placement.transform));
  if (!isSame)
    PlaceColors();
}

void MeshContent::PlaceColors() {
  _opacity = opacity;
  for (std::size_t i = 0; i < _parts.size(); ++i) {
    if (_meshes[i].Empty())
      continue;
    std::vector<GpuMesh::Rgba> colors;
    if (_isByFile)
      colors = _parts[i].colors;
    for (GpuMesh::Rgba& color : colors)
      color[3] = static_cast<unsigned char>(color[3] * _opacity + 0.5);
    _meshes[i].UpdateColors(std::move(colors));
    if (_isByFile && !_parts[i].texture.isNull())
      _meshes[i].UpdateTexCoords(_parts[i].texCoords);
    else
      _meshes[i].UpdateValues(OfPart(_parts[i], coloring.Values()));
  }
}

void MeshContent::Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) {
  if (_isByFile && _opacity != opacity)
    PlaceColors();
  for (std::size_t i = 0; i < _parts.size(); ++i) {
    if (!_isByFile || _parts[i].texture.isNull()) {
      _meshes[i].Draw(p_gl, coloring.Map(p_gl), coloring.Scale(), p_frame.layer);
      continue;
    }
    QColor tint = _parts[i].tint;
    tint.setAlphaF(opacity);
    const auto bound = _textures[i].Bind(p_gl);
    _meshes[i].DrawTextured(p_gl, tint, p_frame.layer);
  }
}

void MeshContent::DrawPick(Utility::Scoped<Rgl>& p_gl, const Frame&, const PickPass&) {
  for (const GpuMesh& mesh : _meshes)
    mesh.Draw(p_gl);
}

namespace {

double AreaOf(const Point& p_a, const Point& p_b, const Point& p_c) {
  return Length(Cross(p_b - p_a, p_c - p_a)) / 2;
}

} // namespace

/// Triangles are counted in each part: of those with the number, the one that the point lies in.
Picked MeshContent::Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const {
  std::optional<std::uint32_t> vertex;
  double least = HUGE_VAL; // area that the corners and the point take more than the triangle
  for (const std::vector<std::uint32_t>& triangles : _triangles) {
    if (!p_number || std::size_t{3} * *p_number + 2 >= triangles.size())
      continue;
    const auto corner = [&](std::size_t p_corner) { return _scene[triangles[std::size_t{3} * *p_number + p_corner]]; };
    const Point a = corner(0), b = corner(1), c = corner(2);
    const double excess = AreaOf(p_scene, a, b) + AreaOf(p_scene, b, c) + AreaOf(p_scene, c, a) - AreaOf(a, b, c);
    if (excess < least) {
      least = excess;
      vertex = NearestCorner(triangles, p_number,
                             [&](std::uint32_t p_vertex) { return Length(_scene[p_vertex] - p_scene); });
    }
  }
  return vertex ? PickedAt(*vertex, _placement.transform.Inverse(p_scene)) : PlotContent::Identify({}, p_scene);
}

void MeshContent::ReleaseParts(const Utility::Scoped<Rgl>& p_gl) const {
  for (const GpuMesh& mesh : _meshes)
    mesh.Release(p_gl);
  for (const ModelTexture& texture : _textures)
    texture.Release(p_gl);
}

std::vector<QString> MeshContent::Notes() const {
  std::vector<QString> notes = PointsContent::Notes();
  if (_isByFile)
    AddCount(notes, _unreadTextures, {"texture", "textures"}, "not read");
  return notes;
}

} // namespace Vek::Chart::Scene::Private
