
#include "tests/support/Test.h"

#include <QTemporaryDir>

namespace {

int RunTool(const std::string& p_arguments) {
  return std::system((std::string(VEK_MAKE_SPRITES) + " " + p_arguments + " 2> /dev/null").c_str());
}

} // namespace

TEST(MakeSprites, WritesTheImagesThatAreKeptInTheTree) {
  const QTemporaryDir folder;
  ASSERT_EQ(RunTool("'" + folder.path().toStdString() + "'"), 0);
  for (const char* const word : {"rect", "ellipse", "diamond", "hexagon", "triangle", "cross", "xCross", "star"}) {
    const QString name = QString("/symbol_%1.png").arg(word);
    const QImage made(folder.path() + name), kept(VEK_SOURCE_DIR "/sprites" + name);
    ASSERT_FALSE(made.isNull()) << word;
    EXPECT_TRUE(Vek::Test::SameImage(made, kept)) << word;
  }
}

TEST(MakeSprites, FailsWithoutAFolder) {
  EXPECT_NE(RunTool(""), 0);
  EXPECT_NE(RunTool("no/such/folder"), 0);
}
