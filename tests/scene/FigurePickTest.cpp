#include "scene/Figure.h"

#include "tests/support/Figures.h"

using namespace Vek::Chart::Scene;

namespace {

using Hit = std::optional<Figure::Hit>;

class FigurePickPixels : public FigurePixelsFixture {
protected:
  static Figure FromAbove() {
    Figure figure;
    figure.Look(0, 90, Camera::Projection::Parallel);
    return figure;
  }
  Hit PickAt(Figure& p_figure, const Point& p_data) {
    const auto pixel = p_figure.Layout(viewport).camera.Project(p_figure.ToScene(p_data), viewport);
    return p_figure.Pick(gl, viewport, {static_cast<int>(pixel.x), static_cast<int>(pixel.y)});
  }
};

/// Off-screen, pixels are counted as in images: from the upper left corner.
TEST_F(FigurePickPixels, PicksInImages) {
  Figure figure = FromAbove();
  figure.Scatter(std::vector<Point>{{0, 0, 0}, {4, 0, 0}, {0, 4, 0}}).Diameter(0.2);
  const Types::Size size(300, 200); // of the viewport
  const auto pixel = figure.Layout(viewport).camera.Project(figure.ToScene({0, 4, 0}), viewport);
  const Hit hit = figure.Pick({static_cast<int>(pixel.x), size.height - 1 - static_cast<int>(pixel.y)}, size);
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->element, 2U);
  EXPECT_FALSE(figure.Pick({0, 0}, size));
}

/// All plots, far from zero, with their elements, positions and values.
TEST_F(FigurePickPixels, NamesPlotElementPositionAndValue) {
  const Point origin(3e6, -2e6, 1e5);
  const auto at = [&](double p_x, double p_y, double p_z) { return origin + Point(p_x, p_y, p_z); };
  const std::vector<Point> corners{at(0, 0, 0), at(4, 0, 0), at(0, 4, 0), at(NaN, 4, 0)};
  struct Case {
    const char* name;
    std::function<const Plot*(Figure&)> add;
    Point place;
    std::size_t element;
    double value;
    Point position; ///< where it is not the place
  };
  const std::vector<Case> cases = {
      {"scatter",
       [&](Figure& p_figure) {
         return &p_figure.Scatter(corners).Diameter(0.1).ColorBy(Doubles{1, 2, 3, 4}).Label("Plot").ColorTitle("Value");
       },
       at(4.1, 0.1, 0), 1, 2, at(4, 0, 0)},
      {"quiver",
       [&](Figure& p_figure) {
         return &p_figure.Quiver(corners, std::vector<Point>(4, {1, 0, 0}))
                     .UnitLength(0.2)
                     .ColorBy(Doubles{1, 2, 3, 4})
                     .Label("Plot")
                     .ColorTitle("Value");
       },
       at(0.4, 4, 0), 2, 3, at(0, 4, 0)},
      {"mesh",
       [&](Figure& p_figure) {
         return &p_figure.Mesh(corners, {{3, 1, 2}, {0, 1, 2}})
                     .ColorBy(Doubles{1, 2, NaN, 4})
                     .Label("Plot")
                     .ColorTitle("Value");
       },
       at(0.5, 3, 0),
       2,
       NaN,
       {}},
      {"surface",
       [&](Figure& p_figure) {
         return &p_figure
                     .Surface(Doubles{origin.x, origin.x + 2, origin.x + 4}, Doubles{origin.y, origin.y + 4},
                              Doubles{NaN, 5, 6, 7, 8, 9})
                     .Contours(3)
                     .Label("Plot")
                     .ColorTitle("Value");
       },
       Point(origin.x + 3.5, origin.y + 3.5, 8.25),
       5,
       9,
       {}},
      {"bars",
       [&](Figure& p_figure) {
         return &p_figure.Bars(Doubles{origin.x, origin.x + 4}, Doubles{origin.y, origin.y}, Doubles{NaN, 6})
                     .Label("Plot")
                     .ColorTitle("Value");
       },
       Point(origin.x + 4.2, origin.y, 6), 1, 6, Point(origin.x + 4, origin.y, 6)},
      {"lines",
       [&](Figure& p_figure) {
         return &p_figure.Lines(std::vector<Point>{at(0, 0, 0), at(4, 0, 0), at(0, 4, 0), at(4, 4, 0)}, {2, 2})
                     .Width(8)
                     .ColorBy(Doubles{1, 2, 3, 4})
                     .Label("Plot")
                     .ColorTitle("Value");
       },
       at(1, 4, 0),
       2,
       3,
       {}},
      {"tubes",
       [&](Figure& p_figure) {
         return &p_figure.Lines(std::vector<Point>{at(0, 0, 0), at(4, 0, 0), at(0, 4, 0), at(4, 4, 0)}, {2, 2})
                     .Tubes(0.5)
                     .ColorBy(Doubles{1, 2, 3, 4})
                     .Label("Plot")
                     .ColorTitle("Value");
       },
       at(3.9, 0, 0),
       1,
       2,
       {}},
      {"streamlines",
       [&](Figure& p_figure) {
         const VectorField field =
             VectorField::Rectilinear(Doubles{origin.x + 4, origin.x}, Doubles{origin.y, origin.y + 3, origin.y + 4},
                                      Doubles{origin.z}, std::vector<Point>(6, {1, 0, 0}));
         return &p_figure.Streamlines(field)
                     .Spacing(0.1)
                     .Width(1)
                     .ColorBy(Doubles(6, 3))
                     .Label("Plot")
                     .ColorTitle("Value");
       },
       at(1, 2, 0),
       3,
       3,
       {}},
  };
  for (const Case& plot : cases) {
    Figure figure = FromAbove();
    figure.Scatter(std::vector<Point>{at(-1, -1, 0), at(5, 5, 0)}).Diameter(0.01); // the limits
    const Plot* const added = plot.add(figure);
    const Hit hit = PickAt(figure, plot.place);
    ASSERT_TRUE(hit) << plot.name;
    EXPECT_EQ(hit->plot, added) << plot.name;
    EXPECT_EQ(hit->label, "Plot");
    EXPECT_EQ(hit->valueTitle, "Value");
    ASSERT_TRUE(hit->element) << plot.name;
    EXPECT_EQ(*hit->element, plot.element) << plot.name;
    ASSERT_TRUE(hit->value) << plot.name;
    EXPECT_TRUE(*hit->value == plot.value || (std::isnan(*hit->value) && std::isnan(plot.value))) << plot.name;
    const Point position = plot.position == Point() ? plot.place : plot.position;
    const double tolerance = plot.position == Point() ? 0.3 : 0; // pixels, and the radius of a tube
    EXPECT_LE(Length(hit->position - position), tolerance) << plot.name;
    EXPECT_FALSE(PickAt(figure, at(2, 2.7, 0)) && PickAt(figure, at(2, 2.7, 0))->plot != added) << plot.name;
  }
}

/// What is not drawn is not picked, whatever hides it; half-transparent plots are, before what lies behind them.
TEST_F(FigurePickPixels, PicksWhatIsSeenAlone) {
  Figure figure = FromAbove();
  figure.SetLimits(0, -1, 2).SetLimits(1, -1, 2).SetLimits(2, -1, 2);
  const std::vector<Point> square{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  MeshPlot& low = figure.Mesh(square, {{0, 1, 2}, {0, 2, 3}});
  std::vector<Point> raised = square;
  for (Point& corner : raised)
    corner.z = 1;
  MeshPlot& high = figure.Mesh(raised, {{0, 1, 2}, {0, 2, 3}}).SetOpacity(0.3);
  figure.Scatter(std::vector<Point>{{-0.5, -0.5, 0}, {5, 5, 0}, {0.5, 0.5, NaN}}).Diameter(0.1).Color(Qt::red);
  const Point middle(0.6, 0.5, 1);
  const auto plotAt = [&](const Point& p_point) {
    const Hit hit = PickAt(figure, p_point);
    return hit ? hit->plot : nullptr;
  };
  EXPECT_EQ(plotAt(middle), &high);
  figure.Clip(2, 0.5, Figure::Side::Below);
  EXPECT_EQ(plotAt(middle), &low) << "cut away";
  figure.RemoveClip(0);
  high.SetOpacity(0);
  EXPECT_EQ(plotAt(middle), &low) << "invisible";
  high.SetOpacity(1).SetVisible(false);
  EXPECT_EQ(plotAt(middle), &low) << "hidden";
  high.SetVisible(true);
  EXPECT_EQ(plotAt(middle), &high);
  figure.Remove(high);
  EXPECT_EQ(plotAt(middle), &low);
  EXPECT_EQ(plotAt({1.5, 1.5, 0}), nullptr) << "background";
  EXPECT_FALSE(figure.Pick(gl, viewport, {-1, 3}));
  EXPECT_FALSE(figure.Pick(gl, viewport, {300, 3})) << "outside of the viewport";
}

class FigurePickCalls : public FigureCallsFixture {};

/// An unchanged scene is drawn once for all picks; each change draws it again.
TEST_F(FigurePickCalls, DrawOnlyChangedScenes) {
  Figure figure;
  ScatterPlot& plot = figure.Scatter(std::vector<Point>{{0, 0, 0}, {1, 1, 1}});
  const Types::Viewport<0> viewport(0, 0, 60, 40);
  const auto draws = [&] {
    recorder.Clear();
    figure.Pick(gl, viewport, {30, 20});
    return !recorder.LinesOf({"Clear"}).empty();
  };
  EXPECT_TRUE(draws());
  EXPECT_FALSE(draws());
  EXPECT_EQ(recorder.Lines().size(), recorder.LinesOf({"GetIntegerv", "GetString", "GetError"}).size());
  const std::vector<std::pair<const char*, std::function<void()>>> changes = {
      {"positions",
       [&] {
         plot.UpdatePositions(std::vector<Point>{{1, 0, 0}, {0, 1, 1}});
       }},
      {"opacity", [&] { plot.SetOpacity(0.5); }},
      {"camera", [&] { figure.Look(10, 20); }},
      {"limits", [&] { figure.SetLimits(0, 0, 0.5); }},
      {"planes", [&] { figure.Clip(0, 0.1, Figure::Side::Above); }},
      {"plots",
       [&] {
         figure.Scatter(std::vector<Point>{{0.5, 0.5, 0.5}});
       }},
  };
  for (const auto& [name, change] : changes) {
    change();
    EXPECT_TRUE(draws()) << name;
    EXPECT_FALSE(draws()) << name;
  }
}

TEST_F(FigurePickCalls, ReportTooManyPlots) {
  Figure figure;
  for (int i = 0; i < 256; ++i)
    figure.Scatter(std::vector<Point>{{0, 0, 0}, {1, 1, 1}});
  ReportCapture reports;
  EXPECT_FALSE(figure.Pick(gl, {0, 0, 60, 40}, {30, 20}));
  EXPECT_EQ(reports.Texts(), Texts{"WARNING: Figure: Pick: expected at most 255 visible plots, got 256"});
}

} // namespace
