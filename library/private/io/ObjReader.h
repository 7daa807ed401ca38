#pragma once

#include "library/private/io/ObjBlock.h"
#include "library/private/io/ObjNormals.h"
#include "library/private/memory/ChunkedArray.h"
#include "platform/debug/Logger.h"
#include "platform/ogl/Vec.h"
#include "platform/ogl/VertexBuffer.h"
#include "platform/types/Geometry.h"
#include "platform/utility/Threads.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Reads the text of an OBJ file; see LoadPolygonObjFile for the format and its reports.
class ObjReader {
public:
  using Attribute = Ogl::Attribute<Ogl::Vec3<float>>;
  struct Group {
    std::string name;
    std::vector<std::uint32_t> indices;
  };
  /// The arrays of a model; see ObjModel.
  struct Result {
    Ogl::VertexBuffer::PrimitiveType primitiveType = Ogl::VertexBuffer::Undecided;
    std::vector<Group> groups = std::vector<Group>(1); ///< the first one is the default group
    std::vector<Attribute> vertices;
    std::vector<Attribute> normals;
    Types::BoundingBox_Base<double> bounds;
  };

  /// Reports show the path, whose characters must outlive the reader.
  explicit ObjReader(std::string_view p_path);

  /// Reads the next lines: [p_first, p_last) ends in a line feed. Scan::DigitsSlack characters behind it are readable.
  void ReadBlock(const char* p_first, const char* p_last);
  /// Likewise, of a block that was scanned, whose characters end at `p_last`.
  void AddBlock(const ObjPlain::Block& p_block, const char* p_last);
  /// The arrays, after the last line. The reader is used up.
  Result Finish(Utility::Threads p_threads);

  /// The place of the line that was read last, for reports.
  vekdebug::detail Where(std::string_view p_found = {}) const { return {_path, _line, p_found}; }

private:
  using Vector = Types::Vector3_Base<double>;
  class Parts;
  struct Keyword;
  static const Keyword Keywords[];

  /// Reads lines that a block leaves, so many from the first one on.
  void ReadLines(const char* p_line, std::size_t p_count, const char* p_last);

  // The general way: a trimmed line, and one function for each keyword.
  void ReadLine(std::string_view p_line);
  void ReadPosition(std::string_view p_line);
  void ReadNormal(std::string_view p_line);
  void ReadTriangle(std::string_view p_line);
  void ReadLineSegment(std::string_view p_line);
  void ReadGroup(std::string_view p_line);

  Vector VectorFrom(const Parts& p_parts) const;
  void ReportSize(const char* p_expression, std::string_view p_line) const;
  void ReportVertexIndex(std::uint32_t p_index) const;
  void ReportNormalIndex(std::uint32_t p_index) const;

  void AddPosition(const Vector& p_position);
  void AddBounds(const Types::BoundingBox_Base<double>& p_bounds);
  void AddOwnNormals(const std::uint32_t* p_vertices, const ObjPlain::Block::Run& p_run);
  void AddTriangle(const std::uint32_t* p_vertices, const std::uint32_t* p_normals);
  void AddNormal(const Vector& p_normal);
  void DecidePrimitiveType(Ogl::VertexBuffer::PrimitiveType p_type);
  void AddCorner(std::uint32_t p_vertex);
  void AddCornerNormal(std::uint32_t p_normal);
  bool GiveNormal(std::uint32_t p_vertexIndex, std::uint32_t p_normalIndex);
  void SettlePendingNormals();
  void FinishGroup();

  std::string_view _path;
  std::uint64_t _line = 0; // from 1
  Result _result;
  ObjPlain::Block _block;
  ChunkedArray<Attribute> _vertices;
  ObjNormals _normals;

  ChunkedArray<std::uint32_t> _indices; // of the current group, the last one
  // The group's k-th normal index belongs to its k-th vertex index. A vertex takes its normal at once as long as both
  // exist. From the first pair of which one does not, normal indices wait for the end of the group.
  std::size_t _settledCorners = 0;
  std::vector<std::uint32_t> _pendingNormals;
};

} // namespace Vek::Chart::Library::Private
