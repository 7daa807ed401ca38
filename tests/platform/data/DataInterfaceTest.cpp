#include "platform/data/QuantityUnit.h"
#include "platform/data/StreamWriter.h"
#include "platform/data/VertexAttribute.h"
#include "platform/data/VertexIndex.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <cstring>
#include <type_traits>
#include <vector>

using namespace Vek::Chart::DataInterface;
using namespace Vek::SupportedInterface;

namespace {

/// Keeps what it is given as doubles.
class Recorder : public FloatAttributeStreamWriter<3> {
public:
  void Skip(std::uint64_t p_count) override { skipped += p_count; }
  void Write(const double* p_data, std::uint64_t p_count) override { values.assign(p_data, p_data + p_count); }
  void Write(const float* p_data, std::uint64_t p_count) override { values.assign(p_data, p_data + p_count); }
  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    return p_id == InterfaceID::Of<FloatAttributeStreamWriter<3>>();
  }
  AnyInterface QuerySupportedInterface(const InterfaceID& p_id) override {
    if (!IsSupportedInterface(p_id))
      throw UnknownInterface(p_id);
    return AnyInterface::Of<FloatAttributeStreamWriter<3>>(*this);
  }
  std::uint64_t skipped = 0;
  std::vector<double> values;
};

/// An attribute of two elements that knows what it measures.
class Velocity : public VertexAttribute3, public QuantityUnit {
public:
  boost::shared_array<const char> Attribute3(FloatPrecision&) const override { return {}; }
  void Write(FloatAttributeStreamWriter<3>& p_writer) const override {
    const float scalars[] = {1, 2, 3, 4, 5, 6};
    p_writer.Write(scalars, 6);
  }
  std::uint32_t Count() const override { return 2; }
  QuantityUnitPair GetQuantityUnit() const override { return {"velocity", "m/s"}; }
  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    return p_id == InterfaceID::Of<VertexAttribute3>() || p_id == InterfaceID::Of<QuantityUnit>();
  }
  AnyInterface QuerySupportedInterface(const InterfaceID& p_id) override {
    if (p_id == InterfaceID::Of<VertexAttribute3>())
      return AnyInterface::Of<VertexAttribute3>(*this);
    if (p_id == InterfaceID::Of<QuantityUnit>())
      return AnyInterface::Of<QuantityUnit>(*this);
    throw UnknownInterface(p_id);
  }
};

} // namespace

TEST(DataInterface, AnAttributeIsReachedThroughEachOfItsInterfaces) {
  const boost::shared_ptr<ISupportedInterface> source = boost::make_shared<Velocity>();
  const auto attribute = QueryInterface<VertexAttribute3>(source);
  const auto measured = QueryInterface<QuantityUnit>(source);
  ASSERT_TRUE(attribute && measured);
  EXPECT_EQ(attribute->Count(), 2u);
  EXPECT_EQ(measured->GetQuantityUnit(), (QuantityUnitPair{"velocity", "m/s"}));
  EXPECT_NE(measured->GetQuantityUnit(), (QuantityUnitPair{"velocity", "km/h"}));
  EXPECT_FALSE(QueryInterface<VertexAttribute2>(source));

  Recorder writer;
  attribute->Write(writer);
  EXPECT_EQ(writer.values, (std::vector<double>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(writer.Components(), 3u);
}

#if defined(__x86_64__)
namespace {

/// The slot of a virtual operation: the C++ ABI of this machine keeps its offset, plus one, in the member pointer.
template <class Operation>
std::size_t Slot(Operation p_operation) {
  std::size_t words[2] = {};
  static_assert(sizeof(words) == sizeof(p_operation));
  std::memcpy(words, &p_operation, sizeof(words));
  return (words[0] - 1) / sizeof(void*);
}

template <class Writer, class Scalar>
std::size_t WriteSlot() {
  return Slot(static_cast<void (Writer::*)(const Scalar*, std::uint64_t)>(&Writer::Write));
}

} // namespace

// Sources and writers may be built apart: the order of the virtual operations is what they agree on.
TEST(DataInterface, SlotOrderIsFixed) {
  EXPECT_EQ(Slot(&StreamWriterBase::Skip), 0u);
  EXPECT_EQ((WriteSlot<BoolAttributeStreamWriter<1>, unsigned char>()), 1u);
  EXPECT_EQ((WriteSlot<BoolAttributeStreamWriter<1>, bool>()), 2u);
  EXPECT_EQ((WriteSlot<FloatAttributeStreamWriter<4>, double>()), 1u);
  EXPECT_EQ((WriteSlot<FloatAttributeStreamWriter<4>, float>()), 2u);
  EXPECT_EQ((WriteSlot<IntegerAttributeStreamWriter<1>, unsigned int>()), 1u);
  EXPECT_EQ((WriteSlot<IntegerAttributeStreamWriter<1>, unsigned short>()), 2u);
  EXPECT_EQ((WriteSlot<IntegerAttributeStreamWriter<1>, unsigned char>()), 3u);
  EXPECT_EQ(Slot(&VertexAttribute1::Write), Slot(&VertexAttribute1::Attribute1) + 1);
  EXPECT_EQ(Slot(&VertexAttribute1B::Write), Slot(&VertexAttribute1B::Attribute1B) + 1);
  EXPECT_EQ(Slot(&VertexIndex::Indices), Slot(&VertexIndex::Count) + 1);
  EXPECT_EQ(Slot(&VertexIndex::Write), Slot(&VertexIndex::Count) + 2);
}
#endif
