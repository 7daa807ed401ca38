// A trajectory as a line in space, coloured by time.
#include <scene/Figure.h>

int main() {
  std::vector<std::array<double, 3>> points;
  std::vector<double> times;
  std::array<double, 3> p{1, 1, 1};
  for (int i = 0; i < 8000; ++i) {
    constexpr double Step = 0.005;
    p = {p[0] + Step * 10 * (p[1] - p[0]), p[1] + Step * (p[0] * (28 - p[2]) - p[1]),
         p[2] + Step * (p[0] * p[1] - 8 * p[2] / 3)};
    points.push_back(p);
    times.push_back(Step * i);
  }
  Vek::Chart::Scene::Figure figure("Lorenz attractor", "σ = 10, ρ = 28, β = 8/3");
  figure.Lines(points).Tubes(0.4).ColorBy(times, "Time").ColorMap("plasma");
  figure.Save("lines.png");
}
