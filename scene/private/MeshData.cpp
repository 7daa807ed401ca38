#include "scene/private/MeshData.h"

#include "scene/Array.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <numeric>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene::Private {

namespace {

using Library::ObjScene;

void RequireIndices(const std::vector<std::uint32_t>& p_indices, std::size_t p_count) {
  for (std::size_t i = 0; i < p_indices.size(); ++i)
    if (p_indices[i] >= p_count)
      throw std::invalid_argument("triangles: expected indices below " + std::to_string(p_count) + ", got " +
                                  std::to_string(p_indices[i]) + " in triangle " + std::to_string(i / 3));
}

std::vector<std::uint32_t> Ascending(std::size_t p_count) {
  std::vector<std::uint32_t> numbers(p_count);
  std::iota(numbers.begin(), numbers.end(), 0U);
  return numbers;
}

/// Groups of triangles, whole ones.
std::vector<ObjScene::Group> TrianglesOf(const ObjScene& p_mesh) {
  std::vector<ObjScene::Group> groups;
  for (const ObjScene::Group& group : p_mesh.groups) {
    const std::size_t count = p_mesh.indices.size();
    if (group.first > count || group.count > count - group.first)
      throw std::invalid_argument("groups: expected indices 0 to " + std::to_string(count) + ", got a group from " +
                                  std::to_string(group.first) + " of " + std::to_string(group.count));
    if (group.primitive == ObjScene::Triangles)
      groups.push_back(group);
  }
  return groups;
}

std::array<float, 3> DiffuseOf(const ObjScene& p_mesh, int p_material) {
  const bool isKnown = p_material >= 0 && static_cast<std::size_t>(p_material) < p_mesh.materials.size();
  return isKnown ? p_mesh.materials[static_cast<std::size_t>(p_material)].diffuse : std::array<float, 3>{1, 1, 1};
}

bool HasColors(const ObjScene& p_mesh, const std::vector<ObjScene::Group>& p_groups) {
  const bool areVerticesColored =
      p_mesh.colors.size() == p_mesh.positions.size() / 3 * 4 &&
      std::any_of(p_mesh.colors.begin(), p_mesh.colors.end(), [](float p_c) { return p_c != 1; });
  return areVerticesColored || std::any_of(p_groups.begin(), p_groups.end(), [&](const ObjScene::Group& p_group) {
           return p_group.material >= 0 && DiffuseOf(p_mesh, p_group.material) != ObjScene::Material().diffuse;
         });
}

GpuMesh::Rgba ColorOf(const ObjScene& p_mesh, std::uint32_t p_vertex, const std::array<float, 3>& p_diffuse) {
  GpuMesh::Rgba color{};
  for (std::size_t i = 0; i < 4; ++i) {
    const std::size_t at = 4 * std::size_t{p_vertex} + i;
    const float own = at < p_mesh.colors.size() ? p_mesh.colors[at] : 1;
    const float share = i < 3 ? own * p_diffuse[i] : own;
    color[i] = static_cast<unsigned char>(std::clamp(share >= 0 ? share : 0.0F, 0.0F, 1.0F) * 255 + 0.5F);
  }
  return color;
}

} // namespace

MeshData DataOf(std::vector<Point> p_positions, std::vector<std::uint32_t> p_indices) {
  RequireIndices(p_indices, p_positions.size());
  MeshData data;
  data.positions = std::move(p_positions);
  data.parts.push_back({Ascending(data.positions.size()), std::move(p_indices), {}});
  return data;
}

MeshData DataOf(const ObjScene& p_mesh) {
  const std::size_t count = p_mesh.positions.size() / 3;
  const std::vector<ObjScene::Group> groups = TrianglesOf(p_mesh);
  std::vector<std::uint32_t> indices;
  for (const ObjScene::Group& group : groups) {
    const auto first = p_mesh.indices.begin() + static_cast<std::ptrdiff_t>(group.first);
    indices.insert(indices.end(), first, first + static_cast<std::ptrdiff_t>(group.count / 3 * 3));
  }
  MeshData data = DataOf(Points(Array3(p_mesh.positions.data(), count)), std::move(indices));
  if (p_mesh.normals.size() == 3 * count)
    data.normals = Points(Array3(p_mesh.normals.data(), count));
  if (!HasColors(p_mesh, groups))
    return data;

  // The first material of a vertex takes its number; each further one gets a vertex of the part.
  MeshPart& part = data.parts.front();
  part.colors.assign(count, {255, 255, 255, 255});
  constexpr int Unused = std::numeric_limits<int>::min();
  std::vector<int> firstMaterial(count, Unused);
  std::map<std::pair<std::uint32_t, int>, std::uint32_t> further;
  auto index = part.indices.begin();
  for (const ObjScene::Group& group : groups) {
    const std::array<float, 3> diffuse = DiffuseOf(p_mesh, group.material);
    for (std::size_t i = 0; i < group.count / 3 * 3; ++i, ++index) {
      const std::uint32_t vertex = *index;
      if (firstMaterial[vertex] == Unused) {
        firstMaterial[vertex] = group.material;
        part.colors[vertex] = ColorOf(p_mesh, vertex, diffuse);
      }
      if (firstMaterial[vertex] == group.material)
        continue;
      const auto [entry, isNew] =
          further.insert({{vertex, group.material}, static_cast<std::uint32_t>(part.elements.size())});
      *index = entry->second;
      if (isNew) {
        part.elements.push_back(vertex);
        part.colors.push_back(ColorOf(p_mesh, vertex, diffuse));
      }
    }
  }
  return data;
}

Point PlacedNormal(const DataTransform& p_transform, const Point& p_position, const Point& p_normal) {
  const Point slopes = p_transform.Direction(p_position, {1, 1, 1});
  return Normalize(Point(p_normal.x / slopes.x, p_normal.y / slopes.y, p_normal.z / slopes.z));
}

} // namespace Vek::Chart::Scene::Private
