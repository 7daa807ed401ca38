#include "scene/Figure.h"

#include "tests/support/Figures.h"

using namespace Vek::Chart::Scene;

namespace {

/// A half-transparent square of 2 x 2 in the plane z = height + slope · x.
struct Sheet {
  QColor color;
  double height;
  double opacity;
  double slope = 0;
};
using Sheets = std::vector<Sheet>;

class FigureTransparencyPixels : public FigurePixelsFixture {
protected:
  void Draw(Figure& p_figure) { Drawn(p_figure, {}); }
  static Figure FromAbove() {
    Figure figure;
    figure.Look(0, 90, Camera::Projection::Parallel).SetAspect(1, 1, 1);
    for (int axis = 0; axis < 3; ++axis)
      figure.SetLimits(axis, -2, 2);
    return figure;
  }
  static MeshPlot& Add(Figure& p_figure, const Sheet& p_sheet) {
    std::vector<Point> corners{{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
    for (Point& corner : corners)
      corner.z = p_sheet.height + p_sheet.slope * corner.x;
    return p_figure.Mesh(corners, {{0, 1, 2}, {0, 2, 3}}).Color(p_sheet.color).SetOpacity(p_sheet.opacity);
  }
  /// What is seen of a sheet that is alone and opaque.
  QColor Lit(Sheet p_sheet, const Point& p_at) {
    Figure figure = FromAbove();
    p_sheet.opacity = 1;
    Add(figure, p_sheet);
    Draw(figure);
    return AtPoint(figure, p_at);
  }
  /// The colours of sheets over each other, the first one at the bottom, over white.
  QColor Blended(const Sheets& p_upwards, const Point& p_at) {
    QColor seen = Qt::white;
    for (const Sheet& sheet : p_upwards) {
      const QColor lit = Lit(sheet, p_at);
      const auto mix = [&](double p_over, double p_under) {
        return sheet.opacity * p_over + (1 - sheet.opacity) * p_under;
      };
      seen = QColor::fromRgbF(mix(lit.redF(), seen.redF()), mix(lit.greenF(), seen.greenF()),
                              mix(lit.blueF(), seen.blueF()));
    }
    return seen;
  }
};

constexpr int Rounding = 4; // of colours of 8 bits, in each layer

TEST_F(FigureTransparencyPixels, SheetsBlendFromFarToNearInAnyOrder) {
  const Sheets upwards{
      {Qt::gray, -1.5, 1}, {Qt::red, -1, 0.5}, {Qt::green, -0.2, 0.3}, {Qt::blue, 0.6, 0.6}, {Qt::yellow, 1.4, 0.4}};
  const Point at(0.3, 0.4, 0);
  const QColor expected = Blended(upwards, at);
  using Order = std::array<std::size_t, 5>;
  for (const Order& order : {Order{0, 1, 2, 3, 4}, Order{4, 3, 2, 1, 0}, Order{2, 0, 4, 1, 3}, Order{1, 4, 3, 0, 2}}) {
    Figure figure = FromAbove();
    for (const std::size_t number : order)
      Add(figure, upwards[number]);
    Draw(figure);
    EXPECT_TRUE(SameColor(AtPoint(figure, at).rgb(), expected, Rounding)) << order[0] << " first";
  }

  // While the camera moves, the nearest one alone.
  Figure moving = FromAbove();
  for (const Sheet& sheet : upwards)
    Add(moving, sheet);
  moving.SetMoving(true);
  Draw(moving);
  const QRgb nearest = AtPoint(moving, at).rgb();
  EXPECT_TRUE(SameColor(nearest, Blended({upwards[0], upwards[4]}, at), Rounding));
  moving.SetMoving(false);
  // Images are drawn larger and averaged: inside, the colours are the same.
  const Camera::Pixel pixel = moving.Layout(viewport).camera.Project(moving.ToScene(at), viewport);
  const QImage image = moving.Image({300, 200});
  EXPECT_EQ(image.size(), QSize(300, 200));
  EXPECT_TRUE(SameColor(image.pixel(static_cast<int>(pixel.x), 199 - static_cast<int>(pixel.y)), expected, Rounding));
}

/// Sheets that cross have another order on each side; so have those of one plot. The first layer is not drawn twice.
TEST_F(FigureTransparencyPixels, CrossingSheetsAndOtherPlotsArePeeled) {
  const Sheet rising{Qt::red, 0, 0.5, 1}, falling{Qt::blue, 0, 0.5, -1};
  for (const bool isReversed : {false, true}) {
    Figure figure = FromAbove();
    Add(figure, isReversed ? falling : rising);
    Add(figure, isReversed ? rising : falling);
    Draw(figure);
    const Point left(-0.5, 0.2, 0), right(0.5, 0.2, 0);
    const QRgb atLeft = AtPoint(figure, left).rgb(), atRight = AtPoint(figure, right).rgb();
    EXPECT_TRUE(SameColor(atLeft, Blended({rising, falling}, left), Rounding));
    EXPECT_TRUE(SameColor(atRight, Blended({falling, rising}, right), Rounding));
  }

  // Each of the other plots under and over a sheet.
  struct Case {
    const char* name;
    double through; ///< share of the light from behind: bodies have a front and a back
    std::function<void(Figure&, double)> add;
  };
  const std::vector<Case> cases = {
      {"scatter", 0.25,
       [](Figure& p_figure, double p_z) {
         p_figure.Scatter(std::vector<Point>{{0, 0, p_z}}).Color(Qt::red).Diameter(0.1).SetOpacity(0.5);
       }},
      {"surface", 0.5,
       [](Figure& p_figure, double p_z) {
         p_figure.Surface(Doubles{-1, 1}, Doubles{-1, 1}, Doubles(4, p_z)).Color(Qt::red).Contours(5).SetOpacity(0.5);
       }},
      {"quiver", 0.25,
       [](Figure& p_figure, double p_z) {
         p_figure.Quiver(std::vector<Point>{{-1, 0, p_z}}, std::vector<Point>{{2, 0, 0}})
             .Color(Qt::red)
             .UnitLength(0.2)
             .SetOpacity(0.5);
       }},
      {"lines", 0.5,
       [](Figure& p_figure, double p_z) {
         p_figure.Lines(std::vector<Point>{{-1, 0, p_z}, {1, 0, p_z}}).Color(Qt::red).Width(8).SetOpacity(0.5);
       }},
  };
  const Sheet sheet{Qt::blue, 0, 0.5};
  const Point at(0, 0, 0);
  const QColor lit = Lit(sheet, at);
  for (const Case& plot : cases)
    for (const double z : {-1.0, 1.0}) {
      Figure figure = FromAbove();
      plot.add(figure, z);
      Draw(figure);
      const QColor alone = AtPoint(figure, at);
      EXPECT_LT(alone.green(), 220) << plot.name << " is seen";
      Add(figure, sheet);
      Draw(figure);
      const QColor both = AtPoint(figure, at);
      for (int (QColor::*const channel)() const : {&QColor::red, &QColor::green, &QColor::blue}) {
        const double light = (lit.*channel)(), plotLight = (alone.*channel)();
        const double expected = z < 0 ? (light + plotLight) / 2 : plotLight + plot.through * ((light + 255) / 2 - 255);
        EXPECT_NEAR((both.*channel)(), expected, Rounding) << plot.name << " at " << z;
      }
    }
}

} // namespace
