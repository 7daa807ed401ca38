#include "apps/gallery/Rendering.h"
#include "scene/Theme.h"

#include "tests/apps/gallery/PictureTest.h"

#include <sys/wait.h>

#include <cmath>

using namespace Vek::Chart::Gallery;

namespace {

QImage Draw(const std::string& p_name, Types::Size p_size, const Inputs& p_inputs = DataInputs()) {
  for (const PictureEntry& entry : Pictures())
    if (entry.name == p_name)
      return RenderPicture(entry, p_inputs, p_size);
  throw std::logic_error("no picture " + p_name);
}

int Distance(const QColor& p_a, const QColor& p_b) {
  return std::abs(p_a.red() - p_b.red()) + std::abs(p_a.green() - p_b.green()) + std::abs(p_a.blue() - p_b.blue());
}

struct Outcome {
  int status = -1;
  std::string out;
  std::string err;
};

std::string Contents(const std::string& p_path) {
  std::ifstream stream(p_path);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// Runs the gallery program and waits for its end.
Outcome RunGallery(const TempFolder& p_folder, const std::string& p_arguments) {
  const std::string out = p_folder.File("stdout.txt");
  const std::string err = p_folder.File("stderr.txt");
  const int result = std::system((VEK_GALLERY " " + p_arguments + " >'" + out + "' 2>'" + err + "'").c_str());
  return {WIFEXITED(result) ? WEXITSTATUS(result) : -1, Contents(out), Contents(err)};
}

constexpr Types::Size Small(480, 300);

/// A portable float map of 8 × 4 grey pixels, one of which may be brighter.
std::string FloatMap(float p_brightest) {
  std::string map = "PF\n8 4\n-1.0\n";
  for (int i = 0; i < 8 * 4 * 3; ++i) {
    const float value = i / 3 == 2 * 8 + 3 ? p_brightest : 1.0F;
    map.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  return map;
}

} // namespace

TEST(GalleryPixels, EveryPictureIsFilledFramedAndUnlikeTheOthers) {
  const Vek::Chart::Scene::Theme theme = Vek::Chart::Scene::Theme::Dark();
  std::vector<QImage> images;
  for (const PictureEntry& entry : Pictures()) {
    const ReportCapture reports;
    const QImage image = RenderPicture(entry, DataInputs(), Small);
    EXPECT_EQ(reports.Texts(), std::vector<std::string>{}) << entry.name;
    ASSERT_EQ(image.size(), QSize(480, 300)) << entry.name;
    EXPECT_LT(Distance(image.pixelColor(0, 0), theme.backgroundTop), 6) << entry.name;
    EXPECT_LT(Distance(image.pixelColor(479, 299), theme.backgroundBottom), 6) << entry.name;
    int drawn = 0, title = 0;
    std::set<QRgb> colors;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x) {
        const QColor color = image.pixelColor(x, y);
        drawn += Distance(color, image.pixelColor(0, y)) > 24 ? 1 : 0;
        title += y < 30 && x < 120 && Distance(color, theme.title) < 60 ? 1 : 0;
        colors.insert(qRgb(color.red() / 32, color.green() / 32, color.blue() / 32));
      }
    EXPECT_GT(drawn, image.width() * image.height() / 12) << entry.name;
    EXPECT_GT(title, 40) << entry.name; // the shortest is "Cuts"
    EXPECT_GT(colors.size(), 24U) << entry.name;
    for (const QImage& other : images) {
      int differing = 0;
      for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
          differing += Distance(image.pixelColor(x, y), other.pixelColor(x, y)) > 24 ? 1 : 0;
      EXPECT_GT(differing, image.width() * image.height() / 12) << entry.name;
    }
    images.push_back(image);
    EXPECT_TRUE(fs::exists(std::string(VEK_SOURCE_DIR) + "/" + entry.source)) << entry.source;
    EXPECT_FALSE(entry.title.empty() || entry.caption.empty()) << entry.name;
  }
}

/// Under the same light from everywhere, all spheres have its colour times what they reflect. A bright point is seen in
/// the upper row alone, by the matte sphere as well, and most on its left half.
TEST(HdrPixels, SpheresReflectTheLightOfTheImage) {
  const TempFolder folder;
  Inputs inputs = DataInputs();
  const auto sphere = [](const QImage& p_image, int p_column, int p_row, double p_right) {
    const QColor color =
        p_image.pixelColor(static_cast<int>(148 + 208 * p_column + 100 * p_right), 999 - (p_row == 0 ? 726 : 474));
    EXPECT_EQ(color.red(), color.blue());
    return color.red();
  };
  inputs.hdr = folder.Write("even.pfm", FloatMap(1));
  const QImage even = Draw("hdr", {1600, 1000}, inputs);
  const double expected = 255 * (1.055 * std::pow(0.9 * 0.18, 1 / 2.4) - 0.055); // the mean becomes 0.18
  for (int column = 0; column < 5; ++column)
    for (const int row : {0, 1})
      for (const double right : {-0.8, 0.0, 0.8})
        EXPECT_NEAR(sphere(even, column, row, right), expected, 2) << column << ' ' << row << ' ' << right;
  inputs.hdr = folder.Write("point.pfm", FloatMap(50));
  const QImage point = Draw("hdr", {1600, 1000}, inputs);
  EXPECT_GT(sphere(point, 4, 0, -0.5), sphere(point, 4, 1, -0.5) + 40);
  EXPECT_GT(sphere(point, 4, 0, -0.5), sphere(point, 4, 0, 0.8) + 40);
}

TEST(SymbolsPixels, AModelOfTheUsersFillsTheLastCell) {
  Inputs inputs = DataInputs();
  const QImage without = Draw("symbols", {960, 600});
  inputs.model = inputs.symbols + "/Cube.obj";
  const QImage with = Draw("symbols", {960, 600}, inputs);
  int changed = 0, elsewhere = 0;
  for (int y = 0; y < 600; ++y)
    for (int x = 0; x < 960; ++x)
      if (with.pixelColor(x, y) != without.pixelColor(x, y))
        ++(x > 750 && y > 400 ? changed : elsewhere);
  EXPECT_GT(changed, 4000);
  EXPECT_EQ(elsewhere, 0);
}

TEST(GalleryPixels, PicturesTakeVolumesOfTheUsers) {
  const TempFolder folder;
  Inputs inputs = DataInputs();
  inputs.volume = folder.Write("small.txt", "TextArray 2 1 2 2\n0 1 2 3\n4 5 6 7\n");
  for (const char* name : {"volume", "head", "cuts"}) {
    const ReportCapture reports;
    EXPECT_NE(Draw(name, Small, inputs), Draw(name, Small)) << name;
    EXPECT_EQ(reports.Texts(), std::vector<std::string>{}) << name;
  }
}

TEST(GalleryPixels, TheProgramWritesPicturesAndTheirPage) {
  const TempFolder folder;
  const Outcome outcome = RunGallery(folder, "--only wind --size 160x100 --out '" + folder.File("new/folder") + "'");
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.out.find("wind         ... "), 0u) << outcome.out;
  EXPECT_EQ(QImage(QString::fromStdString(folder.File("new/folder/wind.png"))).size(), QSize(160, 100));
  const std::string page = Contents(folder.File("new/folder/index.html"));
  EXPECT_NE(page.find("wind.png"), std::string::npos);
  EXPECT_EQ(page.find("symbols.png"), std::string::npos) << "a picture that was not made";
}

TEST(GalleryPixels, WrongArgumentsAndFilesEndInOneClearLine) {
  const TempFolder folder;
  const std::string far = folder.Write("far.csv", "x,y,u,v\n0,1000,1,1\n1,1000,1,1\n0,2000,1,1\n1,2000,1,1\n");
  const std::string none = folder.Write("none.csv", "lon,lat,depth_km,mag\n");
  const std::string still =
      folder.Write("still.csv", "x,y,z,u,v,w\n0,0,0,0,0,0\n0,1,0,0,0,0\n1,0,0,0,0,0\n1,1,0,0,0,0\n");
  const std::string points = folder.Write("points.obj", "v 0 0 0\n");
  const std::string aFile = folder.Write("file", "");
  const std::string out = " --size 64x40 --out '" + folder.File("out") + "' ";
  const struct {
    const char* name;
    std::string arguments;
    int status;
    std::string error;
  } cases[] = {
      {"unknown option", "--speed 3", 2, "unknown option '--speed'; --help lists what there is"},
      {"missing value", "--only", 2, "--only needs a value: NAME"},
      {"missing file", "--only wind --winds no.csv" + out, 1, "no.csv: "},
      {"no degrees", "--only wind --winds " + far + out, 1, far + ": expected two longitudes and two latitudes"},
      {"no earthquake", "--only bars --quakes " + none + out, 1, none + ": expected an earthquake at least, got none"},
      {"a flow at rest", "--only flow --flow " + still + out, 1,
       still + ": expected a flow, got vectors that are all zero"},
      {"model without faces", "--only symbols --model " + points + out, 1, points + ": expected triangles, got none"},
      {"out is a file", "--out '" + aFile + "'", 1, aFile + ": cannot be made a folder"},
  };
  for (const auto& row : cases) {
    const Outcome outcome = RunGallery(folder, row.arguments);
    EXPECT_EQ(outcome.status, row.status) << row.name;
    EXPECT_EQ(outcome.err.find("vek-gallery: " + row.error), 0U) << row.name << ": " << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
  }
  const Outcome help = RunGallery(folder, "--help");
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--out", "--only", "--size", "--winds", "--model", "--flow", "--help"})
    EXPECT_NE(help.out.find(option), std::string::npos) << option;
}
