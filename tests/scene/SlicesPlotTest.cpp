#include "scene/Figure.h"

#include "io/Volume.h"

#include "tests/support/Figures.h"

#include <cmath>

namespace {

using Box = Types::BoundingBox_Base<double>;

using SlicesPlotTest = FigureFixture;

TEST_F(SlicesPlotTest, NotesSayWhereSlicesAreAndWhatIsNotDrawn) {
  Doubles values = Ascending(24);
  values[3] = values[4] = NaN;
  Figure figure;
  SlicesPlot& plot = figure.Slices({values, {4, 3, 2}, Box({0, 0, 0}, {4, 3, 2})});
  EXPECT_EQ(NotesOf(figure), (Notes{"slices at x = 2.0, y = 1.5, z = 1.00", "2 voxels missing"}));
  EXPECT_EQ(plot.SliceCount(), 3U);
  EXPECT_EQ(std::pair(plot.ColorRange().min, plot.ColorRange().max), std::pair(0.0, 24.0));
  plot.At(2, -7).At(0, 3.5).Move(0, 9);
  EXPECT_EQ(NotesOf(figure).at(1), "1 slice outside of the axes or the volume");
  plot.Clear().At(2, 1);
  figure.SetLimits(0, 1, 9);
  EXPECT_EQ(NotesOf(figure), (Notes{"slice at z = 1.00", "2 voxels missing", "the volume is cut at the axes"}));
  plot.At(Types::Plane({2, 1, 1}, {1, 1, 1})).At(Types::Plane({9, 9, 9}, {1, 1, 1}));
  EXPECT_EQ(NotesOf(figure).at(1), "2 oblique slices through the volume");
  EXPECT_EQ(NotesOf(figure).at(2), "1 slice outside of the axes or the volume");
  plot.Clear().At(2, 1).Show(-2, INFINITY);
  EXPECT_EQ(NotesOf(figure).at(1), "values below \u22122 left out");
  plot.Show(-INFINITY, INFINITY).UpdateValues(Doubles(24, NaN));
  EXPECT_EQ(NotesOf(figure).at(1), "all 24 voxels missing");

  Figure large;
  large.Slices({Ascending(5000), {5000, 1, 1}, Box({0, 0, 0}, {1, 1, 1})});
  EXPECT_EQ(NotesOf(large).at(1), "drawn as means of 3 \u00D7 3 \u00D7 3 voxels");
  Io::Volume tilted;
  tilted.values = std::vector<float>{1, 2};
  tilted.size = {2, 1, 1};
  tilted.orientation = {{{0.6, 0.8, 0}, {-0.8, 0.6, 0}, {0, 0, 1}}};
  tilted.name = "Density";
  tilted.unit = "g/cm³";
  tilted.lengthUnit = "mm";
  Figure file;
  file.Slices(tilted).Clear().At(0, 0.25);
  EXPECT_EQ(NotesOf(file),
            (Notes{"slice at x = 0.25 mm", "drawn along its own axes, which are tilted by up to 37\u00B0"}));
}

TEST_F(SlicesPlotTest, RefusesWrongArguments) {
  Figure figure;
  SlicesPlot& plot = figure.Slices({Ascending(8), {2, 2, 2}, Box({0, 0, 0}, {1, 1, 1})});
  ExpectErrors({
      {"At: expected an axis of 0 to 2, got 3", [&] { plot.At(3, 0); }},
      {"At: expected a finite position, got nan", [&] { plot.At(0, NaN); }},
      {"Move: expected a slice below 3, got 3", [&] { plot.Move(3, 0); }},
      {"At: expected a finite plane with a normal",
       [&] {
         plot.At(Types::Plane({0, 0, 0}, {0, 0, 0}));
       }},
      {"Move: expected a slice perpendicular to an axis, got an oblique one",
       [&] {
         plot.At(Types::Plane({0, 0, 0}, {1, 1, 0})).Move(0, 0);
       }},
      {"Show: expected ascending limits, got 2.000000 and 1.000000", [&] { plot.Show(2, 1); }},
      {"UpdateValues: expected 8 elements, got 7", [&] { plot.UpdateValues(Doubles(7)); }},
      {"ColorBy: expected 8 elements, got 9", [&] { plot.ColorBy(Doubles(9)); }},
  });
}

using SlicesPlotCalls = FigureCallsFixture;

TEST_F(SlicesPlotCalls, UploadVoxelsWhenValuesChangeAlone) {
  bool isFirst = true;
  recorder.SetInteger(RGL_MAX_3D_TEXTURE_SIZE, {512});
  Figure figure;
  const Doubles uneven{0, 1, 3};
  SlicesPlot& plot = figure.Slices({Ascending(27), uneven, uneven, uneven});
  const auto uploads = [&] { // of voxels, and of the places of uneven ones
    CallsOf(figure);
    const Lines places = recorder.LinesOf({"TexImage2D"});
    EXPECT_EQ(std::count_if(places.begin(), places.end(),
                            [](const std::string& p_call) { return p_call.find("4096, 3") != std::string::npos; }),
              isFirst ? 1 : 0);
    isFirst = false;
    return recorder.LinesOf({"TexImage3D"}).size();
  };
  EXPECT_EQ(uploads(), 1U);
  plot.ColorMap("magma").ColorRange(1, 5).LogScale().SetOpacity(0.5).At(0, 0.2).Filter(VoxelGrid::Filter::Nearest);
  figure.SetLimits(1, 0.5, 2);
  EXPECT_EQ(uploads(), 0U);
  plot.UpdateValues(Doubles(27, 1));
  EXPECT_EQ(uploads(), 1U);
  plot.ColorBy(Ascending(27));
  EXPECT_EQ(uploads(), 1U);
}

using SlicesPlotPixels = FigurePixelsFixture;

/// Pixels have the colour of the value at their place, with a NaN at one corner.
TEST_F(SlicesPlotPixels, ColorsLieToScale) {
  Doubles values = Ascending(60);
  values[0] = NaN;
  const Doubles x{1e6, 1e6 + 1, 1e6 + 2, 1e6 + 7, 1e6 + 8}, y{100, 10, 5, 1}, z{-1, 0, 3};
  struct Case {
    const char* name;
    VoxelGrid grid;
    bool isLogarithmic;
  };
  const Case cases[] = {{"cells", {values, {5, 4, 3}, Box({-3, 0, 2e6}, {17, 4, 2e6 + 100})}, false},
                        {"uneven nodes", {values, x, y, z}, false},
                        {"uneven nodes, logarithmic", {values, x, y, z}, true},
                        {"one voxel", {Doubles{30}, {1, 1, 1}, Box({0, 0, 0}, {1, 1, 1})}, false}};
  for (const auto& [name, grid, isLogarithmic] : cases)
    for (const auto filter : {VoxelGrid::Filter::Nearest, VoxelGrid::Filter::Linear}) {
      Figure figure;
      figure.theme.grid = figure.theme.line = figure.theme.title = Qt::white;
      figure.SetLogAxis(1, isLogarithmic).Look(0, 90, Camera::Projection::Parallel);
      const Box& box = grid.Bounds();
      const double height = box.Min().z + 0.3 * box.Extent().z;
      figure.Slices(grid).At(2, height).ColorMap({Qt::black, Qt::red}).ColorRange(0, 60).Filter(filter);
      figure.Draw(gl, viewport);
      for (int i = 0; i < 40; ++i) {
        const double share = 0.04 + (isLogarithmic ? 0.7 : 0.92) * i / 39; // not on the outline
        const Point at(box.Min().x + box.Extent().x * (0.04 + 0.92 * std::fmod(7.3 * share, 1)),
                       box.Min().y + box.Extent().y * share, height);
        const double value = grid.Sample(at, filter);
        if (isLogarithmic && filter == VoxelGrid::Filter::Linear)
          continue; // linear in the logarithm
        const QColor color = AtPoint(figure, at);
        if (std::isnan(value))
          EXPECT_EQ(color, QColor(Qt::white)) << name << ' ' << i;
        else if (filter == VoxelGrid::Filter::Linear || grid.Count() == 1)
          EXPECT_NEAR(color.red(), 255 * value / 60, 6) << name << ' ' << i;
        else // pixels beside the bound of two voxels may be those of the other one
          EXPECT_TRUE(std::abs(color.red() - 255 * value / 60) < 2 ||
                      grid.Sample(at + Point(0, 0.02 * box.Extent().y, 0), filter) != value ||
                      grid.Sample(at - Point(0, 0.02 * box.Extent().y, 0), filter) != value ||
                      grid.Sample(at + Point(0.02 * box.Extent().x, 0, 0), filter) != value ||
                      grid.Sample(at - Point(0.02 * box.Extent().x, 0, 0), filter) != value)
              << name << ' ' << i << ' ' << color.red() << ' ' << 255 * value / 60;
      }
    }
}

/// On stretched axes far from the origin, an oblique slice shows and picks the values of its plane.
TEST_F(SlicesPlotPixels, ObliqueSlicesLieInTheirPlane) {
  const VoxelGrid grid(Ascending(60), {5, 4, 3}, Box({1e6, 0, -30}, {1e6 + 100, 4, 30}));
  const Types::Plane plane({1e6 + 50, 2, 0}, {0.01, -0.1, 0.02});
  Figure figure;
  figure.theme.grid = figure.theme.line = figure.theme.title = Qt::white;
  figure.Look(0, 90, Camera::Projection::Parallel);
  SlicesPlot& slices = figure.Slices(grid).At(plane).ColorMap({Qt::black, Qt::red}).ColorRange(0, 60);
  figure.Draw(gl, viewport);
  for (int i = 0; i < 20; ++i) {
    Point at(1e6 + 30 + 40 * std::fmod(0.377 * i, 1), 1 + 2 * i / 19.0, 0);
    at.z = -((at.x - plane.Point().x) * plane.Normal().x + (at.y - 2) * plane.Normal().y) / plane.Normal().z;
    EXPECT_NEAR(AtPoint(figure, at).red(), 255 * grid.Sample(at) / 60, 6) << i;
    const auto pixel = figure.Layout(viewport).camera.Project(figure.ToScene(at), viewport);
    const auto hit = figure.Pick(gl, viewport, {static_cast<int>(pixel.x), static_cast<int>(pixel.y)});
    ASSERT_TRUE(hit) << i;
    EXPECT_NEAR(hit->position.z, at.z, 1) << i;
    EXPECT_NEAR(*hit->value, grid.Sample(at), 1) << i;
  }
  const double middle = grid.Sample(plane.Point());
  for (const auto& [low, high, isShown] :
       {std::tuple(middle - 5, middle + 5, true), {middle + 1, 60.0, false}, {0.0, middle - 1, false}}) {
    slices.Show(low, high);
    figure.Draw(gl, viewport);
    EXPECT_EQ(AtPoint(figure, plane.Point()) != QColor(Qt::white), isShown) << low;
  }
}

TEST_F(SlicesPlotPixels, PicksVoxelsAndValuesBetweenThem) {
  Figure figure;
  figure.Look(0, 90, Camera::Projection::Parallel);
  const Doubles x{1e6, 1e6 + 2}, y{5, 1, 0};
  SlicesPlot& plot = figure.Slices({Ascending(18), x, y, y}).At(2, 4).At(2, 0.5);
  for (const double east : {0.4, 1.5})
    for (const double at : {0.6, 2.0, 4.5}) {
      const auto pixel = figure.Layout(viewport).camera.Project(figure.ToScene({1e6 + east, at, 4}), viewport);
      const auto hit = figure.Pick(gl, viewport, {static_cast<int>(pixel.x), static_cast<int>(pixel.y)});
      ASSERT_TRUE(hit);
      EXPECT_EQ(hit->plot, &plot);
      EXPECT_EQ(hit->position.z, 4);
      EXPECT_NEAR(hit->position.x, 1e6 + east, 0.05);
      EXPECT_NEAR(hit->position.y, at, 0.05);
      const double row = at < 1 ? 2 - at : (5 - at) / 4;
      EXPECT_NEAR(*hit->value, east / 2 + 2 * row + 6 * 0.25, 0.1);
      EXPECT_EQ(hit->element, static_cast<std::size_t>((east > 1 ? 1 : 0) + 2 * std::lround(row)));
    }
}

/// Two slices of one value each are blended in the order in which they are seen, with a third one that crosses both.
TEST_F(SlicesPlotPixels, HalfTransparentSlicesAreSorted) {
  const VoxelGrid grid(Doubles{0, 1}, {1, 1, 2}, Box({0, 0, 0}, {1, 1, 1}));
  for (const auto projection : {Camera::Projection::Parallel, Camera::Projection::Perspective})
    for (const bool isFromAbove : {true, false}) {
      Figure figure;
      figure.theme.grid = figure.theme.line = figure.theme.title = Qt::white;
      figure.Look(10, isFromAbove ? 80 : -80, projection);
      figure.Slices(grid).At(2, 0.75).At(0, 0.5).At(2, 0.25).ColorMap({Qt::red, Qt::blue}).SetOpacity(0.5);
      figure.Draw(gl, viewport);
      const QColor color = AtPoint(figure, {0.25, 0.6, 0.5});
      EXPECT_NEAR(color.red(), isFromAbove ? 128 : 191, 3) << isFromAbove;
      EXPECT_NEAR(color.blue(), isFromAbove ? 191 : 128, 3) << isFromAbove;
      EXPECT_NEAR(color.green(), 64, 3);
    }
}

} // namespace
