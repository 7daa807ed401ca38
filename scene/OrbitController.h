#pragma once

#include "scene/Export.h"

#include "scene/Camera.h"

#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"

namespace Vek::Chart::Scene {

/// Changes a camera by the movements of a pointer, as a turntable: it orbits the target with z up, pans in the plane of
/// the target, zooms to what is under the cursor, and returns to the start. Draws nothing and needs no window system.
///
/// Distances are pixels, x to the right and **y upwards**, and positions are pixels of the window from its lower left
/// corner, as Camera has them. Mouse events of Qt count y downwards and in pixels of the screen: negate their y, and
/// multiply positions and pans by the device pixel ratio where the viewport is in pixels of the device.
///
/// The camera's radius grows with the distance from the start's target, so that nothing that the start camera shows is
/// clipped.
///
///     OrbitController orbit(camera);
///     orbit.Rotate(dx, dy);                   // left button
///     orbit.Pan(dx, dy, viewport);            // middle button
///     orbit.Zoom(notches, cursor, viewport);  // wheel
///     const Camera& moved = orbit.Camera();
///
/// \snippet SceneViewSnippets.cpp OrbitController
/// \image html parts/OrbitController.png
/// \ingroup view
class VEK_SCENE_API OrbitController {
public:
  static constexpr double DegreesPerPixel = 0.5; ///< of Rotate
  static constexpr double ZoomPerNotch = 0.875;  ///< factor of the distance for one notch

  /// With a default camera.
  OrbitController() = default;
  /// `p_start` is what Reset returns to.
  explicit OrbitController(const Scene::Camera& p_start)
      : _start(p_start)
      , _camera(p_start) {}

  /// The camera after all movements.
  const Scene::Camera& Camera() const { return _camera; }

  /// Replaces the camera by one that something else has moved; the start stays.
  void SetCamera(const Scene::Camera& p_camera) { _camera = p_camera; }
  /// Returns to the start camera.
  void Reset() { _camera = _start; }
  /// Replaces the angles by those of a usual view; target and distance stay.
  void Look(Scene::Camera::StandardView p_view) { _camera.Look(p_view); }
  /// Switches between perspective and parallel projection; the target's plane keeps its scale.
  void SetProjection(Scene::Camera::Projection p_projection) { _camera.projection = p_projection; }

  /// Rotates the scene with the pointer, half a degree a pixel. The elevation stops at the poles.
  void Rotate(double p_x, double p_y);
  /// Moves the scene with the pointer; points in the target's plane stay under it. Empty viewports change nothing.
  void Pan(double p_x, double p_y, const Types::Viewport<0>& p_viewport);
  /// Zooms in by notches of a wheel, out by negative ones. The target stays in the middle.
  void Zoom(double p_notches);
  /// The same, while the point of the target's plane at `p_cursor` stays under it.
  void Zoom(double p_notches, const Scene::Camera::Pixel& p_cursor, const Types::Viewport<0>& p_viewport);
  /// The same, while `p_point` stays at its pixel. For a point of a surface, as picking finds it, the target
  /// approaches its depth, so that zooming in ends at that surface.
  void ZoomAbout(double p_notches, const Types::Vector3_Base<double>& p_point);
  /// Makes a point the target, in the middle of the image; angles and distance stay. Points that are not finite change
  /// nothing.
  void CenterOn(const Types::Vector3_Base<double>& p_point);

private:
  void MoveTarget(const Types::Vector3_Base<double>& p_target);

  Scene::Camera _start;
  Scene::Camera _camera;
};

} // namespace Vek::Chart::Scene
