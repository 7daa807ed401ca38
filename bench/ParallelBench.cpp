// Compositing by several processes. Not a program of Google Benchmark, as all processes run each step together.
//
//     mpirun -n 4 build/bench/bench/ParallelBench                 times against the size of the image
//     mpirun -n 4 build/bench/bench/ParallelBench --memory FILE   the memory of a process for ten million arrows
//
// scripts/bench runs the second one with 1, 2 and 4 processes. FILE has the format of Google Benchmark.

#include "parallel/Compositor.h"
#include "parallel/FigureDescription.h"

#include <QGuiApplication>

#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

using namespace Vek::Chart;
using Clock = std::chrono::steady_clock;
using Position = std::array<double, 3>;

double Milliseconds(Clock::time_point p_from) {
  return std::chrono::duration<double, std::milli>(Clock::now() - p_from).count();
}

/// The most memory that one of the processes has had, in millions of bytes.
double PeakMemory(const Parallel::Processes& p_all) {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return p_all.Union(Parallel::Processes::Range(0, static_cast<double>(usage.ru_maxrss) * 1024 / 1e6)).max;
}

/// A share of a spiral of arrows.
Scene::Figure FigureOf(const Parallel::FigureDescription& p_description, int p_share, int p_shares, int p_arrows) {
  std::vector<Position> positions, vectors;
  for (int i = p_share; i < p_arrows; i += p_shares) {
    const double at = static_cast<double>(i) / p_arrows, angle = 200 * at;
    positions.push_back({std::cos(angle), std::sin(angle), 2 * at});
    vectors.push_back({-std::sin(angle), std::cos(angle), at});
  }
  Scene::Figure figure = p_description.MakeFigure();
  p_description.Apply(figure.Quiver(positions, vectors).ColorByLength().Typical(1.2, 0.05).Most(1 << 24));
  return figure;
}

/// A share of the arrows at the nodes of a grid, all drawn.
Scene::Figure FieldFigure(const Parallel::FigureDescription& p_description, int p_share, int p_shares) {
  constexpr int Side = 216; // 10,077,696 nodes
  std::vector<Position> positions, vectors;
  const int first = Side * p_share / p_shares, end = Side * (p_share + 1) / p_shares;
  for (auto* const list : {&positions, &vectors})
    list->reserve(static_cast<std::size_t>(end - first) * Side * Side);
  for (int k = first; k < end; ++k)
    for (int j = 0; j < Side; ++j)
      for (int i = 0; i < Side; ++i) {
        positions.push_back({static_cast<double>(i), static_cast<double>(j), static_cast<double>(k)});
        vectors.push_back({std::sin(0.03 * j), std::cos(0.03 * (i + k)), 0.3 * std::sin(0.03 * (i + j))});
      }
  Scene::Figure figure = p_description.MakeFigure();
  p_description.Apply(figure.Quiver(positions, vectors).ColorByLength().Typical(1.4, 0.0027).Most(1 << 24));
  return figure;
}

/// Draws ten million arrows, and writes the memory of the process that had most. Returns the exit code.
int RunMemory(const Parallel::Compositor& p_compositor, const char* p_path) {
  const Parallel::Processes& all = p_compositor.Group();
  Parallel::FigureDescription description;
  description.extent = {{-1, -1, -1}, {216, 216, 216}};
  description.values = {0, 1.5};
  Scene::Figure figure = FieldFigure(description, all.Rank(), all.Count());
  p_compositor.Image(figure, {}, {1200, 800});
  const double memory = PeakMemory(all);
  if (all.Rank() != 0)
    return 0;
  std::printf("%d processes, ten million arrows: %.0f MB in one of them\n", all.Count(), memory);
  std::FILE* const file = std::fopen(p_path, "w");
  if (file == nullptr) {
    std::perror(p_path);
    return 1;
  }
  std::fprintf(file, "{\"benchmarks\": [{\"name\": \"Memory\", \"MB\": %.1f}]}\n", memory);
  return std::fclose(file) == 0 ? 0 : 1;
}

void RunTimes(const Parallel::Compositor& p_compositor) {
  const Parallel::Processes& all = p_compositor.Group();
  Parallel::FigureDescription description;
  description.extent = {{-1.2, -1.2, 0}, {1.2, 1.2, 2.2}};
  description.values = {1, 1.5};
  constexpr int Arrows = 400, Times = 5;
  if (all.Rank() == 0)
    std::printf("%2d processes      drawn alone    composited    ratio\n", all.Count());
  for (const Types::Size size : {Types::Size(600, 400), Types::Size(1200, 800), Types::Size(2400, 1600)})
    for (const int samples : {0, 4}) {
      Scene::Figure figure = FigureOf(description, all.Rank(), all.Count(), Arrows);
      const auto best = [&](const auto& p_draw) { // of the slowest process
        double least = std::numeric_limits<double>::infinity();
        for (int time = 0; time < Times; ++time) {
          MPI_Barrier(all.Communicator());
          const Clock::time_point start = Clock::now();
          p_draw();
          least = std::min(least, all.Union(Parallel::Processes::Range(0, Milliseconds(start))).max);
        }
        return least;
      };
      const double drawn = best([&] { figure.Image(size, samples); });
      const double composited = best([&] { p_compositor.Image(figure, {}, size, samples); });
      if (all.Rank() == 0)
        std::printf("%4d x %-4d x %d %10.0f ms %10.0f ms %8.1f\n", size.width, size.height, samples, drawn, composited,
                    composited / drawn);
    }
}

/// As vek-parallel does: freed arrays go back to the system, and several processes on a machine have no threads more.
void SaveMemory() {
#if defined(__GLIBC__)
  mallopt(M_MMAP_THRESHOLD, 1 << 20);
#endif
  int count = 1;
  MPI_Comm_size(MPI_COMM_WORLD, &count);
  if (count > 1 && !qEnvironmentVariableIsSet("LP_NUM_THREADS"))
    qputenv("LP_NUM_THREADS", "0");
}

} // namespace

int main(int p_count, char** p_arguments) {
  MPI_Init(&p_count, &p_arguments);
  int code = 0;
  {
    SaveMemory();
    char name[] = "bench", option[] = "-platform", platform[] = "offscreen";
    char* qtArguments[] = {name, option, platform, nullptr};
    int qtCount = 3;
    const QGuiApplication application(qtCount, qtArguments);
    const Parallel::Compositor compositor(MPI_COMM_WORLD);
    if (p_count == 3 && std::strcmp(p_arguments[1], "--memory") == 0)
      code = RunMemory(compositor, p_arguments[2]);
    else
      RunTimes(compositor);
  }
  MPI_Finalize();
  return code;
}
