// What a gradient costs: building it, looking colours up, binding it; beside the limit of writing as many texels.

#include "library/ColorMap.h"
#include "platform/ogl/OffscreenContext.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

using namespace Vek::Chart;
using Library::ColorMap;

namespace {

std::vector<QColor> Rainbow(int p_count) {
  std::vector<QColor> colors;
  for (int i = 0; i < p_count; ++i)
    colors.push_back(QColor::fromHsv(i * 360 / p_count, 255, 255).toRgb());
  return colors;
}

/// Not the library: one value into as many texels as a gradient has at most.
void WriteTexels(benchmark::State& p_state) {
  QImage row(ColorMap::GradientResolutionMax, 1, QImage::Format_ARGB32);
  QRgb value = 0;
  for (auto _ : p_state) {
    auto* const texels = reinterpret_cast<QRgb*>(row.scanLine(0));
    std::fill(texels, texels + row.width(), ++value);
    benchmark::ClobberMemory();
  }
  p_state.SetItemsProcessed(p_state.iterations() * row.width());
}
BENCHMARK(WriteTexels);

/// Not the library: Qt's own way to a texel of a blended gradient.
void WriteTexelsByColor(benchmark::State& p_state) {
  QImage row(ColorMap::GradientResolutionMax, 1, QImage::Format_ARGB32);
  for (auto _ : p_state) {
    auto* const texels = reinterpret_cast<QRgb*>(row.scanLine(0));
    for (int x = 0; x < row.width(); ++x) {
      const double t = x / double(ColorMap::GradientResolutionMax);
      texels[x] = QColor::fromRgbF(t, 1 - t, t, 1).rgba();
    }
    benchmark::ClobberMemory();
  }
  p_state.SetItemsProcessed(p_state.iterations() * row.width());
}
BENCHMARK(WriteTexelsByColor);

void Build(benchmark::State& p_state, ColorMap::Style p_style) {
  const std::vector<QColor> colors = Rainbow(static_cast<int>(p_state.range(0)));
  int size = 0;
  for (auto _ : p_state) {
    const ColorMap map(colors, p_style);
    benchmark::DoNotOptimize(size = map.Size());
  }
  p_state.SetItemsProcessed(p_state.iterations() * size);
}
BENCHMARK_CAPTURE(Build, discrete, ColorMap::Discrete)->Arg(2)->Arg(7)->Arg(5000);
BENCHMARK_CAPTURE(Build, interpolated, ColorMap::Interpolated)->Arg(2)->Arg(7)->Arg(5000);

void LookUpByValue(benchmark::State& p_state) {
  const ColorMap map(Rainbow(7), ColorMap::Interpolated);
  double value = 0;
  for (auto _ : p_state) {
    benchmark::DoNotOptimize(map.Color(value));
    value = value < 1 ? value + 0.001 : 0;
  }
  p_state.SetItemsProcessed(p_state.iterations());
}
BENCHMARK(LookUpByValue);

void BindFirst(benchmark::State& p_state) {
  Ogl::OffscreenContext context({64, 64});
  Utility::Scoped<Rgl> gl(context.Handle());
  const ColorMap map(Rainbow(7), ColorMap::Interpolated);
  for (auto _ : p_state) {
    const ColorMap unbound = map; // shares the texels; its texture is its own
    unbound(gl, RGL_TEXTURE0);
  }
  gl->Finish();
}
BENCHMARK(BindFirst);

void BindAgain(benchmark::State& p_state) {
  Ogl::OffscreenContext context({64, 64});
  Utility::Scoped<Rgl> gl(context.Handle());
  const ColorMap map(Rainbow(7), ColorMap::Interpolated);
  for (auto _ : p_state)
    map(gl, RGL_TEXTURE0);
  gl->Finish();
}
BENCHMARK(BindAgain);

} // namespace
