#include "apps/gallery/MapWind.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Point = Types::Vector3_Base<double>;

/// Where a value lies among ascending ones: the index of the one before and the share of the next; outside their range,
/// −1 or their number.
double PlaceAmong(const std::vector<double>& p_sorted, double p_value) {
  if (p_value < p_sorted.front())
    return -1;
  const auto next = std::upper_bound(p_sorted.begin(), p_sorted.end(), p_value);
  const auto index = static_cast<double>(next - p_sorted.begin() - 1);
  if (next == p_sorted.end())
    return p_value == p_sorted.back() ? index : index + 1;
  return index + (p_value - *(next - 1)) / (*next - *(next - 1));
}

VectorGrid GridOf(const WindField& p_field) {
  std::vector<Point> vectors(p_field.lons.size() * p_field.lats.size());
  for (const Wind& wind : p_field.winds) {
    const auto column = static_cast<std::size_t>(PlaceAmong(p_field.lons, wind.lon));
    const auto row = static_cast<std::size_t>(PlaceAmong(p_field.lats, wind.lat));
    vectors[row * p_field.lons.size() + column] = {wind.u, wind.v, 0};
  }
  return VectorGrid({p_field.lons.size(), p_field.lats.size(), 1}, {0, 0, 0}, {1, 1, 1}, std::move(vectors),
                    p_field.IsGlobal());
}

} // namespace

MapWind::MapWind(const WindField& p_field, const MapFrame& p_map)
    : _lons(p_field.lons)
    , _lats(p_field.lats)
    , _global(p_field.IsGlobal())
    , _map(p_map)
    , _grid(GridOf(p_field)) {}

bool MapWind::At(const Point& p_place, Point& p_wind) const {
  if (std::abs(p_place.x) > MapFrame::Width / 2 || std::abs(p_place.y) > _map.Height() / 2)
    return false;
  return _grid.At({ColumnOf(Longitude(p_place)), PlaceAmong(_lats, Latitude(p_place)), 0}, p_wind);
}

double MapWind::SpeedAt(const Point& p_place) const {
  Point wind;
  return At(p_place, wind) ? Length(wind) : 0;
}

bool MapWind::Flow(const Point& p_place, Point& p_vector) const {
  Point wind;
  if (!At(p_place, wind))
    return false;
  const double narrowing = std::cos(Types::Angle::FromDegrees(Latitude(p_place)).Radians());
  const Point heading(wind.x * MapFrame::Width / (_map.East() - _map.West()) / std::max(narrowing, 0.05),
                      wind.y * _map.Height() / (_map.North() - _map.South()), 0);
  p_vector = Normalize(heading) * Length(wind);
  return true;
}

double MapWind::Longitude(const Point& p_place) const {
  return _map.West() + (p_place.x / MapFrame::Width + 0.5) * (_map.East() - _map.West());
}

double MapWind::Latitude(const Point& p_place) const {
  return _map.South() + (p_place.y / _map.Height() + 0.5) * (_map.North() - _map.South());
}

double MapWind::ColumnOf(double p_lon) const {
  if (!_global)
    return PlaceAmong(_lons, p_lon);
  const double lon = p_lon - std::floor((p_lon - _lons.front()) / 360) * 360;
  if (lon <= _lons.back())
    return PlaceAmong(_lons, lon);
  // Between the last column and the first one.
  return static_cast<double>(_lons.size() - 1) + (lon - _lons.back()) / (_lons.front() + 360 - _lons.back());
}

} // namespace Vek::Chart::Gallery
