// The wind of the world above the relief of land and sea floor, as arrows and as streamlines. Both are figures with a
// flat map: the relief is a surface with colours for its heights, and the wind, added later, lies above it.

#include "apps/gallery/PictureFunctions.h"

#include "io/FileError.h"
#include "io/ReadHeights.h"
#include "io/ReadVectorField.h"
#include "library/NamedColors.h"
#include "scene/Figure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Vek::Chart::Gallery {

namespace {

using Point = std::array<double, 3>;

/// Dark blues up to sea level and greys from there on.
std::vector<QColor> ReliefColors() {
  constexpr int Count = 64;
  std::vector<QColor> colors;
  const auto blend = [&](const QColor& p_low, const QColor& p_high) {
    for (int i = 0; i < Count; ++i) {
      const double t = static_cast<double>(i) / (Count - 1);
      colors.push_back(QColor::fromRgbF(p_low.redF() * (1 - t) + p_high.redF() * t,
                                        p_low.greenF() * (1 - t) + p_high.greenF() * t,
                                        p_low.blueF() * (1 - t) + p_high.blueF() * t));
    }
  };
  blend(0x141D28, 0x2C4759);
  blend(0x4C504A, 0xA8A296);
  return colors;
}

/// The lowest level of a wind.
Io::VectorField ReadWind(const Inputs& p_inputs) {
  Io::FieldSelection selection;
  selection.time = p_inputs.time;
  Io::VectorField wind = Io::ReadVectorField(p_inputs.winds, selection);
  wind.vectors.resize(wind.axes[0].size() * wind.axes[1].size());
  const auto isWithin = [](const std::vector<double>& p_axis, double p_low, double p_high) {
    return p_axis.size() > 1 &&
           std::all_of(p_axis.begin(), p_axis.end(), [=](double p_x) { return p_low <= p_x && p_x <= p_high; });
  };
  if (!isWithin(wind.axes[0], -360, 720) || !isWithin(wind.axes[1], -90, 90))
    throw Io::FileError(p_inputs.winds, "expected two longitudes and two latitudes at least, in degrees");
  return wind;
}

/// A wind as it goes on the map: eastward, a degree is the shorter the nearer it is to a pole. Lengths stay speeds.
std::vector<Point> OnMap(const Io::VectorField& p_wind) {
  constexpr double NearPole = 0.05;
  const std::size_t columns = p_wind.axes[0].size();
  std::vector<Point> vectors = p_wind.vectors;
  for (std::size_t i = 0; i < vectors.size(); ++i) {
    auto& [x, y, z] = vectors[i];
    const double speed = std::hypot(x, y);
    x /= std::max(std::cos(p_wind.axes[1][i / columns] * M_PI / 180), NearPole);
    const double length = std::hypot(x, y);
    const double factor = length > 0 ? speed / length : 1;
    x *= factor, y *= factor, z = 0;
  }
  return vectors;
}

/// What is known of a wind: of the gallery's own one its origin, otherwise what its file has.
QString Origin(const Inputs& p_inputs, const Io::VectorField& p_wind) {
  if (p_inputs.IsOwn(p_inputs.winds))
    return "Monthly mean at the surface, January 1987";
  QString origin = NameOfFile(p_inputs.winds);
  if (p_wind.time < p_wind.times.size())
    origin += ", " + QString::fromStdString(p_wind.times[p_wind.time]);
  if (p_wind.axes[2].size() > 1)
    origin += QString(", the first of %1 levels").arg(p_wind.axes[2].size());
  return origin;
}

/// The world, or the part of it that a wind has, with its relief.
Scene::Figure MapOf(const Inputs& p_inputs, const Io::VectorField& p_wind, const QString& p_title) {
  Scene::Figure figure(p_title, Origin(p_inputs, p_wind));
  figure.theme = Theme::Dark();
  figure.SetMap();
  const auto [west, east] = std::minmax(p_wind.axes[0].front(), p_wind.axes[0].back());
  const auto [south, north] = std::minmax(p_wind.axes[1].front(), p_wind.axes[1].back());
  constexpr double Wide = 180;
  if (east - west > Wide) // degrees are true to each other at 37 degrees north and south
    figure.SetAspect(0.8, 1, 1);
  if (p_wind.period > 0)
    figure.SetLimits(0, -180, 180).SetLimits(1, -90, 90);
  else
    figure.SetLimits(0, west, std::min(east, west + 360)).SetLimits(1, south, north);
  const Io::HeightGrid relief = Io::ReadHeights(p_inputs.relief).Closed();
  figure.Surface(relief.x, relief.y, std::vector<double>(relief.heights.size()))
      .ColorBy(relief.heights, "Height in m")
      .ColorMap(ReliefColors())
      .ColorRange(-6000, 6000);
  return figure;
}

/// The colours of the wind, whose file has the unit or not.
template <class WindPlot>
WindPlot& ColorWind(WindPlot& p_plot, const Inputs& p_inputs, const Io::VectorField& p_wind) {
  const bool isOwn = p_inputs.IsOwn(p_inputs.winds);
  const QString unit = isOwn ? QString("m/s") : QString::fromStdString(p_wind.unit);
  if (isOwn)
    p_plot.ColorRange(0, 15);
  return p_plot.ColorMap(Library::NamedColors::Colors("inferno", 256, 0.45, 1))
      .ColorTitle(unit.isEmpty() ? QString("Speed") : "Speed in " + unit);
}

} // namespace

Scene::Figure WindFigure(const Inputs& p_inputs) {
  const Io::VectorField wind = ReadWind(p_inputs);
  Scene::Figure figure = MapOf(p_inputs, wind, p_inputs.IsOwn(p_inputs.winds) ? "Winds of the world" : "Wind");
  std::vector<Point> positions = wind.Positions();
  positions.resize(wind.vectors.size());
  for (Point& position : positions)
    position[2] = 0;
  Scene::QuiverPlot& arrows = figure.Quiver(positions, OnMap(wind)).ColorByLength().Most(1200);
  if (p_inputs.IsOwn(p_inputs.winds))
    arrows.UnitLength(0.00115); // the fastest ones end in front of the next
  ColorWind(arrows, p_inputs, wind);
  return figure;
}

Scene::Figure StreamlinesFigure(const Inputs& p_inputs) {
  const Io::VectorField wind = ReadWind(p_inputs);
  Scene::Figure figure = MapOf(
      p_inputs, wind, p_inputs.IsOwn(p_inputs.winds) ? "Streamlines of the world's wind" : "Streamlines of a wind");
  Scene::VectorField field = Scene::VectorField::Layer(wind.axes[0], wind.axes[1], OnMap(wind));
  if (wind.period > 0)
    field.WrapX(wind.period);
  ColorWind(figure.Streamlines(field).Spacing(1.0 / 55).Width(0.24), p_inputs, wind);
  return figure;
}

} // namespace Vek::Chart::Gallery
