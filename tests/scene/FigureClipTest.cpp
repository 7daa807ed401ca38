#include "scene/Figure.h"

#include "tests/support/Figures.h"

using namespace Vek::Chart::Scene;

namespace {

using Points = std::vector<Point>;
using Side = Figure::Side;

class FigureClipPixels : public FigurePixelsFixture {
protected:
  /// A figure without visible axes, seen from above.
  static Figure Bare() {
    Figure figure;
    figure.theme.grid = figure.theme.line = Qt::white;
    figure.Look(0, 90, Camera::Projection::Parallel);
    return figure;
  }
};

TEST_F(FigureClipPixels, RefusesWrongPlanes) {
  Figure figure;
  figure.Clip(0, -1, Side::Above);
  const std::string finite = "Clip: expected a finite plane with a normal, above 0 on logarithmic axes";
  const std::vector<std::pair<std::function<void()>, std::string>> cases = {
      {[&] {
         figure.Clip(Types::Plane({0, 0, 0}, {0, 0, 0}));
       },
       finite},
      {[&] { figure.Clip(1, NaN, Side::Below); }, finite},
      {[&] { figure.Clip(3, 0, Side::Below); }, "Clip: expected an axis of 0 to 2, got 3"},
      {[&] { figure.SetLogAxis(0); }, "SetLogAxis: expected cutting planes above 0, got one at -1.000000"},
      {[&] { figure.SetLogAxis(1).Clip(1, 0, Side::Below); }, finite},
      {[&] { figure.RemoveClip(1); }, "RemoveClip: expected a number below 1, got 1"},
      {[&] {
         for (int i = 0; i < 6; ++i)
           figure.Clip(2, i, Side::Above);
       },
       "Clip: expected at most 6 planes, got another one"},
  };
  for (const auto& [call, message] : cases)
    EXPECT_EQ(ErrorOf<std::invalid_argument>(call), message);
  EXPECT_EQ(figure.Clips().size(), 6U);
}

/// Fixed functions, shaders of meshes and of instances, on linear and logarithmic axes: what lies on the side that is
/// kept is seen, what lies beyond is not, and the figure says so.
TEST_F(FigureClipPixels, CutsAllPlots) {
  const Points square{{1, 1, 1}, {10, 1, 1}, {10, 9, 1}, {1, 9, 1}};
  struct Case {
    const char* name;
    std::function<void(Figure&)> add;
  };
  const std::vector<Case> cases = {
      {"mesh",
       [&](Figure& p_figure) {
         p_figure.Mesh(square, {{0, 1, 2}, {0, 2, 3}}).Color(Qt::red);
       }},
      {"surface",
       [](Figure& p_figure) {
         p_figure.Surface(Doubles{1, 10}, Doubles{1, 9}, Doubles(4, 1.0)).Color(Qt::red).Contours({1});
       }},
      {"scatter",
       [&](Figure& p_figure) {
         p_figure.Scatter(square).SetOpacity(0);
         p_figure.Scatter(Points{{5, 5, 1}}).Color(Qt::red).Diameter(0.3);
       }},
      {"transparent mesh",
       [&](Figure& p_figure) {
         p_figure.Mesh(square, {{0, 1, 2}, {0, 2, 3}}).Color(Qt::red).SetOpacity(0.7);
       }},
  };
  const QColor white(Qt::white);
  for (const Case& plot : cases)
    for (const bool isLogarithmic : {false, true}) {
      Figure figure = Bare();
      plot.add(figure);
      figure.SetLogAxis(0, isLogarithmic).Clip(0, 5, Side::Below);
      figure.Draw(gl, viewport);
      EXPECT_LT(AtPoint(figure, {4.7, 5.3, 1}).green(), 150) << plot.name << isLogarithmic;
      EXPECT_EQ(AtPoint(figure, {5.3, 5.3, 1}), white) << plot.name << isLogarithmic;
      EXPECT_EQ(figure.Layout(viewport).notes, std::vector<QString>{"cut away: x > 5"});
      // Obliquely: x above 4.5 and y below 5.5, which is a corner of a wedge.
      figure.SetLogAxis(0, false).RemoveClip(0).Clip(Types::Plane({4.5, 5.5, 0}, {1, -1, 0})).Clip(1, 5.5, Side::Below);
      figure.Draw(gl, viewport);
      EXPECT_LT(AtPoint(figure, {5, 5.3, 1}).green(), 150) << plot.name;
      EXPECT_EQ(AtPoint(figure, {4.2, 5.4, 1}), white) << plot.name;
      EXPECT_EQ(AtPoint(figure, {5, 5.7, 1}), white) << plot.name;
      EXPECT_EQ(figure.Layout(viewport).notes, (std::vector<QString>{"cut away: y > 5.5", "cut by a plane"}));
    }
}

TEST_F(FigureClipPixels, FramesTheCut) {
  Figure figure = Bare();
  figure.SetLimits(0, 0, 10).SetLimits(1, 0, 10).SetLimits(2, 0, 10);
  figure.Clip(Types::Plane({5, 5, 0}, {-1, 0, 0})).Clip(1, 6, Side::Above);
  figure.theme.line = Qt::blue;
  figure.Draw(gl, viewport);
  const auto isFramed = [&](const Point& p_point) { // in a pixel next to it
    const Camera::Pixel pixel = figure.Layout(viewport).camera.Project(figure.ToScene(p_point), viewport);
    bool isDark = false;
    for (int x = -1; x <= 1; ++x)
      for (int y = -1; y <= 1; ++y)
        isDark = isDark || At(static_cast<int>(pixel.x) + x, static_cast<int>(pixel.y) + y).red() < 128;
    return isDark;
  };
  EXPECT_TRUE(isFramed({5, 8, 10}));
  EXPECT_TRUE(isFramed({3, 6, 10}));
  EXPECT_FALSE(isFramed({5, 3, 10})) << "the other plane cuts the frame as well";
  EXPECT_FALSE(isFramed({8, 6, 10}));
}

/// Between vertices on both sides, and through triangles without a vertex inside; not where planes run out.
TEST_F(FigureClipPixels, CutsSurfacesAtLimits) {
  const std::vector<std::function<void(Figure&)>> plots{
      [](Figure& p_figure) {
        p_figure.Mesh(Points{{-9, -9, 1}, {20, -9, 1}, {-9, 20, 1}}, {{0, 1, 2}}).Color(Qt::red);
      },
      [](Figure& p_figure) {
        p_figure.Surface(Doubles{-9, 20}, Doubles{-9, 20}, Doubles(4, 1.0)).Color(Qt::red).Contours({1});
      }};
  for (const auto& add : plots) {
    Figure figure = Bare();
    figure.Scatter(Points{{2.2, -2, 1}, {4.8, 5, 1}}).Diameter(0.001);
    add(figure);
    figure.SetLimits(0, 2, 5);
    figure.Draw(gl, viewport);
    EXPECT_LT(AtPoint(figure, {2.3, 2, 1}).green(), 150);
    EXPECT_LT(AtPoint(figure, {4.7, 2, 1}).green(), 150);
    EXPECT_EQ(AtPoint(figure, {1.7, 2, 1}), QColor(Qt::white));
    EXPECT_EQ(AtPoint(figure, {5.3, 2, 1}), QColor(Qt::white));
    const auto pixel = figure.Layout(viewport).camera.Project(figure.ToScene({3, 3, 1}), viewport);
    EXPECT_TRUE(figure.Pick(gl, viewport, {static_cast<int>(pixel.x), static_cast<int>(pixel.y)}));
    for (int i = 0; i < 5; ++i)
      figure.Clip(2, -1 - i, Side::Above);
    figure.Draw(gl, viewport);
    EXPECT_EQ(AtPoint(figure, {3, 2, 1}), QColor(Qt::white));
  }
}

} // namespace
