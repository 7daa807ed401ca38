#pragma once

#include "scene/Camera.h"

#include <QPointF>

namespace Vek::Chart::Viewer {

using namespace Scene;

/// Moves a camera by what a hand does to a picture: it turns around its target, slides in the plane that it faces, and
/// comes nearer. All movements are in pixels of the picture, x to the right, y down, as mouse events count.
class OrbitController {
public:
  OrbitController() = default;
  /// `p_start` is what Reset returns to.
  explicit OrbitController(const Scene::Camera& p_start)
      : _start(p_start)
      , _camera(p_start) {}

  const Scene::Camera& Camera() const { return _camera; }

  void Reset() { _camera = _start; }
  /// Turns with the hand: half a degree a pixel.
  void Orbit(const QPointF& p_pixels);
  /// Slides the picture so that what lies in the target's plane stays below the hand; `p_height` is the picture's.
  void Pan(const QPointF& p_pixels, double p_height);
  /// Comes nearer by notches of a wheel, each an eighth of the way; backwards with negative ones.
  void Zoom(double p_notches);

private:
  Scene::Camera _start;
  Scene::Camera _camera;
};

} // namespace Vek::Chart::Viewer
