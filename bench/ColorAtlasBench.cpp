// Building a colour atlas: colours in trees of several forms, and instances of one sub-tree. The limit beside it fills
// the same number of texels of an image. `peak_bytes` is what adding and building a tree takes at its peak for each
// colour, of all that is allocated by new, as malloc rounds it: the image (4 bytes a texel) and the copies of GL are
// not. It is asked to be 100 at most.

#include "bench/CountedNew.h"
#include "library/ColorAtlas.h"
#include "platform/ogl/OffscreenContext.h"

#include <benchmark/benchmark.h>

#include <QImage>

#include <map>

using namespace Vek::Chart;
using Library::ColorAtlas;

namespace {

struct Gl {
  Ogl::OffscreenContext context{{16, 16}};
  Utility::Scoped<Rgl> scope{context.Handle()};
};

QColor ColorOf(unsigned int p_index) {
  return QColor::fromRgba(0xFF000000u | (p_index * 2654435761u >> 8));
}

/// A tree in which every colour has `p_children` children, level by level (1 makes a chain); 0 puts all under the root.
ColorAtlas Tree(unsigned int p_count, unsigned int p_children) {
  ColorAtlas atlas;
  for (unsigned int i = 0; i < p_count; ++i) {
    // Ids count from 1, so id i + 1 is this colour and (i - 1) / n + 1 is its parent.
    const bool top = i == 0 || p_children == 0;
    atlas.AddColor(ColorOf(i), top ? atlas.RootAtlasId() : (i - 1) / p_children + 1);
  }
  return atlas;
}

void AtlasTexels(benchmark::State& p_state) {
  for (auto _ : p_state) {
    QImage image(4096, static_cast<int>(p_state.range(0) / 4096 + 1), QImage::Format_ARGB32);
    image.fill(Qt::red);
    benchmark::DoNotOptimize(image.bits());
  }
  p_state.SetItemsProcessed(p_state.iterations() * p_state.range(0));
}
BENCHMARK(AtlasTexels)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void AtlasAddColors(benchmark::State& p_state) {
  for (auto _ : p_state)
    benchmark::DoNotOptimize(Tree(static_cast<unsigned int>(p_state.range(0)), 4).RootAtlasId());
  p_state.SetItemsProcessed(p_state.iterations() * p_state.range(0));
}
BENCHMARK(AtlasAddColors)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

/// Arguments: colours, children of each.
void AtlasBuild(benchmark::State& p_state) {
  Gl gl;
  Vek::Bench::countedBytes.Reset();
  const std::size_t before = Vek::Bench::countedBytes.now;
  ColorAtlas atlas = Tree(static_cast<unsigned int>(p_state.range(0)), static_cast<unsigned int>(p_state.range(1)));
  atlas.BuildAtlas(gl.scope);
  p_state.counters["peak_bytes"] =
      static_cast<double>(Vek::Bench::countedBytes.peak - before) / static_cast<double>(p_state.range(0));
  for (auto _ : p_state)
    atlas.BuildAtlas(gl.scope);
  p_state.SetItemsProcessed(p_state.iterations() * p_state.range(0));
}
BENCHMARK(AtlasBuild)->ArgsProduct({{100000, 1000000}, {0, 1, 4}})->Unit(benchmark::kMillisecond);

/// 10,000 instances of a sub-tree of 100 colours, each with five colours replaced.
void AtlasBuildInstances(benchmark::State& p_state) {
  constexpr unsigned int Colors = 100;
  Gl gl;
  for (auto _ : p_state) {
    p_state.PauseTiming(); // offsets of an earlier build would be reported
    ColorAtlas atlas = Tree(Colors, 3);
    for (unsigned int i = 0; i < 10000; ++i)
      atlas.AddInstance(
          1, {{2, ColorOf(i)}, {5, ColorOf(i + 1)}, {14, ColorOf(i + 2)}, {41, ColorOf(i + 3)}, {99, ColorOf(i + 4)}});
    p_state.ResumeTiming();
    atlas.BuildAtlas(gl.scope);
  }
  p_state.SetItemsProcessed(p_state.iterations() * Colors * 10001);
}
BENCHMARK(AtlasBuildInstances)->Unit(benchmark::kMillisecond);

} // namespace
