#include "apps/gallery/IndexPage.h"
#include "apps/gallery/MapFrame.h"
#include "apps/gallery/Options.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/Rendering.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;

namespace {

std::string UsageErrorOf(const std::vector<std::string>& p_arguments) {
  return ErrorOf<UsageError>([&] { ParseOptions(p_arguments, {}); });
}

} // namespace

TEST(MapFrame, WrapsLongitudesIntoTheMap) {
  const MapFrame world(-180, 180, -80, 84);
  EXPECT_TRUE(world.IsGlobal());
  EXPECT_EQ(world.Place(377.5, 2).x, 17.5);
  EXPECT_EQ(world.Place(190, 2).x, -170);
  EXPECT_EQ(world.Place(180, 2).x, 180) << "the eastern border is not folded onto the western one";
  EXPECT_FALSE(world.Contains(0, 85));

  const MapFrame part(350, 370, 50, 70);
  EXPECT_FALSE(part.IsGlobal());
  EXPECT_NEAR(part.Place(-5, 60).x, -90, 1e-9);
  EXPECT_NEAR(part.Place(0, 61).y, 36, 1e-9) << "at 60 degrees a degree of latitude is twice one of longitude";
  EXPECT_TRUE(part.Contains(5, 60));
  EXPECT_FALSE(part.Contains(15, 60));
}

TEST(Palettes, RunFromEndToEndAndGrowLighter) {
  EXPECT_EQ(Palettes::Viridis().front(), QColor(0x440154));
  EXPECT_EQ(Palettes::Magma(1, 0).front(), QColor(0xFCFDBF));
  const auto lightness = [](const QColor& p_color) {
    return 0.2126 * p_color.redF() + 0.7152 * p_color.greenF() + 0.0722 * p_color.blueF();
  };
  for (const auto& colors : {Palettes::Viridis(), Palettes::Inferno(), Palettes::Magma(), Palettes::Plasma()})
    for (std::size_t i = 16; i < colors.size(); i += 16)
      EXPECT_GT(lightness(colors[i]), lightness(colors[i - 16])) << i;
  const std::vector<QColor> sampled =
      Palettes::Sampled({{0, 0x000000}, {1, 0x640000}, {1, 0x00FE00}, {2, 0x0000FE}}, 5);
  EXPECT_EQ(sampled, (std::vector<QColor>{{0, 0, 0}, {50, 0, 0}, {100, 0, 0}, {0, 127, 127}, {0, 0, 254}}));
}

TEST(Palettes, LightnessIsThatOfCie) {
  const std::pair<QColor, double> cases[] = {
      {Qt::black, 0},     {QColor(1, 1, 1), 0.2742}, {QColor(119, 119, 119), 50.0344},
      {Qt::red, 53.2408}, {Qt::green, 87.7347},      {Qt::blue, 32.2970},
      {Qt::white, 100}};
  for (const auto& [color, lightness] : cases)
    EXPECT_NEAR(Palettes::Lightness(color), lightness, 0.01) << color.name().toStdString();
}

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
  const std::vector<PictureEntry> entries = {{"a", "A & B", "x < y & \"z\"", "apps/gallery/pictures/A.cpp", nullptr}};
  const TempFolder folder;
  EXPECT_FALSE(CopySources(entries, folder.File("data"), folder.File("out")));
  const std::string page = IndexPage(entries, false);
  EXPECT_NE(page.find("<a href=\"a.png\"><img src=\"a.png\" alt=\"A &amp; B\""), std::string::npos);
  EXPECT_NE(page.find("<p>x &lt; y &amp; &quot;z&quot;</p>"), std::string::npos);
  EXPECT_EQ(page.find("href=\"sources"), std::string::npos);

  std::filesystem::create_directories(folder.File("data/apps/gallery/pictures"));
  folder.Write("data/apps/gallery/pictures/A.cpp", "int main();");
  EXPECT_TRUE(CopySources(entries, folder.File("data"), folder.File("out")));
  EXPECT_EQ(std::filesystem::file_size(folder.File("out/sources/A.cpp")), 11u);
  EXPECT_NE(IndexPage(entries, true).find("href=\"sources/A.cpp\">apps/gallery/pictures/A.cpp</a>"), std::string::npos);
}
