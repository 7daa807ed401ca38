#include "io/MakeTexture.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Io {

Library::VoxelTexture MakeTexture(const Volume& p_volume, Utility::Scoped<Rgl>& p_gl) {
  using Texture = Library::VoxelTexture;
  Texture::Voxels voxels;
  const auto& size = p_volume.size;
  if (p_volume.Count() != size[0] * size[1] * size[2] * p_volume.channels)
    throw std::invalid_argument("MakeTexture: expected a value for each channel of each voxel, got " +
                                std::to_string(p_volume.Count()));
  constexpr std::size_t Most = std::numeric_limits<int>::max();
  for (std::size_t axis = 0; axis < 3; ++axis)
    voxels.size[axis] = int(std::min(size[axis], Most));
  voxels.channels = int(std::min(p_volume.channels, Most));
  voxels.values = p_volume.Data();
  std::vector<float> floats;
  switch (p_volume.ValueType()) {
  case Volume::UInt8:
    voxels.type = Texture::UInt8;
    break;
  case Volume::UInt16:
    voxels.type = Texture::UInt16;
    break;
  case Volume::Float32:
    voxels.type = Texture::Float32;
    break;
  default:
    voxels.type = Texture::Float32;
    floats.reserve(p_volume.Count());
    std::visit(
        [&](const auto& p_values) {
          for (const auto value : p_values)
            floats.push_back(static_cast<float>(value));
        },
        p_volume.values);
    voxels.values = floats.data();
  }
  return Texture(voxels, p_gl);
}

} // namespace Vek::Chart::Io
