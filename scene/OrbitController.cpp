#include "scene/OrbitController.h"

#include <cmath>

namespace Vek::Chart::Scene {

void OrbitController::Rotate(double p_x, double p_y) {
  if (std::isfinite(p_x) && std::isfinite(p_y))
    _camera.Orbit(DegreesPerPixel * p_x, -DegreesPerPixel * p_y);
}

void OrbitController::Pan(double p_x, double p_y, const Types::Viewport<0>& p_viewport) {
  const double scale = _camera.PixelsPerUnit(_camera.target, p_viewport);
  if (!(scale > 0))
    return;
  const Scene::Camera::Basis basis = _camera.Directions();
  MoveTarget(_camera.target - (basis.right * p_x + basis.up * p_y) / scale);
}

void OrbitController::Zoom(double p_notches) {
  _camera.Zoom(std::pow(ZoomPerNotch, p_notches));
}

void OrbitController::Zoom(double p_notches, const Scene::Camera::Pixel& p_cursor,
                           const Types::Viewport<0>& p_viewport) {
  ZoomAbout(p_notches, _camera.UnprojectToTarget(p_cursor, p_viewport));
}

void OrbitController::ZoomAbout(double p_notches, const Types::Vector3_Base<double>& p_point) {
  // Scaling target and eye about a point changes no direction from the eye to it.
  const double before = _camera.distance;
  Zoom(p_notches);
  MoveTarget(p_point + (_camera.target - p_point) * (_camera.distance / before));
}

void OrbitController::CenterOn(const Types::Vector3_Base<double>& p_point) {
  MoveTarget(p_point);
}

void OrbitController::MoveTarget(const Types::Vector3_Base<double>& p_target) {
  const double moved = Length(p_target - _start.target);
  if (!std::isfinite(moved))
    return;
  _camera.target = p_target;
  _camera.radius = _start.radius + moved;
}

} // namespace Vek::Chart::Scene
