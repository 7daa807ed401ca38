#include "library/RenderTexture.h"
#include "library/TopMostFragmentDepthBuffer.h"
#include "platform/ogl/OffscreenContext.h"

#include <benchmark/benchmark.h>

#include <boost/array.hpp>

#if defined(VEK_BENCH_VTK)
#include <vtkActor.h>
#include <vtkAutoInit.h>
#include <vtkHardwareSelector.h>
#include <vtkNew.h>
#include <vtkPlaneSource.h>
#include <vtkPolyDataMapper.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#endif

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

// A pick on an unchanged scene beside reads of one pixel, in turns within one run. The counters are ratios of medians:
// `pick/read` over a bare read from the frame buffer that is bound already; `pick/bound_read` over one that binds the
// target first and the host's frame buffer after, by bare calls, which no pick can do without; `pick/calls` over all
// the GL calls that a pick makes, bare: state is saved and restored, too. `renders` counts the drawings of the scene
// for all the picks.
//
// Beside picks of a kept snapshot stand, where VTK is installed, those of the buffers that its hardware selector keeps.

#if defined(VEK_BENCH_VTK)
VTK_MODULE_INIT(vtkRenderingOpenGL2)
#endif

using namespace Vek::Chart;
using Library::DepthCodec;

namespace {

constexpr Types::Size Size{800, 600};

double Median(std::vector<double>& p_values) {
  const auto middle = p_values.begin() + static_cast<std::ptrdiff_t>(p_values.size() / 2);
  std::nth_element(p_values.begin(), middle, p_values.end());
  return *middle;
}

/// Of one call, as the mean of a short run.
template <class Function>
double SecondsOf(const Function& p_function) {
  constexpr int Calls = 50;
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < Calls; ++i)
    p_function();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count() / Calls;
}

/// A triangle in the packed colour of the depth 0.5.
void DrawScene(Utility::Scoped<Rgl>& p_gl) {
  const boost::array<unsigned char, 4> bytes = DepthCodec::Encode(0.5F);
  p_gl->Color(QColor(bytes[0], bytes[1], bytes[2], bytes[3]));
  p_gl->Begin(RGL_TRIANGLES);
  p_gl->Vertex(-1, -1, 0);
  p_gl->Vertex(3, -1, 0);
  p_gl->Vertex(-1, 3, 0);
  p_gl->End();
}

void Picks(benchmark::State& p_state) {
  Ogl::OffscreenContext context(Size);
  Utility::Scoped<Rgl> gl(context.Handle());
  DrawScene(gl);
  const Library::RenderTexture target(Size);
  {
    const auto bound = target.BindForDraw(gl);
    DrawScene(gl);
  }
  const Types::Pos position(Size.width / 2, Size.height / 2);
  const auto read = [&] {
    std::array<unsigned char, 4> bytes{};
    gl->ReadPixels(position.x, position.y, 1, 1, RGL_RGBA, RGL_UNSIGNED_BYTE, bytes.data());
    benchmark::DoNotOptimize(bytes);
  };
  int targetName = 0;
  {
    const auto bound = target.BindForRead(gl);
    gl->GetIntegerv(RGL_READ_FRAMEBUFFER_BINDING, &targetName);
  }
  const auto boundRead = [&] {
    int before = 0;
    gl->GetIntegerv(RGL_DRAW_FRAMEBUFFER_BINDING, &before);
    gl->BindFramebuffer(RGL_FRAMEBUFFER, static_cast<unsigned int>(targetName));
    read();
    gl->BindFramebuffer(RGL_FRAMEBUFFER, static_cast<unsigned int>(before));
  };
  const auto calls = [&] {
    gl->PushAttrib(RGL_COLOR_BUFFER_BIT | RGL_ENABLE_BIT | RGL_VIEWPORT_BIT);
    int before = 0;
    gl->GetIntegerv(RGL_DRAW_FRAMEBUFFER_BINDING, &before);
    gl->GetIntegerv(RGL_READ_FRAMEBUFFER_BINDING, &before);
    gl->BindFramebuffer(RGL_FRAMEBUFFER, static_cast<unsigned int>(targetName));
    gl->Viewport(0, 0, Size.width, Size.height);
    gl->Disable(RGL_FRAMEBUFFER_SRGB);
    for (const Ogl::GlEnum name : {RGL_PIXEL_PACK_BUFFER_BINDING, RGL_PACK_SKIP_ROWS, RGL_PACK_SKIP_PIXELS}) {
      int setting = 0;
      gl->GetIntegerv(name, &setting);
    }
    read();
    benchmark::DoNotOptimize(gl->GetError());
    gl->BindFramebuffer(RGL_FRAMEBUFFER, static_cast<unsigned int>(before));
    gl->PopAttrib();
  };

  Library::TopMostFragmentDepthBuffer picker;
  const Core::TimeStamp stamp;
  const Types::Viewport<0> viewport(0, 0, Size.width, Size.height);
  int renders = 0;
  int misses = 0;
  const auto pick = [&] {
    const bool hit = picker.GetDepthAt(
        gl, viewport, position, stamp,
        [&](DepthCodec::Encoding) {
          ++renders;
          DrawScene(gl);
        },
        [](unsigned int, float) {});
    misses += hit ? 0 : 1;
  };

  std::vector<double> reads;
  std::vector<double> boundReads;
  std::vector<double> allCalls;
  std::vector<double> picks;
  for (auto _ : p_state) {
    reads.push_back(SecondsOf(read));
    boundReads.push_back(SecondsOf(boundRead));
    allCalls.push_back(SecondsOf(calls));
    picks.push_back(SecondsOf(pick));
    p_state.SetIterationTime(picks.back());
  }
  if (misses != 0)
    p_state.SkipWithError("a pick missed");
  p_state.counters["pick/read"] = Median(picks) / Median(reads);
  p_state.counters["pick/bound_read"] = Median(picks) / Median(boundReads);
  p_state.counters["pick/calls"] = Median(picks) / Median(allCalls);
  p_state.counters["renders"] = renders;
}
BENCHMARK(Picks)->UseManualTime()->Iterations(4000);

std::vector<Types::Pos> RandomPositions() {
  std::mt19937 random(1);
  std::vector<Types::Pos> positions(1 << 16);
  for (Types::Pos& position : positions)
    position = {static_cast<int>(random() % unsigned(Size.width)), static_cast<int>(random() % unsigned(Size.height))};
  return positions;
}

/// Picks at random pixels of an unchanged scene by the public call: the snapshot of the scene, and a depth of it.
void SnapshotPicks(benchmark::State& p_state) {
  Ogl::OffscreenContext context(Size);
  Utility::Scoped<Rgl> gl(context.Handle());
  Library::TopMostFragmentDepthBuffer picker;
  const Core::TimeStamp stamp;
  const Types::Viewport<0> viewport(0, 0, Size.width, Size.height);
  const std::vector<Types::Pos> positions = RandomPositions();
  int renders = 0;
  std::int64_t hits = 0;
  for (auto _ : p_state)
    for (const Types::Pos& position : positions) {
      const auto render = [&](DepthCodec::Encoding) {
        ++renders;
        DrawScene(gl);
      };
      hits += picker.Snapshot(gl, viewport, stamp, render).DepthAt(position) < 1 ? 1 : 0;
    }
  const auto picks = static_cast<std::int64_t>(p_state.iterations()) * static_cast<std::int64_t>(positions.size());
  if (renders != 1 || hits != picks)
    p_state.SkipWithError("a pick missed, or the scene was drawn again");
  p_state.SetItemsProcessed(picks);
}
BENCHMARK(SnapshotPicks);

#if defined(VEK_BENCH_VTK)
/// The same pixels of the buffers that a hardware selector has captured of a plane that fills the window.
void SnapshotPicksByVtk(benchmark::State& p_state) {
  if (std::getenv("DISPLAY") == nullptr)
    return p_state.SkipWithError("VTK needs an X server: run with tests/support/with-display");
  const vtkNew<vtkPlaneSource> plane;
  const vtkNew<vtkPolyDataMapper> mapper;
  mapper->SetInputConnection(plane->GetOutputPort());
  const vtkNew<vtkActor> actor;
  actor->SetMapper(mapper);
  actor->SetScale(100);
  const vtkNew<vtkRenderer> renderer;
  renderer->AddActor(actor);
  const vtkNew<vtkRenderWindow> window;
  window->SetOffScreenRendering(1);
  window->SetMultiSamples(0);
  window->SetSize(Size.width, Size.height);
  window->AddRenderer(renderer);
  renderer->ResetCamera(-1, 1, -1, 1, 0, 0);
  window->Render();
  const vtkNew<vtkHardwareSelector> selector;
  selector->SetRenderer(renderer);
  selector->SetArea(0, 0, unsigned(Size.width) - 1, unsigned(Size.height) - 1);
  selector->SetFieldAssociation(vtkDataObject::FIELD_ASSOCIATION_CELLS);
  selector->CaptureBuffers();
  const std::vector<Types::Pos> positions = RandomPositions();
  std::int64_t hits = 0;
  for (auto _ : p_state)
    for (const Types::Pos& position : positions) {
      unsigned int pixel[] = {static_cast<unsigned int>(position.x), static_cast<unsigned int>(position.y)};
      hits += selector->GetPixelInformation(pixel).Valid ? 1 : 0;
    }
  const auto picks = static_cast<std::int64_t>(p_state.iterations()) * static_cast<std::int64_t>(positions.size());
  if (hits != picks)
    p_state.SkipWithError("a pick missed");
  p_state.SetItemsProcessed(picks);
}
BENCHMARK(SnapshotPicksByVtk);
#endif

/// The first snapshot of a scene: drawn, and read as a whole.
void NewSnapshot(benchmark::State& p_state) {
  Ogl::OffscreenContext context(Size);
  Utility::Scoped<Rgl> gl(context.Handle());
  Library::TopMostFragmentDepthBuffer picker;
  const Types::Viewport<0> viewport(0, 0, Size.width, Size.height);
  for (auto _ : p_state)
    benchmark::DoNotOptimize(&picker.Snapshot(gl, viewport, Core::TimeStamp(), [&] { DrawScene(gl); }));
}
BENCHMARK(NewSnapshot);

} // namespace
