// Ten thousand to a million glyphs on a grid that fills 1600 x 1000 pixels, with levels of detail. All times are CPU
// times of all threads.
// Glyphs: `of_full` is the time of a frame of whole meshes over that of one with levels. `different` is the share of
// pixels that differ by more than 32 of 255 in a channel (asked: 0.01 at most for 10^4 arrows), `mean` the mean
// difference of a channel at a quarter of the size (asked: 4 at most for 10^6).
// Peer: `of_vtk` is the time of a frame of vtkGlyph3DMapper over that of one with levels; it is asked to be 5 at least
// for 10^5 arrows and 10 for 10^6.
// GLYPH_IMAGES=FOLDER in the environment keeps the images.

#include "library/VectorSymbol.h"
#include "platform/ogl/VertexData.h"
#include "scene/InstancedMesh.h"

#include "bench/CountedNew.h"
#include "bench/FramePixels.h"
#ifdef VEK_BENCH_VTK
#include "bench/VtkGlyphs.h"
#endif

#include <benchmark/benchmark.h>

#include <QImage>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>

using namespace Vek::Chart;
using namespace Vek::Bench;
using Scene::InstancedMesh;

namespace {

enum Kind { Arrows, Spheres };

/// Glyphs in pixels of a plane that fills the view. The longest arrow, and each sphere, is as large as the spacing.
struct Field {
  Field(Kind p_kind, std::size_t p_count)
      : columns(static_cast<std::size_t>(std::round(std::sqrt(static_cast<double>(p_count) * Width / Height))))
      , rows((p_count + columns - 1) / columns)
      , spacing(static_cast<double>(Width) / static_cast<double>(columns)) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> number(-1, 1);
    for (std::size_t i = 0; i < columns * rows; ++i) {
      positions.push_back(
          {(static_cast<double>(i % columns) + 0.5) * spacing, (static_cast<double>(i / columns) + 0.5) * spacing, 0});
      directions.push_back({number(random), number(random), number(random)});
      sizes.push_back(p_kind == Arrows ? spacing * (0.6 + 0.4 * number(random)) : 0.9 * spacing);
      values.push_back(0.5 + 0.5 * number(random));
    }
  }
  InstancedMesh Mesh(std::vector<InstancedMesh::Level> p_levels, Kind p_kind) const {
    InstancedMesh::Instances instances;
    instances.positions = positions;
    if (p_kind == Arrows)
      instances.directions = directions;
    instances.sizes = sizes;
    instances.values = values;
    return {std::move(p_levels), instances};
  }
  std::size_t columns, rows;
  double spacing;
  Points positions, directions;
  std::vector<double> sizes, values;
};

/// An arrow of 57 vertices, or a sphere of 642.
std::vector<InstancedMesh::Level> FullLevel(Kind p_kind) {
  constexpr unsigned int Segments = 8;
  if (p_kind == Spheres)
    return {InstancedMesh::Spheres().back()};
  Ogl::VertexData data;
  const Library::VectorSymbol arrow(Model::Symbol::ShapeArrow3D, Segments);
  arrow.BuildShape(data);
  InstancedMesh::Level level{Scene::GpuMesh(data)};
  level.scale = 1 / arrow.Length();
  return {std::move(level)};
}

void Glyphs(benchmark::State& p_state, Kind p_kind) {
  const auto count = static_cast<std::size_t>(p_state.range(0));
  Target target(static_cast<int>(p_state.range(1)));
  const Field field(p_kind, count);
  const InstancedMesh full = field.Mesh(FullLevel(p_kind), p_kind);
  const InstancedMesh levels =
      field.Mesh(p_kind == Arrows ? InstancedMesh::Arrows() : InstancedMesh::Spheres(), p_kind);
  double leastFull = target.Draw(full);
  const QImage fullImage = target.context.Image();
  target.Draw(levels);
  const QImage levelsImage = target.context.Image();
  if (const char* const folder = std::getenv("GLYPH_IMAGES")) {
    const QString name = QStringLiteral("%1/%2-%3-%4").arg(folder, p_kind == Arrows ? "arrows" : "spheres");
    fullImage.save(name.arg(count).arg("full") + ".png");
    levelsImage.save(name.arg(count).arg("levels") + ".png");
  }
  double leastMoved = std::numeric_limits<double>::infinity();
  double shift = 0;
  for (auto _ : p_state) {
    if (count < 100000) // otherwise once: it takes seconds
      leastFull = std::min(leastFull, target.Draw(full));
    const double seconds = target.Draw(levels, shift);
    leastMoved = std::min(leastMoved, target.Draw(levels, shift += 1e-3));
    p_state.SetIterationTime(seconds);
  }
  p_state.counters["full_ms"] = 1e3 * leastFull;
  p_state.counters["of_full"] = leastFull / leastMoved;
  p_state.counters["different"] = ShareOfDifferent(fullImage, levelsImage);
  p_state.counters["mean"] = MeanOfQuarter(fullImage, levelsImage);
}

/// Host memory at its peak, in bytes an instance beside the caller's arrays; asked to be 64 at most.
void Memory(benchmark::State& p_state) {
  constexpr std::size_t Count = 1000000;
  Target target(0);
  const Field field(Arrows, Count);
  const std::vector<double> values(field.positions.size(), 1);
  InstancedMesh mesh;
  target.Draw(field.Mesh(InstancedMesh::Arrows(), Arrows)); // compiles
  const auto bytes = [&](const auto& p_call) {
    return countedBytes.PeakOf(p_call) / static_cast<double>(field.positions.size());
  };
  for (auto _ : p_state) {
    const std::size_t before = countedBytes.now;
    p_state.counters["made"] = bytes([&] { mesh = field.Mesh(InstancedMesh::Arrows(), Arrows); });
    const auto since = [&](const auto& p_call) {
      const double kept = static_cast<double>(countedBytes.now - before) / static_cast<double>(field.positions.size());
      return kept + bytes(p_call);
    };
    p_state.counters["drawn"] = since([&] { target.Draw(mesh); });
    p_state.counters["values"] = since([&] {
      mesh.UpdateValues(values);
      target.Draw(mesh);
    });
    p_state.counters["directions"] = since([&] {
      mesh.UpdateDirections(field.directions);
      target.Draw(mesh);
    });
    p_state.counters["positions"] = since([&] {
      mesh.UpdatePositions(field.positions);
      target.Draw(mesh);
    });
  }
}
BENCHMARK(Memory)->Iterations(1);

/// Frames alone, each from another place: the least CPU time. `same_ms` is that of the same view once more. `select_ns`
/// is the CPU time for an instance in a frame that shows none of them; it is asked to be 10 at most.
void Frames(benchmark::State& p_state, Kind p_kind) {
  Target target(static_cast<int>(p_state.range(1)));
  const Field field(p_kind, static_cast<std::size_t>(p_state.range(0)));
  const InstancedMesh mesh = field.Mesh(p_kind == Arrows ? InstancedMesh::Arrows() : InstancedMesh::Spheres(), p_kind);
  target.Draw(mesh);
  const InstancedMesh none;
  double least = std::numeric_limits<double>::infinity(), leastSame = least, culled = least, empty = least, shift = 0;
  for (auto _ : p_state) {
    const double seconds = target.Draw(mesh, shift += 1e-3);
    p_state.SetIterationTime(seconds);
    least = std::min(least, seconds);
    leastSame = std::min(leastSame, target.Draw(mesh, shift));
    empty = std::min(empty, target.Draw(none));
    culled = std::min(culled, target.Draw(mesh, 4 * Width + shift));
  }
  p_state.counters["least_ms"] = 1e3 * least;
  p_state.counters["same_ms"] = 1e3 * leastSame;
  p_state.counters["select_ns"] = 1e9 * std::max(0.0, culled - empty) / static_cast<double>(field.positions.size());
}
BENCHMARK_CAPTURE(Frames, Arrows, Arrows)
    ->ArgsProduct({{10000, 100000, 1000000}, {0, 4}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);
BENCHMARK_CAPTURE(Frames, Spheres, Spheres)
    ->ArgsProduct({{10000, 100000, 1000000}, {0, 4}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);

/// Spheres of `range(1)` pixels in a cube, all in view: many cover each other. `wall_ms` is the time by the clock,
/// `all_ms` the CPU time of a frame of all instances, `different` the share of pixels that differ from it.
void Overlapping(benchmark::State& p_state) {
  Target target(0);
  const auto count = static_cast<std::size_t>(p_state.range(0));
  const auto diameter = static_cast<double>(p_state.range(1));
  std::mt19937 random(1);
  std::uniform_real_distribution<double> number(0, 1);
  Points positions(count);
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i) {
    positions[i] = {number(random) * Width, number(random) * Height, (number(random) - 0.5) * Height};
    values[i] = number(random);
  }
  InstancedMesh::Instances instances;
  instances.positions = positions;
  instances.values = values;
  std::vector<InstancedMesh::Level> levels = InstancedMesh::Spheres();
  for (InstancedMesh::Level& level : levels) {
    level.scale *= diameter;
    level.mostPixels /= diameter;
  }
  InstancedMesh mesh(std::move(levels), instances);
  target.Draw(mesh);
  const QImage image = target.context.Image();
  double least = std::numeric_limits<double>::infinity(), leastWall = least, shift = 0;
  for (auto _ : p_state) {
    const auto start = std::chrono::steady_clock::now();
    const double seconds = target.Draw(mesh, shift += 1e-3);
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
    leastWall = std::min(leastWall, wall.count());
    least = std::min(least, seconds);
    p_state.SetIterationTime(seconds);
  }
  if (count <= 100000) {                                           // otherwise it takes a minute
    mesh.SetMostVertices(std::numeric_limits<std::size_t>::max()); // any number, without occlusion culling
    p_state.counters["all_ms"] = 1e3 * target.Draw(mesh);
    p_state.counters["different"] = ShareOfDifferent(image, target.context.Image());
  }
  p_state.counters["least_ms"] = 1e3 * least;
  p_state.counters["wall_ms"] = 1e3 * leastWall;
}
BENCHMARK(Overlapping)->ArgsProduct({{100000, 1000000}, {5, 20, 80}})->Apply(ThreeFrames);

#ifdef VEK_BENCH_VTK
/// The CPU time of a frame of vtkGlyph3DMapper, before our context is made: a thread has one current at a time.
struct PeerFrames {
  double least = std::numeric_limits<double>::infinity();
  std::string renderer;
  std::size_t vertices = 0; ///< of a glyph
};

PeerFrames DrawPeer(const Field& p_field, Kind p_kind, int p_samples) {
  VtkGlyphs vtk(Width, Height, p_samples, p_field.positions, p_kind == Arrows ? p_field.directions : Points(),
                p_field.sizes, p_field.values);
  vtk.Draw(0);
  PeerFrames frames;
  frames.renderer = vtk.Renderer();
  frames.vertices = vtk.Vertices();
  for (int i = 1; i < 4; ++i) {
    const double start = CpuSeconds();
    vtk.Draw(1e-3 * i);
    frames.least = std::min(frames.least, CpuSeconds() - start);
  }
  if (const char* const folder = std::getenv("GLYPH_IMAGES"))
    vtk.Save(std::string(folder) + (p_kind == Arrows ? "/arrows-" : "/spheres-") +
             std::to_string(p_field.positions.size()) + "-vtk.png");
  return frames;
}

void Peer(benchmark::State& p_state, Kind p_kind) {
  if (std::getenv("DISPLAY") == nullptr)
    return p_state.SkipWithError("VTK needs an X server: run with tests/support/with-display");
  const Field field(p_kind, static_cast<std::size_t>(p_state.range(0)));
  const auto samples = static_cast<int>(p_state.range(1));
  const PeerFrames peer = DrawPeer(field, p_kind, samples);
  Target target(samples);
  if (peer.renderer.find(target.context.Renderer()) == std::string::npos)
    return p_state.SkipWithError(("VTK draws with another renderer:" + peer.renderer).c_str());
  const InstancedMesh mesh = field.Mesh(p_kind == Arrows ? InstancedMesh::Arrows() : InstancedMesh::Spheres(), p_kind);
  target.Draw(mesh);
  double least = std::numeric_limits<double>::infinity(), shift = 0;
  for (auto _ : p_state) {
    const double seconds = target.Draw(mesh, shift += 1e-3);
    least = std::min(least, seconds);
    p_state.SetIterationTime(seconds);
  }
  p_state.counters["vtk_ms"] = 1e3 * peer.least;
  p_state.counters["vtk_vertices"] = static_cast<double>(peer.vertices);
  p_state.counters["of_vtk"] = peer.least / least;
}
BENCHMARK_CAPTURE(Peer, Arrows, Arrows)
    ->Args({10000, 0})
    ->Args({100000, 0})
    ->Args({1000000, 0})
    ->Args({100000, 4})
    ->Args({1000000, 4})
    ->Apply(ThreeFrames);
BENCHMARK_CAPTURE(Peer, Spheres, Spheres)->Args({10000, 0})->Args({100000, 0})->Args({1000000, 0})->Apply(ThreeFrames);
#endif

BENCHMARK_CAPTURE(Glyphs, Arrows, Arrows)
    ->Args({10000, 4})
    ->Args({100000, 4})
    ->Args({1000000, 4})
    ->Args({100000, 0})
    ->Args({1000000, 0})
    ->Apply(ThreeFrames);
BENCHMARK_CAPTURE(Glyphs, Spheres, Spheres)->Args({10000, 4})->Args({100000, 0})->Apply(ThreeFrames);

} // namespace
