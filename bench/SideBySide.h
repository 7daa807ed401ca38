#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>

namespace Vek::Bench {

/// Runs a subject and its rival by turns, so that other work on the machine troubles both alike. The time that is shown
/// is the subject's; the counter tells how many times as fast as the rival it is, shortest time against shortest. For
/// benchmarks that are registered with UseManualTime().
template <class Subject, class Rival>
void SideBySide(benchmark::State& p_state, const std::string& p_counter, const Subject& p_subject,
                const Rival& p_rival) {
  using Clock = std::chrono::steady_clock;
  using Seconds = std::chrono::duration<double>;
  Seconds subject(std::numeric_limits<double>::infinity());
  Seconds rival = subject;
  for (auto _ : p_state) {
    const Clock::time_point start = Clock::now();
    p_rival();
    const Clock::time_point middle = Clock::now();
    p_subject();
    const Clock::time_point end = Clock::now();
    p_state.SetIterationTime(Seconds(end - middle).count());
    rival = std::min<Seconds>(rival, middle - start);
    subject = std::min<Seconds>(subject, end - middle);
  }
  p_state.counters[p_counter] = rival / subject;
}

/// A benchmark whose argument is a number of threads, run side by side with one thread.
inline void OnThreads(benchmark::internal::Benchmark* p_benchmark) {
  p_benchmark->ArgName("threads")->Arg(2)->Arg(4)->Unit(benchmark::kMillisecond)->UseManualTime();
}

} // namespace Vek::Bench
