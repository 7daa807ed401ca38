#include "scene/Camera.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace Vek::Chart::Scene {

namespace {

using Types::Angle;
using Point = Types::Vector3_Base<double>;

struct Frame {
  Point right;
  Point up;
  Point back; ///< from the target to the eye
};

Frame Axes(const Camera& p_camera) {
  const double azimuth = Angle::FromDegrees(p_camera.azimuth).Radians();
  const double elevation = Angle::FromDegrees(p_camera.elevation).Radians();
  const Point right(std::cos(azimuth), -std::sin(azimuth), 0);
  const Point back(-std::sin(azimuth) * std::cos(elevation), -std::cos(azimuth) * std::cos(elevation),
                   std::sin(elevation));
  return {right, Cross(back, right), back};
}

} // namespace

Types::Vector3_Base<double> Camera::Eye() const {
  return target + Axes(*this).back * distance;
}

std::array<double, 16> Camera::ViewMatrix() const {
  const Frame axes = Axes(*this);
  const Types::Matrix3 turn(axes.right, axes.up, axes.back);
  return Types::Transformation(turn, -(turn * Eye())).ColumnMajor();
}

std::array<double, 16> Camera::ProjectionMatrix(double p_aspect) const {
  const double focal = 1.0 / std::tan(Angle::FromDegrees(fieldOfView / 2).Radians());
  const double nearPlane = std::max(distance - radius, distance * 0.01);
  const double farPlane = distance + radius;
  const double depth = nearPlane - farPlane;
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
  const Frame axes = Axes(*this);
  const Point fromEye = p_point - Eye();
  const double scale = PixelsPerUnit(p_point, p_viewport);
  if (!(scale > 0))
    return {};
  const double width = static_cast<double>(p_viewport.width);
  const double height = static_cast<double>(p_viewport.height);
  return {static_cast<double>(p_viewport.x) + width / 2 + Dot(fromEye, axes.right) * scale,
          static_cast<double>(p_viewport.y) + height / 2 + Dot(fromEye, axes.up) * scale, true};
}

double Camera::PixelsPerUnit(const Point& p_point, const Types::Viewport<0>& p_viewport) const {
  const double ahead = Dot(Eye() - p_point, Axes(*this).back);
  if (!(ahead > 0))
    return 0;
  const double height = static_cast<double>(p_viewport.height);
  return height / 2 / std::tan(Angle::FromDegrees(fieldOfView / 2).Radians()) / ahead;
}

Point Camera::Unproject(const Pixel& p_pixel, double p_depth, const Types::Viewport<0>& p_viewport) const {
  const double width = static_cast<double>(p_viewport.width);
  const double height = static_cast<double>(p_viewport.height);
  const std::array<double, 16> projection = ProjectionMatrix(width / height);
  const double x = 2 * (p_pixel.x - static_cast<double>(p_viewport.x)) / width - 1;
  const double y = 2 * (p_pixel.y - static_cast<double>(p_viewport.y)) / height - 1;
  const double ahead = projection[14] / (2 * p_depth - 1 + projection[10]);
  const Frame axes = Axes(*this);
  return Eye() + (axes.right * (x / projection[0]) + axes.up * (y / projection[5]) - axes.back) * ahead;
}

void Camera::Orbit(double p_azimuth, double p_elevation) {
  azimuth = std::fmod(azimuth + p_azimuth, 360.0);
  elevation = std::clamp(elevation + p_elevation, -90.0, 90.0);
}

void Camera::Zoom(double p_factor) {
  if (p_factor > 0)
    distance = std::clamp(distance * p_factor, radius * 0.05, radius * 50);
}

boost::shared_ptr<void> Camera::Apply(const Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport) const {
  const auto gl = p_gl.Handle().Object();
  const boost::shared_ptr<void> mode = gl->PushAttribScope(RGL_TRANSFORM_BIT);
  gl->MatrixMode(RGL_PROJECTION);
  gl->PushMatrix();
  const double height = std::max(1.0, static_cast<double>(p_viewport.height));
  gl->LoadMatrixd(ProjectionMatrix(static_cast<double>(p_viewport.width) / height).data());
  gl->MatrixMode(RGL_MODELVIEW);
  gl->PushMatrix();
  gl->LoadMatrixd(ViewMatrix().data());
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
                      p_c.fieldOfView, p_c.radius);
  };
  return all(p_a) == all(p_b);
}

} // namespace Vek::Chart::Scene
