// Frames of figures by the clock, as a view draws them: 1600 x 1000 pixels, 4 samples.
// All times are asked for on four idle cores. While the mouse moves, `wall_ms` and `first_ms`, the first frame after a
// frame at rest, are asked to be 60 at most; at rest, `wall_ms` is asked to be 1000 at most. Both are medians.
// `Approach` moves the camera towards tubes in 20 frames at rest. `jump` is the largest mean difference between two
// successive images over the median one: 2 and above would be seen as a flash.

#include "platform/model/Symbol.h"
#include "platform/ogl/OffscreenContext.h"
#include "scene/Figure.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <random>
#include <vector>

using namespace Vek::Chart;

namespace {

using Clock = std::chrono::steady_clock;
using Points = std::vector<std::array<double, 3>>;
enum Kind { Arrows, Spheres, SmallSpheres, ClearSpheres, Cubes, ClearCubes, Tubes, ClearTubes, ThinLines };

/// Qt needs it for fonts.
void NeedFonts() {
  static char name[] = "FrameBench", option[] = "-platform", platform[] = "offscreen";
  static char* arguments[] = {name, option, platform, nullptr};
  static int count = 3;
  static const QGuiApplication Application(count, arguments);
}

/// CPU time of the process, of all threads.
double CpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& p_time) {
    return static_cast<double>(p_time.tv_sec) + 1e-6 * static_cast<double>(p_time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

Points Cloud(std::size_t p_count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  Points points(p_count);
  for (auto& point : points)
    point = {1.6 * number(random), number(random), number(random)};
  return points;
}

/// Arcs of 100 segments in front of each other, with values that change along each.
struct Curves {
  static constexpr std::size_t Length = 100;
  explicit Curves(std::size_t p_segments)
      : lengths(p_segments / Length, Length + 1) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> number(0, 1);
    for (std::size_t line = 0; line < lengths.size(); ++line) {
      const double x = 1600 * number(random), y = 1000 * number(random), phase = 6.28 * number(random);
      for (std::size_t i = 0; i <= Length; ++i) {
        const double t = 0.05 * static_cast<double>(i);
        points.push_back({x + 40 * std::cos(t + phase), y + 40 * std::sin(t + phase), 8 * t});
        values.push_back(0.5 + 0.5 * std::sin(t + 2 * phase));
      }
    }
  }
  Points points;
  std::vector<double> values;
  std::vector<std::size_t> lengths;
};

/// A figure of a plot, and the buffers that it is drawn into.
class View {
public:
  View(Kind p_kind, std::size_t p_count, int p_samples = 4)
      : context({1600, 1000}, p_samples)
      , gl(context.Handle()) {
    Add(p_kind, p_count);
    Draw();
    camera = figure.Layout(viewport).camera;
  }
  ~View() { Ogl::Release(gl); }
  double Draw() {
    gl->Finish();
    const Clock::time_point start = Clock::now();
    figure.Draw(gl, viewport);
    gl->Finish();
    return 1e3 * std::chrono::duration<double>(Clock::now() - start).count();
  }
  /// The milliseconds of a frame from another side.
  double DrawTurned() {
    camera.azimuth += 1;
    figure.camera = camera;
    return Draw();
  }
  Ogl::OffscreenContext context;
  Utility::Scoped<Rgl> gl;
  const Types::Viewport<0> viewport{0, 0, 1600, 1000};
  Scene::Figure figure{"Title", "Subtitle"};
  Scene::Camera camera;

private:
  void Add(Kind p_kind, std::size_t p_count);
  void AddLines(Kind p_kind, std::size_t p_count);
};

void View::AddLines(Kind p_kind, std::size_t p_count) {
  const Curves curves(p_count);
  auto& lines = figure.Lines(curves.points, curves.lengths).ColorBy(curves.values).ColorRange(0, 1);
  figure.Look(0, 90, Scene::Camera::Projection::Parallel).SetAspect(1, 1, 1);
  if (p_kind == ThinLines)
    lines.Width(1.5);
  else
    lines.Tubes(2).SetOpacity(p_kind == ClearTubes ? 0.5 : 1);
}

void View::Add(Kind p_kind, std::size_t p_count) {
  if (p_kind == Tubes || p_kind == ClearTubes || p_kind == ThinLines)
    return AddLines(p_kind, p_count);
  const Points points = Cloud(p_count);
  if (p_kind == Arrows) {
    figure.Quiver(points, points).Most(p_count).ColorByLength();
    return;
  }
  std::vector<double> values;
  for (const auto& point : points)
    values.push_back(point[0]);
  auto& symbols = figure.Scatter(points).ColorBy(values);
  if (p_kind == SmallSpheres)
    symbols.Diameter(1e-6); // four points
  if (p_kind == Cubes || p_kind == ClearCubes)
    symbols.Symbol(Model::Symbol::ShapeCube);
  symbols.SetOpacity(p_kind == ClearSpheres || p_kind == ClearCubes ? 0.5 : 1);
}

double Median(std::vector<double> p_values) {
  std::sort(p_values.begin(), p_values.end());
  return p_values[p_values.size() / 2];
}

/// Frames at rest or moving, each from another side.
void Frames(benchmark::State& p_state, Kind p_kind, bool p_isMoving) {
  NeedFonts();
  View scene(p_kind, static_cast<std::size_t>(p_state.range(0)));
  scene.figure.SetMoving(false); // as a view does
  scene.DrawTurned();
  scene.figure.SetMoving(p_isMoving);
  p_state.counters["first_ms"] = scene.DrawTurned();
  std::vector<double> wall, cpu;
  for (auto _ : p_state) {
    const double start = CpuSeconds();
    wall.push_back(scene.DrawTurned());
    cpu.push_back(1e3 * (CpuSeconds() - start));
    p_state.SetIterationTime(1e-3 * wall.back());
  }
  p_state.counters["wall_ms"] = Median(wall);
  p_state.counters["most_ms"] = *std::max_element(wall.begin(), wall.end());
  p_state.counters["cpu_ms"] = Median(cpu);
}

void Moving(benchmark::State& p_state, Kind p_kind) {
  Frames(p_state, p_kind, true);
}
void Rest(benchmark::State& p_state, Kind p_kind) {
  Frames(p_state, p_kind, false);
}
void FewFrames(benchmark::internal::Benchmark* p_benchmark) {
  p_benchmark->UseManualTime()->Unit(benchmark::kMillisecond);
}
void MovingFrames(benchmark::internal::Benchmark* p_benchmark) {
  FewFrames(p_benchmark->Arg(10000)->Arg(100000)->Arg(1000000)->Iterations(9));
}
void RestingFrames(benchmark::internal::Benchmark* p_benchmark) {
  FewFrames(p_benchmark->Arg(100000)->Arg(1000000)->Iterations(2));
}
BENCHMARK_CAPTURE(Moving, Arrows, Arrows)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Moving, Spheres, Spheres)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Moving, SmallSpheres, SmallSpheres)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Moving, ClearSpheres, ClearSpheres)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Moving, Cubes, Cubes)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Moving, ClearCubes, ClearCubes)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Moving, Tubes, Tubes)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Moving, ClearTubes, ClearTubes)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Moving, ThinLines, ThinLines)->Apply(MovingFrames);
BENCHMARK_CAPTURE(Rest, Arrows, Arrows)->Apply(RestingFrames);
BENCHMARK_CAPTURE(Rest, Spheres, Spheres)->Apply(RestingFrames);
BENCHMARK_CAPTURE(Rest, SmallSpheres, SmallSpheres)->Apply(RestingFrames);
BENCHMARK_CAPTURE(Rest, ClearSpheres, ClearSpheres)->Apply(RestingFrames);
BENCHMARK_CAPTURE(Rest, Cubes, Cubes)->Apply(RestingFrames);
BENCHMARK_CAPTURE(Rest, ClearCubes, ClearCubes)->Apply(RestingFrames);
BENCHMARK_CAPTURE(Rest, Tubes, Tubes)->Apply(RestingFrames);
BENCHMARK_CAPTURE(Rest, ClearTubes, ClearTubes)->Apply(RestingFrames);
BENCHMARK_CAPTURE(Rest, ThinLines, ThinLines)->Apply(RestingFrames);

double MeanDifference(const QImage& p_a, const QImage& p_b) {
  double sum = 0;
  for (int y = 0; y < p_a.height(); ++y)
    for (int x = 0; x < p_a.width(); ++x) {
      const QRgb a = p_a.pixel(x, y), b = p_b.pixel(x, y);
      sum += std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b));
    }
  return sum / (3.0 * p_a.width() * p_a.height());
}

/// Tubes whose section changes on the way, the camera a little nearer in each frame; they start with `range(0)`
/// thousandths of the whole view.
void Approach(benchmark::State& p_state, bool p_isMoving) {
  NeedFonts();
  View scene(Tubes, 100000);
  scene.figure.SetMoving(p_isMoving);
  scene.camera.distance *= static_cast<double>(p_state.range(0)) / 1000;
  QImage last;
  std::vector<double> differences;
  const auto step = [&] {
    scene.figure.camera = scene.camera;
    scene.Draw();
    const QImage image = scene.context.Image();
    if (!last.isNull())
      differences.push_back(MeanDifference(last, image));
    last = image;
  };
  for (auto _ : p_state)
    for (int i = 0; i <= 20; ++i) {
      step();
      scene.camera.distance *= 0.9985;
    }
  p_state.counters["median"] = Median(differences);
  p_state.counters["jump"] = *std::max_element(differences.begin(), differences.end()) / Median(differences);
}
// Around diameters of 2.6 and of 7 pixels, where the section changes.
BENCHMARK_CAPTURE(Approach, Resting, false)->Arg(635)->Arg(236)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Approach, Moving, true)->Arg(635)->Arg(236)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
