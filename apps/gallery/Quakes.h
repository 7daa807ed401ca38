#pragma once

#include "apps/gallery/Loading.h"

#include <istream>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// One earthquake: degrees east and north, kilometres below the surface, magnitude, and the place in words.
struct Quake {
  double lon = 0;
  double lat = 0;
  double depth = 0;
  double magnitude = 0;
  std::string place; ///< empty when the file has no such column
};

/// Reads comma-separated values with the columns lon, lat, depth_km, mag and, optionally, place. Events whose magnitude
/// is not given are left out. Throws InputError when the text is something else or names no event.
std::vector<Quake> ReadQuakes(std::istream& p_stream, const std::string& p_name);
std::vector<Quake> ReadQuakesFile(const std::string& p_path, Loading& p_loading);

} // namespace Vek::Chart::Gallery
