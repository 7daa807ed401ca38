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

/// The indices of groups, one group after the other.
std::vector<std::uint32_t> IndicesOf(const ObjScene& p_mesh, const std::vector<ObjScene::Group>& p_groups) {
  std::vector<std::uint32_t> indices;
  for (const ObjScene::Group& group : p_groups) {
    const auto first = p_mesh.indices.begin() + static_cast<std::ptrdiff_t>(group.first);
    indices.insert(indices.end(), first, first + static_cast<std::ptrdiff_t>(group.count / 3 * 3));
  }
  RequireIndices(indices, p_mesh.positions.size() / 3);
  return indices;
}

MeshPart PlainPart(const ObjScene& p_mesh, const std::vector<ObjScene::Group>& p_groups) {
  const std::size_t count = p_mesh.positions.size() / 3;
  MeshPart part;
  part.elements = Ascending(count);
  part.indices = IndicesOf(p_mesh, p_groups);
  if (!HasColors(p_mesh, p_groups))
    return part;

  // The first material of a vertex takes its number; each further one gets a vertex of the part.
  part.colors.assign(count, {255, 255, 255, 255});
  constexpr int Unused = std::numeric_limits<int>::min();
  std::vector<int> firstMaterial(count, Unused);
  std::map<std::pair<std::uint32_t, int>, std::uint32_t> further;
  auto index = part.indices.begin();
  for (const ObjScene::Group& group : p_groups) {
    const std::array<float, 3> diffuse = DiffuseOf(p_mesh, group.material);
    for (std::size_t i = 0; i < group.count / 3 * 3; ++i, ++index) {
      const std::uint32_t vertex = *index;
      if (firstMaterial[vertex] == Unused) {
        firstMaterial[vertex] = group.material;
        part.colors[vertex] = ColorOf(p_mesh, vertex, diffuse);
      }
      if (firstMaterial[vertex] == group.material)
        continue;
      const auto number = static_cast<std::uint32_t>(part.elements.size());
      const auto [entry, isNew] = further.insert({{vertex, group.material}, number});
      *index = entry->second;
      if (isNew) {
        part.elements.push_back(vertex);
        part.colors.push_back(ColorOf(p_mesh, vertex, diffuse));
      }
    }
  }
  return part;
}

bool HasTexture(const ObjScene& p_mesh, int p_material) {
  if (p_material < 0 || static_cast<std::size_t>(p_material) >= p_mesh.materials.size() ||
      p_mesh.texCoords.size() != p_mesh.positions.size() / 3 * 2)
    return false;
  const ObjScene::Material& material = p_mesh.materials[static_cast<std::size_t>(p_material)];
  return !material.diffuseTexture.empty() || !material.diffuseImage.empty();
}

QImage TextureOf(const ObjScene::Material& p_material) {
  const std::vector<std::uint8_t>& bytes = p_material.diffuseImage;
  return bytes.empty() ? QImage(QString::fromStdString(p_material.diffuseTexture))
                       : QImage::fromData(bytes.data(), static_cast<int>(bytes.size()));
}

/// Groups of one material, with the vertices that they use.
MeshPart TexturedPart(const ObjScene& p_mesh, const std::vector<ObjScene::Group>& p_groups, const QImage& p_texture) {
  MeshPart part;
  const std::array<float, 3> diffuse = DiffuseOf(p_mesh, p_groups.front().material);
  const auto byte = [](float p_share) { return static_cast<int>(std::clamp(p_share, 0.0F, 1.0F) * 255 + 0.5F); };
  part.texture = p_texture;
  part.tint = QColor(byte(diffuse[0]), byte(diffuse[1]), byte(diffuse[2]));
  part.indices = IndicesOf(p_mesh, p_groups);
  constexpr auto None = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> numbers(p_mesh.positions.size() / 3, None);
  for (std::uint32_t& index : part.indices) {
    const std::uint32_t vertex = index;
    if (numbers[vertex] == None) {
      numbers[vertex] = static_cast<std::uint32_t>(part.elements.size());
      part.elements.push_back(vertex);
      part.texCoords.push_back(
          {p_mesh.texCoords[2 * std::size_t{vertex}], p_mesh.texCoords[2 * std::size_t{vertex} + 1]});
    }
    index = numbers[vertex];
  }
  return part;
}

} // namespace

MeshData DataOf(std::vector<Point> p_positions, std::vector<std::uint32_t> p_indices) {
  RequireIndices(p_indices, p_positions.size());
  MeshData data;
  data.positions = std::move(p_positions);
  data.parts.emplace_back();
  data.parts.front().elements = Ascending(data.positions.size());
  data.parts.front().indices = std::move(p_indices);
  return data;
}

MeshData DataOf(const ObjScene& p_mesh) {
  const std::size_t count = p_mesh.positions.size() / 3;
  MeshData data;
  data.positions = Points(Array3(p_mesh.positions.data(), count));
  if (p_mesh.normals.size() == 3 * count)
    data.normals = Points(Array3(p_mesh.normals.data(), count));
  std::map<int, std::vector<ObjScene::Group>> textured; // by material
  std::vector<ObjScene::Group> plain;
  std::map<int, QImage> textures;
  for (const ObjScene::Group& group : TrianglesOf(p_mesh)) {
    if (HasTexture(p_mesh, group.material) && textures.find(group.material) == textures.end()) {
      textures[group.material] = TextureOf(p_mesh.materials[static_cast<std::size_t>(group.material)]);
      data.unreadTextures += textures[group.material].isNull() ? 1 : 0;
    }
    const auto texture = textures.find(group.material);
    (texture == textures.end() || texture->second.isNull() ? plain : textured[group.material]).push_back(group);
  }
  data.parts.push_back(PlainPart(p_mesh, plain));
  for (const auto& [material, groups] : textured)
    data.parts.push_back(TexturedPart(p_mesh, groups, textures[material]));
  return data;
}

Point PlacedNormal(const DataTransform& p_transform, const Point& p_position, const Point& p_normal) {
  const Point slopes = p_transform.Direction(p_position, {1, 1, 1});
  return Normalize(Point(p_normal.x / slopes.x, p_normal.y / slopes.y, p_normal.z / slopes.z));
}

} // namespace Vek::Chart::Scene::Private
