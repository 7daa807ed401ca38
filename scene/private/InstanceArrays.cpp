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

Axes AxesOf(const Matrix3& p_rotation) {
  const Point x = p_rotation * Point(1, 0, 0), y = p_rotation * Point(0, 1, 0);
  if (!IsFinite(x) || !IsFinite(y))
    return {};
  return {static_cast<float>(x.x), static_cast<float>(x.y), static_cast<float>(x.z),
          static_cast<float>(y.x), static_cast<float>(y.y), static_cast<float>(y.z)};
}

bool HasDirection(const Point& p_direction) {
  return IsFinite(p_direction) && !(p_direction == Point());
}

} // namespace

std::vector<Record> StoredPositions(const Array3& p_positions, const Point& p_origin) {
  std::vector<Record> records;
  records.reserve(p_positions.Count());
  for (const auto& point : FloatPoints(p_positions, p_origin)) {
    const bool isFinite = std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
    records.push_back(isFinite ? Record{point.x, point.y, point.z} : Record{MissingValue, 0, 0});
  }
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

std::vector<Axes> StoredDirections(const Array3& p_directions, const Point& p_up) {
  std::vector<Axes> axes;
  axes.reserve(p_directions.Count());
  for (const Point& direction : Points(p_directions))
    axes.push_back(HasDirection(direction) ? AxesOf(Matrix3::FromAxis(direction, p_up)) : Axes{});
  return axes;
}

std::vector<Axes> StoredRotations(const std::vector<Matrix3>& p_rotations) {
  std::vector<Axes> axes(p_rotations.size());
  std::transform(p_rotations.begin(), p_rotations.end(), axes.begin(), AxesOf);
  return axes;
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

std::size_t CountUndirected(const Array3& p_directions) {
  const std::vector<Point> directions = Points(p_directions);
  return static_cast<std::size_t>(
      std::count_if(directions.begin(), directions.end(), [](const Point& p_d) { return !HasDirection(p_d); }));
}

} // namespace Vek::Chart::Scene::Private
