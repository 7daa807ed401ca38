#include "library/private/io/ObjSceneBlock.h"

#include "library/private/io/BlockSizes.h"
#include "library/private/io/ObjLine.h"

#include <algorithm>

namespace Vek::Chart::Library::Private {

using namespace ObjLine;

namespace {

/// Scanned statements have seven characters or more; the last one may go beyond the block.
constexpr std::size_t MostStatements = BlockBytes / 7 + 1;
/// Of a face that is scanned.
constexpr std::size_t MostCorners = 16;

/// Behind a statement of any kind, with the lines on which it goes on.
const char* BehindStatement(const char* p_line, const char* p_last) {
  const bool isComment = *SkipBlanks(p_line) == '#';
  const char* end = FindLineEnd(p_line, p_last);
  while (!isComment && end != p_line && end[-1] == '\\') {
    const char* const next = BehindLineEnd(end);
    if (next >= p_last)
      return p_last;
    end = FindLineEnd(next, p_last);
    if (end == next)
      break;
  }
  return std::min(BehindLineEnd(end), p_last);
}

} // namespace

ObjSceneBlock::ObjSceneBlock()
    : _positions(new float[3 * MostStatements])
    , _normals(new float[3 * MostStatements])
    , _texCoords(new float[2 * MostStatements])
    , _ownIndices(new std::uint32_t[4 * MostStatements]) {}

const char* ObjSceneBlock::Scan(const char* p_first, const char* p_last) {
  first = p_first;
  runs.clear();
  cornerEnds.clear();
  corners.clear();
  _position = _positions.get();
  _normal = _normals.get();
  _texCoord = _texCoords.get();
  _ownIndex = _ownIndices.get();
  const char* const end = std::size_t(p_last - p_first) > BlockBytes ? p_first + BlockBytes : p_last;
  Run run;
  const char* line = p_first;
  while (line < end) {
    const char* next = ScanPlainVectors(line, end, p_last);
    if (next == nullptr)
      next = ScanStatement(line, p_last);
    if (next == nullptr) {
      _statement = {};
      _statement.count = 1;
      next = BehindStatement(line, p_last);
    }
    if (_statement.kind != run.kind || _statement.hasTexCoords != run.hasTexCoords ||
        _statement.hasNormals != run.hasNormals) {
      if (run.count != 0)
        runs.push_back(run);
      run = _statement;
      run.count = 0;
    }
    run.largest = std::max(run.largest, _statement.largest);
    run.count += _statement.count;
    run.bytes += std::size_t(next - line);
    line = next;
  }
  if (run.count != 0)
    runs.push_back(run);
  return line;
}

/// Positions or normals in a row, the first of which begins at p_line, others in front of p_end: three numbers behind
/// one blank each. Returns the start of the first other line; null where there is none.
const char* ObjSceneBlock::ScanPlainVectors(const char* p_line, const char* p_end, const char* p_last) {
  const bool isNormal = p_line[0] == 'v' && p_line[1] == 'n';
  const std::size_t keyword = isNormal ? 2 : 1;
  float*& floats = isNormal ? _normal : _position;
  float* at = floats;
  const char* line = p_line;
  while (line < p_end && line[0] == 'v' && (!isNormal || line[1] == 'n')) {
    double numbers[3];
    const char* const end = ScanPlainVector(line + keyword, p_last, numbers);
    if (end == nullptr)
      break;
    for (const double number : numbers)
      *at++ = static_cast<float>(number);
    line = BehindLineEnd(end);
  }
  if (line == p_line)
    return nullptr;
  _statement = {};
  _statement.kind = isNormal ? Run::Normals : Run::Positions;
  _statement.count = std::size_t(at - floats) / 3;
  floats = at;
  return line;
}

/// The start of the next line; null, without any effect, for a statement of another kind or one that is wrong.
const char* ObjSceneBlock::ScanStatement(const char* p_line, const char* p_last) {
  p_line = SkipBlanks(p_line);
  if (IsLineEnd(*p_line))
    return nullptr;
  const bool alone = Scan::IsBlank(p_line[1]); // a keyword of one character
  if (*p_line == 'f' && alone) {
    const char* const next = _statement.kind != Run::Faces ? ScanOwnFace(p_line + 1, p_last) : nullptr;
    return next != nullptr ? next : ScanFace(p_line + 1, p_last);
  }
  if (*p_line != 'v' || (!alone && !Scan::IsBlank(p_line[2])))
    return nullptr;
  _statement = {};
  _statement.count = 1;
  if (alone) {
    _statement.kind = Run::Positions;
    return ScanVector<3>(p_line + 1, p_last, 5, _position);
  }
  if (p_line[1] == 'n') {
    _statement.kind = Run::Normals;
    return ScanVector<3>(p_line + 2, p_last, 8, _normal);
  }
  _statement.kind = Run::TexCoords;
  return p_line[1] == 't' ? ScanVector<2>(p_line + 2, p_last, 8, _texCoord) : nullptr;
}

/// Keeps the first numbers of up to `p_most`.
template <std::size_t Count>
const char* ObjSceneBlock::ScanVector(const char* p_at, const char* p_last, int p_most, float*& p_end) {
  double numbers[8];
  int count = 0;
  const char* const end = ScanNumbers(p_at, p_last, numbers, count);
  const char* const next = SkipRest(end, p_last);
  if (next == nullptr || count < int(Count) || count > p_most)
    return nullptr;
  for (std::size_t i = 0; i < Count; ++i)
    p_end[i] = static_cast<float>(numbers[i]);
  p_end += Count;
  return next;
}

/// Triangles and quads of own corners as most files have them: one blank between corners, and nothing behind.
const char* ObjSceneBlock::ScanOwnFace(const char* p_at, const char* p_last) {
  std::size_t count = 0;
  bool hasTexCoords = false;
  bool hasNormals = false;
  std::uint32_t largest = 0;
  for (; *p_at == ' '; ++count) {
    int number = 0;
    const char* const digits = p_at + 1;
    p_at = Scan::ShortInt(digits, p_last, number);
    if (p_at == nullptr || number == 0 || count == 4)
      return nullptr;
    const auto length = std::size_t(p_at - digits);
    const auto skipSame = [&](std::size_t p_slashes) {
      const bool same = Scan::SameDigits(digits, length, p_at + p_slashes);
      p_at += same ? p_slashes + length : 0;
      return same;
    };
    const bool texCoord = *p_at == '/' && skipSame(1);
    const bool normal = *p_at == '/' && (texCoord ? skipSame(1) : p_at[1] == '/' && skipSame(2));
    if (count == 0) {
      hasTexCoords = texCoord;
      hasNormals = normal;
    }
    if (texCoord != hasTexCoords || normal != hasNormals || !Scan::IsBlank(*p_at))
      return nullptr;
    _ownIndex[count] = static_cast<std::uint32_t>(number) - 1u;
    largest = std::max(largest, _ownIndex[count]);
  }
  if (count < 3 || !IsLineEnd(*p_at))
    return nullptr;
  _statement.kind = count == 3 ? Run::OwnTriangles : Run::OwnQuads;
  _statement.count = 1;
  _statement.hasTexCoords = hasTexCoords;
  _statement.hasNormals = hasNormals;
  _statement.largest = largest;
  _ownIndex += count;
  return BehindLineEnd(p_at);
}

const char* ObjSceneBlock::ScanFace(const char* p_at, const char* p_last) {
  ObjCorner scanned[MostCorners];
  std::size_t count = 0;
  for (;; ++count) {
    if (*p_at != ' ' || p_at[1] < '0' || p_at[1] > '9') // not one blank and a number, which are most common
      p_at = SkipBlanks(p_at);
    else
      ++p_at;
    if (IsLineEnd(*p_at) || *p_at == '#')
      break;
    if (count == MostCorners)
      return nullptr;
    p_at = ScanCorner(p_at, p_last, scanned[count]);
    if (p_at == nullptr || !Scan::IsBlank(*p_at))
      return nullptr;
  }
  const char* const next = SkipRest(p_at, p_last);
  if (next == nullptr || count < 3)
    return nullptr;
  AddFace(scanned, count);
  return next;
}

void ObjSceneBlock::AddFace(const ObjCorner* p_first, std::size_t p_count) {
  _statement = {};
  _statement.count = 1;
  _statement.hasTexCoords = p_first[0].texCoord != 0;
  _statement.hasNormals = p_first[0].normal != 0;
  bool isOwn = p_count <= 4;
  for (std::size_t i = 0; i < p_count && isOwn; ++i) {
    const int position = p_first[i].position;
    isOwn = position > 0 && p_first[i].texCoord == (_statement.hasTexCoords ? position : 0) &&
            p_first[i].normal == (_statement.hasNormals ? position : 0);
  }
  if (!isOwn) {
    _statement = {};
    _statement.count = 1;
    _statement.kind = Run::Faces;
    corners.insert(corners.end(), p_first, p_first + p_count);
    cornerEnds.push_back(corners.size());
    return;
  }
  _statement.kind = p_count == 3 ? Run::OwnTriangles : Run::OwnQuads;
  for (std::size_t i = 0; i < p_count; ++i) {
    const auto index = static_cast<std::uint32_t>(p_first[i].position) - 1u;
    *_ownIndex++ = index;
    _statement.largest = std::max(_statement.largest, index);
  }
}

} // namespace Vek::Chart::Library::Private
