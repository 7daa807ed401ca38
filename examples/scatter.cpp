// Symbols at points: a CSV file of earthquakes, coloured by depth, sized by magnitude.
#include <io/ReadTable.h>
#include <scene/Figure.h>

int main(int argc, char** argv) {
  auto quakes = Vek::Chart::Io::ReadTable(argc > 1 ? argv[1] : Vek::Chart::Io::SampleFile("earthquakes.csv"));
  Vek::Chart::Scene::Figure figure("Earthquakes", "31 January to 7 February 2018");
  auto& plot = figure.Scatter(quakes.Points("lon", "lat")).ColorBy(quakes["depth_km"]).ColorTitle("Depth in km");
  plot.SizeBy(quakes["mag"]).SizeTitle("Magnitude").Diameter(0.02).SetOpacity(0.8);
  figure.SetAxisTitles("Longitude in °", "Latitude in °").Save("scatter.png", {1200, 680});
}
