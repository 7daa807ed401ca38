// Reads a generated table of five columns, compared with a plain loop of std::from_chars over the file in memory, and
// an ESRI ASCII grid of the same numbers. Times of cells are compared with reading their characters and with strptime.

#include "bench/SideBySide.h"
#include "io/ReadHeights.h"
#include "io/ReadTable.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <numeric>
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

/// A million cells such as "2024-03-01T07:05:09".
const Vek::Chart::Io::Table& TableOfTimes() {
  static const Vek::Chart::Io::Table Times = [] {
    Vek::Chart::Io::Table::Column column{"time", {}, {}};
    std::uint32_t random = 1;
    char text[32];
    for (std::size_t cell = 0; cell < 1000000; ++cell) {
      random = random * 1664525u + 1013904223u;
      std::snprintf(text, sizeof text, "%04u-%02u-%02uT%02u:%02u:%02u", 1900 + random % 200, 1 + random / 256 % 12,
                    1 + random / 4096 % 28, random / 65536 % 24, random / 1048576 % 60, random / 16777216 % 60);
      column.strings.emplace_back(text);
    }
    return Vek::Chart::Io::Table("bench", {column});
  }();
  return Times;
}

void Times(benchmark::State& p_state) {
  TableOfTimes();
  for (auto _ : p_state)
    benchmark::DoNotOptimize(TableOfTimes().Times(0).data());
}

void CharactersOfTimes(benchmark::State& p_state) {
  const std::vector<std::string>& cells = TableOfTimes().Strings("time");
  for (auto _ : p_state) {
    std::vector<double> sums(cells.size());
    std::transform(cells.begin(), cells.end(), sums.begin(), [](const std::string& p_cell) {
      return static_cast<double>(std::accumulate(p_cell.begin(), p_cell.end(), 0));
    });
    benchmark::DoNotOptimize(sums.data());
  }
}

void TimesByStrptime(benchmark::State& p_state) {
  const std::vector<std::string>& cells = TableOfTimes().Strings("time");
  for (auto _ : p_state) {
    std::vector<double> times(cells.size());
    std::transform(cells.begin(), cells.end(), times.begin(), [](const std::string& p_cell) {
      std::tm time{};
      strptime(p_cell.c_str(), "%Y-%m-%dT%H:%M:%S", &time);
      return static_cast<double>(timegm(&time));
    });
    benchmark::DoNotOptimize(times.data());
  }
}

BENCHMARK(Times)->Unit(benchmark::kMillisecond);
BENCHMARK(CharactersOfTimes)->Unit(benchmark::kMillisecond);
BENCHMARK(TimesByStrptime)->Unit(benchmark::kMillisecond);
BENCHMARK(Plain)->Unit(benchmark::kMillisecond);
BENCHMARK(Table)->Unit(benchmark::kMillisecond);
BENCHMARK(TableOnThreads)->Apply(Vek::Bench::OnThreads);
BENCHMARK(GridOnThreads)->Apply(Vek::Bench::OnThreads);

} // namespace
