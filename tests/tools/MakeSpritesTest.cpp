#include "tests/support/Test.h"

namespace {

int RunTool(const std::string& p_arguments) {
  return std::system((std::string(VEK_MAKE_SPRITES) + " " + p_arguments + " 2> /dev/null").c_str());
}

} // namespace

TEST(MakeSprites, WritesTheImagesThatAreKeptInTheTree) {
  const TempFolder folder;
  ASSERT_EQ(RunTool("'" + folder.Path().string() + "'"), 0);
  for (const char* const word : {"rect", "ellipse", "diamond", "hexagon", "triangle", "cross", "xCross", "star"}) {
    const std::string name = std::string("symbol_") + word + ".png";
    const QImage made(folder.File(name).c_str()), kept((VEK_SOURCE_DIR "/sprites/" + name).c_str());
    ASSERT_FALSE(made.isNull()) << word;
    EXPECT_TRUE(SameImage(made, kept)) << word;
  }
}

TEST(MakeSprites, FailsWithoutAFolder) {
  EXPECT_NE(RunTool(""), 0);
  EXPECT_NE(RunTool("no/such/folder"), 0);
}
