#include "io/Volume.h"

#include "io/private/ValueRange.h"

#include <cmath>
#include <limits>
#include <stdexcept>

namespace Vek::Chart::Io {

namespace {

/// Throws unless there are as many values as the sizes need and p_channel is one of the channels.
void Check(const Volume& p_volume, std::size_t p_channel) {
  const std::array<std::size_t, 3>& size = p_volume.size;
  if (p_volume.Count() != size[0] * size[1] * size[2] * p_volume.channels)
    throw std::invalid_argument("Volume: expected " + std::to_string(size[0]) + " x " + std::to_string(size[1]) +
                                " x " + std::to_string(size[2]) + " x " + std::to_string(p_volume.channels) +
                                " values, got " + std::to_string(p_volume.Count()));
  if (p_channel >= p_volume.channels)
    throw std::invalid_argument("Volume: expected a channel below " + std::to_string(p_volume.channels) + ", got " +
                                std::to_string(p_channel));
}

} // namespace

std::size_t Volume::Count() const {
  return std::visit([](const auto& p_values) { return p_values.size(); }, values);
}

const void* Volume::Data() const {
  return std::visit([](const auto& p_values) -> const void* { return p_values.data(); }, values);
}

std::size_t Volume::ValueBytes() const {
  return std::visit([](const auto& p_values) { return sizeof p_values[0]; }, values);
}

bool Volume::IsAxisAligned() const {
  return orientation == std::array<Vector, 3>{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
}

double Volume::Offset(std::size_t p_axis, double p_index) const {
  const std::vector<double>& uneven = offsets[p_axis];
  if (uneven.size() < 2)
    return p_index * spacing[p_axis];
  const double last = static_cast<double>(uneven.size() - 2);
  const auto before = static_cast<std::size_t>(std::fmin(std::fmax(std::floor(p_index), 0), last));
  return uneven[before] + (p_index - static_cast<double>(before)) * (uneven[before + 1] - uneven[before]);
}

Volume::Vector Volume::Position(double p_i, double p_j, double p_k) const {
  const Vector index{p_i, p_j, p_k};
  Vector position = origin;
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (std::size_t i = 0; i < 3; ++i)
      position[i] += Offset(axis, index[axis]) * orientation[axis][i];
  return position;
}

double Volume::Value(std::size_t p_i, std::size_t p_j, std::size_t p_k, std::size_t p_channel) const {
  Check(*this, p_channel);
  if (p_i >= size[0] || p_j >= size[1] || p_k >= size[2])
    throw std::invalid_argument("Volume: no voxel (" + std::to_string(p_i) + ", " + std::to_string(p_j) + ", " +
                                std::to_string(p_k) + ")");
  const std::size_t index = p_channel + channels * (p_i + size[0] * (p_j + size[1] * p_k));
  return std::visit(
      [&](const auto& p_values) {
        return Private::IsPresent(p_values[index], noData) ? double(p_values[index])
                                                           : std::numeric_limits<double>::quiet_NaN();
      },
      values);
}

std::vector<float> Volume::Floats(std::size_t p_channel) const {
  Check(*this, p_channel);
  std::vector<float> floats;
  floats.reserve(Count() / channels);
  std::visit(
      [&](const auto& p_values) {
        for (std::size_t i = p_channel; i < p_values.size(); i += channels)
          floats.push_back(Private::IsPresent(p_values[i], noData) ? float(p_values[i])
                                                                   : std::numeric_limits<float>::quiet_NaN());
      },
      values);
  return floats;
}

std::array<double, 2> Volume::FindRange() const {
  return std::visit(
      [&](const auto& p_values) {
        Private::ValueRange found(noData);
        found.Add(p_values.data(), p_values.size());
        return found.Limits();
      },
      values);
}

} // namespace Vek::Chart::Io
