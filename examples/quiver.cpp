// Arrows: a CSV file with columns for positions and vectors, coloured by the lengths of the vectors.
#include <io/ReadTable.h>
#include <scene/Figure.h>

int main() {
  auto wind = Vek::Chart::Io::ReadTable(Vek::Chart::Io::SampleFile("noaa_navy_winds_1987-01.csv"));
  Vek::Chart::Scene::Figure figure("Winds of the world", "Monthly mean at the surface, January 1987");
  figure.Quiver(wind.Points("lon", "lat"), wind.Vectors("u", "v")).ColorByLength().ColorTitle("Speed in m/s");
  figure.SetAxisTitles("Longitude in °", "Latitude in °").Save("quiver.png", {1200, 680});
}
