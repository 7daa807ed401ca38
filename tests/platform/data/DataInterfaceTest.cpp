#include "platform/data/StreamWriter.h"
#include "platform/data/VertexAttribute.h"
#include "platform/data/VertexIndex.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::DataInterface;

namespace {

/// The slot of a virtual operation: on x86-64 the member pointer holds its offset plus one.
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

// Sources and writers may be built separately: the order of the virtual operations is part of the interfaces.
TEST(DataInterface, SlotOrderIsFixed) {
#if !defined(__x86_64__)
  GTEST_SKIP() << "member pointers are read by the ABI of x86-64";
#endif
  EXPECT_EQ(Slot(&StreamWriterBase::Skip), 0u);
  EXPECT_EQ((WriteSlot<BoolAttributeStreamWriter<1>, unsigned char>()), 1u);
  EXPECT_EQ((WriteSlot<BoolAttributeStreamWriter<1>, bool>()), 2u);
  EXPECT_EQ((WriteSlot<FloatAttributeStreamWriter<4>, float>()), 2u);
  EXPECT_EQ((WriteSlot<IntegerAttributeStreamWriter<1>, unsigned short>()), 2u);
  EXPECT_EQ((WriteSlot<IntegerAttributeStreamWriter<1>, unsigned char>()), 3u);
  EXPECT_EQ(Slot(&VertexAttribute1::Write), Slot(&VertexAttribute1::Attribute1) + 1);
  EXPECT_EQ(Slot(&VertexAttribute1B::Write), Slot(&VertexAttribute1B::Attribute1B) + 1);
  EXPECT_EQ(Slot(&VertexIndex::Indices), Slot(&VertexIndex::Count) + 1);
  EXPECT_EQ(Slot(&VertexIndex::Write), Slot(&VertexIndex::Count) + 2);
}
