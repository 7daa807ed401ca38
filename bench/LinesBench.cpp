// Ten thousand to a million segments of lines in 1600 x 1000 pixels, as tubes with levels of detail and as thin lines.
// All times are CPU times of all threads, but for `wall_ms`. GLYPH_IMAGES=FOLDER in the environment keeps the images.

#include "library/StreamLineShape.h"
#include "scene/Camera.h"
#include "scene/Figure.h"
#include "scene/GpuMesh.h"
#include "scene/TubeMesh.h"

#include "bench/FramePixels.h"

#include <QGuiApplication>

#include <chrono>
#include <cmath>
#include <limits>
#include <random>

using namespace Vek::Chart;
using namespace Vek::Bench;

namespace {

/// Qt needs it for fonts.
void NeedFonts() {
  static char name[] = "LinesBench", option[] = "-platform", platform[] = "offscreen";
  static char* arguments[] = {name, option, platform, nullptr};
  static int count = 3;
  static const QGuiApplication Application(count, arguments);
}

/// Arcs of 100 segments of two units, in front of each other, with values that change along each.
struct Curves {
  static constexpr std::size_t Length = 100;
  explicit Curves(std::size_t p_segments)
      : lengths(p_segments / Length, Length + 1) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> number(0, 1);
    for (std::size_t line = 0; line < lengths.size(); ++line) {
      const double x = Width * number(random), y = Height * number(random), phase = 6.28 * number(random);
      for (std::size_t i = 0; i <= Length; ++i) {
        const double t = 0.05 * static_cast<double>(i);
        points.push_back({x + 40 * std::cos(t + phase), y + 40 * std::sin(t + phase), 8 * t});
        values.push_back(0.5 + 0.5 * std::sin(t + 2 * phase));
      }
    }
  }
  /// Whole tubes around the points as `p_placed` moves them.
  template <class Place>
  Scene::GpuMesh Tubes(double p_width, Place&& p_placed) const {
    Scene::TubeMesh tubes{Library::StreamLineShape(Library::StreamLineShape::ShapeTube, {})};
    for (std::size_t first = 0; first < points.size(); first += Length + 1) {
      std::vector<Scene::TubeMesh::Point> line;
      for (std::size_t i = first; i <= first + Length; ++i)
        line.push_back(
            {p_placed(Types::Vector3_Base<double>(points[i][0], points[i][1], points[i][2])), p_width, values[i]});
      tubes.Add(line);
    }
    return Scene::GpuMesh(tubes.TakeMesh());
  }
  Points points;
  std::vector<double> values;
  std::vector<std::size_t> lengths;
};

enum LineKind { Tubes, ThinLines };

/// A figure of lines, about a pixel and a half wide.
struct LinesFigure {
  static constexpr double TubeWidth = 2; // in the data, which are a little larger than their image
  LinesFigure(const Curves& p_curves, LineKind p_kind)
      : lines(figure.Lines(p_curves.points, p_curves.lengths).ColorBy(p_curves.values).ColorRange(0, 1)) {
    figure.Look(0, 90, Scene::Camera::Projection::Parallel).SetAspect(1, 1, 1);
    if (p_kind == Tubes)
      lines.Tubes(TubeWidth);
    else
      lines.Width(1.5);
    camera = figure.Layout(viewport).camera;
  }
  double Draw(Target& p_target, double p_shift = 0) {
    figure.camera = camera;
    figure.camera->target.x += p_shift;
    p_target.gl->Finish();
    const double start = CpuSeconds();
    figure.Draw(p_target.gl, viewport);
    p_target.gl->Finish();
    return CpuSeconds() - start;
  }
  /// Whole tubes in place of the lines; the CPU time of their drawing.
  double DrawWhole(Target& p_target, const Curves& p_curves) {
    figure.camera = camera;
    const double unit = Types::Length(figure.ToScene({1, 0, 0}) - figure.ToScene({}));
    const Scene::GpuMesh mesh =
        p_curves.Tubes(TubeWidth * unit, [&](const auto& p_point) { return figure.ToScene(p_point); });
    lines.SetOpacity(0);
    figure.Draw(p_target.gl, viewport);
    lines.SetOpacity(1);
    const auto matrices = figure.camera->Apply(p_target.gl, viewport);
    Scene::DirectionalLight light;
    light.ambient = 0.45, light.diffuse = 0.55, light.specular = 0.08;
    const auto lit = light.Apply(p_target.gl);
    p_target.gl->Clear(RGL_DEPTH_BUFFER_BIT);
    p_target.gl->Enable(RGL_DEPTH_TEST);
    double seconds = 0;
    for (int i = 0; i < 2; ++i) { // uploads first
      p_target.gl->Finish();
      const double start = CpuSeconds();
      mesh.Draw(p_target.gl, p_target.map);
      p_target.gl->Finish();
      seconds = CpuSeconds() - start;
    }
    return seconds;
  }
  const Types::Viewport<0> viewport{0, 0, Width, Height};
  Scene::Figure figure;
  Scene::LinesPlot& lines;
  Scene::Camera camera;
};

/// Frames of lines. `of_full` is the time of whole tubes over that of those that are drawn; it is asked to be 10 at
/// least for 10^6 segments. `different` is the share of pixels that differ from those of whole tubes, asked to be 0.01
/// at most for 10^4 segments; `mean` is the mean difference of a channel at a quarter of the size, asked to be 4 at
/// most.
void Streamlines(benchmark::State& p_state, LineKind p_kind) {
  NeedFonts();
  Target target(static_cast<int>(p_state.range(1)));
  const Curves curves(static_cast<std::size_t>(p_state.range(0)));
  LinesFigure figure(curves, p_kind);
  const double first = figure.Draw(target);
  const QImage image = target.context.Image();
  double least = std::numeric_limits<double>::infinity(), leastWall = least, shift = 0;
  for (auto _ : p_state) {
    const auto start = std::chrono::steady_clock::now();
    const double seconds = figure.Draw(target, shift += 1e-3);
    leastWall = std::min(leastWall, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    p_state.SetIterationTime(seconds);
    least = std::min(least, seconds);
  }
  p_state.counters["first_ms"] = 1e3 * first;
  p_state.counters["least_ms"] = 1e3 * least;
  p_state.counters["wall_ms"] = 1e3 * leastWall;
  if (p_kind != Tubes)
    return;
  const double full = figure.DrawWhole(target, curves);
  const QImage fullImage = target.context.Image();
  if (const char* const folder = std::getenv("GLYPH_IMAGES")) {
    const QString name = QStringLiteral("%1/tubes-%2-%3.png").arg(folder).arg(p_state.range(0));
    image.save(name.arg("levels"));
    fullImage.save(name.arg("full"));
  }
  p_state.counters["full_ms"] = 1e3 * full;
  p_state.counters["of_full"] = full / least;
  p_state.counters["different"] = ShareOfDifferent(image, fullImage);
  p_state.counters["mean"] = MeanOfQuarter(image, fullImage);
}
BENCHMARK_CAPTURE(Streamlines, Tubes, Tubes)->ArgsProduct({{10000, 100000, 1000000}, {0, 4}})->Apply(ThreeFrames);
BENCHMARK_CAPTURE(Streamlines, ThinLines, ThinLines)->ArgsProduct({{10000, 100000, 1000000}, {0}})->Apply(ThreeFrames);

} // namespace
