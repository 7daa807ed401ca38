// Clones and writers, each beside what it must keep up with: a memcpy into a new vector for equal types, a plain
// converting loop into a new vector for others. The writers alone are set beside the same without the new vector.

#include "library/CloneAttribute.h"
#include "library/StreamWriter.h"
#include "platform/data/VertexAttribute.h"

#include <benchmark/benchmark.h>
#include <boost/make_shared.hpp>

#include <cstdint>
#include <cstring>
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

template <class S>
void PlainCopy(const std::vector<S>& p_source, std::vector<Element>& p_dest) {
  float* const dest = p_dest.front().data();
  if constexpr (std::is_same_v<S, float>)
    std::memcpy(dest, p_source.data(), p_source.size() * sizeof(float));
  else
    for (std::size_t i = 0; i < p_source.size(); ++i)
      dest[i] = static_cast<float>(p_source[i]);
}

template <class S>
std::vector<S> Scalars(const benchmark::State& p_state) {
  return std::vector<S>(3 * static_cast<std::size_t>(p_state.range(0)), S(0.1f));
}

void CountBytes(benchmark::State& p_state, std::size_t p_scalar) {
  p_state.SetBytesProcessed(p_state.iterations() * p_state.range(0) *
                            static_cast<std::int64_t>(3 * p_scalar + sizeof(Element)));
}

template <class S>
void Clone(benchmark::State& p_state) {
  const std::vector<S> scalars = Scalars<S>(p_state);
  const boost::shared_ptr<ISupportedInterface> source = boost::make_shared<Source<S>>(scalars);
  for (auto _ : p_state)
    benchmark::DoNotOptimize(Library::CloneAttribute(source));
  CountBytes(p_state, sizeof(S));
}

template <class S>
void CopyToNewVector(benchmark::State& p_state) {
  const std::vector<S> scalars = Scalars<S>(p_state);
  for (auto _ : p_state) {
    std::vector<Element> dest(scalars.size() / 3);
    PlainCopy(scalars, dest);
    benchmark::DoNotOptimize(dest.data());
    benchmark::ClobberMemory();
  }
  CountBytes(p_state, sizeof(S));
}

template <class S>
void Write(benchmark::State& p_state) {
  const std::vector<S> scalars = Scalars<S>(p_state);
  std::vector<Element> dest(scalars.size() / 3);
  for (auto _ : p_state) {
    Library::ContainerStreamWriter<std::vector<Element>, Library::ContainerOperations::StaticContainer, Element> writer(
        dest);
    writer.Write(scalars.data(), scalars.size());
    benchmark::DoNotOptimize(dest.data());
    benchmark::ClobberMemory();
  }
  CountBytes(p_state, sizeof(S));
}

template <class S>
void CopyToOldVector(benchmark::State& p_state) {
  const std::vector<S> scalars = Scalars<S>(p_state);
  std::vector<Element> dest(scalars.size() / 3);
  for (auto _ : p_state) {
    PlainCopy(scalars, dest);
    benchmark::DoNotOptimize(dest.data());
    benchmark::ClobberMemory();
  }
  CountBytes(p_state, sizeof(S));
}

#define VEK_PAIR(p_subject, p_rival, p_source)                                                                         \
  BENCHMARK_TEMPLATE(p_subject, p_source)->Arg(1000)->Arg(100000)->Arg(10000000)->UseRealTime();                       \
  BENCHMARK_TEMPLATE(p_rival, p_source)->Arg(1000)->Arg(100000)->Arg(10000000)->UseRealTime();
VEK_PAIR(Clone, CopyToNewVector, float)
VEK_PAIR(Clone, CopyToNewVector, double)
VEK_PAIR(Write, CopyToOldVector, float)
VEK_PAIR(Write, CopyToOldVector, double)

// The largest attributes.
BENCHMARK_TEMPLATE(Clone, float)->Arg(100000000)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(CopyToNewVector, float)->Arg(100000000)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
