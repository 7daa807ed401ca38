// A surface with contour lines: heights from a file, over longitudes and latitudes.
#include <io/ReadHeights.h>
#include <scene/Figure.h>

using namespace Vek::Chart;

int main() {
  const auto relief = Io::ReadHeights(Io::SampleFile("etopo60.txt"));
  Scene::Figure figure("Relief of Asia", "Land and sea floor");
  figure.Surface(relief.x, relief.y, relief.heights).Contours(20).ColorTitle("Height in m");
  figure.SetLimits(0, 60, 130).SetLimits(1, 0, 50).SetAxisTitles("Longitude in °", "Latitude in °", "Height in m");
  figure.Save("surface.png");
}
