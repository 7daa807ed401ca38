#include "apps/gallery/MapWind.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Point = Types::Vector3_Base<double>;

/// Nodes without a row are calm.
Scene::VectorField FieldOf(const WindField& p_field) {
  const auto indexIn = [](const std::vector<double>& p_sorted, double p_value) {
    return static_cast<std::size_t>(std::lower_bound(p_sorted.begin(), p_sorted.end(), p_value) - p_sorted.begin());
  };
  std::vector<Point> vectors(p_field.lons.size() * p_field.lats.size());
  for (const Wind& wind : p_field.winds)
    vectors[indexIn(p_field.lats, wind.lat) * p_field.lons.size() + indexIn(p_field.lons, wind.lon)] = {wind.u, wind.v,
                                                                                                        0};
  Scene::VectorField field = Scene::VectorField::Layer(p_field.lons, p_field.lats, vectors);
  if (p_field.IsGlobal())
    field.WrapX(360);
  return field;
}

} // namespace

MapWind::MapWind(const WindField& p_field, const MapFrame& p_map)
    : _map(p_map)
    , _field(FieldOf(p_field)) {}

bool MapWind::At(const Point& p_place, Point& p_wind) const {
  if (std::abs(p_place.x) > MapFrame::Width / 2 || std::abs(p_place.y) > _map.Height() / 2)
    return false;
  return _field.Sample({Longitude(p_place), Latitude(p_place), 0}, p_wind);
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

} // namespace Vek::Chart::Gallery
