// A volume that is looked through, computed here: the values of a regular grid in a box, high ones opaque.
#include <scene/Figure.h>

#include <cmath>

int main() {
  std::vector<double> values; // x fastest, then y, then z
  for (int i = 0; i < 80 * 80 * 80; ++i) {
    const double x = 0.3 * (i % 80) - 11.85, y = 0.3 * (i / 80 % 80) - 11.85, z = 0.3 * (i / 6400) - 11.85;
    values.push_back(1000 * std::pow((3 * z * z - x * x - y * y - z * z) * std::exp(-std::hypot(x, y, z) / 3), 2));
  }
  Vek::Chart::Scene::Figure figure("Orbital of hydrogen", "Probability density of the state 3d, m = 0");
  figure.Volume({values, {80, 80, 80}, {{-12, -12, -12}, {12, 12, 12}}}).ColorMap("magma").ColorTitle("Density");
  figure.SetAxisTitles("x in Bohr radii", "y in Bohr radii", "z in Bohr radii").Save("volume.png");
}
