#pragma once

#include "library/private/io/NumberText.h"
#include "platform/ogl/Vec.h"
#include "platform/types/Geometry.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Plain lines of an OBJ file, the bulk of any: positions, normals and triangles, each part behind one blank. They read
/// the same wherever they stand, so several threads may scan them.
namespace ObjPlain {

using Vector = Types::Vector3_Base<double>;
using Attribute = Ogl::Attribute<Ogl::Vec3<float>>;

/// The rest of a line that has all the parts it needs.
struct LineRest {
  const char* next = nullptr; ///< the start of the next line; null when the line must be read in the general way
  bool hasMoreParts = false;
};

struct Corner {
  int vertexNumber = 0;
  int normalNumber = 0;
  bool hasNormal = false;
};

// Scanners: [p_first, p_last) ends in a line feed. Every line does, which no number contains, so the character behind a
// number can always be read.

inline LineRest ScanLineRest(const char* p_first, const char* p_last) {
  if (*p_first == '\n')
    return {p_first + 1};
  if (p_first[0] == '\r' && p_first[1] == '\n')
    return {p_first + 2};
  if (*p_first != ' ')
    return {};
  const auto* lineFeed = static_cast<const char*>(std::memchr(p_first, '\n', std::size_t(p_last - p_first)));
  const char* const end = lineFeed[-1] == '\r' ? lineFeed - 1 : lineFeed;
  return Scan::IsBlank(end[-1]) ? LineRest() : LineRest{lineFeed + 1, true}; // blanks at the end are no parts
}

inline const char* ScanCorner(const char* p_first, const char* p_last, Corner& p_corner) {
  p_first = Scan::ShortInt(p_first, p_last, p_corner.vertexNumber);
  if (p_first == nullptr || *p_first != '/')
    return p_first;
  if (*++p_first != '/') {
    int textureNumber = 0;
    p_first = Scan::ShortInt(p_first, p_last, textureNumber);
    if (p_first == nullptr || *p_first != '/')
      return p_first;
  }
  p_corner.hasNormal = true;
  return Scan::ShortInt(p_first + 1, p_last, p_corner.normalNumber);
}

/// The three numbers behind a keyword and a blank.
inline LineRest ScanVector(const char* p_first, const char* p_last, Vector& p_vector) {
  p_first = Scan::ShortDouble(p_first, p_last, p_vector.x);
  if (p_first == nullptr || *p_first != ' ')
    return {};
  p_first = Scan::ShortDouble(p_first + 1, p_last, p_vector.y);
  if (p_first == nullptr || *p_first != ' ')
    return {};
  p_first = Scan::ShortDouble(p_first + 1, p_last, p_vector.z);
  return p_first == nullptr ? LineRest() : ScanLineRest(p_first, p_last);
}

/// The three corners behind the keyword.
inline LineRest ScanTriangle(const char* p_first, const char* p_last, Corner (&p_corners)[3]) {
  for (Corner& corner : p_corners) {
    if (*p_first != ' ')
      return {};
    p_first = ScanCorner(p_first + 1, p_last, corner);
    if (p_first == nullptr)
      return {};
  }
  return ScanLineRest(p_first, p_last);
}

/// Lines of a file, scanned without those above them.
class Block {
public:
  enum Kind : std::uint8_t { Positions, Normals, Triangles, Other };
  /// Lines of one kind in a row.
  struct Run {
    Kind kind;
    std::size_t count;
  };

  /// The lines from `p_first` on up to `p_last`, behind a line feed. They must outlive the block's lists.
  void Scan(const char* p_first, const char* p_last);

  std::vector<Run> runs;
  std::vector<Attribute> positions;
  std::vector<Types::BoundingBox_Base<double>> bounds; ///< of each run of positions, of the numbers as read
  std::vector<Attribute> normals;
  std::vector<Corner> corners;     ///< three a triangle
  std::vector<const char*> others; ///< the starts of lines that are read in the general way

private:
  const char* ScanLine(const char* p_line, const char* p_last);
  void Count(Kind p_kind);
};

} // namespace ObjPlain

} // namespace Vek::Chart::Library::Private
