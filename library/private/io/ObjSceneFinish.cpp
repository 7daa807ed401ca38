// From lists of elements to the arrays of a scene: the last part of ObjSceneReader.

#include "library/ComputeNormals.h"
#include "library/private/io/ObjSceneKeys.h"
#include "library/private/io/ObjSceneReader.h"
#include "library/private/memory/HugePages.h"
#include "library/private/mesh/FloatNormals.h"

#include <algorithm>
#include <atomic>
#include <iterator>
#include <utility>

namespace Vek::Chart::Library::Private {

namespace {

constexpr float Unused[] = {0, 0, 1}; // the normal of a vertex that no corner uses

} // namespace

ObjScene ObjSceneReader::Finish(Utility::Threads p_threads) {
  CheckSize();
  if (_vertices.Positions() == 0)
    throw ObjError(_path, "expected positions (v), got none");
  for (const auto& [material, line] : _undefined)
    _warnings.Add(_path, line, "there is no material \"" + _scene.materials[std::size_t(material)].name + "\"");
  _warnings.Finish();
  if (_scene.groups.empty()) { // a cloud of points
    BeginGroup(ObjScene::Points);
    for (std::uint32_t i = 0; i < _vertices.Positions(); ++i)
      _indices.Append(i);
  }
  _scene.groups.back().count = _indices.Size() - _scene.groups.back().first;
  _corners = {};
  FinishArrays(p_threads);
  SplitQuads(p_threads);
  FinishColors();
  if (_isOwn) {
    FinishOwn(p_threads);
  } else {
    FinishTexCoords();
    FinishNormals(p_threads);
  }
  return std::move(_scene);
}

/// Moves arrays that are complete but for the copies into the scene; frees those that no corner names.
void ObjSceneReader::FinishArrays(Utility::Threads p_threads) {
  if (!_hasTexCoords)
    _texCoords.Clear();
  if (!_hasTriangles || (_isOwn && _own.normal != OwnNormal))
    _normals.Clear();
  const std::size_t positions = _vertices.Positions();
  if (_texCoords.Size() > 2 * positions || _normals.Size() > 3 * positions)
    EndOwn(); // some are of no vertex
  for (ChunkedArray<float>* const array : {&_positions, &_texCoords, &_normals, &_colors})
    array->ReleaseRest();
  _indices.ReleaseRest();
  const std::vector<CornerVertices::Copy>& copies = _vertices.Copies();
  const auto finish = [&](std::size_t p_array) {
    if (p_array == 0) {
      _scene.indices = _indices.MoveOut();
      if (!copies.empty())
        for (std::uint32_t& index : _scene.indices)
          index = _vertices.Number(index);
    } else if (p_array == 1) {
      _scene.positions = _positions.MoveOut(3 * (positions + copies.size()));
      for (const CornerVertices::Copy& copy : copies) {
        const float* const from = &_scene.positions[3 * std::size_t(copy.position)];
        _scene.positions.insert(_scene.positions.end(), {from[0], from[1], from[2]});
      }
    } else if (p_array == 2 && _isOwn) {
      _scene.normals = _normals.MoveOut(_normals.Size() == 0 ? 0 : 3 * positions);
    } else if (p_array == 3 && _isOwn) {
      _scene.texCoords = _texCoords.MoveOut(_texCoords.Size() == 0 ? 0 : 2 * positions);
    }
  };
  const std::size_t elements = _indices.Size() + _positions.Size() + _normals.Size() + _texCoords.Size();
  Utility::RunBlocks(ThreadsToMoveOut(p_threads, elements * sizeof(float)), 4, finish);
}

void ObjSceneReader::SplitQuads(Utility::Threads p_threads) {
  const auto position = [&](std::uint32_t p_index) {
    const float* const at = &_scene.positions[3 * std::size_t(p_index)];
    return Vector(at[0], at[1], at[2]);
  };
  for (const Quads& quads : _quads)
    Utility::RunRanges(p_threads, quads.count, 4096, [&](std::size_t p_first, std::size_t p_last) {
      for (std::uint32_t* at = &_scene.indices[quads.first + 6 * p_first]; p_first != p_last; ++p_first, at += 6) {
        const std::uint32_t a = at[0], b = at[1], c = at[2], d = at[5];
        if (IsSplitByFirst(position(a), position(b), position(c), position(d)))
          continue;
        const std::uint32_t other[] = {b, c, d, b, d, a};
        std::copy(std::begin(other), std::end(other), at);
      }
    });
}

/// 1 for each position that a face uses, otherwise 0.
std::vector<unsigned char> ObjSceneReader::UsedPositions(Utility::Threads p_threads) const {
  constexpr std::size_t BlockSize = std::size_t{1} << 16;
  std::vector<std::atomic<unsigned char>> used(_vertices.Positions());
  for (const ObjScene::Group& group : _scene.groups)
    if (group.primitive == ObjScene::Triangles)
      Utility::RunRanges(p_threads, group.count, BlockSize, [&](std::size_t p_first, std::size_t p_last) {
        for (std::size_t i = group.first + p_first; i < group.first + p_last; ++i)
          used[_scene.indices[i]].store(1, std::memory_order_relaxed);
      });
  return {used.begin(), used.end()};
}

/// Each vertex is a position, whose number is that of its texture coordinates and its normal.
void ObjSceneReader::FinishOwn(Utility::Threads p_threads) {
  const std::size_t positions = _vertices.Positions();
  if (IsSmooth(_own.normal) && _own.normal != OwnNormal)
    _scene.normals = OwnSmoothNormals(p_threads);
  if (!_own.hasTexCoords && _own.normal != OwnNormal)
    return;
  const std::vector<unsigned char> used = UsedPositions(p_threads);
  if (_own.normal == OwnNormal) {
    _scene.normals.resize(3 * positions);
    for (std::size_t i = 0; i < positions; ++i)
      if (used[i] == 0)
        std::copy(std::begin(Unused), std::end(Unused), &_scene.normals[3 * i]);
  }
  if (_own.hasTexCoords) {
    _scene.texCoords.resize(2 * positions);
    for (std::size_t i = 0; i < positions; ++i)
      if (used[i] == 0)
        std::fill_n(&_scene.texCoords[2 * i], 2, 0.0f);
  }
}

void ObjSceneReader::FinishTexCoords() {
  if (!_hasTexCoords)
    return;
  const std::vector<CornerVertices::Copy>& copies = _vertices.Copies();
  const std::size_t positions = _vertices.Positions();
  ReserveLarge(_scene.texCoords, 2 * (positions + copies.size()));
  const auto append = [&](std::uint32_t p_texCoord) {
    const std::size_t from = 2 * std::size_t(p_texCoord);
    const bool any = p_texCoord != CornerVertices::None;
    _scene.texCoords.insert(_scene.texCoords.end(), {any ? _texCoords[from] : 0, any ? _texCoords[from + 1] : 0});
  };
  for (std::size_t i = 0; i < positions; ++i)
    append(_vertices[i].texCoord);
  for (const CornerVertices::Copy& copy : copies)
    append(copy.attributes.texCoord);
  _texCoords.Clear();
}

/// Whether the normals of the file are those of the vertices: each vertex that is used takes the one of its own number.
bool ObjSceneReader::IsNormalOfEachVertex() const {
  const std::size_t positions = _vertices.Positions();
  bool is = _vertices.Copies().empty() && _normals.Size() == 3 * positions;
  for (std::size_t i = 0; is && i < positions; ++i)
    is = _vertices[i].normal == i || _vertices[i].normal == CornerVertices::None;
  return is;
}

void ObjSceneReader::FinishNormals(Utility::Threads p_threads) {
  const std::vector<CornerVertices::Copy>& copies = _vertices.Copies();
  const std::size_t positions = _vertices.Positions();
  if (IsNormalOfEachVertex()) {
    _scene.normals = _normals.MoveOut();
    for (std::size_t i = 0; i < positions; ++i)
      if (_vertices[i].normal == CornerVertices::None)
        std::copy(std::begin(Unused), std::end(Unused), &_scene.normals[3 * i]);
    return;
  }
  const std::vector<float> smooth = _hasSmooth ? SmoothNormals(p_threads) : std::vector<float>();
  ReserveLarge(_scene.normals, 3 * (positions + copies.size()));
  const auto append = [&](std::uint32_t p_normal) {
    const float* from = Unused;
    float ofFile[3];
    if (IsSmooth(p_normal)) {
      from = &smooth[_scene.normals.size()];
    } else if (p_normal < FaceNormals) {
      for (std::size_t i = 0; i < 3; ++i)
        ofFile[i] = _normals[3 * std::size_t(p_normal) + i];
      from = ofFile;
    } else if (p_normal != CornerVertices::None) {
      from = &_faceNormals[3 * std::size_t(p_normal - FaceNormals)];
    }
    _scene.normals.insert(_scene.normals.end(), from, from + 3);
  };
  for (std::size_t i = 0; i < positions; ++i)
    append(_vertices[i].normal);
  for (const CornerVertices::Copy& copy : copies)
    append(copy.attributes.normal);
}

/// SmoothNormals where each vertex is a position, and all are smoothed together.
std::vector<float> ObjSceneReader::OwnSmoothNormals(Utility::Threads p_threads) const {
  const std::vector<ObjScene::Group>& groups = _scene.groups;
  if (std::any_of(groups.begin(), groups.end(),
                  [](const ObjScene::Group& p_group) { return p_group.primitive != ObjScene::Triangles; }))
    return SmoothNormals(p_threads);
  std::vector<float> normals(_scene.positions.size());
  ComputeFloatNormals(_scene.positions.data(), _vertices.Positions(), _scene.indices.data(), _scene.indices.size(),
                      p_threads, normals.data());
  return normals;
}

/// Normals of all vertices, those of one position and smoothing group together, whatever their texture coordinates.
std::vector<float> ObjSceneReader::SmoothNormals(Utility::Threads p_threads) const {
  const std::size_t positions = _vertices.Positions();
  CornerVertices shared;
  std::vector<std::uint32_t> numbers; // of the shared vertex of each vertex
  shared.AddPositions(positions);
  for (std::uint32_t i = 0; i < positions; ++i)
    numbers.push_back(_vertices[i].normal == CornerVertices::None ? i : shared.Vertex(i, 0, _vertices[i].normal));
  for (const CornerVertices::Copy& copy : _vertices.Copies())
    numbers.push_back(shared.Vertex(copy.position, 0, copy.attributes.normal));

  std::vector<Ogl::Vec3<float>> points;
  points.reserve(positions + shared.Copies().size());
  const auto addPoint = [&](std::size_t p_position) {
    const float* const at = &_scene.positions[3 * p_position];
    points.push_back({at[0], at[1], at[2]});
  };
  for (std::size_t i = 0; i < positions; ++i)
    addPoint(i);
  for (const CornerVertices::Copy& copy : shared.Copies())
    addPoint(copy.position);

  std::vector<std::uint32_t> triangles;
  triangles.reserve(_scene.indices.size());
  for (const ObjScene::Group& group : _scene.groups)
    if (group.primitive == ObjScene::Triangles)
      for (std::size_t i = group.first; i < group.first + group.count; ++i)
        triangles.push_back(shared.Number(numbers[_scene.indices[i]]));
  const std::vector<Ogl::Vec3<float>> normals =
      ComputeNormals(points.data(), points.size(), triangles.data(), triangles.size(), p_threads);

  std::vector<float> all;
  all.reserve(3 * numbers.size());
  for (const std::uint32_t number : numbers) {
    const Ogl::Vec3<float>& normal = normals[shared.Number(number)];
    all.insert(all.end(), {normal.x, normal.y, normal.z});
  }
  return all;
}

void ObjSceneReader::FinishColors() {
  if (_colors.Size() == 0)
    return;
  const std::vector<CornerVertices::Copy>& copies = _vertices.Copies();
  _colors.Grow(4 * _vertices.Positions(), 1.0f);
  std::vector<float>& colors = _scene.colors = _colors.MoveOut(4 * (_vertices.Positions() + copies.size()));
  const float largest = *std::max_element(colors.begin(), colors.end());
  if (largest > 1) {
    // Opacities that the file leaves out are 1, and stay so.
    for (std::size_t i = 0; i < colors.size(); ++i)
      if (i % 4 != 3 || colors[i] != 1)
        colors[i] /= 255;
  }
  for (const CornerVertices::Copy& copy : copies)
    for (std::size_t i = 0; i < 4; ++i)
      colors.push_back(colors[4 * std::size_t(copy.position) + i]);
}

} // namespace Vek::Chart::Library::Private
