#include "scene/private/FlatNormals.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

using Record = GpuMesh::Record;
using Key = std::tuple<float, float, float>;
using Triangle = std::array<std::uint32_t, 3>;

Key KeyOf(const Record& p_record) {
  return {p_record.x, p_record.y, p_record.z};
}

/// Gives the normals of faces to vertices of theirs.
class Builder {
public:
  std::uint32_t NumberOf(const Record& p_position);
  void AddFace(std::vector<Triangle> p_triangles, const Record& p_normal);
  FlatTriangles Take() { return std::move(_flat); }

private:
  bool IsFree(std::uint32_t p_vertex, const Record& p_normal) const {
    return !_isTaken[p_vertex] || KeyOf(_flat.normals[p_vertex]) == KeyOf(p_normal);
  }
  std::uint32_t Add(const Record& p_position);

  FlatTriangles _flat;
  std::vector<bool> _isTaken;
  std::map<Key, std::uint32_t> _numbers;
};

std::uint32_t Builder::Add(const Record& p_position) {
  _flat.positions.push_back(p_position);
  _flat.normals.push_back({0, 0, 0});
  _isTaken.push_back(false);
  return static_cast<std::uint32_t>(_isTaken.size() - 1);
}

std::uint32_t Builder::NumberOf(const Record& p_position) {
  const auto found = _numbers.find(KeyOf(p_position));
  return found != _numbers.end() ? found->second : _numbers[KeyOf(p_position)] = Add(p_position);
}

void Builder::AddFace(std::vector<Triangle> p_triangles, const Record& p_normal) {
  const auto isInAll = [&](std::uint32_t p_vertex) {
    return std::all_of(p_triangles.begin(), p_triangles.end(), [&](const Triangle& p_triangle) {
      return std::count(p_triangle.begin(), p_triangle.end(), p_vertex) != 0;
    });
  };
  for (Triangle& triangle : p_triangles) {
    auto last = std::find_if(triangle.begin(), triangle.end(),
                             [&](std::uint32_t p_vertex) { return IsFree(p_vertex, p_normal) && isInAll(p_vertex); });
    if (last == triangle.end())
      last = std::find_if(triangle.begin(), triangle.end(),
                          [&](std::uint32_t p_vertex) { return IsFree(p_vertex, p_normal); });
    if (last == triangle.end()) {
      last = triangle.begin();
      *last = Add(_flat.positions[*last]);
    }
    std::rotate(triangle.begin(), last + 1, triangle.end());
    _flat.normals[triangle[2]] = p_normal;
    _isTaken[triangle[2]] = true;
    _flat.indices.insert(_flat.indices.end(), triangle.begin(), triangle.end());
  }
}

} // namespace

FlatTriangles FlatTriangles::Of(const std::vector<Record>& p_positions, const std::vector<Record>& p_normals,
                                const std::vector<std::uint32_t>& p_indices) {
  const std::size_t corners = p_indices.empty() ? p_positions.size() : p_indices.size();
  const auto vertexAt = [&](std::size_t p_corner) { return p_indices.empty() ? p_corner : p_indices[p_corner]; };
  Builder builder;
  std::vector<std::pair<Record, std::vector<Triangle>>> faces; // in their order
  std::map<Key, std::size_t> faceOf;
  for (std::size_t corner = 0; corner + 2 < corners; corner += 3) {
    const Record& normal = p_normals[vertexAt(corner)];
    Triangle triangle{};
    for (std::size_t i = 0; i < 3; ++i) {
      if (KeyOf(p_normals[vertexAt(corner + i)]) != KeyOf(normal))
        return {};
      triangle[i] = builder.NumberOf(p_positions[vertexAt(corner + i)]);
    }
    const auto [found, isNew] = faceOf.emplace(KeyOf(normal), faces.size());
    if (isNew)
      faces.push_back({normal, {}});
    faces[found->second].second.push_back(triangle);
  }
  for (const auto& [normal, triangles] : faces)
    builder.AddFace(triangles, normal);
  return builder.Take();
}

} // namespace Vek::Chart::Scene::Private
