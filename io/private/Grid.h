#pragma once

#include "io/Volume.h"

#include <array>
#include <cmath>

namespace Vek::Chart::Io::Private {

/// Sets spacing and orientation from the vectors between neighbouring voxels along the axes. An axis without vector
/// keeps a spacing of 1; the third one is perpendicular to the others then.
inline void SetSteps(const std::array<Volume::Vector, 3>& p_steps, Volume& p_volume) {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const Volume::Vector& step = p_steps[axis];
    const double length = std::hypot(step[0], step[1], step[2]);
    if (!(length > 0) || !std::isfinite(length))
      continue;
    p_volume.spacing[axis] = length;
    for (std::size_t i = 0; i < 3; ++i)
      p_volume.orientation[axis][i] = step[i] / length;
  }
  if (p_steps[2] != Volume::Vector{0, 0, 0})
    return;
  const Volume::Vector& u = p_volume.orientation[0];
  const Volume::Vector& v = p_volume.orientation[1];
  const Volume::Vector normal{u[1] * v[2] - u[2] * v[1], u[2] * v[0] - u[0] * v[2], u[0] * v[1] - u[1] * v[0]};
  if (const double length = std::hypot(normal[0], normal[1], normal[2]); length > 0)
    p_volume.orientation[2] = {normal[0] / length, normal[1] / length, normal[2] / length};
}

} // namespace Vek::Chart::Io::Private
