#pragma once

#include "scene/Export.h"

#include "scene/Camera.h"

#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"

namespace Vek::Chart::Scene {

/// From where and into which part of the window a scene is drawn.
struct VEK_SCENE_API View {
  Camera camera;
  Types::Viewport<0> viewport;

  /// Pixels that make one point, the unit of letters, lines and legends: 1000 points are the height of the view.
  double PointSize() const { return static_cast<double>(viewport.height) / 1000.0; }
  Camera::Pixel Project(const Types::Vector3_Base<double>& p_point) const { return camera.Project(p_point, viewport); }
};

} // namespace Vek::Chart::Scene
