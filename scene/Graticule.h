#pragma once

#include "scene/Axes.h"
#include "scene/Export.h"

#include "platform/types/Vector.h"

namespace Vek::Chart::Scene {

/// A part of the world in equirectangular projection: meridians and parallels are straight lines at right angles, x
/// grows to the east, y to the north (J. P. Snyder, "Map Projections: A Working Manual", U.S. Geological Survey
/// Professional Paper 1395, 1987, chapter 12).
///
/// Units: degrees of latitude. Lengths to the east are true along the standard parallel, the middle one, and too long
/// beyond it; on maps that are wider than half the world, along the equator. The origin is the middle of the map.
///
/// Longitudes are taken whatever the turn: on a map from 100 to 250, −170 is 190. A point on the meridian of both
/// borders lies at the western one, or the eastern one if its longitude is that of `east`.
///
/// The functions throw std::invalid_argument where the fields are not as described below.
///
/// \snippet SceneMapSnippets.cpp Graticule
/// \image html parts/Graticule.png
/// \ingroup legends
struct VEK_SCENE_API Graticule {
  static constexpr double Turn = 360; ///< degrees of longitude around the world
  static constexpr double Pole = 90;  ///< the latitude of the north pole

  double west = -180; ///< the western border in degrees
  double east = 180;  ///< the eastern border, more than `west`, by 360 at most
  double south = -90; ///< the southern border, −90 at least
  double north = 90;  ///< the northern border, more than `south`, 90 at most

  /// The latitude whose degrees of longitude have their true length relative to degrees of latitude.
  double StandardParallel() const;
  /// The units of a degree of longitude: the cosine of the standard parallel, 0.01 at least.
  double LongitudeScale() const;
  /// That of a map with other borders in degrees, which need not be those of a map.
  static double LongitudeScale(double p_width, double p_south, double p_north);
  /// The longitude plus the full turns for which it is `west` at least and less than `west` + 360; one between the
  /// borders as it is. NaN for numbers that are not finite.
  double Wrapped(double p_longitude) const;
  /// Whether a point lies on the map, its borders included.
  bool Contains(double p_longitude, double p_latitude) const;
  /// The position of a point on the map, or of one beyond a border; NaN for numbers that are not finite.
  Types::Vector2_Base<double> Position(double p_longitude, double p_latitude) const;
  /// The frame, the meridians and the parallels with their names ("30° N"), at z = 0. Titles are empty.
  Axes MakeAxes() const;

  ///@{
  /// Ticks of longitudes and latitudes (see Ticks::Degrees).
  static Ticks Meridians(double p_low, double p_high, std::size_t p_most);
  static Ticks Parallels(double p_low, double p_high, std::size_t p_most);
  ///@}
};

} // namespace Vek::Chart::Scene
