// Streamlines: the wind of a NetCDF file, as lines at even distances whose width and colour follow the speed.
#include <io/ReadVectorField.h>
#include <scene/Figure.h>

using namespace Vek::Chart;

int main() {
  const auto wind = Io::ReadVectorField(Io::SampleFile("navy_winds_1987.nc"));
  const auto field = Scene::VectorField::Rectilinear(wind.axes[0], wind.axes[1], wind.axes[2], wind.vectors);
  Scene::Figure figure("Winds of the world", QString::fromStdString(wind.times.at(wind.time)));
  figure.Streamlines(field).ColorTitle("Speed in m/s");
  figure.SetAxisTitles("Longitude in °", "Latitude in °").Save("streamlines.png", {1200, 680});
}
