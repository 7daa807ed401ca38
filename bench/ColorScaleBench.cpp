// Ten million values into colours of four bytes, by 256 classes: evenly and logarithmically, random and smooth values,
// float and double; beside the limit of moving as many bytes and, where VTK is installed, its own look-up table.

#include "bench/SideBySide.h"
#include "library/ColorScale.h"
#include "library/NamedColors.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <thread>
#include <type_traits>
#include <vector>

#if defined(VEK_BENCH_VTK)
#include <vtkLookupTable.h>
#include <vtkNew.h>
#include <vtkType.h>
#endif
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

using Vek::Chart::Library::ColorScale;
using Vek::Chart::Library::NamedColors;

namespace {

constexpr std::size_t Count = 10'000'000;
constexpr double Lower = 0.001, Upper = 1000;

enum Data { Random, Waves };
enum Spread { Even, ByMagnitude };

/// Ten million values, spread over the range or over its logarithm; one in twenty lies outside.
template <class T>
const std::vector<T>& Values(Data p_data, Spread p_spread) {
  static std::vector<T> values[2][2];
  std::vector<T>& list = values[p_data][p_spread];
  std::mt19937 random(7);
  std::uniform_real_distribution<double> place(-0.025, 1.025);
  for (std::size_t i = list.size(); i < Count; ++i) {
    const double at = p_data == Waves ? 0.5 + 0.525 * std::sin(static_cast<double>(i) * 1e-4) : place(random);
    list.push_back(
        static_cast<T>(p_spread == ByMagnitude ? Lower * std::pow(Upper / Lower, at) : Lower + (Upper - Lower) * at));
  }
  return list;
}

/// One buffer for all, touched before anything is timed.
unsigned char* Target() {
  static const std::unique_ptr<unsigned char, decltype(&std::free)> Buffer(
      static_cast<unsigned char*>(std::aligned_alloc(64, 4 * Count)), &std::free);
  static const void* const Touched = std::memset(Buffer.get(), 1, 4 * Count);
  benchmark::DoNotOptimize(Touched);
  return Buffer.get();
}

/// The best of several runs tells what the code costs; the others, what else the machine did.
void Best(benchmark::internal::Benchmark* p_benchmark) {
  p_benchmark->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(15)->ReportAggregatesOnly();
  p_benchmark->ComputeStatistics(
      "min", [](const std::vector<double>& p_times) { return *std::min_element(p_times.begin(), p_times.end()); });
}

/// Not the library: as many bytes read and written.
void CopyFloats(benchmark::State& p_state) {
  const std::vector<float>& values = Values<float>(Random, Even);
  for (auto _ : p_state) {
    std::memcpy(Target(), values.data(), 4 * Count);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(CopyFloats)->Apply(Best);

#if defined(__SSE2__)
/// Not the library: the same, past the caches.
void StreamFloats(benchmark::State& p_state) {
  const std::vector<float>& values = Values<float>(Random, Even);
  for (auto _ : p_state) {
    auto* const target = reinterpret_cast<__m128i*>(Target());
    for (std::size_t i = 0; i < Count / 4; ++i)
      _mm_stream_si128(target + i, _mm_loadu_si128(reinterpret_cast<const __m128i*>(values.data()) + i));
    _mm_sfence();
    benchmark::ClobberMemory();
  }
}
BENCHMARK(StreamFloats)->Apply(Best);
#endif

#if defined(VEK_BENCH_VTK)
/// Not the library: VTK's look-up table, called for a bare array.
template <class T>
void MapByVtk(benchmark::State& p_state, Data p_data, Spread p_spread) {
  std::vector<T> values = Values<T>(p_data, p_spread);
  const vtkNew<vtkLookupTable> table;
  table->SetNumberOfTableValues(256);
  table->SetRange(Lower, Upper);
  table->SetScale(p_spread == ByMagnitude ? VTK_SCALE_LOG10 : VTK_SCALE_LINEAR);
  table->Build();
  for (auto _ : p_state) {
    table->MapScalarsThroughTable2(values.data(), Target(), std::is_same_v<T, float> ? VTK_FLOAT : VTK_DOUBLE, Count, 1,
                                   VTK_RGBA);
    benchmark::ClobberMemory();
  }
}
void MapFloatsByVtk(benchmark::State& p_state, Data p_data, Spread p_spread) {
  MapByVtk<float>(p_state, p_data, p_spread);
}
void MapDoublesByVtk(benchmark::State& p_state, Data p_data, Spread p_spread) {
  MapByVtk<double>(p_state, p_data, p_spread);
}
#else
const bool Told =
    (benchmark::AddCustomContext("vtkLookupTable", "VTK is not installed: nothing to compare with"), true);
#endif

template <class T>
void Map(benchmark::State& p_state, Data p_data, Spread p_spread) {
  const std::vector<T>& values = Values<T>(p_data, p_spread);
  const ColorScale scale(NamedColors::Colors("viridis"), Lower, Upper,
                         p_spread == ByMagnitude ? ColorScale::Logarithmic : ColorScale::Linear);
  for (auto _ : p_state) {
    scale.Map(values.data(), Count, Target());
    benchmark::ClobberMemory();
  }
}
void MapFloats(benchmark::State& p_state, Data p_data, Spread p_spread) {
  Map<float>(p_state, p_data, p_spread);
}
void MapDoubles(benchmark::State& p_state, Data p_data, Spread p_spread) {
  Map<double>(p_state, p_data, p_spread);
}

// A row of VTK, where there is one, and the library's beside it.
#if defined(VEK_BENCH_VTK)
#define VEK_BENCH_PAIR(p_map, p_name, ...)                                                                             \
  BENCHMARK_CAPTURE(p_map##ByVtk, p_name, __VA_ARGS__)->Apply(Best);                                                   \
  BENCHMARK_CAPTURE(p_map, p_name, __VA_ARGS__)->Apply(Best)
#else
#define VEK_BENCH_PAIR(p_map, p_name, ...) BENCHMARK_CAPTURE(p_map, p_name, __VA_ARGS__)->Apply(Best)
#endif
VEK_BENCH_PAIR(MapFloats, linear_random, Random, Even);
VEK_BENCH_PAIR(MapFloats, linear_waves, Waves, Even);
VEK_BENCH_PAIR(MapFloats, log_random, Random, ByMagnitude);
VEK_BENCH_PAIR(MapFloats, log_waves, Waves, ByMagnitude);
VEK_BENCH_PAIR(MapDoubles, linear_random, Random, Even);
VEK_BENCH_PAIR(MapDoubles, log_random, Random, ByMagnitude);

/// Not the library: what several threads gain where they share no memory. Less than their number where the machine has
/// other work.
void ComputeOnThreads(benchmark::State& p_state) {
  const auto compute = [](int p_threads) {
    const auto step = [](int p_steps) {
      std::uint64_t values[8] = {1, 2, 3, 4, 5, 6, 7, 8};
      for (int i = 0; i < p_steps; ++i)
        for (std::uint64_t& value : values)
          value = value * 6364136223846793005u + (value >> 7);
      benchmark::DoNotOptimize(values);
    };
    std::vector<std::thread> threads;
    for (int i = 1; i < p_threads; ++i)
      threads.emplace_back(step, 2'000'000 / p_threads);
    step(2'000'000 / p_threads);
    for (std::thread& thread : threads)
      thread.join();
  };
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { compute(static_cast<int>(p_state.range(0))); }, [&] { compute(1); });
}
BENCHMARK(ComputeOnThreads)->Apply(Vek::Bench::OnThreads);

/// On several threads, beside one; asked: 1.8 times as fast with two threads, 3 times with four.
void MapOnThreads(benchmark::State& p_state, Data p_data, Spread p_spread) {
  const std::vector<float>& values = Values<float>(p_data, p_spread);
  const ColorScale scale(NamedColors::Colors("viridis"), Lower, Upper,
                         p_spread == ByMagnitude ? ColorScale::Logarithmic : ColorScale::Linear);
  const auto map = [&](int p_threads) {
    scale.Map(values.data(), Count, Target(), Vek::Chart::Utility::Threads(p_threads));
    benchmark::ClobberMemory();
  };
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { map(static_cast<int>(p_state.range(0))); }, [&] { map(1); });
}
BENCHMARK_CAPTURE(MapOnThreads, linear_random, Random, Even)->Apply(Vek::Bench::OnThreads);
BENCHMARK_CAPTURE(MapOnThreads, log_waves, Waves, ByMagnitude)->Apply(Vek::Bench::OnThreads);

/// What making a scale costs.
void Make(benchmark::State& p_state, Spread p_spread) {
  const std::vector<QColor> colors = NamedColors::Colors("viridis", static_cast<int>(p_state.range(0)));
  for (auto _ : p_state)
    benchmark::DoNotOptimize(
        ColorScale(colors, Lower, Upper, p_spread == ByMagnitude ? ColorScale::Logarithmic : ColorScale::Linear));
}
BENCHMARK_CAPTURE(Make, linear, Even)->Arg(256)->Arg(4096)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Make, log, ByMagnitude)->Arg(256)->Arg(4096)->Unit(benchmark::kMicrosecond);

} // namespace
