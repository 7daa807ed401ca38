// Making a million arrows from arrays of the caller and drawing them once. `host_bytes` is what that takes at its peak
// for each instance beside those arrays, of all that is allocated by new: the memory of GL is not. It is asked to be 64
// at most; `kept_bytes` stays until the arrows are destroyed.

#include "bench/CountedNew.h"
#include "library/ColorMap.h"
#include "platform/ogl/OffscreenContext.h"
#include "scene/Camera.h"
#include "scene/InstancedMesh.h"

#include <benchmark/benchmark.h>

#include <array>
#include <random>
#include <vector>

using namespace Vek::Chart;
using Scene::InstancedMesh;
using Vek::Bench::countedBytes;

namespace {

using Points = std::vector<std::array<double, 3>>;

void Arrows(benchmark::State& p_state) {
  const auto count = static_cast<std::size_t>(p_state.range(0));
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(-1, 1);
  Points points(count);
  for (auto& point : points)
    point = {number(random), number(random), number(random)};
  const std::vector<double> numbers(count, 0.01);
  InstancedMesh::Instances instances;
  instances.positions = instances.directions = points;
  instances.sizes = instances.values = numbers;

  Ogl::OffscreenContext context({800, 500});
  Utility::Scoped<Rgl> gl(context.Handle());
  const Library::ColorMap map = Library::ColorMap::Named("viridis");
  const Types::Viewport<0> viewport(0, 0, 800, 500);
  Scene::Camera camera;
  camera.Fit({{-1, -1, -1}, {1, 1, 1}}, viewport);
  const auto view = camera.Apply(gl, viewport);
  InstancedMesh(InstancedMesh::Arrows(), InstancedMesh::Instances()).Draw(gl, map); // what drivers take once
  const auto eachOf = [&](std::size_t p_bytes) { return static_cast<double>(p_bytes) / static_cast<double>(count); };
  for (auto _ : p_state) {
    countedBytes.Reset();
    const std::size_t before = countedBytes.now;
    const InstancedMesh arrows(InstancedMesh::Arrows(), instances);
    arrows.Draw(gl, map);
    gl->Finish();
    p_state.counters["host_bytes"] = eachOf(countedBytes.peak - before);
    p_state.counters["kept_bytes"] = eachOf(countedBytes.now - before);
  }
}
BENCHMARK(Arrows)->Arg(1000000)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace
