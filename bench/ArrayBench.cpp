// Array conversions, each beside a plain std::copy that moves the same bytes: as many as are read and written together.

#include "algorithms/InterpretArray.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <vector>

using namespace Vek::Chart;
using DataInterface::Array;

namespace {

template <class S, class D>
void Conversion(benchmark::State& p_state) {
  const std::size_t tuples = static_cast<std::size_t>(p_state.range(0));
  const std::size_t scalars = tuples * Algorithms::TupleTraits<D>::Count;
  const std::vector<S> values(scalars, S(3));
  const Array<S, 0> source(values.data(), values.size());
  std::vector<D> dest(tuples);
  for (auto _ : p_state) {
    Algorithms::InterpretArray<Array<S, 0>, Array<S, 0>>::template CopyArrayToWithOffset<D>(source, dest, 0);
    benchmark::DoNotOptimize(dest.data());
    benchmark::ClobberMemory();
  }
  p_state.SetBytesProcessed(p_state.iterations() * std::int64_t(scalars * sizeof(S) + tuples * sizeof(D)));
}

template <class S, class D>
void PlainCopy(benchmark::State& p_state) {
  const std::size_t tuples = static_cast<std::size_t>(p_state.range(0));
  const std::size_t moved = tuples * (Algorithms::TupleTraits<D>::Count * sizeof(S) + sizeof(D)) / 2;
  const std::vector<char> values(moved, 3);
  std::vector<char> dest(moved);
  for (auto _ : p_state) {
    std::copy(values.begin(), values.end(), dest.begin());
    benchmark::DoNotOptimize(dest.data());
    benchmark::ClobberMemory();
  }
  p_state.SetBytesProcessed(p_state.iterations() * std::int64_t(2 * moved));
}

using Float3 = boost::array<float, 3>;
using Index = boost::array<unsigned int, 1>;

// Few tuples that stay in the first-level cache, more that fit the second, and many.
#define VEK_PAIR(p_source, p_dest)                                                                                     \
  BENCHMARK_TEMPLATE(Conversion, p_source, p_dest)->Arg(1000)->Arg(50000)->Arg(4000000);                               \
  BENCHMARK_TEMPLATE(PlainCopy, p_source, p_dest)->Arg(1000)->Arg(50000)->Arg(4000000);
VEK_PAIR(float, Float3)
VEK_PAIR(double, Float3)
VEK_PAIR(unsigned char, Index)
VEK_PAIR(unsigned short, Index)

} // namespace
