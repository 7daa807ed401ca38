#include "scene/ColorBar.h"
#include "library/NamedColors.h"
#include "tests/support/Test.h"

#include <QStringList>

namespace {

ValueScale Logarithmic(double p_low, double p_high) {
  ValueScale scale{p_low, p_high};
  scale.logarithmic = true;
  return scale;
}

/// The strings of a layout from its lower end, without its last one, the title.
std::string StringsOf(const LegendBlock& p_block, bool p_isVertical) {
  std::map<double, QString> sorted;
  for (auto string = p_block.Strings().begin(); string + 1 != p_block.Strings().end(); ++string)
    sorted[p_isVertical ? string->position.y : string->position.x] = string->text;
  QStringList strings;
  for (const auto& [position, text] : sorted)
    strings << text;
  return strings.join(" | ").toStdString();
}

} // namespace

TEST(ColorBar, PositionsOfValues) {
  const ColorMap map = ColorMap::Named("viridis");
  const std::vector<QColor> colors(4, Qt::red);
  const std::tuple<ColorBar, double, double> cases[] = {
      {{map, {10, 30}}, 15, 0.25},
      {{map, {-1.7e308, 1.7e308}}, 0, 0.5},
      {{map, Logarithmic(1, 1e4)}, 10, 0.25},
      {{map, Logarithmic(1e-300, 1e300)}, 1, 0.5},
      {ColorBar(ColorScale(colors, {0, 1, 2, 10, 100})), 6, 0.625},
      {ColorBar(ColorScale(colors, {0, 1, 1, 10, 100})), 1, 0.5},
      {ColorBar(ColorScale(colors, {0, 1, 2, 10, 100})), 100, 1},
      {ColorBar(ColorScale(map, 1, 1e4, ColorScale::Logarithmic)), 100, 0.5},
  };
  for (const auto& [bar, value, position] : cases)
    EXPECT_NEAR(bar.PositionOf(value), position, 1e-6) << value;
  EXPECT_TRUE(std::isnan(ColorBar(map, {0, 1}).PositionOf(NAN)));
  EXPECT_THROW(ColorBar(map, {1, 1}), std::invalid_argument);
}

TEST(ColorBar, StringsAndEnds) {
  MakeApplication();
  const ColorMap map = ColorMap::Named("viridis");
  const ColorScale classes(std::vector<QColor>(3, Qt::red), {0, 0.5, 2, 30});
  struct Case {
    ColorBar bar;
    double length, least, largest;
    const char* strings;
    std::size_t points;
  };
  const Case cases[] = {
      {{map, {0, 15}}, 200, NaN, NaN, "0 | 5 | 10 | 15", 0},
      {{map, {0, 15}}, 200, 0, 15, "0 | 5 | 10 | 15", 0},
      {{map, {0, 15}}, 200, -3.2, 27.3, "−3.2 | 0 | 5 | 10 | 15 | 27.3", 2},
      {{map, {0, 15}}, 200, 1, INFINITY, "0 | 5 | 10 | 15", 1},
      {{map, {0, 15}}, 40, NaN, NaN, "0 | 10", 0},
      {{map, Logarithmic(1, 1000)}, 200, 0, NaN, "0 | 1 | 10 | 100 | 1000", 1},
      {ColorBar(classes), 200, NaN, NaN, "0 | 0.5 | 2 | 30", 0},
      {ColorBar(classes), 40, NaN, NaN, "0 | 2", 0},
  };
  for (Case test : cases)
    for (const auto orientation : {ColorBar::Orientation::Vertical, ColorBar::Orientation::Horizontal}) {
      test.bar.orientation = orientation;
      test.bar.title = "Title";
      test.bar.least = test.least;
      test.bar.largest = test.largest;
      const bool isVertical = orientation == ColorBar::Orientation::Vertical;
      const LegendBlock block = test.bar.Layout(test.length, Theme(), 2);
      if (isVertical) {
        EXPECT_EQ(StringsOf(block, isVertical), test.strings);
      }
      EXPECT_EQ(block.Shapes().size(), test.points);
      // Nothing overlaps, and all lies within the bounds.
      for (std::size_t i = 0; i < block.Strings().size(); ++i) {
        const Canvas::Rect box = block.BoxOf(block.Strings()[i]), all = block.Bounds();
        EXPECT_TRUE(box.left >= all.left && box.bottom >= all.bottom && box.right <= all.right && box.top <= all.top);
        for (std::size_t j = 0; j < i; ++j) {
          const Canvas::Rect other = block.BoxOf(block.Strings()[j]);
          EXPECT_FALSE(box.left < other.right && other.left < box.right && box.bottom < other.top &&
                       other.bottom < box.top)
              << block.Strings()[i].text.toStdString() << " on " << block.Strings()[j].text.toStdString();
        }
      }
    }
}

TEST(ColorBar, LongTitlesTakeLines) {
  MakeApplication();
  ColorBar bar(ColorMap::Named("viridis"), {0, 15});
  bar.title = "The speed of the wind at the surface, a monthly mean in metres per second";
  for (const auto orientation : {ColorBar::Orientation::Vertical, ColorBar::Orientation::Horizontal}) {
    bar.orientation = orientation;
    const LegendBlock block = bar.Layout(200, Theme());
    EXPECT_LT(orientation == ColorBar::Orientation::Vertical ? block.Height() : block.Width(), 230);
  }
}

TEST(ColorBar, TooShortForTicksIsReported) {
  MakeApplication();
  ColorBar bar(ColorMap::Named("viridis"), {0, 15});
  bar.title = "Speed";
  const ReportCapture reports;
  const LegendBlock block = bar.Layout(12, Theme());
  EXPECT_EQ(block.Strings().size(), 1u) << "the title alone";
  EXPECT_EQ(reports.Texts(),
            std::vector<std::string>{"WARNING: ColorBar: no room for two ticks along 12 points (\"Speed\")"});
}

namespace {

class ColorBarPixels : public ShownFixture {};

TEST_F(ColorBarPixels, ColorsGrowUpwardsAndRightwards) {
  const std::vector<QColor> colors = {Qt::red, Qt::green, Qt::blue};
  ColorBar bar(ColorScale(colors, {0, 1, 2, 3}, {Qt::cyan, Qt::magenta, Qt::yellow}));
  bar.least = -INFINITY;
  bar.largest = INFINITY;
  bar.hasMissing = true;
  const TextRenderer text;
  Canvas canvas(gl, viewport, text);
  bar.Layout(300, Theme()).Draw(canvas, {100, 100});
  bar.orientation = ColorBar::Orientation::Horizontal;
  bar.Layout(300, Theme()).Draw(canvas, {300, 100});
  canvas.Flush();
  const QImage image = context.Image();
  const auto at = [&](int p_x, int p_y) { return image.pixelColor(p_x, image.height() - 1 - p_y); };
  const int length = 300 - 34; // without both points
  for (int i = 0; i < 3; ++i)
    EXPECT_EQ(at(108, 100 + (2 * i + 1) * (length - 24) / 6), colors[static_cast<std::size_t>(i)]) << "upwards";
  EXPECT_EQ(at(108, 95), QColor(Qt::cyan));
  EXPECT_EQ(at(108, 100 + length - 24 + 5), QColor(Qt::magenta));
  EXPECT_EQ(at(108, 100 - 17 - 16), QColor(Qt::yellow)) << "missing values";
  EXPECT_EQ(at(310, 108), QColor(Qt::red)) << "rightwards";
  EXPECT_EQ(at(295, 108), QColor(Qt::cyan));
}

} // namespace
