#pragma once

#include "apps/gallery/MapFrame.h"
#include "apps/gallery/WindField.h"
#include "scene/VectorField.h"

#include "platform/types/Vector.h"

namespace Vek::Chart::Gallery {

/// The wind between the nodes of a table, over the units of a map.
class MapWind {
public:
  MapWind(const WindField& p_field, const MapFrame& p_map);

  /// In m/s to the east and the north; false beyond the border of the map.
  bool At(const Types::Vector3_Base<double>& p_place, Types::Vector3_Base<double>& p_wind) const;
  /// 0 beyond the border.
  double SpeedAt(const Types::Vector3_Base<double>& p_place) const;
  /// As long as the wind is fast, in the direction it has on the map, where a degree of longitude is as wide
  /// everywhere.
  bool Flow(const Types::Vector3_Base<double>& p_place, Types::Vector3_Base<double>& p_vector) const;

private:
  double Longitude(const Types::Vector3_Base<double>& p_place) const;
  double Latitude(const Types::Vector3_Base<double>& p_place) const;

  MapFrame _map;
  Scene::VectorField _field; ///< in degrees
};

} // namespace Vek::Chart::Gallery
