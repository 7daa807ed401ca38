#include "library/private/io/ObjBlock.h"

#include <cstring>

namespace Vek::Chart::Library::Private::ObjPlain {

void Block::Count(Kind p_kind) {
  if (runs.empty() || runs.back().kind != p_kind) {
    runs.push_back({p_kind, 0});
    if (p_kind == Positions)
      bounds.emplace_back();
  }
  ++runs.back().count;
}

/// The start of the next line; null for one that is not plain or has too many parts.
const char* Block::ScanLine(const char* p_line, const char* p_last) {
  if (p_line[0] == 'f' && p_line[1] == ' ') {
    Corner scanned[3];
    const LineRest rest = ScanTriangle(p_line + 1, p_last, scanned);
    if (rest.next == nullptr || rest.hasMoreParts)
      return nullptr;
    corners.insert(corners.end(), scanned, scanned + 3);
    Count(Triangles);
    return rest.next;
  }
  if (p_line[0] != 'v')
    return nullptr;
  const bool isNormal = p_line[1] == 'n';
  const char* const blank = p_line + (isNormal ? 2 : 1);
  Vector vector;
  const LineRest rest = *blank == ' ' ? ScanVector(blank + 1, p_last, vector) : LineRest();
  if (rest.next == nullptr || rest.hasMoreParts)
    return nullptr;
  Count(isNormal ? Normals : Positions);
  (isNormal ? normals : positions)
      .emplace_back(
          Ogl::Vec3<float>{static_cast<float>(vector.x), static_cast<float>(vector.y), static_cast<float>(vector.z)});
  if (!isNormal)
    bounds.back() += vector;
  return rest.next;
}

void Block::Scan(const char* p_first, const char* p_last) {
  runs.clear();
  positions.clear();
  bounds.clear();
  normals.clear();
  corners.clear();
  others.clear();
  for (const char* line = p_first; line != p_last;) {
    const char* next = ScanLine(line, p_last);
    if (next == nullptr) {
      others.push_back(line);
      Count(Other);
      next = static_cast<const char*>(std::memchr(line, '\n', std::size_t(p_last - line))) + 1;
    }
    line = next;
  }
}

} // namespace Vek::Chart::Library::Private::ObjPlain
