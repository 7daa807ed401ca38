// Reads a generated OBJ file of 500,000 vertices with normals and a million triangles (76 MB). The limit is what any
// reader has to do: read the file and find its line feeds.

#include "library/ObjModel.h"

#include <benchmark/benchmark.h>

#ifdef VEK_BENCH_TINYOBJLOADER
#include <tiny_obj_loader.h>
#endif

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using namespace Vek::Chart::Library;

/// A torus of 1000 x 500 quads, each as two triangles.
void WriteTorus(const std::string& p_path) {
  constexpr int around = 1000;
  constexpr int across = 500;
  std::string text = "# torus\ng torus\n";
  char line[128];
  const auto write = [&](const char* p_keyword, double p_large, double p_small) {
    for (int i = 0; i < around; ++i) {
      for (int j = 0; j < across; ++j) {
        const double u = 6.283185307179586 * i / around;
        const double v = 6.283185307179586 * j / across;
        const double radius = p_large + p_small * std::cos(v);
        std::snprintf(line, sizeof line, "%s %.6f %.6f %.6f\n", p_keyword, radius * std::cos(u), radius * std::sin(u),
                      p_small * std::sin(v));
        text += line;
      }
    }
  };
  const auto triangle = [&](int p_a, int p_b, int p_c) {
    std::snprintf(line, sizeof line, "f %d//%d %d//%d %d//%d\n", p_a, p_a, p_b, p_b, p_c, p_c);
    text += line;
  };
  write("v", 0.75, 0.25);
  write("vn", 0.0, 1.0);
  for (int i = 0; i < around; ++i) {
    for (int j = 0; j < across; ++j) {
      const int next = (i + 1) % around;
      const int up = (j + 1) % across;
      triangle(1 + i * across + j, 1 + next * across + j, 1 + next * across + up);
      triangle(1 + i * across + j, 1 + next * across + up, 1 + i * across + up);
    }
  }
  std::ofstream(p_path, std::ios::binary) << text;
}

/// The generated file; written once, it stays in the folder for temporary files.
const std::string& TorusPath() {
  static const std::string path = [] {
    const std::string name = (std::filesystem::temp_directory_path() / "vek-bench-torus-1.obj").string();
    if (!std::filesystem::exists(name)) {
      WriteTorus(name + ".part");
      std::filesystem::rename(name + ".part", name);
    }
    return name;
  }();
  return path;
}

void CountBytes(benchmark::State& p_state) {
  p_state.SetBytesProcessed(std::int64_t(p_state.iterations()) * std::int64_t(std::filesystem::file_size(TorusPath())));
}

/// A line of /proc/self/status in bytes; 0 where there is none.
double MemoryBytes(const std::string& p_name) {
  std::ifstream status("/proc/self/status");
  std::string name;
  double kibibytes = 0.0;
  while (status >> name) {
    if (name == p_name + ":" && status >> kibibytes)
      return 1024.0 * kibibytes;
  }
  return 0.0;
}

std::size_t ResultBytes(const ObjModel& p_model) {
  std::size_t bytes = 12 * (p_model.Vertices()->size() + p_model.Normals()->size());
  for (const auto& group : *p_model.Groups())
    bytes += 4 * group->indices.size();
  return bytes;
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

/// Also counts the peak of resident memory of the first load, as a multiple of the resulting arrays.
void LoadModel(benchmark::State& p_state) {
  TorusPath();
  const auto peak = [] {
#ifdef __GLIBC__
    malloc_trim(0); // free memory that stays resident would hide what the load takes
#endif
    std::ofstream("/proc/self/clear_refs") << 5; // resets the high-water mark
    const double before = MemoryBytes("VmRSS");
    const auto model = LoadPolygonObjFile(TorusPath());
    return (MemoryBytes("VmHWM") - before) / double(ResultBytes(*model));
  };
  static const double firstPeak = peak();
  for (auto _ : p_state)
    benchmark::DoNotOptimize(LoadPolygonObjFile(TorusPath()));
  CountBytes(p_state);
  p_state.counters["peak/result"] = firstPeak;
}
BENCHMARK(LoadModel)->Unit(benchmark::kMillisecond)->UseRealTime();

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

} // namespace
