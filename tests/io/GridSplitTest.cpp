#include "io/GridSplit.h"
#include "tests/support/Test.h"

using Io::GridSplit;

TEST(GridSplit, CoversEachCellOnce) {
  for (const GridSplit::Sizes& cells : {GridSplit::Sizes{7, 5, 3}, {1, 1, 4}, {20, 1, 1}})
    for (int count = 1; count <= 13; ++count) {
      const GridSplit split(cells, count);
      EXPECT_EQ(split.Blocks()[0] * split.Blocks()[1] * split.Blocks()[2], static_cast<std::size_t>(count));
      std::vector<int> seen(cells[0] * cells[1] * cells[2]);
      for (int block = 0; block < count; ++block) {
        const auto [first, size] = split.At(block);
        for (std::size_t k = first[2]; k < first[2] + size[2]; ++k)
          for (std::size_t j = first[1]; j < first[1] + size[1]; ++j)
            for (std::size_t i = first[0]; i < first[0] + size[0]; ++i)
              ++seen.at(i + cells[0] * (j + cells[1] * k));
      }
      EXPECT_EQ(seen, std::vector<int>(seen.size(), 1)) << count;
    }
  EXPECT_EQ(GridSplit({100, 10, 10}, 4).Blocks(), (GridSplit::Sizes{4, 1, 1}));
  EXPECT_EQ(GridSplit({10, 10, 10}, 8).Blocks(), (GridSplit::Sizes{2, 2, 2}));
}
