// Clones and writers, in times the speed of what they must keep up with: a memcpy for equal types, a plain converting
// loop for others; for clones into new memory, for writers into the same vector.

#include "bench/SideBySide.h"

#include "library/CloneAttribute.h"
#include "library/StreamWriter.h"
#include "platform/data/VertexAttribute.h"

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>

#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

using namespace Vek::Chart;
using namespace Vek::SupportedInterface;

namespace {

using Element = boost::array<float, 3>;

/// An attribute over scalars of one's own.
template <class S>
class Source : public DataInterface::VertexAttribute3 {
public:
  explicit Source(const std::vector<S>& p_scalars)
      : _scalars(p_scalars) {}
  boost::shared_array<const char> Attribute3(DataInterface::FloatPrecision&) const override { return {}; }
  void Write(DataInterface::FloatAttributeStreamWriter<3>& p_writer) const override {
    p_writer.Write(_scalars.data(), _scalars.size());
  }
  std::uint32_t Count() const override { return static_cast<std::uint32_t>(_scalars.size() / 3); }
  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    return p_id == InterfaceID::Of<DataInterface::VertexAttribute3>();
  }
  AnyInterface QuerySupportedInterface(const InterfaceID&) override {
    return AnyInterface::Of<DataInterface::VertexAttribute3>(*this);
  }

private:
  const std::vector<S>& _scalars;
};

// What is left when nothing is counted, checked or cleared.
template <class S, class U>
void PlainCopy(const std::vector<S>& p_source, U* p_dest) {
  if constexpr (std::is_same_v<S, U>)
    std::memcpy(p_dest, p_source.data(), p_source.size() * sizeof(U));
  else
    for (std::size_t i = 0; i < p_source.size(); ++i)
      p_dest[i] = static_cast<U>(p_source[i]);
}

template <class S>
void Clone(benchmark::State& p_state) {
  const std::vector<S> scalars(3 * static_cast<std::size_t>(p_state.range(0)), S(0.1f));
  const boost::shared_ptr<ISupportedInterface> source = boost::make_shared<Source<S>>(scalars);
  Vek::Bench::SideBySide(
      p_state, "times_plain", [&] { benchmark::DoNotOptimize(Library::CloneAttribute(source)); },
      [&] {
        const std::unique_ptr<float[]> copy(new float[scalars.size()]); // whatever was there
        PlainCopy(scalars, copy.get());
        benchmark::DoNotOptimize(copy.get());
        benchmark::ClobberMemory();
      });
  p_state.SetBytesProcessed(p_state.iterations() * p_state.range(0) *
                            static_cast<std::int64_t>(3 * sizeof(S) + sizeof(Element)));
}

template <class S, class U, std::size_t N>
void Write(benchmark::State& p_state) {
  using E = boost::array<U, N>;
  const std::vector<S> scalars(N * static_cast<std::size_t>(p_state.range(0)), S(1));
  std::vector<E> dest(scalars.size() / N);
  Vek::Bench::SideBySide(
      p_state, "times_plain",
      [&] {
        Library::ContainerStreamWriter<std::vector<E>, Library::ContainerOperations::StaticContainer, E> writer(dest);
        writer.Write(scalars.data(), scalars.size());
        benchmark::DoNotOptimize(dest.data());
        benchmark::ClobberMemory();
      },
      [&] {
        PlainCopy(scalars, dest.front().data());
        benchmark::DoNotOptimize(dest.data());
        benchmark::ClobberMemory();
      });
  p_state.SetBytesProcessed(p_state.iterations() * p_state.range(0) * static_cast<std::int64_t>(N) *
                            static_cast<std::int64_t>(sizeof(S) + sizeof(U)));
}

BENCHMARK_TEMPLATE(Clone, float)->RangeMultiplier(10)->Range(1000, 100000000)->UseManualTime();
BENCHMARK_TEMPLATE(Clone, double)->RangeMultiplier(10)->Range(1000, 10000000)->UseManualTime();

#define VEK_WRITE(p_source, p_scalar, p_n)                                                                             \
  BENCHMARK_TEMPLATE(Write, p_source, p_scalar, p_n)->Arg(10000)->Arg(1000000)->UseManualTime();
#define VEK_WRITES(p_n)                                                                                                \
  VEK_WRITE(float, float, p_n)                                                                                         \
  VEK_WRITE(double, float, p_n)                                                                                        \
  VEK_WRITE(unsigned int, unsigned int, p_n)                                                                           \
  VEK_WRITE(unsigned short, unsigned int, p_n)                                                                         \
  VEK_WRITE(unsigned char, unsigned int, p_n)
VEK_WRITE(unsigned char, unsigned char, 1)
VEK_WRITES(1)
VEK_WRITES(2)
VEK_WRITES(3)
VEK_WRITES(4)

} // namespace
