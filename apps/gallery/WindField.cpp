#include "apps/gallery/WindField.h"

#include "apps/gallery/TextTable.h"
#include "io/ReadVectorField.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Types::Angle;

void KeepDistinct(std::vector<double>& p_values) {
  std::sort(p_values.begin(), p_values.end());
  p_values.erase(std::unique(p_values.begin(), p_values.end()), p_values.end());
}

std::size_t IndexOf(const std::vector<double>& p_sorted, double p_value) {
  return static_cast<std::size_t>(std::lower_bound(p_sorted.begin(), p_sorted.end(), p_value) - p_sorted.begin());
}

void Complete(WindField& p_field, const std::string& p_name) {
  KeepDistinct(p_field.lons);
  KeepDistinct(p_field.lats);
  if (p_field.lons.size() < 2 || p_field.lats.size() < 2)
    throw InputError(p_name + ": expected winds at two longitudes and two latitudes at least, got " +
                     std::to_string(p_field.winds.size()) + " rows");
}

/// The lowest layer of a NetCDF file.
WindField ReadNetCdf(std::istream& p_stream, const std::string& p_name, std::size_t p_time) {
  const Io::VectorField read = Io::ReadVectorField(p_stream, p_name, {{}, p_time});
  const std::vector<double>&lons = read.axes[0], &lats = read.axes[1];
  const auto isWithin = [](const std::vector<double>& p_degrees, double p_low, double p_high) {
    return std::all_of(p_degrees.begin(), p_degrees.end(), [&](double p_x) { return p_x >= p_low && p_x <= p_high; });
  };
  if (!isWithin(lons, -360, 720) || !isWithin(lats, -90, 90))
    throw InputError(p_name + ": expected longitudes and latitudes in degrees along the axes");
  WindField field;
  for (std::size_t i = 0; i < lons.size() * lats.size(); ++i) {
    const Wind wind{lons[i % lons.size()], lats[i / lons.size()], read.vectors[i][0], read.vectors[i][1]};
    if (!std::isfinite(wind.u) || !std::isfinite(wind.v))
      continue;
    field.winds.push_back(wind);
    field.lons.push_back(wind.lon);
    field.lats.push_back(wind.lat);
  }
  Complete(field, p_name);
  return field;
}

} // namespace

double Wind::Speed() const {
  return std::hypot(u, v);
}

WindField WindField::Read(std::istream& p_stream, const std::string& p_name) {
  TextTable table(p_stream, p_name);
  const bool byDirection = table.HasColumn("dir");
  const std::size_t lon = table.Column(byDirection ? "longitude" : "lon");
  const std::size_t lat = table.Column(byDirection ? "latitude" : "lat");
  const std::size_t first = table.Column(byDirection ? "dir" : "u");
  const std::size_t second = table.Column(byDirection ? "speed" : "v");
  WindField field;
  while (table.NextRow()) {
    Wind wind{table.Number(lon, -360, 720), table.Number(lat, -90, 90), 0, 0};
    if (byDirection) {
      const double from = Angle::FromDegrees(table.Number(first, -360, 720)).Radians();
      const double speed = table.Number(second, 0, 1000);
      wind.u = -speed * std::sin(from);
      wind.v = -speed * std::cos(from);
    } else {
      wind.u = table.Number(first, -1000, 1000);
      wind.v = table.Number(second, -1000, 1000);
    }
    field.winds.push_back(wind);
    field.lons.push_back(wind.lon);
    field.lats.push_back(wind.lat);
  }
  Complete(field, p_name);
  return field;
}

WindField WindField::ReadFile(const std::string& p_path, Loading& p_loading, std::size_t p_time) {
  const auto stream = p_loading.Open(p_path);
  const int first = stream->peek(); // of "CDF" or HDF5's mark, which no table begins with
  constexpr int Hdf5 = 0x89;
  if (first == 'C' || first == Hdf5)
    return ReadNetCdf(*stream, p_path, p_time);
  return Read(*stream, p_path);
}

bool WindField::IsGlobal() const {
  const double covered = lons.back() - lons.front();
  return covered + covered / static_cast<double>(lons.size() - 1) > 359.0;
}

double WindField::SpeedQuantile(double p_fraction) const {
  std::vector<double> speeds;
  for (const Wind& wind : winds)
    speeds.push_back(wind.Speed());
  const auto nth = speeds.begin() + static_cast<std::ptrdiff_t>(p_fraction * static_cast<double>(speeds.size() - 1));
  std::nth_element(speeds.begin(), nth, speeds.end());
  return *nth;
}

std::vector<Wind> WindField::Thinned(std::size_t p_columns) const {
  const std::size_t step = std::max<std::size_t>(1, (lons.size() + p_columns / 2) / p_columns);
  std::vector<Wind> result;
  for (const Wind& wind : winds) {
    const std::size_t row = IndexOf(lats, wind.lat);
    if (row % step != step / 2)
      continue;
    const double crowding = std::max(0.2, std::cos(Angle::FromDegrees(wind.lat).Radians()));
    const std::size_t across = static_cast<std::size_t>(std::lround(static_cast<double>(step) / std::sqrt(crowding)));
    const std::size_t shift = (row / step) % 2 == 0 ? 0 : across / 2;
    if (IndexOf(lons, wind.lon) % across == shift)
      result.push_back(wind);
  }
  return result;
}

} // namespace Vek::Chart::Gallery
