// Time of compositing against the size of the image and the number of processes, and the memory of each process:
//
//     mpirun -n 4 build/bench/bench/ParallelBench
//
// Not a program of Google Benchmark: all processes run each step together.

#include "parallel/Compositor.h"
#include "parallel/FigureDescription.h"

#include <QGuiApplication>

#include <sys/resource.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

using namespace Vek::Chart;
using Clock = std::chrono::steady_clock;
using Position = std::array<double, 3>;

double Milliseconds(Clock::time_point p_from) {
  return std::chrono::duration<double, std::milli>(Clock::now() - p_from).count();
}

/// The largest memory that a process has had, in MB.
double PeakMemory() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024;
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

} // namespace

int main(int p_count, char** p_arguments) {
  MPI_Init(&p_count, &p_arguments);
  {
    char name[] = "bench", option[] = "-platform", platform[] = "offscreen";
    char* qtArguments[] = {name, option, platform, nullptr};
    int qtCount = 3;
    const QGuiApplication application(qtCount, qtArguments);
    const Parallel::Compositor compositor(MPI_COMM_WORLD);
    const Parallel::Processes& all = compositor.Group();
    Parallel::FigureDescription description;
    description.extent = {{-1.2, -1.2, 0}, {1.2, 1.2, 2.2}};
    description.values = {1, 1.5};
    constexpr int Arrows = 400;
    if (all.Rank() == 0)
      std::printf("%2d processes      drawn alone    composited      largest memory\n", all.Count());
    for (const Types::Size size : {Types::Size(600, 400), Types::Size(1200, 800), Types::Size(2400, 1600)})
      for (const int samples : {0, 4}) {
        Scene::Figure figure = FigureOf(description, all.Rank(), all.Count(), Arrows);
        compositor.Image(figure, {}, size, samples); // shaders are compiled
        Clock::time_point start = Clock::now();
        compositor.Image(figure, {}, size, samples);
        const double composited = Milliseconds(start);
        MPI_Barrier(all.Communicator());
        start = Clock::now();
        figure.Image(size, samples);
        const double drawn = all.Union(Parallel::Processes::Range(0, Milliseconds(start))).max;
        const double memory = all.Union(Parallel::Processes::Range(0, PeakMemory())).max;
        if (all.Rank() == 0)
          std::printf("%4d x %-4d x %d %10.0f ms %10.0f ms %12.0f MB\n", size.width, size.height, samples, drawn,
                      composited, memory);
      }
  }
  MPI_Finalize();
  return 0;
}
