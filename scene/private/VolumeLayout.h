#pragma once

#include "scene/private/VoxelAxis.h"

#include "io/Volume.h"

#include <QString>

#include <array>
#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// The voxels of a file with the axes in the order x, y, z.
struct VolumeLayout {
  std::vector<float> values; ///< x fastest
  std::array<VoxelAxis, 3> axes;
  double tilt = 0; ///< the largest angle between an axis and the one that it was in the file, in degrees
  QString name, unit, lengthUnit;
};

/// Throws std::invalid_argument for a channel that does not exist, sizes below 1, and a spacing or an origin that is
/// not finite.
VolumeLayout LayOut(const Io::Volume& p_volume, std::size_t p_channel);

} // namespace Vek::Chart::Scene::Private
