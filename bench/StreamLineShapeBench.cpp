// Rings of tubes, in rings a second, beside a plain copy of a finished ring of the same size.
#include "library/StreamLineShape.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using namespace Vek::Chart;
using Vector3 = Types::Vector3_Base<double>;

constexpr int NumRings = 1000000;

void TubeRings(benchmark::State& p_state) {
  const Library::StreamLineShape tube(Library::StreamLineShape::ShapeTube, {});
  const Types::Matrix3 rotation = Types::Matrix3::Rotation(Types::Angle::FromDegrees(33), {1, 2, 3});
  std::vector<Vector3> vertices;
  std::vector<Vector3> normals;
  for (auto _ : p_state)
    for (int i = 0; i < NumRings; ++i) {
      tube.OrientShape(0.5, {i * 0.1, 1, 2}, 1.5, rotation, vertices, normals);
      benchmark::DoNotOptimize(vertices.data());
      benchmark::ClobberMemory();
    }
  p_state.SetItemsProcessed(p_state.iterations() * NumRings);
}

void RingCopies(benchmark::State& p_state) {
  const std::vector<Vector3> ring(24);
  std::vector<Vector3> copy(24);
  for (auto _ : p_state)
    for (int i = 0; i < NumRings; ++i) {
      copy = ring;
      benchmark::DoNotOptimize(copy.data());
      benchmark::ClobberMemory();
    }
  p_state.SetItemsProcessed(p_state.iterations() * NumRings);
}

BENCHMARK(RingCopies)->Unit(benchmark::kMillisecond);
BENCHMARK(TubeRings)->Unit(benchmark::kMillisecond);

} // namespace
