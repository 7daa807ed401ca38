#include "library/ComputeNormals.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Library {

namespace {

using Vector = Types::Vector3_Base<double>;

Vector ToDouble(const Vector& p_vector) {
  return p_vector;
}
Vector ToDouble(const Ogl::Vec3<float>& p_vector) {
  return {p_vector.x, p_vector.y, p_vector.z};
}

void Narrow(const Vector& p_from, Vector& p_to) {
  p_to = p_from;
}
void Narrow(const Vector& p_from, Ogl::Vec3<float>& p_to) {
  p_to = {static_cast<float>(p_from.x), static_cast<float>(p_from.y), static_cast<float>(p_from.z)};
}

double LargestComponent(const Vector& p_vector) {
  return std::max({std::abs(p_vector.x), std::abs(p_vector.y), std::abs(p_vector.z)});
}

bool IsFinite(const Vector& p_vector) {
  return std::isfinite(p_vector.x) && std::isfinite(p_vector.y) && std::isfinite(p_vector.z);
}

/// The height of the thinnest triangle, by its longest edge. Rounding to float alone turns thinner ones anywhere.
constexpr double ThinnestShare = 1e-7;

/// Adds the normal of a triangle, weighted by the angle at each corner, to the sums of its corners.
void AddTriangle(const std::array<Vector, 3>& p_corners, const std::array<Vector*, 3>& p_sums) {
  std::array<Vector, 3> edges; // edge i runs from corner i to the next
  double scale = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    edges[i] = p_corners[(i + 1) % 3] - p_corners[i];
    if (!IsFinite(edges[i]))
      return;
    scale = std::max(scale, LargestComponent(edges[i]));
  }
  if (scale == 0)
    return;
  for (Vector& edge : edges)
    edge = edge / scale; // so that products neither overflow nor vanish
  const Vector area = Cross(edges[0], edges[1]);
  if (Length(area) <= ThinnestShare)
    return;
  const Vector normal = Normalize(area);
  for (std::size_t i = 0; i < 3; ++i) {
    const Vector& previous = edges[(i + 2) % 3];
    *p_sums[i] += normal * std::atan2(Length(area), -Dot(previous, edges[i]));
  }
}

/// ComputeNormals of any kind of positions. Calls p_forIndices(add), which calls add(indices, count) for each part.
template <class Position, class ForIndices>
void Compute(const Position* p_positions, std::size_t p_positionCount, ForIndices p_forIndices, Position* p_normals) {
  std::vector<Vector> sums(p_positionCount);
  p_forIndices([&](const std::uint32_t* p_indices, std::size_t p_indexCount) {
    for (std::size_t i = 0; i + 2 < p_indexCount; i += 3) {
      const std::uint32_t a = p_indices[i], b = p_indices[i + 1], c = p_indices[i + 2];
      if (std::max({a, b, c}) < p_positionCount)
        AddTriangle({ToDouble(p_positions[a]), ToDouble(p_positions[b]), ToDouble(p_positions[c])},
                    {&sums[a], &sums[b], &sums[c]});
    }
  });
  // What is left where triangles cancel out is rounding: a corner's weight is a radian or so.
  constexpr double Cancelled = 1e-12;
  for (std::size_t i = 0; i < p_positionCount; ++i)
    Narrow(Length(sums[i]) > Cancelled ? Normalize(sums[i]) : Vector(0, 0, 1), p_normals[i]);
}

template <class Position>
std::vector<Position> Computed(const Position* p_positions, std::size_t p_positionCount, const std::uint32_t* p_indices,
                               std::size_t p_indexCount) {
  std::vector<Position> normals(p_positions == nullptr ? 0 : p_positionCount);
  const auto forIndices = [&](const auto& p_add) { p_add(p_indices, p_indices == nullptr ? 0 : p_indexCount); };
  Compute(p_positions, normals.size(), forIndices, normals.data());
  return normals;
}

} // namespace

std::vector<Vector> ComputeNormals(const Vector* p_positions, std::size_t p_positionCount,
                                   const std::uint32_t* p_indices, std::size_t p_indexCount) {
  return Computed(p_positions, p_positionCount, p_indices, p_indexCount);
}

std::vector<Ogl::Vec3<float>> ComputeNormals(const Ogl::Vec3<float>* p_positions, std::size_t p_positionCount,
                                             const std::uint32_t* p_indices, std::size_t p_indexCount) {
  return Computed(p_positions, p_positionCount, p_indices, p_indexCount);
}

bool ComputeNormals(ObjModel& p_model) {
  if (p_model.PrimitiveType() != Ogl::VertexBuffer::Triangles)
    return false;
  const boost::shared_ptr<ObjModel::VertexArray> positions = p_model.Vertices();
  const auto normals = boost::make_shared<ObjModel::VertexArray>(positions ? positions->size() : 0);
  const auto forIndices = [groups = p_model.Groups()](const auto& p_add) {
    if (groups)
      for (const boost::shared_ptr<ObjModel::ObjGroup>& group : *groups)
        if (group)
          p_add(group->indices.data(), group->indices.size());
  };
  Compute(positions ? positions->data() : nullptr, normals->size(), forIndices, normals->data());
  p_model.SetNormals(normals);
  return true;
}

} // namespace Vek::Chart::Library
