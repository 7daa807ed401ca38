#include "scene/VolumeSlices.h"

#include "scene/Camera.h"
#include "tests/support/Test.h"
#include "tests/support/Volumes.h"

namespace {

using Box = Types::BoundingBox_Base<double>;

TEST(VolumeSlices, CutsTheBox) {
  const VolumeSlices slices(VoxelGrid(std::vector<float>(8), {2, 2, 2}, Box({0, 0, 0}, {1, 2, 3})));
  for (int axis = 0; axis < 3; ++axis) {
    const Slice cut = slices.Cut(axis, 0.5);
    ASSERT_EQ(cut.size(), 4u);
    for (const Point& corner : cut)
      EXPECT_EQ(axis == 0 ? corner.x : axis == 1 ? corner.y : corner.z, 0.5);
  }
  EXPECT_EQ(slices.Cut(Types::Plane({0.5, 1, 1.5}, {1, 0.5, 1.0 / 3})).size(), 6u);
  EXPECT_TRUE(slices.Cut(2, 3.5).empty());
  EXPECT_THROW(slices.Cut(3, 0), std::invalid_argument);
}

using VolumeSlicesCalls = RecordingScopeFixture;

TEST_F(VolumeSlicesCalls, UploadsVoxelsOnceForAllCopiesAndColors) {
  const VoxelGrid grid(std::vector<float>{1, 2, NAN, 4}, {4, 1, 1}, Box({0, 0, 0}, {4, 1, 1}));
  const VolumeSlices first(grid), second(grid, VoxelGrid::Filter::Nearest);
  const std::vector<Slice> cuts = {first.Cut(2, 0.5)};
  first.Draw(gl, cuts, Grey(), Between(0, 1));
  first.Draw(gl, cuts, ColorMap::Named("viridis"), Between(1, 9), 0.5);
  second.Draw(gl, cuts, Grey(), Between(0, 2));
  second.DrawDepths(gl, cuts);
  const Lines lines = recorder.LinesWithout({});
  const auto uploads = [&](const std::string& p_call) {
    return std::count_if(lines.begin(), lines.end(),
                         [&](const std::string& p_line) { return p_line.rfind(p_call, 0) == 0; });
  };
  EXPECT_EQ(uploads("TexImage3D("), 1);
}

struct VolumeSlicesPixels : PixelScopeFixture {
  /// Row y of a cut through eight voxels along x, 61 pixels wide, seen from above.
  std::vector<int> Reds(const VolumeSlices& p_slices, const ValueScale& p_scale, const Doubles& p_at) {
    gl->ClearColor(Qt::black);
    gl->Clear(RGL_COLOR_BUFFER_BIT);
    gl->LoadIdentity();
    gl->MatrixMode(RGL_PROJECTION);
    gl->LoadIdentity();
    gl->Ortho(0, 8, 0, 1, -1, 1);
    gl->MatrixMode(RGL_MODELVIEW);
    p_slices.Draw(gl, {p_slices.Cut(2, 0.5)}, Grey(), p_scale);
    std::vector<int> reds;
    for (const double x : p_at)
      reds.push_back(Image().pixelColor(static_cast<int>(x / 8 * FrameSize.width), 18).red());
    return reds;
  }
};

TEST_F(VolumeSlicesPixels, ColorsValuesAndLeavesMissingOnesOut) {
  const Box box({0, 0, 0}, {8, 1, 1});
  const std::vector<float> values = {10, 20, 30, NAN, 50, 60, 70, 80};
  VolumeSlices nearest(VoxelGrid(values, {8, 1, 1}, box), VoxelGrid::Filter::Nearest);
  const auto near = [](const std::vector<int>& p_got, const std::vector<int>& p_expected, int p_error) {
    for (std::size_t i = 0; i < p_got.size(); ++i)
      EXPECT_NEAR(p_got[i], p_expected[i], p_error) << i;
  };
  near(Reds(nearest, Between(0, 80), {0.5, 1.2, 2.7, 3.5, 4.4, 7.9}), {32, 64, 96, 0, 159, 255}, 1);
  near(Reds(nearest, Between(20, 60), {0.5, 1.5, 2.5, 4.5, 6.5}), {0, 0, 64, 191, 255}, 1);
  // Half-way to the missing voxel the last value holds; it is no mean with 0.
  const VolumeSlices linear(VoxelGrid(values, {8, 1, 1}, box));
  near(Reds(linear, Between(0, 80), {1.03, 2.85, 3.5, 4.3}), {48, 96, 0, 159}, 4);
  ValueScale bands = Between(20, 60);
  bands.below = QColor(200, 0, 0);
  bands.above = QColor(100, 0, 0);
  near(Reds(nearest, bands, {0.5, 7.5}), {200, 100}, 1);
  bands = Between(10, 1000);
  bands.logarithmic = true;
  near(Reds(nearest, bands, {0.5, 7.5}), {0, static_cast<int>(255 * std::log10(8.0) / 2)}, 2);
  nearest.shown = {25, 65};
  near(Reds(nearest, Between(0, 80), {1.5, 2.5, 5.5, 6.5}), {0, 96, 191, 0}, 1);
}

TEST_F(VolumeSlicesPixels, DrawsWhatUnevenGridsSample) {
  const Doubles x = {8, 7.5, 5, 4.9, 1, 0};
  for (const auto filter : {VoxelGrid::Filter::Linear, VoxelGrid::Filter::Nearest}) {
    const VoxelGrid grid(std::vector<float>{10, 20, 60, NAN, 50, 80, 10, 20, 60, NAN, 50, 80,
                                            10, 20, 60, NAN, 50, 80, 10, 20, 60, NAN, 50, 80},
                         x, Doubles{0, 1}, Doubles{0, 1}, VoxelGrid::Positions::OfNodes);
    Doubles at;
    std::vector<int> expected;
    for (double pixel = 0.5; pixel < FrameSize.width; ++pixel) {
      at.push_back(pixel * 8 / FrameSize.width);
      const double value = grid.Sample({at.back(), 0.5, 0.5}, filter);
      expected.push_back(std::isnan(value) ? 0 : static_cast<int>(value / 80 * 255));
    }
    const std::vector<int> got = Reds(VolumeSlices(grid, filter), Between(0, 80), at);
    for (std::size_t i = 0; i < at.size(); ++i)
      EXPECT_NEAR(got[i], expected[i], 2) << at[i];
  }
}

TEST_F(VolumeSlicesPixels, FillsMissingWhereAsked) {
  VolumeSlices slices(VoxelGrid(std::vector<float>{NAN, 1}, {2, 1, 1}, Box({0, 0, 0}, {8, 1, 1})),
                      VoxelGrid::Filter::Nearest);
  ValueScale scale = Between(0, 2);
  scale.missing = QColor(77, 0, 0);
  EXPECT_EQ(Reds(slices, scale, {2}), std::vector<int>{0});
  slices.fillsMissing = true;
  EXPECT_EQ(Reds(slices, scale, {2}), std::vector<int>{77});
}

TEST_F(VolumeSlicesPixels, BytesAreColoredFromZeroToOne) {
  const auto image = boost::make_shared<VolumeImage>(VolumeImage::Byte1, 2, 1, 1);
  image->Bytes() = {0, 102};
  const VolumeSlices slices(VoxelGrid(image, Box({0, 0, 0}, {8, 1, 1})));
  const std::vector<int> reds = Reds(slices, Between(0, 0.8), {1, 3, 6});
  EXPECT_EQ(reds[0], 0); // missing
  EXPECT_EQ(reds[1], 0); // less than half of the weights
  EXPECT_NEAR(reds[2], 0.4 / 0.8 * 255, 1.5);
}

TEST_F(VolumeSlicesPixels, IdsAreSlices) {
  const VolumeSlices slices(VoxelGrid(std::vector<float>{1, NAN}, {2, 1, 1}, Box({-1, -1, -1}, {1, 1, 1})),
                            VoxelGrid::Filter::Nearest);
  gl->ClearColor(QColor(9, 9, 9, 9));
  gl->Clear(RGL_COLOR_BUFFER_BIT);
  slices.Draw(gl, {Slice(), slices.Cut(2, 0)}, PickPass{PickPass::Ids, 6});
  EXPECT_EQ(Image().pixelColor(10, 18), QColor(1, 0, 0, 7));
  EXPECT_EQ(Image().pixelColor(50, 18), QColor(9, 9, 9, 9));
}

} // namespace
