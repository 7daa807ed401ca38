#pragma once

#include "library/ObjScene.h"
#include "library/private/io/ObjSceneBlock.h"
#include "library/private/memory/ChunkedArray.h"
#include "library/private/mesh/CornerVertices.h"
#include "platform/types/Vector.h"
#include "platform/utility/Threads.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Collects what was left out: the first hundred messages, and the number of the others.
class ObjWarnings {
public:
  explicit ObjWarnings(std::vector<std::string>& p_texts)
      : _texts(p_texts) {}
  void Add(const std::string& p_path, std::uint64_t p_line, const std::string& p_text);
  void Finish();

private:
  std::vector<std::string>& _texts;
  std::size_t _more = 0;
};

/// Reads the text of an OBJ file into a scene; see ReadObjScene for the format and its errors.
class ObjSceneReader {
public:
  /// The path must outlive the reader. `p_bytes` of the file are expected, 0 if unknown; any number is right.
  explicit ObjSceneReader(const std::string& p_path, std::uint64_t p_bytes = 0);

  /// Reads the next lines: [p_first, p_last) ends in LF or CR, and no statement goes on behind it.
  /// Scan::DigitsSlack characters behind it are readable.
  void ReadBlock(const char* p_first, const char* p_last);
  /// Likewise, of a block that was scanned.
  void AddBlock(const ObjSceneBlock& p_block);
  /// The scene, after the last line. The reader is used up.
  ObjScene Finish(Utility::Threads p_threads);

  std::uint64_t Line() const { return _line; } ///< the number of lines read

private:
  using Vector = Types::Vector3_Base<double>;
  struct Keyword;
  static const Keyword Keywords[];

  void ReadLines(const char* p_first, const char* p_last);
  // Each reads a statement from behind its keyword and returns the start of the next line; null, without any effect but
  // a note of the fault, where it cannot.
  const char* ReadStatement(const char* p_line, const char* p_last);
  const char* ReadVector(const char* p_at, const char* p_last);
  const char* ReadPosition(const char* p_at, const char* p_last);
  const char* ReadNormal(const char* p_at, const char* p_last);
  const char* ReadTexCoord(const char* p_at, const char* p_last);
  const char* ReadFace(const char* p_at, const char* p_last);
  const char* ReadPolyline(const char* p_at, const char* p_last);
  const char* ReadPoints(const char* p_at, const char* p_last);
  const char* ReadCorners(const char* p_at, const char* p_last);
  const char* Fault(const char* p_expected, const char* p_at);

  // The general way: continued lines, and one function for each other keyword.
  const char* ReadOtherLine(const char* p_line, const char* p_last);
  void ReadOther(std::string_view p_line);
  void SetObject(std::string_view p_name);
  void SetGroup(std::string_view p_name);
  void SetMaterial(std::string_view p_name);
  void SetSmoothing(std::string_view p_name);
  void ReadMaterials(std::string_view p_names);
  void Ignore(std::string_view) {}
  void Refuse(std::string_view p_rest);
  std::string GroupName(std::string_view p_name);

  /// What the corners of faces name beside positions: nothing or the texture coordinates of the position's number, and
  /// the normal of that number (OwnNormal) or one of a smoothing group.
  struct OwnCorners {
    bool hasTexCoords = false;
    std::uint32_t normal = CornerVertices::None;
  };
  /// As long as all corners of faces are of one kind, their vertices are the positions, and no table is needed.
  bool StayOwn(const OwnCorners& p_corners);
  bool StayOwn(std::uint32_t p_position, const CornerVertices::Attributes& p_attributes);
  void EndOwn();
  void AddOwnFaces(const ObjSceneBlock::Run& p_run, const std::uint32_t* p_indices);
  void AddOwnQuads(const std::uint32_t* p_indices, std::size_t p_count);
  void SplitQuads(Utility::Threads p_threads);

  void GatherArrays();
  void AddFace();
  void AddTriangle(std::uint32_t p_a, std::uint32_t p_b, std::uint32_t p_c);
  void AddColor();
  /// The zero-based index of an element by its number in the file.
  std::uint32_t Resolved(int p_number, std::size_t p_count, const char* p_what) const {
    const std::int64_t index = p_number > 0 ? std::int64_t(p_number) - 1 : std::int64_t(p_count) + p_number;
    if (p_number == 0 || std::uint64_t(index) >= p_count)
      RefuseIndex(p_number, p_count, p_what);
    return static_cast<std::uint32_t>(index);
  }
  [[noreturn]] void RefuseIndex(int p_number, std::size_t p_count, const char* p_what) const;
  std::uint32_t NormalKey(const ObjCorner& p_corner, std::uint32_t& p_faceNormal);
  std::uint32_t AddFaceNormal();
  void BeginGroup(ObjScene::Primitive p_primitive) {
    if (_groupChanged || _scene.groups.empty() || _scene.groups.back().primitive != p_primitive)
      ChangeGroup(p_primitive);
  }
  void ChangeGroup(ObjScene::Primitive p_primitive);
  Vector Position(std::uint32_t p_index) const;
  void CheckSize() const;

  void FinishArrays(Utility::Threads p_threads);
  void FinishOwn(Utility::Threads p_threads);
  std::vector<unsigned char> UsedPositions(Utility::Threads p_threads) const;
  void FinishTexCoords();
  bool IsNormalOfEachVertex() const;
  void FinishNormals(Utility::Threads p_threads);
  std::vector<float> OwnSmoothNormals(Utility::Threads p_threads) const;
  std::vector<float> SmoothNormals(Utility::Threads p_threads) const;
  void FinishColors();

  const std::string& _path;
  std::uint64_t _line = 0;
  std::uint64_t _bytes = 0;     // of the lines that were read
  std::uint64_t _nameBytes = 0; // of all groups
  const std::uint64_t _fileBytes;
  // Where the numbers of indices are looked at, to estimate that of the whole file.
  struct {
    int passed = 0;
    std::uint64_t next = 0;
    std::uint64_t bytes = 0;
    std::size_t indices = 0;
  } _marks;
  ObjScene _scene;
  ObjWarnings _warnings;

  ObjSceneBlock _block;
  CornerVertices _vertices;
  ChunkedArray<std::uint32_t> _indices; // of the scene
  ChunkedArray<float> _positions;       // of the file, as are the next three
  ChunkedArray<float> _texCoords;
  ChunkedArray<float> _normals;
  ChunkedArray<float> _colors; // of the first positions: white follows
  std::vector<float> _faceNormals;
  struct Quads {
    std::size_t first; // index
    std::size_t count;
  };
  std::vector<Quads> _quads; // that are not split yet: six indices each
  OwnCorners _own;           // of all faces so far
  bool _isOwn = true;
  bool _hasTexCoords = false; // of corners
  bool _hasTriangles = false;
  bool _hasSmooth = false; // corners whose normals are to be made

  double _numbers[8];
  int _numberCount = 0;
  std::vector<ObjCorner> _corners; // of the current statement, as are the next four
  std::vector<std::uint32_t> _cornerPositions;
  std::vector<CornerVertices::Attributes> _cornerAttributes;
  std::vector<std::uint32_t> _cornerVertices;
  std::vector<Vector> _outline;
  std::string _expected; // the fault of the current statement
  const char* _foundAt = nullptr;

  ObjScene::Group _group; // of what follows
  bool _groupChanged = true;
  std::uint32_t _smoothing; // the key of normals
  std::unordered_map<std::string, std::uint32_t> _smoothings;
  std::unordered_map<std::string, int> _materialNumbers;
  std::map<int, std::uint64_t> _undefined; // materials without definition so far, with the lines that use them first
  std::set<std::string> _read;             // material files, and unknown keywords
};

} // namespace Vek::Chart::Library::Private
