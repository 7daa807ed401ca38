#include "algorithms/InterpretArray.h"
#include "tests/support/Test.h"

#include <boost/weak_ptr.hpp>

using Algorithms::InterpretArray;
using DataInterface::Array;

namespace {

constexpr std::uint64_t Huge = std::numeric_limits<std::uint64_t>::max();

using Floats = Array<float, 0>;
using Record = Ogl::Attribute<Ogl::Vec3<float>>;

// The reports, written out for one instance of each operation.
const std::string View = "Vek::Chart::DataInterface::Array<";
const std::string Records = "class Vek::Chart::Ogl::Attribute<class Vek::Chart::Ogl::Vec3<float> >";
const std::string Float3Read =
    "\"p_index < _count\" - class boost::array<float,3> __cdecl "
    "Vek::Chart::Algorithms::InterpretedArrayConverter<float,class boost::array<float,3> >::operator ()(const unsigned "
    "__int64) const";
const std::string Refusal = "\"p_index < _count\" - class " + View + Records + ",2>::WriteOnlyAccess __cdecl " + View +
                            Records + ",2>::operator [](const unsigned __int64)";
const std::string FloatView = "class " + View + "float,0>";
const std::string Buffer = "class Vek::Chart::Ogl::BufferPool::WriteArray<" + Records + " >";
const std::string FloatToVec3Copy = "\"sourceArray.size() + p_destArrayOffset <= p_destArray.size()\" - void __cdecl "
                                    "Vek::Chart::Algorithms::InterpretArray<" +
                                    FloatView + "," + FloatView +
                                    " >::CopyArrayToWithOffset<class "
                                    "Vek::Chart::Ogl::Vec3<float>," +
                                    Buffer + " >(const " + FloatView + " &," + Buffer + " &,const unsigned __int64)";

class ArrayCalls : public RecordingScopeFixture {
protected:
  /// Copies the scalars into a new buffer of three records and returns its scalars; those not written are 0.
  std::vector<float> Copied(const std::vector<float>& p_source, std::uint64_t p_offset) {
    const auto buffer = gl->GetBufferPool().CreateBuffer<Record>(3, Ogl::BufferUsage::Default);
    {
      Ogl::BufferPool::WriteArray<Record> records(buffer, 0, 3, RGL_ARRAY_BUFFER);
      std::fill_n(records.Data(), 3, Record());
      InterpretArray<Floats, Floats>::CopyArrayToWithOffset<Ogl::Vec3<float>>(Floats(p_source.data(), p_source.size()),
                                                                              records, p_offset);
    }
    const std::vector<unsigned char> bytes = recorder.BufferBytes(buffer.Name());
    std::vector<float> scalars(bytes.size() / sizeof(float));
    std::memcpy(scalars.data(), bytes.data(), bytes.size());
    return scalars;
  }
};

} // namespace

// A byte that is neither 0 nor 1 must not be read as a bool.
TEST(InterpretArray, KeepsTheBytesOfBools) {
  const unsigned char bytes[] = {0, 1, 2, 255};
  std::vector<boost::array<unsigned char, 1>> dest(4);
  InterpretArray<Array<bool, 0>, Array<bool, 0>>::CopyArrayToWithOffset<boost::array<unsigned char, 1>>(
      Array<bool, 0>(reinterpret_cast<const bool*>(bytes), 4), dest, 0);
  EXPECT_EQ(std::memcmp(dest.data(), bytes, 4), 0);
}

TEST(ArrayView, ReadsScalarsAndKeepsTheOwnerAlive) {
  boost::weak_ptr<std::vector<float>> storage;
  Floats view;
  {
    const auto values = boost::make_shared<std::vector<float>>(std::vector<float>{1.5f, 2.5f});
    storage = values;
    view = Floats(values->data(), values->size(), values);
  }
  EXPECT_FALSE(storage.expired());
  EXPECT_EQ(std::vector<float>(view.begin(), view.end()), (std::vector<float>{view[0], 2.5f}));
  view = {};
  EXPECT_TRUE(storage.expired());
}

TEST(ArrayView, ReportsIndicesOutside) {
  const ReportCapture reports;
  const double values[] = {4, 5};
  const Array<double, 0> view(values, 2);
  EXPECT_EQ(view[2], 0.0);
  EXPECT_EQ(view[Huge], 0.0);
  EXPECT_EQ(Floats(nullptr, 9)[0], 0.0f);
  EXPECT_FALSE((Array<bool, 0>()[0]));
  Texts expected;
  for (const std::string scalar : {"double", "double", "float", "bool"})
    expected.push_back("\"p_index < _count\" - const " + scalar + " &__cdecl " + View + scalar +
                       ",0>::operator [](const unsigned __int64) const");
  EXPECT_EQ(reports.Texts(), expected);
}

TEST(InterpretArray, ReadsTuplesByIndex) {
  const ReportCapture reports;
  const float values[] = {1, 2, 3, 4, 5, 6, 7};
  const InterpretArray<Floats, Floats>::Tuples<boost::array<float, 3>> tuples(Floats(values, 7));
  EXPECT_EQ(tuples.size(), 2u);
  EXPECT_EQ(tuples[1], (boost::array<float, 3>{{4, 5, 6}}));
  ASSERT_TRUE(reports.Texts().empty());
  EXPECT_EQ(tuples[2], (boost::array<float, 3>{}));
  EXPECT_EQ(reports.Texts(), Texts{Float3Read});
}

TEST_F(ArrayCalls, EachRefusedTupleIsReported) {
  const std::tuple<std::uint64_t, std::vector<float>, std::size_t> cases[] = {
      {1, {0, 0, 0, 1, 2, 3, 4, 5, 6}, 1},
      {2, {0, 0, 0, 0, 0, 0, 1, 2, 3}, 2},
      {3, std::vector<float>(9), 3},
      {Huge - 1, std::vector<float>(9), 3}}; // an index that wraps
  for (const auto& [offset, expected, refused] : cases) {
    SCOPED_TRACE(offset);
    const ReportCapture reports;
    EXPECT_EQ(Copied({1, 2, 3, 4, 5, 6, 7, 8, 9}, offset), expected);
    EXPECT_EQ(reports.Texts(), Texts{FloatToVec3Copy} + Texts(refused, Refusal));
  }
}
