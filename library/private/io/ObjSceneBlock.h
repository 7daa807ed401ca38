#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Library::Private {

/// A corner of a face as in the file: numbers from 1, or negative ones; 0 where it has none.
struct ObjCorner {
  int position = 0;
  int texCoord = 0;
  int normal = 0;
};

/// Statements of an OBJ file, scanned without those above them: positions without colours, normals, texture coordinates
/// and faces. Others are found only.
class ObjSceneBlock {
public:
  enum Kind : std::uint8_t { Positions, Normals, TexCoords, Faces, Other };
  /// Statements of one kind in a row, each in a line of its own but for others, which may go on.
  struct Run {
    Kind kind;
    std::size_t count;
    std::size_t bytes;
  };

  /// The statements from `p_first` up to `p_last`, behind the end of a line. They must outlive the block's lists.
  void Scan(const char* p_first, const char* p_last);

  const char* first = nullptr; ///< of all statements
  std::vector<Run> runs;
  std::vector<float> positions;
  std::vector<float> normals;
  std::vector<float> texCoords;
  std::vector<ObjCorner> corners;      ///< of all faces
  std::vector<std::size_t> cornerEnds; ///< behind the corners of each face

private:
  const char* ScanStatement(const char* p_line, const char* p_last);
  const char* ScanFace(const char* p_at, const char* p_last);
  const char* ScanVector(const char* p_at, const char* p_last, std::size_t p_least, std::size_t p_most,
                         std::vector<float>& p_array);

  Kind _kind = Other; ///< of the last statement
};

} // namespace Vek::Chart::Library::Private
