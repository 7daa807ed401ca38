// Slices through a volume, computed here: the values of a regular grid in a box.
#include <scene/Figure.h>

#include <cmath>

int main() {
  std::vector<double> values; // x fastest, then y, then z
  for (int i = 0; i < 80 * 80 * 80; ++i) {
    const double x = 0.25 * (i % 80) - 9.875, y = 0.25 * (i / 80 % 80) - 9.875, z = 0.25 * (i / 6400) - 9.875;
    values.push_back(z * std::exp(-std::hypot(x, y, z) / 2) * (x - y));
  }
  Vek::Chart::Scene::Figure figure("Orbital of hydrogen");
  figure.Slices({values, {80, 80, 80}, {{-10, -10, -10}, {10, 10, 10}}}).ColorMap("coolwarm").ColorTitle("Amplitude");
  figure.SetAxisTitles("x in Bohr radii", "y in Bohr radii", "z in Bohr radii").Save("slices.png");
}
