// A surface with contour lines, over axes with even or uneven distances.
#include <scene/Figure.h>

#include <cmath>

int main() {
  std::vector<double> x, y, heights;
  for (int i = 0; i <= 200; ++i) {
    x.push_back(0.04 * i - 4);
    y.push_back(0.04 * i - 4);
  }
  for (const double v : y)
    for (const double u : x)
      heights.push_back(3 * std::exp(-u * u - v * v) - 2 * std::exp(-(u - 1) * (u - 1) - (v - 1) * (v - 1)));
  Vek::Chart::Scene::Figure figure("Potential");
  figure.Surface(x, y, heights).Contours(12).ColorMap("coolwarm").ColorTitle("Potential in V");
  figure.SetAxisTitles("x in m", "y in m", "Potential in V").Save("surface.png");
}
