#include "scene/Figure.h"

#include "tests/support/Figures.h"

namespace {

using SurfacePlotTest = FigureFixture;
using SurfacePlotCalls = FigureCallsFixture;
using SurfacePlotPixels = FigurePixelsFixture;

TEST_F(SurfacePlotTest, RefusesWrongArguments) {
  Figure figure;
  SurfacePlot& plot = figure.Surface(Ascending(4), Ascending(3), Ascending(12));
  ExpectErrors({
      {"heights: expected 4 \u00D7 3 = 12 elements, got 11",
       [&] { figure.Surface(Ascending(4), Ascending(3), Ascending(11)); }},
      {"UpdateHeights: expected 12 elements, got 13", [&] { plot.UpdateHeights(Ascending(13)); }},
      {"ColorBy: expected 12 elements, got 4", [&] { plot.ColorBy(Ascending(4)); }},
      {"Contours: expected 0 or more lines, got -1", [&] { plot.Contours(-1); }},
  });
  for (const Doubles& x : {Doubles{0, 1, 1}, Doubles{0, 2, 1}, Doubles{0, NaN, 1}})
    EXPECT_THROW(figure.Surface(x, Ascending(2), Ascending(6)), std::invalid_argument);
  EXPECT_THROW(figure.Surface(Doubles{0}, Ascending(2), Ascending(2)), std::invalid_argument);
}

TEST_F(SurfacePlotTest, SaysWhatIsMissing) {
  Doubles heights = Ascending(12);
  heights[5] = heights[6] = NaN;
  Figure figure;
  SurfacePlot& plot = figure.Surface(Ascending(4), Ascending(3), heights);
  EXPECT_EQ(NotesOf(figure), Notes{"2 values missing"});
  EXPECT_EQ(plot.ColorRange().max, 11) << "by height";
  plot.Contours(3);
  EXPECT_EQ(NotesOf(figure), (Notes{"2 values missing", "contours every 5"}));
  figure.SetLimits(2, 0, 8);
  EXPECT_EQ(NotesOf(figure).at(1), "3 heights outside of the axes");
  plot.ColorBy(heights).Contours(0);
  EXPECT_EQ(NotesOf(figure), (Notes{"2 heights missing", "3 heights outside of the axes", "2 values missing"}));
  plot.Color(Qt::red);
  EXPECT_EQ(NotesOf(figure), (Notes{"2 heights missing", "3 heights outside of the axes"}));

  Figure empty;
  empty.Surface(Ascending(2), Ascending(2), Doubles(4, NaN)).Contours();
  ReportCapture reports;
  EXPECT_FALSE(empty.Image({300, 200}).isNull());
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: Figure: plot 1 has no point to show"});
}

TEST_F(SurfacePlotCalls, AreAsManyForLargeGrids) {
  std::vector<std::size_t> calls;
  for (const std::size_t size : {3, 201}) {
    const double step = 2 / static_cast<double>(size - 1);
    Figure figure;
    figure.Surface(Ascending(size, -1, step), Ascending(size, -1, step), Ascending(size * size, 0, 1.0 / (size * size)))
        .ColorRange(0, 1)
        .Contours(Doubles{0.25, 0.5});
    figure.SetLimits(2, 0, 1);
    CallsOf(figure);
    calls.push_back(CallsOf(figure).size());
  }
  EXPECT_EQ(calls[0], calls[1]);
}

TEST_F(SurfacePlotCalls, UploadWhatChanged) {
  using Bytes = std::vector<std::size_t>;
  Doubles heights = Ascending(12);
  Figure figure;
  SurfacePlot& plot = figure.Surface(Ascending(4), Ascending(3), heights);
  EXPECT_EQ(UploadsOf(figure).size(), 4U) << "positions, normals, values, indices";
  plot.ColorMap("inferno").ColorRange(2, 3).LogScale().SetOpacity(0.5).ColorTitle("Title");
  figure.theme = Theme::Dark();
  EXPECT_EQ(UploadsOf(figure), Bytes()) << "settings";
  std::swap(heights[0], heights[11]);
  plot.UpdateHeights(heights);
  EXPECT_EQ(UploadsOf(figure), (Bytes{12 * 12, 12 * 12, 4 * 12})) << "heights";
  plot.ColorBy(heights);
  EXPECT_EQ(UploadsOf(figure), Bytes{4 * 12}) << "values";
  std::swap(heights[0], heights[11]);
  plot.UpdateHeights(heights);
  EXPECT_EQ(UploadsOf(figure), (Bytes{12 * 12, 12 * 12})) << "heights, other values";
  plot.Contours({5.5});
  EXPECT_EQ(UploadsOf(figure).size(), 1U) << "lines";
  heights[5] = NaN; // each of the four cells around the node loses one of its two triangles
  plot.Contours(0).UpdateHeights(heights);
  const Bytes uploads = UploadsOf(figure);
  EXPECT_EQ(std::count(uploads.begin(), uploads.end(), std::size_t{4 * 3 * (12 - 4)}), 1) << "a hole";
}

/// Uneven and descending axes, far from zero; a hole; a bent cell.
TEST_F(SurfacePlotPixels, NodesAndHolesAreWhereTheyBelong) {
  const Doubles x{4e7, 4e7 + 1, 4e7 + 4, 4e7 + 5}, y{-2e7 + 4, -2e7 + 3, -2e7};
  Doubles heights(12, 1e6), values(12, 0);
  values[5] = 1; // at x[1], y[1]
  heights[11] = NaN;
  Figure figure;
  figure.Surface(x, y, heights).ColorBy(values).ColorMap({Qt::blue, Qt::red}).ColorRange(0, 1);
  const Point far(4e7, -2e7, 1e6);
  EXPECT_GT(Drawn(figure, far + Point(1, 3, 0)).red(), 200);
  EXPECT_GT(AtPoint(figure, far + Point(0.2, 0.2, 0)).blue(), 200);
  EXPECT_LT(AtPoint(figure, far + Point(0.2, 0.2, 0)).red(), 60);
  EXPECT_EQ(AtPoint(figure, far + Point(4.9, 0.5, 0)), QColor(Qt::white)) << "the hole";
  EXPECT_GT(AtPoint(figure, far + Point(4.1, 2.8, 0)).blue(), 200) << "the rest of its cell";
  EXPECT_LT(AtPoint(figure, far + Point(4.1, 2.8, 0)).red(), 60);
}

TEST_F(SurfacePlotPixels, ContoursLieOnTheSurface) {
  // A saddle cell of two triangles: the line z = 0.5 runs through both.
  const Doubles unit{0, 1}, saddle{0, 1, 1, 0};
  Figure figure;
  figure.theme.title = Qt::black;
  SurfacePlot& plot = figure.Surface(unit, unit, saddle).Color(Qt::yellow);
  figure.Look(0, 90, Camera::Projection::Parallel);
  const std::vector<Point> points = {
      {0.5, 0.2, 0.3}, {0.7, 0.2, 0.5}, {0.2, 0.7, 0.5}, {0.9, 0.4, 0.5}, {0.8, 0.2, 0.6}};
  const auto darkest = [&] { // of the pixels around each point
    Drawn(figure, points[0]);
    std::vector<int> greens;
    for (const Point& point : points) {
      greens.push_back(255);
      for (int i = 0; i < 9; ++i)
        greens.back() = std::min(greens.back(), AtPoint(figure, point, i % 3 - 1, i / 3 - 1).green());
    }
    return greens;
  };
  const std::vector<int> without = darkest();
  plot.Contours(Doubles{0.5, 0.3, NaN, 7});
  const std::vector<int> with = darkest();
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_LT(with[i], without[i] * 2 / 3) << i;
  EXPECT_EQ(with[4], without[4]) << "between lines";
  plot.Contours(0);
  EXPECT_EQ(darkest(), without);
}

/// The same surface with heights times 50, and with an axis stretched by 50, is lit alike; so is an exponential one on
/// a logarithmic axis like a linear one.
TEST_F(SurfacePlotPixels, LightFollowsTheStretchedSurface) {
  const Doubles unit = Ascending(9, 0, 0.125);
  Doubles low, high, exponential;
  for (const double y : unit)
    for (const double x : unit) {
      low.push_back(0.01 * std::sin(3 * x + y));
      high.push_back(50 * low.back());
      exponential.push_back(std::pow(10, high.back()));
    }
  const auto colors = [&](const Doubles& p_heights, double p_stretch, bool p_logarithmic) {
    Figure figure;
    figure.Surface(unit, unit, p_heights).Color(Qt::green);
    figure.SetAspect(1, 1, p_stretch).SetLogAxis(2, p_logarithmic).Look(-30, 60, Camera::Projection::Parallel);
    figure.Draw(gl, viewport);
    std::vector<QColor> seen;
    for (std::size_t node = 20; node < 70; node += 10)
      seen.push_back(AtPoint(figure, {unit[node % 9], unit[node / 9], p_heights[node]}));
    return seen;
  };
  const std::vector<QColor> expected = colors(high, 1, false), stretched = colors(low, 50, false),
                            logarithmic = colors(exponential, 1, true);
  EXPECT_GT(std::abs(expected.front().green() - expected.back().green()), 20) << "the case is one";
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_TRUE(SameColor(stretched[i].rgb(), expected[i], 5)) << i;
    EXPECT_TRUE(SameColor(logarithmic[i].rgb(), expected[i], 5)) << i;
  }
}

/// Columns without a place on a logarithmic axis are holes, at both ends of it.
TEST_F(SurfacePlotPixels, LogarithmicAxesLeaveNodesOut) {
  ReportCapture reports;
  for (const bool isDescending : {false, true}) {
    Doubles x{-5, 0, 1, 10, 100};
    if (isDescending)
      std::reverse(x.begin(), x.end());
    Figure figure;
    figure.SetLogAxis(0);
    figure.Surface(x, Doubles{0, 1}, Doubles(10, 3)).Color(Qt::red);
    EXPECT_EQ(figure.Layout(viewport).notes, Notes{"4 heights outside of the axes"});
    EXPECT_GT(Drawn(figure, {3, 0.5, 3}).red(), 200);
    EXPECT_LT(AtPoint(figure, {3, 0.5, 3}).green(), 60);
  }
  Figure none;
  none.SetLogAxis(0);
  none.Surface(Doubles{-2, -1}, Doubles{0, 1}, Doubles(4, 3)).Contours();
  none.Draw(gl, viewport);
  EXPECT_EQ(reports.Texts(), Lines{"WARNING: Figure: plot 1 has no point to show"});
}

} // namespace
