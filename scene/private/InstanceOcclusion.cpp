#include "scene/private/InstanceOcclusion.h"

#include "scene/private/Matrix4.h"

#include "platform/types/Vector.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr float Nothing = 2;         // farther than all depths
constexpr float MostPixels = 1e6F;   // beyond, conversions to int are not safe
constexpr float PixelMargin = 0.05F; // several steps of a rasteriser, which rounds corners
constexpr float Rounding = 1e-6F;    // several steps of the terms of a sum
constexpr float DepthMargin = 2e-6F; // several steps of a depth buffer of 24 bits
constexpr float LeastDepth = 1e-5F;  // of bodies whose front and back have different depths

/// Whether a matrix rotates and scales all directions alike.
bool KeepsBalls(const Matrix4& p_m) {
  using Point = Types::Vector3_Base<double>;
  const std::array<Point, 3> columns{{{p_m[0], p_m[1], p_m[2]}, {p_m[4], p_m[5], p_m[6]}, {p_m[8], p_m[9], p_m[10]}}};
  const double square = Dot(columns[0], columns[0]);
  for (std::size_t i = 0; i < 3; ++i) {
    constexpr double Tolerance = 1e-5;
    const bool isLike = std::abs(Dot(columns[i], columns[i]) - square) <= Tolerance * square &&
                        std::abs(Dot(columns[i], columns[(i + 1) % 3])) <= Tolerance * square;
    if (!isLike)
      return false;
  }
  return square > 0 && p_m[3] == 0 && p_m[7] == 0 && p_m[11] == 0 && p_m[15] == 1;
}

} // namespace

std::optional<BallView> BallView::Of(const Projection& p_view) {
  const Matrix4& m = p_view.model;
  const Matrix4& p = p_view.projection;
  const bool isParallel = p[3] == 0 && p[7] == 0 && p[11] == 0 && p[15] == 1 && p[8] == 0 && p[9] == 0;
  const bool isCentral = p[3] == 0 && p[7] == 0 && p[11] == -1 && p[15] == 0 && p[12] == 0 && p[13] == 0;
  if (!(isParallel || isCentral) || !KeepsBalls(m) || p[1] != 0 || p[2] != 0 || p[4] != 0 || p[6] != 0)
    return {};
  BallView view;
  const auto row = [&](std::size_t p_row, double p_factor) {
    const auto at = [&](std::size_t p_column) { return static_cast<float>(p_factor * m[4 * p_column + p_row]); };
    return Row{at(0), at(1), at(2), at(3)};
  };
  view._isCentral = isCentral;
  view._scale = static_cast<float>(std::sqrt(m[0] * m[0] + m[1] * m[1] + m[2] * m[2]));
  view._right = row(0, 1);
  view._up = row(1, 1);
  view._away = row(2, -1);
  view._width = static_cast<float>(p[0] * p_view.width / 2);
  view._height = static_cast<float>(p[5] * p_view.height / 2);
  view._left = static_cast<float>((1 + (isCentral ? -p[8] : p[12])) * p_view.width / 2);
  view._bottom = static_cast<float>((1 + (isCentral ? -p[9] : p[13])) * p_view.height / 2);
  view._near = static_cast<float>(isCentral ? -p[10] : p[14]);
  view._far = static_cast<float>(isCentral ? p[14] : -p[10]);
  const bool growsAway = isCentral ? view._far < 0 : view._far > 0;
  return growsAway ? std::optional(view) : std::nullopt;
}

Outline BallView::Inside(const Ogl::Vec3<float>& p_position, float p_radius, float p_reach) const {
  const float away = Depth(p_position), reach = _scale * p_reach;
  const float nearest = away - reach;
  if ((_isCentral && !(nearest > 0)) || !(DeviceDepth(nearest) > -1) || !(DeviceDepth(away + reach) < 1))
    return {};
  // The disc through the centre at right angles to the eye's axis: all rays that hit it enter the ball before.
  const float share = _isCentral ? 1 / away : 1, radius = _scale * p_radius * share;
  const float margin = Margin(p_position, share);
  return {_left + _width * share * _right(p_position),
          _bottom + _height * share * _up(p_position),
          std::abs(_width) * radius - margin,
          std::abs(_height) * radius - margin,
          DeviceDepth(away),
          DeviceDepth(nearest),
          DeviceDepth(away + reach)};
}

std::optional<Outline> BallView::Around(const Ogl::Vec3<float>& p_position, float p_radius) const {
  const float away = Depth(p_position), radius = _scale * p_radius, nearest = away - radius;
  if ((_isCentral && !(nearest > 0)) || !(DeviceDepth(nearest) > -1))
    return {};
  const float share = _isCentral ? 1 / away : 1;
  const float x = share * _right(p_position), y = share * _up(p_position);
  // A point of the ball, d from its centre c, is seen |d.xy - c.xy / c.z d.z| / (c.z + d.z) from the centre.
  const float seen = _isCentral ? radius * std::sqrt(1 + x * x + y * y) / nearest : radius;
  const float margin = Margin(p_position, share);
  return Outline{_left + _width * x, _bottom + _height * y, std::abs(_width) * seen + margin,
                 std::abs(_height) * seen + margin, DeviceDepth(nearest) - DepthMargin};
}

float BallView::Margin(const Ogl::Vec3<float>& p_position, float p_share) const {
  const float terms = std::max(_right.Terms(p_position), _up.Terms(p_position)) + _away.Terms(p_position);
  return PixelMargin + Rounding * std::max(std::abs(_width), std::abs(_height)) * p_share * terms;
}

OcclusionGrid::OcclusionGrid(int p_width, int p_height, float p_tile, Tiles p_tiles, std::size_t p_bodies)
    : _width(p_width)
    , _height(p_height)
    , _tile(p_tile)
    , _inset(p_tiles == Tiles::Centers ? 0.5F / p_tile : 0)
    , _columns(static_cast<int>(std::ceil(static_cast<float>(p_width) / p_tile)))
    , _rows(static_cast<int>(std::ceil(static_cast<float>(p_height) / p_tile)))
    , _depths(static_cast<std::size_t>(_columns) * static_cast<std::size_t>(_rows), Nothing)
    , _firsts(p_bodies == MostBodies ? _depths.size() : 0, Extent{Nothing, Nothing}) {}

void OcclusionGrid::AddBody(std::size_t p_tile, const Extent& p_body) {
  Extent& first = _firsts[p_tile];
  const bool isFirst = p_body.back < first.back;
  const Extent& other = isFirst ? first : p_body;
  if (other.front > (isFirst ? p_body.back : first.back) + DepthMargin)
    _depths[p_tile] = std::min(_depths[p_tile], other.back);
  if (isFirst)
    first = p_body;
}

void OcclusionGrid::Cover(const Outline& p_outline) {
  const bool isInRange = p_outline.halfWidth > 0 && p_outline.halfHeight > 0 &&
                         std::abs(p_outline.x) + p_outline.halfWidth < MostPixels &&
                         std::abs(p_outline.y) + p_outline.halfHeight < MostPixels;
  if (!isInRange)
    return;
  const Extent body{p_outline.front, p_outline.back};
  if (!_firsts.empty() && !(body.back - body.front > LeastDepth))
    return;
  // In tiles from here on: tile i is from i + inset to i + 1 - inset.
  const float x = p_outline.x / _tile, y = p_outline.y / _tile;
  const float halfWidth = p_outline.halfWidth / _tile, halfHeight = p_outline.halfHeight / _tile;
  const int first = std::max(0, static_cast<int>(std::ceil(y - halfHeight - _inset)));
  const int end = std::min(_rows, static_cast<int>(std::floor(y + halfHeight + _inset)));
  for (int row = first; row < end; ++row) {
    const float below = y - static_cast<float>(row) - _inset, above = 1 - 2 * _inset - below;
    const float share = std::max(std::abs(below), std::abs(above)) / halfHeight;
    if (share > 1)
      continue;
    const float half = halfWidth * std::sqrt(1 - share * share) + _inset;
    const int left = std::max(0, static_cast<int>(std::ceil(x - half)));
    const int right = std::min(_columns, static_cast<int>(std::floor(x + half)));
    const auto tiles = static_cast<std::ptrdiff_t>(row) * _columns;
    if (_firsts.empty())
      for (int column = left; column < right; ++column)
        _depths[tiles + column] = std::min(_depths[tiles + column], p_outline.depth);
    else
      for (int column = left; column < right; ++column)
        AddBody(static_cast<std::size_t>(tiles + column), body);
  }
}

void OcclusionGrid::Merge(const OcclusionGrid& p_other) {
  for (std::size_t i = 0; i < _firsts.size(); ++i)
    if (p_other._firsts[i].back < Nothing)
      AddBody(i, p_other._firsts[i]);
  for (std::size_t i = 0; i < _depths.size(); ++i)
    _depths[i] = std::min(_depths[i], p_other._depths[i]);
}

OcclusionGrid OcclusionGrid::Coarser() const {
  constexpr int Factor = 4;
  OcclusionGrid coarser(_width, _height, Factor * _tile, _inset > 0 ? Tiles::Centers : Tiles::Areas);
  std::fill(coarser._depths.begin(), coarser._depths.end(), -Nothing);
  for (int row = 0; row < _rows; ++row)
    for (int column = 0; column < _columns; ++column) {
      float& depth = coarser._depths[static_cast<std::size_t>(row / Factor * coarser._columns + column / Factor)];
      depth = std::max(depth, _depths[static_cast<std::size_t>(row * _columns + column)]);
    }
  return coarser;
}

bool OcclusionGrid::Hides(const Outline& p_outline, std::size_t p_bodies) const {
  if (p_bodies == 1 && !_firsts.empty())
    return Hides(p_outline, [this](std::size_t p_tile) { return _firsts[p_tile].back; });
  return Hides(p_outline, [this](std::size_t p_tile) { return _depths[p_tile]; });
}

template <class DepthOf>
bool OcclusionGrid::Hides(const Outline& p_outline, const DepthOf& p_depthOf) const {
  const bool isInRange = std::abs(p_outline.x) + p_outline.halfWidth < MostPixels &&
                         std::abs(p_outline.y) + p_outline.halfHeight < MostPixels;
  if (!isInRange)
    return false;
  const float x = p_outline.x / _tile, y = p_outline.y / _tile;
  const float halfWidth = p_outline.halfWidth / _tile, halfHeight = p_outline.halfHeight / _tile;
  const int first = std::max(0, static_cast<int>(std::floor(y - halfHeight + _inset)));
  const int end = std::min(_rows, static_cast<int>(std::floor(y + halfHeight - _inset)) + 1);
  for (int row = first; row < end; ++row) {
    const float below = y - static_cast<float>(row) - _inset; // 0 to 1 - 2 inset within the row
    const float share = std::max({0.0F, -below, below - 1 + 2 * _inset}) / halfHeight;
    const float half = halfWidth * std::sqrt(std::max(0.0F, 1 - share * share)) - _inset;
    const int left = std::max(0, static_cast<int>(std::floor(x - half)));
    const int right = std::min(_columns, static_cast<int>(std::floor(x + half)) + 1);
    const std::ptrdiff_t tiles = static_cast<std::ptrdiff_t>(row) * _columns;
    for (int column = left; column < right; ++column)
      if (p_depthOf(static_cast<std::size_t>(tiles + column)) >= p_outline.depth)
        return false;
  }
  return true;
}

} // namespace Vek::Chart::Scene::Private
