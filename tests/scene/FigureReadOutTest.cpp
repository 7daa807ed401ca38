#include "scene/Figure.h"

#include "tests/support/Figures.h"

namespace {

using Places = std::vector<std::array<double, 3>>;
using FigureReadOutPixels = FigureFixture;

/// A figure of two points, laid out for an image.
Figure TwoPoints(const std::array<double, 3>& p_a, const std::array<double, 3>& p_b) {
  Figure figure;
  figure.Scatter(Places{p_a, p_b});
  return figure;
}

} // namespace

TEST_F(FigureReadOutPixels, FormatsPositionsAsTheAxesDo) {
  Figure figure = TwoPoints({10, -20, 0}, {40, 30, 5});
  EXPECT_TRUE(figure.Limits().Empty());
  figure.Image({200, 150});
  EXPECT_LE(figure.Limits().Min().x, 10);
  EXPECT_GE(figure.Limits().Max().y, 30);
  EXPECT_EQ(figure.AxisTitle(1), "y");
  EXPECT_EQ(figure.Format(0, 12.34, 0.1), "12.3");
  EXPECT_EQ(figure.Format(0, -12.34, 1), "−12");
  figure.SetMap().SetAxisTitles({}, {}, "depth");
  EXPECT_EQ(figure.AxisTitle(0), "longitude");
  EXPECT_EQ(figure.AxisTitle(2), "depth");
  EXPECT_EQ(figure.Format(0, -12.34, 0.1), "12.3° W");
  EXPECT_EQ(figure.Format(1, 30.5, 0.1), "30.5° N");
  EXPECT_EQ(figure.Format(2, -12.34, 0.1), "−12.3");
  figure.SetMap(false).SetDateAxis(0);
  EXPECT_EQ(figure.Format(0, 86400 * 365, 86400).left(7), "1971-01");
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { figure.AxisTitle(3); }),
            "AxisTitle: expected an axis of 0 to 2, got 3");
}

TEST_F(FigureReadOutPixels, ImageWithoutBackgroundKeepsColors) {
  Figure figure = TwoPoints({0, 0, 0}, {1, 1, 1});
  const QColor before = figure.theme.backgroundTop;
  const QImage image = figure.ImageWithoutBackground({200, 150});
  EXPECT_EQ(image.pixelColor(1, 1).alpha(), 0);
  EXPECT_EQ(figure.theme.backgroundTop, before);
  const QImage opaque = figure.Image({200, 150});
  int solid = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x)
      if (const QColor color = image.pixelColor(x, y); color.alpha() == 255) {
        EXPECT_NEAR(color.red(), opaque.pixelColor(x, y).red(), 2);
        ++solid;
      }
  EXPECT_GT(solid, 20) << "the symbols";
}

TEST_F(FigureReadOutPixels, TriadIsInTheLowerLeftCornerOfSpatialFigures) {
  for (const double z : {1.0, 0.0}) {
    Figure figure = TwoPoints({0, 0, 0}, {1, 1, z});
    const QImage without = figure.Image({400, 300});
    figure.SetTriad();
    const QImage with = figure.Image({400, 300});
    EXPECT_EQ(with == without, z == 0);
    for (int y = 0; y < 300; ++y)
      for (int x = 0; x < 400; ++x)
        if (with.pixel(x, y) != without.pixel(x, y)) {
          ASSERT_TRUE(x < 150 && y > 150) << x << ' ' << y;
        }
  }
}

TEST(FigureReadOut, SlicesHavePositions) {
  Figure figure;
  SlicesPlot& slices = figure.Slices(VoxelGrid(std::vector<float>(8, 1), {2, 2, 2}, {{0, 0, 0}, {4, 4, 4}}));
  EXPECT_EQ(slices.SliceAt(1).axis, 1);
  EXPECT_EQ(slices.SliceAt(1).position, 2);
  slices.At(2, 3.5);
  EXPECT_EQ(slices.SliceAt(0).axis, 2);
  EXPECT_EQ(slices.SliceAt(0).position, 3.5);
  slices.At(Types::Plane({2, 2, 2}, {0, 1, 1}));
  EXPECT_EQ(slices.SliceAt(1).axis, -1);
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { slices.SliceAt(2); }), "SliceAt: expected a number below 2, got 2");
}

TEST(FigureReadOut, RangesBecomeAutomaticAgain) {
  Figure figure;
  ScatterPlot& points = figure.Scatter(Places{{0, 0, 0}, {1, 1, 1}}).ColorBy(std::vector<double>{2, 8});
  const auto automatic = points.ColorRange();
  points.ColorRange(3, 4);
  EXPECT_EQ(points.ColorRange().max, 4);
  points.AutoColorRange();
  EXPECT_EQ(points.ColorRange().min, automatic.min);
  EXPECT_EQ(points.ColorRange().max, automatic.max);
}
