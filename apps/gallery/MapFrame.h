#pragma once

#include "platform/types/Vector.h"

namespace Vek::Chart::Gallery {

/// A map whose meridians and parallels are straight lines at right angles: degrees become units of the picture, x to
/// the east, y to the north, the middle of the map at the origin. The map is always `Width` wide; one of a part of the
/// world keeps the shape of the land at its middle.
class MapFrame {
public:
  static constexpr double Width = 360.0;

  /// `p_east` is greater than `p_west`, by 360 at most.
  MapFrame(double p_west, double p_east, double p_south, double p_north);

  double West() const { return _west; }
  double East() const { return _east; }
  double South() const { return _south; }
  double North() const { return _north; }
  double Height() const { return (_north - _south) * _scaleY; }
  bool IsGlobal() const { return _east - _west >= 359.5; }

  /// The place of a point, at the longitude that lies within the map if one does.
  Types::Vector2_Base<double> Place(double p_lon, double p_lat) const;
  Types::Vector3_Base<double> Place(double p_lon, double p_lat, double p_z) const;
  bool Contains(double p_lon, double p_lat) const;

private:
  double Wrapped(double p_lon) const;

  double _west, _east, _south, _north;
  double _scaleX, _scaleY;
};

} // namespace Vek::Chart::Gallery
