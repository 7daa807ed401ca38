#include "library/private/io/ObjSceneBlock.h"

#include "library/private/io/ObjLine.h"

namespace Vek::Chart::Library::Private {

using namespace ObjLine;

namespace {

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

void ObjSceneBlock::Scan(const char* p_first, const char* p_last) {
  first = p_first;
  runs.clear();
  cornerEnds.clear();
  corners.clear();
  for (std::vector<float>* array : {&positions, &normals, &texCoords})
    array->clear();
  for (const char* line = p_first; line < p_last;) {
    const char* next = ScanStatement(line, p_last);
    if (next == nullptr) {
      _kind = Other;
      next = BehindStatement(line, p_last);
    }
    if (runs.empty() || runs.back().kind != _kind || _kind == Other)
      runs.push_back({_kind, 0, 0});
    ++runs.back().count;
    runs.back().bytes += std::size_t(next - line);
    line = next;
  }
}

/// The start of the next line; null, without any effect, for a statement of another kind or one that is wrong.
const char* ObjSceneBlock::ScanStatement(const char* p_line, const char* p_last) {
  p_line = SkipBlanks(p_line);
  if (IsLineEnd(*p_line))
    return nullptr;
  const bool alone = Scan::IsBlank(p_line[1]); // a keyword of one character
  if (*p_line == 'f' && alone)
    return ScanFace(p_line + 1, p_last);
  if (*p_line != 'v' || (!alone && !Scan::IsBlank(p_line[2])))
    return nullptr;
  if (alone) {
    _kind = Positions;
    return ScanVector(p_line + 1, p_last, 3, 5, positions);
  }
  if (p_line[1] == 'n') {
    _kind = Normals;
    return ScanVector(p_line + 2, p_last, 3, 8, normals);
  }
  _kind = TexCoords;
  return p_line[1] == 't' ? ScanVector(p_line + 2, p_last, 2, 8, texCoords) : nullptr;
}

/// Keeps three numbers, of texture coordinates two.
const char* ObjSceneBlock::ScanVector(const char* p_at, const char* p_last, std::size_t p_least, std::size_t p_most,
                                      std::vector<float>& p_array) {
  double numbers[8];
  int count = 0;
  const char* const end = ScanNumbers(p_at, p_last, numbers, count);
  const char* const next = SkipRest(end, p_last);
  if (next == nullptr || std::size_t(count) < p_least || std::size_t(count) > p_most)
    return nullptr;
  float floats[3];
  for (std::size_t i = 0; i < p_least; ++i)
    floats[i] = static_cast<float>(numbers[i]);
  p_array.insert(p_array.end(), floats, floats + p_least);
  return next;
}

const char* ObjSceneBlock::ScanFace(const char* p_at, const char* p_last) {
  const std::size_t before = corners.size();
  for (;;) {
    if (*p_at != ' ' || p_at[1] < '0' || p_at[1] > '9') // not one blank and a number, which are most common
      p_at = SkipBlanks(p_at);
    else
      ++p_at;
    if (IsLineEnd(*p_at) || *p_at == '#')
      break;
    ObjCorner corner;
    const char* const end = ScanCorner(p_at, p_last, corner);
    if (end == nullptr || !Scan::IsBlank(*end)) {
      corners.resize(before);
      return nullptr;
    }
    corners.push_back(corner);
    p_at = end;
  }
  const char* const next = SkipRest(p_at, p_last);
  if (next == nullptr || corners.size() < before + 3) {
    corners.resize(before);
    return nullptr;
  }
  cornerEnds.push_back(corners.size());
  _kind = Faces;
  return next;
}

} // namespace Vek::Chart::Library::Private
