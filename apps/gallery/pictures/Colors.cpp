// All named colour maps on one sheet. Shows how NamedColors become ColorMaps, blended or in classes, how even their
// lightness is, and how a ColorScale turns a field of values into colours: linearly, logarithmically and by bounds.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/GalleryBars.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/HeightField.h"
#include "apps/gallery/MapAxes.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/VolumeFile.h"
#include "scene/Canvas.h"
#include "scene/ColorBar.h"
#include "scene/TextRenderer.h"

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

using namespace Scene;

namespace {

using Library::ColorMap;
using Library::ColorScale;
using Library::NamedColors;
using Rect = Canvas::Rect;

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
    p_scale.Map(values.data(), values.size(), image.bits());
    return image;
  }

  std::vector<float> values;
};

/// How deep the sea is; NaN on land, and where the heights tell of nothing.
Field Depths(const HeightField& p_heights) {
  const auto x = p_heights.RangeX(), y = p_heights.RangeY();
  const bool global = x.max - x.min > 359.5;
  return Field([&](double p_lon, double p_lat) {
    const bool known = (global || (x.min <= p_lon && p_lon <= x.max)) && y.min <= p_lat && p_lat <= y.max;
    const double height = known ? p_heights.At(p_lon, p_lat) : NaN;
    return height <= 0 ? -height : NaN;
  });
}

/// The uppermost layer of a volume of the ocean, whose columns start at 19.5° east; NaN where it is 0.
Field Surface(const VolumeFile& p_file) {
  const int columns = p_file.image->Height(), rows = p_file.image->Width(); // the two sizes that vary fastest
  const auto cell = [&](int p_column, int p_row) {
    const int column = (p_column % columns + columns) % columns, row = std::clamp(p_row, 0, rows - 1);
    const int byte = p_file.image->Bytes()[static_cast<std::size_t>(row * columns + column)];
    return byte == 0 ? NaN : byte / 255.0 * p_file.largest;
  };
  return Field([&](double p_lon, double p_lat) {
    const double x = (p_lon - 19.5) / 360 * columns, y = (p_lat + 90) / 180 * rows;
    if (std::isnan(cell(static_cast<int>(std::floor(x)), static_cast<int>(std::floor(y)))))
      return NaN;
    // The mean of the four cells around, by distance; those on land have no say.
    const double left = std::floor(x - 0.5), lower = std::floor(y - 0.5);
    double sum = 0, weights = 0;
    for (const int i : {0, 1})
      for (const int j : {0, 1}) {
        const double value = cell(static_cast<int>(left) + i, static_cast<int>(lower) + j);
        const double weight = (1 - std::abs(x - 0.5 - left - i)) * (1 - std::abs(y - 0.5 - lower - j));
        if (std::isnan(value))
          continue;
        sum += weight * value;
        weights += weight;
      }
    return sum / weights;
  });
}

ColorScale::Outside OutsideColors() {
  ColorScale::Outside outside;
  outside.below = QColor(0xF25F8B);
  outside.above = QColor(0xFFB000);
  outside.nan = QColor(0x323E4B);
  return outside;
}

class ColorsPicture : public Picture {
public:
  ColorsPicture(const Inputs& p_inputs, Loading& p_loading)
      : _depths(Depths(HeightField::ReadFile(p_inputs.relief, p_loading.Stage(0.4))))
      , _salinity(Surface(VolumeFile::Read(p_inputs.salinity, p_loading))) {
    for (const std::string& name : NamedColors::Names())
      _named.push_back({QString::fromStdString(name), ColorMap(NamedColors::Colors(name), ColorMap::Interpolated),
                        ColorMap(NamedColors::Colors(name, Classes), ColorMap::Discrete)});
    ColorsPicture::SetColors({});
  }

  /// The sheet is flat: no camera moves it.
  Camera StartCamera() const override { return {}; }

  bool TakesColors() const override { return true; }
  void SetColors(const std::vector<QColor>& p_colors) override {
    const std::vector<QColor> depths = p_colors.empty() ? Palettes::Viridis(1, 0.04) : p_colors;
    const std::vector<QColor> salinities = p_colors.empty() ? NamedColors::Colors("coolwarm") : p_colors;
    const ColorMap blended(depths, ColorMap::Interpolated);
    constexpr double Least = 10, Most = 6000;
    _panels.clear();
    const ColorScale::Outside outside = OutsideColors();
    ValueScale scale{0, Most, false, outside.below, outside.above};
    _panels.push_back({"Depth of the sea, linear", "Depth in m",
                       _depths.Colored(ColorScale(blended, 0, Most, ColorScale::Linear, outside)),
                       ColorBar(blended, scale), TicksFromZero(Most, 4, false), nullptr});
    scale.lower = Least;
    scale.logarithmic = true;
    _panels.push_back({"Depth of the sea, logarithmic", "Depth in m",
                       _depths.Colored(ColorScale(blended, Least, Most, ColorScale::Logarithmic, outside)),
                       ColorBar(blended, scale), LogTicksWithEnds(Least, Most, 4), nullptr});
    const std::vector<double> bounds = {30, 32, 33, 34, 34.5, 35, 35.5, 36, 37, 38};
    const ColorScale classes(ColorMap::GenerateColorList(salinities, static_cast<int>(bounds.size()) - 1), bounds,
                             outside);
    _panels.push_back({"Salinity at the surface, in classes", "Salinity in parts per thousand",
                       _salinity.Colored(classes), ColorBar(classes), Ticks::OfBounds(bounds, bounds.size()), nullptr});
  }

  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) override {
    DrawBackground(p_gl, p_view);
    Canvas canvas(p_gl, p_view.viewport, _text, PointSize(p_view));
    DrawTitle(canvas, "Colours",
              QString("The named maps blended, in %1 classes, and how light they look from end to end "
                      "(L*); the thin line is an even climb")
                  .arg(Classes));
    DrawLightnessAxis(canvas);
    for (std::size_t i = 0; i < _named.size(); ++i)
      DrawNamed(p_gl, canvas, i);
    for (std::size_t i = 0; i < _panels.size(); ++i)
      DrawPanel(p_gl, canvas, i);
    DrawOutsideKey(canvas, Margin, 62, OutsideColors(), "not a number: land, or nothing known");
  }

private:
  struct Named {
    QString name;
    ColorMap blended;
    ColorMap classed;
  };
  /// A field in its colours, and what its bar tells.
  struct Panel {
    QString title;
    QString unit;
    QImage image;
    ColorBar bar;
    Ticks ticks;
    std::unique_ptr<Library::Texture> texture;
  };

  static constexpr double Margin = 48;
  static constexpr double AxisWidth = 46;
  static constexpr double PlotBottom = 546;
  static constexpr double PlotTop = 728;

  static double PlotHeight(double p_lightness) { return PlotBottom + (PlotTop - PlotBottom) * p_lightness / 100; }

  static void DrawLightnessAxis(Canvas& p_canvas) {
    const double left = Margin + AxisWidth;
    for (const int lightness : {0, 50, 100}) {
      const double y = PlotHeight(lightness);
      p_canvas.Line({left - 6, y}, {p_canvas.Width() - Margin, y}, 1, GalleryTheme::Line);
      p_canvas.Text(QString::number(lightness), {left - 10, y}, {1, 0.5},
                    {GalleryTheme::SmallSize, GalleryTheme::Text, false});
    }
    p_canvas.Text("L*", {left - 10, PlotHeight(75)}, {1, 0.5}, {GalleryTheme::SmallSize, GalleryTheme::Faint, false});
  }

  /// The two bars of a map, and its lightness below them at the same places.
  void DrawNamed(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas, std::size_t p_index) const {
    constexpr double Gap = 18;
    const Named& map = _named[p_index];
    const auto count = static_cast<double>(_named.size());
    const double width = (p_canvas.Width() - 2 * Margin - AxisWidth + Gap) / count - Gap;
    const double left = Margin + AxisWidth + static_cast<double>(p_index) * (width + Gap);
    p_canvas.Text(map.name, {left - 2, 846}, {0, 0.5}, {GalleryTheme::TextSize, GalleryTheme::Title, true});
    p_canvas.Bands({left, 790, left + width, 826}, ColorMap(map.blended).GetImage(), false);
    p_canvas.Bands({left, 746, left + width, 782}, ColorMap(map.classed).GetImage(), false);
    FillPlot(p_gl, p_canvas.PointSize(), left, width, map.blended);
    DrawCurve(p_canvas, left, width, map.blended);
  }

  /// The area below the curve, in the colours of the map.
  static void FillPlot(Utility::Scoped<Rgl>& p_gl, double p_point, double p_left, double p_width,
                       const ColorMap& p_map) {
    const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
    p_map(p_gl, RGL_TEXTURE0);
    p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE);
    p_gl->Begin(RGL_QUAD_STRIP);
    for (int i = 0; i <= Steps; ++i) {
      const double place = static_cast<double>(i) / Steps;
      const double x = (p_left + p_width * place) * p_point;
      p_gl->TexCoord(place, 0.5);
      p_gl->Vertex(x, PlotBottom * p_point, 0.0);
      p_gl->TexCoord(place, 0.5);
      p_gl->Vertex(x, PlotHeight(Palettes::Lightness(p_map.Color(place))) * p_point, 0.0);
    }
    p_gl->End();
  }

  /// The curve, and the straight line that it would be if it climbed evenly to its lightest place and fell from there.
  static void DrawCurve(Canvas& p_canvas, double p_left, double p_width, const ColorMap& p_map) {
    std::vector<Canvas::Position> curve;
    for (int i = 0; i <= Steps; ++i) {
      const double place = static_cast<double>(i) / Steps;
      curve.emplace_back(p_left + p_width * place, PlotHeight(Palettes::Lightness(p_map.Color(place))));
    }
    const auto draw = [&](const std::vector<Canvas::Position>& p_line, double p_thickness, const QColor& p_color) {
      for (std::size_t i = 0; i + 1 < p_line.size(); ++i)
        p_canvas.Line(p_line[i], p_line[i + 1], p_thickness, p_color);
    };
    const auto lightest =
        std::max_element(curve.begin(), curve.end(), [](const auto& p_a, const auto& p_b) { return p_a.y < p_b.y; });
    const std::vector<Canvas::Position> even = {curve.front(), *lightest, curve.back()};
    draw(even, 3, GalleryTheme::BackgroundBottom); // so that it is seen on light and on dark
    draw(curve, 3, GalleryTheme::Title);
    draw(even, 1, GalleryTheme::Title);
  }

  void DrawPanel(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas, std::size_t p_index) {
    constexpr double Gap = 32, Top = 462;
    Panel& panel = _panels[p_index];
    const auto count = static_cast<double>(_panels.size());
    const double width = (p_canvas.Width() - 2 * Margin + Gap) / count - Gap;
    const double left = Margin + static_cast<double>(p_index) * (width + Gap);
    const double height = std::min(width / 2, 240.0);
    p_canvas.Text(panel.title, {left - 2, Top + 22}, {0, 0.5}, {GalleryTheme::TextSize, GalleryTheme::Title, true});
    if (!panel.texture) {
      panel.texture = std::make_unique<Library::Texture>(panel.image, p_gl);
      panel.texture->magFilter = Library::Texture::Nearest;
    }
    const double point = p_canvas.PointSize();
    Library::TexturedQuad quad;
    quad.rect = {static_cast<float>(left * point), static_cast<float>((Top - height) * point),
                 static_cast<float>(2 * height * point), static_cast<float>(height * point)};
    quad(p_gl.Handle(), *panel.texture);
    DrawPointedBar(p_canvas, {left, 138, left + width, 160}, panel.bar, panel.unit, panel.ticks);
  }

  static constexpr int Steps = 128; ///< of a curve

  Field _depths;
  Field _salinity;
  std::vector<Named> _named;
  std::vector<Panel> _panels;
  TextRenderer _text;
};

} // namespace

std::unique_ptr<Picture> LoadColors(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<ColorsPicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
