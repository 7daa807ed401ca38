// Reads generated TextArray files of 256 x 256 x 256 values, compared with a plain loop of std::from_chars over the
// mapped file.

#include "library/VolumeImage.h"

#include <benchmark/benchmark.h>

#include <boost/interprocess/file_mapping.hpp>
#include <boost/interprocess/mapped_region.hpp>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace Vek::Chart::Library;

constexpr std::size_t Count = 256 * 256 * 256;

enum Kind { ShortIntegers, ThreeDecimals };

void WriteNumbers(const std::string& p_path, Kind p_kind) {
  std::ofstream file(p_path, std::ios::binary);
  file << "TextArray 256 1 256 256\n";
  std::string row;
  std::uint32_t random = 1;
  char text[32];
  for (std::size_t i = 0; i < Count; ++i) {
    random = random * 1664525u + 1013904223u;
    const unsigned value = (random >> 12) % (p_kind == ShortIntegers ? 4096 : 1000000);
    std::snprintf(text, sizeof text, p_kind == ShortIntegers ? "%.0f" : "%.3f",
                  value / (p_kind == ShortIntegers ? 1.0 : 1000.0));
    row += text;
    row += i % 256 == 255 ? '\n' : ' ';
    if (i % 256 == 255) {
      file << row;
      row.clear();
    }
  }
}

/// The path of a generated file in the folder for temporary files; written once and kept.
std::string NumbersPath(Kind p_kind) {
  const std::string name = (std::filesystem::temp_directory_path() /
                            (p_kind == ShortIntegers ? "vek-bench-integers-1.txt" : "vek-bench-decimals-1.txt"))
                               .string();
  if (!std::filesystem::exists(name)) {
    WriteNumbers(name + ".part", p_kind);
    std::filesystem::rename(name + ".part", name);
  }
  return name;
}

void CountNumbers(benchmark::State& p_state) {
  p_state.SetItemsProcessed(p_state.iterations() * std::int64_t(Count));
}

void FromChars(benchmark::State& p_state) {
  namespace ipc = boost::interprocess;
  const std::string path = NumbersPath(static_cast<Kind>(p_state.range(0)));
  for (auto _ : p_state) {
    const ipc::file_mapping file(path.c_str(), ipc::read_only);
    const ipc::mapped_region region(file, ipc::read_only);
    const char* at = static_cast<const char*>(region.get_address());
    const char* const end = at + region.get_size();
    while (*at != '\n')
      ++at;
    float maximum = 0.0f;
    float value = 0.0f;
    while (++at < end) { // one blank or line feed between two numbers
      at = std::from_chars(at, end, value).ptr;
      maximum = value > maximum ? value : maximum;
    }
    benchmark::DoNotOptimize(maximum);
  }
  CountNumbers(p_state);
}

void LoadVolume(benchmark::State& p_state) {
  const vekfile::filepath path(NumbersPath(static_cast<Kind>(p_state.range(0))));
  for (auto _ : p_state)
    benchmark::DoNotOptimize(VolumeImage::LoadFromFile(path, VolumeImage::TextArray));
  CountNumbers(p_state);
}

#define VEK_TEXT_ARRAY_BENCHMARK(p_function)                                                                           \
  BENCHMARK(p_function)                                                                                                \
      ->ArgName("decimals")                                                                                            \
      ->Arg(ShortIntegers)                                                                                             \
      ->Arg(ThreeDecimals)                                                                                             \
      ->Unit(benchmark::kMillisecond)                                                                                  \
      ->UseRealTime()

VEK_TEXT_ARRAY_BENCHMARK(FromChars);
VEK_TEXT_ARRAY_BENCHMARK(LoadVolume);

} // namespace
