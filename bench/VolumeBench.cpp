#include "scene/Camera.h"
#include "scene/VolumeRaycaster.h"

#include "platform/ogl/OffscreenContext.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

// One image of 800 x 500 pixels of a volume of 128^3 floats, as a chart shows it: by mode, and by quality (per cent).

using namespace Vek::Chart;
using namespace Vek::Chart::Scene;

namespace {

constexpr Types::Size Size{800, 500};
constexpr int Voxels = 128;

/// Three soft balls; most of the volume is nearly 0.
std::vector<float> Blobs() {
  const double centers[3][3] = {{0.35, 0.4, 0.5}, {0.65, 0.55, 0.4}, {0.5, 0.65, 0.7}};
  std::vector<float> values;
  const auto at = [](int p_i) { return (p_i + 0.5) / Voxels; };
  for (int k = 0; k < Voxels; ++k)
    for (int j = 0; j < Voxels; ++j)
      for (int i = 0; i < Voxels; ++i) {
        double sum = 0;
        for (const auto& c : centers)
          sum += std::exp(-40 * (std::pow(at(i) - c[0], 2) + std::pow(at(j) - c[1], 2) + std::pow(at(k) - c[2], 2)));
        values.push_back(static_cast<float>(sum));
      }
  return values;
}

void Rays(benchmark::State& p_state) {
  Ogl::OffscreenContext context(Size);
  Utility::Scoped<Rgl> gl(context.Handle());
  const VolumeRaycaster volume(VoxelGrid(Blobs(), {Voxels, Voxels, Voxels}, {{-1, -1, -1}, {1, 1, 1}}));
  const Types::Viewport<0> viewport(0, 0, Size.width, Size.height);
  const Library::ColorMap colors = Library::ColorMap::Named("viridis");
  VolumeRaycaster::Settings settings;
  settings.mode = static_cast<VolumeRaycaster::Mode>(p_state.range(0));
  settings.quality = static_cast<double>(p_state.range(1)) / 100;
  settings.shading = p_state.range(2) != 0;
  settings.isovalue = 0.5;
  Camera camera;
  camera.Look(Camera::StandardView::Chart);
  camera.Fit(volume.Grid().Bounds(), viewport);
  const auto view = camera.Apply(gl, viewport);
  gl->Enable(RGL_DEPTH_TEST);
  volume.Draw(gl, colors, settings); // uploads and compiles
  gl->Finish();
  for (auto _ : p_state) {
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    volume.Draw(gl, colors, settings);
    gl->Finish();
  }
}

BENCHMARK(Rays)
    ->ArgNames({"mode", "quality", "shading"})
    ->ArgsProduct({{0, 1, 2, 3}, {100, 25}, {0}})
    ->Args({0, 100, 1})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
