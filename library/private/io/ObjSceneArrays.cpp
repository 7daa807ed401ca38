// From statements to arrays: the second half of ObjSceneReader.

#include "library/ComputeNormals.h"
#include "library/TriangulatePolygon.h"
#include "library/private/io/ObjSceneReader.h"
#include "library/private/memory/HugePages.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace Vek::Chart::Library::Private {

namespace {

// Normals of corners by one number: those of the file, those of faces, and those to be made, by smoothing group.
constexpr std::uint32_t MostElements = std::uint32_t(1) << 30;
constexpr std::uint32_t FaceNormals = MostElements;
constexpr std::uint32_t SmoothNormalsOf = std::uint32_t(1) << 31;

constexpr float Unused[] = {0, 0, 1}; // the normal of a vertex that no corner uses

bool IsSmooth(std::uint32_t p_normal) {
  return p_normal >= SmoothNormalsOf && p_normal != CornerVertices::None;
}

/// Makes room for all elements to come when those of the next block will not fit, assuming that it resembles the last
/// one. The file's size is only a claim, so the growth is bounded.
template <class T>
bool ReserveFor(std::vector<T>& p_array, std::size_t p_gained, double p_blocksLeft) {
  constexpr double Margin = 1.02;
  constexpr double MostGrowth = 64.0;
  const double size = double(p_array.size());
  if (p_gained == 0 || p_array.size() + p_gained <= p_array.capacity())
    return false;
  ReserveLarge(p_array, std::size_t(std::min(size + Margin * double(p_gained) * p_blocksLeft, MostGrowth * size)));
  return true;
}

/// Doubles the room where another block like the last one will not fit, as the elements themselves would, but with huge
/// pages.
template <class T>
void DoubleFor(std::vector<T>& p_array, std::size_t p_gained) {
  if (p_array.size() + p_gained > p_array.capacity())
    ReserveLarge(p_array, std::max(2 * p_array.capacity(), p_array.size() + p_gained));
}

/// Whether the diagonal between the first and the third corner is the inner one of a quad.
template <class Vector>
bool IsSplitByFirst(const Vector& p_a, const Vector& p_b, const Vector& p_c, const Vector& p_d) {
  const Vector diagonal = p_c - p_a;
  const Vector normal = Cross(diagonal, p_d - p_b);
  return Dot(normal, Cross(p_b - p_a, diagonal)) >= 0 && Dot(normal, Cross(diagonal, p_d - p_a)) >= 0;
}

} // namespace

ObjSceneReader::ObjSceneReader(const std::string& p_path)
    : _path(p_path)
    , _warnings(_scene.warnings)
    , _smoothing(SmoothNormalsOf) {}

ObjSceneReader::Vector ObjSceneReader::Position(std::uint32_t p_index) const {
  const float* const at = &_scene.positions[3 * std::size_t(p_index)];
  return {at[0], at[1], at[2]};
}

void ObjSceneReader::ReadBlock(const char* p_first, const char* p_last, std::uint64_t p_bytesLeft) {
  const Sizes sizes = ArraySizes();
  ReadLines(p_first, p_last);
  ReserveNext(sizes, double(p_bytesLeft) / double(p_last - p_first));
}

void ObjSceneReader::ReserveNext(const Sizes& p_before, double p_blocksLeft) {
  const Sizes sizes = ArraySizes();
  const std::size_t gained = sizes[0] - p_before[0];
  if (std::exchange(_gainedIndices, gained) != 0 && // the first block with faces has others above them
      ReserveFor(_scene.indices, gained, p_blocksLeft))
    ReleaseRests(); // most files have their faces at the end
  DoubleFor(_scene.positions, sizes[1] - p_before[1]);
  DoubleFor(_normals, sizes[2] - p_before[2]);
  DoubleFor(_texCoords, sizes[3] - p_before[3]);
}

void ObjSceneReader::ReleaseRests() {
  ReleaseRest(_scene.indices);
  for (std::vector<float>* const array :
       {&_scene.positions, &_scene.normals, &_scene.texCoords, &_scene.colors, &_normals, &_texCoords})
    ReleaseRest(*array);
}

void ObjSceneReader::AddBlock(const ObjSceneBlock& p_block, std::size_t p_bytes, std::uint64_t p_bytesLeft) {
  const Sizes sizes = ArraySizes();
  const char* at = p_block.first;
  const float* position = p_block.positions.data();
  const float* normal = p_block.normals.data();
  const float* texCoord = p_block.texCoords.data();
  const ObjCorner* corner = p_block.corners.data();
  auto cornerEnd = p_block.cornerEnds.begin();
  const auto append = [](std::vector<float>& p_array, const float*& p_from, std::size_t p_count) {
    p_array.insert(p_array.end(), p_from, p_from + p_count);
    p_from += p_count;
  };
  for (const ObjSceneBlock::Run& run : p_block.runs) {
    if (run.kind == ObjSceneBlock::Other) {
      ReadLines(at, at + run.bytes);
      at += run.bytes;
      continue;
    }
    if (run.kind == ObjSceneBlock::Positions)
      for (std::size_t i = 0; i < run.count; ++i) {
        append(_scene.positions, position, 3);
        _vertices.AddPosition();
        if (!_scene.colors.empty())
          AddColor(3);
      }
    else if (run.kind == ObjSceneBlock::Normals)
      append(_normals, normal, 3 * run.count);
    else if (run.kind == ObjSceneBlock::TexCoords)
      append(_texCoords, texCoord, 2 * run.count);
    const std::uint64_t line = _line;
    if (run.kind == ObjSceneBlock::Faces)
      for (std::size_t i = 0; i < run.count; ++i) {
        ++_line;
        const ObjCorner* const end = p_block.corners.data() + *cornerEnd++;
        _corners.assign(corner, end);
        corner = end;
        AddFace();
      }
    _line = line + run.count;
    _bytes += run.bytes;
    at += run.bytes;
  }
  ReserveNext(sizes, double(p_bytesLeft) / double(p_bytes));
}

void ObjSceneReader::AddColor(int p_count) {
  _scene.colors.resize(4 * (_vertices.Positions() - 1), 1.0f); // positions without one
  float color[4] = {1, 1, 1, 1};
  if (p_count >= 6)
    std::transform(_numbers + 3, _numbers + std::min(p_count, 7), color, [](double p_x) { return float(p_x); });
  _scene.colors.insert(_scene.colors.end(), color, color + 4);
}

void ObjSceneReader::SetSmoothing(std::string_view p_name) {
  const auto number = static_cast<std::uint32_t>(_smoothings.size() + 1);
  if (p_name == "off" || p_name.find_first_not_of('0') == std::string_view::npos)
    _smoothing = FaceNormals;
  else
    _smoothing = SmoothNormalsOf + _smoothings.try_emplace(std::string(p_name), number).first->second;
}

void ObjSceneReader::ChangeGroup(ObjScene::Primitive p_primitive) {
  std::vector<ObjScene::Group>& groups = _scene.groups;
  const bool sameKind = !groups.empty() && groups.back().primitive == p_primitive;
  if (sameKind && groups.back().material == _group.material && groups.back().name == _group.name &&
      groups.back().object == _group.object) { // named once more
    _groupChanged = false;
    return;
  }
  CheckSize();
  constexpr std::uint64_t MostNameBytes = std::uint64_t(1) << 20; // beyond them, names are a share of the file
  _nameBytes += _group.name.size() + _group.object.size();
  if (_nameBytes > MostNameBytes && _nameBytes / 16 > _bytes)
    throw ObjError(_path, _line, "shorter names for so many groups", _group.object + ' ' + _group.name);
  if (!groups.empty())
    groups.back().count = _scene.indices.size() - groups.back().first;
  _groupChanged = false;
  _group.primitive = p_primitive;
  _group.first = _scene.indices.size();
  groups.push_back(_group);
}

[[gnu::noinline]] void ObjSceneReader::RefuseIndex(int p_number, std::size_t p_count, const char* p_what) const {
  const std::string count = std::to_string(p_count);
  throw ObjError(_path, _line,
                 std::string("a ") + p_what +
                     (p_count == 0 ? " above the line" : " from 1 to " + count + " or from -" + count + " to -1"),
                 std::to_string(p_number));
}

std::uint32_t ObjSceneReader::AddFaceNormal() {
  Vector normal;
  for (std::size_t i = 1; i + 1 < _positions.size(); ++i) {
    const Vector first = Position(_positions[0]);
    normal += Cross(Position(_positions[i]) - first, Position(_positions[i + 1]) - first);
  }
  const double length = Length(normal);
  normal = length > 0 && std::isfinite(length) ? normal / length : Vector(0, 0, 1);
  _faceNormals.insert(_faceNormals.end(), {float(normal.x), float(normal.y), float(normal.z)});
  return FaceNormals + static_cast<std::uint32_t>(_faceNormals.size() / 3 - 1);
}

std::uint32_t ObjSceneReader::NormalKey(const ObjCorner& p_corner, std::uint32_t& p_faceNormal) {
  if (p_corner.normal != 0)
    return Resolved(p_corner.normal, _normals.size() / 3, "normal");
  if (_smoothing != FaceNormals) {
    _hasSmooth = true;
    return _smoothing;
  }
  if (p_faceNormal == CornerVertices::None)
    p_faceNormal = AddFaceNormal();
  return p_faceNormal;
}

void ObjSceneReader::AddFace() {
  BeginGroup(ObjScene::Triangles);
  _hasTriangles = true;
  _positions.resize(_corners.size());
  for (std::size_t i = 0; i < _corners.size(); ++i)
    _positions[i] = Resolved(_corners[i].position, _vertices.Positions(), "position");
  std::uint32_t faceNormal = CornerVertices::None;
  _cornerVertices.resize(_corners.size());
  for (std::size_t i = 0; i < _corners.size(); ++i) {
    const ObjCorner& corner = _corners[i];
    std::uint32_t texCoord = CornerVertices::None;
    if (corner.texCoord != 0) {
      texCoord = Resolved(corner.texCoord, _texCoords.size() / 2, "texture coordinate");
      _hasTexCoords = true;
    }
    _cornerVertices[i] = _vertices.Vertex(_positions[i], texCoord, NormalKey(corner, faceNormal));
  }
  if (_corners.size() == 3)
    return AddTriangle(0, 1, 2);
  if (_corners.size() == 4) {
    if (IsSplitByFirst(Position(_positions[0]), Position(_positions[1]), Position(_positions[2]),
                       Position(_positions[3]))) {
      AddTriangle(0, 1, 2);
      return AddTriangle(0, 2, 3);
    }
    AddTriangle(1, 2, 3);
    return AddTriangle(1, 3, 0);
  }
  _outline.clear();
  for (const std::uint32_t position : _positions)
    _outline.push_back(Position(position));
  for (const std::uint32_t corner : TriangulatePolygon(_outline.data(), _outline.size()))
    _scene.indices.push_back(_cornerVertices[corner]);
}

void ObjSceneReader::AddTriangle(std::uint32_t p_a, std::uint32_t p_b, std::uint32_t p_c) {
  for (const std::uint32_t corner : {p_a, p_b, p_c})
    _scene.indices.push_back(_cornerVertices[corner]);
}

void ObjSceneReader::CheckSize() const {
  for (const std::size_t size : {_vertices.Positions() + _vertices.Copies().size(), _texCoords.size() / 2,
                                 _normals.size() / 3, _faceNormals.size() / 3, _smoothings.size()})
    if (size >= MostElements)
      throw ObjError(_path, "expected at most 2^30 elements of a kind");
}

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
      _scene.indices.push_back(i);
  }
  _scene.groups.back().count = _scene.indices.size() - _scene.groups.back().first;
  _corners = {};
  FinishIndices();
  FinishColors();
  if (_hasTriangles)
    FinishNormals(p_threads);
  ReleaseRests();
  return std::move(_scene);
}

/// The last numbers of vertices, and the elements of the copies.
void ObjSceneReader::FinishIndices() {
  const std::vector<CornerVertices::Copy>& copies = _vertices.Copies();
  const std::size_t positions = _vertices.Positions();
  if (!copies.empty())
    for (std::uint32_t& index : _scene.indices)
      index = _vertices.Number(index);
  _scene.positions.reserve(3 * (positions + copies.size()));
  for (const CornerVertices::Copy& copy : copies) {
    const float* const from = &_scene.positions[3 * std::size_t(copy.position)];
    _scene.positions.insert(_scene.positions.end(), {from[0], from[1], from[2]});
  }
  if (!_hasTexCoords)
    return;
  ReserveLarge(_scene.texCoords, 2 * (positions + copies.size()));
  const auto append = [&](std::uint32_t p_texCoord) {
    const bool any = p_texCoord != CornerVertices::None;
    const float* const from = any ? &_texCoords[2 * std::size_t(p_texCoord)] : nullptr;
    _scene.texCoords.insert(_scene.texCoords.end(), {any ? from[0] : 0, any ? from[1] : 0});
  };
  for (std::size_t i = 0; i < positions; ++i)
    append(_vertices[i].texCoord);
  for (const CornerVertices::Copy& copy : copies)
    append(copy.attributes.texCoord);
  _texCoords = {};
}

/// Whether the normals of the file are those of the vertices: each vertex that is used takes the one of its own number.
bool ObjSceneReader::IsNormalOfEachVertex() const {
  const std::size_t positions = _vertices.Positions();
  bool is = _vertices.Copies().empty() && _normals.size() == 3 * positions;
  for (std::size_t i = 0; is && i < positions; ++i)
    is = _vertices[i].normal == i || _vertices[i].normal == CornerVertices::None;
  return is;
}

void ObjSceneReader::FinishNormals(Utility::Threads p_threads) {
  const std::vector<CornerVertices::Copy>& copies = _vertices.Copies();
  const std::size_t positions = _vertices.Positions();
  if (IsNormalOfEachVertex()) {
    for (std::size_t i = 0; i < positions; ++i)
      if (_vertices[i].normal == CornerVertices::None)
        std::copy(std::begin(Unused), std::end(Unused), &_normals[3 * i]);
    _scene.normals = std::move(_normals);
    return;
  }
  const std::vector<float> smooth = _hasSmooth ? SmoothNormals(p_threads) : std::vector<float>();
  ReserveLarge(_scene.normals, 3 * (positions + copies.size()));
  const auto append = [&](std::uint32_t p_normal) {
    const float* from = Unused;
    if (IsSmooth(p_normal))
      from = &smooth[_scene.normals.size()];
    else if (p_normal < FaceNormals)
      from = &_normals[3 * std::size_t(p_normal)];
    else if (p_normal != CornerVertices::None)
      from = &_faceNormals[3 * std::size_t(p_normal - FaceNormals)];
    _scene.normals.insert(_scene.normals.end(), from, from + 3);
  };
  for (std::size_t i = 0; i < positions; ++i)
    append(_vertices[i].normal);
  for (const CornerVertices::Copy& copy : copies)
    append(copy.attributes.normal);
}

/// Normals of all vertices, those of one position and smoothing group together, whatever their texture coordinates.
std::vector<float> ObjSceneReader::SmoothNormals(Utility::Threads p_threads) const {
  const std::size_t positions = _vertices.Positions();
  CornerVertices shared;
  std::vector<std::uint32_t> numbers; // of the shared vertex of each vertex
  for (std::size_t i = 0; i < positions; ++i)
    shared.AddPosition();
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
  std::vector<float>& colors = _scene.colors;
  if (colors.empty())
    return;
  const float largest = *std::max_element(colors.begin(), colors.end());
  if (largest > 1) {
    // Opacities that the file leaves out are 1, and stay so.
    for (std::size_t i = 0; i < colors.size(); ++i)
      if (i % 4 != 3 || colors[i] != 1)
        colors[i] /= 255;
  }
  for (const CornerVertices::Copy& copy : _vertices.Copies())
    for (std::size_t i = 0; i < 4; ++i)
      colors.push_back(colors[4 * std::size_t(copy.position) + i]);
}

} // namespace Vek::Chart::Library::Private
