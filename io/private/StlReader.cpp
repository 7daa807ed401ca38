#include "io/FileError.h"
#include "io/private/Bytes.h"
#include "io/private/Input.h"
#include "io/private/MeshFormats.h"
#include "io/private/Words.h"
#include "library/TriangulatePolygon.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <unordered_map>

namespace Vek::Chart::Io::Private {

namespace {

// A binary file: 80 bytes of any kind, the number of triangles, and for each a normal, three corners and 16 bits.
constexpr std::size_t HeaderSize = 80;
constexpr std::size_t FirstTriangle = 84;
constexpr std::size_t TriangleSize = 50;

std::uint64_t ClaimedSize(std::string_view p_file) {
  return FirstTriangle + TriangleSize * std::uint64_t(LoadLittle<std::uint32_t>(p_file.substr(HeaderSize)));
}

/// Vertices by position: corners with equal coordinates are one vertex.
class MergedVertices {
public:
  explicit MergedVertices(std::vector<float>& p_positions)
      : _positions(p_positions) {}

  std::uint32_t Vertex(std::array<float, 3> p_position) {
    Key key;
    for (std::size_t i = 0; i < 3; ++i) {
      if (p_position[i] == 0)
        p_position[i] = 0; // -0 is the same position
      std::memcpy(&key[i], &p_position[i], sizeof key[i]);
    }
    const auto [at, isNew] = _vertices.try_emplace(key, static_cast<std::uint32_t>(_vertices.size()));
    if (isNew)
      _positions.insert(_positions.end(), p_position.begin(), p_position.end());
    return at->second;
  }

private:
  using Key = std::array<std::uint32_t, 3>;
  struct Hash {
    std::size_t operator()(const Key& p_key) const {
      std::uint64_t hash = 0;
      for (const std::uint32_t part : p_key)
        hash = (hash ^ (hash >> 29) ^ part) * 0x9E3779B97F4A7C15u;
      return hash ^ (hash >> 32);
    }
  };
  std::vector<float>& _positions;
  std::unordered_map<Key, std::uint32_t, Hash> _vertices;
};

void CloseGroup(Mesh& p_mesh, std::string_view p_name) {
  const std::size_t first = p_mesh.groups.empty() ? 0 : p_mesh.groups.back().first + p_mesh.groups.back().count;
  if (first == p_mesh.indices.size())
    return;
  Mesh::Group& group = p_mesh.groups.emplace_back();
  constexpr std::size_t LongestName = 255;
  group.name = p_name.substr(0, LongestName);
  group.first = first;
  group.count = p_mesh.indices.size() - first;
}

Mesh ReadBinary(std::string_view p_file, const std::string& p_name, const Progress& p_progress) {
  if (p_file.size() < FirstTriangle)
    throw FileError(p_name, "expected a header of 84 bytes, got " + std::to_string(p_file.size()) + " bytes");
  const std::uint64_t size = ClaimedSize(p_file);
  if (size > p_file.size())
    throw FileError(p_name, "byte 80: expected triangles in " + std::to_string(size) + " bytes, got a file of " +
                                std::to_string(p_file.size()) + " bytes");
  Mesh mesh;
  if (size < p_file.size())
    mesh.warnings.push_back(p_name + ": " + std::to_string(p_file.size() - size) +
                            " bytes behind the last triangle are left out");
  MergedVertices vertices(mesh.positions);
  const std::size_t count = LoadLittle<std::uint32_t>(p_file.substr(HeaderSize));
  mesh.indices.reserve(3 * count);
  constexpr std::size_t NormalSize = 12;
  for (std::size_t triangle = 0; triangle < count; ++triangle) {
    if (triangle % 65536 == 0)
      Report(p_progress, p_name, double(triangle) / double(count));
    const char* at = p_file.data() + FirstTriangle + TriangleSize * triangle + NormalSize;
    for (int corner = 0; corner < 3; ++corner) {
      std::array<float, 3> position;
      for (float& coordinate : position) {
        coordinate = Load<float>(at, false);
        at += sizeof coordinate;
      }
      mesh.indices.push_back(vertices.Vertex(position));
    }
  }
  CloseGroup(mesh, {});
  return mesh;
}

/// The loop of a facet: three corners, or more of a planar polygon.
void ReadFacet(Words& p_words, MergedVertices& p_vertices, std::vector<std::uint32_t>& p_indices) {
  for (const char* const word : {"facet", "normal"})
    p_words.Take(word);
  for (int i = 0; i < 3; ++i)
    p_words.Next(); // may be anything, such as nan
  for (const char* const word : {"outer", "loop"})
    p_words.Take(word);
  std::vector<Types::Vector3_Base<double>> outline;
  std::vector<std::uint32_t> corners;
  while (!IsSameWord(p_words.Peek(), "endloop")) {
    p_words.Take("vertex");
    const double x = p_words.Number(), y = p_words.Number(), z = p_words.Number();
    outline.emplace_back(x, y, z);
    corners.push_back(p_vertices.Vertex({float(x), float(y), float(z)}));
  }
  p_words.Take("endloop");
  if (corners.size() < 3)
    p_words.Fail("three corners or more");
  p_words.Take("endfacet");
  for (const std::uint32_t corner : Library::TriangulatePolygon(outline.data(), outline.size()))
    p_indices.push_back(corners[corner]);
}

Mesh ReadText(std::string_view p_file, const std::string& p_name, const Progress& p_progress) {
  Mesh mesh;
  MergedVertices vertices(mesh.positions);
  Words words(p_file, p_name, MarkSize(p_file));
  while (!words.AtEnd()) {
    words.Take("solid");
    std::string_view name = words.RestOfLine();
    if (IsSameWord(words.Peek(), "color")) {
      words.Next();
      words.RestOfLine();
    }
    std::size_t facets = 0;
    while (IsSameWord(words.Peek(), "facet")) {
      if (facets++ % 4096 == 0)
        Report(p_progress, p_name, double(words.Position()) / double(p_file.size()));
      ReadFacet(words, vertices, mesh.indices);
    }
    words.Take("endsolid");
    words.RestOfLine();
    CloseGroup(mesh, name);
  }
  return mesh;
}

} // namespace

bool IsBinaryStl(std::string_view p_file) {
  return p_file.size() >= FirstTriangle && ClaimedSize(p_file) == p_file.size();
}

bool IsTextStl(std::string_view p_file) {
  const std::string noName;
  Words words(p_file, noName, MarkSize(p_file));
  if (!IsSameWord(words.Next(), "solid"))
    return false;
  words.RestOfLine();
  constexpr std::string_view Following[] = {"facet", "endsolid", "color"};
  return std::any_of(std::begin(Following), std::end(Following),
                     [&](std::string_view p_word) { return IsSameWord(words.Peek(), p_word); });
}

Mesh ReadStl(std::string_view p_file, const std::string& p_name, const Progress& p_progress) {
  Mesh mesh = !IsBinaryStl(p_file) && IsTextStl(p_file) ? ReadText(p_file, p_name, p_progress)
                                                        : ReadBinary(p_file, p_name, p_progress);
  if (mesh.indices.empty())
    throw FileError(p_name, "expected triangles, got none");
  Report(p_progress, p_name, 1);
  return mesh;
}

} // namespace Vek::Chart::Io::Private
