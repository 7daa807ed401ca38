#include "apps/gallery/VectorGrid.h"
#include "apps/gallery/TextTable.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;

namespace {

std::string ReadError(const std::string& p_text) {
  std::istringstream stream(p_text);
  return ErrorOf<InputError>([&] { ReadVectorGrid(stream, "flow.csv"); });
}

} // namespace

TEST(VectorGrid, ReadsItsFile) {
  std::string text = "# dims 2 2 2 origin 1 2 3 spacing 0.5 1 2\nw,s,u,v\n";
  for (int i = 0; i < 8; ++i)
    text += std::to_string(30 + i) + ",x," + std::to_string(10 + i) + ',' + std::to_string(20 + i) + '\n';
  std::istringstream stream(text);
  const Scene::VectorField grid = ReadVectorGrid(stream, "flow.csv");
  EXPECT_EQ(grid.Node(1, 0, 0), Point(11, 21, 31));
  EXPECT_EQ(grid.Node(0, 1, 0), Point(12, 22, 32));
  EXPECT_EQ(grid.Node(0, 0, 1), Point(14, 24, 34));
  EXPECT_EQ(grid.Bounds().Min(), Point(1, 2, 3));
  EXPECT_EQ(grid.Bounds().Max(), Point(1.5, 3, 5));
}

TEST(VectorGrid, NamesWhatIsWrongWithItsFile) {
  const std::string head = "flow.csv:1: expected \"# dims nx ny nz origin x y z spacing dx dy dz\", got ";
  const std::string rows = "1,1,1\n1,1,1\n1,1,1\n1,1,1\n1,1,1\n1,1,1\n1,1,1\n";
  for (const std::string line : {"", "u,v,w", "# dims 2 2", "# dims 2 2 1", "# dims 2 2 2.5", "# dims 4096 4096 4096",
                                 "# dims 2 2 2 spacing 1 0 1", "# dims 2 2 2 scale 1 1 1"})
    EXPECT_EQ(ReadError(line + "\nu,v,w\n"), head + '"' + line + '"');
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"no table", "# dims 2 2 2\n", "flow.csv: expected a header line with the names of the columns, got nothing"},
      {"no w", "# dims 2 2 2\nu,v\n", "flow.csv:2: expected a column named \"w\", got \"u,v\""},
      {"a word", "# dims 2 2 2\nu,v,w\n1,1,1\n1,x,1\n", "flow.csv:4: expected a number for \"v\", got \"x\""},
      {"too few", "# dims 2 2 2\nu,v,w\n" + rows, "flow.csv:9: expected 8 rows, got \"the end after 7\""},
      {"too many", "# dims 2 2 2\nu,v,w\n" + rows + "1,1,1\n5,1,1\n",
       "flow.csv:11: expected the end after 8 rows, got \"5\""},
  };
  for (const auto& [name, text, error] : cases)
    EXPECT_EQ(ReadError(text), error) << name;
}
