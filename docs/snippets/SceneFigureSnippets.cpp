// Examples of the reference for figures; it shows the lines between two marks.

#include "io/ReadTable.h"
#include "io/ReadVolume.h"
#include "scene/Figure.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

#include <array>
#include <cmath>
#include <fstream>
#include <string>
#include <vector>

using namespace Vek::Chart::Scene;

namespace {

class SceneFigureSnippetPixels : public ::testing::Test {
public:
  const std::string data = std::string(VEK_SOURCE_DIR) + "/data/";

protected:
  void SetUp() override { Vek::Test::MakeApplication(); }
};

TEST_F(SceneFigureSnippetPixels, Figure) {
  //! [Figure]
  const Io::Table wind = Io::ReadTable(data + "noaa_navy_winds_1987-01.csv");
  std::vector<double> speed;
  for (std::size_t i = 0; i < wind.Rows(); ++i)
    speed.push_back(std::hypot(wind["u"][i], wind["v"][i]));

  Figure figure("Winds of the world", "Monthly mean at the surface, January 1987");
  figure.SetAxisTitles("Longitude in °", "Latitude in °");
  figure.Quiver(wind.Points("lon", "lat"), wind.Vectors("u", "v")).ColorBy(speed).ColorTitle("Speed in m/s");
  const QImage image = figure.Image({1200, 680}); // or figure.Save("wind.png", {1200, 680})
  //! [Figure]
  Vek::Test::Shown(image, "Figure");
}

TEST_F(SceneFigureSnippetPixels, ScatterPlot) {
  //! [ScatterPlot]
  const Io::Table quakes = Io::ReadTable(data + "earthquakes.csv");
  Figure figure("Earthquakes", "31 January to 7 February 2018");
  figure.SetAxisTitles("Longitude in °", "Latitude in °");
  figure.Scatter(quakes.Points("lon", "lat"))
      .ColorBy(quakes["depth_km"])
      .ColorMap("plasma")
      .ColorTitle("Depth in km")
      .SizeBy(quakes["mag"])
      .SizeTitle("Magnitude")
      .Diameter(0.02)
      .SetOpacity(0.8);
  const QImage image = figure.Image({1200, 680});
  //! [ScatterPlot]
  Vek::Test::Shown(image, "ScatterPlot");
}

TEST_F(SceneFigureSnippetPixels, BarsPlot) {
  //! [BarsPlot]
  // Made-up differences from the mean of a year, by month and region.
  const std::vector<double> month{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, town{0, 1, 2, 3};
  std::vector<double> difference;
  for (const double t : town)
    for (const double m : month)
      difference.push_back((6 - 2 * t) * std::cos((m - 0.5 * t) * M_PI / 6));
  Figure figure("Pressure through the year");
  figure.SetAxisNames(0, {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"});
  figure.SetAxisNames(1, {"North", "East", "South", "West"}).SetAxisTitles("", "", "Difference in hPa");
  figure.Bars(month, town, difference).ColorMap("coolwarm").ColorRange(-6, 6).ColorTitle("Difference in hPa");
  const QImage image = figure.Image({1200, 800});
  //! [BarsPlot]
  Vek::Test::Shown(image, "BarsPlot");
}

TEST_F(SceneFigureSnippetPixels, LinesPlot) {
  //! [LinesPlot]
  // The attractor of Lorenz, coloured by speed.
  std::vector<std::array<double, 3>> track{{1, 1, 20}};
  std::vector<double> speed;
  for (int i = 0; i < 10000; ++i) {
    const auto [x, y, z] = track.back();
    const std::array<double, 3> v{10 * (y - x), x * (28 - z) - y, x * y - 8.0 / 3 * z};
    constexpr double Step = 0.005;
    track.push_back({x + Step * v[0], y + Step * v[1], z + Step * v[2]});
    speed.push_back(std::hypot(v[0], v[1], v[2]));
  }
  track.pop_back();
  Figure figure("Lorenz attractor");
  figure.Lines(track).ColorBy(speed).ColorMap("plasma").ColorTitle("Speed").Width(1.5);
  const QImage image = figure.Image({1200, 800});
  //! [LinesPlot]
  Vek::Test::Shown(image, "LinesPlot");
}

TEST_F(SceneFigureSnippetPixels, QuiverPlot) {
  //! [QuiverPlot]
  std::vector<std::array<double, 3>> positions, velocities;
  for (int i = 0; i < 9 * 9 * 5; ++i) {
    const double x = i % 9 - 4, y = i / 9 % 9 - 4, z = i / 81;
    positions.push_back({x, y, z});
    velocities.push_back({-y, x, 1});
  }
  Figure figure("Vortex");
  figure.theme = Theme::Dark();
  QuiverPlot& quiver = figure.Quiver(positions, velocities).Color(Qt::cyan).LengthTitle("Velocity in m/s");
  const QImage before = figure.Image({1200, 800});

  for (auto& velocity : velocities)
    velocity[2] = -1;
  quiver.UpdateVectors(velocities); // uploads vectors alone at the next drawing
  //! [QuiverPlot]
  Vek::Test::Shown(before, "QuiverPlot");
}

TEST_F(SceneFigureSnippetPixels, StreamlinesPlot) {
  //! [StreamlinesPlot]
  const Io::Table wind = Io::ReadTable(data + "noaa_navy_winds_1987-01.csv");
  VectorField field = VectorField::FromPoints(wind.Points("lon", "lat"), wind.Vectors("u", "v"));
  field.WrapX(360);
  Figure figure("Winds of the Pacific", "Monthly mean at the surface, January 1987");
  figure.SetAxisTitles("Longitude in °", "Latitude in °").SetLimits(0, 120, 290).SetLimits(1, -50, 60);
  figure.Streamlines(field).ColorTitle("Speed in m/s");
  const QImage image = figure.Image({1200, 800});
  //! [StreamlinesPlot]
  Vek::Test::Shown(image, "StreamlinesPlot");
}

TEST_F(SceneFigureSnippetPixels, SurfacePlot) {
  //! [SurfacePlot]
  std::ifstream file(data + "etopo60.txt");
  std::size_t columns = 0, rows = 0;
  double firstLon = 0, stepLon = 0, firstLat = 0, stepLat = 0;
  file >> columns >> rows >> firstLon >> stepLon >> firstLat >> stepLat;
  std::vector<double> lon(columns), lat(rows), heights(columns * rows);
  for (std::size_t i = 0; i < columns; ++i)
    lon[i] = firstLon + stepLon * static_cast<double>(i);
  for (std::size_t j = 0; j < rows; ++j)
    lat[j] = firstLat + stepLat * static_cast<double>(j);
  for (double& height : heights)
    file >> height;

  Figure figure("Relief of Asia", "Land and sea floor");
  figure.SetAxisTitles("Longitude in °", "Latitude in °", "Height in m").SetLimits(0, 60, 130).SetLimits(1, 0, 50);
  figure.Surface(lon, lat, heights).ColorTitle("Height in m").Contours(10);
  const QImage image = figure.Image({1200, 800});
  //! [SurfacePlot]
  Vek::Test::Shown(image, "SurfacePlot");
}

TEST_F(SceneFigureSnippetPixels, MeshPlot) {
  //! [MeshPlot]
  // A torus; values are known at its vertices.
  constexpr unsigned Around = 96, Across = 48;
  std::vector<std::array<double, 3>> positions;
  std::vector<std::array<unsigned, 3>> triangles;
  std::vector<double> values;
  for (unsigned i = 0; i < Around * Across; ++i) {
    const double u = 2 * M_PI * (i % Around) / Around, v = 2 * M_PI * (i / Around) / Across;
    const double radius = 3 + std::cos(v);
    positions.push_back({radius * std::cos(u), radius * std::sin(u), std::sin(v)});
    values.push_back(std::sin(3 * u) * std::cos(2 * v));
    const unsigned right = i % Around == Around - 1 ? i + 1 - Around : i + 1;
    const unsigned up = (i + Around) % (Around * Across), both = (right + Around) % (Around * Across);
    triangles.push_back({i, right, both});
    triangles.push_back({i, both, up});
  }
  Figure figure("Standing wave", "On a torus");
  figure.Mesh(positions, triangles).ColorBy(values).ColorMap("coolwarm").ColorTitle("Displacement in mm");
  figure.SetAspect(1, 1, 1);
  const QImage image = figure.Image({1200, 800});
  //! [MeshPlot]
  Vek::Test::Shown(image, "MeshPlot");
}

TEST_F(SceneFigureSnippetPixels, SlicesPlot) {
  //! [SlicesPlot]
  Io::Volume ocean = Io::ReadVolume(data + "ocean_salinity.txt"); // land and sea floor are 0
  ocean.noData = 0;
  std::vector<double> lon, lat;
  for (std::size_t i = 0; i < ocean.size[0]; ++i)
    lon.push_back(20.5 + 2.0 * static_cast<double>(i));
  for (std::size_t j = 0; j < ocean.size[1]; ++j)
    lat.push_back(-89.5 + 2.0 * static_cast<double>(j));
  const std::vector<double> heights = {0,    -10,  -20,  -30,   -50,   -75,   -100,  -150,  -200,  -300,
                                       -400, -600, -800, -1000, -1200, -1500, -2000, -3000, -4000, -5000};
  Figure figure("Salinity of the ocean", "Mean of all years");
  figure.SetAxisTitles("Longitude in °", "Latitude in °", "Height in m");
  figure.Slices({ocean.Floats(), lon, lat, heights})
      .At(0, 330)
      .At({{180, 0, 0}, {1, 1, 0}}) // oblique, and upright
      .At(2, -1000)
      .Show(33, 40) // without the fresh water of estuaries and ice
      .ColorRange(34, 37)
      .ColorTitle("Salinity in g/kg");
  const QImage image = figure.Image({1200, 800});
  //! [SlicesPlot]
  Vek::Test::Shown(image, "SlicesPlot");
}

TEST_F(SceneFigureSnippetPixels, VolumePlot) {
  //! [VolumePlot]
  // The wave function of the orbital 4f(xyz) of a hydrogen atom, 1 at most, without its constant factor.
  constexpr int N = 64;
  std::vector<double> wave;
  const auto at = [](int p_i) { return 50.0 * (p_i + 0.5) / N - 25; };
  for (int i = 0; i < N * N * N; ++i) {
    const double x = at(i % N), y = at(i / N % N), z = at(i / N / N);
    wave.push_back(x * y * z * std::exp(3 - std::hypot(x, y, z) / 4) * std::sqrt(27.0) / (12 * 12 * 12));
  }
  Figure figure("Orbital 4f(xyz)", "Wave function of a hydrogen atom");
  figure.theme = Theme::Dark();
  figure.Volume({wave, {N, N, N}, {{-25, -25, -25}, {25, 25, 25}}})
      .ColorMap("coolwarm")
      .ColorRange(-1, 1)
      .OpacityBy({{-1, 0.9}, {-0.1, 0}, {0.1, 0}, {1, 0.9}})
      .ColorTitle("Relative amplitude");
  figure.SetAxisTitles("x in Bohr radii", "y in Bohr radii", "z in Bohr radii");
  const QImage image = figure.Image({1200, 800});
  //! [VolumePlot]
  Vek::Test::Shown(image, "VolumePlot");
}

TEST_F(SceneFigureSnippetPixels, IsosurfacePlot) {
  //! [IsosurfacePlot]
  // The potential of two charges.
  constexpr int N = 60;
  std::vector<double> axis, potential;
  for (int i = 0; i < N; ++i)
    axis.push_back(6.0 * i / (N - 1) - 3);
  for (const double z : axis)
    for (const double y : axis)
      for (const double x : axis)
        potential.push_back(2 / std::hypot(x + 1.1, y, z) - 1 / std::hypot(x - 1.1, y, z));
  Figure figure("Potential of two charges", "+2 and −1");
  figure.Isosurface({potential, axis, axis, axis}, {-0.5, 0, 0.7, 1, 1.6})
      .ColorMap("coolwarm")
      .ColorRange(-1.6, 1.6)
      .ColorTitle("Potential in V")
      .SetOpacity(0.5);
  const QImage image = figure.Image({1200, 800});
  //! [IsosurfacePlot]
  Vek::Test::Shown(image, "IsosurfacePlot");
}

} // namespace
