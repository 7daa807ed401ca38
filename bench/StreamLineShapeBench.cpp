// Rings of tubes, in rings a second, beside a loop that does the same arithmetic on plain arrays, and beside a plain
// copy of a finished ring of the same size.
#include "bench/SideBySide.h"

#include "library/StreamLineShape.h"

#include <array>
#include <vector>

namespace {

using namespace Vek::Chart;
using Vector3 = Types::Vector3_Base<double>;

constexpr int NumRings = 10000;
constexpr std::size_t NumVertices = 12;

using Outline = std::array<Types::Vector2_Base<double>, NumVertices>;
using Ring = std::array<Vector3, NumVertices>;

// What a ring cannot do without, for an outline and its normals.
void PlaceByHand(const Outline& p_outline, const Outline& p_outlineNormals, double p_factor, const Vector3& p_position,
                 const Types::Matrix3& p_rotation, Ring& __restrict p_vertices, Ring& __restrict p_normals) {
  for (std::size_t i = 0; i < NumVertices; ++i)
    p_vertices[i] = p_rotation * (Vector3(p_outline[i].x, p_outline[i].y, 0) * p_factor) + p_position;
  for (std::size_t i = 0; i < NumVertices; ++i)
    p_normals[i] = p_rotation * Vector3(p_outlineNormals[i].x, p_outlineNormals[i].y, 0);
}

void TubeRings(benchmark::State& p_state) {
  const Library::StreamLineShape tube(Library::StreamLineShape::ShapeTube, {});
  const Types::Matrix3 rotation = Types::Matrix3::Rotation(Types::Angle::FromDegrees(33), {1, 2, 3});
  std::vector<Vector3> vertices;
  std::vector<Vector3> normals;
  tube.OrientShape(1, {}, 1, {}, vertices, normals);
  Outline outline, outlineNormals;
  for (std::size_t i = 0; i < NumVertices; ++i) {
    outline[i] = {vertices[i].x, vertices[i].y};
    outlineNormals[i] = {normals[i].x, normals[i].y};
  }
  Ring ring, ringNormals;

  Vek::Bench::SideBySide(
      p_state, "times_plain_loop",
      [&] {
        for (int i = 0; i < NumRings; ++i) {
          tube.OrientShape(0.5, {i * 0.1, 1, 2}, 1.5, rotation, vertices, normals);
          benchmark::DoNotOptimize(vertices.data());
          benchmark::ClobberMemory();
        }
      },
      [&] {
        for (int i = 0; i < NumRings; ++i) {
          PlaceByHand(outline, outlineNormals, 0.5 * 1.5, {i * 0.1, 1, 2}, rotation, ring, ringNormals);
          benchmark::DoNotOptimize(ring.data());
          benchmark::DoNotOptimize(ringNormals.data());
          benchmark::ClobberMemory();
        }
      });
  p_state.SetItemsProcessed(p_state.iterations() * NumRings);
}

void RingCopies(benchmark::State& p_state) {
  const std::vector<Vector3> ring(2 * NumVertices);
  std::vector<Vector3> copy(2 * NumVertices);
  for (auto _ : p_state)
    for (int i = 0; i < NumRings; ++i) {
      copy = ring;
      benchmark::DoNotOptimize(copy.data());
      benchmark::ClobberMemory();
    }
  p_state.SetItemsProcessed(p_state.iterations() * NumRings);
}

BENCHMARK(RingCopies)->Unit(benchmark::kMicrosecond);
BENCHMARK(TubeRings)->Unit(benchmark::kMicrosecond)->UseManualTime();

} // namespace
