#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/MapFrame.h"

#include "library/Pattern.h"

#include "tests/apps/gallery/PictureShots.h"
#include "tests/support/Test.h"

#include <sys/wait.h>

using namespace Vek::Chart::Gallery;

namespace {

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
const MapFrame World(-180, 180, -80, 84);

} // namespace

TEST(GalleryPixels, EveryPictureIsFilledAndFramedByTheBackground) {
  for (const PictureEntry& entry : Pictures()) {
    const ReportCapture reports;
    const QImage image = RenderPicture(entry, DataInputs(), Small);
    EXPECT_EQ(reports.Texts(), std::vector<std::string>{}) << entry.name;
    ASSERT_EQ(image.size(), QSize(480, 300)) << entry.name;
    EXPECT_LT(Distance(image.pixelColor(0, 0), GalleryTheme::BackgroundTop), 6) << entry.name;
    EXPECT_LT(Distance(image.pixelColor(479, 299), GalleryTheme::BackgroundBottom), 6) << entry.name;
    int drawn = 0;
    for (int y = 0; y < image.height(); ++y)
      for (int x = 0; x < image.width(); ++x)
        drawn += Distance(image.pixelColor(x, y), image.pixelColor(0, y)) > 24 ? 1 : 0;
    EXPECT_GT(drawn, image.width() * image.height() / 12) << entry.name;
    int title = 0;
    for (int y = 10; y < 26; ++y)
      for (int x = 10; x < 100; ++x)
        title += Distance(image.pixelColor(x, y), GalleryTheme::Title) < 60 ? 1 : 0;
    EXPECT_GT(title, 40) << entry.name; // the shortest is "Cuts"
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
    EXPECT_EQ(color.red() > color.blue(), row.land) << row.name << ' ' << color.name().toStdString();
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

TEST(WindPixels, ArrowsPointWhereTheWindGoes) {
  const struct {
    const char* name;
    const char* wind;
    int right, up;
  } cases[] = {{"east", "10,0", 1, 0}, {"west", "-10,0", -1, 0}, {"north", "0,10", 0, 1}, {"south", "0,-10", 0, -1}};
  const TempFolder folder;
  for (const auto& row : cases) {
    std::string table = "lon,lat,u,v\n";
    for (const char* place : {"0,0", "5,0", "10,0", "0,5", "5,5", "10,5", "0,10", "5,10", "10,10"})
      table += std::string(place) + ',' + row.wind + '\n';
    Inputs inputs = DataInputs();
    inputs.winds = folder.Write("wind.csv", table);
    const Shot shot = Shoot("wind", {960, 600}, inputs);
    // Along the wind, the arrow's last third, with the head, has more pixels than its first.
    std::vector<int> along;
    for (int y = -30; y <= 30; ++y)
      for (int x = -30; x <= 30; ++x)
        if (qRed(shot.image.pixel(shot.At({0, 0, 1}) + QPoint(x, y))) > 190)
          along.push_back(x * row.right - y * row.up);
    ASSERT_GT(along.size(), 60u) << row.name;
    const auto ends = std::minmax_element(along.begin(), along.end());
    const int first = *ends.first;
    const int last = *ends.second;
    const int third = (last - first) / 3;
    const auto tail = std::count_if(along.begin(), along.end(), [&](int p_at) { return p_at <= first + third; });
    const auto head = std::count_if(along.begin(), along.end(), [&](int p_at) { return p_at >= last - third; });
    EXPECT_GT(head * 5, tail * 6) << row.name << ": head " << head << ", tail " << tail;
  }
}

TEST(WindPixels, NarrowStripsAndPolarWindsAreDrawn) {
  const TempFolder folder;
  for (const char* rows :
       {"0,-80,5,0\n0,80,5,0\n0.001,-80,5,0\n0.001,80,5,0\n", "0,89.9,0,0\n0,90,0,0\n1,89.9,0,0\n1,90,0,0\n"}) {
    Inputs inputs = DataInputs();
    inputs.winds = folder.Write("wind.csv", std::string("lon,lat,u,v\n") + rows);
    const ReportCapture reports;
    EXPECT_EQ(RenderPicture(Entry("wind"), inputs, Small).size(), QSize(480, 300)) << rows;
    EXPECT_EQ(reports.Texts(), std::vector<std::string>{}) << rows;
  }
}

TEST(SymbolsPixels, EachCellShowsItsModel) {
  Inputs withModel = DataInputs();
  withModel.model = withModel.symbols + "/Cube.obj";
  const Shot without = Shoot("symbols", {960, 600});
  const Shot with = Shoot("symbols", {960, 600}, withModel);
  // Pixels of the large copy in the middle of cell c, which is orange; lines cover fewer than surfaces.
  const auto orange = [](const Shot& p_shot, int p_cell) {
    const QPoint center = p_shot.At({(p_cell % 5 - 2) * 3.75, 0, (1 - p_cell / 5) * 3.35 + 0.3});
    int count = 0;
    for (int y = center.y() - 36; y <= center.y() + 36; ++y)
      for (int x = center.x() - 30; x <= center.x() + 30; ++x) {
        const QColor color = p_shot.image.pixelColor(x, y);
        count += color.red() > 90 && color.red() > color.green() * 5 / 4 && color.green() > color.blue() ? 1 : 0;
      }
    return count;
  };
  const std::set<int> lines = {0, 1, 10}; // ArrowHead1D, Arrow1D, Crosshair
  for (int cell = 0; cell < 14; ++cell)
    EXPECT_GT(orange(without, cell), lines.count(cell) != 0 ? 40 : 200) << cell;
  EXPECT_LT(orange(without, 14), 10) << "no model of the user's";
  EXPECT_GT(orange(with, 14), 400);
}

TEST(EarthquakesPixels, TheLargestShinesWhereItWas) {
  const Shot shot = Shoot("earthquakes", {960, 600});
  const MapFrame map(-25, 335, -70, 84);
  const QColor hualien = shot.Mean(shot.At(map.Place(121.7, 24.1, 0.5)), 2);
  EXPECT_GT(hualien.red(), 180) << hualien.name().toStdString();
  EXPECT_GT(hualien.green(), 140);
  EXPECT_LT(hualien.blue(), 110);
  const QColor quiet = shot.Mean(shot.At(map.Place(85, -30, 0)), 2);
  EXPECT_LT(quiet.red(), 60) << quiet.name().toStdString();
  const QColor congo = shot.Mean(shot.At(map.Place(22, 5, 0)), 2);
  EXPECT_GT(congo.red(), quiet.red() + 30) << "land is lighter than the sea";
}

TEST(HdrPixels, ExposuresShowWhatTheyAreMadeFor) {
  const Shot shot = Shoot("hdr", {800, 500});
  // Sky and sun in the five pictures, a pixel of 512 × 256 taken to its place in a cell of 240 × 120.
  const auto at = [](int p_column, int p_row, int p_left, int p_top) {
    return QPoint(p_left + p_column * 240 / 512, p_top + p_row * 120 / 256);
  };
  const QPoint burnt = at(305, 90, 24, 100);
  const QPoint middle = at(100, 20, 280, 100);
  const QPoint dark = at(100, 20, 280, 290);
  EXPECT_GT(shot.Mean(burnt, 1).value(), 250);
  EXPECT_GT(shot.Mean(middle, 1).blue(), shot.Mean(middle, 1).red() + 20) << "a blue sky";
  EXPECT_LT(shot.Mean(dark, 1).value(), 12);
}

TEST(AtlasPixels, InstancesReplaceColorsOfTheSameBars) {
  const Shot shot = Shoot("atlas", {800, 500});
  // The bar of the region with the most events: blue in the tree's own colours, grey in both instances.
  const auto bar = [&](int p_panel) { return shot.Mean(shot.At({1 + 5.6 * p_panel, -0.23, 0}), 2); };
  EXPECT_GT(bar(0).blue(), bar(0).red() + 30);
  for (const int panel : {1, 2})
    EXPECT_LT(std::abs(bar(panel).blue() - bar(panel).red()), 30) << panel;
}

TEST(StylesPixels, StipplesAreTrueBitForBit) {
  const QImage image = Shoot("styles", {1600, 1000}).image; // one point is one pixel
  const auto pixel = [&](int p_x, int p_y) { return image.pixelColor(p_x, 999 - p_y); };
  for (int i = 0; i < 12; ++i) {
    const auto* const mask = Library::Pattern::PolygonStipplePattern(static_cast<Library::Pattern::FillPattern>(i + 1));
    const int left = 800 + 193 * (i % 4);
    const int bottom = 724 - 141 * (i / 4);
    const QColor first = pixel(left + 5, bottom + 5);
    int wrong = 0;
    for (int y = bottom; y < bottom + 84; ++y)
      for (int x = left; x < left + 84; ++x) {
        const bool set = (mask[4 * (y % 32) + x % 32 / 8] >> (7 - x % 8) & 1) != 0;
        if (y < bottom + 16) // a transparent second colour draws solid
          wrong += pixel(x, y) != first ? 1 : 0;
        else if (y >= bottom + 20)
          wrong += pixel(x, y) != (set ? first : QColor(0x283A4C)) ? 1 : 0;
      }
    EXPECT_EQ(wrong, 0) << "fill " << i + 1;
  }
  for (int i = 0; i < 10; ++i) {
    const auto bits = Library::Pattern::LineStipplePattern(static_cast<Library::Pattern::LinePattern>(i + 1));
    const int y = 796 - 41 * i;
    const QColor first = pixel(700, y); // a transparent second colour draws solid
    for (const auto& [width, left, right] : {std::tuple(1, 226, 326), {3, 348, 466}, {6, 488, 624}}) {
      int wrong = 0;
      for (int x = left; x < right; ++x)
        wrong += pixel(x, y) != ((bits >> (x - left) / width % 16 & 1) != 0 ? first : QColor(0x48617C)) ? 1 : 0;
      EXPECT_EQ(wrong, 0) << "line " << i + 1 << " of " << width << " pixels";
    }
  }
}

TEST(StylesPixels, SpritesStandUpright) {
  const Shot shot = Shoot("styles", {1600, 1000});
  // Whether pattern n, in its 64 pixels, covers the place right of and above its middle.
  const auto covers = [&](int p_pattern, int p_right, int p_up) {
    return shot.Mean({87 + 88 * (p_pattern - 1) + p_right, 999 - 286 - p_up}, 1).red() > 80;
  };
  const struct {
    int pattern;
    const char* name;
    bool middle, corner, side, lower;
  } cases[] = {{1, "rectangle", true, true, true, true},  {2, "ellipse", true, false, true, true},
               {3, "diamond", true, false, true, false},  {4, "hexagon", true, false, true, true},
               {5, "triangle", true, false, false, true}, {6, "cross", true, false, true, false},
               {7, "x-cross", true, true, false, true},   {8, "star", true, false, false, false}};
  for (const auto& row : cases) {
    EXPECT_EQ(covers(row.pattern, 0, 0), row.middle) << row.name;
    EXPECT_EQ(covers(row.pattern, 23, 23), row.corner) << row.name;
    EXPECT_EQ(covers(row.pattern, 23, 0), row.side) << row.name;
    EXPECT_EQ(covers(row.pattern, 17, -17), row.lower) << row.name;
  }
}

TEST(ShapesPixels, SolidsAreLitAndTheUnitRingIsEmpty) {
  const Shot shot = Shoot("shapes", {960, 600});
  const auto cell = [&](int p_column, double p_y) {
    return shot.Mean(shot.At({(306 + 163 * p_column - 800) * 0.01, 0, (p_y - 500) * 0.01 / std::cos(0.31416)}), 1);
  };
  for (const int column : {0, 1, 2, 3, 4, 6}) // 5 is the arrow that turns around the middle
    EXPECT_GT(cell(column, 752).red(), 50) << "unit shape " << column;
  for (const int column : {0, 1, 2, 5, 6})
    EXPECT_GT(cell(column, 580).red(), 90) << "solid " << column;
  const auto empty = [&](int p_column, double p_y) {
    const QPoint place = shot.At({(306 + 163 * p_column - 800) * 0.01, 0, (p_y - 500) * 0.01 / std::cos(0.31416)});
    int drawn = 0;
    for (int y = place.y() - 40; y <= place.y() - 10; ++y) // above the note
      for (int x = place.x() - 36; x <= place.x() + 36; ++x)
        drawn += shot.image.pixelColor(x, y).red() > 60 ? 1 : 0;
    return drawn == 0;
  };
  EXPECT_TRUE(empty(7, 752)) << "Geometry's ring";
  EXPECT_FALSE(empty(7, 580)) << "the drawable ring";
  EXPECT_TRUE(empty(7, 408)) << "no outlined ring";
}

TEST(ShapesPixels, PanelsKeepTheirCornersAndLayersBlend) {
  const Shot shot = Shoot("shapes", {1600, 1000}); // one point is one pixel
  const auto near = [&](int p_x, int p_y, const QColor& p_color) {
    return Distance(shot.Mean({p_x, 999 - p_y}, 1), p_color) < 24;
  };
  const QColor dot(0xF6B44B);
  for (const auto& [left, bottom, right, top] :
       {std::tuple(500, 116, 548, 164), {500, 180, 588, 252}, {750, 196, 1060, 252}})
    for (const int x : {left + 12, right - 12})
      for (const int y : {bottom + 12, top - 12})
        EXPECT_TRUE(near(x, y, dot)) << x << ' ' << y;
  EXPECT_FALSE(near(762, 168, dot)) << "stretched whole";

  const QColor disk(240, 110, 70);
  const auto times = [](const QColor& p_a, const QColor& p_b) {
    return QColor(p_a.red() * p_b.red() / 255, p_a.green() * p_b.green() / 255, p_a.blue() * p_b.blue() / 255);
  };
  // Places in a layer's square that show one stripe of the ground.
  const auto layer = [&](int p_index, int p_x, int p_y) {
    return shot.Mean({1110 + 150 * p_index + p_x, 999 - 116 - p_y}, 1);
  };
  EXPECT_LT(Distance(layer(0, 68, 68), disk), 6);
  EXPECT_LT(Distance(layer(0, 10, 10), QColor(210, 210, 210)), 6);
  EXPECT_LT(Distance(layer(1, 68, 68), disk), 6);
  const QColor ground = layer(1, 10, 10);
  EXPECT_GT(Distance(ground, QColor(210, 210, 210)), 200);
  EXPECT_LT(Distance(layer(2, 10, 10), times(ground, QColor(210, 210, 210))), 9);
  EXPECT_LT(layer(2, 68, 68).red(), disk.red() / 2) << "the ground has little red there";
}

TEST(FlowPixels, TubesRunWhereTheFlowRuns) {
  // Fast along x in the lower half of the box, at rest in the upper one.
  std::string table = "# dims 4 4 5 origin 0 0 0 spacing 1 1 1\nu,v,w\n";
  for (int node = 0; node < 80; ++node)
    table += node < 48 ? "2,0,0\n" : "0,0,0\n";
  const TempFolder folder;
  Inputs inputs = DataInputs();
  inputs.flow = folder.Write("flow.csv", table);
  const Shot shot = Shoot("flow", {960, 600}, inputs);
  // Yellow pixels above and below the row where the first plane of nodes at rest ends.
  const double unit = 58.0 / 4;
  int border = shot.image.height();
  for (const double x : {-1.5, 1.5})
    for (const double y : {-1.5, 1.5})
      border = std::min(border, shot.At(Types::Vector3_Base<double>(x * unit, y * unit, unit)).y());
  ASSERT_GT(border, 100);
  int above = 0;
  int below = 0;
  for (int y = 0; y < shot.image.height() * 4 / 5; ++y)
    for (int x = 0; x < shot.image.width(); ++x) {
      const QColor color = shot.image.pixelColor(x, y);
      if (color.red() > 130 && color.green() > color.blue() + 60)
        ++(y < border ? above : below);
    }
  EXPECT_EQ(above, 0);
  EXPECT_GT(below, 1000);
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
  const std::string badWind = folder.Write("bad.csv", "lon,lat,u,v\n0,0,1,1\n1,x,1,1\n");
  const std::string quad = folder.Write("quad.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nf 1 2 3 4\n");
  const std::string beyond = folder.Write("beyond.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nf 1 2 4\nf 0 1 2\n");
  const std::string points = folder.Write("points.obj", "v 0 0 0\n");
  const std::string words = folder.Write("words.obj", "v one two three\n");
  const std::string cut = folder.Write("cut.hdr", "#?RADIANCE\n\n-Y 2 +X 2\nabcdefgh");
  const std::string flowHead = "# dims 2 2 2\nu,v,w\n";
  const std::string badFlow = folder.Write("badFlow.csv", flowHead + "1,1,1\n1,1,x\n");
  const std::string still = "0,0,0\n0,0,0\n";
  const std::string stillFlow = folder.Write("still.csv", flowHead + still + still + still + still);
  const std::string aFile = folder.Write("file", "");
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
      {"bad row", "--only wind --winds " + badWind + out, 1,
       "vek-gallery: " + badWind + ":3: expected a number for \"lat\", got \"x\"\n"},
      {"missing model", "--only symbols --model no.obj" + out, 1, "vek-gallery: no.obj: no such file\n"},
      {"model is a folder", "--only symbols --model ." + out, 1, "vek-gallery: .: expected a file, got a folder\n"},
      {"model of squares", "--only symbols --model " + quad + out, 1,
       "vek-gallery: " + quad + ": expected an OBJ model of triangles or lines, and of nothing else\n"},
      {"model without faces", "--only symbols --model " + points + out, 1,
       "vek-gallery: " + points + ": expected an OBJ model of triangles or lines, and of nothing else\n"},
      {"indices beyond", "--only symbols --model " + beyond + out, 1,
       "vek-gallery: " + beyond + ": expected an OBJ model whose faces count their vertices and normals from 1\n"},
      {"model of words", "--only symbols --model " + words + out, 1,
       "vek-gallery: " + words +
           ": cannot be read as an OBJ model: bad lexical cast: source type value could not be interpreted as "
           "target (line 1, found \"one\", expected a number)\n"},
      {"bad earthquake", "--only earthquakes --quakes " + badWind + out, 1,
       "vek-gallery: " + badWind + ":1: expected a column named \"depth_km\", got \"lon,lat,u,v\"\n"},
      {"flow without sizes", "--only flow --flow " + badWind + out, 1,
       "vek-gallery: " + badWind +
           ":1: expected \"# dims nx ny nz origin x y z spacing dx dy dz\", got \"lon,lat,u,v\"\n"},
      {"bad flow", "--only flow --flow " + badFlow + out, 1,
       "vek-gallery: " + badFlow + ":4: expected a number for \"w\", got \"x\"\n"},
      {"flow at rest", "--only flow --flow " + stillFlow + out, 1,
       "vek-gallery: " + stillFlow + ": expected a flow, got vectors that are all zero\n"},
      {"bad relief", "--only wind --relief " + badWind + out, 1,
       "vek-gallery: " + badWind + ":1: expected \"nx ny x0 dx y0 dy\", got \"lon,lat,u,v\"\n"},
      {"no panorama", "--only hdr --hdr " + badWind + out, 1,
       "vek-gallery: " + badWind + ": expected a Radiance picture (#?RADIANCE), got something else\n"},
      {"a panorama cut short", "--only hdr --hdr " + cut + out, 1,
       "vek-gallery: " + cut + ": expected a whole Radiance picture (-Y … +X …), got one that is cut or turned\n"},
      {"out is a file", "--out '" + aFile + "'", 1, "vek-gallery: " + aFile + ": cannot be made a folder\n"},
  };
  for (const auto& row : cases) {
    const Outcome outcome = RunGallery(folder, row.arguments);
    EXPECT_EQ(outcome.status, row.status) << row.name;
    EXPECT_EQ(outcome.err, row.error) << row.name;
  }
  const Outcome help = RunGallery(folder, "--help");
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--out", "--only", "--size", "--winds", "--model", "--flow", "--help"})
    EXPECT_NE(help.out.find(option), std::string::npos) << option;
}
