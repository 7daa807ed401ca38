#include "library/private/io/ObjBlock.h"

#include "library/private/io/BlockSizes.h"

#include <algorithm>
#include <cstring>

namespace Vek::Chart::Library::Private::ObjPlain {

namespace {

/// A plain line has eight characters or more.
constexpr std::size_t MostPlainLines = BlockBytes / 8;

} // namespace

Block::Block()
    : _positions(new float[3 * MostPlainLines])
    , _normals(new float[3 * MostPlainLines])
    , _vertices(new std::uint32_t[3 * MostPlainLines])
    , _normalIndices(new std::uint32_t[3 * MostPlainLines]) {}

void Block::Add(const Run& p_run) {
  if (p_run.count != 0)
    runs.push_back(p_run);
}

// Each scans plain lines of one kind and returns the start of the first other line.

const char* Block::ScanPositions(const char* p_line, const char* p_last) {
  Types::BoundingBox_Base<double> box;
  const float* const first = _position;
  for (; _plainLines != MostPlainLines && p_line != p_last && p_line[0] == 'v' && p_line[1] == ' '; ++_plainLines) {
    Vector vector;
    const LineRest rest = ScanVector(p_line + 2, p_last, vector);
    if (rest.next == nullptr || rest.hasMoreParts)
      break;
    for (const double number : {vector.x, vector.y, vector.z})
      *_position++ = static_cast<float>(number);
    box += vector;
    p_line = rest.next;
  }
  if (_position != first)
    bounds.push_back(box);
  Add({Run::Positions, std::size_t(_position - first) / 3, 0});
  return p_line;
}

const char* Block::ScanNormals(const char* p_line, const char* p_last) {
  const float* const first = _normal;
  for (; _plainLines != MostPlainLines && p_line != p_last && p_line[0] == 'v' && p_line[1] == 'n' && p_line[2] == ' ';
       ++_plainLines) {
    Vector vector;
    const LineRest rest = ScanVector(p_line + 3, p_last, vector);
    if (rest.next == nullptr || rest.hasMoreParts)
      break;
    for (const double number : {vector.x, vector.y, vector.z})
      *_normal++ = static_cast<float>(number);
    p_line = rest.next;
  }
  Add({Run::Normals, std::size_t(_normal - first) / 3, 0});
  return p_line;
}

const char* Block::ScanTriangles(const char* p_line, const char* p_last) {
  Run run{Run::OwnNormals, 0, 0};
  for (; _plainLines != MostPlainLines && p_line != p_last && p_line[0] == 'f' && p_line[1] == ' '; ++_plainLines) {
    Corner corners[3];
    const LineRest rest = ScanTriangle(p_line + 1, p_last, corners);
    if (rest.next == nullptr)
      break;
    const auto [a, b, c] = corners;
    const bool own = ((a.vertex ^ a.normal) | (b.vertex ^ b.normal) | (c.vertex ^ c.normal)) == 0;
    const Run::Kind kind = rest.hasMoreParts ? Run::LongTriangles : own ? Run::OwnNormals : Run::Triangles;
    if (kind != run.kind) {
      Add(run);
      run = {kind, 0, 0};
    }
    for (const Corner& corner : corners)
      *_vertex++ = corner.vertex;
    if (kind != Run::OwnNormals)
      for (const Corner& corner : corners)
        *_normalIndex++ = corner.normal;
    if (rest.hasMoreParts)
      longLines.emplace_back(p_line, std::size_t(rest.next - p_line));
    run.largest = std::max({run.largest, a.vertex, b.vertex, c.vertex});
    ++run.count;
    p_line = rest.next;
  }
  Add(run);
  return p_line;
}

const char* Block::Scan(const char* p_first, const char* p_last) {
  runs.clear();
  bounds.clear();
  longLines.clear();
  others.clear();
  _plainLines = 0;
  _position = _positions.get();
  _normal = _normals.get();
  _vertex = _vertices.get();
  _normalIndex = _normalIndices.get();
  const char* line = p_first;
  while (line != p_last && _plainLines != MostPlainLines) {
    const char* const before = line;
    if (line[0] == 'f' && line[1] == ' ')
      line = ScanTriangles(line, p_last);
    else if (line[0] == 'v' && line[1] == ' ')
      line = ScanPositions(line, p_last);
    else if (line[0] == 'v' && line[1] == 'n' && line[2] == ' ')
      line = ScanNormals(line, p_last);
    if (line == before) {
      if (runs.empty() || runs.back().kind != Run::Other) {
        runs.push_back({Run::Other, 0, 0});
        others.push_back(line);
      }
      ++runs.back().count;
      line = static_cast<const char*>(std::memchr(line, '\n', std::size_t(p_last - line))) + 1;
    }
  }
  return line;
}

} // namespace Vek::Chart::Library::Private::ObjPlain
