#include "apps/gallery/Quakes.h"

#include "apps/gallery/TextTable.h"

namespace Vek::Chart::Gallery {

std::vector<Quake> ReadQuakes(std::istream& p_stream, const std::string& p_name) {
  TextTable table(p_stream, p_name);
  const std::size_t lon = table.Column("lon");
  const std::size_t lat = table.Column("lat");
  const std::size_t depth = table.Column("depth_km");
  const std::size_t magnitude = table.Column("mag");
  const bool hasPlace = table.HasColumn("place");
  const std::size_t place = hasPlace ? table.Column("place") : 0;
  std::vector<Quake> quakes;
  while (table.NextRow())
    if (!table.Text(magnitude).empty())
      quakes.push_back({table.Number(lon, -360, 720), table.Number(lat, -90, 90), table.Number(depth, -10, 7000),
                        table.Number(magnitude, -5, 11), hasPlace ? table.Text(place) : std::string()});
  if (quakes.empty())
    throw InputError(p_name + ": expected an earthquake at least, got none");
  return quakes;
}

std::vector<Quake> ReadQuakesFile(const std::string& p_path, Loading& p_loading) {
  return ReadQuakes(*p_loading.Open(p_path), p_path);
}

} // namespace Vek::Chart::Gallery
