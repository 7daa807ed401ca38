// Half-transparent surfaces that cross each other: each pixel shows them in their order, whatever the order of plots.
#include <scene/Figure.h>

#include <cmath>

int main() {
  std::vector<double> axis, upper, lower;
  for (int i = 0; i <= 160; ++i)
    axis.push_back(0.05 * i - 4);
  for (const double y : axis)
    for (const double x : axis) {
      const double sum = 2 * std::cos(std::sqrt(3) * y) + 4 * std::cos(std::sqrt(3) / 2 * y) * std::cos(1.5 * x);
      upper.push_back(2.8 * std::sqrt(std::max(0.0, 3 + sum)));
      lower.push_back(-upper.back());
    }
  Vek::Chart::Scene::Figure figure("Energy bands of graphene", "Both bands meet in points");
  for (const auto* band : {&upper, &lower})
    figure.Surface(axis, axis, *band).SetOpacity(0.6).ColorMap("coolwarm").ColorRange(-9, 9).ColorTitle("Energy in eV");
  figure.SetAspect(2, 2, 1)
      .SetAxisTitles("Wave number along x", "Wave number along y", "Energy in eV")
      .Save("transparent.png");
}
