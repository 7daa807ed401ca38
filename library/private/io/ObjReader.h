#pragma once

#include "library/ObjModel.h"
#include "library/private/memory/ChunkedArray.h"

#include <string_view>

namespace Vek::Chart::Library::Private {

/// Builds a model from the text of an OBJ file; see LoadPolygonObjFile for what is read and reported.
class ObjReader {
public:
  ObjReader();

  /// Reads the next lines: [p_first, p_last) ends in a line feed. About p_bytesLeft bytes follow later, 0 where that is
  /// not known; nothing but the choice of how much memory to take in advance depends on it.
  void ReadBlock(const char* p_first, const char* p_last, std::uint64_t p_bytesLeft);
  /// The model, after the last line. The reader is used up.
  boost::shared_ptr<ObjModel> Finish();

private:
  using Vector = Types::Vector3_Base<double>;
  using Attribute = ObjModel::VertexArray::value_type;
  struct Keyword;
  static const Keyword Keywords[];

  // Plain lines, the bulk of any file, in one pass. Each returns the start of the next line, or null when the line must
  // be read in the general way; then it has done nothing yet.
  const char* ReadPlainLine(const char* p_first, const char* p_last);
  const char* ReadPlainTriangle(const char* p_first, const char* p_last);

  // The general way: a trimmed line, and one function for each keyword.
  void ReadLine(std::string_view p_line);
  void ReadPosition(std::string_view p_line);
  void ReadNormal(std::string_view p_line);
  void ReadTriangle(std::string_view p_line);
  void ReadLineSegment(std::string_view p_line);
  void ReadGroup(std::string_view p_line);

  void AddPosition(const Vector& p_position);
  void AddNormal(const Vector& p_normal);
  void DecidePrimitiveType(Ogl::VertexBuffer::PrimitiveType p_type);
  void AddCorner(int p_vertexNumber);
  void AddCornerNormal(int p_normalNumber);
  bool GiveNormal(std::uint32_t p_vertexIndex, std::uint32_t p_normalIndex);
  void SizeNormals();
  void SettlePendingNormals();
  void ReserveIndices(std::size_t p_gained, double p_blocksLeft);
  void FinishGroup();

  boost::shared_ptr<ObjModel> _model;
  ChunkedArray<Attribute> _vertices;
  ChunkedArray<Attribute> _sourceNormals;
  boost::shared_ptr<ObjModel::VertexArray> _normals;
  std::vector<bool> _hasNormal; // a bit for each element of _normals
  Types::BoundingBox_Base<double> _bounds;
  Ogl::VertexBuffer::PrimitiveType _primitiveType = Ogl::VertexBuffer::Undecided;

  boost::shared_ptr<ObjModel::ObjGroup> _group;
  std::vector<std::uint32_t> _indices;
  // The group's k-th normal index belongs to its k-th vertex index. As long as both exist when they are read, the
  // vertex takes its normal at once; from the first pair on that is not so, normal indices wait for the end of the
  // group.
  std::size_t _settledCorners = 0;
  std::vector<std::uint32_t> _pendingNormals;
};

} // namespace Vek::Chart::Library::Private
