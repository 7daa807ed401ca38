#pragma once

#include "apps/gallery/Loading.h"

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// Wind at one place: degrees east and north, and m/s towards the east (u) and the north (v).
struct Wind {
  double lon = 0;
  double lat = 0;
  double u = 0;
  double v = 0;

  double Speed() const;
};

/// Wind at places that form a grid, in any order.
struct WindField {
  std::vector<Wind> winds;
  std::vector<double> lons; ///< the different longitudes, in ascending order
  std::vector<double> lats; ///< the different latitudes, in ascending order

  /// Reads comma-separated values with a header. Two layouts, told apart by the titles of the columns:
  /// - lon, lat, u, v
  /// - longitude, latitude, dir, speed: dir is the direction that the wind comes FROM, in degrees clockwise from north,
  ///   as weather reports give it.
  /// Throws InputError when the text is neither, or holds no wind at all.
  static WindField Read(std::istream& p_stream, const std::string& p_name);
  /// Reads such a table, or a NetCDF file with degrees along its axes at a step of time (see Io::ReadVectorField), of
  /// which missing winds are left out.
  static WindField ReadFile(const std::string& p_path, Loading& p_loading, std::size_t p_time = 0);

  /// True when the longitudes go around the globe.
  bool IsGlobal() const;
  /// The speed that a fraction of all winds does not exceed.
  double SpeedQuantile(double p_fraction) const;
  /// Winds far enough apart for `p_columns` arrows beside each other on the equator. Towards the poles, where meridians
  /// crowd, fewer are taken, and every second row starts half a step aside.
  std::vector<Wind> Thinned(std::size_t p_columns) const;
};

} // namespace Vek::Chart::Gallery
