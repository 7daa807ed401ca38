// All named colour maps on one sheet. Shows how NamedColors become ColorMaps, blended or in classes, how even their
// lightness is, and how a ColorScale turns a field of values into colours: linearly, logarithmically and by bounds.

#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/Sheet.h"

#include "io/FileError.h"
#include "io/ReadHeights.h"
#include "io/ReadVolume.h"
#include "scene/ColorBar.h"

#include "library/ColorMap.h"
#include "library/ColorScale.h"
#include "library/NamedColors.h"
#include "library/Texture.h"
#include "library/TexturedQuad.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

namespace Vek::Chart::Gallery {

namespace {

using Library::ColorMap;
using Library::ColorScale;
using Library::NamedColors;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr int Classes = 7; ///< of the named maps

/// Values over the whole world, row by row from the north, from `West` eastwards once around.
struct Field {
  static constexpr int Columns = 960;
  static constexpr int Rows = 480;
  static constexpr double West = -25;

  template <class Function>
  explicit Field(const Function& p_valueAt) {
    for (int row = 0; row < Rows; ++row)
      for (int column = 0; column < Columns; ++column)
        values.push_back(
            static_cast<float>(p_valueAt(West + 360 * (column + 0.5) / Columns, 90 - 180 * (row + 0.5) / Rows)));
  }

  QImage Colored(const ColorScale& p_scale) const {
    QImage image(Columns, Rows, QImage::Format_RGBA8888);
    p_scale.Map(values.data(), values.size(), image.bits(), Vek::Chart::Utility::Threads::All());
    return image;
  }

  std::vector<float> values;
};

/// Values on an even grid in degrees: linear between the nodes, without those that are missing; NaN where the nearest
/// node is, and beyond the grid. Longitudes of a whole turn go on at the other end.
class Map {
public:
  Map(std::vector<double> p_x, std::vector<double> p_y, std::vector<double> p_values)
      : _x(std::move(p_x))
      , _y(std::move(p_y))
      , _values(std::move(p_values)) {}

  double operator()(double p_lon, double p_lat) const {
    const double stepX = (_x.back() - _x.front()) / (Count(_x) - 1), stepY = (_y.back() - _y.front()) / (Count(_y) - 1);
    const bool isGlobal = std::abs(stepX * Count(_x)) > 359.5;
    double x = (p_lon - _x.front()) / stepX;
    if (isGlobal)
      x -= Count(_x) * std::floor(x / Count(_x));
    const double y = (p_lat - _y.front()) / stepY;
    if (!(x >= -0.5 && x < Count(_x) && y >= -0.5 && y <= Count(_y) - 0.5) || (!isGlobal && x > Count(_x) - 0.5))
      return NaN;
    if (std::isnan(At(std::lround(x), std::lround(y))))
      return NaN;
    const double left = std::floor(x), lower = std::floor(y);
    double sum = 0, weights = 0;
    for (const int i : {0, 1})
      for (const int j : {0, 1}) {
        const double value = At(static_cast<long>(left) + i, static_cast<long>(lower) + j);
        const double weight = (1 - std::abs(x - left - i)) * (1 - std::abs(y - lower - j));
        if (std::isnan(value))
          continue;
        sum += weight * value;
        weights += weight;
      }
    return sum / weights;
  }

private:
  static double Count(const std::vector<double>& p_axis) { return static_cast<double>(p_axis.size()); }
  double At(long p_column, long p_row) const {
    const long columns = static_cast<long>(_x.size()), rows = static_cast<long>(_y.size());
    const long column = (p_column % columns + columns) % columns, row = std::clamp(p_row, 0L, rows - 1);
    return _values[static_cast<std::size_t>(column + columns * row)];
  }

  std::vector<double> _x, _y, _values;
};

/// How deep the sea is; NaN on land.
Field Depths(const std::string& p_path) {
  const Io::HeightGrid grid = Io::ReadHeights(p_path);
  if (grid.x.size() < 2 || grid.y.size() < 2)
    throw Io::FileError(p_path, "expected heights of two columns and rows at least");
  const Map heights(grid.x, grid.y, grid.heights);
  return Field([&](double p_lon, double p_lat) {
    const double height = heights(p_lon, p_lat);
    return height <= 0 ? -height : NaN;
  });
}

/// The uppermost layer of data/ocean_salinity.txt, whose cells start at 19.5° east and 90.5° south; NaN where it is 0.
Field Surface(const std::string& p_path) {
  const Io::Volume file = Io::ReadVolume(p_path);
  const auto [columns, rows, layers] = file.size;
  if (columns < 2 || rows < 2)
    throw Io::FileError(p_path, "expected a volume of two columns and rows at least");
  std::vector<double> lon, lat, values;
  for (std::size_t i = 0; i < columns; ++i)
    lon.push_back(19.5 + 360 * (static_cast<double>(i) + 0.5) / static_cast<double>(columns));
  for (std::size_t i = 0; i < rows; ++i)
    lat.push_back(-90.5 + 180 * (static_cast<double>(i) + 0.5) / static_cast<double>(rows));
  for (std::size_t j = 0; j < rows; ++j)
    for (std::size_t i = 0; i < columns; ++i)
      values.push_back(file.Value(i, j, 0) > 0 ? file.Value(i, j, 0) : NaN);
  return Field(Map(lon, lat, values));
}

ColorScale::Outside OutsideColors() {
  ColorScale::Outside outside;
  outside.below = QColor(0xF25F8B);
  outside.above = QColor(0xFFB000);
  outside.nan = QColor(0x323E4B);
  return outside;
}

/// A field in its colours, and its colour bar.
struct Panel {
  QString title;
  QImage image;
  ColorBar bar;
};

std::vector<Panel> Panels(const Inputs& p_inputs) {
  const ColorMap viridis(NamedColors::Colors("viridis", 256, 1, 0.04), ColorMap::Interpolated);
  constexpr double Least = 10, Most = 6000;
  const ColorScale::Outside outside = OutsideColors();
  const Field depths = Depths(p_inputs.relief);
  ValueScale scale{0, Most, false, outside.below, outside.above};
  std::vector<Panel> panels;
  panels.push_back({"Depth of the sea, linear",
                    depths.Colored(ColorScale(viridis, 0, Most, ColorScale::Linear, outside)),
                    ColorBar(viridis, scale)});
  scale.lower = Least;
  scale.logarithmic = true;
  panels.push_back({"Depth of the sea, logarithmic",
                    depths.Colored(ColorScale(viridis, Least, Most, ColorScale::Logarithmic, outside)),
                    ColorBar(viridis, scale)});
  const std::vector<double> bounds = {30, 32, 33, 34, 34.5, 35, 35.5, 36, 37, 38};
  const ColorScale classes(
      ColorMap::GenerateColorList(NamedColors::Colors("coolwarm"), static_cast<int>(bounds.size()) - 1), bounds,
      outside);
  panels.push_back(
      {"Salinity at the surface, in classes", Surface(p_inputs.salinity).Colored(classes), ColorBar(classes)});
  for (Panel& panel : panels) {
    const bool isSalinity = panel.title.startsWith("Salinity");
    panel.bar.title = isSalinity ? "Salinity in parts per thousand" : "Depth in m";
    panel.bar.orientation = ColorBar::Orientation::Horizontal;
    panel.bar.metrics.thickness = 22;
    panel.bar.largest = std::numeric_limits<double>::infinity(); // pointed ends, without the extremes
    panel.bar.least = -panel.bar.largest;
  }
  panels[2].bar.ticks = Ticks::OfBounds(bounds, bounds.size());
  return panels;
}

constexpr double Margin = 48;
constexpr double AxisWidth = 46;
constexpr double PlotBottom = 542;
constexpr double PlotTop = 728;

double PlotHeight(double p_lightness) {
  return PlotBottom + (PlotTop - PlotBottom) * p_lightness / 100;
}

/// The lightness L* of CIELAB, 0 to 100, of a colour of sRGB.
double Lightness(const QColor& p_color) {
  const auto linear = [](double p_channel) {
    return p_channel <= 0.04045 ? p_channel / 12.92 : std::pow((p_channel + 0.055) / 1.055, 2.4);
  };
  const double luminance =
      0.2126 * linear(p_color.redF()) + 0.7152 * linear(p_color.greenF()) + 0.0722 * linear(p_color.blueF());
  return luminance > 216.0 / 24389 ? 116 * std::cbrt(luminance) - 16 : luminance * 24389 / 27;
}

void DrawLightnessAxis(Sheet& p_sheet) {
  const double left = Margin + AxisWidth;
  for (const int lightness : {0, 50, 100}) {
    const double y = PlotHeight(lightness);
    p_sheet.canvas.Line({left - 6, y}, {p_sheet.canvas.Width() - Margin, y}, 1, p_sheet.theme.line);
    p_sheet.Label(QString::number(lightness), left - 10, y, {1, 0.5});
  }
  p_sheet.Label("L*", left - 10, PlotHeight(75), {1, 0.5});
}

/// The lightness of a map: the area below its curve in its colours, and the straight line that the curve would be if it
/// grew evenly to its lightest colour and fell from there.
void DrawLightness(Sheet& p_sheet, double p_left, double p_width, const ColorMap& p_map) {
  constexpr int Steps = 128;
  std::vector<Canvas::Position> curve;
  for (int i = 0; i <= Steps; ++i) {
    const double place = static_cast<double>(i) / Steps;
    curve.emplace_back(p_left + p_width * place, PlotHeight(Lightness(p_map.Color(place))));
  }
  for (std::size_t i = 0; i < Steps; ++i)
    p_sheet.canvas.Polygon({{curve[i].x, PlotBottom}, {curve[i + 1].x, PlotBottom}, curve[i + 1], curve[i]},
                           p_map.Color((static_cast<double>(i) + 0.5) / Steps));
  const auto lightest =
      std::max_element(curve.begin(), curve.end(), [](const auto& p_a, const auto& p_b) { return p_a.y < p_b.y; });
  const std::vector<Canvas::Position> even = {curve.front(), *lightest, curve.back()};
  p_sheet.canvas.Polyline(even, 3, p_sheet.theme.backgroundBottom); // so that it is seen on light and on dark
  p_sheet.canvas.Polyline(curve, 3, p_sheet.theme.title);
  p_sheet.canvas.Polyline(even, 1, p_sheet.theme.title);
}

/// All named maps: their colours blended and in classes, above their lightness.
void DrawNamed(Sheet& p_sheet) {
  constexpr double Gap = 18;
  const auto count = static_cast<double>(NamedColors::Names().size());
  const double width = (p_sheet.canvas.Width() - 2 * Margin - AxisWidth + Gap) / count - Gap;
  double left = Margin + AxisWidth;
  for (const std::string& name : NamedColors::Names()) {
    ColorMap blended(NamedColors::Colors(name), ColorMap::Interpolated);
    p_sheet.Heading(QString::fromStdString(name), left - 2, 852);
    p_sheet.canvas.Bands({left, 794, left + width, 832}, blended.GetImage(), false);
    p_sheet.canvas.Bands({left, 748, left + width, 786},
                         ColorMap(NamedColors::Colors(name, Classes), ColorMap::Discrete).GetImage(), false);
    DrawLightness(p_sheet, left, width, blended);
    left += width + Gap;
  }
}

void DrawPanels(Sheet& p_sheet, const std::vector<Panel>& p_panels) {
  constexpr double Gap = 32, Top = 456;
  const double width = (p_sheet.canvas.Width() - 2 * Margin + Gap) / static_cast<double>(p_panels.size()) - Gap;
  const double height = std::min(width / 2, 250.0);
  double left = Margin;
  for (const Panel& panel : p_panels) {
    p_sheet.Heading(panel.title, left - 2, Top + 24);
    Library::Texture texture(panel.image, p_sheet.Gl());
    texture.magFilter = Library::Texture::Nearest;
    p_sheet.canvas.Image({left, Top - height, left + 2 * height, Top}, texture);
    const LegendBlock bar = panel.bar.Layout(width - 12, p_sheet.theme, p_sheet.canvas.PointSize());
    bar.DrawAt(p_sheet.canvas, {left, Top - height - 24 - bar.Height()});
    left += width + Gap;
  }
}

/// The colours of what is not on the scales.
void DrawOutsideKey(Sheet& p_sheet) {
  constexpr double Y = 58, Half = 9;
  const ColorScale::Outside outside = OutsideColors();
  p_sheet.canvas.Triangle({Margin + 16, Y - Half}, {Margin + 16, Y + Half}, {Margin, Y}, outside.below);
  p_sheet.Label("below the range", Margin + 28, Y);
  p_sheet.canvas.Triangle({Margin + 210, Y - Half}, {Margin + 210, Y + Half}, {Margin + 226, Y}, outside.above);
  p_sheet.Label("above the range", Margin + 238, Y);
  p_sheet.canvas.Fill({Margin + 420, Y - Half, Margin + 438, Y + Half}, outside.nan);
  p_sheet.Label("not a number: land, or no data", Margin + 450, Y);
}

} // namespace

QImage ColorsImage(const Inputs& p_inputs, Types::Size p_size) {
  const std::vector<Panel> panels = Panels(p_inputs);
  return DrawSheet("Colours",
                   QString("The named colour maps, blended and in %1 classes, and their lightness L*. The thin lines "
                           "grow evenly.")
                       .arg(Classes),
                   p_size, [&](Sheet& p_sheet) {
                     DrawLightnessAxis(p_sheet);
                     DrawNamed(p_sheet);
                     DrawPanels(p_sheet, panels);
                     DrawOutsideKey(p_sheet);
                   });
}

} // namespace Vek::Chart::Gallery
