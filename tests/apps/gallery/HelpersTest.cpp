#include "apps/gallery/IndexPage.h"
#include "apps/gallery/Options.h"
#include "apps/gallery/Rendering.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;

namespace {

std::string UsageErrorOf(const std::vector<std::string>& p_arguments) {
  return ErrorOf<UsageError>([&] { ParseOptions(p_arguments, {}); });
}

} // namespace

TEST(Options, TakesValuesAndRefusesTheRest) {
  const Options options =
      ParseOptions({"--out", "pictures", "--only", "wind", "--size", "320x200", "--winds", "w.csv"}, {});
  EXPECT_EQ(options.out, "pictures");
  EXPECT_EQ(options.only, std::vector<std::string>{"wind"});
  EXPECT_TRUE(options.size == Types::Size(320, 200));
  EXPECT_EQ(options.inputs.winds, "w.csv");
  EXPECT_TRUE(ParseOptions({"--help"}, {}).help);

  EXPECT_EQ(UsageErrorOf({"wind"}), "unknown option 'wind'; --help lists what there is");
  EXPECT_EQ(UsageErrorOf({"--out"}), "--out needs a value: DIR");
  EXPECT_EQ(UsageErrorOf({"--only", "tides"}).find("there is no picture 'tides'; there are: wind"), 0u);
  for (const std::string size : {"320", "0x0", "320x", "x200", "320x200x1", "4097x100", "-20x200", "3e2x200", ""})
    EXPECT_NE(UsageErrorOf({"--size", size}), "") << size;
}

TEST(IndexPage, ShowsEachPictureWithTitleCaptionAndSource) {
  const std::vector<PictureEntry> entries = {
      {"a", "A & B", "x < y & \"z\" --hdr", "apps/gallery/pictures/A.cpp", nullptr}};
  const TempFolder folder;
  EXPECT_FALSE(CopySources(entries, folder.File("data"), folder.File("out")));
  const std::string page = IndexPage(entries, false);
  EXPECT_NE(page.find("<a href=\"a.png\"><img src=\"a.png\" alt=\"A &amp; B\""), std::string::npos);
  EXPECT_NE(page.find("<p>x &lt; y &amp; &quot;z&quot; <code>--hdr</code></p>"), std::string::npos);
  EXPECT_EQ(page.find("href=\"sources"), std::string::npos);

  std::filesystem::create_directories(folder.File("data/apps/gallery/pictures"));
  folder.Write("data/apps/gallery/pictures/A.cpp", "int main();");
  EXPECT_TRUE(CopySources(entries, folder.File("data"), folder.File("out")));
  EXPECT_EQ(std::filesystem::file_size(folder.File("out/sources/A.cpp")), 11u);
  EXPECT_NE(IndexPage(entries, true).find("href=\"sources/A.cpp\">apps/gallery/pictures/A.cpp</a>"), std::string::npos);
}
