#include "scene/Figure.h"

#include "tests/support/Figures.h"

namespace {

using Bytes = std::vector<std::size_t>;

const Doubles X = Ascending(4), Y = Ascending(3, 0, 10);
/// Node (1, 1) is 5, node (2, 1) is -3; the last one is missing.
const Doubles Heights{1, 1, 1, 1, 1, 5, -3, 1, 1, 1, 1, NaN};

using BarsPlotCalls = FigureCallsFixture;
using BarsPlotPixels = FigurePixelsFixture;

TEST_F(BarsPlotCalls, RefusesWrongArguments) {
  Figure figure;
  BarsPlot& plot = figure.Bars(X, Y, Heights);
  ExpectErrors({
      {"Bars: expected as many heights as positions along x and along y, or for each pair of both, got 11 for 4 and 3",
       [&] { figure.Bars(X, Y, Doubles(11)); }},
      {"Bars: expected as many heights as positions along x and along y, or for each pair of both, got 2 for 0 and 0",
       [&] { figure.Bars(Doubles(), Doubles(), Doubles(2)); }},
      {"UpdateHeights: expected 12 elements, got 4", [&] { plot.UpdateHeights(X); }},
      {"ColorBy: expected 12 elements, got 4", [&] { plot.ColorBy(X); }},
      {"Width: expected a fraction above 0 and up to 1, got 1.500000", [&] { plot.Width(1.5); }},
      {"SetTicks: expected an axis of 0 to 2, got 3", [&] { figure.SetTicks(3, {}); }},
  });
}

TEST_F(BarsPlotCalls, NotesBasesAndCuts) {
  struct Case {
    Doubles limits;
    bool isLogarithmic;
    Notes notes;
  };
  const std::vector<Case> cases = {
      {{}, false, {"1 bar missing"}},
      {{-5, 4}, false, {"1 bar missing", "1 bar cut at the end of the axis"}},
      {{0, 10}, false, {"1 bar missing", "1 bar cut at the end of the axis"}}, // the negative one
      {{2, 6}, false, {"1 bar missing", "10 bars outside of the axes", "bars start at 2"}},
      {{-6, -1}, false, {"1 bar missing", "10 bars outside of the axes", "bars start at -1"}},
      {{}, true, {"1 bar missing", "1 bar outside of the axes", "bars start at 0.1"}},
      {{0.5, 2},
       true,
       {"1 bar missing", "1 bar outside of the axes", "1 bar cut at the end of the axis", "bars start at 0.5"}},
  };
  for (const Case& test : cases) {
    Figure figure;
    figure.SetAspect(1, 1, 1).Bars(X, Y, Heights);
    figure.SetLogAxis(2, test.isLogarithmic);
    if (!test.limits.empty())
      figure.SetLimits(2, test.limits[0], test.limits[1]);
    EXPECT_EQ(figure.Layout({0, 0, 600, 400}).notes, test.notes) << (test.limits.empty() ? 0 : test.limits[0]);
  }
  Figure row;
  row.Bars(Ascending(11), Doubles(11, 5), Doubles(11, 3));
  EXPECT_EQ(row.Layout({0, 0, 600, 400}).notes, Notes{"y \u00D7 5"}) << "as deep as wide";

  ReportCapture reports;
  Figure empty;
  empty.Bars(Doubles{1}, Doubles{2}, Doubles{NaN});
  EXPECT_EQ(empty.Layout({0, 0, 600, 400}).notes, Notes{"1 bar missing"});
  EXPECT_EQ(reports.Texts().size(), 1U);
}

TEST_F(BarsPlotCalls, NamesTakeThePlaceOfValues) {
  Figure figure;
  figure.Bars(X, Y, Heights);
  figure.SetAxisNames(0, {"a", "b", "c", "d", "e"}).SetTicks(1, [](double p_low, double p_high, std::size_t p_most) {
    return Ticks::Degrees(p_low, p_high, p_most);
  });
  std::vector<QString> strings;
  for (const AxesLayout::Label& label : figure.Layout({0, 0, 900, 600}).axes.labels)
    strings.push_back(label.text);
  for (const char* const name : {"a", "b", "c", "d"})
    EXPECT_EQ(std::count(strings.begin(), strings.end(), name), 1) << name;
  EXPECT_EQ(std::count(strings.begin(), strings.end(), "e"), 0) << "beyond the axis";
  EXPECT_EQ(std::count(strings.begin(), strings.end(), "10\u00B0"), 1);
}

TEST_F(BarsPlotCalls, UploadWhatChanged) {
  constexpr std::size_t Vertices = 24 * 12;
  Doubles heights = Heights;
  Figure figure;
  BarsPlot& plot = figure.Bars(X, Y, heights);
  EXPECT_EQ(UploadsOf(figure).size(), 4U) << "positions, normals, values, indices";
  plot.ColorMap("inferno").ColorRange(2, 3).LogScale().SetOpacity(0.5).ColorTitle("Title");
  EXPECT_EQ(UploadsOf(figure), Bytes()) << "settings";
  plot.ColorBy(Doubles(12, 1));
  EXPECT_EQ(UploadsOf(figure), Bytes{4 * Vertices}) << "values";
  std::swap(heights[0], heights[5]);
  plot.UpdateHeights(heights);
  EXPECT_EQ(UploadsOf(figure), Bytes{12 * Vertices}) << "heights, other values";
  plot.ColorByHeight();
  UploadsOf(figure);
  heights[1] = NaN;
  plot.UpdateHeights(heights);
  EXPECT_EQ(UploadsOf(figure), (Bytes{12 * Vertices, 4 * Vertices})) << "heights, colours by height";
}

/// From above, bars are rectangles; from the side, they reach from 0 to their height.
TEST_F(BarsPlotPixels, BarsAreWhereTheyBelong) {
  const double far = 1e6;
  const Doubles x = Ascending(4, far), y = Ascending(3, -far, 10);
  Figure figure;
  BarsPlot& plot = figure.Bars(x, y, Heights).ColorMap({Qt::blue, Qt::red}).ColorRange(-3, 5);
  figure.Look(0, 90, Camera::Projection::Parallel).SetAspect(1, 0.1, 0.1);
  const auto seen = [&](double p_x, double p_y, double p_z) { return AtPoint(figure, {p_x + far, p_y - far, p_z}); };
  const QColor white(Qt::white);
  const auto redness = [](const QColor& p_color) { return p_color.redF() / (p_color.redF() + p_color.blueF()); };
  Draw(figure);
  EXPECT_GT(redness(seen(1, 10, 5)), 0.95);
  EXPECT_LT(redness(seen(2, 10, 0)), 0.05);
  EXPECT_NEAR(redness(seen(0, 0, 1)), 0.5, 0.1);
  EXPECT_NE(seen(1.35, 10, 5), white) << "0.4 to each side";
  EXPECT_EQ(seen(1.5, 10, 0), white) << "between bars";
  EXPECT_NE(seen(1, 13.5, 5), white);
  EXPECT_EQ(seen(1, 15, 0), white);
  EXPECT_EQ(seen(3, 20, 0), white) << "missing";
  plot.Width(0.4);
  Draw(figure);
  EXPECT_EQ(seen(1.35, 10, 5), white);
  EXPECT_NE(seen(1.15, 10, 5), white);

  plot.Width(1);
  figure.Look(0, 0, Camera::Projection::Parallel);
  Draw(figure);
  EXPECT_GT(redness(seen(1, 10, 4.5)), 0.95);
  EXPECT_EQ(seen(1, 10, 5.3), white);
  EXPECT_LT(redness(seen(2, 10, -2.5)), 0.05);
  EXPECT_EQ(seen(1, 10, -0.3), white) << "the base";
  figure.SetLimits(2, -4, 3);
  Draw(figure);
  EXPECT_GT(redness(seen(1, 10, 2.8)), 0.95) << "cut at the limit";
  EXPECT_EQ(seen(1, 10, 3.2), white);
}

/// Each of the six faces is bright where it is seen from the front: corners are in order, and normals point outward.
TEST_F(BarsPlotPixels, FacesAreLit) {
  Figure figure;
  figure.Bars(Doubles{0}, Doubles{0}, Doubles{1}).Color(Qt::red);
  figure.SetAspect(1, 1, 1);
  for (const auto& [azimuth, elevation] : {std::pair(0, 0), {90, 0}, {180, 0}, {270, 0}, {0, 90}, {0, -90}}) {
    figure.Look(azimuth, elevation, Camera::Projection::Parallel);
    Draw(figure);
    EXPECT_GT(AtPoint(figure, {0, 0, 0.5}).red(), 170) << azimuth << ", " << elevation;
    EXPECT_LT(AtPoint(figure, {0, 0, 0.5}).green(), 90) << azimuth << ", " << elevation;
  }
}

} // namespace
