#include "scene/Figure.h"

#include "tests/support/Figures.h"

namespace {

using Points = std::vector<Point>;
using Bytes = std::vector<std::size_t>;

/// Corners of a square; the last one without a number in some cases.
const Points Corners{{0, 0, 2}, {4, 0, 2}, {4, 4, 2}, {0, 4, 2}};

using LinesPlotCalls = FigureCallsFixture;
using LinesPlotPixels = FigurePixelsFixture;

TEST_F(LinesPlotCalls, RefusesWrongArguments) {
  Figure figure;
  LinesPlot& plot = figure.Lines(Corners, {1, 0, 3});
  ExpectErrors({
      {"lengths: expected 4 points in all lines, got more", VEK_CALL(figure.Lines(Corners, {2, 3}))},
      {"lengths: expected 4 points in all lines, got 3", VEK_CALL(figure.Lines(Corners, {2, 1}))},
      {"lengths: expected 4 points in all lines, got more", VEK_CALL(figure.Lines(Corners, {1, ~std::size_t{0}}))},
      {"Width: expected a finite number above 0, got 0.000000", [&] { plot.Width(0); }},
      {"Tubes: expected a finite number above 0, got nan", [&] { plot.Tubes(NaN); }},
      {"UpdatePositions: expected 4 elements, got 3", [&] { plot.UpdatePositions(Points(3)); }},
  });
}

TEST_F(LinesPlotCalls, NotesWhatIsLeftOut) {
  Points points;
  for (const double x : Ascending(9))
    points.emplace_back(x, 1, 1);
  points[1].y = points[6].z = NaN;
  Figure figure;
  LinesPlot& plot = figure.Lines(points, {3, 5, 1}); // 0 - 2, 3 4 5 - 7, 8
  const auto notes = [&] { return figure.Layout({0, 0, 600, 400}).notes; };
  EXPECT_EQ(notes(), (Notes{"2 points missing", "4 points without a neighbour"}));
  plot.Tubes(0.1).ColorBy(Doubles{0, 0, 0, 0, NaN, 0, 0, 0, 0});
  EXPECT_EQ(notes(), (Notes{"2 points missing", "1 value missing", "4 points without a neighbour"}));
  figure.SetLimits(0, 4, 8);
  EXPECT_EQ(notes().at(1), "3 points outside of the axes") << "0, 2 and 3";
}

TEST_F(LinesPlotCalls, UploadWhatChanged) {
  Points points = Corners;
  Figure figure;
  LinesPlot& plot = figure.Lines(points, {2, 2}).ColorBy(Doubles{1, 2, 3, 4});
  CallsOf(figure);
  plot.ColorMap("inferno").ColorRange(2, 3).LogScale().SetOpacity(0.5).ColorTitle("Title").Width(2.5);
  EXPECT_EQ(UploadsOf(figure), Bytes()) << "settings";
  plot.ColorBy(Doubles{4, 3, 2, 1});
  EXPECT_EQ(UploadsOf(figure), Bytes{4 * 5}) << "values, with one between the lines";
  std::swap(points[0], points[3]);
  plot.UpdatePositions(points);
  EXPECT_EQ(UploadsOf(figure), Bytes{12 * 5}) << "positions";
  plot.Tubes(0.5);
  EXPECT_EQ(UploadsOf(figure).size(), 4U) << "stations, values, vertices and indices";
  plot.ColorMap("magma").ColorRange(1, 3);
  EXPECT_EQ(UploadsOf(figure), Bytes()) << "settings of tubes";
  plot.ColorBy(Doubles{4, 3, 2, 2});
  EXPECT_EQ(UploadsOf(figure), Bytes{4 * 4}) << "values of tubes";

  std::vector<std::size_t> calls;
  for (const std::size_t count : {4, 10000}) {
    Points many(count, Point(2, 2, 2));
    std::copy(Corners.begin(), Corners.end(), many.begin());
    Figure lines;
    lines.Lines(many).ColorBy(Doubles(count, 1)).ColorRange(0, 5);
    CallsOf(lines);
    calls.push_back(CallsOf(lines).size());
  }
  EXPECT_EQ(calls[0], calls[1]);
}

/// The width across a line, in pixels: the sum of what is covered along a column of the image.
TEST_F(LinesPlotPixels, LinesHaveTheirWidthAndColors) {
  const Point far(4e7, -2e7, 1e6);
  Points points;
  for (const Point& corner : Corners)
    points.push_back(far + corner);
  Figure figure;
  LinesPlot& plot = figure.Lines(points).ColorMap({Qt::blue, Qt::red}).ColorBy(Doubles{0, 0, 1, NaN}).Width(9);
  plot.MissingColor(Qt::green);
  figure.Look(0, 90, Camera::Projection::Parallel);
  Draw(figure);
  EXPECT_TRUE(SameColor(AtPoint(figure, far + Point(2, 0, 2)).rgb(), Qt::blue, 4));
  EXPECT_TRUE(SameColor(AtPoint(figure, far + Point(4, 2, 2)).rgb(), QColor(128, 0, 128), 8)) << "halfway";
  EXPECT_TRUE(SameColor(AtPoint(figure, far + Point(2, 4, 2)).rgb(), Qt::green, 4)) << "missing";
  EXPECT_EQ(AtPoint(figure, far + Point(0, 2, 2)), QColor(Qt::white)) << "not closed";
  const auto width = [&] {
    Draw(figure);
    const Camera::Pixel middle = PixelOf(figure, far + Point(2, 0, 2));
    double covered = 0; // blue pixels have no red, white and grey ones as much as blue
    for (int dy = -12; dy <= 12; ++dy) {
      const QColor color = At(static_cast<int>(middle.x), static_cast<int>(middle.y) + dy);
      covered += color.blueF() - color.redF();
    }
    return covered;
  };
  for (const double wanted : {1.0, 3.0, 9.0}) {
    plot.Width(wanted);
    EXPECT_NEAR(width(), wanted, 0.3);
  }

  // A corner is round: on the outer diagonal it reaches half a width.
  plot.Width(20).Color(Qt::blue);
  Draw(figure);
  const Camera::Pixel corner = PixelOf(figure, far + Corners[1]);
  for (const auto& [distance, isCovered] : {std::pair(8.5, true), {11.5, false}}) {
    const double step = distance / std::sqrt(2.0);
    const QColor color = At(static_cast<int>(corner.x + step), static_cast<int>(corner.y - step));
    EXPECT_EQ(color.red() < 128, isCovered) << distance;
  }

  // The first line ends at the missing point, and tubes have a width in the data.
  points[1].x = NaN;
  plot.UpdatePositions(points);
  Draw(figure);
  EXPECT_EQ(AtPoint(figure, far + Point(2, 0, 2)), QColor(Qt::white));
  EXPECT_NE(AtPoint(figure, far + Point(2, 4, 2)), QColor(Qt::white));
  plot.Tubes(1);
  Draw(figure);
  EXPECT_NE(AtPoint(figure, far + Point(2, 4.4, 2)), QColor(Qt::white));
  EXPECT_EQ(AtPoint(figure, far + Point(2, 3.4, 2)), QColor(Qt::white));
}

/// A segment that passes the eye is cut at the near plane, not mirrored.
TEST_F(LinesPlotPixels, LinesPassTheEye) {
  for (const double end : {-50.0, 50.0}) {
    Figure figure;
    figure.Lines(Points{{0, 0, -end}, {0, 0, end}}).Color(Qt::blue).Width(5);
    figure.SetAspect(1, 1, 1);
    Camera camera; // looks down beside the line
    camera.azimuth = 0;
    camera.elevation = 90;
    camera.target = {-0.002, 0, 0};
    camera.distance = 0.01;
    figure.camera = camera;
    Draw(figure);
    const Camera::Pixel far = PixelOf(figure, {0, 0, -20});
    const double distance = std::hypot(far.x - 150, far.y - 100);
    const double x = 60 * (far.x - 150) / distance, y = 60 * (far.y - 100) / distance;
    EXPECT_TRUE(SameColor(At(static_cast<int>(150 + x), static_cast<int>(100 + y)).rgb(), Qt::blue, 2)) << end;
    EXPECT_EQ(At(static_cast<int>(150 - x), static_cast<int>(100 - y)), QColor(Qt::white)) << end;
  }
}

} // namespace
