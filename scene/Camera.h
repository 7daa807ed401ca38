#pragma once

#include "scene/Export.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>

namespace Vek::Chart::Scene {

/// A perspective camera that orbits a target; z is up. With azimuth 0 it looks north (towards +y), with 90 east (+x);
/// elevation 90 looks straight down.
struct VEK_SCENE_API Camera {
  Types::Vector3_Base<double> target;
  double distance = 10;
  double azimuth = 0;      ///< degrees
  double elevation = 30;   ///< degrees above the horizon, −90 to 90
  double fieldOfView = 30; ///< degrees from the lower to the upper border
  double radius = 5;       ///< what is farther than this from the target may be clipped

  /// Where a point of the scene falls: window pixels from the lower left, and whether it lies before the camera.
  struct Pixel {
    double x = 0;
    double y = 0;
    bool visible = false;
  };

  Types::Vector3_Base<double> Eye() const;
  /// The 4 × 4 matrices column by column, as GL takes them.
  std::array<double, 16> ViewMatrix() const;
  std::array<double, 16> ProjectionMatrix(double p_aspect) const;
  Pixel Project(const Types::Vector3_Base<double>& p_point, const Types::Viewport<0>& p_viewport) const;
  /// How large a unit appears at a place; 0 behind the camera.
  double PixelsPerUnit(const Types::Vector3_Base<double>& p_point, const Types::Viewport<0>& p_viewport) const;

  /// The place that appears at a pixel and has a depth there, 0 (near) to 1 (far), as a depth buffer holds it.
  Types::Vector3_Base<double> Unproject(const Pixel& p_pixel, double p_depth,
                                        const Types::Viewport<0>& p_viewport) const;

  /// Turns by degrees; the elevation stops at straight up and straight down.
  void Orbit(double p_azimuth, double p_elevation);
  /// Multiplies the distance.
  void Zoom(double p_factor);

  /// Loads both matrices; releasing the guard restores them and the matrix mode.
  boost::shared_ptr<void> Apply(const Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport) const;
};

/// Whether two cameras show the same.
VEK_SCENE_API bool operator==(const Camera& p_a, const Camera& p_b);

} // namespace Vek::Chart::Scene
