#pragma once

#include "library/private/io/NumberText.h"
#include "platform/types/Geometry.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Plain lines of an OBJ file, the bulk of any: positions, normals and triangles, each part behind one blank. They read
/// the same wherever they stand, so several threads may scan them.
namespace ObjPlain {

using Vector = Types::Vector3_Base<double>;

/// The rest of a line that has all the parts it needs.
struct LineRest {
  const char* next = nullptr; ///< the start of the next line; null when the line must be read in the general way
  bool hasMoreParts = false;
};

/// Zero-based, modulo 2^32.
struct Corner {
  static constexpr std::uint32_t NoNormal = 0xFFFFFFFE; // no number of a short text minus 1

  std::uint32_t vertex = 0;
  std::uint32_t normal = NoNormal;
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

/// An index from a number from 1.
inline const char* ScanIndex(const char* p_first, const char* p_last, std::uint32_t& p_index) {
  int number = 0;
  const char* const end = Scan::ShortInt(p_first, p_last, number);
  p_index = static_cast<std::uint32_t>(number) - 1u;
  return end;
}

inline const char* ScanCorner(const char* p_first, const char* p_last, Corner& p_corner) {
  const char* const vertex = p_first;
  p_first = ScanIndex(p_first, p_last, p_corner.vertex);
  if (p_first == nullptr || *p_first != '/')
    return p_first;
  const auto length = std::size_t(p_first - vertex);
  if (*++p_first != '/') {
    int textureNumber = 0;
    p_first = Scan::ShortInt(p_first, p_last, textureNumber);
    if (p_first == nullptr || *p_first != '/')
      return p_first;
  }
  ++p_first;
  if (!Scan::SameDigits(vertex, length, p_first))
    return ScanIndex(p_first, p_last, p_corner.normal);
  p_corner.normal = p_corner.vertex;
  return p_first + length;
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
  /// Lines of one kind in a row.
  struct Run {
    enum Kind : std::uint8_t {
      Positions,
      Normals,
      OwnNormals,    ///< triangles: each corner has the normal of its vertex's index
      Triangles,     ///< others
      LongTriangles, ///< with more parts, which are reported
      Other
    };
    Kind kind;
    std::size_t count;
    std::uint32_t largest; ///< vertex index of triangles
  };

  Block();

  /// Scans lines of [p_first, p_last), behind a line feed: all that fit, those of BlockBytes in any case. Returns the
  /// end of the last one. The lines must outlive the block's lists; Scan::DigitsSlack characters behind p_last are
  /// readable.
  const char* Scan(const char* p_first, const char* p_last);

  std::vector<Run> runs;
  std::vector<Types::BoundingBox_Base<double>> bounds; ///< of each run of positions, of the numbers as read
  std::vector<std::string_view> longLines;             ///< of LongTriangles
  std::vector<const char*> others; ///< the start of each run of lines that are read in the general way

  // Behind one another over all runs, in memory that is not initialised.
  const float* Positions() const { return _positions.get(); }
  const float* Normals() const { return _normals.get(); }
  const std::uint32_t* VertexIndices() const { return _vertices.get(); }      ///< three a triangle of any kind
  const std::uint32_t* NormalIndices() const { return _normalIndices.get(); } ///< three a triangle, but for OwnNormals

private:
  const char* ScanPositions(const char* p_line, const char* p_last);
  const char* ScanNormals(const char* p_line, const char* p_last);
  const char* ScanTriangles(const char* p_line, const char* p_last);
  void Add(const Run& p_run);

  std::unique_ptr<float[]> _positions;
  std::unique_ptr<float[]> _normals;
  std::unique_ptr<std::uint32_t[]> _vertices;
  std::unique_ptr<std::uint32_t[]> _normalIndices;
  std::size_t _plainLines = 0;
  // The ends of what is in use.
  float* _position = nullptr;
  float* _normal = nullptr;
  std::uint32_t* _vertex = nullptr;
  std::uint32_t* _normalIndex = nullptr;
};

} // namespace ObjPlain

} // namespace Vek::Chart::Library::Private
