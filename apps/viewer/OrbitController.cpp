#include "apps/viewer/OrbitController.h"

#include <cmath>

namespace Vek::Chart::Viewer {

void OrbitController::Orbit(const QPointF& p_pixels) {
  constexpr double DegreesPerPixel = 0.5;
  _camera.Orbit(-DegreesPerPixel * p_pixels.x(), DegreesPerPixel * p_pixels.y());
}

void OrbitController::Pan(const QPointF& p_pixels, double p_height) {
  if (!(p_height > 0))
    return;
  const double angle = Types::Angle::FromDegrees(_camera.fieldOfView / 2).Radians();
  const double unitsPerPixel = 2 * _camera.distance * std::tan(angle) / p_height;
  // The upper rows of the view matrix are the axes of the picture.
  const auto view = _camera.ViewMatrix();
  const Types::Vector3_Base<double> right(view[0], view[4], view[8]);
  const Types::Vector3_Base<double> up(view[1], view[5], view[9]);
  _camera.target = _camera.target + (up * p_pixels.y() - right * p_pixels.x()) * unitsPerPixel;
  // The picture stays where it is, and must not be clipped for that.
  _camera.radius = _start.radius + Length(_camera.target - _start.target);
}

void OrbitController::Zoom(double p_notches) {
  _camera.Zoom(std::pow(0.875, p_notches));
}

} // namespace Vek::Chart::Viewer
