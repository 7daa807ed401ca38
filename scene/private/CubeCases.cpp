#include "scene/private/CubeCases.h"

#include <cstddef>

namespace Vek::Chart::Scene::CubeCases {

namespace {

constexpr std::size_t None = 12;
using Edges = std::array<std::uint8_t, 12>;

constexpr std::uint8_t EdgeBetween(std::size_t p_a, std::size_t p_b) {
  const std::size_t start = p_a < p_b ? p_a : p_b, axis = (p_a ^ p_b) / 2;
  for (std::size_t edge = 4 * axis; edge < 4 * axis + 4; ++edge)
    if (EdgeStarts[edge] == start)
      return static_cast<std::uint8_t>(edge);
  return None;
}

struct Face {
  std::array<std::uint8_t, 4> corners{}; // counter-clockwise seen from outside
  std::array<std::uint8_t, 4> edges{};   // from each corner to the next
};

constexpr std::array<Face, 6> MakeFaces() {
  std::array<Face, 6> faces{};
  for (std::size_t i = 0; i < 6; ++i) {
    const std::size_t axis = i / 2, upper = i % 2, side = upper << axis;
    const std::size_t u = std::size_t{1} << (axis + 1) % 3, v = std::size_t{1} << (axis + 2) % 3;
    const std::array<std::size_t, 4> around = {side, side + u, side + u + v, side + v}; // seen from the upper side
    for (std::size_t j = 0; j < 4; ++j)
      faces[i].corners[j] = static_cast<std::uint8_t>(around[upper == 1 ? j : 3 - j]);
    for (std::size_t j = 0; j < 4; ++j)
      faces[i].edges[j] = EdgeBetween(faces[i].corners[j], faces[i].corners[(j + 1) % 4]);
  }
  return faces;
}

constexpr std::array<Face, 6> Faces = MakeFaces();

constexpr bool ShareFace(std::uint8_t p_a, std::uint8_t p_b) {
  for (const Face& face : Faces) {
    int found = 0;
    for (const std::uint8_t edge : face.edges)
      found += edge == p_a || edge == p_b ? 1 : 0;
    if (found == 2)
      return true;
  }
  return false;
}

/// The surface cuts each face in lines that go around the corners above the level. Seen from outside, such a line leads
/// from an edge that descends to the nearest one before it that ascends, counter-clockwise around the face. All lines
/// of a case join to loops, whose corners above lie at the left. Returns the edge after each edge.
constexpr Edges NextEdges(std::size_t p_case) {
  Edges next{};
  for (std::uint8_t& edge : next)
    edge = None;
  for (const Face& face : Faces) {
    const auto isAbove = [&](std::size_t p_corner) { return (p_case >> face.corners[p_corner % 4] & 1U) != 0; };
    for (std::size_t from = 0; from < 4; ++from) {
      if (!isAbove(from) || isAbove(from + 1))
        continue;
      std::size_t to = from + 3;
      while (isAbove(to) || !isAbove(to + 1))
        --to;
      next[face.edges[from]] = face.edges[to % 4];
    }
  }
  return next;
}

/// Divides a loop into triangles around one of its edges. No line between two triangles may lie in a face: the cell
/// beyond might have the same line, which would then belong to four triangles. Every loop has such a division.
constexpr void AddLoop(const Edges& p_loop, std::size_t p_size, Triangles& p_triangles) {
  std::size_t apex = 0;
  const auto at = [&](std::size_t p_index) { return p_loop[(apex + p_index) % p_size]; };
  for (bool fits = false; !fits; apex += fits ? 0 : 1) {
    fits = true;
    for (std::size_t i = 2; i + 1 < p_size; ++i)
      fits = fits && !ShareFace(at(0), at(i));
  }
  for (std::size_t i = 1; i + 1 < p_size; ++i) {
    // Reversed: corners below lie at the left.
    p_triangles.edges[3U * p_triangles.count] = at(0);
    p_triangles.edges[3U * p_triangles.count + 1] = at(i + 1);
    p_triangles.edges[3U * p_triangles.count + 2] = at(i);
    ++p_triangles.count;
  }
}

constexpr std::array<Triangles, 256> MakeTable() {
  std::array<Triangles, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    Edges next = NextEdges(i);
    for (std::size_t first = 0; first < 12; ++first) {
      Edges loop{};
      std::size_t size = 0;
      for (std::size_t edge = first; edge != None && next[edge] != None;) {
        loop[size++] = static_cast<std::uint8_t>(edge);
        const std::size_t after = next[edge];
        next[edge] = None;
        edge = after;
      }
      if (size > 0)
        AddLoop(loop, size, table[i]);
    }
  }
  return table;
}

constexpr std::array<Triangles, 256> AllCases = MakeTable();

} // namespace

const std::array<Triangles, 256>& Table() {
  return AllCases;
}

} // namespace Vek::Chart::Scene::CubeCases
