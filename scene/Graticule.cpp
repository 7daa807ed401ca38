#include "scene/Graticule.h"

#include "platform/types/Angle.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

void Check(const Graticule& p_map) {
  const double width = p_map.east - p_map.west;
  if (!(std::isfinite(p_map.west) && width > 0 && width <= Graticule::Turn))
    throw std::invalid_argument("Graticule: expected borders up to 360 degrees apart, got " +
                                std::to_string(p_map.west) + " to " + std::to_string(p_map.east));
  if (!(p_map.south >= -90 && p_map.north <= 90 && p_map.south < p_map.north))
    throw std::invalid_argument("Graticule: expected latitudes from -90 to 90, got " + std::to_string(p_map.south) +
                                " to " + std::to_string(p_map.north));
}

/// The standard parallel of a map.
double ParallelOf(double p_width, double p_south, double p_north) {
  return p_width > Graticule::Turn / 2 ? 0 : p_south / 2 + p_north / 2;
}

} // namespace

double Graticule::StandardParallel() const {
  Check(*this);
  return ParallelOf(east - west, south, north);
}

double Graticule::LongitudeScale() const {
  Check(*this);
  return LongitudeScale(east - west, south, north);
}

double Graticule::LongitudeScale(double p_width, double p_south, double p_north) {
  constexpr double Least = 0.01; // a map around a pole stays a map
  const double parallel = std::clamp(ParallelOf(p_width, p_south, p_north), -Pole, Pole);
  return std::max(Least, std::cos(Types::Angle::FromDegrees(parallel).Radians()));
}

double Graticule::Wrapped(double p_longitude) const {
  Check(*this);
  if (p_longitude >= west && p_longitude <= east)
    return p_longitude;
  if (!std::isfinite(p_longitude))
    return std::numeric_limits<double>::quiet_NaN();
  const double beyond = std::fmod(p_longitude - west, Turn);
  const double wrapped = west + (beyond < 0 ? beyond + Turn : beyond);
  return wrapped < west + Turn ? wrapped : west; // rounding may have added the turn to a little below zero
}

bool Graticule::Contains(double p_longitude, double p_latitude) const {
  return Wrapped(p_longitude) <= east && p_latitude >= south && p_latitude <= north;
}

Types::Vector2_Base<double> Graticule::Position(double p_longitude, double p_latitude) const {
  const double longitude = Wrapped(p_longitude);
  if (std::isnan(longitude) || !std::isfinite(p_latitude))
    return {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::quiet_NaN()};
  return {(longitude - west / 2 - east / 2) * LongitudeScale(), p_latitude - south / 2 - north / 2};
}

Axes Graticule::MakeAxes() const {
  const double halfWidth = (east - west) / 2 * LongitudeScale(), halfHeight = (north - south) / 2;
  Axes axes;
  axes.box = {{-halfWidth, -halfHeight, 0}, {halfWidth, halfHeight, 0}};
  axes.axes[0].low = west;
  axes.axes[0].high = east;
  axes.axes[0].ticks = &Meridians;
  axes.axes[1].low = south;
  axes.axes[1].high = north;
  axes.axes[1].ticks = &Parallels;
  return axes;
}

Ticks Graticule::Meridians(double p_low, double p_high, std::size_t p_most) {
  return Ticks::Degrees(p_low, p_high, p_most, Ticks::Angle::Longitude);
}

Ticks Graticule::Parallels(double p_low, double p_high, std::size_t p_most) {
  return Ticks::Degrees(p_low, p_high, p_most, Ticks::Angle::Latitude);
}

} // namespace Vek::Chart::Scene
