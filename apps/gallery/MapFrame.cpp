#include "apps/gallery/MapFrame.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

MapFrame::MapFrame(double p_west, double p_east, double p_south, double p_north)
    : _west(p_west)
    , _east(p_east)
    , _south(p_south)
    , _north(p_north)
    , _scaleX(Width / (p_east - p_west))
    , _scaleY(_scaleX) {
  if (!IsGlobal())
    _scaleY = _scaleX / std::max(0.05, std::cos(Types::Angle::FromDegrees((_south + _north) / 2).Radians()));
}

double MapFrame::Wrapped(double p_lon) const {
  // The eastern border stays where it is: it is no other place than the western one, but the other end of the map.
  if (p_lon >= _west && p_lon <= _east)
    return p_lon;
  return p_lon - std::floor((p_lon - _west) / 360.0) * 360.0;
}

Types::Vector2_Base<double> MapFrame::Place(double p_lon, double p_lat) const {
  return {(Wrapped(p_lon) - (_west + _east) / 2) * _scaleX, (p_lat - (_south + _north) / 2) * _scaleY};
}

Types::Vector3_Base<double> MapFrame::Place(double p_lon, double p_lat, double p_z) const {
  const Types::Vector2_Base<double> place = Place(p_lon, p_lat);
  return {place.x, place.y, p_z};
}

bool MapFrame::Contains(double p_lon, double p_lat) const {
  const double lon = Wrapped(p_lon);
  return lon >= _west && lon <= _east && p_lat >= _south && p_lat <= _north;
}

} // namespace Vek::Chart::Gallery
