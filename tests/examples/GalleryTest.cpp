#include "examples/scene/MapFrame.h"
#include "examples/scene/OffscreenQt.h"
#include "examples/scene/Rendering.h"
#include "examples/scene/Scene.h"
#include "examples/scene/Theme.h"

#include "platform/ogl/OffscreenContext.h"

#include <QImage>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>

using namespace Vek::Chart;
using namespace Vek::Chart::Gallery;

namespace {

namespace fs = std::filesystem;

/// Text on pictures needs Qt's fonts.
class QtEnvironment : public testing::Environment {
public:
  void SetUp() override { _qt = std::make_unique<OffscreenQt>(); }
  void TearDown() override { _qt.reset(); }

private:
  std::unique_ptr<OffscreenQt> _qt;
};
const testing::Environment* const qt = testing::AddGlobalTestEnvironment(new QtEnvironment);

/// A folder of the test's own that goes with it.
class TemporaryFolder {
public:
  TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "vek-gallery-XXXXXX").string();
    if (mkdtemp(name.data()) != nullptr)
      _path = name;
  }
  ~TemporaryFolder() {
    if (!_path.empty())
      fs::remove_all(_path);
  }
  std::string File(const std::string& p_name) const { return (_path / p_name).string(); }
  std::string Write(const std::string& p_name, const std::string& p_text) const {
    std::ofstream(File(p_name)) << p_text;
    return File(p_name);
  }

private:
  fs::path _path;
};

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
Outcome RunGallery(const TemporaryFolder& p_folder, const std::string& p_arguments) {
  const std::string out = p_folder.File("stdout.txt");
  const std::string err = p_folder.File("stderr.txt");
  const int result = std::system((VEK_GALLERY " " + p_arguments + " >'" + out + "' 2>'" + err + "'").c_str());
  return {WIFEXITED(result) ? WEXITSTATUS(result) : -1, Contents(out), Contents(err)};
}

Inputs DataInputs() {
  const std::string root = VEK_SOURCE_DIR;
  Inputs inputs;
  inputs.winds = root + "/data/noaa_navy_winds_1987-01.csv";
  inputs.relief = root + "/data/etopo60.txt";
  inputs.quakes = root + "/data/earthquakes.csv";
  inputs.symbols = root + "/symbols";
  return inputs;
}

const SceneEntry& Entry(const std::string& p_name) {
  for (const SceneEntry& entry : Scenes())
    if (entry.name == p_name)
      return entry;
  throw std::logic_error("no scene " + p_name);
}

/// A picture and the camera that it was taken with.
struct Shot {
  QImage image;
  Camera camera;

  /// Where a point of the scene appears on the image, whose first row is on top.
  QPoint At(const Types::Vector3_Base<double>& p_point) const {
    const Types::Viewport<0> viewport(0, 0, static_cast<float>(image.width()), static_cast<float>(image.height()));
    const Camera::Pixel pixel = camera.Project(p_point, viewport);
    return {static_cast<int>(pixel.x), image.height() - 1 - static_cast<int>(pixel.y)};
  }
  /// The mean colour of the square of 2 · p_radius + 1 pixels around a point.
  QColor Mean(const QPoint& p_center, int p_radius) const {
    int red = 0, green = 0, blue = 0, count = 0;
    for (int y = p_center.y() - p_radius; y <= p_center.y() + p_radius; ++y)
      for (int x = p_center.x() - p_radius; x <= p_center.x() + p_radius; ++x, ++count) {
        const QRgb pixel = image.pixel(x, y);
        red += qRed(pixel);
        green += qGreen(pixel);
        blue += qBlue(pixel);
      }
    return QColor(red / count, green / count, blue / count);
  }
};

Shot Shoot(const std::string& p_name, Types::Size p_size) {
  Shot shot;
  shot.image = RenderScene(Entry(p_name), DataInputs(), p_size);
  Ogl::OffscreenContext context(Types::Size(16, 16));
  Utility::Scoped<Rgl> gl(context.Handle());
  shot.camera = Entry(p_name).make(gl, DataInputs())->StartCamera();
  return shot;
}

int Distance(const QColor& p_a, const QColor& p_b) {
  return std::abs(p_a.red() - p_b.red()) + std::abs(p_a.green() - p_b.green()) + std::abs(p_a.blue() - p_b.blue());
}

constexpr Types::Size Small(480, 300);
const MapFrame World(-180, 180, -80, 84);

} // namespace

TEST(GalleryPixels, EveryPictureIsFilledAndFramedByTheBackground) {
  for (const SceneEntry& entry : Scenes()) {
    const QImage image = RenderScene(entry, DataInputs(), Small);
    ASSERT_EQ(image.size(), QSize(480, 300)) << entry.name;
    EXPECT_LT(Distance(image.pixelColor(0, 0), Theme::BackgroundTop), 6) << entry.name;
    EXPECT_LT(Distance(image.pixelColor(479, 299), Theme::BackgroundBottom), 6) << entry.name;
    int drawn = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        drawn += Distance(image.pixelColor(x, y), image.pixelColor(0, y)) > 24 ? 1 : 0;
    EXPECT_GT(drawn, image.width() * image.height() / 12) << entry.name;
    EXPECT_TRUE(fs::exists(std::string(VEK_SOURCE_DIR) + "/" + entry.source)) << entry.source;
  }
}

TEST(WindPixels, CoastsAreWhereTheyBelong) {
  const Shot shot = Shoot("wind", {960, 600});
  const struct {
    const char* name;
    double lon, lat;
    bool land;
  } cases[] = {
      {"Congo", 23, -3, true},           {"Brazil", -55, -9, true},           {"Australia", 127, -27, true},
      {"Manitoba", -98, 55, true},       {"Siberia", 100, 63, true},          {"Algeria", 3, 28, true},
      {"Gulf of Guinea", -2, -3, false}, {"South Atlantic", -12, -20, false}, {"Bay of Bengal", 88, 13, false},
      {"Tasman Sea", 160, -35, false},   {"Pacific", -110, -3, false},        {"Arabian Sea", 65, 5, false},
  };
  for (const auto& row : cases) {
    // The winds there are weak, so an arrow changes the mean only a little.
    const QColor color = shot.Mean(shot.At(World.Place(row.lon, row.lat, 0)), 4);
    if (row.land)
      EXPECT_GT(color.red(), color.blue()) << row.name << ' ' << color.name().toStdString();
    else
      EXPECT_GT(color.blue(), color.red()) << row.name << ' ' << color.name().toStdString();
  }
}

TEST(WindPixels, FastWindsShineAndWeakOnesDoNot) {
  const Shot shot = Shoot("wind", {960, 600});
  const auto brightest = [&](double p_west, double p_east, double p_south, double p_north) {
    const QPoint lower = shot.At(World.Place(p_west, p_south, 0));
    const QPoint upper = shot.At(World.Place(p_east, p_north, 0));
    int most = 0;
    for (int y = upper.y(); y <= lower.y(); ++y)
      for (int x = lower.x(); x <= upper.x(); ++x)
        if (qRed(shot.image.pixel(x, y)) > 150)
          most = std::max(most, qGreen(shot.image.pixel(x, y)));
    return most;
  };
  EXPECT_GT(brightest(-120, -85, -56, -46), 200) << "the South Pacific storm track";
  EXPECT_LT(brightest(-66, -48, -12, 0), 150) << "the Amazon basin";
}

TEST(GalleryPixels, TheProgramWritesPicturesAndTheirPage) {
  const TemporaryFolder folder;
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
  const TemporaryFolder folder;
  const std::string bad_wind = folder.Write("bad.csv", "lon,lat,u,v\n0,0,1,1\n1,x,1,1\n");
  const std::string a_file = folder.Write("file", "");
  const std::string out = " --size 64x40 --out '" + folder.File("out") + "' ";
  const struct {
    const char* name;
    std::string arguments;
    int status;
    std::string error;
  } cases[] = {
      {"unknown option", "--speed 3", 2, "vek-gallery: unknown option '--speed'; --help lists what there is\n"},
      {"missing value", "--only", 2, "vek-gallery: --only needs a value: NAME\n"},
      {"missing file", "--only wind --winds no.csv" + out, 1, "vek-gallery: no.csv: no such file\n"},
      {"bad row", "--only wind --winds " + bad_wind + out, 1,
       "vek-gallery: " + bad_wind + ":3: expected a number for \"lat\", got \"x\"\n"},
      {"out is a file", "--out '" + a_file + "'", 1, "vek-gallery: " + a_file + ": cannot be made a folder\n"},
  };
  for (const auto& row : cases) {
    const Outcome outcome = RunGallery(folder, row.arguments);
    EXPECT_EQ(outcome.status, row.status) << row.name;
    EXPECT_EQ(outcome.err, row.error) << row.name;
  }
  const Outcome help = RunGallery(folder, "--help");
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--out", "--only", "--size", "--winds", "--model", "--help"})
    EXPECT_NE(help.out.find(option), std::string::npos) << option;
}
