#include "library/private/io/ObjReader.h"

#include "library/private/memory/HugePages.h"
#include "library/private/io/NumberText.h"
#include "platform/debug/Check.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace Vek::Chart::Library::Private {

namespace {

constexpr const char Signature[] = "class boost::shared_ptr<class Vek::Chart::Library::ObjModel> __cdecl "
                                   "Vek::Chart::Library::LoadPolygonObjFile(const class vekfile::filepath &)";

// Apart, as the code that builds a message is in the way of the many indices that need none.

[[gnu::noinline]] void ReportVertexIndex(std::uint32_t p_index, std::size_t p_end) {
  VEK_CHECK_RANGE(p_index, p_end, "0 <= vertexIndex < vertices->size()", Signature);
}

[[gnu::noinline]] void ReportNormalIndex(std::uint32_t p_index, std::size_t p_end) {
  VEK_CHECK_RANGE(p_index, p_end, "0 <= normalIndex < sourceNormals->size()", Signature);
}

/// Without white space at both ends, as the classic locale has it.
std::string_view Trimmed(std::string_view p_text) {
  constexpr std::string_view WhiteSpace = " \t\n\v\f\r";
  const std::size_t first = p_text.find_first_not_of(WhiteSpace);
  return first == std::string_view::npos ? std::string_view()
                                         : p_text.substr(first, p_text.find_last_not_of(WhiteSpace) + 1 - first);
}

/// A line split at every blank. No keyword needs more than the first four parts; the others are only counted.
class Parts {
public:
  explicit Parts(std::string_view p_line)
      : _size(1 + std::size_t(std::count(p_line.begin(), p_line.end(), ' '))) {
    for (std::size_t i = 0; i < std::min(_size, _first.size()); ++i) {
      const std::size_t blank = p_line.find(' ');
      _first[i] = p_line.substr(0, blank);
      p_line = blank == std::string_view::npos ? std::string_view() : p_line.substr(blank + 1);
    }
  }
  std::size_t size() const { return _size; }
  std::string_view operator[](std::size_t p_index) const { return _first[p_index]; }

private:
  std::size_t _size;
  std::array<std::string_view, 4> _first;
};

/// The three numbers behind the keyword; 0 for those that are missing.
Types::Vector3_Base<double> VectorFromParts(const Parts& p_parts) {
  std::array<double, 3> values{};
  for (std::size_t i = 1; i < std::min<std::size_t>(p_parts.size(), 4); ++i)
    values[i - 1] = DoubleFromText(p_parts[i]);
  return {values[0], values[1], values[2]};
}

int VertexNumber(std::string_view p_corner) {
  // Splitting at '/' yields one part at least, so "indexParts.size() >= 1" always holds.
  return IntFromText(p_corner.substr(0, p_corner.find('/')));
}

bool NamesNormal(std::string_view p_corner) {
  return std::count(p_corner.begin(), p_corner.end(), '/') >= 2;
}

int NormalNumber(std::string_view p_corner) {
  return IntFromText(p_corner.substr(p_corner.rfind('/') + 1));
}

Ogl::Vec3<float> Narrowed(const Types::Vector3_Base<double>& p_vector) {
  return {static_cast<float>(p_vector.x), static_cast<float>(p_vector.y), static_cast<float>(p_vector.z)};
}

// Scanners for plain lines. Every line ends in a line feed, which no number contains, so the place behind a number can
// always be looked at.

const char* ScanLineEnd(const char* p_first) {
  p_first += *p_first == '\r';
  return *p_first == '\n' ? p_first + 1 : nullptr;
}

const char* ScanVector(const char* p_first, const char* p_last, Types::Vector3_Base<double>& p_vector) {
  p_first = Scan::ShortDouble(p_first, p_last, p_vector.x);
  if (p_first == nullptr || *p_first != ' ')
    return nullptr;
  p_first = Scan::ShortDouble(p_first + 1, p_last, p_vector.y);
  if (p_first == nullptr || *p_first != ' ')
    return nullptr;
  p_first = Scan::ShortDouble(p_first + 1, p_last, p_vector.z);
  return p_first == nullptr ? nullptr : ScanLineEnd(p_first);
}

struct Corner {
  int vertexNumber = 0;
  int normalNumber = 0;
  bool hasNormal = false;
};

const char* ScanCorner(const char* p_first, const char* p_last, Corner& p_corner) {
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

ObjReader::ObjReader()
    : _model(boost::make_shared<ObjModel>())
    , _normals(_model->Normals())
    , _group(_model->DefaultGroup()) {}

void ObjReader::ReadBlock(const char* p_first, const char* p_last, std::uint64_t p_bytesLeft) {
  const std::size_t indicesBefore = _indices.size();
  const char* line = p_first;
  while (line != p_last) {
    const char* next = ReadPlainLine(line, p_last);
    if (next == nullptr) {
      const auto* end = static_cast<const char*>(std::memchr(line, '\n', std::size_t(p_last - line)));
      ReadLine(Trimmed({line, std::size_t(end - line)}));
      next = end + 1;
    }
    line = next;
  }
  if (_indices.size() > indicesBefore)
    ReserveIndices(_indices.size() - indicesBefore, double(p_bytesLeft) / double(p_last - p_first));
}

/// When the next block's indices will not fit, makes room for those of all blocks to come, supposed they are like the
/// last one: a list of many megabytes should not move again and again. A file's size is a mere claim, so there
/// are bounds to that.
void ObjReader::ReserveIndices(std::size_t p_gained, double p_blocksLeft) {
  constexpr double Margin = 1.02;
  constexpr double MostGrowth = 64.0;
  const double size = double(_indices.size());
  if (_indices.size() + p_gained > _indices.capacity())
    ReserveLarge(_indices, std::size_t(std::min(size + Margin * double(p_gained) * p_blocksLeft, MostGrowth * size)));
}

const char* ObjReader::ReadPlainLine(const char* p_first, const char* p_last) {
  if (p_first[0] == 'f' && p_first[1] == ' ')
    return ReadPlainTriangle(p_first + 2, p_last);
  if (p_first[0] != 'v')
    return nullptr;
  const bool isNormal = p_first[1] == 'n';
  p_first += isNormal ? 2 : 1;
  Vector vector;
  const char* const next = *p_first == ' ' ? ScanVector(p_first + 1, p_last, vector) : nullptr;
  if (next != nullptr)
    isNormal ? AddNormal(vector) : AddPosition(vector);
  return next;
}

const char* ObjReader::ReadPlainTriangle(const char* p_first, const char* p_last) {
  std::array<Corner, 3> corners;
  for (std::size_t i = 0; i < 3; ++i) {
    p_first = ScanCorner(p_first, p_last, corners[i]);
    if (p_first == nullptr)
      return nullptr;
    if (i == 2)
      p_first = ScanLineEnd(p_first);
    else if (*p_first++ != ' ')
      return nullptr;
  }
  if (p_first == nullptr)
    return nullptr;
  DecidePrimitiveType(Ogl::VertexBuffer::Triangles);
  for (const Corner& corner : corners) {
    AddCorner(corner.vertexNumber);
    if (corner.hasNormal)
      AddCornerNormal(corner.normalNumber);
  }
  return p_first;
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
  VEK_ENSURE(parts.size() == 4, Signature);
  AddPosition(VectorFromParts(parts));
}

void ObjReader::ReadNormal(std::string_view p_line) {
  const Parts parts(p_line);
  VEK_ENSURE(parts.size() == 4, Signature);
  AddNormal(VectorFromParts(parts));
}

void ObjReader::ReadTriangle(std::string_view p_line) {
  DecidePrimitiveType(Ogl::VertexBuffer::Triangles);
  const Parts parts(p_line);
  VEK_ENSURE(parts.size() == 4, Signature);
  for (std::size_t i = 1; i < std::min<std::size_t>(parts.size(), 4); ++i) {
    AddCorner(VertexNumber(parts[i]));
    if (NamesNormal(parts[i]))
      AddCornerNormal(NormalNumber(parts[i]));
  }
}

void ObjReader::ReadLineSegment(std::string_view p_line) {
  DecidePrimitiveType(Ogl::VertexBuffer::LineSegments);
  const Parts parts(p_line);
  VEK_ENSURE(parts.size() == 3, Signature);
  for (std::size_t i = 1; i < std::min<std::size_t>(parts.size(), 3); ++i)
    AddCorner(VertexNumber(parts[i]));
}

void ObjReader::ReadGroup(std::string_view p_line) {
  FinishGroup();
  _group = _model->AddGroup();
  _group->name = p_line.substr(2); // throws for a g alone
}

void ObjReader::AddPosition(const Vector& p_position) {
  _vertices.Append(Narrowed(p_position));
  _bounds += p_position;
}

void ObjReader::AddNormal(const Vector& p_normal) {
  _sourceNormals.Append(Narrowed(p_normal));
}

void ObjReader::DecidePrimitiveType(Ogl::VertexBuffer::PrimitiveType p_type) {
  if (_primitiveType == Ogl::VertexBuffer::Undecided)
    _primitiveType = p_type;
}

void ObjReader::AddCorner(int p_vertexNumber) {
  const std::uint32_t vertexIndex = static_cast<std::uint32_t>(p_vertexNumber) - 1u;
  if (vertexIndex >= _vertices.Size())
    ReportVertexIndex(vertexIndex, _vertices.Size());
  _indices.push_back(vertexIndex);
}

void ObjReader::AddCornerNormal(int p_normalNumber) {
  const std::uint32_t normalIndex = static_cast<std::uint32_t>(p_normalNumber) - 1u;
  if (normalIndex >= _sourceNormals.Size())
    ReportNormalIndex(normalIndex, _sourceNormals.Size());
  if (_settledCorners + 1 == _indices.size() && GiveNormal(_indices.back(), normalIndex))
    ++_settledCorners;
  else
    _pendingNormals.push_back(normalIndex);
}

/// Gives the vertex that normal unless it has one. False when either does not exist (yet).
bool ObjReader::GiveNormal(std::uint32_t p_vertexIndex, std::uint32_t p_normalIndex) {
  if (p_normalIndex >= _sourceNormals.Size())
    return false;
  if (p_vertexIndex >= _hasNormal.size()) {
    if (p_vertexIndex >= _vertices.Size())
      return false;
    SizeNormals();
  }
  if (!_hasNormal[p_vertexIndex]) {
    _hasNormal[p_vertexIndex] = true;
    (*_normals)[p_vertexIndex] = _sourceNormals[p_normalIndex];
  }
  return true;
}

/// In a file with normals every vertex has one, if only a zero vector.
void ObjReader::SizeNormals() {
  if (_normals->empty())
    ReserveLarge(*_normals, _vertices.Size());
  _normals->resize(_vertices.Size());
  _hasNormal.resize(_vertices.Size());
}

void ObjReader::SettlePendingNormals() {
  for (std::size_t i = 0; i < _pendingNormals.size(); ++i)
    GiveNormal(_indices[_settledCorners + i], _pendingNormals[i]);
  _pendingNormals.clear();
  _settledCorners = 0;
}

void ObjReader::FinishGroup() {
  SettlePendingNormals();
  // A long list in memory of about its size is handed over; a copy would double the peak. Any other is copied: its
  // memory fits and serves the next group.
  constexpr std::size_t LongList = std::size_t(1) << 18;
  if (_indices.size() >= LongList && _indices.capacity() - _indices.size() <= _indices.size() / 8)
    _group->indices = std::exchange(_indices, {});
  else
    _group->indices = _indices;
  _indices.clear();
}

boost::shared_ptr<ObjModel> ObjReader::Finish() {
  SettlePendingNormals();
  if (_sourceNormals.Size() != 0)
    SizeNormals();
  _sourceNormals = {}; // before the last arrays are copied, to keep the peak low
  FinishGroup();
  const boost::shared_ptr<ObjModel> model = _model;
  *model->Vertices() = _vertices.MoveOut();
  model->SetBoundingBox(_bounds);
  model->SetPrimitiveType(_primitiveType);
  VEK_ENSURE(!model->Groups()->empty(), Signature);
  return model;
}

} // namespace Vek::Chart::Library::Private
