// Reads a generated table of five columns, compared with a plain loop of std::from_chars over the file in memory, and
// an ESRI ASCII grid of the same numbers.

#include "bench/SideBySide.h"
#include "io/ReadHeights.h"
#include "io/ReadTable.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

constexpr std::size_t Columns = 5;

const std::string& Path() {
  static const std::string Path = [] {
    const std::string to = (std::filesystem::temp_directory_path() / "vek-table-bench.csv").string();
    std::ofstream file(to, std::ios::binary);
    file << "lon,lat,u,v,speed\n";
    std::uint32_t random = 1;
    char text[32];
    for (std::size_t cell = 0; cell < Columns * 500000; ++cell) {
      random = random * 1664525u + 1013904223u;
      std::snprintf(text, sizeof text, "%.*g%c", static_cast<int>(5 + random % 8), double(random) / 4e7 - 50,
                    cell % Columns == Columns - 1 ? '\n' : ',');
      file << text;
    }
    return to;
  }();
  return Path;
}

void Plain(benchmark::State& p_state) {
  Path();
  for (auto _ : p_state) {
    std::ifstream file(Path(), std::ios::binary);
    std::string text(std::filesystem::file_size(Path()), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    std::vector<std::vector<double>> columns(Columns);
    const char* const end = text.data() + text.size();
    const char* at = text.data() + text.find('\n') + 1;
    for (std::size_t cell = 0; at < end; ++cell) {
      double number = 0;
      at = std::from_chars(at, end, number).ptr + 1;
      columns[cell % Columns].push_back(number);
    }
    benchmark::DoNotOptimize(columns.data());
  }
}

void Table(benchmark::State& p_state) {
  Path();
  for (auto _ : p_state)
    benchmark::DoNotOptimize(Vek::Chart::Io::ReadTable(Path()).Rows());
}

void TableOnThreads(benchmark::State& p_state) {
  using Vek::Chart::Utility::Threads;
  const auto read = [](Threads p_threads) {
    benchmark::DoNotOptimize(Vek::Chart::Io::ReadTable(Path(), {}, p_threads).Rows());
  };
  Path();
  const Threads threads(static_cast<int>(p_state.range(0)));
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { read(threads); }, [&] { read({}); });
}

/// The cells of the table, as a grid.
const std::string& GridPath() {
  static const std::string To = [] {
    const std::string to = (std::filesystem::temp_directory_path() / "vek-grid-bench.asc").string();
    std::ifstream table(Path(), std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(table)), {});
    text.erase(0, text.find('\n') + 1);
    std::replace(text.begin(), text.end(), ',', ' ');
    std::ofstream(to, std::ios::binary) << "ncols 5\nnrows 500000\nxllcorner 0\nyllcorner 0\ncellsize 1\n" << text;
    return to;
  }();
  return To;
}

void GridOnThreads(benchmark::State& p_state) {
  using Vek::Chart::Utility::Threads;
  const auto read = [](Threads p_threads) {
    benchmark::DoNotOptimize(Vek::Chart::Io::ReadHeights(GridPath(), {}, {}, p_threads).heights.data());
  };
  GridPath();
  const Threads threads(static_cast<int>(p_state.range(0)));
  Vek::Bench::SideBySide(
      p_state, "of_one_thread", [&] { read(threads); }, [&] { read({}); });
}

BENCHMARK(Plain)->Unit(benchmark::kMillisecond);
BENCHMARK(Table)->Unit(benchmark::kMillisecond);
BENCHMARK(TableOnThreads)->Apply(Vek::Bench::OnThreads);
BENCHMARK(GridOnThreads)->Apply(Vek::Bench::OnThreads);

} // namespace
