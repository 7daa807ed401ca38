// Cuts of boxes by planes, in cuts a second, beside VTK's where it is installed and otherwise beside the distances
// alone. The planes and boxes are made before; every pass reuses one vector.

#include "bench/SideBySide.h"

#include "library/Intersect.h"

#include <array>
#include <random>
#include <vector>

#if defined(VEK_BENCH_VTK)
#include <vtkBox.h>
#endif

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

// What a cut cannot do without: the unit normal and the eight signed distances.
void MeasureAll(const std::vector<Case>& p_cases) {
  double sum = 0;
  for (const Case& c : p_cases) {
    const Types::Vector4_Base<double> e = Types::Plane(c.plane.Point(), Normalize(c.plane.Normal())).Equation();
    for (int i = 0; i < 8; ++i) {
      const Vector3 corner((i & 1) != 0 ? c.box.Max().x : c.box.Min().x, (i & 2) != 0 ? c.box.Max().y : c.box.Min().y,
                           (i & 4) != 0 ? c.box.Max().z : c.box.Min().z);
      sum += std::abs(Dot(e, Types::Homogeneous::FromVector3(corner)));
    }
  }
  benchmark::DoNotOptimize(sum);
}

void CutAll(const std::vector<Case>& p_cases, std::vector<Vector3>& p_points) {
  for (const Case& c : p_cases) {
    Library::Intersect::Intersection(c.box, c.plane, p_points);
    benchmark::DoNotOptimize(p_points.data());
    benchmark::ClobberMemory();
  }
}

#if defined(VEK_BENCH_VTK)

// The same cut by vtkBox: the number of its corners, which are in p_points.
int VtkCut(const Case& p_case, std::array<Vector3, 6>& p_points) {
  static_assert(sizeof p_points == 18 * sizeof(double));
  const Vector3& min = p_case.box.Min();
  const Vector3& max = p_case.box.Max();
  const Vector3& point = p_case.plane.Point();
  const Vector3& normal = p_case.plane.Normal();
  double bounds[] = {min.x, max.x, min.y, max.y, min.z, max.z};
  double origin[] = {point.x, point.y, point.z};
  double direction[] = {normal.x, normal.y, normal.z};
  return vtkBox::IntersectWithPlane(bounds, origin, direction, &p_points[0].x);
}

void VtkCutAll(const std::vector<Case>& p_cases) {
  for (const Case& c : p_cases) {
    std::array<Vector3, 6> points;
    benchmark::DoNotOptimize(VtkCut(c, points));
    benchmark::ClobberMemory();
  }
}

// Whether VTK finds another polygon: not the same corners in the same order, in either direction from any start.
bool VtkDiffers(const Case& p_case, const std::vector<Vector3>& p_points) {
  std::array<Vector3, 6> found;
  const std::size_t n = p_points.size();
  if (static_cast<std::size_t>(VtkCut(p_case, found)) != n)
    return true;
  const double tolerance = 1e-9 * Length(p_case.box.Extent());
  for (std::size_t start = 0; start < n; ++start)
    for (const bool backwards : {false, true}) {
      bool same = true;
      for (std::size_t i = 0; i < n; ++i)
        same &= Length(found[(start + (backwards ? n - i : i)) % n] - p_points[i]) <= tolerance;
      if (same)
        return false;
    }
  return n != 0;
}

#endif

void Cuts(benchmark::State& p_state, double p_minOffset, double p_maxOffset) {
  const std::vector<Case> cases = Cases(p_minOffset, p_maxOffset);
  std::vector<Vector3> points;
  double hits = 0;
  double corners = 0;
  for (const Case& c : cases) {
    hits += Library::Intersect::Intersection(c.box, c.plane, points) ? 1 : 0;
    corners += static_cast<double>(points.size());
#if defined(VEK_BENCH_VTK)
    p_state.counters["vtk_differs"] += VtkDiffers(c, points) ? 1.0 / static_cast<double>(cases.size()) : 0;
#endif
  }
  p_state.counters["hits"] = hits / static_cast<double>(cases.size());
  p_state.counters["corners"] = hits == 0 ? 0 : corners / hits;

#if defined(VEK_BENCH_VTK)
  Vek::Bench::SideBySide(
      p_state, "times_vtk", [&] { CutAll(cases, points); }, [&] { VtkCutAll(cases); });
#else
  Vek::Bench::SideBySide(
      p_state, "times_distances", [&] { CutAll(cases, points); }, [&] { MeasureAll(cases); });
#endif
  p_state.SetItemsProcessed(static_cast<std::int64_t>(p_state.iterations() * cases.size()));
}

void Distances(benchmark::State& p_state) {
  const std::vector<Case> cases = Cases(0, 0.6);
  for (auto _ : p_state)
    MeasureAll(cases);
  p_state.SetItemsProcessed(static_cast<std::int64_t>(p_state.iterations() * cases.size()));
}

BENCHMARK(Distances);
BENCHMARK_CAPTURE(Cuts, hits, 0.0, 0.3)->UseManualTime();
BENCHMARK_CAPTURE(Cuts, mixed, 0.0, 1.0)->UseManualTime();
BENCHMARK_CAPTURE(Cuts, misses, 1.1, 1.2)->UseManualTime();

} // namespace
