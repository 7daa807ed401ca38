// Figures of a thousand to a million glyphs: calls of GL for each frame, the library's own time in it, what is
// uploaded, and the share of text. Functions of GL are metered one by one. Where only the library counts, those that
// draw are left out, since the rasteriser takes most of the time.

#include "platform/ogl/OffscreenContext.h"
#include "platform/ogl/Text.h"
#include "scene/Figure.h"
#include "scene/InstancedMesh.h"

#include <benchmark/benchmark.h>

#include <boost/make_shared.hpp>

#include <QGuiApplication>

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <random>

using namespace Vek::Chart;
using Ogl::GlFunctions;

namespace {

using Clock = std::chrono::steady_clock;
using Points = std::vector<std::array<double, 3>>;

double SecondsSince(Clock::time_point p_start) {
  return std::chrono::duration<double>(Clock::now() - p_start).count();
}

/// What GL did since `Reset`.
struct Meter {
  double calls = 0, seconds = 0, uploaded = 0;
  bool draws = true; ///< whether functions that draw are called
  bool times = true; ///< whether `seconds` is measured
  void Reset() { calls = seconds = uploaded = 0; }
} meter;

template <auto Member>
struct Metered;
template <class R, class... A, R (*GlFunctions::*Member)(A...)>
struct Metered<Member> {
  static R Call(A... p_arguments) {
    ++meter.calls;
    if (!meter.times)
      return (Ogl::NativeGl().*Member)(p_arguments...);
    struct Timer {
      Clock::time_point start = Clock::now();
      ~Timer() { meter.seconds += SecondsSince(start); }
    } const timer;
    return (Ogl::NativeGl().*Member)(p_arguments...);
  }
  static R Draw(A... p_arguments) {
    if (meter.draws)
      return Call(p_arguments...);
    ++meter.calls;
  }
};

/// The native functions, metered. The library uploads by mappings and by BufferData.
boost::shared_ptr<GlFunctions> MeteredGl() {
  const auto table = boost::make_shared<GlFunctions>();
#define VEK_GL(p_result, p_name, p_parameters, p_arguments) table->p_name = Metered<&GlFunctions::p_name>::Call;
#include "platform/ogl/GlFunctionList.h"
  table->DrawArrays = Metered<&GlFunctions::DrawArrays>::Draw;
  table->DrawElements = Metered<&GlFunctions::DrawElements>::Draw;
  table->DrawArraysInstanced = Metered<&GlFunctions::DrawArraysInstanced>::Draw;
  table->DrawElementsInstanced = Metered<&GlFunctions::DrawElementsInstanced>::Draw;
  table->MapBufferRange = [](Ogl::GlEnum p_target, Ogl::GlSize p_offset, Ogl::GlSize p_length,
                             Ogl::GlBitfield p_access) {
    meter.uploaded += static_cast<double>(p_length);
    return Metered<&GlFunctions::MapBufferRange>::Call(p_target, p_offset, p_length, p_access);
  };
  table->BufferData = [](Ogl::GlEnum p_target, Ogl::GlSize p_size, const void* p_data, Ogl::GlEnum p_usage) {
    meter.uploaded += p_data != nullptr ? static_cast<double>(p_size) : 0;
    Metered<&GlFunctions::BufferData>::Call(p_target, p_size, p_data, p_usage);
  };
  return table;
}

/// A context without a window, drawn into through the metered functions.
class Target {
public:
  explicit Target(bool p_draws)
      : _context({1600, 1000})
      , _current(_context.Handle())
      , _handle(boost::make_shared<Rgl>(MeteredGl()))
      , gl(_handle) {
    meter.draws = p_draws;
    meter.times = true;
  }
  ~Target() { Ogl::Release(gl); }
  /// The seconds of a function, until GL has done all of it.
  template <class Function>
  double Seconds(const Function& p_function) {
    gl->Finish();
    const Clock::time_point start = Clock::now();
    p_function();
    gl->Finish();
    return SecondsSince(start);
  }

  /// Likewise, CPU time of all threads, or of the calling one.
  template <class Function>
  double CpuSeconds(const Function& p_function, clockid_t p_clock = CLOCK_PROCESS_CPUTIME_ID) {
    const auto now = [&] {
      timespec time{};
      clock_gettime(p_clock, &time);
      return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    };
    gl->Finish();
    const double start = now();
    p_function();
    gl->Finish();
    return now() - start;
  }

private:
  Ogl::OffscreenContext _context;
  Utility::Scoped<Rgl> _current; ///< keeps the context current
  Utility::Unscoped<Rgl> _handle;

public:
  Utility::Scoped<Rgl> gl;
  const Types::Viewport<0> viewport{0, 0, 1600, 1000};
};

/// Qt needs it for fonts.
void NeedFonts() {
  static char name[] = "FigureBench", option[] = "-platform", platform[] = "offscreen";
  static char* arguments[] = {name, option, platform, nullptr};
  static int count = 3;
  static const QGuiApplication Application(count, arguments);
}

Points Cloud(std::size_t p_count) {
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  Points points(p_count);
  for (auto& point : points)
    point = {number(random), number(random), number(random)};
  return points;
}

enum Kind { Arrows, Symbols };

void Add(Scene::Figure& p_figure, Kind p_kind, std::size_t p_count) {
  const Points points = Cloud(p_count);
  if (p_kind == Arrows)
    p_figure.Quiver(points, points).Most(p_count).ColorByLength();
  else
    p_figure.Scatter(points).ColorBy(std::vector<double>(p_count, 1));
}

/// A frame in which nothing changed: the time is that of the library alone.
void Frame(benchmark::State& p_state, Kind p_kind) {
  NeedFonts();
  Target target(false);
  Scene::Figure figure("Title", "Subtitle");
  Add(figure, p_kind, static_cast<std::size_t>(p_state.range(0)));
  meter.Reset();
  figure.Draw(target.gl, target.viewport);
  p_state.counters["first_upload_MB"] = meter.uploaded / 1e6;
  for (auto _ : p_state) {
    meter.Reset();
    const double seconds = target.Seconds([&] { figure.Draw(target.gl, target.viewport); });
    p_state.SetIterationTime(std::max(0.0, seconds - meter.seconds));
  }
  p_state.counters["gl_calls"] = meter.calls;
  p_state.counters["upload_B"] = meter.uploaded;
}
BENCHMARK_CAPTURE(Frame, Arrows, Arrows)->RangeMultiplier(10)->Range(1000, 1000000)->UseManualTime();
BENCHMARK_CAPTURE(Frame, Symbols, Symbols)->RangeMultiplier(10)->Range(1000, 1000000)->UseManualTime();

/// A pick at another pixel of a figure in which nothing changed, as a view makes for a pointer that moves over it. It
/// is asked to take 0.5 ms at most. `layout_ms` is the time of a layout after a change.
void Hover(benchmark::State& p_state) {
  NeedFonts();
  Target target(true);
  Scene::Figure figure("Title", "Subtitle");
  Add(figure, Symbols, static_cast<std::size_t>(p_state.range(0)));
  figure.Draw(target.gl, target.viewport);
  int x = 0;
  while (x < 1600 && !figure.Pick(target.gl, target.viewport, {x, 500}))
    ++x; // the first hit draws numbers of elements
  std::size_t hits = 0;
  for (auto _ : p_state)
    hits += figure.Pick(target.gl, target.viewport, {x = (x + 7) % 1600, 500}) ? 1 : 0;
  p_state.counters["hits"] = static_cast<double>(hits) / static_cast<double>(p_state.iterations());
  p_state.counters["layout_ms"] = 1e3 * target.Seconds([&] {
    figure.SetTitle("Another title");
    figure.Layout(target.viewport);
  });
}
BENCHMARK(Hover)->Arg(1000)->Arg(100000)->Unit(benchmark::kMicrosecond);

/// All arrays of a million arrows, beside a plain upload of as many bytes into a new buffer. `of_plain` is asked to be
/// 1.5 at most.
void Upload(benchmark::State& p_state) {
  Target target(false);
  const auto count = static_cast<std::size_t>(p_state.range(0));
  const Points points = Cloud(count);
  const std::vector<double> numbers(count, 1);
  Scene::InstancedMesh::Instances instances;
  instances.positions = instances.directions = points;
  instances.sizes = instances.values = numbers;
  const Library::ColorMap map = Library::ColorMap::Named("viridis");
  Scene::GpuMesh::Arrays triangle;
  const Points corners = {{0, 0, 0}, {1, 0, 0}, {0, 0, 1}};
  triangle.positions = corners;
  Scene::InstancedMesh arrows(Scene::GpuMesh(triangle), instances);
  const auto draw = [&] { arrows.Draw(target.gl, map); };
  draw();
  double least = std::numeric_limits<double>::infinity(), leastPlain = least;
  std::vector<char> bytes;
  for (auto _ : p_state) {
    arrows.UpdatePositions(points);
    arrows.UpdateDirections(points);
    arrows.UpdateSizes(numbers);
    arrows.UpdateValues(numbers);
    meter.Reset();
    const double changed = target.Seconds(draw);
    const double uploaded = meter.uploaded;
    const double seconds = std::max(0.0, changed - target.Seconds(draw));
    bytes.resize(static_cast<std::size_t>(uploaded), 1);
    unsigned int name = 0;
    target.gl->GenBuffers(1, &name);
    target.gl->BindBuffer(RGL_ARRAY_BUFFER, name);
    const double plain = target.Seconds([&] {
      target.gl->BufferData(RGL_ARRAY_BUFFER, static_cast<Ogl::GlSize>(bytes.size()), bytes.data(), RGL_STATIC_DRAW);
    });
    target.gl->BindBuffer(RGL_ARRAY_BUFFER, 0);
    target.gl->DeleteBuffers(1, &name);
    p_state.SetIterationTime(seconds);
    least = std::min(least, seconds);
    leastPlain = std::min(leastPlain, plain);
  }
  p_state.counters["MB"] = static_cast<double>(bytes.size()) / 1e6;
  p_state.counters["of_plain"] = least / leastPlain;
}
BENCHMARK(Upload)->Arg(1000000)->UseManualTime()->Unit(benchmark::kMillisecond);

/// The strings of a figure alone, beside the whole frame. `share` is asked to be below 0.05.
void Text(benchmark::State& p_state) {
  NeedFonts();
  Target target(true);
  Scene::Figure figure("Title", "Subtitle");
  Add(figure, Arrows, static_cast<std::size_t>(p_state.range(0)));
  const Scene::TextRenderer text;
  const Scene::FigureLayout layout = figure.Layout(target.viewport);
  const auto draw = [&] { figure.Draw(target.gl, target.viewport); };
  const auto drawText = [&] {
    Scene::Canvas canvas(target.gl, target.viewport, text);
    for (const auto& block : layout.blocks)
      for (const auto& string : block.content.Strings())
        canvas.Text(string.text, string.position, string.anchor, string.style, string.rotation);
    for (const auto& label : layout.axes.labels)
      canvas.Text(label.text, label.center, {0.5, 0.5}, figure.theme.SmallStyle(), label.rotation);
  };
  draw();
  drawText();
  double frame = std::numeric_limits<double>::infinity(), letters = frame;
  for (auto _ : p_state) {
    frame = std::min(frame, target.Seconds(draw));
    const double seconds = target.Seconds(drawText);
    letters = std::min(letters, seconds);
    p_state.SetIterationTime(seconds);
  }
  p_state.counters["share"] = letters / frame;
}
BENCHMARK(Text)->Arg(1000)->Arg(10000)->UseManualTime()->Unit(benchmark::kMillisecond);

/// Strings on a canvas, beside the same strings by Ogl::Text, one after the other in immediate mode. `of_immediate` is
/// the CPU time of all threads for these over that for the canvas; it is asked to be 1 at least. `caller` is that of
/// the calling thread alone, `of_single` that of `TextRenderer::Draw` for each string, of all threads.
void Letters(benchmark::State& p_state) {
  NeedFonts();
  Target target(true);
  meter.times = false;
  const Scene::TextStyle style;
  const Scene::TextRenderer text;
  struct Label {
    QString string;
    Types::Vector2_Base<double> position;
  };
  std::vector<Label> labels;
  std::vector<Ogl::Text> immediate;
  for (int i = 0; i < p_state.range(0); ++i) {
    labels.push_back({QStringLiteral("%1 m").arg(1000 + i), {20.0 + 80 * (i % 19), 20.0 + 20 * (i / 19 % 48)}});
    Ogl::Text& one = immediate.emplace_back(labels.back().string);
    one.size = static_cast<unsigned int>(style.size);
    one.position = {static_cast<int>(labels.back().position.x), static_cast<int>(labels.back().position.y)};
  }
  const auto onCanvas = [&] {
    Scene::Canvas canvas(target.gl, target.viewport, text);
    for (const Label& label : labels)
      canvas.Text(label.string, label.position, {}, style);
  };
  const auto byText = [&] {
    const auto projection = target.gl->PixelProjection(target.viewport);
    for (Ogl::Text& one : immediate)
      one(target.gl);
  };
  const auto bySingleDraws = [&] {
    const auto projection = target.gl->PixelProjection(target.viewport);
    for (const Label& label : labels)
      text.Draw(target.gl, label.string, label.position, {}, style);
  };
  const auto least = [&](const auto& p_draw, clockid_t p_clock = CLOCK_PROCESS_CPUTIME_ID) {
    double seconds = std::numeric_limits<double>::infinity();
    for (int i = 0; i < 20; ++i)
      seconds = std::min(seconds, target.CpuSeconds(p_draw, p_clock));
    return seconds;
  };
  onCanvas();
  byText();
  for (auto _ : p_state)
    p_state.SetIterationTime(target.CpuSeconds(onCanvas));
  meter.Reset();
  onCanvas();
  p_state.counters["gl_calls"] = meter.calls;
  meter.Reset();
  byText();
  p_state.counters["immediate_calls"] = meter.calls;
  const double canvas = least(onCanvas);
  p_state.counters["of_immediate"] = least(byText) / canvas;
  p_state.counters["of_single"] = least(bySingleDraws) / canvas;
  p_state.counters["caller"] = least(byText, CLOCK_THREAD_CPUTIME_ID) / least(onCanvas, CLOCK_THREAD_CPUTIME_ID);
}
BENCHMARK(Letters)->Arg(20)->Arg(200)->Arg(900)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
