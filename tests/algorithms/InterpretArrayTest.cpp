#include "algorithms/InterpretArray.h"
#include "tests/support/Test.h"

#include <boost/weak_ptr.hpp>

using Algorithms::InterpretArray;
using DataInterface::Array;

namespace {

constexpr std::uint64_t Huge = std::numeric_limits<std::uint64_t>::max();

template <class D, class S, class Container>
void Copy(const Array<S, 0>& p_source, Container& p_dest, std::uint64_t p_offset) {
  InterpretArray<Array<S, 0>, Array<S, 0>>::template CopyArrayToWithOffset<D>(p_source, p_dest, p_offset);
}

// The signatures, written out for one instance of each operation.
const std::string FloatAccess =
    "\"p_index < _count\" - const float &__cdecl Vek::Chart::DataInterface::Array<float,0>::operator [](const unsigned "
    "__int64) const";
const std::string Float3Copy =
    "\"sourceArray.size() + p_destArrayOffset <= p_destArray.size()\" - void __cdecl "
    "Vek::Chart::Algorithms::InterpretArray<class Vek::Chart::DataInterface::Array<float,0>,class "
    "Vek::Chart::DataInterface::Array<float,0> >::CopyArrayToWithOffset<class boost::array<float,3>,class "
    "std::vector<class boost::array<float,3>,class std::allocator<class boost::array<float,3> > > >(const class "
    "Vek::Chart::DataInterface::Array<float,0> &,class std::vector<class boost::array<float,3>,class "
    "std::allocator<class boost::array<float,3> > > &,const unsigned __int64)";
const std::string Float3Read =
    "\"p_index < _count\" - class boost::array<float,3> __cdecl "
    "Vek::Chart::Algorithms::InterpretedArrayConverter<float,class boost::array<float,3> >::operator ()(const unsigned "
    "__int64) const";

} // namespace

// A byte that is neither 0 nor 1 must not be read as a bool.
TEST(InterpretArray, KeepsTheBytesOfBools) {
  const unsigned char bytes[] = {0, 1, 2, 255};
  std::vector<boost::array<unsigned char, 1>> dest(4);
  Copy<boost::array<unsigned char, 1>>(Array<bool, 0>(reinterpret_cast<const bool*>(bytes), 4), dest, 0);
  EXPECT_EQ(std::memcmp(dest.data(), bytes, 4), 0);
}

TEST(ArrayView, ReadsScalarsAndKeepsTheOwnerAlive) {
  boost::weak_ptr<std::vector<float>> storage;
  Array<float, 0> view;
  {
    const auto values = boost::make_shared<std::vector<float>>(std::vector<float>{1.5f, 2.5f});
    storage = values;
    const Array<float, 0> original(values->data(), values->size(), values);
    view = original;
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
  EXPECT_EQ((Array<float, 0>(nullptr, 9)[0]), 0.0f);
  EXPECT_FALSE((Array<bool, 0>()[0]));
  const std::string start = "\"p_index < _count\" - const ", middle = " &__cdecl Vek::Chart::DataInterface::Array<",
                    end = ",0>::operator [](const unsigned __int64) const";
  const std::string ofDouble = start + "double" + middle + "double" + end;
  EXPECT_EQ(reports.Texts(),
            (std::vector<std::string>{ofDouble, ofDouble, FloatAccess, start + "bool" + middle + "bool" + end}));
}

TEST(InterpretArray, CopiesWholeTuplesThatFit) {
  const float values[] = {1, 2, 3, 4, 5, 6, 7};
  const struct {
    const char* name;
    std::uint64_t scalars;
    std::size_t size;
    std::uint64_t offset;
    std::vector<float> expected; // the first components
    std::vector<std::string> reports;
  } cases[] = {
      {"seven scalars are two tuples", 7, 2, 0, {1, 4}, {}},
      {"two scalars are none", 2, 2, 0, {0, 0}, {}},
      {"none behind the end", 2, 2, 3, {0, 0}, {Float3Copy}},
      {"an exact fit behind an offset", 6, 3, 1, {0, 1, 4}, {}},
      {"one too many", 6, 3, 2, {0, 0, 1}, {Float3Copy}},
      {"an empty destination", 6, 0, 0, {}, {Float3Copy}},
      {"a sum that wraps to 1", 6, 3, Huge, {0, 0, 0}, {Float3Copy}},
      {"a sum that wraps to 0", 6, 3, Huge - 1, {0, 0, 0}, {Float3Copy}},
      {"an empty source", 0, 2, 0, {0, 0}, {FloatAccess}},
      {"an empty source behind the end", 0, 1, 2, {0}, {FloatAccess, Float3Copy}},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    const ReportCapture reports;
    std::vector<boost::array<float, 3>> dest(row.size);
    Copy<boost::array<float, 3>>(Array<float, 0>(values, row.scalars), dest, row.offset);
    std::vector<float> first;
    for (const auto& tuple : dest)
      first.push_back(tuple[0]);
    EXPECT_EQ(first, row.expected);
    EXPECT_EQ(reports.Texts(), row.reports);
  }
}

TEST(InterpretArray, ReadsTuplesByIndex) {
  const ReportCapture reports;
  const float values[] = {1, 2, 3, 4, 5, 6, 7};
  const InterpretArray<Array<float, 0>, Array<float, 0>>::Tuples<boost::array<float, 3>> tuples(
      Array<float, 0>(values, 7));
  EXPECT_EQ(tuples.size(), 2u);
  EXPECT_EQ(tuples[1], (boost::array<float, 3>{{4, 5, 6}}));
  ASSERT_TRUE(reports.Texts().empty());
  EXPECT_EQ(tuples[2], (boost::array<float, 3>{}));
  EXPECT_EQ(reports.Texts(), std::vector<std::string>{Float3Read});
}
