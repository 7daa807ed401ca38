// From statements to lists of elements: a part of ObjSceneReader.

#include "library/TriangulatePolygon.h"
#include "library/private/io/ObjSceneKeys.h"
#include "library/private/io/ObjSceneReader.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace Vek::Chart::Library::Private {

ObjSceneReader::ObjSceneReader(const std::string& p_path, std::uint64_t p_bytes)
    : _path(p_path)
    , _fileBytes(p_bytes)
    , _warnings(_scene.warnings)
    , _smoothing(SmoothNormalsOf) {}

ObjSceneReader::Vector ObjSceneReader::Position(std::uint32_t p_index) const {
  const std::size_t at = 3 * std::size_t(p_index);
  return {_positions[at], _positions[at + 1], _positions[at + 2]};
}

void ObjSceneReader::ReadBlock(const char* p_first, const char* p_last) {
  for (const char* line = p_first; line < p_last;) {
    line = _block.Scan(line, p_last);
    AddBlock(_block);
  }
}

void ObjSceneReader::AddBlock(const ObjSceneBlock& p_block) {
  using Run = ObjSceneBlock::Run;
  const char* at = p_block.first;
  const float* position = p_block.Positions();
  const float* normal = p_block.Normals();
  const float* texCoord = p_block.TexCoords();
  const std::uint32_t* own = p_block.OwnIndices();
  const ObjCorner* corner = p_block.corners.data();
  auto cornerEnd = p_block.cornerEnds.begin();
  const auto append = [](ChunkedArray<float>& p_array, const float*& p_from, std::size_t p_count) {
    p_array.Append(p_from, p_count);
    p_from += p_count;
  };
  for (const Run& run : p_block.runs) {
    const std::uint64_t line = _line;
    if (run.kind == Run::Other) { // counts its lines itself
      ReadLines(at, at + run.bytes);
      at += run.bytes;
      continue;
    }
    if (run.kind == Run::Positions) {
      append(_positions, position, 3 * run.count);
      _vertices.AddPositions(run.count);
    } else if (run.kind == Run::Normals) {
      append(_normals, normal, 3 * run.count);
    } else if (run.kind == Run::TexCoords) {
      append(_texCoords, texCoord, 2 * run.count);
    } else if (run.kind == Run::Faces) {
      for (std::size_t i = 0; i < run.count; ++i) {
        ++_line;
        const ObjCorner* const end = p_block.corners.data() + *cornerEnd++;
        _corners.assign(corner, end);
        corner = end;
        AddFace();
      }
    } else {
      AddOwnFaces(run, own);
      own += run.count * (run.kind == Run::OwnTriangles ? 3 : 4);
    }
    _line = line + run.count;
    _bytes += run.bytes;
    at += run.bytes;
  }
  if (_bytes >= _marks.next && _bytes < _fileBytes && _indices.Size() != 0)
    GatherArrays();
}

/// After a quarter of the file behind its first face, most files have all elements but corners, and the length of lines
/// hardly changes: from then on, arrays lie in the memory that they have in the scene, without a copy at the end.
void ObjSceneReader::GatherArrays() {
  constexpr std::uint64_t Parts = 8; // of the file behind its first face
  constexpr double Spare = 1 / 16.0;
  const std::uint64_t left = _fileBytes - _bytes;
  if (_marks.passed < 2) {
    _marks.next = _bytes + left / (Parts - std::uint64_t(_marks.passed)) + 1;
    _marks.bytes = _bytes;
    _marks.indices = _indices.Size();
    ++_marks.passed;
    return;
  }
  if (_isOwn) // otherwise copies of vertices follow
    for (ChunkedArray<float>* const array : {&_positions, &_normals, &_texCoords})
      array->Gather(array->Size());
  const double rate = double(_indices.Size() - _marks.indices) / double(_bytes - _marks.bytes);
  _indices.Gather(_indices.Size() + static_cast<std::size_t>(rate * double(left) * (1 + Spare)));
  _marks.next = std::numeric_limits<std::uint64_t>::max();
}

bool ObjSceneReader::StayOwn(const OwnCorners& p_corners) {
  if (_isOwn && _own.normal == CornerVertices::None)
    _own = p_corners;
  return _isOwn && _own.hasTexCoords == p_corners.hasTexCoords && _own.normal == p_corners.normal;
}

bool ObjSceneReader::StayOwn(std::uint32_t p_position, const CornerVertices::Attributes& p_attributes) {
  const auto [texCoord, normal] = p_attributes;
  if ((texCoord != CornerVertices::None && texCoord != p_position) || (normal != p_position && !IsSmooth(normal)))
    return false;
  return StayOwn({texCoord != CornerVertices::None, normal == p_position ? OwnNormal : normal});
}

/// Fills the table with what the corners so far have.
void ObjSceneReader::EndOwn() {
  if (!std::exchange(_isOwn, false))
    return;
  for (const ObjScene::Group& group : _scene.groups) {
    if (group.primitive != ObjScene::Triangles)
      continue;
    const bool isLast = &group == &_scene.groups.back();
    for (std::size_t i = group.first; i < (isLast ? _indices.Size() : group.first + group.count); ++i) {
      const std::uint32_t position = _indices[i];
      _vertices.SetFirst(position, {_own.hasTexCoords ? position : CornerVertices::None,
                                    _own.normal == OwnNormal ? position : _own.normal});
    }
  }
}

void ObjSceneReader::AddOwnFaces(const ObjSceneBlock::Run& p_run, const std::uint32_t* p_indices) {
  const std::size_t corners = p_run.kind == ObjSceneBlock::Run::OwnTriangles ? 3 : 4;
  const bool exist = p_run.largest < _vertices.Positions() &&
                     (!p_run.hasTexCoords || p_run.largest < _texCoords.Size() / 2) &&
                     (!p_run.hasNormals || p_run.largest < _normals.Size() / 3);
  const bool hasFaceNormals = !p_run.hasNormals && _smoothing == FaceNormals;
  if (!exist || hasFaceNormals || !StayOwn({p_run.hasTexCoords, p_run.hasNormals ? OwnNormal : _smoothing})) {
    for (std::size_t i = 0; i < p_run.count; ++i) {
      ++_line;
      _corners.clear();
      for (std::size_t j = 0; j < corners; ++j) {
        const int number = static_cast<int>(p_indices[corners * i + j]) + 1;
        _corners.push_back({number, p_run.hasTexCoords ? number : 0, p_run.hasNormals ? number : 0});
      }
      AddFace();
    }
    return;
  }
  ++_line; // of the first face, for errors
  BeginGroup(ObjScene::Triangles);
  _hasTriangles = true;
  _hasTexCoords = _hasTexCoords || p_run.hasTexCoords;
  _hasSmooth = _hasSmooth || !p_run.hasNormals;
  if (corners == 3)
    _indices.Append(p_indices, 3 * p_run.count);
  else
    AddOwnQuads(p_indices, p_run.count);
}

/// As if each quad was split by its first corner, which SplitQuads examines for many at once.
void ObjSceneReader::AddOwnQuads(const std::uint32_t* p_indices, std::size_t p_count) {
  constexpr std::size_t Few = 8;
  const std::size_t first = _indices.Size();
  for (std::size_t i = 0; i < p_count; ++i) {
    const std::uint32_t* const quad = p_indices + 4 * i;
    const bool byFirst =
        p_count > Few || IsSplitByFirst(Position(quad[0]), Position(quad[1]), Position(quad[2]), Position(quad[3]));
    const std::uint32_t triangles[] = {quad[byFirst ? 0 : 1], quad[byFirst ? 1 : 2], quad[byFirst ? 2 : 3],
                                       quad[byFirst ? 0 : 1], quad[byFirst ? 2 : 3], quad[byFirst ? 3 : 0]};
    _indices.Append(triangles, 6);
  }
  if (p_count <= Few)
    return;
  if (!_quads.empty() && _quads.back().first + 6 * _quads.back().count == first)
    _quads.back().count += p_count;
  else
    _quads.push_back({first, p_count});
}

/// Colours of positions so far that have none are white.
void ObjSceneReader::AddColor() {
  _colors.Grow(4 * (_vertices.Positions() - 1), 1.0f);
  float color[4] = {1, 1, 1, 1};
  std::transform(_numbers + 3, _numbers + std::min(_numberCount, 7), color, [](double p_x) { return float(p_x); });
  _colors.Append(color, 4);
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
    groups.back().count = _indices.Size() - groups.back().first;
  _groupChanged = false;
  _group.primitive = p_primitive;
  _group.first = _indices.Size();
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
  for (std::size_t i = 1; i + 1 < _cornerPositions.size(); ++i) {
    const Vector first = Position(_cornerPositions[0]);
    normal += Cross(Position(_cornerPositions[i]) - first, Position(_cornerPositions[i + 1]) - first);
  }
  const double length = Length(normal);
  normal = length > 0 && std::isfinite(length) ? normal / length : Vector(0, 0, 1);
  _faceNormals.insert(_faceNormals.end(), {float(normal.x), float(normal.y), float(normal.z)});
  return FaceNormals + static_cast<std::uint32_t>(_faceNormals.size() / 3 - 1);
}

std::uint32_t ObjSceneReader::NormalKey(const ObjCorner& p_corner, std::uint32_t& p_faceNormal) {
  if (p_corner.normal != 0)
    return Resolved(p_corner.normal, _normals.Size() / 3, "normal");
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
  _cornerPositions.resize(_corners.size());
  for (std::size_t i = 0; i < _corners.size(); ++i)
    _cornerPositions[i] = Resolved(_corners[i].position, _vertices.Positions(), "position");
  std::uint32_t faceNormal = CornerVertices::None;
  _cornerAttributes.resize(_corners.size());
  bool isOwn = _corners.size() <= 4; // a larger face may leave corners out
  for (std::size_t i = 0; i < _corners.size(); ++i) {
    const ObjCorner& corner = _corners[i];
    std::uint32_t texCoord = CornerVertices::None;
    if (corner.texCoord != 0) {
      texCoord = Resolved(corner.texCoord, _texCoords.Size() / 2, "texture coordinate");
      _hasTexCoords = true;
    }
    _cornerAttributes[i] = {texCoord, NormalKey(corner, faceNormal)};
    isOwn = isOwn && StayOwn(_cornerPositions[i], _cornerAttributes[i]);
  }
  _cornerVertices = _cornerPositions;
  if (!isOwn) {
    EndOwn();
    for (std::size_t i = 0; i < _corners.size(); ++i)
      _cornerVertices[i] =
          _vertices.Vertex(_cornerPositions[i], _cornerAttributes[i].texCoord, _cornerAttributes[i].normal);
  }
  if (_corners.size() == 3)
    return AddTriangle(0, 1, 2);
  if (_corners.size() == 4) {
    if (IsSplitByFirst(Position(_cornerPositions[0]), Position(_cornerPositions[1]), Position(_cornerPositions[2]),
                       Position(_cornerPositions[3]))) {
      AddTriangle(0, 1, 2);
      return AddTriangle(0, 2, 3);
    }
    AddTriangle(1, 2, 3);
    return AddTriangle(1, 3, 0);
  }
  _outline.clear();
  for (const std::uint32_t position : _cornerPositions)
    _outline.push_back(Position(position));
  for (const std::uint32_t corner : TriangulatePolygon(_outline.data(), _outline.size()))
    _indices.Append(_cornerVertices[corner]);
}

void ObjSceneReader::AddTriangle(std::uint32_t p_a, std::uint32_t p_b, std::uint32_t p_c) {
  for (const std::uint32_t corner : {p_a, p_b, p_c})
    _indices.Append(_cornerVertices[corner]);
}

void ObjSceneReader::CheckSize() const {
  for (const std::size_t size : {_vertices.Positions() + _vertices.Copies().size(), _texCoords.Size() / 2,
                                 _normals.Size() / 3, _faceNormals.size() / 3, _smoothings.size()})
    if (size >= MostElements)
      throw ObjError(_path, "expected at most 2^30 elements of a kind");
}

} // namespace Vek::Chart::Library::Private
