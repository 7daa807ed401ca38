// Examples of the reference for maps, dates and grids of figures; it shows the lines between two marks.

#include "io/ReadTable.h"
#include "scene/Background.h"
#include "scene/Canvas.h"
#include "scene/Figure.h"
#include "scene/FigureGrid.h"
#include "scene/Graticule.h"
#include "scene/InstancedMesh.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

#include <array>
#include <cmath>
#include <string>
#include <vector>

using namespace Vek::Chart::Scene;

namespace {

class SceneMapSnippetPixels : public ShownFixture {
public:
  SceneMapSnippetPixels()
      : ShownFixture({1280, 720}) {}

public:
  const std::string data = std::string(VEK_SOURCE_DIR) + "/data/";
};

TEST_F(SceneMapSnippetPixels, Graticule) {
  const Io::Table quakes = Io::ReadTable(data + "earthquakes.csv");
  const TextRenderer text;
  const Theme theme = Theme::Dark();
  //! [Graticule]
  const Graticule map{-10, 350, -75, 75}; // with the Pacific in the middle
  std::vector<Types::Vector3_Base<double>> positions;
  for (std::size_t i = 0; i < quakes.Rows(); ++i)
    if (const double lon = quakes["lon"][i], lat = quakes["lat"][i]; map.Contains(lon, lat)) {
      const Types::Vector2_Base<double> place = map.Position(lon, lat);
      positions.push_back({place.x, place.y, 0});
    }
  const Axes axes = map.MakeAxes();
  Camera camera;
  camera.Look(Camera::StandardView::Top);
  camera.projection = Camera::Projection::Parallel;
  Axes::State state;
  const AxesLayout layout =
      axes.Fit(camera, {viewport, PointSize, Axes::MeasureIn(theme, PointSize)}, {20, 20, 20, 20}, state);

  DrawBackground(gl, viewport, theme);
  Canvas canvas(gl, viewport, text, PointSize);
  Axes::Draw(canvas, layout, theme);
  for (const auto& position : positions)
    if (const Camera::Pixel pixel = camera.Project(position, viewport); pixel.visible) {
      const auto [x, y] = canvas.PositionOf(pixel);
      canvas.Fill({x - 1.5, y - 1.5, x + 1.5, y + 1.5}, QColor(0xFFB347));
    }
  canvas.Flush();
  //! [Graticule]
  Show("Graticule");
}

TEST_F(SceneMapSnippetPixels, Map) {
  //! [Map]
  const Io::Table wind = Io::ReadTable(data + "noaa_navy_winds_1987-01.csv"); // longitudes from 20 to 380
  Figure figure("Winds of the world", "Monthly mean at the surface, January 1987");
  figure.SetMap().SetLimits(0, -180, 180);
  figure.Quiver(wind.Points("lon", "lat"), wind.Vectors("u", "v")).ColorByLength().ColorTitle("Speed in m/s");
  const QImage image = figure.Image({1200, 680});
  //! [Map]
  Vek::Test::Shown(image, "Map");
}

TEST_F(SceneMapSnippetPixels, Dates) {
  //! [Dates]
  const Io::Table quakes = Io::ReadTable(data + "earthquakes.csv");
  std::vector<double> seconds;
  for (const double milliseconds : quakes["time_ms"])
    seconds.push_back(milliseconds / 1000);
  Figure figure("A week of earthquakes", "Time upwards");
  figure.SetAxisTitles("Longitude in °", "Latitude in °", "Time").SetDateAxis(2).Look(-60, 20);
  figure.Scatter({quakes["lon"], quakes["lat"], seconds}).ColorBy(quakes["mag"]).ColorTitle("Magnitude");
  const QImage image = figure.Image({1200, 800});
  //! [Dates]
  Vek::Test::Shown(image, "Dates");
}

TEST_F(SceneMapSnippetPixels, FigureGrid) {
  //! [FigureGrid]
  constexpr int Count = 60;
  std::vector<double> axis;
  for (int i = 0; i <= Count; ++i)
    axis.push_back(6.0 * i / Count - 3);
  FigureGrid grid(1, 2, "Modes of a square membrane", "At the same scale");
  for (const int mode : {1, 2}) {
    std::vector<double> heights;
    for (const double y : axis)
      for (const double x : axis)
        heights.push_back(std::cos(M_PI * mode * x / 6) * std::cos(M_PI * y / 6));
    Figure& figure = grid.At(0, static_cast<std::size_t>(mode - 1));
    figure.SetTitle(QString("Mode %1, 1").arg(mode)).SetAspect(1, 1, 1).SetLimits(2, -1, 1);
    figure.Surface(axis, axis, heights).ColorMap("coolwarm").ColorRange(-1, 1).ColorTitle("Deflection in mm");
  }
  grid.At(0, 0).Look(30, 40);
  grid.LinkCameras();                           // the second figure follows the first
  const QImage image = grid.Image({1600, 720}); // or grid.Save("modes.pdf", {1600, 720})
  //! [FigureGrid]
  Vek::Test::Shown(image, "FigureGrid");
}

} // namespace
