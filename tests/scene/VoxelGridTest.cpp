#include "scene/VoxelGrid.h"

#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

namespace {

using Box = Types::BoundingBox_Base<double>;
using Point = Types::Vector3_Base<double>;
using Filter = VoxelGrid::Filter;

const float Nan = std::numeric_limits<float>::quiet_NaN();

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

TEST(VoxelGrid, LeavesMissingValuesOutOfInterpolationAndRange) {
  const VoxelGrid grid(std::vector<float>{Nan, 3, 5, INFINITY}, {4, 1, 1}, Box({0, 0, 0}, {4, 1, 1}));
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
      [&] {
        VoxelGrid(Counted(7), {2, 2, 2}, box);
      },
      [&] {
        VoxelGrid(Counted(0), {0, 2, 2}, box);
      },
      [&] {
        VoxelGrid(Counted(4), {-2, -2, 1}, box);
      },
      [&] {
        VoxelGrid(Counted(1), {1 << 30, 1 << 30, 1 << 30}, box);
      },
      [&] {
        VoxelGrid(Counted(8), {2, 2, 2}, Box());
      },
      [&] {
        VoxelGrid(Counted(8), {2, 2, 2}, Box({0, 0, 0}, {1, 0, 1}));
      },
      [&] {
        VoxelGrid(Counted(8), {2, 2, 2}, Box({0, 0, 0}, {1, INFINITY, 1}));
      },
      [&] { VoxelGrid(boost::shared_ptr<const VolumeImage>(), box); },
      [&] { VoxelGrid(boost::make_shared<VolumeImage>(), box); },
      [&] { VoxelGrid(four, box); },
      [&] { VoxelGrid(cut, box); },
  };
  for (std::size_t i = 0; i < std::size(cases); ++i)
    EXPECT_THROW(cases[i](), std::invalid_argument) << i;
}

} // namespace
