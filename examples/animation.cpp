// Frames of an animation: new values for a plot that stays. Only the array that changed is uploaded.
#include <scene/Figure.h>

#include <cmath>

int main() {
  constexpr int Nodes = 121, Frames = 6;
  std::vector<double> axis, heights(Nodes * Nodes);
  for (int i = 0; i < Nodes; ++i)
    axis.push_back(0.1 * i - 6);
  Vek::Chart::Scene::Figure figure("Circular wave");
  figure.SetAxisTitles("x in m", "y in m", "Height in m").SetLimits(2, -1, 1).SetAspect(1, 1, 2);
  auto& wave = figure.Surface(axis, axis, heights).ColorMap("coolwarm").ColorRange(-1, 1).ColorTitle("Height in m");
  for (int frame = 0; frame < Frames; ++frame) {
    const double time = static_cast<double>(frame) / Frames; // in periods
    for (int i = 0; i < Nodes * Nodes; ++i) {
      const double radius = std::hypot(axis[i % Nodes], axis[i / Nodes]);
      heights[i] = std::cos(2 * (radius - M_PI * time)) / (1 + radius);
    }
    wave.UpdateHeights(heights);
    figure.SetTitle("Circular wave", QString("%1 periods").arg(time, 0, 'f', 2));
    figure.Save(QString("animation-%1.png").arg(frame));
  }
}
