// Cuts of boxes by planes, in cuts a second. The planes and boxes are made before; every pass reuses one vector.
#include "library/Intersect.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

using namespace Vek::Chart;
using Vector3 = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

struct Case {
  Box box;
  Types::Plane plane;
};

// Boxes of mixed sizes, each with a plane whose point lies at `p_offset` half diagonals along the normal from the
// middle: 0 always cuts, 1.1 always misses.
std::vector<Case> Cases(double p_minOffset, double p_maxOffset) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> coordinate(-10, 10);
  std::uniform_real_distribution<double> extent(0.1, 5);
  std::uniform_real_distribution<double> offset(p_minOffset, p_maxOffset);
  std::normal_distribution<double> direction;
  std::vector<Case> cases(4096);
  for (Case& c : cases) {
    const Vector3 min(coordinate(random), coordinate(random), coordinate(random));
    const Vector3 size(extent(random), extent(random), extent(random));
    const Vector3 normal(direction(random), direction(random), direction(random));
    c.box = Box(min, min + size);
    c.plane = Types::Plane(c.box.Center() + Normalize(normal) * (offset(random) * Length(size) / 2), normal);
  }
  return cases;
}

void Cuts(benchmark::State& p_state, double p_minOffset, double p_maxOffset) {
  const std::vector<Case> cases = Cases(p_minOffset, p_maxOffset);
  std::vector<Vector3> points;
  std::size_t hits = 0;
  std::size_t corners = 0;
  for (auto _ : p_state) {
    hits = 0;
    corners = 0;
    for (const Case& c : cases) {
      hits += Library::Intersect::Intersection(c.box, c.plane, points);
      corners += points.size();
    }
    benchmark::DoNotOptimize(corners);
  }
  p_state.SetItemsProcessed(static_cast<std::int64_t>(p_state.iterations() * cases.size()));
  p_state.counters["hits"] = static_cast<double>(hits) / static_cast<double>(cases.size());
  p_state.counters["corners"] = hits == 0 ? 0 : static_cast<double>(corners) / static_cast<double>(hits);
}

// What a cut cannot do without: the unit normal and the eight signed distances.
void Distances(benchmark::State& p_state) {
  const std::vector<Case> cases = Cases(0, 0.6);
  for (auto _ : p_state) {
    double sum = 0;
    for (const Case& c : cases) {
      const Types::Vector4_Base<double> e = Types::Plane(c.plane.Point(), Normalize(c.plane.Normal())).Equation();
      for (int i = 0; i < 8; ++i) {
        const Vector3 corner((i & 1) != 0 ? c.box.Max().x : c.box.Min().x, (i & 2) != 0 ? c.box.Max().y : c.box.Min().y,
                             (i & 4) != 0 ? c.box.Max().z : c.box.Min().z);
        sum += std::abs(Dot(e, Types::Homogeneous::FromVector3(corner)));
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  p_state.SetItemsProcessed(static_cast<std::int64_t>(p_state.iterations() * cases.size()));
}

BENCHMARK(Distances);
BENCHMARK_CAPTURE(Cuts, hits, 0.0, 0.3);
BENCHMARK_CAPTURE(Cuts, mixed, 0.0, 1.0);
BENCHMARK_CAPTURE(Cuts, misses, 1.1, 1.2);

} // namespace
