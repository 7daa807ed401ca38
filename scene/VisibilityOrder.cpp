#include "scene/VisibilityOrder.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Scene {

namespace {

using Box = Types::BoundingBox_Base<double>;
using Point = Types::Vector3_Base<double>;

std::array<double, 3> Components(const Point& p_point) {
  return {p_point.x, p_point.y, p_point.z};
}

/// Where the camera stands along an axis. In parallel projection, infinitely far; NaN where it looks across the axis,
/// so that nothing along it is hidden.
std::array<double, 3> EyeOf(const Camera& p_camera) {
  if (p_camera.projection == Camera::Projection::Perspective)
    return Components(p_camera.Eye());
  std::array<double, 3> eye = Components(p_camera.Directions().back);
  for (double& number : eye)
    number = number == 0 ? NAN : std::copysign(HUGE_VAL, number);
  return eye;
}

/// Whether a box may lie before another one. Not where a plane has the other one and the eye on one side.
bool MayHide(const Box& p_box, const Box& p_other, const std::array<double, 3>& p_eye) {
  const auto low = Components(p_box.Min()), high = Components(p_box.Max());
  const auto otherLow = Components(p_other.Min()), otherHigh = Components(p_other.Max());
  for (std::size_t axis = 0; axis < 3; ++axis)
    if ((high[axis] <= otherLow[axis] && !(p_eye[axis] < high[axis])) ||
        (low[axis] >= otherHigh[axis] && !(p_eye[axis] > low[axis])))
      return false;
  return true;
}

} // namespace

std::vector<std::size_t> VisibilityOrder(const std::vector<Box>& p_boxes, const Camera& p_camera) {
  std::vector<std::size_t> order, left;
  for (std::size_t i = 0; i < p_boxes.size(); ++i)
    if (!p_boxes[i].Empty())
      left.push_back(i);
  const Point eye = p_camera.Eye(), back = p_camera.Directions().back;
  const bool isParallel = p_camera.projection == Camera::Projection::Parallel;
  const auto distance = [&](std::size_t p_box) {
    const Point offset = eye - p_boxes[p_box].Center();
    return isParallel ? Dot(offset, back) : Length(offset);
  };
  std::stable_sort(left.begin(), left.end(),
                   [&](std::size_t p_a, std::size_t p_b) { return distance(p_a) < distance(p_b); });
  const std::array<double, 3> place = EyeOf(p_camera);
  while (!left.empty()) {
    const auto isFree = [&](std::size_t p_box) {
      return std::none_of(left.begin(), left.end(), [&](std::size_t p_other) {
        return p_other != p_box && MayHide(p_boxes[p_other], p_boxes[p_box], place);
      });
    };
    auto next = std::find_if(left.begin(), left.end(), isFree);
    if (next == left.end())
      next = left.begin();
    order.push_back(*next);
    left.erase(next);
  }
  for (std::size_t i = 0; i < p_boxes.size(); ++i)
    if (p_boxes[i].Empty())
      order.push_back(i);
  return order;
}

} // namespace Vek::Chart::Scene
