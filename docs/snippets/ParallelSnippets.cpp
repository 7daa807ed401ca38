#include "io/GridSplit.h"
#include "parallel/Compositor.h"
#include "parallel/FigureDescription.h"
#include "parallel/Processes.h"

#include "tests/support/Shown.h"
#include "tests/support/Test.h"

namespace {

using namespace Vek::Chart::Parallel;
using Box = Types::BoundingBox_Base<double>;
using Position = std::array<double, 3>;

TEST(ParallelSnippets, Processes) {
  //! [Processes]
  const Processes all(MPI_COMM_WORLD);
  const Processes::Range own(all.Rank(), all.Rank() + 0.5); // of the values that this process has
  const Processes::Range range = all.Union(own);            // of all values
  //! [Processes]
  EXPECT_EQ(range.max, all.Count() - 0.5);
}

TEST(ParallelSnippets, GridSplit) {
  //! [GridSplit]
  const Processes all(MPI_COMM_WORLD);
  const Io::GridSplit split({360, 180, 50}, all.Count());
  const Io::GridSplit::Block own = split.At(all.Rank());
  //! [GridSplit]
  EXPECT_GT(own.count[0], 0u);
}

/// A share of a spiral.
std::pair<std::vector<Position>, std::vector<Position>> ReadShare(int p_share, int p_shares) {
  std::vector<Position> positions, vectors;
  for (int i = p_share; i < 200; i += p_shares) {
    const double angle = 0.2 * i, height = 0.01 * i;
    positions.push_back({std::cos(angle) * (3 - height), std::sin(angle) * (3 - height), height});
    vectors.push_back({-std::sin(angle), std::cos(angle), 0.3 * height});
  }
  return {positions, vectors};
}

TEST(ParallelSnippets, Compositor) {
  //! [Compositor]
  const Compositor compositor(MPI_COMM_WORLD); // every process runs these lines
  const Processes& all = compositor.Group();
  std::vector<Position> positions, vectors;
  all.Together([&] { std::tie(positions, vectors) = ReadShare(all.Rank(), all.Count()); });

  FigureDescription description;
  description.title = "An updraft";
  description.extent = Box({-3.5, -3.5, 0}, {3.5, 3.5, 2.5});
  description.values = {1, 1.2};
  description.colorTitle = "Speed in m/s";
  description = FigureDescription::Broadcast(all, description); // that of process 0
  Scene::Figure figure = description.MakeFigure();
  description.Apply(figure.Quiver(positions, vectors).ColorByLength().Typical(1.1, 0.06));

  const QImage image = compositor.Image(figure, Box(), {640, 400}); // in process 0
  //! [Compositor]
  EXPECT_EQ(image.isNull(), all.Rank() != 0);
  if (all.Rank() == 0)
    Shown(image, "Compositor");
}

} // namespace
