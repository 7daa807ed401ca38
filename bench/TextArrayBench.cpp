// Reads generated TextArray files of 256 x 256 x 128 numbers of five kinds, beside a plain loop of std::from_chars over
// the mapped file. Asked: 1.4 times as fast as the loop for %.6g, 1.25 times for %.6f and short integers, and not
// slower for %.7e and %.17g; with two threads 1.8 times as fast as with one, with four 3.2 times; a peak of memory of
// at most 4.2 times the volume. TextArrayPlainBench is the same on processors without AVX2.

#include "bench/Memory.h"
#include "bench/SideBySide.h"
#include "library/ReadTextArray.h"
#include "library/VolumeImage.h"

#include <benchmark/benchmark.h>

#include <boost/interprocess/file_mapping.hpp>
#include <boost/interprocess/mapped_region.hpp>

#include <array>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

using namespace Vek::Chart::Library;
using Vek::Chart::Utility::Threads;

constexpr std::size_t Count = 256 * 256 * 128;

struct Kind {
  const char* name;
  const char* format;
};
constexpr std::array<Kind, 5> Kinds{
    {{"integers", "%.0f"}, {"6g", "%.6g"}, {"6f", "%.6f"}, {"7e", "%.7e"}, {"17g", "%.17g"}}};

/// Integers from 0 to 4095; others are spread over several powers of ten.
void WriteNumbers(const std::string& p_path, const Kind& p_kind) {
  std::ofstream file(p_path, std::ios::binary);
  file << "TextArray 256 1 256 128\n";
  std::string row;
  std::uint64_t random = 1;
  char text[64];
  for (std::size_t i = 0; i < Count; ++i) {
    random = random * 6364136223846793005u + 1442695040888963407u;
    const double share = double(random >> 11) / double(std::uint64_t(1) << 53);
    const bool isInteger = p_kind.name == Kinds[0].name;
    std::snprintf(text, sizeof text, p_kind.format, isInteger ? double(random >> 52) : 1000 * share * share * share);
    row += text;
    row += i % 256 == 255 ? '\n' : ' ';
    if (i % 256 == 255) {
      file << row;
      row.clear();
    }
  }
}

/// The path of a generated file in the folder for temporary files; written once and kept.
std::string NumbersPath(const Kind& p_kind) {
  const std::string name =
      (std::filesystem::temp_directory_path() / (std::string("vek-bench-numbers-3-") + p_kind.name + ".txt")).string();
  if (!std::filesystem::exists(name)) {
    WriteNumbers(name + ".part", p_kind);
    std::filesystem::rename(name + ".part", name);
  }
  return name;
}

void FromChars(const std::string& p_path) {
  namespace ipc = boost::interprocess;
  const ipc::file_mapping file(p_path.c_str(), ipc::read_only);
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

void Load(const std::string& p_path, Threads p_threads = {}) {
  benchmark::DoNotOptimize(VolumeImage::LoadFromFile(vekfile::filepath(p_path), VolumeImage::TextArray, p_threads));
}

/// The peak of resident memory of a load, as a multiple of the voxels.
double Peak(const std::string& p_path, Threads p_threads) {
#ifdef __GLIBC__
  malloc_trim(0); // free memory that stays resident would hide what the load takes
#endif
  std::ofstream("/proc/self/clear_refs") << 5; // resets the high-water mark
  const double before = Vek::Bench::MemoryBytes("VmRSS");
  Load(p_path, p_threads);
  return (Vek::Bench::MemoryBytes("VmHWM") - before) / double(Count);
}

void LoadVolume(benchmark::State& p_state) {
  const Kind& kind = Kinds[static_cast<std::size_t>(p_state.range(0))];
  const std::string path = NumbersPath(kind);
  p_state.SetLabel(kind.format);
  Vek::Bench::SideBySide(
      p_state, "of_from_chars", [&] { Load(path); }, [&] { FromChars(path); });
  p_state.counters["peak/result"] = Peak(path, Threads());
  p_state.SetItemsProcessed(p_state.iterations() * std::int64_t(Count));
}
BENCHMARK(LoadVolume)->ArgName("kind")->DenseRange(0, 4)->Unit(benchmark::kMillisecond)->UseManualTime();

void LoadOnThreads(benchmark::State& p_state) {
  const Threads threads(static_cast<int>(p_state.range(0)));
  const std::string path = NumbersPath(Kinds[1]);
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { Load(path, threads); }, [&] { Load(path); });
  p_state.counters["peak/result"] = Peak(path, threads);
}
BENCHMARK(LoadOnThreads)->Apply(Vek::Bench::OnThreads);

/// As floats, which are joined in the file's order.
void ReadFloatsOnThreads(benchmark::State& p_state) {
  const Threads threads(static_cast<int>(p_state.range(0)));
  const std::string path = NumbersPath(Kinds[1]);
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { benchmark::DoNotOptimize(ReadTextArray(path, {}, threads)); },
      [&] { benchmark::DoNotOptimize(ReadTextArray(path)); });
}
BENCHMARK(ReadFloatsOnThreads)->Apply(Vek::Bench::OnThreads);

} // namespace
