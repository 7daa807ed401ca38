#include "scene/private/InstanceSorting.h"

#include "scene/private/Matrix4.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

using Types::BoundingBox_Base;
using Point = Types::Vector3_Base<double>;
/// The factor by which a matrix scales lengths, of all directions in the mean.
double ScaleOf(const Matrix4& p_m) {
  const Point x(p_m[0], p_m[1], p_m[2]), y(p_m[4], p_m[5], p_m[6]), z(p_m[8], p_m[9], p_m[10]);
  return std::cbrt(std::abs(Dot(Cross(x, y), z)));
}

} // namespace

Projection Projection::Of(const Utility::Scoped<Ogl::Rgl>& p_gl) {
  Matrix4 view{}, projection{};
  std::array<int, 4> viewport{};
  p_gl->GetDoublev(RGL_MODELVIEW_MATRIX, view.data());
  p_gl->GetDoublev(RGL_PROJECTION_MATRIX, projection.data());
  p_gl->GetIntegerv(RGL_VIEWPORT, viewport.data());
  return {Product(projection, view), std::abs(projection[5]) * ScaleOf(view) * viewport[3] / 2.0};
}

bool Projection::MayShow(const BoundingBox_Base<double>& p_box) const {
  if (p_box.Empty())
    return false;
  // The box is outside if all its corners are beyond one plane of the frustum.
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (const double side : {-1.0, 1.0}) {
      bool beyond = true;
      for (const double x : {p_box.Min().x, p_box.Max().x})
        for (const double y : {p_box.Min().y, p_box.Max().y})
          for (const double z : {p_box.Min().z, p_box.Max().z}) {
            const double coordinate = clip[axis] * x + clip[axis + 4] * y + clip[axis + 8] * z + clip[axis + 12];
            beyond = beyond && side * coordinate > W(x, y, z);
          }
      if (beyond)
        return false;
    }
  return true;
}

bool InstanceSorting::Update(Input p_input) {
  const bool sameInstances = Known() && p_input.positions == _input.positions && p_input.sizes == _input.sizes &&
                             p_input.mostPixels == _input.mostPixels;
  const bool sameLevels = sameInstances && (p_input.mostPixels.size() < 2 || p_input.projection == _input.projection);
  _input = std::move(p_input);
  return !sameLevels && Sort();
}

/// The first level that is fine enough, or the last one.
std::size_t InstanceSorting::LevelOf(std::size_t p_instance) const {
  const Ogl::Vec3<float>& position = (*_input.positions)[p_instance];
  const double w = _input.projection.W(static_cast<double>(position.x), static_cast<double>(position.y),
                                       static_cast<double>(position.z));
  const double size = _input.sizes ? static_cast<double>((*_input.sizes)[p_instance]) : 1;
  const double pixels = w > 0 ? size * _input.projection.pixels / w : 0;
  const auto fine = std::find_if(_input.mostPixels.begin(), _input.mostPixels.end() - 1,
                                 [pixels](double p_most) { return pixels <= p_most; });
  return static_cast<std::size_t>(fine - _input.mostPixels.begin());
}

/// Finds levels, order and ranges; true if the order changed.
bool InstanceSorting::Sort() {
  const std::size_t count = _input.positions->size();
  const std::size_t levels = _input.mostPixels.size();
  std::vector<std::uint32_t> levelOf;
  if (levels > 1) {
    levelOf.resize(count);
    for (std::size_t i = 0; i < count; ++i)
      levelOf[i] = static_cast<std::uint32_t>(LevelOf(i));
  }
  const bool changed = !Known() || levelOf != _levelOf;
  _levelOf = std::move(levelOf);

  _ranges.assign(levels, {});
  for (std::size_t i = 0; i < count; ++i) {
    Range& range = _ranges[_levelOf.empty() ? 0 : _levelOf[i]];
    ++range.count;
    const Ogl::Vec3<float>& position = (*_input.positions)[i];
    if (position.x > 3.2e38F)
      continue;
    range.box +=
        Point(static_cast<double>(position.x), static_cast<double>(position.y), static_cast<double>(position.z));
    range.largest = std::max(range.largest, _input.sizes ? static_cast<double>((*_input.sizes)[i]) : 1.0);
  }
  for (std::size_t level = 1; level < levels; ++level)
    _ranges[level].first = _ranges[level - 1].first + _ranges[level - 1].count;

  if (changed) {
    _order.assign(_levelOf.size(), 0);
    std::vector<std::size_t> next(levels);
    std::transform(_ranges.begin(), _ranges.end(), next.begin(), [](const Range& p_range) { return p_range.first; });
    for (std::size_t i = 0; i < _levelOf.size(); ++i)
      _order[next[_levelOf[i]]++] = static_cast<std::uint32_t>(i);
  }
  return changed;
}

} // namespace Vek::Chart::Scene::Private
