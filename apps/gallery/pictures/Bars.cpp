// How many earthquakes there were: a bar for each class of magnitude and depth, on a logarithmic axis.

#include "apps/gallery/PictureFunctions.h"

#include "io/FileError.h"
#include "io/ReadTable.h"
#include "library/NamedColors.h"
#include "scene/Figure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <vector>

namespace Vek::Chart::Gallery {

namespace {

constexpr std::array<double, 6> MagnitudeBounds{1, 2, 3, 4, 5, 6};
constexpr std::array<double, 5> DepthBounds{10, 35, 70, 150, 300}; // km

/// The class of a value: how many bounds it has reached.
template <std::size_t Count>
std::size_t ClassOf(double p_value, const std::array<double, Count>& p_bounds) {
  return static_cast<std::size_t>(std::upper_bound(p_bounds.begin(), p_bounds.end(), p_value) - p_bounds.begin());
}

template <std::size_t Count>
std::vector<QString> ClassNames(const std::array<double, Count>& p_bounds) {
  std::vector<QString> names{QString("< %1").arg(p_bounds.front())};
  for (std::size_t i = 1; i < Count; ++i)
    names.push_back(QString("%1\u2013%2").arg(p_bounds[i - 1]).arg(p_bounds[i]));
  names.push_back(QString("\u2265 %1").arg(p_bounds.back()));
  return names;
}

} // namespace

Scene::Figure BarsFigure(const Inputs& p_inputs) {
  const Io::Table table = Io::ReadTable(p_inputs.quakes);
  const std::vector<double>& magnitudes = table["mag"];
  const std::vector<double>& depths = table["depth_km"];
  std::map<std::array<std::size_t, 2>, double> counts; // classes without an earthquake have no bar
  std::size_t counted = 0;
  for (std::size_t i = 0; i < table.Rows(); ++i)
    if (std::isfinite(magnitudes[i]) && std::isfinite(depths[i])) {
      ++counts[{ClassOf(magnitudes[i], MagnitudeBounds), ClassOf(depths[i], DepthBounds)}];
      ++counted;
    }
  if (counted == 0)
    throw Io::FileError(p_inputs.quakes, "expected an earthquake at least, got none");

  std::vector<std::size_t> columns, rows;
  std::vector<double> heights;
  for (const auto& [classes, count] : counts) {
    columns.push_back(classes[0]);
    rows.push_back(classes[1]);
    heights.push_back(count);
  }
  const QString source =
      p_inputs.IsOwn(p_inputs.quakes) ? "31 January to 7 February 2018" : NameOfFile(p_inputs.quakes);
  Scene::Figure figure("Earthquakes by magnitude and depth", QString("%1 earthquakes, %2").arg(counted).arg(source));
  figure.theme = Theme::Dark();
  figure.Bars(columns, rows, heights)
      .Width(0.7)
      .ColorMap(Library::NamedColors::Colors("plasma", 256, 0.15, 1))
      .LogScale()
      .ColorTitle("Earthquakes");
  figure.SetAxisNames(0, ClassNames(MagnitudeBounds)).SetAxisNames(1, ClassNames(DepthBounds)).SetLogAxis(2);
  figure.SetLimits(2, 0.5, 1000).SetAxisTitles("Magnitude", "Depth in km", "Earthquakes").Look(152, 36);
  return figure;
}

} // namespace Vek::Chart::Gallery
