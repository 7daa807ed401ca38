#include "library/private/io/ObjReader.h"

#include "library/private/io/NumberText.h"
#include "platform/debug/Check.h"

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace Vek::Chart::Library::Private {

namespace {

namespace Signature {
constexpr const char* Load = "class boost::shared_ptr<class Vek::Chart::Library::ObjModel> __cdecl "
                             "Vek::Chart::Library::LoadPolygonObjFile(const class vekfile::filepath &)";
}

constexpr const char* FourParts = "parts.size() == 4";
constexpr const char* ThreeParts = "parts.size() == 3";

/// boost::bad_lexical_cast, with the place in the file behind its fixed message.
class BadNumber : public boost::bad_lexical_cast {
public:
  BadNumber(const boost::bad_lexical_cast& p_cause, const std::string& p_where)
      : boost::bad_lexical_cast(p_cause)
      , _message(std::string(p_cause.what()) + " (" + p_where + ")") {}
  const char* what() const noexcept override { return _message.what(); }

private:
  std::runtime_error _message; // copies of it never throw
};

/// A number of the line that p_where describes. Throws BadNumber.
template <class T>
T NumberFrom(T (*p_convert)(std::string_view), std::string_view p_text, const vekdebug::detail& p_where) {
  try {
    return p_convert(p_text);
  } catch (const boost::bad_lexical_cast& cause) {
    const char* const expected = std::is_integral_v<T> ? ", expected an integer" : ", expected a number";
    throw BadNumber(cause, vekdebug::detail_text(p_where) + expected);
  }
}

/// Zero-based, modulo 2^32, from a number from 1. Throws BadNumber.
std::uint32_t IndexFrom(std::string_view p_text, const vekdebug::detail& p_where) {
  return static_cast<std::uint32_t>(NumberFrom(IntFromText, p_text, p_where)) - 1u;
}

/// Without white space of the classic locale at both ends.
std::string_view Trimmed(std::string_view p_text) {
  constexpr std::string_view WhiteSpace = " \t\n\v\f\r";
  const std::size_t first = p_text.find_first_not_of(WhiteSpace);
  return first == std::string_view::npos ? std::string_view()
                                         : p_text.substr(first, p_text.find_last_not_of(WhiteSpace) + 1 - first);
}

/// The position of a corner: its first field. Splitting yields at least one, so "indexParts.size() >= 1" always holds.
std::string_view VertexField(std::string_view p_corner) {
  return p_corner.substr(0, p_corner.find('/'));
}

bool NamesNormal(std::string_view p_corner) {
  return std::count(p_corner.begin(), p_corner.end(), '/') >= 2;
}

/// The normal of a corner: its last field.
std::string_view NormalField(std::string_view p_corner) {
  return p_corner.substr(p_corner.rfind('/') + 1);
}

Ogl::Vec3<float> Narrowed(const Types::Vector3_Base<double>& p_vector) {
  return {static_cast<float>(p_vector.x), static_cast<float>(p_vector.y), static_cast<float>(p_vector.z)};
}

} // namespace

struct ObjReader::Keyword {
  std::string_view name;
  void (ObjReader::*read)(std::string_view p_line);
};

// All other keywords are ignored, and with them comments and empty lines.
const ObjReader::Keyword ObjReader::Keywords[] = {
    {"v", &ObjReader::ReadPosition},    {"vn", &ObjReader::ReadNormal}, {"f", &ObjReader::ReadTriangle},
    {"l", &ObjReader::ReadLineSegment}, {"g", &ObjReader::ReadGroup},
};

/// A line split at every blank. No keyword needs more than the first four parts; the others are only counted.
class ObjReader::Parts {
public:
  explicit Parts(std::string_view p_line)
      : _size(1 + std::size_t(std::count(p_line.begin(), p_line.end(), ' '))) {
    for (std::size_t i = 0; i < std::min(_size, _first.size()); ++i) {
      const std::size_t blank = p_line.find(' ');
      _first[i] = p_line.substr(0, blank);
      p_line = blank == std::string_view::npos ? std::string_view() : p_line.substr(blank + 1);
    }
  }
  std::size_t Size() const { return _size; }
  std::string_view operator[](std::size_t p_index) const { return _first[p_index]; }

private:
  std::size_t _size;
  std::array<std::string_view, 4> _first;
};

ObjReader::ObjReader(std::string_view p_path)
    : _path(p_path) {}

void ObjReader::ReadBlock(const char* p_first, const char* p_last) {
  for (const char* line = p_first; line != p_last;) {
    const char* const next = _block.Scan(line, p_last);
    AddBlock(_block, next);
    line = next;
  }
}

void ObjReader::ReadLines(const char* p_line, std::size_t p_count, const char* p_last) {
  for (std::size_t i = 0; i < p_count; ++i) {
    ++_line;
    const auto* const end = static_cast<const char*>(std::memchr(p_line, '\n', std::size_t(p_last - p_line)));
    ReadLine(Trimmed({p_line, std::size_t(end - p_line)}));
    p_line = end + 1;
  }
}

void ObjReader::AddBlock(const ObjPlain::Block& p_block, const char* p_last) {
  using Run = ObjPlain::Block::Run;
  const float* position = p_block.Positions();
  const float* normal = p_block.Normals();
  const std::uint32_t* vertices = p_block.VertexIndices();
  const std::uint32_t* normals = p_block.NormalIndices();
  auto bounds = p_block.bounds.begin();
  auto longLine = p_block.longLines.begin();
  auto other = p_block.others.begin();
  for (const Run& run : p_block.runs) {
    switch (run.kind) {
    case Run::Positions:
      _vertices.AppendBytes(position, run.count);
      position += 3 * run.count;
      AddBounds(*bounds++);
      _line += run.count;
      break;
    case Run::Normals:
      _normals.AppendBytes(normal, run.count);
      normal += 3 * run.count;
      _line += run.count;
      break;
    case Run::OwnNormals:
      AddOwnNormals(vertices, run);
      vertices += 3 * run.count;
      break;
    case Run::Triangles:
      for (std::size_t i = 0; i < run.count; ++i, vertices += 3, normals += 3) {
        ++_line;
        AddTriangle(vertices, normals);
      }
      break;
    case Run::LongTriangles:
      for (std::size_t i = 0; i < run.count; ++i, vertices += 3, normals += 3) {
        ++_line;
        DecidePrimitiveType(Ogl::VertexBuffer::Triangles);
        ReportSize(FourParts, *longLine++);
        AddTriangle(vertices, normals);
      }
      break;
    case Run::Other:
      ReadLines(*other++, run.count, p_last);
      break;
    }
  }
}

/// Nothing is to be decided corner by corner where all elements exist, as in most files.
void ObjReader::AddOwnNormals(const std::uint32_t* p_vertices, const ObjPlain::Block::Run& p_run) {
  if (_settledCorners != _indices.Size() || p_run.largest >= std::min(_vertices.Size(), _normals.Size())) {
    for (std::size_t i = 0; i < p_run.count; ++i) {
      ++_line;
      AddTriangle(p_vertices + 3 * i, p_vertices + 3 * i);
    }
    return;
  }
  DecidePrimitiveType(Ogl::VertexBuffer::Triangles);
  _indices.Append(p_vertices, 3 * p_run.count);
  _normals.GiveOwn(p_vertices, 3 * p_run.count, _vertices.Size());
  _settledCorners += 3 * p_run.count;
  _line += p_run.count;
}

/// As if the positions were added one after the other: a component is empty if all its numbers are NaN.
void ObjReader::AddBounds(const Types::BoundingBox_Base<double>& p_bounds) {
  const auto smaller = [](double p_a, double p_b) { return p_b < p_a ? p_b : p_a; };
  const auto larger = [](double p_a, double p_b) { return p_b > p_a ? p_b : p_a; };
  const Vector min = _result.bounds.Min(), max = _result.bounds.Max(), low = p_bounds.Min(), high = p_bounds.Max();
  _result.bounds = {{smaller(min.x, low.x), smaller(min.y, low.y), smaller(min.z, low.z)},
                    {larger(max.x, high.x), larger(max.y, high.y), larger(max.z, high.z)}};
}

/// Most triangles have normals, all of elements that exist.
void ObjReader::AddTriangle(const std::uint32_t* p_vertices, const std::uint32_t* p_normals) {
  const auto isPlain = [&](std::size_t p_i) {
    return p_vertices[p_i] < _vertices.Size() && p_normals[p_i] < _normals.Size();
  };
  DecidePrimitiveType(Ogl::VertexBuffer::Triangles);
  if (_settledCorners == _indices.Size() && isPlain(0) && isPlain(1) && isPlain(2)) {
    for (std::size_t i = 0; i < 3; ++i)
      _normals.Give(p_vertices[i], p_normals[i], _vertices.Size());
    _indices.Append(p_vertices, 3);
    _settledCorners += 3;
    return;
  }
  for (std::size_t i = 0; i < 3; ++i) {
    AddCorner(p_vertices[i]);
    if (p_normals[i] != ObjPlain::Corner::NoNormal)
      AddCornerNormal(p_normals[i]);
  }
}

void ObjReader::ReadLine(std::string_view p_line) {
  const std::string_view name = p_line.substr(0, p_line.find(' '));
  for (const Keyword& keyword : Keywords) {
    if (keyword.name == name)
      return (this->*keyword.read)(p_line);
  }
}

void ObjReader::ReadPosition(std::string_view p_line) {
  const Parts parts(p_line);
  if (parts.Size() != 4)
    ReportSize(FourParts, p_line);
  AddPosition(VectorFrom(parts));
}

void ObjReader::ReadNormal(std::string_view p_line) {
  const Parts parts(p_line);
  if (parts.Size() != 4)
    ReportSize(FourParts, p_line);
  AddNormal(VectorFrom(parts));
}

void ObjReader::ReadTriangle(std::string_view p_line) {
  DecidePrimitiveType(Ogl::VertexBuffer::Triangles);
  const Parts parts(p_line);
  if (parts.Size() != 4)
    ReportSize(FourParts, p_line);
  for (std::size_t i = 1; i < std::min<std::size_t>(parts.Size(), 4); ++i) {
    AddCorner(IndexFrom(VertexField(parts[i]), Where(parts[i])));
    if (NamesNormal(parts[i]))
      AddCornerNormal(IndexFrom(NormalField(parts[i]), Where(parts[i])));
  }
}

void ObjReader::ReadLineSegment(std::string_view p_line) {
  DecidePrimitiveType(Ogl::VertexBuffer::LineSegments);
  const Parts parts(p_line);
  if (parts.Size() != 3)
    ReportSize(ThreeParts, p_line);
  for (std::size_t i = 1; i < std::min<std::size_t>(parts.Size(), 3); ++i)
    AddCorner(IndexFrom(VertexField(parts[i]), Where(parts[i])));
}

void ObjReader::ReadGroup(std::string_view p_line) {
  FinishGroup();
  if (p_line.size() < 2)
    throw std::out_of_range("LoadPolygonObjFile: a group has no name (" + vekdebug::detail_text(Where(p_line)) + ")");
  _result.groups.push_back({std::string(p_line.substr(2)), {}});
}

/// The three numbers behind the keyword; 0 for those that are missing.
ObjReader::Vector ObjReader::VectorFrom(const Parts& p_parts) const {
  std::array<double, 3> values{};
  for (std::size_t i = 1; i < std::min<std::size_t>(p_parts.Size(), 4); ++i)
    values[i - 1] = NumberFrom(DoubleFromText, p_parts[i], Where(p_parts[i]));
  return {values[0], values[1], values[2]};
}

// Out of line, to keep the code of reports out of the loops.

[[gnu::noinline]] void ObjReader::ReportSize(const char* p_expression, std::string_view p_line) const {
  vekdebug::fail_ensure(p_expression, Signature::Load, Where(Trimmed(p_line)));
}

[[gnu::noinline]] void ObjReader::ReportVertexIndex(std::uint32_t p_index) const {
  VEK_CHECK_RANGE_AT(p_index, _vertices.Size(), "0 <= vertexIndex < vertices->size()", Signature::Load, Where());
}

[[gnu::noinline]] void ObjReader::ReportNormalIndex(std::uint32_t p_index) const {
  VEK_CHECK_RANGE_AT(p_index, _normals.Size(), "0 <= normalIndex < sourceNormals->size()", Signature::Load, Where());
}

void ObjReader::AddPosition(const Vector& p_position) {
  _vertices.Append(Narrowed(p_position));
  _result.bounds += p_position;
}

void ObjReader::AddNormal(const Vector& p_normal) {
  _normals.Append(Narrowed(p_normal));
}

void ObjReader::DecidePrimitiveType(Ogl::VertexBuffer::PrimitiveType p_type) {
  if (_result.primitiveType == Ogl::VertexBuffer::Undecided)
    _result.primitiveType = p_type;
}

void ObjReader::AddCorner(std::uint32_t p_vertex) {
  if (p_vertex >= _vertices.Size())
    ReportVertexIndex(p_vertex);
  _indices.Append(p_vertex);
}

void ObjReader::AddCornerNormal(std::uint32_t p_normal) {
  if (p_normal >= _normals.Size())
    ReportNormalIndex(p_normal);
  if (_settledCorners + 1 == _indices.Size() && GiveNormal(_indices[_settledCorners], p_normal))
    ++_settledCorners;
  else
    _pendingNormals.push_back(p_normal);
}

/// Gives the vertex that normal unless it has one. False when either does not exist (yet).
bool ObjReader::GiveNormal(std::uint32_t p_vertexIndex, std::uint32_t p_normalIndex) {
  if (p_vertexIndex >= _vertices.Size() || p_normalIndex >= _normals.Size())
    return false;
  _normals.Give(p_vertexIndex, p_normalIndex, _vertices.Size());
  return true;
}

void ObjReader::SettlePendingNormals() {
  for (std::size_t i = 0; i < _pendingNormals.size(); ++i)
    GiveNormal(_indices[_settledCorners + i], _pendingNormals[i]);
  _pendingNormals.clear();
  _settledCorners = 0;
}

void ObjReader::FinishGroup() {
  SettlePendingNormals();
  _result.groups.back().indices = _indices.MoveOut();
}

ObjReader::Result ObjReader::Finish(Utility::Threads p_threads) {
  SettlePendingNormals();
  const std::size_t vertices = _vertices.Size();
  _vertices.ReleaseRest();
  _normals.ReleaseRest();
  _indices.ReleaseRest();
  const auto finish = [&](std::size_t p_array) {
    if (p_array == 0)
      _result.groups.back().indices = _indices.MoveOut();
    else if (p_array == 1)
      _result.normals = _normals.MoveOut(vertices);
    else
      _result.vertices = _vertices.MoveOut();
  };
  const std::size_t bytes = (vertices + _normals.Size()) * sizeof(Attribute) + _indices.Size() * sizeof(std::uint32_t);
  Utility::RunBlocks(ThreadsToMoveOut(p_threads, bytes), 3, finish);
  return std::move(_result);
}

} // namespace Vek::Chart::Library::Private
