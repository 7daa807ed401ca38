#include "io/private/MeshFormats.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace Vek::Chart::Io::Private {

namespace {

using Vector = std::array<double, 3>;

/// The unit normal of a triangle; zero for one without area.
Vector NormalOf(const Mesh& p_mesh, const std::uint32_t* p_corners) {
  Vector a{}, b{};
  for (std::size_t i = 0; i < 3; ++i) {
    const double origin = double(p_mesh.positions[3 * p_corners[0] + i]);
    a[i] = double(p_mesh.positions[3 * p_corners[1] + i]) - origin;
    b[i] = double(p_mesh.positions[3 * p_corners[2] + i]) - origin;
  }
  Vector normal{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
  const double length = std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
  for (double& coordinate : normal)
    coordinate = length > 0 && std::isfinite(length) ? coordinate / length : 0;
  return normal;
}

/// The corner of a triangle at a vertex, and the vertex at the other end of one of its two edges there.
struct Edge {
  std::uint32_t vertex, other;
  std::size_t corner; ///< in the list of indices
};

/// The first of the corners that are joined with one; the sets are flattened on the way.
std::size_t Root(std::vector<std::size_t>& p_parents, std::size_t p_corner) {
  while (p_parents[p_corner] != p_corner) {
    p_parents[p_corner] = p_parents[p_parents[p_corner]];
    p_corner = p_parents[p_corner];
  }
  return p_corner;
}

void RepeatVertex(std::vector<float>& p_array, std::size_t p_components, std::size_t p_vertex) {
  if (p_array.empty())
    return;
  for (std::size_t i = 0; i < p_components; ++i)
    p_array.push_back(float(p_array[p_vertex * p_components + i]));
}

} // namespace

void SplitCreases(Mesh& p_mesh, double p_degrees) {
  constexpr double Degree = 3.14159265358979323846 / 180;
  const double leastCosine = std::cos(p_degrees * Degree) - 1e-6; // positions are of single precision
  std::vector<Edge> edges;
  std::vector<Vector> normals;
  std::vector<std::size_t> triangles(p_mesh.indices.size(), 0); // of the corners
  for (const Mesh::Group& group : p_mesh.groups) {
    if (group.primitive != Mesh::Triangles)
      continue;
    for (std::size_t first = group.first; first + 3 <= group.first + group.count; first += 3) {
      const std::uint32_t* const corners = &p_mesh.indices[first];
      normals.push_back(NormalOf(p_mesh, corners));
      for (std::size_t i = 0; i < 3; ++i) {
        triangles[first + i] = normals.size() - 1;
        edges.push_back({corners[i], corners[(i + 1) % 3], first + i});
        edges.push_back({corners[i], corners[(i + 2) % 3], first + i});
      }
    }
  }
  std::sort(edges.begin(), edges.end(), [](const Edge& p_a, const Edge& p_b) {
    return std::array<std::size_t, 3>{p_a.vertex, p_a.other, p_a.corner} <
           std::array<std::size_t, 3>{p_b.vertex, p_b.other, p_b.corner};
  });
  // Corners at a vertex are joined over an edge between triangles that are nearly parallel.
  std::vector<std::size_t> parents(p_mesh.indices.size());
  std::iota(parents.begin(), parents.end(), std::size_t(0));
  for (std::size_t i = 1; i < edges.size(); ++i) {
    if (edges[i].vertex != edges[i - 1].vertex || edges[i].other != edges[i - 1].other)
      continue;
    const Vector& a = normals[triangles[edges[i - 1].corner]];
    const Vector& b = normals[triangles[edges[i].corner]];
    const bool hasArea = a != Vector{} && b != Vector{};
    if (!hasArea || a[0] * b[0] + a[1] * b[1] + a[2] * b[2] >= leastCosine)
      parents[Root(parents, edges[i].corner)] = Root(parents, edges[i - 1].corner);
  }
  // The first set of corners keeps the vertex, and each further one gets a copy.
  constexpr std::uint32_t None = ~std::uint32_t(0);
  std::vector<std::uint32_t> copies(p_mesh.indices.size(), None); // by the root
  std::uint32_t last = None;
  for (const Edge& edge : edges) {
    const std::size_t root = Root(parents, edge.corner);
    if (copies[root] == None) {
      copies[root] = edge.vertex;
      if (edge.vertex == last) {
        copies[root] = std::uint32_t(p_mesh.positions.size() / 3);
        RepeatVertex(p_mesh.positions, 3, edge.vertex);
        RepeatVertex(p_mesh.texCoords, 2, edge.vertex);
        RepeatVertex(p_mesh.colors, 4, edge.vertex);
      }
      last = edge.vertex;
    }
    p_mesh.indices[edge.corner] = copies[root];
  }
}

} // namespace Vek::Chart::Io::Private
