// What must take memory once or not at all, by counting calls of operator new.

#include "library/CloneAttribute.h"
#include "library/Intersect.h"
#include "library/StreamLineShape.h"
#include "platform/data/VertexAttribute.h"
#include "platform/data/VertexIndex.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <cstdlib>
#include <new>
#include <vector>

namespace {

constexpr std::size_t Large = 10000; // bytes; smaller allocations are those of objects, not of data
std::size_t all = 0;
std::size_t large = 0;

} // namespace

void* operator new(std::size_t p_size) {
  ++all;
  large += p_size >= Large ? 1 : 0;
  if (void* const memory = std::malloc(p_size != 0 ? p_size : 1))
    return memory;
  throw std::bad_alloc();
}
void operator delete(void* p_memory) noexcept {
  std::free(p_memory);
}
void operator delete(void* p_memory, std::size_t) noexcept {
  std::free(p_memory);
}

namespace {

using namespace Vek::Chart;
using namespace Vek::Chart::DataInterface;
using namespace Vek::SupportedInterface;

/// 50,000 elements in scalars of type S, written in two runs.
template <class W, class Writer, unsigned int N, class S>
class Source : public W {
public:
  std::uint32_t Count() const override { return 50000; }
  void Write(Writer& p_writer) const override {
    p_writer.Write(_scalars.get(), 30000 * N);
    p_writer.Write(_scalars.get() + 30000 * N, 20000 * N);
  }
  bool IsSupportedInterface(const InterfaceID& p_id) const override { return p_id == InterfaceID::Of<W>(); }
  AnyInterface QuerySupportedInterface(const InterfaceID&) override { return AnyInterface::Of<W>(*this); }

private:
  boost::shared_ptr<S[]> _scalars = boost::make_shared<S[]>(50000 * N);
};

#define VEK_FLOAT_SOURCE(p_n)                                                                                          \
  template <class S>                                                                                                   \
  class Source##p_n : public Source<VertexAttribute##p_n, FloatAttributeStreamWriter<p_n>, p_n, S> {                   \
    boost::shared_array<const char> Attribute##p_n(FloatPrecision&) const override { return {}; }                      \
  };
VEK_FLOAT_SOURCE(1)
VEK_FLOAT_SOURCE(2)
VEK_FLOAT_SOURCE(3)
VEK_FLOAT_SOURCE(4)
template <class S>
class Source1B : public Source<VertexAttribute1B, BoolAttributeStreamWriter<1>, 1, S> {
  boost::shared_array<const char> Attribute1B() const override { return {}; }
};
template <class S>
class SourceIndex : public Source<VertexIndex, IntegerAttributeStreamWriter<1>, 1, S> {
  boost::shared_array<const char> Indices(VertexIndex::IndexType&) const override { return {}; }
};

template <class SourceType>
class CloneAllocations : public ::testing::Test {};
using Sources =
    ::testing::Types<Source1<float>, Source1<double>, Source2<float>, Source2<double>, Source3<float>, Source3<double>,
                     Source4<float>, Source4<double>, Source1B<unsigned char>, Source1B<bool>,
                     SourceIndex<unsigned int>, SourceIndex<unsigned short>, SourceIndex<unsigned char>>;
TYPED_TEST_SUITE(CloneAllocations, Sources, ); // the empty name generator keeps clang from warning

TYPED_TEST(CloneAllocations, TakesTheMemoryOfItsDataOnce) {
  const boost::shared_ptr<ISupportedInterface> source = boost::make_shared<TypeParam>();
  const std::size_t before = large;
  const boost::shared_ptr<ISupportedInterface> clone = Library::CloneAttribute(source);
  EXPECT_EQ(large - before, 1u);
  const boost::shared_ptr<ISupportedInterface> second = Library::CloneAttribute(clone);
  EXPECT_EQ(large - before, 2u);
}

TEST(Allocations, NoneAfterTheFirstRingOrCut) {
  using Vector3 = Types::Vector3_Base<double>;
  const Library::StreamLineShape tube(Library::StreamLineShape::ShapeTube, {});
  const Types::BoundingBox_Base<double> box({0, 0, 0}, {1, 1, 1});
  std::vector<Vector3> vertices, normals, points;
  std::size_t before = all;
  const auto run = [&](int p_count) {
    for (int i = 1; i <= p_count; ++i) {
      tube.OrientShape(1, {i * 0.1, 0, 0}, 0.5, {}, vertices, normals);
      Library::Intersect::Intersection(box, Types::Plane({0.5, 0.5, 0.5}, Vector3(i % 7 - 3, i % 5, i % 3)), points);
    }
  };
  run(1);
  EXPECT_GE(all - before, 3u) << "nothing is counted";
  before = all;
  run(1000);
  EXPECT_EQ(all, before);
}

} // namespace
