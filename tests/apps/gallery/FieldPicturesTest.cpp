#include "apps/gallery/Picture.h"
#include "library/NamedColors.h"

#include "tests/apps/gallery/PictureTest.h"

using namespace Vek::Chart::Gallery;

namespace {

Scene::Figure FigureOf(const std::string& p_name, const Inputs& p_inputs) {
  for (const PictureEntry& entry : Pictures())
    if (entry.name == p_name)
      return entry.figure(p_inputs);
  throw std::logic_error("no picture " + p_name);
}

const Types::Viewport<0> Window{0, 0, 960, 600};
constexpr Types::Size WindowSize{960, 600};

/// A picture of files of the user's, and of the gallery's own ones for all others.
struct Drawn {
  explicit Drawn(const std::string& p_name, const Inputs& p_inputs = DataInputs())
      : figure(FigureOf(p_name, p_inputs))
      , image(figure.Image(WindowSize)) {}

  QPoint At(double p_x, double p_y, double p_z = 0) {
    const auto pixel = figure.Layout(Window).camera.Project(figure.ToScene({p_x, p_y, p_z}), Window);
    return {static_cast<int>(pixel.x), image.height() - 1 - static_cast<int>(pixel.y)};
  }
  /// Titles, legends and notes, one after the other.
  QString Strings() {
    const FigureLayout layout = figure.Layout(Window);
    QString all = QStringList(layout.notes.begin(), layout.notes.end()).join('\n');
    for (const FigureLayout::Block& block : layout.blocks)
      for (const LegendBlock::String& string : block.content.Strings())
        all += '\n' + string.text;
    for (const AxesLayout::Label& label : layout.axes.labels)
      all += '\n' + label.text;
    return all;
  }

  Scene::Figure figure;
  QImage image;
};

/// A wind, flow or surface is drawn in bright, warm colours, unlike the map and the background.
bool IsBright(const QImage& p_image, const QPoint& p_at) {
  const QColor color = p_image.pixelColor(p_at);
  return color.red() > 170 && color.red() > color.blue() + 60;
}

Inputs WithWinds(const std::string& p_path) {
  Inputs inputs = DataInputs();
  inputs.winds = p_path;
  return inputs;
}

} // namespace

TEST(WindPixels, CoastsAreWhereTheyBelong) {
  Drawn world("wind");
  const std::tuple<const char*, double, double, bool> cases[] = {
      {"Congo", 23, -3, true},
      {"Brazil", -55, -9, true},
      {"Manitoba", -98, 55, true},
      {"Siberia", 100, 63, true},
      {"South Atlantic", -12, -20, false},
      {"Bay of Bengal", 88, 13, false},
      {"Pacific", -110, -3, false},
      {"Africa at 20 degrees", 20, 15, true},
  };
  for (const auto& [name, lon, lat, land] : cases) {
    const QPoint middle = world.At(lon, lat);
    int red = 0, blue = 0;
    for (int x = -4; x <= 4; ++x)
      for (int y = -4; y <= 4; ++y)
        if (const QPoint at = middle + QPoint(x, y); !IsBright(world.image, at)) {
          red += world.image.pixelColor(at).red();
          blue += world.image.pixelColor(at).blue();
        }
    EXPECT_EQ(red > blue, land) << name << ": red " << red << ", blue " << blue;
  }
}

TEST(WindPixels, ArrowsPointWhereTheAirGoes) {
  // In 60 degrees of latitude, as much east as north is right along the diagonal of a map that is true there.
  const std::tuple<const char*, int, int> cases[] = {{"10,0", 1, 0},   {"-10,0", -1, 0}, {"0,10", 0, 1},
                                                     {"0,-10", 0, -1}, {"7,7", 1, 1},    {"-7,7", -1, 1}};
  const TempFolder folder;
  for (const auto& [wind, right, up] : cases) {
    std::string table = "lon,lat,u,v\n";
    for (const char* place : {"0,45", "20,45", "40,45", "0,60", "20,60", "40,60", "0,75", "20,75", "40,75"})
      table += std::string(place) + ',' + (std::string(place) == "20,60" ? wind : "0,0") + '\n';
    Drawn picture("wind", WithWinds(folder.Write("wind.csv", table)));
    const QPoint base = picture.At(20, 60);
    QPoint far;
    for (int y = -200; y <= 200; ++y)
      for (int x = -200; x <= 200; ++x)
        if (IsBright(picture.image, base + QPoint(x, y)) && std::hypot(x, y) > std::hypot(far.x(), far.y()))
          far = {x, y};
    const double length = std::hypot(far.x(), far.y());
    ASSERT_GT(length, 30) << wind;
    EXPECT_NEAR(far.x() / length, right / std::hypot(right, up), 0.06) << wind;
    EXPECT_NEAR(-far.y() / length, up / std::hypot(right, up), 0.06) << wind;
  }
}

TEST(WindPixels, StripsAndPolesAreDrawn) {
  const TempFolder folder;
  for (const char* rows :
       {"0,-80,5,0\n0,80,5,0\n0.001,-80,5,0\n0.001,80,5,0\n", "0,89.9,0,0\n0,90,0,0\n1,89.9,0,0\n1,90,0,0\n"})
    for (const char* name : {"wind", "streamlines"}) {
      const ReportCapture reports;
      const Drawn picture(name, WithWinds(folder.Write("wind.csv", std::string("lon,lat,u,v\n") + rows)));
      // The relief has no node there.
      EXPECT_EQ(reports.Texts(), std::vector<std::string>{"WARNING: Figure: plot 1 has no point to show"}) << rows;
    }
}

TEST(StreamlinesPixels, FastLinesAreWide) {
  std::string table = "lon,lat,u,v\n"; // eastward, 2 m/s below 10 degrees and 10 m/s above
  for (int lat = 0; lat <= 20; ++lat)
    for (int lon = 0; lon <= 20; ++lon)
      table += std::to_string(lon) + ',' + std::to_string(lat) + (lat < 10 ? ",2,0\n" : ",10,0\n");
  const TempFolder folder;
  Drawn picture("streamlines", WithWinds(folder.Write("wind.csv", table)));
  const auto meanWidth = [&](double p_south, double p_north) {
    int pixels = 0, lines = 0;
    for (const double lon : {4.3, 9.1, 13.7}) {
      const QPoint lower = picture.At(lon, p_south), upper = picture.At(lon, p_north);
      const auto isLine = [&](int p_y) { return picture.image.pixelColor(lower.x(), p_y).red() > 120; };
      for (int y = upper.y(); y < lower.y(); ++y) {
        pixels += isLine(y);
        lines += isLine(y) && !isLine(y - 1);
      }
    }
    return lines == 0 ? 0.0 : static_cast<double>(pixels) / lines;
  };
  const double slow = meanWidth(1, 9), fast = meanWidth(11, 19);
  EXPECT_GE(slow, 1);
  EXPECT_NEAR(fast / slow, 1 / 0.4, 0.8) << fast << " and " << slow; // a quarter of the width, and by speed
}

TEST(StreamlinesPixels, NothingOverhangsTheWorld) {
  Drawn world("streamlines");
  const QPoint lower = world.At(-180, -90), upper = world.At(180, 90);
  int inside = 0, outside = 0;
  for (int y = 0; y < world.image.height(); ++y)
    for (int x = 0; x < upper.x() + 20; ++x) { // colour bars are further right
      const bool isOutside = x < lower.x() - 2 || x > upper.x() + 2 || y > lower.y() + 2 || y < upper.y() - 2;
      (isOutside ? outside : inside) += IsBright(world.image, {x, y}) && world.image.pixelColor(x, y).green() < 215;
    }
  EXPECT_GT(inside, 5000);
  EXPECT_EQ(outside, 0);
}

TEST(EarthquakesPixels, ColoursMatchTheBar) {
  Drawn week("earthquakes");
  // The largest one, at its middle; the bar is logarithmic from 5 to 600 km.
  const std::vector<QColor> colors = Library::NamedColors::Colors("plasma", 256, 0.97, 0.2);
  const std::tuple<double, double, double> cases[] = {{121.653, 24.1737, 10.64}, {70.8155, 36.5432, 191.19}};
  for (const auto& [lon, lat, depth] : cases) {
    const auto index = static_cast<std::size_t>(255 * std::log(depth / 5) / std::log(600 / 5.0));
    const QColor drawn = week.image.pixelColor(week.At(lon, lat, -depth));
    const int difference = std::abs(drawn.hsvHue() - colors[index].hsvHue());
    EXPECT_LT(std::min(difference, 360 - difference), 10)
        << depth << " km: " << drawn.name().toStdString() << " for " << colors[index].name().toStdString();
  }
}

TEST(FieldPictures, TitlesAreTrueToTheirFiles) {
  const TempFolder folder;
  Inputs own = DataInputs(), mine = own;
  for (auto [input, name, text] :
       {std::tuple(&Inputs::winds, "noaa_navy_winds_1987-01.csv", "lon,lat,u,v\n0,0,1,1\n1,0,1,1\n0,1,1,1\n1,1,1,1\n"),
        {&Inputs::quakes, "earthquakes.csv", "lon,lat,depth_km,mag\n1,2,3,4\n2,3,30,\n2,3,4,-1\n"},
        {&Inputs::relief, "etopo60.txt", "3 2 10 1 20 1\n1 2 3\n4 5 900\n"},
        {&Inputs::flow, "flow.csv",
         "x (km),y (km),z,u,v,w\n0,0,0,1,0,0\n1,0,0,1,0,0\n10,0,0,1,0,0\n0,5,0,1,0,0\n"
         "1,5,0,1,0,0\n10,5,0,1,0,0\n0,0,3,1,0,0\n1,0,3,1,0,0\n10,0,3,1,0,0\n"
         "0,5,3,1,0,0\n1,5,3,1,0,0\n10,5,3,1,0,0\n"}})
    mine.*input = folder.Write(name, text);
  const struct {
    const char* picture;
    std::vector<const char*> own, mine;
  } cases[] = {
      {"wind", {"January 1987", "Speed in m/s", "1152 of 10,512 arrows drawn"}, {"noaa_navy_winds_1987-01.csv"}},
      {"streamlines", {"January 1987", "width by speed"}, {"noaa_navy_winds_1987-01.csv"}},
      {"earthquakes", {"31 January to 7 February 2018, depths \u00D7 12", "Depth in km"}, {"earthquakes.csv"}},
      {"bars", {"1707 earthquakes, 31 January", "bars start at 0.5"}, {"2 earthquakes, earthquakes.csv"}},
      {"surface", {"southern Asia", "Height in m", "heights \u00D7 100", "contours every 1000"}, {"etopo60.txt"}},
      {"flow", {"Burgers", "x in cm", "Speed in cm/s"}, {"flow.csv", "3 \u00D7 2 \u00D7 2 nodes", "x in km", "\n10"}},
  };
  for (const auto& row : cases) {
    const QString ownStrings = Drawn(row.picture, own).Strings(), mineStrings = Drawn(row.picture, mine).Strings();
    for (const char* const text : row.own)
      EXPECT_TRUE(ownStrings.contains(text)) << row.picture << ": " << text << " in " << ownStrings.toStdString();
    for (const char* const text : row.mine)
      EXPECT_TRUE(mineStrings.contains(text)) << row.picture << ": " << text << " in " << mineStrings.toStdString();
    for (const char* const text : {"1987,", "January", "February", "Asia", "Burgers", "m/s", "world"})
      EXPECT_FALSE(mineStrings.contains(text)) << row.picture << ": " << text << " in " << mineStrings.toStdString();
  }
}

TEST(FieldPictures, HeightsAreAsMuchExaggeratedAsTheySay) {
  Drawn relief("surface");
  constexpr double MetresOfDegree = 111195;
  const auto length = [&](double p_lon, double p_lat, double p_z) {
    return Length(relief.figure.ToScene({p_lon, p_lat, p_z}) - relief.figure.ToScene({90, 25, 0}));
  };
  EXPECT_NEAR(length(90, 25, MetresOfDegree) / length(90, 26, 0), 100, 0.1);
  EXPECT_NEAR(length(91, 25, 0) / length(90, 26, 0), std::cos(25 * M_PI / 180), 1e-3);
}
