#pragma once

#include "scene/Export.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>

namespace Vek::Chart::Scene {

/// A camera that orbits a target, in perspective or parallel projection; z is up.
///
/// A plain value: set the fields, or make them by LookAt, Look and Fit. With azimuth 0 the camera looks along +y, with
/// 90 along +x; elevation 90 looks straight down. The eye stands at
///
///     target + distance · (−sin azimuth cos elevation, −cos azimuth cos elevation, sin elevation)
///
/// matplotlib's 3-D axes count the azimuth of the eye from +x towards +y: their `azim` is −90 − azimuth here (their
/// default, azim −60 and elev 30, is StandardView::Chart), their `elev` is the elevation.
///
/// Pixels are those of the window, from its lower left corner, as in the viewport; they are not rounded, and the middle
/// of the lower left pixel is (0.5, 0.5).
///
///     Camera camera;
///     camera.Look(Camera::StandardView::Chart);
///     camera.Fit(bounds, viewport, {60, 40, 20, 50});
///     const auto guard = camera.Apply(gl, viewport);
///
/// **Large coordinates.** All functions subtract the target in double first, so that scenes of size 1 at coordinates
/// of 10⁹ are projected to 1e-6 of their size. GL computes in single precision and cannot: at 10⁶ its vertices jump by
/// 1/16. Keep the vertices of such scenes relative to a local origin (subtracted in double) and pass that origin
/// to Apply.
///
/// \snippet SceneViewSnippets.cpp Camera
/// \image html parts/Camera.png
/// \ingroup view
struct VEK_SCENE_API Camera {
  /// How the scene falls onto the image.
  enum class Projection {
    Perspective, ///< far things are small
    Parallel     ///< sizes do not depend on depth; the target's plane has the scale that it has in perspective
  };
  /// Usual directions; see Look.
  enum class StandardView {
    Front,     ///< towards +y
    Back,      ///< towards −y
    Left,      ///< from the left, towards +x
    Right,     ///< from the right, towards −x
    Top,       ///< down, with +x to the right
    Bottom,    ///< up, with +x to the right
    Isometric, ///< all three axes are equally short; the eye is at +x, −y, +z of the target
    Chart      ///< azimuth −30, elevation 30
  };

  Types::Vector3_Base<double> target; ///< what the camera orbits, in the middle of the image
  double distance = 10;               ///< of the eye from the target, above 0
  double azimuth = 0;                 ///< degrees clockwise, seen from above, from looking along +y
  double elevation = 30;              ///< degrees of the eye above the target's horizon, −90 to 90
  double fieldOfView = 30;            ///< degrees from the lower to the upper border, above 0 and below 180
  /// Everything this close to the target is drawn, as far as it lies before the eye. The planes that clip lie as close
  /// to this sphere as possible, because the depth buffer divides its steps among what lies between them: in
  /// perspective the near plane is at max(distance − radius, distance / 100), the far plane at distance + radius.
  double radius = 5;
  Projection projection = Projection::Perspective; ///< see Projection
  double roll = 0;                                 ///< degrees that the top of the camera leans to its right

  /// A position in the window.
  struct Pixel {
    double x = 0;         ///< to the right
    double y = 0;         ///< upwards
    bool visible = false; ///< before the eye; in parallel projection, whether the numbers are finite
  };
  /// The camera's directions in the scene: orthonormal, right × up = back.
  struct Basis {
    Types::Vector3_Base<double> right; ///< to the right of the image
    Types::Vector3_Base<double> up;    ///< upwards in the image
    Types::Vector3_Base<double> back;  ///< from the target to the eye
  };
  /// Borders of an image that are kept free, in pixels.
  struct Margins {
    double left = 0;   ///< at the left border
    double bottom = 0; ///< at the lower border
    double right = 0;  ///< at the right border
    double top = 0;    ///< at the upper border
  };

  /// The camera at `p_eye` that looks at `p_target`, the radius being their distance. `p_up` need not be perpendicular
  /// to the line of sight; where it is parallel to it, or zero, the roll is 0. Throws std::invalid_argument where eye
  /// and target are equal or a number is not finite.
  static Camera LookAt(const Types::Vector3_Base<double>& p_eye, const Types::Vector3_Base<double>& p_target,
                       const Types::Vector3_Base<double>& p_up = Types::Vector3_Base<double>(0, 0, 1));
  /// Looks at the target from a usual direction, without roll; changes nothing but the angles.
  void Look(StandardView p_view);
  /// Moves target and eye so that all eight corners of a box lie in the viewport without its margins, as large as the
  /// angles, the field of view and the projection allow: the box touches two opposite margins and has equal room at the
  /// two others. Sets `target` (into the plane of the box's centre), `distance` and `radius`.
  ///
  /// Boxes without extent in some directions are allowed: a single point is taken as a cube of edge 1, and the eye
  /// keeps a twentieth of the diagonal from the nearest corner. Margins that leave less than an eighth of a side are
  /// reduced in proportion until they leave that; a side of the viewport shorter than a pixel counts as one pixel.
  /// Throws std::invalid_argument where the box is empty or not finite.
  void Fit(const Types::BoundingBox_Base<double>& p_bounds, const Types::Viewport<0>& p_viewport,
           const Margins& p_margins);
  /// Fits the box into the whole viewport.
  void Fit(const Types::BoundingBox_Base<double>& p_bounds, const Types::Viewport<0>& p_viewport) {
    Fit(p_bounds, p_viewport, Margins());
  }

  /// The position of the eye; in parallel projection, of the middle of the image.
  Types::Vector3_Base<double> Eye() const;
  /// The directions of the image.
  Basis Directions() const;
  /// The 4 × 4 matrix from the scene to the eye, column by column as GL takes it, for vertices relative to `p_origin`.
  std::array<double, 16> ViewMatrix(const Types::Vector3_Base<double>& p_origin = Types::Vector3_Base<double>()) const;
  /// The 4 × 4 matrix from the eye to clip coordinates, column by column as GL takes it. `p_aspect` is the width of the
  /// viewport divided by its height.
  std::array<double, 16> ProjectionMatrix(double p_aspect) const;
  /// The pixel of a point of the scene; points behind the eye and points that are not finite have no pixel and give
  /// zeros, not visible. Pixels may lie outside of the viewport.
  Pixel Project(const Types::Vector3_Base<double>& p_point, const Types::Viewport<0>& p_viewport) const;
  /// The length in pixels of a unit that lies at a point, across the line of sight; 0 behind the eye.
  double PixelsPerUnit(const Types::Vector3_Base<double>& p_point, const Types::Viewport<0>& p_viewport) const;
  /// The point of the scene at a pixel and a depth between 0 (near plane) and 1 (far plane), as a depth buffer holds
  /// it.
  Types::Vector3_Base<double> Unproject(const Pixel& p_pixel, double p_depth,
                                        const Types::Viewport<0>& p_viewport) const;
  /// The point of the target's plane, which faces the camera, at a pixel.
  Types::Vector3_Base<double> UnprojectToTarget(const Pixel& p_pixel, const Types::Viewport<0>& p_viewport) const;

  /// Adds degrees to the angles; the elevation stops at straight down and straight up.
  void Orbit(double p_azimuth, double p_elevation);
  /// Multiplies the distance, which stays between a thousandth of the radius and 50 times the radius. Factors that are
  /// not positive change nothing.
  void Zoom(double p_factor);

  /// Replaces GL's projection and model-view matrices by the camera's, the latter for vertices
  /// relative to `p_origin` (see "Large coordinates" above). The matrix mode is model-view afterwards. Releasing the
  /// guard restores both matrices and the mode; it must be released while the same context is current. Does not set
  /// GL's viewport.
  boost::shared_ptr<void> Apply(const Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport,
                                const Types::Vector3_Base<double>& p_origin = Types::Vector3_Base<double>()) const;
};

/// Whether all fields are equal.
VEK_SCENE_API bool operator==(const Camera& p_a, const Camera& p_b);
/// Whether some field differs.
VEK_SCENE_API bool operator!=(const Camera& p_a, const Camera& p_b);

} // namespace Vek::Chart::Scene
