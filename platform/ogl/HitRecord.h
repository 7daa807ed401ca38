#pragma once

namespace Vek::Chart::Ogl {

/// What picking found under a pixel. Depths run from 0 at the near plane to 1 at the far plane.
struct HitRecord {
  /// The depth of the far plane: nothing was hit.
  static constexpr double DepthFarthest = 1.0;
};

} // namespace Vek::Chart::Ogl
