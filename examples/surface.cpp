// A surface with contour lines: heights over two axes, computed here.
#include <scene/Figure.h>

#include <cmath>

int main() {
  std::vector<double> axis, heights;
  for (int i = 0; i <= 200; ++i)
    axis.push_back(0.03 * i - 3);
  for (const double y : axis)
    for (const double x : axis)
      heights.push_back(std::exp(-0.3 * (x * x + y * y)) * (3 * std::sin(2 * x) - 2 * std::cos(3 * y)));
  Vek::Chart::Scene::Figure figure("Standing wave", "Amplitude of a membrane");
  figure.Surface(axis, axis, heights).Contours(12).ColorMap("coolwarm").ColorTitle("Amplitude in mm");
  figure.SetAxisTitles("x in mm", "y in mm", "Amplitude in mm").Save("surface.png");
}
