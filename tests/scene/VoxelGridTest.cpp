#include "scene/VoxelGrid.h"

#include "io/Volume.h"
#include "tests/support/Test.h"

namespace {

using Box = Types::BoundingBox_Base<double>;
using Filter = VoxelGrid::Filter;

std::vector<float> Counted(std::size_t p_count) {
  std::vector<float> values(p_count);
  std::iota(values.begin(), values.end(), 0.0F);
  return values;
}

boost::shared_ptr<VolumeImage> ImageOf(VolumeImage::VoxelFormat p_format, const std::vector<unsigned char>& p_bytes) {
  auto image = boost::make_shared<VolumeImage>(p_format, p_bytes.size(), 1, 1);
  std::copy(p_bytes.begin(), p_bytes.end(), image->Bytes().begin());
  return image;
}

bool SameOrNear(double p_a, double p_b, double p_error) {
  return std::isnan(p_a) ? std::isnan(p_b) : std::abs(p_a - p_b) <= p_error;
}

TEST(VoxelGrid, PlacesVoxelsAsCellsOfTheBox) {
  const Box box({10, 0, -3}, {14, 3, 3});
  for (const auto layers : {VoxelGrid::Layers::Upwards, VoxelGrid::Layers::Downwards}) {
    const VoxelGrid grid(Counted(24), {4, 3, 2}, box, layers);
    EXPECT_EQ(grid.VoxelSize(), Point(1, 1, 3));
    EXPECT_EQ(grid.Value(3, 1, 1), 3 + 4 + 12);
    const bool up = layers == VoxelGrid::Layers::Upwards;
    for (const auto filter : {Filter::Nearest, Filter::Linear}) {
      EXPECT_EQ(grid.Sample({13.5, 1.5, 1.5}, filter), up ? 19 : 7);
      EXPECT_EQ(grid.Sample({10, 0, -3}, filter), up ? 0 : 12); // values go on to the border
      EXPECT_TRUE(std::isnan(grid.Sample({14.01, 1, 0}, filter)));
    }
    EXPECT_NEAR(grid.Sample({11, 1, 0}), 0.5 + 4 * 0.5 + 6, 1e-12);
    EXPECT_EQ(grid.NearestCenter({11.2, 99, -0.1}), Point(11.5, 2.5, -1.5));
  }
  EXPECT_EQ(VoxelGrid::CellBounds({4, 3, 2}, {10.5, 0.5, -1.5}, {1, 1, 3}), box);
  EXPECT_EQ(VoxelGrid::CubicBounds({4, 2, 1}, 2), Box({-1, -0.5, -0.25}, {1, 0.5, 0.25}));
}

TEST(VoxelGrid, PlacesUnevenCells) {
  const Doubles depths = {0, -10, -30, -100};
  const VoxelGrid nodes(Counted(16), Doubles{1e6, 1e6 + 1}, Doubles{0, 2}, depths);
  EXPECT_EQ(nodes.Bounds(), Box({1e6, 0, -100}, {1e6 + 1, 2, 0}));
  EXPECT_EQ(nodes.VoxelSize(), Point(1, 2, 10));
  EXPECT_EQ(nodes.Knots(2), (Doubles{0, 0, -5, -10, -20, -30, -65, -100, -100}));
  EXPECT_EQ(nodes.Knots(0), (Doubles{1e6, 1e6, 1e6 + 0.5, 1e6 + 1, 1e6 + 1}));
  const VoxelGrid bounds(Counted(4), Doubles{0, 1}, Doubles{0, 1}, Doubles{0, 1, 10, 20, 30},
                         VoxelGrid::Positions::OfBounds);
  struct Case {
    const VoxelGrid& grid;
    Point at;
    double linear, nearest;
  };
  const Case cases[] = {{nodes, {1e6, 0, -100}, 12, 12},      {nodes, {1e6, 0, -65}, 10, 12},
                        {nodes, {1e6 + 0.25, 0, 0}, 0.25, 0}, {nodes, {1e6 + 1, 2, -20}, 9, 11},
                        {nodes, {1e6, 0, -66}, 10.057, 12},   {nodes, {1e6, 0, 0.1}, NAN, NAN},
                        {bounds, {0.5, 0.5, 0.2}, 0, 0},      {bounds, {0.5, 0.5, 1}, 0.5, 1},
                        {bounds, {0.5, 0.5, 5.5}, 1, 1},      {bounds, {0.5, 0.5, 20}, 2.5, 3}};
  for (const auto& [grid, at, linear, nearest] : cases) {
    EXPECT_TRUE(SameOrNear(grid.Sample(at), linear, 1e-3)) << at.z;
    EXPECT_TRUE(SameOrNear(grid.Sample(at, Filter::Nearest), nearest, 0)) << at.z;
  }
  EXPECT_EQ(nodes.NearestCenter({1e6 + 0.4, 9, -66}), Point(1e6, 2, -100));
  const VoxelGrid moved = nodes.MovedTo({Doubles{0, 1, 2, 3, 4}, nodes.Knots(1), nodes.Knots(2)});
  EXPECT_EQ(moved.Sample({3, 0, 0}), 1);
  EXPECT_EQ(moved.WithValues(Doubles(16, 7)).Sample({3, 0, 0}), 7);
}

TEST(VoxelGrid, TakesVolumesOfFilesIntoXYZ) {
  Io::Volume file;
  file.values = std::vector<std::int16_t>{0, 1, 2, 3, 4, -9};
  file.size = {3, 2, 1};
  file.spacing = {1, 2, 5};
  file.origin = {10, 20, 30};
  file.orientation = {{{0, 0, -1}, {1, 0, 0}, {0, 1, 0}}}; // i runs down, j along x
  file.noData = -9;
  file.unit = "HU";
  const VoxelGrid grid = file;
  EXPECT_EQ(grid.Size(), (VoxelGrid::Sizes{2, 1, 3}));
  EXPECT_EQ(grid.Bounds(), Box({9, 17.5, 27.5}, {13, 22.5, 30.5}));
  EXPECT_EQ(grid.unit, "HU");
  EXPECT_EQ(grid.Tilt(), 0);
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 2; ++j) {
      const auto at = file.Position(static_cast<double>(i), static_cast<double>(j), 0);
      EXPECT_TRUE(SameOrNear(grid.Sample({at[0], at[1], at[2]}, Filter::Nearest), file.Value(i, j, 0), 0)) << i << j;
    }
  file.orientation = {{{1, 0, 0}, {0, std::cos(0.2), std::sin(0.2)}, {0, -std::sin(0.2), std::cos(0.2)}}};
  EXPECT_NEAR(VoxelGrid(file).Tilt(), 0.2 * 180 / M_PI, 1e-9);
  EXPECT_THROW(VoxelGrid(file, 1), std::invalid_argument);
  file.size[2] = 0;
  EXPECT_THROW(VoxelGrid{file}, std::invalid_argument);
}

TEST(VoxelGrid, CoarsensToMeansOfPresentValues) {
  const VoxelGrid grid(std::vector<float>{1, 3, NAN, 5, 9}, {5, 1, 1}, Box({0, 0, 0}, {5, 1, 1}));
  const VoxelGrid coarse = grid.Coarsened(2);
  EXPECT_EQ(coarse.Values(), (std::vector<float>{2, 5, 9}));
  EXPECT_EQ(coarse.Knots(0), (Doubles{0, 1, 2, 3, 4, 4.5, 5}));
  EXPECT_EQ(grid.Coarsened(3).Values(), (std::vector<float>{2, 7}));
}

TEST(VoxelGrid, LeavesMissingValuesOutOfInterpolationAndRange) {
  const VoxelGrid grid(std::vector<float>{NAN, 3, 5, INFINITY}, {4, 1, 1}, Box({0, 0, 0}, {4, 1, 1}));
  EXPECT_TRUE(grid.HasMissing());
  EXPECT_EQ(std::pair(grid.Range().min, grid.Range().max), std::pair(3.0, 5.0));
  const std::pair<double, double> cases[] = {{0.9, NAN}, {1.1, 3}, {2, 4}, {2.9, 5}, {3.1, NAN}};
  for (const auto& [x, expected] : cases)
    EXPECT_EQ(std::isnan(expected), std::isnan(grid.Sample({x, 0.5, 0.5}))) << x;
  EXPECT_EQ(grid.Sample({1.1, 0.5, 0.5}), 3);
  EXPECT_EQ(grid.Sample({2, 0.5, 0.5}), 4);
}

TEST(VoxelGrid, TakesImagesOfBytesAndFloats) {
  const Box box({0, 0, 0}, {1, 1, 1});
  const auto bytes = ImageOf(VolumeImage::Byte1, {0, 51, 255});
  EXPECT_TRUE(std::isnan(VoxelGrid(bytes, box).Value(0, 0, 0)));
  EXPECT_EQ(VoxelGrid(bytes, box).Value(1, 0, 0), 0.2);
  const VoxelGrid zeros(bytes, box, VoxelGrid::Layers::Upwards, VoxelGrid::ZeroVoxels::AreZero);
  EXPECT_EQ(zeros.Value(0, 0, 0), 0);
  EXPECT_FALSE(zeros.HasMissing());
}

TEST(VoxelGrid, RefusesWhatIsNoGrid) {
  const Box box({0, 0, 0}, {1, 1, 1});
  const auto four = boost::make_shared<VolumeImage>(VolumeImage::Byte4, 1, 1, 1);
  const auto cut = ImageOf(VolumeImage::Byte1, {1, 2, 3});
  cut->Bytes().pop_back();
  const std::function<void()> cases[] = {
      VEK_CALL(VoxelGrid(Counted(7), {2, 2, 2}, box)),
      VEK_CALL(VoxelGrid(Counted(0), {0, 2, 2}, box)),
      VEK_CALL(VoxelGrid(Counted(4), {-2, -2, 1}, box)),
      VEK_CALL(VoxelGrid(Counted(1), {1 << 30, 1 << 30, 1 << 30}, box)),
      VEK_CALL(VoxelGrid(Counted(8), {2, 2, 2}, Box())),
      VEK_CALL(VoxelGrid(Counted(8), {2, 2, 2}, Box({0, 0, 0}, {1, 0, 1}))),
      VEK_CALL(VoxelGrid(Counted(8), {2, 2, 2}, Box({0, 0, 0}, {1, INFINITY, 1}))),
      [&] { VoxelGrid(boost::shared_ptr<const VolumeImage>(), box); },
      [&] { VoxelGrid(boost::make_shared<VolumeImage>(), box); },
      [&] { VoxelGrid(four, box); },
      [&] { VoxelGrid(cut, box); },
      [&] { VoxelGrid(Counted(2), Counted(2), Counted(1), Counted(1)); },
      VEK_CALL(VoxelGrid(Counted(12), Counted(2), Counted(2), Doubles{0, 2, 1})),
      VEK_CALL(VoxelGrid(Counted(8), {2, 2, 2}, box).MovedTo({})),
  };
  for (std::size_t i = 0; i < std::size(cases); ++i)
    EXPECT_THROW(cases[i](), std::invalid_argument) << i;
}

} // namespace
