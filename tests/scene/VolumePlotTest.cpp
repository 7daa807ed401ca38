#include "scene/Figure.h"

#include "tests/support/Figures.h"

#include <array>
#include <cmath>

namespace {

using Box = Types::BoundingBox_Base<double>;

const Box Cube({0, 0, 0}, {1, 1, 1});

using VolumePlotTest = FigureFixture;

TEST_F(VolumePlotTest, NotesSayWhatRaysShow) {
  Figure figure;
  VolumePlot& plot = figure.Volume({Doubles{1, 2, NAN, 4}, {4, 1, 1}, Box({0, 0, 0}, {4, 1, 1})});
  const QString layer = "outer half of the colour bar: in the opacity of a layer of 5 % of the diagonal";
  EXPECT_EQ(NotesOf(figure), (Notes{layer, "1 voxel missing"}));
  EXPECT_EQ(NotesOf((plot.Maximum(), figure)), (Notes{"largest value along each line of sight", "1 voxel missing"}));
  EXPECT_EQ(NotesOf((plot.Average(), figure)).at(0), "mean value along each line of sight");
  EXPECT_EQ(NotesOf((plot.SamplesPerVoxel(0.25), figure)).at(1), "sampled every 4 voxels");
  ExpectErrors({
      {"LayerThickness: expected a share above 0 to 1, got 0.000000", [&] { plot.LayerThickness(0); }},
      {"SamplesPerVoxel: expected a finite number above 0, got -1.000000", [&] { plot.SamplesPerVoxel(-1); }},
      {"UpdateValues: expected 4 elements, got 3", [&] { plot.UpdateValues(Doubles(3)); }},
  });
}

TEST_F(VolumePlotTest, ColorBarShowsOpacities) {
  Figure figure;
  figure.Volume({Doubles{0, 1}, {2, 1, 1}, Cube})
      .ColorMap({Qt::red, Qt::red})
      .OpacityBy({{0, 0}, {1, 1}})
      .SetOpacity(0.5);
  const FigureLayout layout = figure.Layout({0, 0, 600, 400}); // kept: blocks are references
  for (const FigureLayout::Block& block : layout.blocks)
    if (const auto& bars = block.content.Gradients(); !bars.empty()) {
      ASSERT_EQ(bars.size(), 2U);
      EXPECT_EQ(bars[0].colors.pixelColor(0, 0), QColor(Qt::red));
      EXPECT_EQ(bars[1].colors.pixelColor(0, 0).green(), 255);
      EXPECT_NEAR(bars[1].colors.pixelColor(bars[1].colors.width() - 1, 0).green(), 128, 2);
      return;
    }
  FAIL() << "no colour bar";
}

using VolumePlotCalls = FigureCallsFixture;

TEST_F(VolumePlotCalls, UploadVoxelsWhenValuesChangeAlone) {
  recorder.SetInteger(RGL_MAX_3D_TEXTURE_SIZE, {512});
  recorder.SetInteger(RGL_SAMPLE_BUFFERS, {0});
  Figure figure;
  VolumePlot& plot = figure.Volume({Doubles{1, 2, 3, 4}, {4, 1, 1}, Cube});
  const auto uploads = [&] {
    CallsOf(figure);
    return recorder.LinesOf({"TexImage3D"}).size();
  };
  EXPECT_EQ(uploads(), 1U);
  plot.ColorMap("magma").ColorRange(1, 3).OpacityBy({{0, 1}}).Maximum().SetOpacity(0.4);
  EXPECT_EQ(uploads(), 0U);
  plot.UpdateValues(Doubles{4, 3, 2, 1});
  EXPECT_EQ(uploads(), 1U);
}

class VolumePlotPixels : public FigurePixelsFixture {
protected:
  /// A figure seen from above, on white.
  static Figure Empty() {
    Figure figure;
    figure.theme.grid = figure.theme.line = figure.theme.title = Qt::white;
    figure.Look(0, 90, Camera::Projection::Parallel);
    return figure;
  }
};

TEST_F(VolumePlotPixels, LayersAddUpAndOpaquePlotsHideWhatIsBehindThem) {
  // Of 2 x 2 x 1 units, the diagonal is 3: a layer of a third of it is the whole height.
  const VoxelGrid grid(Doubles(8, 5), {2, 2, 2}, Box({1e6, 0, 0}, {1e6 + 2, 2, 1}));
  Figure figure = Empty();
  figure.Volume(grid).Color(Qt::blue).OpacityBy({{0, 0.75}}).LayerThickness(1.0 / 3).Shading(false);
  const std::vector<std::array<double, 3>> corners = {
      {1e6, 0, 0.5}, {1e6 + 1, 0, 0.5}, {1e6 + 1, 2, 0.5}, {1e6, 2, 0.5}};
  figure.Mesh(corners, {{0, 1, 2}, {0, 2, 3}}).Color(Qt::black); // half-way up, in the left half
  figure.Draw(gl, viewport);
  EXPECT_NEAR(AtPoint(figure, {1e6 + 1.5, 1, 1}).red(), 255 * 0.25, 4);
  EXPECT_NEAR(AtPoint(figure, {1e6 + 0.5, 1, 1}).blue(), 255 * 0.5, 6) << "half of the layer, over black";
  EXPECT_NEAR(AtPoint(figure, {1e6 + 0.5, 1, 1}).red(), 0, 20) << "over the light on black";
}

TEST_F(VolumePlotPixels, MaximumHasTheColorOfTheBar) {
  const VoxelGrid grid(Doubles{1, 7, 3, 2}, {1, 1, 4}, Cube);
  Figure figure = Empty();
  VolumePlot& plot = figure.Volume(grid).Maximum().ColorMap({Qt::black, Qt::red}).ColorRange(0, 10);
  plot.Filter(VoxelGrid::Filter::Nearest);
  figure.Draw(gl, viewport);
  EXPECT_NEAR(AtPoint(figure, {0.5, 0.5, 1}).red(), 255 * 0.7, 2);
  const auto pick = [&] {
    const auto pixel = figure.Layout(viewport).camera.Project(figure.ToScene({0.5, 0.5, 1}), viewport);
    return figure.Pick(gl, viewport, {static_cast<int>(pixel.x), static_cast<int>(pixel.y)});
  };
  const auto hit = pick();
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->element, 1U);
  EXPECT_EQ(hit->value, 7);
  EXPECT_NEAR(hit->position.z, 0.5, 0.13) << "the first sample of the maximum";
  figure.Clip(2, 0.5, Figure::Side::Above);
  figure.Draw(gl, viewport);
  EXPECT_NEAR(AtPoint(figure, {0.5, 0.5, 1}).red(), 255 * 0.3, 2) << "the maximum is cut off";
  EXPECT_EQ(pick()->value, 3);
  figure.RemoveClip(0);
  figure.SetLimits(2, 0.5, 1);
  figure.Draw(gl, viewport);
  EXPECT_NEAR(AtPoint(figure, {0.5, 0.5, 1}).red(), 255 * 0.3, 2);
  plot.UpdateValues(Doubles(4, NAN));
  figure.Draw(gl, viewport);
  EXPECT_EQ(AtPoint(figure, {0.5, 0.5, 1}), QColor(Qt::white));
}

} // namespace
