#include "scene/private/VolumeLayout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene::Private {

namespace {

using Order = std::array<std::size_t, 3>; // of x, y, z: the axis of the file

/// The assignment of axes whose directions agree best.
Order NearestOrder(const Io::Volume& p_volume) {
  constexpr std::array<Order, 6> Orders{{{0, 1, 2}, {1, 0, 2}, {0, 2, 1}, {2, 1, 0}, {1, 2, 0}, {2, 0, 1}}};
  const auto agreement = [&](const Order& p_order) {
    double sum = 0;
    for (std::size_t axis = 0; axis < 3; ++axis)
      sum += std::abs(p_volume.orientation[p_order[axis]][axis]);
    return sum;
  };
  return *std::max_element(Orders.begin(), Orders.end(),
                           [&](const Order& p_a, const Order& p_b) { return agreement(p_a) < agreement(p_b); });
}

/// The values with the axis `p_order[0]` fastest.
std::vector<float> Reordered(std::vector<float> p_values, const std::array<std::size_t, 3>& p_sizes,
                             const Order& p_order) {
  if (p_order == Order{0, 1, 2})
    return p_values;
  const std::array<std::size_t, 3> steps{1, p_sizes[0], p_sizes[0] * p_sizes[1]};
  std::vector<float> values;
  values.reserve(p_values.size());
  for (std::size_t k = 0; k < p_sizes[p_order[2]]; ++k)
    for (std::size_t j = 0; j < p_sizes[p_order[1]]; ++j)
      for (std::size_t i = 0; i < p_sizes[p_order[0]]; ++i)
        values.push_back(p_values[i * steps[p_order[0]] + j * steps[p_order[1]] + k * steps[p_order[2]]]);
  return values;
}

void Require(const Io::Volume& p_volume) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::size_t size = p_volume.size[axis];
    if (size < 1 || size > static_cast<std::size_t>(std::numeric_limits<int>::max() / 2))
      throw std::invalid_argument("VoxelGrid: expected sizes from 1 to 2^30, got " + std::to_string(size));
    const std::vector<double>& offsets = p_volume.offsets[axis];
    const bool isOrdered =
        offsets.empty() || (offsets.size() == size && std::is_sorted(offsets.begin(), offsets.end()) &&
                            std::all_of(offsets.begin(), offsets.end(), [](double p_x) { return std::isfinite(p_x); }));
    if (!isOrdered)
      throw std::invalid_argument("VoxelGrid: expected offsets that ascend, one for each of " + std::to_string(size) +
                                  " voxels along the axis");
    if (!(p_volume.spacing[axis] > 0 && std::isfinite(p_volume.spacing[axis])))
      throw std::invalid_argument("VoxelGrid: expected a spacing above 0, got " +
                                  std::to_string(p_volume.spacing[axis]));
  }
  if (p_volume.channels < 1 ||
      p_volume.Count() / p_volume.channels / p_volume.size[0] / p_volume.size[1] != p_volume.size[2])
    throw std::invalid_argument("VoxelGrid: expected " + std::to_string(p_volume.size[0]) + " x " +
                                std::to_string(p_volume.size[1]) + " x " + std::to_string(p_volume.size[2]) +
                                " voxels, got " + std::to_string(p_volume.Count()) + " values of " +
                                std::to_string(p_volume.channels) + " channels");
}

/// The centres of an uneven axis, whose middle lies at p_center.
std::vector<double> Nodes(const std::vector<double>& p_offsets, double p_center, double p_middle, double p_along) {
  std::vector<double> nodes;
  for (const double offset : p_offsets)
    nodes.push_back(p_center + std::copysign(1.0, p_along) * (offset - p_middle));
  return nodes;
}

} // namespace

VolumeLayout LayOut(const Io::Volume& p_volume, std::size_t p_channel) {
  Require(p_volume);
  const Order order = NearestOrder(p_volume);
  const auto& size = p_volume.size;
  const Io::Volume::Vector center = p_volume.Position(
      static_cast<double>(size[0] - 1) / 2, static_cast<double>(size[1] - 1) / 2, static_cast<double>(size[2] - 1) / 2);
  double worst = 1; // cosine
  const auto axis = [&](std::size_t p_axis) {
    const std::size_t from = order[p_axis];
    const double along = p_volume.orientation[from][p_axis];
    worst = std::min(worst, std::abs(along));
    if (const std::vector<double>& offsets = p_volume.offsets[from]; !offsets.empty())
      return VoxelAxis::OfNodes(
          Nodes(offsets, center[p_axis], p_volume.Offset(from, double(size[from] - 1) / 2), along));
    const double half = p_volume.spacing[from] * static_cast<double>(size[from]) / 2;
    return VoxelAxis(static_cast<int>(size[from]), center[p_axis] - half, center[p_axis] + half, along < 0);
  };
  constexpr double Degrees = 57.29577951308232;
  constexpr double LeastTilt = 0.01; // directions were often rounded to float
  VolumeLayout layout{{}, {axis(0), axis(1), axis(2)}, 0, {}, {}, {}};
  layout.tilt = std::acos(std::min(worst, 1.0)) * Degrees;
  if (layout.tilt < LeastTilt)
    layout.tilt = 0;
  layout.values = Reordered(p_volume.Floats(p_channel), size, order);
  const bool hasNames = p_channel < p_volume.channelNames.size();
  layout.name = QString::fromStdString(hasNames ? p_volume.channelNames[p_channel] : p_volume.name);
  if (p_volume.channels > 1 && !hasNames)
    layout.name += (layout.name.isEmpty() ? QString() : QStringLiteral(", ")) +
                   QStringLiteral("channel %1 of %2").arg(p_channel + 1).arg(p_volume.channels);
  layout.unit = QString::fromStdString(p_volume.unit);
  layout.lengthUnit = QString::fromStdString(p_volume.lengthUnit);
  return layout;
}

} // namespace Vek::Chart::Scene::Private
