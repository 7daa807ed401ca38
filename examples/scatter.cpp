// Symbols at points: a CSV file of earthquakes, coloured by depth, sized by magnitude.
#include <io/ReadTable.h>
#include <scene/Figure.h>

int main() {
  auto data = Vek::Chart::Io::ReadTable(Vek::Chart::Io::SampleFile("earthquakes.csv"));
  Vek::Chart::Scene::Figure figure("Earthquakes", "31 January to 7 February 2018");
  figure.Scatter(data.Points("lon", "lat")).ColorBy(data["depth_km"], "Depth in km").SizeBy(data["mag"], "Magnitude");
  figure.SetAxisTitles("Longitude in °", "Latitude in °").Save("scatter.png", {1200, 640});
}
