#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
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
  /// Statements of one kind in a row, each in a line of its own but for others, which may go on.
  struct Run {
    enum Kind : std::uint8_t {
      Positions,
      Normals,
      TexCoords,
      OwnTriangles, ///< the corners have, if any, the texture coordinates and the normals of their positions' numbers
      OwnQuads,     ///< likewise
      Faces,        ///< others
      Other
    };
    Kind kind = Other;
    bool hasTexCoords = false; // of own faces, whose corners are all alike
    bool hasNormals = false;
    std::uint32_t largest = 0; ///< index of own faces
    std::size_t count = 0;
    std::size_t bytes = 0;
  };

  ObjSceneBlock();

  /// Scans statements of [p_first, p_last), behind the end of a line: those that begin in the first BlockBytes. Returns
  /// the end of the last one. The statements must outlive the block's lists; Scan::DigitsSlack characters behind p_last
  /// are readable.
  const char* Scan(const char* p_first, const char* p_last);

  const char* first = nullptr; ///< of all statements
  std::vector<Run> runs;
  std::vector<ObjCorner> corners;      ///< of all faces that are not own ones
  std::vector<std::size_t> cornerEnds; ///< behind the corners of each

  // Behind one another over all runs, in memory that is not initialised.
  const float* Positions() const { return _positions.get(); }           ///< three numbers each
  const float* Normals() const { return _normals.get(); }               ///< three numbers each
  const float* TexCoords() const { return _texCoords.get(); }           ///< two numbers each
  const std::uint32_t* OwnIndices() const { return _ownIndices.get(); } ///< of own faces, zero-based

private:
  const char* ScanPlainVectors(const char* p_line, const char* p_end, const char* p_last);
  const char* ScanStatement(const char* p_line, const char* p_last);
  const char* ScanOwnFace(const char* p_at, const char* p_last);
  const char* ScanFace(const char* p_at, const char* p_last);
  void AddFace(const ObjCorner* p_first, std::size_t p_count);
  template <std::size_t Count>
  const char* ScanVector(const char* p_at, const char* p_last, int p_most, float*& p_end);

  Run _statement; ///< the last ones that were scanned

  std::unique_ptr<float[]> _positions;
  std::unique_ptr<float[]> _normals;
  std::unique_ptr<float[]> _texCoords;
  std::unique_ptr<std::uint32_t[]> _ownIndices;
  // The ends of what is in use.
  float* _position = nullptr;
  float* _normal = nullptr;
  float* _texCoord = nullptr;
  std::uint32_t* _ownIndex = nullptr;
};

} // namespace Vek::Chart::Library::Private
