#pragma once

namespace Vek::Chart::Ogl {

/// The result of a pick at a pixel. Depths range from 0 at the near plane to 1 at the far plane.
struct HitRecord {
  /// The depth of the far plane, which means no hit.
  static constexpr double DepthFarthest = 1.0;
};

} // namespace Vek::Chart::Ogl
