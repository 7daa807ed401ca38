#include "scene/Figure.h"

#include "tests/support/Test.h"

using Scene::Figure;

namespace {

using Point = Types::Vector3_Base<double>;

} // namespace

/// Rows in the order of time: those that are drawn are neither the first ones nor the last ones.
TEST(QuiverPlotPixels, ThinsListsWithoutRegardToTheirOrder) {
  constexpr std::size_t Count = 20000, Drawn = 400;
  std::vector<Point> points;
  std::vector<double> isLate;
  std::uint32_t random = 1;
  const auto next = [&] {
    random = random * 1664525U + 1013904223U;
    return static_cast<double>(random >> 8) / (1 << 24);
  };
  for (std::size_t i = 0; i < Count; ++i) {
    const double x = next(), y = next();
    points.emplace_back(x, y, 0);
    isLate.push_back(i < Count / 2 ? 0 : 1);
  }
  Figure figure;
  figure.Quiver(points, std::vector<Point>(Count, Point(1, 1, 0))).Most(Drawn).ColorBy(isLate).ColorMap("coolwarm");
  const QImage image = figure.Image({500, 400});
  double blue = 0, red = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width() * 7 / 10; ++x) { // beside the colour bar
      const QRgb pixel = image.pixel(x, y);
      blue += qBlue(pixel) > qRed(pixel) + 80 ? 1 : 0;
      red += qRed(pixel) > qBlue(pixel) + 80 ? 1 : 0;
    }
  ASSERT_GT(blue + red, 1000);
  EXPECT_NEAR(red / (red + blue), 0.5, 0.1);
}
