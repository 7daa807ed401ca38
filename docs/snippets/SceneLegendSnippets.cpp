// Examples of the reference for ticks, colour bars and legends; it shows what lies between two marks.

#include "library/ColorMap.h"
#include "library/ColorScale.h"
#include "library/NamedColors.h"
#include "scene/ArrowKey.h"
#include "scene/Background.h"
#include "scene/Canvas.h"
#include "scene/ColorBar.h"
#include "scene/Legend.h"
#include "scene/SizeLegend.h"
#include "scene/TextRenderer.h"
#include "scene/Theme.h"
#include "scene/Ticks.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

using namespace Vek::Chart;

namespace {

/// A light panel on the left and a dark one on the right.
class SceneLegendSnippetPixels : public ShownFixture {
public:
  SceneLegendSnippetPixels()
      : ShownFixture({1280, 640}) {}

protected:
  template <class Draw>
  void ShowInThemes(const std::string& p_name, const Draw& p_draw) {
    const Scene::TextRenderer text;
    for (const auto& [left, theme] : {std::pair(0.0F, Scene::Theme::Light()), {640.0F, Scene::Theme::Dark()}}) {
      const Types::Viewport<0> part(left, 0, 640, 640);
      Scene::DrawBackground(gl, part, theme);
      Scene::Canvas canvas(gl, part, text, PointSize);
      p_draw(canvas, theme);
    }
    Show(p_name);
  }
};

TEST(SceneLegendSnippets, Ticks) {
  //! [Ticks]
  const Scene::Ticks ticks = Scene::Ticks::Linear(0, 3e7, 4);
  const std::vector<double>& values = ticks.Values();      // 0, 1e7, 2e7, 3e7
  const std::vector<QString>& strings = ticks.Strings();   // "0", "10", "20", "30"
  const QString title = "Flow in m³/s " + ticks.Note();    // "Flow in m³/s ×10⁶"
  const QString readOut = ticks.Format(1.23e7, "m³/s", 1); // "12×10⁶ m³/s"
  //! [Ticks]
  EXPECT_EQ((strings[1] + title + readOut).toStdString(), "10Flow in m³/s ×10⁶12×10⁶ m³/s") << values.size();
}

TEST_F(SceneLegendSnippetPixels, ColorBar) {
  ShowInThemes("ColorBar", [&](Scene::Canvas& p_canvas, const Scene::Theme& p_theme) {
    Scene::Canvas& canvas = p_canvas;
    const Scene::Theme& theme = p_theme;
    //! [ColorBar]
    Scene::ColorBar speed(Library::ColorMap::Named("viridis"), {0, 15});
    speed.title = "Speed in m/s";
    speed.largest = 27.3; // beyond the range: a pointed end
    speed.hasMissing = true;
    const Scene::LegendBlock block = speed.Layout(250, theme, PointSize); // points
    block.Draw(canvas, block.OriginFor({20, 20}));                        // block.Width() × block.Height() points
    //! [ColorBar]

    const std::vector<double> bounds = {30, 32, 34, 34.5, 35, 35.5, 36, 38};
    Scene::ColorBar salinity(Library::ColorScale(Library::NamedColors::Colors("coolwarm", 7), bounds));
    salinity.title = "Salinity at the surface";
    salinity.least = 22.5;
    salinity.largest = 40.27;
    const Scene::LegendBlock classes = salinity.Layout(250, theme, PointSize);
    classes.Draw(canvas, classes.OriginFor({115, 20}));

    Scene::ValueScale logarithmic{2e-4, 3.0};
    logarithmic.logarithmic = true;
    Scene::ColorBar chlorophyll(Library::ColorMap::Named("plasma"), logarithmic);
    chlorophyll.title = "Chlorophyll in mg m⁻³";
    chlorophyll.least = 0;
    const Scene::LegendBlock narrow = chlorophyll.Layout(180, theme, PointSize);
    narrow.Draw(canvas, narrow.OriginFor({220, 20}));
  });
}

TEST_F(SceneLegendSnippetPixels, Legend) {
  ShowInThemes("Legend", [&](Scene::Canvas& p_canvas, const Scene::Theme& p_theme) {
    Scene::Canvas& canvas = p_canvas;
    const Scene::Theme& theme = p_theme;
    //! [Legend]
    Scene::Legend names;
    names.title = "Stations";
    names.entries = {{"Buoys", Scene::Legend::Mark::Dot, QColor(0x2A78C4)},
                     {"Ships", Scene::Legend::Mark::Line, QColor(0xC4622A), 3},
                     {"Ice", Scene::Legend::Mark::Patch, QColor(0x8FA3B0)},
                     {"Current", Scene::Legend::Mark::Glyph, QColor(0x3C9A5B)}};
    names.Layout(200, theme, PointSize).Draw(canvas, {30, 290}); // at most 200 points high

    Scene::SizeLegend sizes;
    sizes.title = "Magnitude";
    sizes.least = 4.5;
    sizes.largest = 7.2;
    sizes.diameter = [](double p_magnitude) { return 5 * (p_magnitude - 3); }; // points
    sizes.Layout(theme, PointSize).Draw(canvas, {180, 290});

    Scene::ArrowKey arrow;
    arrow.title = "Wind";
    arrow.unit = "m/s";
    arrow.pointsPerUnit = 6.5; // as the arrows of the plot are drawn
    arrow.Layout(theme, PointSize).Draw(canvas, {180, 60});
    //! [Legend]
  });
}

} // namespace
