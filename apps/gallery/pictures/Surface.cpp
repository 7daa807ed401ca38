// The relief of land and sea floor as a surface with contour lines: mountains, plains and trenches of southern Asia, or
// all of a relief of the user's own.

#include "apps/gallery/PictureFunctions.h"

#include "io/ReadHeights.h"
#include "scene/Figure.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace Vek::Chart::Gallery {

namespace {

/// The part of a grid between longitudes and latitudes.
Io::HeightGrid Part(const Io::HeightGrid& p_grid, double p_west, double p_east, double p_south, double p_north) {
  Io::HeightGrid part = p_grid;
  part.x.clear(), part.y.clear(), part.heights.clear();
  for (const double x : p_grid.x)
    if (p_west <= x && x <= p_east)
      part.x.push_back(x);
  for (std::size_t j = 0; j < p_grid.y.size(); ++j)
    if (p_south <= p_grid.y[j] && p_grid.y[j] <= p_north) {
      part.y.push_back(p_grid.y[j]);
      for (std::size_t i = 0; i < p_grid.x.size(); ++i)
        if (p_west <= p_grid.x[i] && p_grid.x[i] <= p_east)
          part.heights.push_back(p_grid.heights[i + p_grid.x.size() * j]);
    }
  return part;
}

/// The sea in blues; land from green to white. Equal parts of the range.
std::vector<QColor> SeaAndLand() {
  constexpr int Steps = 16;
  std::vector<QColor> colors;
  const auto blend = [&](const std::vector<QColor>& p_stops) {
    for (std::size_t i = 0; i + 1 < p_stops.size(); ++i)
      for (int step = 0; step < Steps; ++step) {
        const QColor &a = p_stops[i], &b = p_stops[i + 1];
        const double t = (step + 0.5) / Steps;
        colors.push_back(QColor::fromRgbF(a.redF() * (1 - t) + b.redF() * t, a.greenF() * (1 - t) + b.greenF() * t,
                                          a.blueF() * (1 - t) + b.blueF() * t));
      }
  };
  blend({0x14264A, 0x1D4E7E, 0x2F7FA8, 0x63B4C6, 0xA9DDD8});
  blend({0x4F8F57, 0xA9B46A, 0xB98F57, 0x9A7462, 0xF2F0EC});
  return colors;
}

/// Whether positions are longitudes and latitudes: by their names and units, or in a height grid, which has neither.
bool IsMap(const Io::HeightGrid& p_grid) {
  const auto isWithin = [](const std::vector<double>& p_axis, double p_low, double p_high) {
    return std::all_of(p_axis.begin(), p_axis.end(), [=](double p_x) { return p_low <= p_x && p_x <= p_high; });
  };
  const bool isNamed = p_grid.xName.compare(0, 3, "lon") == 0 || p_grid.xUnit.compare(0, 6, "degree") == 0;
  return (isNamed || p_grid.xName.empty()) && isWithin(p_grid.x, -360, 720) && isWithin(p_grid.y, -90, 90);
}

QString Titled(const std::string& p_name, const std::string& p_unit, const char* p_otherwise) {
  const QString name = p_name.empty() ? QString(p_otherwise) : QString::fromStdString(p_name);
  return p_unit.empty() ? name : name + " in " + QString::fromStdString(p_unit);
}

} // namespace

Scene::Figure SurfaceFigure(const Inputs& p_inputs) {
  const bool isOwn = p_inputs.IsOwn(p_inputs.relief);
  Io::HeightGrid relief = Io::ReadHeights(p_inputs.relief);
  if (isOwn) {
    relief = Part(relief, 60, 125, 0, 50);
    relief.unit = "m";
  }
  const bool isMap = IsMap(relief);
  if (isMap)
    relief = relief.Closed();
  const QString heights = Titled(relief.name, relief.unit, "Height");
  QString subtitle = isOwn ? QString("Land and sea floor") : NameOfFile(p_inputs.relief);
  Scene::Figure figure;
  figure.theme = Theme::Dark();
  figure.Look(-20, 40);
  SurfacePlot& surface = figure.Surface(relief.x, relief.y, relief.heights).ColorTitle(heights).Contours(14);
  if (isOwn)
    surface.ColorMap(SeaAndLand()).ColorRange(-6000, 6000);
  if (!isMap)
    return figure.SetTitle("Surface", subtitle)
               .SetAxisTitles(Titled(relief.xName, relief.xUnit, "x"), Titled(relief.yName, relief.yUnit, "y"),
                              heights),
           std::move(figure);

  figure.SetMap().SetAxisTitles({}, {}, heights);
  const Types::MinMax_Base<double> range = FiniteRange(relief.heights);
  if (relief.unit == "m" && range.max > range.min) {
    constexpr double MetresOfDegree = 111195, Share = 0.2; // of latitude; of the height in the width
    const double middle = (relief.y.front() + relief.y.back()) / 2;
    const double wide = std::abs(relief.x.back() - relief.x.front()) * std::cos(middle * M_PI / 180);
    const double high = std::abs(relief.y.back() - relief.y.front());
    const double free = Share * std::max(wide, high) * MetresOfDegree / (range.max - range.min);
    const double factor = std::pow(10, std::round(std::log10(free)));
    figure.SetAspect(std::cos(middle * M_PI / 180), 1, factor / MetresOfDegree);
    subtitle += QString(", heights \u00D7 %1").arg(factor);
  }
  figure.SetTitle(isOwn ? "Relief of southern Asia" : "Surface", subtitle);
  return figure;
}

} // namespace Vek::Chart::Gallery
