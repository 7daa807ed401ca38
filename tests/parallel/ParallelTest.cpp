// Images that several processes draw together, compared with those of one figure with all data. Run with 1, 2, 4 and 7
// processes.

#include "tests/support/Figures.h"
#include "tests/support/Test.h"

#include "io/GridSplit.h"
#include "parallel/Compositor.h"
#include "parallel/FigureDescription.h"
#include "parallel/Processes.h"
#include "scene/Figure.h"

namespace {

using namespace Vek::Chart::Parallel;
using Io::GridSplit;
using Box = Types::BoundingBox_Base<double>;
using Size = Types::Size;

const Size PageSize(400, 260);

/// Process 0 has the image, the others none. Pixels that differ by more than a tolerance in a channel, and the largest
/// difference.
std::pair<int, int> Differences(const QImage& p_a, const QImage& p_b, int p_tolerance) {
  EXPECT_EQ(p_a.size(), p_b.size());
  int count = 0, most = 0;
  for (int y = 0; y < p_a.height() && y < p_b.height(); ++y)
    for (int x = 0; x < p_a.width() && x < p_b.width(); ++x) {
      const QRgb a = p_a.pixel(x, y), b = p_b.pixel(x, y);
      const int difference =
          std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
      count += difference > p_tolerance ? 1 : 0;
      most = std::max(most, difference);
    }
  return {count, most};
}

/// Arrows at the nodes of a grid, of which a process has a block.
struct Arrows {
  std::vector<Point> positions, vectors;

  explicit Arrows(const GridSplit::Block& p_block) {
    for (std::size_t k = 0; k < p_block.count[2]; ++k)
      for (std::size_t j = 0; j < p_block.count[1]; ++j)
        for (std::size_t i = 0; i < p_block.count[0]; ++i) {
          const auto x = static_cast<double>(p_block.first[0] + i), y = static_cast<double>(p_block.first[1] + j),
                     z = static_cast<double>(p_block.first[2] + k);
          positions.emplace_back(x, y, z);
          vectors.emplace_back(std::sin(0.7 * y + z), std::cos(0.5 * x), 0.5 * std::sin(0.9 * x + 0.3 * y));
        }
  }
};

constexpr GridSplit::Sizes ArrowGrid{11, 8, 5};

FigureDescription ArrowDescription(double p_azimuth = -30) {
  FigureDescription description;
  description.title = "Arrows";
  description.axisTitles = {"x in km", "y in km", "z in km"};
  description.colorTitle = "Speed in m/s";
  description.notes = {"a note"};
  description.extent = Box({-1, -1, -1}, {11, 8, 5});
  description.values = {0, 1.5};
  description.azimuth = p_azimuth;
  return description;
}

Figure ArrowFigure(const FigureDescription& p_description, const GridSplit::Block& p_block) {
  const Arrows arrows(p_block);
  Figure figure = p_description.MakeFigure();
  p_description.Apply(
      figure.Quiver(arrows.positions, arrows.vectors).ColorByLength().Typical(1.4, 0.08).LengthTitle("Speed"));
  return figure;
}

const GridSplit::Block WholeGrid{{}, ArrowGrid};

/// The cells around the nodes of a block.
Box BoxOf(const GridSplit::Block& p_block) {
  const auto corner = [&](bool p_isHigh) {
    const auto at = [&](std::size_t p_axis) {
      return static_cast<double>(p_block.first[p_axis] + (p_isHigh ? p_block.count[p_axis] : 0)) - 0.5;
    };
    return Point(at(0), at(1), at(2));
  };
  return p_block.Empty() ? Box() : Box(corner(false), corner(true));
}

class ParallelPixels : public ::testing::Test {
public:
  const Compositor compositor{Processes(MPI_COMM_WORLD)};
  const Processes& all = compositor.Group();
  const bool isFirst = all.Rank() == 0;

  GridSplit::Block OwnOf(const GridSplit::Sizes& p_cells) const {
    return GridSplit(p_cells, all.Count()).At(all.Rank());
  }
  /// The composited image has at most `p_most` pixels that differ from the expected one by more than a tolerance.
  void Expect(Figure& p_own, const Box& p_block, const std::function<Figure()>& p_whole, int p_tolerance, int p_most,
              const std::string& p_name) const {
    const QImage image = compositor.Image(p_own, p_block, PageSize);
    EXPECT_EQ(image.isNull(), !isFirst);
    if (!isFirst)
      return;
    const QImage expected = p_whole().Image(PageSize);
    const auto [count, most] = Differences(image, expected, p_tolerance);
    EXPECT_LE(count, p_most) << p_name << ": largest difference " << most;
    EXPECT_LE(most, 8) << p_name;
    if (const char* const folder = std::getenv("VEK_SHOWN_PARALLEL"); folder != nullptr) {
      const QString path = QString("%1/%2-%3").arg(folder, QString::fromStdString(p_name)).arg(all.Count());
      image.save(path + ".png");
      expected.save(path + "-whole.png");
    }
  }
};

TEST_F(ParallelPixels, OpaqueImageOfOneFigure) {
  const auto own = OwnOf(ArrowGrid);
  for (const double azimuth : {-30.0, 100.0}) {
    const FigureDescription description = ArrowDescription(azimuth);
    Figure figure = ArrowFigure(description, own);
    Expect(
        figure, BoxOf(own), [&] { return ArrowFigure(description, WholeGrid); }, 0, 0, "arrows");
  }
}

TEST_F(ParallelPixels, ProcessesWithNothingToDraw) {
  const FigureDescription description = ArrowDescription();
  const bool isOnly = all.Rank() == all.Count() - 1;
  Figure figure = ArrowFigure(description, isOnly ? WholeGrid : GridSplit::Block());
  Expect(
      figure, isOnly ? BoxOf(WholeGrid) : Box(), [&] { return ArrowFigure(description, WholeGrid); }, 0, 0, "one");
}

constexpr GridSplit::Sizes VolumeGrid{18, 14, 10};
const Box VolumeBox({-0.5, -0.5, -0.5}, {17.5, 13.5, 9.5});

/// Of all voxels.
std::array<std::vector<double>, 3> VolumeKnots() {
  std::array<Doubles, 3> bounds;
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (std::size_t i = 0; i <= VolumeGrid[axis]; ++i)
      bounds[axis].push_back(static_cast<double>(i) - 0.5);
  return VoxelGrid::KnotsOf(bounds[0], bounds[1], bounds[2], VoxelGrid::Positions::OfBounds);
}

bool IsIn(const Box& p_box, const Point& p_point) {
  Box all = p_box;
  all += p_point;
  return all == p_box;
}

/// A volume with clouds in different colours, and balls in it. A block has two voxels of its neighbours on each side.
Figure VolumeFigure(const FigureDescription& p_description, const GridSplit::Block& p_block) {
  Figure figure = p_description.MakeFigure();
  if (p_block.Empty())
    return figure;
  std::array<int, 3> sizes{};
  std::array<double, 3> first{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::size_t begin = p_block.first[axis] - std::min<std::size_t>(p_block.first[axis], 2);
    const std::size_t end = std::min(p_block.first[axis] + p_block.count[axis] + 2, VolumeGrid[axis]);
    first[axis] = static_cast<double>(begin);
    sizes[axis] = static_cast<int>(end - begin);
  }
  Doubles values;
  for (int k = 0; k < sizes[2]; ++k)
    for (int j = 0; j < sizes[1]; ++j)
      for (int i = 0; i < sizes[0]; ++i)
        values.push_back(0.5 + 0.5 * std::sin(0.9 * (i + first[0])) * std::cos(0.8 * (j + first[1])) *
                                   std::sin(1.1 * (k + first[2]) + 0.5));
  const Point low(first[0] - 0.5, first[1] - 0.5, first[2] - 0.5);
  const Box box(low, low + Point(sizes[0], sizes[1], sizes[2]));
  auto& volume = p_description.Apply(figure.Volume(VoxelGrid(values, sizes, box)));
  volume.OpacityBy({{0, 0}, {0.45, 0}, {1, 0.9}}).SamplesPerVoxel(4).Block(BoxOf(p_block), VolumeKnots());
  std::vector<Point> balls;
  for (const Point& ball : {Point(3, 3, 3), Point(14, 10, 8), Point(9, 7, 1)})
    if (IsIn(BoxOf(p_block), ball))
      balls.push_back(ball);
  if (!balls.empty())
    figure.Scatter(balls).Color(Qt::red).Diameter(0.06);
  return figure;
}

TEST_F(ParallelPixels, VolumesInOrderFromEverySide) {
  const auto own = OwnOf(VolumeGrid);
  const std::vector<std::tuple<double, double, bool>> views{{1, 1, false},    {91, 10, false}, {200, -40, false},
                                                            {-60, 89, false}, {-30, 30, true}, {120, -70, true}};
  for (const auto& [azimuth, elevation, isParallel] : views) {
    FigureDescription description;
    description.extent = VolumeBox;
    description.values = {0, 1};
    description.azimuth = azimuth;
    description.elevation = elevation;
    description.isParallel = isParallel;
    Figure figure = VolumeFigure(description, own);
    const std::string name = "volume" + std::to_string(static_cast<int>(azimuth));
    // Lit samples at silhouettes turn with the last bits of their gradient.
    Expect(
        figure, BoxOf(own),
        [&] {
          return VolumeFigure(description, {{}, VolumeGrid});
        },
        2, 200, name);
  }
}

/// Slices through an uneven volume, two of them at faces between blocks.
Figure SlicesFigure(const GridSplit::Block& p_block) {
  std::array<Doubles, 3> all;
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (std::size_t i = 0; i <= VolumeGrid[axis]; ++i)
      all[axis].push_back(static_cast<double>(i) + (axis == 2 ? 0.02 * static_cast<double>(i * i) : 0));
  FigureDescription description;
  description.extent = Box({0, 0, 0}, {all[0].back(), all[1].back(), all[2].back()});
  description.values = {-1, 1};
  Figure figure = description.MakeFigure();
  if (p_block.Empty())
    return figure;
  std::array<Doubles, 3> own;
  Point low, high;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto begin = static_cast<std::ptrdiff_t>(p_block.first[axis]);
    const auto end = begin + static_cast<std::ptrdiff_t>(p_block.count[axis]);
    (&low.x)[axis] = all[axis][static_cast<std::size_t>(begin)];
    (&high.x)[axis] = all[axis][static_cast<std::size_t>(end)];
    own[axis] = {all[axis].begin() + begin - std::min<std::ptrdiff_t>(begin, 1),
                 all[axis].begin() + std::min(end + 2, static_cast<std::ptrdiff_t>(all[axis].size()))};
  }
  Doubles values;
  for (const double z : own[2])
    for (const double y : own[1])
      for (const double x : own[0])
        values.push_back(std::sin(0.9 * x) * std::cos(0.8 * y + z));
  auto& slices = description.Apply(figure.Slices(VoxelGrid(values, own[0], own[1], own[2])));
  slices.Block(Box(low, high), VoxelGrid::KnotsOf(all[0], all[1], all[2]));
  slices.At(0, all[0][9]).At(1, all[1][7]).At(2, 3.3).At({{9, 7, 6}, {1, 2, 3}});
  return figure;
}

TEST_F(ParallelPixels, SlicesOfOneFigure) {
  Figure figure = SlicesFigure(OwnOf(VolumeGrid));
  Expect(
      figure, Box(),
      [&] {
        return SlicesFigure({{}, VolumeGrid});
      },
      1, 0, "slices");
}

/// A veil in each of the first four processes, since a figure blends four layers, one behind the other, and something
/// opaque in the middle of the last process.
Figure Veils(int p_first, int p_end, int p_count) {
  FigureDescription description;
  description.extent = Box({0, 0, 0}, {1, 4, 1});
  description.azimuth = 10;
  Figure figure = description.MakeFigure();
  for (int i = p_first; i < p_end; ++i) {
    const double y = 4 * (i + 0.5) / p_count, right = 1 - 0.1 * i;
    const std::vector<Point> corners{{0, y, 0}, {right, y, 0}, {right, y, 1}, {0, y, 1}};
    if (i < 4)
      figure.Mesh(corners, {{0, 1, 2}, {0, 2, 3}}).Color(QColor::fromHsv(50 * i, 255, 255)).SetOpacity(0.4);
    if (i == p_count - 1)
      figure.Scatter(std::vector<Point>{{0.5, y, 0.5}}).Color(Qt::black).Diameter(0.1);
  }
  return figure;
}

TEST_F(ParallelPixels, HalfTransparentPlotsInOrder) {
  const int count = all.Count();
  Figure figure = Veils(all.Rank(), all.Rank() + 1, count);
  const Box own({0, 4.0 * all.Rank() / count, 0}, {1, 4.0 * (all.Rank() + 1) / count, 1});
  Expect(
      figure, own, [&] { return Veils(0, count, count); }, 4, 0, "veils");
}

TEST_F(ParallelPixels, FailureOfOneProcessEndsAll) {
  const int failing = all.Count() - 1;
  const std::string process = "process " + std::to_string(failing) + " of " + std::to_string(all.Count()) + ": ";
  const auto fail = [&] {
    if (all.Rank() == failing)
      throw std::runtime_error("no data");
  };
  EXPECT_EQ(ErrorOf<ProcessError>([&] { all.Together(fail); }), process + "no data");
  EXPECT_EQ(
      ErrorOf<ProcessError>([&] { all.Together([&] { all.Rank() == failing ? throw std::bad_alloc() : void(); }); }),
      process + "not enough memory");
  Figure figure = ArrowFigure(ArrowDescription(), WholeGrid);
  figure.SetTicks(0, [&](double p_low, double p_high, std::size_t p_most) {
    fail();
    return Ticks::Linear(p_low, p_high, p_most);
  });
  EXPECT_EQ(ErrorOf<ProcessError>([&] { compositor.Image(figure, {}, PageSize); }), process + "no data");
  EXPECT_FALSE(ErrorOf<ProcessError>([&] { compositor.Image(figure, {}, {0, 5}); }).empty());
}

TEST_F(ParallelPixels, DescriptionOfProcess0) {
  FigureDescription description;
  if (isFirst) {
    description = ArrowDescription(12);
    description.subtitle = "Größe";
    description.theme = Theme::Dark();
    description.colorMap = "magma";
    description.camera = Camera();
    description.camera->distance = 7;
  }
  const FigureDescription got = FigureDescription::Broadcast(all, description);
  EXPECT_EQ(got.subtitle, "Größe");
  EXPECT_EQ(got.axisTitles[2], "z in km");
  EXPECT_EQ(got.theme.backgroundTop, Theme::Dark().backgroundTop);
  EXPECT_EQ(got.colorMap, "magma");
  EXPECT_EQ(got.camera->distance, 7);
  EXPECT_EQ(got.azimuth, 12);
  EXPECT_EQ(got.notes, Notes{"a note"});
  EXPECT_EQ(got.extent, ArrowDescription().extent);
}

TEST_F(ParallelPixels, ReductionsIgnoreWhatIsEmpty) {
  const double rank = all.Rank(), last = all.Count() - 1;
  EXPECT_EQ(all.Union(isFirst && last > 0 ? Box() : Box({rank, -rank, 0}, {rank, 2, rank})),
            Box({std::min(1.0, last), -last, 0}, {last, 2, last}));
  EXPECT_TRUE(all.Union(Box()).Empty());
  EXPECT_TRUE(all.Union(Processes::Range()).Empty());
  EXPECT_EQ(all.Sum({rank, 1}), (std::vector<double>{last * (last + 1) / 2, last + 1}));
  EXPECT_TRUE(all.Any(rank == last));
}

} // namespace
