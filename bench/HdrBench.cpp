// Reads generated Radiance images of 4096 x 2048 pixels, run-length encoded and flat. Two lower bounds: reading the
// file and touching one byte of each page of the result, which is little more than the work of the system; and reading
// the file and writing each byte of the result once, in the largest pages.

#include "library/HdrImage.h"

#include <benchmark/benchmark.h>

#ifdef VEK_BENCH_STB
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_HDR
#include <stb_image.h>
#endif

#ifdef __linux__
#include <sys/mman.h>
#endif

#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace Vek::Chart::Library;

constexpr std::size_t Width = 4096;
constexpr std::size_t Height = 2048;
constexpr std::size_t ResultBytes = Width * Height * sizeof(HdrImage::Rgb32F);

using Component = std::array<unsigned char, Width>;
using Scanline = std::array<Component, 4>;

/// A sky that brightens towards a sun, with camera noise in its lower half.
Scanline Sky(std::size_t p_row) {
  Scanline scanline;
  std::uint32_t grain = static_cast<std::uint32_t>(p_row) * 2654435761u;
  for (std::size_t x = 0; x < Width; ++x) {
    const double distance = std::hypot(double(x) - 1000.0, double(p_row) - 500.0);
    grain = grain * 1664525u + 1013904223u;
    const double noise = p_row < Height / 2 ? 0.0 : (grain >> 8) / 16777216.0 * 0.1;
    const double blue = 0.2 + 400.0 / (1.0 + distance) + noise;
    int exponent = 0;
    const double scale = std::frexp(blue, &exponent) * 256.0 / blue;
    scanline[0][x] = static_cast<unsigned char>(0.5 * blue * scale);
    scanline[1][x] = static_cast<unsigned char>(0.75 * blue * scale);
    scanline[2][x] = static_cast<unsigned char>(blue * scale);
    scanline[3][x] = static_cast<unsigned char>(exponent + 128);
  }
  return scanline;
}

/// Runs of four and more become runs, all else literals.
void AppendRuns(const Component& p_values, std::string& p_data) {
  const auto runAt = [&](std::size_t p_at) {
    std::size_t end = p_at + 1;
    while (end < Width && end - p_at < 127 && p_values[end] == p_values[p_at])
      ++end;
    return end - p_at;
  };
  for (std::size_t at = 0; at < Width;) {
    if (const std::size_t length = runAt(at); length >= 4) {
      p_data += {static_cast<char>(128 + length), static_cast<char>(p_values[at])};
      at += length;
      continue;
    }
    const std::size_t first = at;
    while (at < Width && at - first < 128 && runAt(at) < 4)
      ++at;
    p_data += static_cast<char>(at - first);
    p_data.append(p_values.begin() + first, p_values.begin() + at);
  }
}

std::string MakeImage(bool p_separated) {
  std::string data = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 2048 +X 4096\n";
  for (std::size_t row = 0; row < Height; ++row) {
    const Scanline scanline = Sky(row);
    if (p_separated) {
      data += {2, 2, static_cast<char>(Width / 256), static_cast<char>(Width % 256)};
      for (const Component& component : scanline)
        AppendRuns(component, data);
    } else {
      for (std::size_t x = 0; x < Width; ++x)
        for (const Component& component : scanline)
          data += static_cast<char>(component[x]);
    }
  }
  return data;
}

/// The path of a generated file in the folder for temporary files; written once and kept.
const std::string& ImagePath(bool p_separated) {
  static const auto Write = [](bool p_runs) {
    const std::string name =
        (std::filesystem::temp_directory_path() / (p_runs ? "vek-bench-runs-1.hdr" : "vek-bench-flat-1.hdr")).string();
    if (!std::filesystem::exists(name)) {
      std::ofstream(name + ".part", std::ios::binary) << MakeImage(p_runs);
      std::filesystem::rename(name + ".part", name);
    }
    return name;
  };
  static const std::string Runs = Write(true);
  static const std::string Flat = Write(false);
  return p_separated ? Runs : Flat;
}

void CountPixels(benchmark::State& p_state) {
  p_state.SetItemsProcessed(p_state.iterations() * std::int64_t(Width * Height));
}

/// Writes one of `p_step` bytes.
void ReadAndWrite(benchmark::State& p_state, std::size_t p_step) {
  constexpr std::size_t HugePage = std::size_t(1) << 21;
  const std::string& path = ImagePath(p_state.range(0) != 0);
  std::vector<char> window(std::size_t(1) << 20);
  for (auto _ : p_state) {
    std::ifstream file(path, std::ios::binary);
    while (file.read(window.data(), std::streamsize(window.size())) || file.gcount() > 0)
      benchmark::DoNotOptimize(window.data());
    const std::size_t size = (ResultBytes + HugePage - 1) / HugePage * HugePage;
    const std::unique_ptr<char, decltype(&std::free)> result(static_cast<char*>(std::aligned_alloc(HugePage, size)),
                                                             &std::free);
#ifdef __linux__
    madvise(result.get(), size, MADV_HUGEPAGE);
#endif
    if (p_step == 1)
      std::memset(result.get(), 1, size);
    else
      for (std::size_t at = 0; at < size; at += p_step)
        result.get()[at] = 1;
    benchmark::DoNotOptimize(result.get());
  }
  CountPixels(p_state);
}

void ReadAndTouchPages(benchmark::State& p_state) {
  ReadAndWrite(p_state, 4096);
}

void ReadAndWriteAll(benchmark::State& p_state) {
  ReadAndWrite(p_state, 1);
}

void LoadImage(benchmark::State& p_state) {
  const vekfile::filepath path(ImagePath(p_state.range(0) != 0));
  for (auto _ : p_state) {
    const HdrImage image(path);
    benchmark::DoNotOptimize(image.Pixels().data());
  }
  CountPixels(p_state);
}

#define VEK_HDR_BENCHMARK(p_function)                                                                                  \
  BENCHMARK(p_function)->ArgName("runs")->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime()

VEK_HDR_BENCHMARK(ReadAndTouchPages);
VEK_HDR_BENCHMARK(ReadAndWriteAll);
VEK_HDR_BENCHMARK(LoadImage);

#ifdef VEK_BENCH_STB
void StbImage(benchmark::State& p_state) {
  const std::string& path = ImagePath(p_state.range(0) != 0);
  for (auto _ : p_state) {
    int width = 0;
    int height = 0;
    int channels = 0;
    float* const pixels = stbi_loadf(path.c_str(), &width, &height, &channels, 3);
    benchmark::DoNotOptimize(pixels);
    stbi_image_free(pixels);
  }
  CountPixels(p_state);
}
VEK_HDR_BENCHMARK(StbImage);
#endif

} // namespace
