// Earthquakes where they lie below the surface: spheres sized by magnitude and coloured by depth, below the coasts of
// the world. Stems lead from the deep ones up to the surface.

#include "apps/gallery/PictureFunctions.h"

#include "io/FileError.h"
#include "io/ReadHeights.h"
#include "io/ReadTable.h"
#include "library/NamedColors.h"
#include "scene/Figure.h"
#include "scene/Isolines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace Vek::Chart::Gallery {

namespace {

using Point = std::array<double, 3>;

/// Depths grow downwards.
Ticks DepthTicks(double p_low, double p_high, std::size_t p_most) {
  const Ticks depths = Ticks::Linear(-p_high, -p_low, p_most);
  std::vector<double> heights;
  for (const double depth : depths.Values())
    heights.push_back(-depth);
  return {heights, depths.Strings(), depths.Note()};
}

/// What a map shows, in degrees, and how much longer depths are drawn than distances on it.
struct Map {
  double west, east, south, north;
  double factor;

  /// Longitudes may be whole turns off.
  bool Shows(const Types::Vector3_Base<double>& p_point) const {
    const double eastward = p_point.x - west;
    return eastward - 360 * std::floor(eastward / 360) <= east - west && p_point.y >= south && p_point.y <= north;
  }
};

/// Where land and sea meet, on the map: what lies outside would be counted as missing.
void AddCoasts(Scene::Figure& p_figure, const std::string& p_relief, const Map& p_map) {
  const Io::HeightGrid relief = Io::ReadHeights(p_relief).Closed();
  std::vector<Types::Vector3_Base<double>> points;
  std::vector<std::size_t> lengths;
  for (const Isolines::Line& line : Isolines(relief.x, relief.y, relief.heights).At(0, 0)) {
    bool goesOn = false;
    for (const Types::Vector3_Base<double>& point : line.points) {
      if (!p_map.Shows(point)) {
        goesOn = false;
        continue;
      }
      if (!std::exchange(goesOn, true))
        lengths.push_back(0);
      points.push_back(point);
      ++lengths.back();
    }
  }
  if (!points.empty())
    p_figure.Lines(points, lengths).Color(0x7E93A6).Width(1.3);
}

/// From each deep earthquake up to the surface.
void AddStems(Scene::Figure& p_figure, const std::vector<Point>& p_quakes) {
  constexpr double Deep = 50; // km
  std::vector<Point> points;
  for (const Point& quake : p_quakes)
    if (quake[2] < -Deep) {
      points.push_back(quake);
      points.push_back({quake[0], quake[1], 0});
    }
  if (!points.empty())
    p_figure.Lines(points, std::vector<std::size_t>(points.size() / 2, 2)).Color(0x4B5A69).Width(0.8);
}

/// Sets the map: the world with the Pacific, and its rim of earthquakes, in the middle; or the part of it that has
/// earthquakes.
Map LimitMap(Scene::Figure& p_figure, const Types::BoundingBox_Base<double>& p_quakes) {
  constexpr double Wide = 180, Margin = 3, Pole = 90; // degrees
  constexpr double KilometresOfDegree = 111.195;      // of latitude
  const Types::Vector3_Base<double> low = p_quakes.Min(), high = p_quakes.Max();
  const bool isWorld = high.x - low.x > Wide;
  const double south = isWorld ? -Pole : std::max(low.y - Margin, -Pole);
  const double north = isWorld ? Pole : std::min(high.y + Margin, Pole);
  const double west = isWorld ? -30 : low.x - Margin, east = isWorld ? 330 : high.x + Margin;
  // About as deep as a third of the map is high.
  const double deepest = std::max({high.z, -low.z, 1.0});
  const double factor = std::max(1.0, std::round((north - south) / 3 * KilometresOfDegree / deepest));
  const double eastward = isWorld ? 0.8 : std::cos((south + north) / 2 * M_PI / 180);
  p_figure.SetLimits(0, west, east).SetLimits(1, south, north).SetAspect(eastward, 1, factor / KilometresOfDegree);
  return {west, east, south, north, factor};
}

} // namespace

Scene::Figure EarthquakesFigure(const Inputs& p_inputs) {
  const Io::Table table = Io::ReadTable(p_inputs.quakes);
  const std::vector<double>& depths = table["depth_km"];
  std::vector<Point> quakes = table.Points("lon", "lat", "depth_km");
  const Types::BoundingBox_Base<double> box = FiniteBounds(quakes);
  if (box.Empty())
    throw Io::FileError(p_inputs.quakes, "expected an earthquake at least, got none");
  for (Point& quake : quakes)
    quake[2] = -quake[2];

  const bool isOwn = p_inputs.IsOwn(p_inputs.quakes);
  Scene::Figure figure;
  figure.theme = Theme::Dark();
  figure.SetMap().SetAxisTitles({}, {}, "Depth in km").SetTicks(2, DepthTicks).Look(-12, 46);
  const QString origin = isOwn ? QString("31 January to 7 February 2018") : NameOfFile(p_inputs.quakes);
  const Map map = LimitMap(figure, box);
  figure.SetTitle(isOwn ? "A week of earthquakes" : "Earthquakes",
                  origin + QString(", depths \u00D7 %1").arg(map.factor));
  AddCoasts(figure, p_inputs.relief, map);
  AddStems(figure, quakes);
  figure.Scatter(quakes)
      .SizeBy(table["mag"], "Magnitude")
      .SizeGrowth(1.5)
      .Diameter(0.026)
      .ColorBy(depths, "Depth in km")
      .ColorMap(Library::NamedColors::Colors("plasma", 256, 0.97, 0.2))
      .LogScale()
      .ColorRange(5, 600);
  return figure;
}

} // namespace Vek::Chart::Gallery
