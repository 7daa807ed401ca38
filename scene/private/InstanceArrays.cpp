#include "scene/private/InstanceArrays.h"

#include "scene/PickPass.h"
#include "scene/private/MeshShaders.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene::Private {

namespace {

using Point = Types::Vector3_Base<double>;
using Record = Ogl::Vec3<float>;
using Types::Matrix3;

bool IsFinite(const Point& p_point) {
  return std::isfinite(p_point.x) && std::isfinite(p_point.y) && std::isfinite(p_point.z);
}

/// A vector of length 1; zero for those that are zero or not finite.
Point UnitOrZero(const Point& p_direction) {
  const double largest = std::max({std::abs(p_direction.x), std::abs(p_direction.y), std::abs(p_direction.z)});
  return IsFinite(p_direction) && largest > 0 ? Normalize(p_direction / largest) : Point();
}

/// Calls with the points in parts, so that copies of a part are all the memory that it takes.
template <class Call>
void ForParts(const Array3& p_points, const Call& p_call) {
  constexpr std::size_t Part = 8192;
  for (std::size_t first = 0; first < p_points.Count(); first += Part)
    p_call(p_points.Part(first, Part));
}

} // namespace

std::vector<Record> StoredPositions(const Array3& p_positions, const Point& p_origin) {
  std::vector<Record> records;
  records.reserve(p_positions.Count());
  ForParts(p_positions, [&](const Array3& p_part) {
    for (const auto& point : FloatPoints(p_part, p_origin)) {
      const bool isFinite = std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
      records.push_back(isFinite ? Record{point.x, point.y, point.z} : Record{MissingValue, 0, 0});
    }
  });
  return records;
}

std::vector<float> StoredSizes(const Array1& p_sizes) {
  std::vector<float> sizes = FloatValues(p_sizes);
  for (float& size : sizes)
    size = size > 0 && std::isfinite(size) ? size : 0;
  return sizes;
}

std::vector<float> StoredValues(const Array1& p_values) {
  std::vector<float> values = FloatValues(p_values);
  std::transform(values.begin(), values.end(), values.begin(), StoredValue);
  return values;
}

std::vector<float> StoredDirections(const Array3& p_directions) {
  std::vector<float> stored;
  stored.reserve(DirectionFloats * p_directions.Count());
  ForParts(p_directions, [&](const Array3& p_part) {
    for (const Point& direction : Points(p_part)) {
      const Point unit = UnitOrZero(direction);
      for (const double number : {unit.x, unit.y, unit.z})
        stored.push_back(static_cast<float>(number));
    }
  });
  return stored;
}

std::size_t CountUndirected(const std::vector<float>& p_directions) {
  std::size_t count = 0;
  for (std::size_t i = 0; i + 2 < p_directions.size(); i += DirectionFloats)
    count += p_directions[i] == 0 && p_directions[i + 1] == 0 && p_directions[i + 2] == 0 ? 1 : 0;
  return count;
}

std::vector<float> StoredRotations(const std::vector<Matrix3>& p_rotations) {
  std::vector<float> stored;
  stored.reserve(RotationFloats * p_rotations.size());
  for (const Matrix3& rotation : p_rotations) {
    const Point x = rotation * Point(1, 0, 0), y = rotation * Point(0, 1, 0);
    const bool isFinite = IsFinite(x) && IsFinite(y);
    for (const double number : {x.x, x.y, x.z, y.x, y.y, y.z})
      stored.push_back(isFinite ? static_cast<float>(number) : 0);
  }
  return stored;
}

std::vector<GpuMesh::Rgba> StoredIds(const std::vector<std::uint32_t>& p_ids, std::size_t p_count) {
  std::vector<GpuMesh::Rgba> bytes(p_count);
  for (std::size_t i = 0; i < p_count; ++i) {
    const std::size_t id = p_ids.empty() ? std::min<std::size_t>(i, PickPass::NoElement) : p_ids[i];
    if (!p_ids.empty() && id >= PickPass::NoElement)
      throw std::invalid_argument("InstancedMesh: ids: expected numbers below " + std::to_string(PickPass::NoElement) +
                                  ", got " + std::to_string(id));
    bytes[i] = {static_cast<unsigned char>(id & 255), static_cast<unsigned char>(id >> 8 & 255),
                static_cast<unsigned char>(id >> 16 & 255), 255};
  }
  return bytes;
}

} // namespace Vek::Chart::Scene::Private
