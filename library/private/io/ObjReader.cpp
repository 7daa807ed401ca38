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
  for (const char* line = p_first; line != p_last;)
    line = ReadNextLine(line, p_last);
}

const char* ObjReader::ReadNextLine(const char* p_line, const char* p_last) {
  ++_line;
  if (const char* const next = ReadPlainLine(p_line, p_last))
    return next;
  const auto* const end = static_cast<const char*>(std::memchr(p_line, '\n', std::size_t(p_last - p_line)));
  ReadLine(Trimmed({p_line, std::size_t(end - p_line)}));
  return end + 1;
}

void ObjReader::AddBlock(const ObjPlain::Block& p_block, const char* p_last) {
  const Attribute* position = p_block.positions.data();
  const Attribute* normal = p_block.normals.data();
  const ObjPlain::Corner* corner = p_block.corners.data();
  auto bounds = p_block.bounds.begin();
  auto other = p_block.others.begin();
  for (const ObjPlain::Block::Run& run : p_block.runs) {
    switch (run.kind) {
    case ObjPlain::Block::Positions:
      _vertices.Append(position, run.count);
      position += run.count;
      AddBounds(*bounds++);
      _line += run.count;
      break;
    case ObjPlain::Block::Normals:
      _normals.Append(normal, run.count);
      normal += run.count;
      _line += run.count;
      break;
    case ObjPlain::Block::Triangles:
      for (std::size_t i = 0; i < run.count; ++i, corner += 3) {
        ++_line;
        AddTriangle(corner);
      }
      break;
    case ObjPlain::Block::Other:
      for (std::size_t i = 0; i < run.count; ++i)
        ReadNextLine(*other++, p_last);
      break;
    }
  }
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
void ObjReader::AddTriangle(const ObjPlain::Corner* p_corners) {
  const auto isPlain = [&](const ObjPlain::Corner& p_corner) {
    return p_corner.hasNormal && static_cast<std::uint32_t>(p_corner.vertexNumber) - 1u < _vertices.Size() &&
           static_cast<std::uint32_t>(p_corner.normalNumber) - 1u < _normals.Size();
  };
  DecidePrimitiveType(Ogl::VertexBuffer::Triangles);
  if (_settledCorners != _indices.Size() || !isPlain(p_corners[0]) || !isPlain(p_corners[1]) || !isPlain(p_corners[2]))
    return AddCorners(p_corners);
  std::uint32_t indices[3];
  for (std::size_t i = 0; i < 3; ++i) {
    indices[i] = static_cast<std::uint32_t>(p_corners[i].vertexNumber) - 1u;
    _normals.Give(indices[i], static_cast<std::uint32_t>(p_corners[i].normalNumber) - 1u, _vertices.Size());
  }
  _indices.Append(indices, 3);
  _settledCorners += 3;
}

void ObjReader::AddCorners(const ObjPlain::Corner* p_corners) {
  for (std::size_t i = 0; i < 3; ++i) {
    AddCorner(p_corners[i].vertexNumber);
    if (p_corners[i].hasNormal)
      AddCornerNormal(p_corners[i].normalNumber);
  }
}

const char* ObjReader::ReadPlainLine(const char* p_line, const char* p_last) {
  if (p_line[0] == 'f' && p_line[1] == ' ')
    return ReadPlainTriangle(p_line, p_last);
  return p_line[0] == 'v' ? ReadPlainVector(p_line, p_last) : nullptr;
}

const char* ObjReader::ReadPlainVector(const char* p_line, const char* p_last) {
  const bool isNormal = p_line[1] == 'n';
  const char* const blank = p_line + (isNormal ? 2 : 1);
  Vector vector;
  const ObjPlain::LineRest rest =
      *blank == ' ' ? ObjPlain::ScanVector(blank + 1, p_last, vector) : ObjPlain::LineRest();
  if (rest.next == nullptr)
    return nullptr;
  if (rest.hasMoreParts)
    ReportSize(FourParts, {p_line, std::size_t(rest.next - p_line)});
  isNormal ? AddNormal(vector) : AddPosition(vector);
  return rest.next;
}

const char* ObjReader::ReadPlainTriangle(const char* p_line, const char* p_last) {
  ObjPlain::Corner corners[3];
  const ObjPlain::LineRest rest = ObjPlain::ScanTriangle(p_line + 1, p_last, corners);
  if (rest.next == nullptr)
    return nullptr;
  DecidePrimitiveType(Ogl::VertexBuffer::Triangles);
  if (rest.hasMoreParts)
    ReportSize(FourParts, {p_line, std::size_t(rest.next - p_line)});
  AddTriangle(corners);
  return rest.next;
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
    AddCorner(NumberFrom(IntFromText, VertexField(parts[i]), Where(parts[i])));
    if (NamesNormal(parts[i]))
      AddCornerNormal(NumberFrom(IntFromText, NormalField(parts[i]), Where(parts[i])));
  }
}

void ObjReader::ReadLineSegment(std::string_view p_line) {
  DecidePrimitiveType(Ogl::VertexBuffer::LineSegments);
  const Parts parts(p_line);
  if (parts.Size() != 3)
    ReportSize(ThreeParts, p_line);
  for (std::size_t i = 1; i < std::min<std::size_t>(parts.Size(), 3); ++i)
    AddCorner(NumberFrom(IntFromText, VertexField(parts[i]), Where(parts[i])));
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

void ObjReader::AddCorner(int p_vertexNumber) {
  const std::uint32_t vertexIndex = static_cast<std::uint32_t>(p_vertexNumber) - 1u;
  if (vertexIndex >= _vertices.Size())
    ReportVertexIndex(vertexIndex);
  _indices.Append(vertexIndex);
}

void ObjReader::AddCornerNormal(int p_normalNumber) {
  const std::uint32_t normalIndex = static_cast<std::uint32_t>(p_normalNumber) - 1u;
  if (normalIndex >= _normals.Size())
    ReportNormalIndex(normalIndex);
  if (_settledCorners + 1 == _indices.Size() && GiveNormal(_indices[_settledCorners], normalIndex))
    ++_settledCorners;
  else
    _pendingNormals.push_back(normalIndex);
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

ObjReader::Result ObjReader::Finish() {
  SettlePendingNormals();
  _result.normals = _normals.MoveOut(_vertices.Size()); // first, since it frees memory
  FinishGroup();
  _result.vertices = _vertices.MoveOut();
  return std::move(_result);
}

} // namespace Vek::Chart::Library::Private
