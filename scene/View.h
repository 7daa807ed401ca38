#pragma once

#include "scene/Export.h"

#include "scene/Camera.h"

#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"

namespace Vek::Chart::Scene {

/// A camera, and the part of the window that shows what it sees.
///
/// \ingroup view
struct VEK_SCENE_API View {
  Camera camera;               ///< of the scene
  Types::Viewport<0> viewport; ///< in window pixels

  /// The window pixel of a point of the scene.
  Camera::Pixel Project(const Types::Vector3_Base<double>& p_point) const { return camera.Project(p_point, viewport); }
};

} // namespace Vek::Chart::Scene
