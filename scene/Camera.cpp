#include "scene/Camera.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <tuple>

namespace Vek::Chart::Scene {

namespace {

using Types::Angle;
using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

bool IsFinite(const Point& p_point) {
  return std::isfinite(p_point.x) && std::isfinite(p_point.y) && std::isfinite(p_point.z);
}

/// Half the height of what is seen at distance 1.
double HalfHeight(const Camera& p_camera) {
  return std::tan(Angle::FromDegrees(p_camera.fieldOfView / 2).Radians());
}

struct Planes {
  double nearPlane;
  double farPlane;
};

Planes ClippingPlanes(const Camera& p_camera) {
  const double closest = p_camera.distance - p_camera.radius;
  const bool isParallel = p_camera.projection == Camera::Projection::Parallel;
  return {isParallel ? closest : std::max(closest, p_camera.distance * 0.01), p_camera.distance + p_camera.radius};
}

/// Position in the viewport, −1 to 1 in both directions.
Types::Vector2_Base<double> Normalized(const Camera::Pixel& p_pixel, const Types::Viewport<0>& p_viewport) {
  return {2 * (p_pixel.x - static_cast<double>(p_viewport.x)) / static_cast<double>(p_viewport.width) - 1,
          2 * (p_pixel.y - static_cast<double>(p_viewport.y)) / static_cast<double>(p_viewport.height) - 1};
}

/// The largest and smallest of some numbers.
struct Span {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void operator+=(double p_value) {
    low = std::min(low, p_value);
    high = std::max(high, p_value);
  }
  double Length() const { return high - low; }
  double Middle() const { return low + Length() / 2; }
};

/// Where the room inside the margins begins and ends on one side of an image: −1 and 1 are its borders.
struct Room {
  double low;
  double high;
};

Room Inside(double p_size, double p_low, double p_high) {
  constexpr double Least = 0.125;
  const double size = std::max(p_size, 1.0);
  const double taken = std::max(p_low, 0.0) + std::max(p_high, 0.0);
  const double factor = taken > (1 - Least) * size ? (1 - Least) * size / taken : 1;
  return {2 * factor * std::max(p_low, 0.0) / size - 1, 1 - 2 * factor * std::max(p_high, 0.0) / size};
}

} // namespace

Camera Camera::LookAt(const Point& p_eye, const Point& p_target, const Point& p_up) {
  const Point toEye = p_eye - p_target;
  const double distance = Length(toEye);
  if (!(distance > 0) || !std::isfinite(distance) || !IsFinite(p_up))
    throw std::invalid_argument("Camera::LookAt: expected finite numbers and an eye apart from the target");
  Camera camera;
  camera.target = p_target;
  camera.distance = camera.radius = distance;
  const Point back = toEye / distance;
  camera.elevation = Angle::FromRadians(std::asin(std::clamp(back.z, -1.0, 1.0))).Degrees();
  // Straight up and down, the direction of the top of the image is what is left of the azimuth.
  const bool isVertical = std::hypot(back.x, back.y) < 1e-12;
  const Point forward = isVertical ? (back.z > 0 ? p_up : -p_up) : -back;
  if (forward.x != 0 || forward.y != 0)
    camera.azimuth = Angle::FromRadians(std::atan2(forward.x, forward.y)).Degrees();
  const Basis basis = camera.Directions();
  const double side = Dot(p_up, basis.right);
  const double top = Dot(p_up, basis.up);
  if (std::hypot(side, top) > 1e-12 * Length(p_up))
    camera.roll = Angle::FromRadians(std::atan2(side, top)).Degrees();
  if (std::abs(camera.roll) < 1e-12)
    camera.roll = 0;
  return camera;
}

void Camera::Look(StandardView p_view) {
  const auto set = [this](double p_azimuth, double p_elevation) {
    azimuth = p_azimuth;
    elevation = p_elevation;
    roll = 0;
  };
  switch (p_view) {
  case StandardView::Front:
    return set(0, 0);
  case StandardView::Back:
    return set(180, 0);
  case StandardView::Left:
    return set(90, 0);
  case StandardView::Right:
    return set(-90, 0);
  case StandardView::Top:
    return set(0, 90);
  case StandardView::Bottom:
    return set(0, -90);
  case StandardView::Isometric:
    return set(-45, Angle::FromRadians(std::atan(std::sqrt(0.5))).Degrees());
  case StandardView::Chart:
    return set(-30, 30);
  }
}

void Camera::Fit(const Box& p_bounds, const Types::Viewport<0>& p_viewport, const Margins& p_margins) {
  if (p_bounds.Empty() || !IsFinite(p_bounds.Min()) || !IsFinite(p_bounds.Max()))
    throw std::invalid_argument("Camera::Fit: expected a finite box that is not empty");
  const Point center = p_bounds.Min() + p_bounds.Extent() * 0.5;
  Point half = p_bounds.Extent() * 0.5;
  if (half == Point())
    half = {0.5, 0.5, 0.5};
  const double diagonal = 2 * Length(half);
  const double width = std::max(static_cast<double>(p_viewport.width), 1.0);
  const double height = std::max(static_cast<double>(p_viewport.height), 1.0);
  // Slopes of the four planes through the eye that the margins cut out of the image.
  const double slope = HalfHeight(*this);
  const double aspect = width / height;
  const Room roomX = Inside(width, p_margins.left, p_margins.right);
  const Room roomY = Inside(height, p_margins.bottom, p_margins.top);
  const double left = roomX.low * slope * aspect, right = roomX.high * slope * aspect;
  const double bottom = roomY.low * slope, top = roomY.high * slope;

  // Relative to the centre, x, y and b being the camera's directions, a corner (x, y, b) lies to the left of the right
  // plane of an eye (ex, ey, eb) where x − ex ≤ right · (eb − b), that is ex + right · eb ≥ x + right · b; likewise for
  // the others. In parallel projection the same holds with every b at 0, the plane of the centre.
  const bool isParallel = projection == Projection::Parallel;
  const Basis basis = Directions();
  Span depths, toLeft, toRight, toBottom, toTop;
  for (unsigned int corner = 0; corner < 8; ++corner) {
    const Point offset((corner & 1) != 0 ? half.x : -half.x, (corner & 2) != 0 ? half.y : -half.y,
                       (corner & 4) != 0 ? half.z : -half.z);
    const double x = Dot(offset, basis.right), y = Dot(offset, basis.up), b = Dot(offset, basis.back);
    const double used = isParallel ? 0 : b;
    depths += b;
    toLeft += x + left * used;
    toRight += x + right * used;
    toBottom += y + bottom * used;
    toTop += y + top * used;
  }
  double eye = std::max((toRight.high - toLeft.low) / (right - left), (toTop.high - toBottom.low) / (top - bottom));
  if (isParallel)
    eye = std::max(eye, 1e-3 * diagonal / slope); // a line that is seen from its end
  else
    eye = std::max(eye, depths.high + 0.05 * diagonal);
  const double eyeX = ((toRight.high - right * eye) + (toLeft.low - left * eye)) / 2;
  const double eyeY = ((toTop.high - top * eye) + (toBottom.low - bottom * eye)) / 2;
  const Point shift = basis.right * eyeX + basis.up * eyeY;
  target = center + shift;
  distance = eye;
  radius = diagonal / 2 + Length(shift);
}

Camera::Basis Camera::Directions() const {
  const double turn = Angle::FromDegrees(azimuth).Radians();
  const double rise = Angle::FromDegrees(elevation).Radians();
  const Point right(std::cos(turn), -std::sin(turn), 0);
  const Point back(-std::sin(turn) * std::cos(rise), -std::cos(turn) * std::cos(rise), std::sin(rise));
  const Point up = Cross(back, right);
  if (roll == 0)
    return {right, up, back};
  const double c = std::cos(Angle::FromDegrees(roll).Radians());
  const double s = std::sin(Angle::FromDegrees(roll).Radians());
  return {right * c - up * s, up * c + right * s, back};
}

Point Camera::Eye() const {
  return target + Directions().back * distance;
}

std::array<double, 16> Camera::ViewMatrix(const Point& p_origin) const {
  const Basis basis = Directions();
  const Types::Matrix3 rotation(basis.right, basis.up, basis.back);
  return Types::Transformation(rotation, rotation * (p_origin - target) - Point(0, 0, distance)).ColumnMajor();
}

std::array<double, 16> Camera::ProjectionMatrix(double p_aspect) const {
  const auto [nearPlane, farPlane] = ClippingPlanes(*this);
  const double depth = nearPlane - farPlane;
  const double focal = 1.0 / HalfHeight(*this);
  if (projection == Projection::Parallel) {
    const double scale = focal / distance;
    return {scale / p_aspect, 0, 0, 0, 0, scale, 0, 0, 0, 0, 2 / depth, 0, 0, 0, (farPlane + nearPlane) / depth, 1};
  }
  return {focal / p_aspect,
          0,
          0,
          0,
          0,
          focal,
          0,
          0,
          0,
          0,
          (farPlane + nearPlane) / depth,
          -1,
          0,
          0,
          2 * farPlane * nearPlane / depth,
          0};
}

Camera::Pixel Camera::Project(const Point& p_point, const Types::Viewport<0>& p_viewport) const {
  const double scale = PixelsPerUnit(p_point, p_viewport);
  if (!(scale > 0) || !IsFinite(p_point))
    return {};
  const Basis basis = Directions();
  const Point offset = p_point - target;
  const double width = static_cast<double>(p_viewport.width);
  const double height = static_cast<double>(p_viewport.height);
  return {static_cast<double>(p_viewport.x) + width / 2 + Dot(offset, basis.right) * scale,
          static_cast<double>(p_viewport.y) + height / 2 + Dot(offset, basis.up) * scale, true};
}

double Camera::PixelsPerUnit(const Point& p_point, const Types::Viewport<0>& p_viewport) const {
  const bool isParallel = projection == Projection::Parallel;
  const double ahead = isParallel ? distance : distance - Dot(p_point - target, Directions().back);
  if (!(ahead > 0))
    return 0;
  return static_cast<double>(p_viewport.height) / 2 / HalfHeight(*this) / ahead;
}

Point Camera::Unproject(const Pixel& p_pixel, double p_depth, const Types::Viewport<0>& p_viewport) const {
  const double width = static_cast<double>(p_viewport.width);
  const double height = static_cast<double>(p_viewport.height);
  const std::array<double, 16> matrix = ProjectionMatrix(width / height);
  const auto [x, y] = Normalized(p_pixel, p_viewport);
  const bool isParallel = projection == Projection::Parallel;
  const double depth = 2 * p_depth - 1;
  const double ahead = isParallel ? (matrix[14] - depth) / matrix[10] : matrix[14] / (depth + matrix[10]);
  const double spread = isParallel ? 1 : ahead;
  const Basis basis = Directions();
  return target + basis.right * (x / matrix[0] * spread) + basis.up * (y / matrix[5] * spread) +
         basis.back * (distance - ahead);
}

Point Camera::UnprojectToTarget(const Pixel& p_pixel, const Types::Viewport<0>& p_viewport) const {
  const double scale = PixelsPerUnit(target, p_viewport);
  if (!(scale > 0))
    return target;
  const Basis basis = Directions();
  const double x = p_pixel.x - static_cast<double>(p_viewport.x) - static_cast<double>(p_viewport.width) / 2;
  const double y = p_pixel.y - static_cast<double>(p_viewport.y) - static_cast<double>(p_viewport.height) / 2;
  return target + (basis.right * x + basis.up * y) / scale;
}

void Camera::Orbit(double p_azimuth, double p_elevation) {
  azimuth = std::fmod(azimuth + p_azimuth, 360.0);
  elevation = std::clamp(elevation + p_elevation, -90.0, 90.0);
}

void Camera::Zoom(double p_factor) {
  if (p_factor > 0)
    distance = std::clamp(distance * p_factor, radius * 0.001, radius * 50);
}

boost::shared_ptr<void> Camera::Apply(const Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport,
                                      const Point& p_origin) const {
  const auto gl = p_gl.Handle().Object();
  const boost::shared_ptr<void> mode = gl->PushAttribScope(RGL_TRANSFORM_BIT);
  gl->MatrixMode(RGL_PROJECTION);
  gl->PushMatrix();
  const double height = std::max(1.0, static_cast<double>(p_viewport.height));
  gl->LoadMatrixd(ProjectionMatrix(static_cast<double>(p_viewport.width) / height).data());
  gl->MatrixMode(RGL_MODELVIEW);
  gl->PushMatrix();
  gl->LoadMatrixd(ViewMatrix(p_origin).data());
  return boost::shared_ptr<void>(nullptr, [gl, mode](void*) {
    gl->MatrixMode(RGL_MODELVIEW);
    gl->PopMatrix();
    gl->MatrixMode(RGL_PROJECTION);
    gl->PopMatrix();
  });
}

bool operator==(const Camera& p_a, const Camera& p_b) {
  const auto all = [](const Camera& p_c) {
    return std::tuple(p_c.target.x, p_c.target.y, p_c.target.z, p_c.distance, p_c.azimuth, p_c.elevation,
                      p_c.fieldOfView, p_c.radius, p_c.projection, p_c.roll);
  };
  return all(p_a) == all(p_b);
}

bool operator!=(const Camera& p_a, const Camera& p_b) {
  return !(p_a == p_b);
}

} // namespace Vek::Chart::Scene
