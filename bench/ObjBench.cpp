// Reads a generated OBJ file of 500,000 vertices with normals and a million triangles (76 MB). The limit is what any
// reader has to do: read the file and find its line feeds. A second pair of files has half a million faces: a load that
// reports every face, since it has four corners, may take twice as long as the load of their first three corners.
//
// ReadObjScene reads the same files: triangles at the speed of LoadModel, quads, in bytes of the file, at 1/1.3 of that
// of triangles or more. Speeds are compared within one run.

#include "bench/Memory.h"
#include "bench/SideBySide.h"
#include "library/ObjModel.h"
#include "library/ObjScene.h"
#include "platform/debug/Logger.h"

#include <benchmark/benchmark.h>

#ifdef VEK_BENCH_TINYOBJLOADER
#include <tiny_obj_loader.h>
#endif
#ifdef VEK_BENCH_ASSIMP
#include <assimp/Importer.hpp>
#endif

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using namespace Vek::Chart::Library;
using Vek::Chart::Utility::Threads;

/// The faces of a torus of 1000 x 500 quads.
enum class Faces { TwoTriangles, Quad, HalfQuad };

void WriteTorus(const std::string& p_path, Faces p_faces) {
  constexpr int Around = 1000;
  constexpr int Across = 500;
  std::string text = "# torus\ng torus\n";
  char line[128];
  const auto write = [&](const char* p_keyword, double p_large, double p_small) {
    for (int i = 0; i < Around; ++i) {
      for (int j = 0; j < Across; ++j) {
        const double u = 6.283185307179586 * i / Around;
        const double v = 6.283185307179586 * j / Across;
        const double radius = p_large + p_small * std::cos(v);
        std::snprintf(line, sizeof line, "%s %.6f %.6f %.6f\n", p_keyword, radius * std::cos(u), radius * std::sin(u),
                      p_small * std::sin(v));
        text += line;
      }
    }
  };
  const auto face = [&](std::initializer_list<int> p_corners) {
    text += 'f';
    for (const int corner : p_corners)
      text += ' ' + std::to_string(corner) + "//" + std::to_string(corner);
    text += '\n';
  };
  write("v", 0.75, 0.25);
  write("vn", 0.0, 1.0);
  for (int i = 0; i < Around; ++i) {
    for (int j = 0; j < Across; ++j) {
      const int next = (i + 1) % Around;
      const int up = (j + 1) % Across;
      const int a = 1 + i * Across + j, b = 1 + next * Across + j, c = 1 + next * Across + up, d = 1 + i * Across + up;
      if (p_faces == Faces::Quad) {
        face({a, b, c, d});
        continue;
      }
      face({a, b, c});
      if (p_faces == Faces::TwoTriangles)
        face({a, c, d});
    }
  }
  std::ofstream(p_path, std::ios::binary) << text;
}

/// The generated file; written once, it stays in the folder for temporary files.
std::string TorusPath(Faces p_faces = Faces::TwoTriangles) {
  const std::string suffix[] = {"", "-quads", "-halves"};
  const std::string path =
      (std::filesystem::temp_directory_path() / ("vek-bench-torus-1" + suffix[int(p_faces)] + ".obj")).string();
  if (!std::filesystem::exists(path)) {
    WriteTorus(path + ".part", p_faces);
    std::filesystem::rename(path + ".part", path);
  }
  return path;
}

void CountBytes(benchmark::State& p_state) {
  p_state.SetBytesProcessed(std::int64_t(p_state.iterations()) * std::int64_t(std::filesystem::file_size(TorusPath())));
}

std::size_t ResultBytes(const ObjModel& p_model) {
  std::size_t bytes = 12 * (p_model.Vertices()->size() + p_model.Normals()->size());
  for (const auto& group : *p_model.Groups())
    bytes += 4 * group->indices.size();
  return bytes;
}

std::size_t ResultBytes(const ObjScene& p_scene) {
  return 4 * (p_scene.positions.size() + p_scene.normals.size() + p_scene.texCoords.size() + p_scene.colors.size() +
              p_scene.indices.size());
}

void ReadAndFindLineFeeds(benchmark::State& p_state) {
  std::vector<char> window(std::size_t(1) << 20);
  TorusPath();
  for (auto _ : p_state) {
    std::ifstream file(TorusPath(), std::ios::binary);
    std::size_t lines = 0;
    while (file.read(window.data(), std::streamsize(window.size())) || file.gcount() > 0) {
      const char* at = window.data();
      const char* const end = at + file.gcount();
      while ((at = static_cast<const char*>(std::memchr(at, '\n', std::size_t(end - at)))) != nullptr) {
        ++lines;
        ++at;
      }
    }
    benchmark::DoNotOptimize(lines);
  }
  CountBytes(p_state);
}
BENCHMARK(ReadAndFindLineFeeds)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The peak of resident memory of a function that reads a mesh, as a multiple of the resulting arrays.
template <class Read>
double Peak(const Read& p_read) {
#ifdef __GLIBC__
  malloc_trim(0); // free memory that stays resident would hide what the load takes
#endif
  std::ofstream("/proc/self/clear_refs") << 5; // resets the high-water mark
  const double before = Vek::Bench::MemoryBytes("VmRSS");
  const auto mesh = p_read();
  return (Vek::Bench::MemoryBytes("VmHWM") - before) / double(ResultBytes(*mesh));
}

double ScenePeak(Threads p_threads) {
  return Peak([&] { return std::make_unique<ObjScene>(ReadObjScene(TorusPath(), {}, p_threads)); });
}

struct Peaks {
  double scene = ScenePeak({});
  double model = Peak([] { return LoadPolygonObjFile(TorusPath()); });
  // After other reads, of which the allocator may have kept memory.
  double sceneAgain = std::max({ScenePeak({}), ScenePeak({}), ScenePeak({})});
  double sceneOnThreads = std::max({ScenePeak(Threads(4)), ScenePeak(Threads(4)), ScenePeak(Threads(4))});
  double modelAgain = std::max(Peak([] { return LoadPolygonObjFile(TorusPath()); }),
                               Peak([] { return LoadPolygonObjFile(TorusPath(), Threads(4)); }));
};

/// Of the first loads in the process: the allocator has kept nothing that others left behind. Asked: at most 1.3 each.
const Peaks& FirstPeaks() {
  static const Peaks First;
  return First;
}

void LoadModel(benchmark::State& p_state) {
  TorusPath();
  p_state.counters["peak/result"] = FirstPeaks().model;
  p_state.counters["peak_again/result"] = FirstPeaks().modelAgain;
  for (auto _ : p_state)
    benchmark::DoNotOptimize(LoadPolygonObjFile(TorusPath()));
  CountBytes(p_state);
}
BENCHMARK(LoadModel)->Unit(benchmark::kMillisecond)->UseRealTime();

/// On several threads, beside one; asked: 1.5 times as fast with two threads, 2.5 times with four.
void LoadOnThreads(benchmark::State& p_state) {
  const auto load = [](int p_threads) {
    benchmark::DoNotOptimize(LoadPolygonObjFile(TorusPath(), Threads(p_threads)));
  };
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { load(static_cast<int>(p_state.range(0))); }, [&] { load(1); });
}
BENCHMARK(LoadOnThreads)->Apply(Vek::Bench::OnThreads);

void ReadSceneOnThreads(benchmark::State& p_state) {
  const std::string path = TorusPath();
  const auto read = [&](int p_threads) { benchmark::DoNotOptimize(ReadObjScene(path, {}, Threads(p_threads))); };
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { read(static_cast<int>(p_state.range(0))); }, [&] { read(1); });
}
BENCHMARK(ReadSceneOnThreads)->Apply(Vek::Bench::OnThreads);

struct SilentSink : vekdebug::sink {
  void write(const vekdebug::report&) override {}
};

/// Loads the first three corners of the torus's quads from quads, of which each is reported, beside triangles.
void LoadReportedFaces(benchmark::State& p_state, const std::shared_ptr<vekdebug::sink>& p_sink) {
  const auto load = [](Faces p_faces) { benchmark::DoNotOptimize(LoadPolygonObjFile(TorusPath(p_faces))); };
  TorusPath(Faces::HalfQuad);
  TorusPath(Faces::Quad);
  const auto before = vekdebug::logger::instance().set_sink(p_sink);
  Vek::Bench::SideBySide(
      p_state, "of_triangles", [&] { load(Faces::Quad); }, [&] { load(Faces::HalfQuad); });
  vekdebug::logger::instance().set_sink(before);
}
BENCHMARK_CAPTURE(LoadReportedFaces, SilentSink, std::make_shared<SilentSink>())
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();
BENCHMARK_CAPTURE(LoadReportedFaces, DefaultSink, nullptr)->Unit(benchmark::kMillisecond)->UseManualTime();

void ReadScene(benchmark::State& p_state) {
  const std::string path = TorusPath();
  p_state.counters["peak/result"] = FirstPeaks().scene;
  p_state.counters["peak_again/result"] = FirstPeaks().sceneAgain;
  p_state.counters["peak_on_threads/result"] = FirstPeaks().sceneOnThreads;
  for (auto _ : p_state)
    benchmark::DoNotOptimize(ReadObjScene(path));
  CountBytes(p_state);
}
BENCHMARK(ReadScene)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Beside triangles; the counter compares bytes of the files.
void ReadSceneOfQuads(benchmark::State& p_state) {
  const std::string quads = TorusPath(Faces::Quad), triangles = TorusPath();
  constexpr const char* Counter = "of_triangles_a_byte";
  Vek::Bench::SideBySide(
      p_state, Counter, [&] { benchmark::DoNotOptimize(ReadObjScene(quads)); },
      [&] { benchmark::DoNotOptimize(ReadObjScene(triangles)); });
  p_state.counters[Counter] = p_state.counters[Counter] * double(std::filesystem::file_size(quads)) /
                              double(std::filesystem::file_size(triangles));
}
BENCHMARK(ReadSceneOfQuads)->Unit(benchmark::kMillisecond)->UseManualTime();

#ifdef VEK_BENCH_TINYOBJLOADER
void TinyObjLoader(benchmark::State& p_state) {
  TorusPath();
  for (auto _ : p_state) {
    tinyobj::attrib_t attributes;
    std::vector<tinyobj::shape_t> shapes;
    std::vector<tinyobj::material_t> materials;
    std::string warning;
    std::string error;
    benchmark::DoNotOptimize(tinyobj::LoadObj(&attributes, &shapes, &materials, &warning, &error, TorusPath().c_str()));
  }
  CountBytes(p_state);
}
BENCHMARK(TinyObjLoader)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

#ifdef VEK_BENCH_ASSIMP
void AssimpObj(benchmark::State& p_state) {
  TorusPath();
  for (auto _ : p_state) {
    Assimp::Importer importer;
    benchmark::DoNotOptimize(importer.ReadFile(TorusPath(), 0));
  }
  CountBytes(p_state);
}
BENCHMARK(AssimpObj)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

} // namespace
