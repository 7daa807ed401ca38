#include "algorithms/InterpretArray.h"
#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>
#include <boost/weak_ptr.hpp>

#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <random>

using namespace Vek::Chart;
using Algorithms::InterpretArray;
using Algorithms::InterpretedArrayConverter;
using DataInterface::Array;
using Vek::Test::ReportCapture;

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

// A row of the table of instances: source scalar, component and number of components of the tuple.
template <class S, class U, std::size_t N>
struct Instance {
  using Scalar = S;
  using Component = U;
  using Tuple = boost::array<U, N>;
  static constexpr std::size_t Count = N;
};

using Instances =
    ::testing::Types<Instance<bool, unsigned char, 1>, Instance<unsigned char, unsigned char, 1>,
                     Instance<float, float, 1>, Instance<float, float, 2>, Instance<float, float, 3>,
                     Instance<float, float, 4>, Instance<double, float, 1>, Instance<double, float, 2>,
                     Instance<double, float, 3>, Instance<double, float, 4>, Instance<unsigned char, unsigned int, 1>,
                     Instance<unsigned short, unsigned int, 1>, Instance<unsigned int, unsigned int, 1>>;

// Every value of the 8- and 16-bit types and of bool; bit patterns of all kinds for the wider ones.
template <class S>
boost::shared_ptr<std::vector<S>> Values();
template <class S, class Bits>
boost::shared_ptr<std::vector<S>> FromBits(const std::vector<Bits>& p_bits) {
  static_assert(sizeof(S) == sizeof(Bits));
  auto values = boost::make_shared<std::vector<S>>(p_bits.size());
  std::memcpy(values->data(), p_bits.data(), p_bits.size() * sizeof(S));
  return values;
}
template <class Bits>
std::vector<Bits> RandomBits(std::size_t p_count) {
  std::mt19937_64 random(p_count);
  std::vector<Bits> bits(p_count);
  for (Bits& value : bits)
    value = static_cast<Bits>(random());
  return bits;
}
template <class Bits>
std::vector<Bits> AllBits() {
  std::vector<Bits> bits(std::size_t(std::numeric_limits<Bits>::max()) + 1);
  std::iota(bits.begin(), bits.end(), Bits(0));
  return bits;
}
template <>
boost::shared_ptr<std::vector<unsigned char>> Values() {
  return FromBits<unsigned char>(AllBits<unsigned char>());
}
template <>
boost::shared_ptr<std::vector<unsigned short>> Values() {
  return FromBits<unsigned short>(AllBits<unsigned short>());
}
template <>
boost::shared_ptr<std::vector<unsigned int>> Values() {
  return FromBits<unsigned int>(RandomBits<std::uint32_t>(10007));
}
template <>
boost::shared_ptr<std::vector<float>> Values() {
  return FromBits<float>(RandomBits<std::uint32_t>(10007));
}
template <>
boost::shared_ptr<std::vector<double>> Values() {
  using Limits = std::numeric_limits<double>;
  std::vector<double> values{0.1,
                             -0.1,
                             1e39,
                             -1e39,
                             1e-50,
                             -1e-50,
                             0.0,
                             -0.0,
                             Limits::infinity(),
                             -Limits::infinity(),
                             Limits::denorm_min(),
                             3.4028235677973366e38,
                             1.0 + 1.0 / (1 << 24),
                             1.0 + 3.0 / (1 << 24)};
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> exponent(-46, 39);
  while (values.size() < 10007)
    values.push_back((random() % 2 ? 1 : -1) * std::pow(10.0, exponent(random)));
  return boost::make_shared<std::vector<double>>(values);
}

// The sources of the table as views; bools are made of bytes, all 256 of them.
template <class S>
Array<S, 0> Source() {
  const auto values = Values<S>();
  return {values->data(), values->size(), values};
}
template <>
Array<bool, 0> Source() {
  const auto bytes = Values<unsigned char>();
  return {reinterpret_cast<const bool*>(bytes->data()), bytes->size(), bytes};
}

// What one scalar becomes, by bytes: for floating-point values independent of comparisons with NaN.
template <class U, class S>
U Expected(const S* p_scalar) {
  if constexpr (std::is_same_v<S, bool>) {
    U byte;
    std::memcpy(&byte, p_scalar, 1);
    return byte;
  } else {
    return static_cast<U>(*p_scalar);
  }
}

template <class T>
bool SameBits(const T& p_a, const T& p_b) {
  return std::memcmp(&p_a, &p_b, sizeof(T)) == 0;
}

} // namespace

template <class Row>
class ArrayTable : public ::testing::Test {};
TYPED_TEST_SUITE(ArrayTable, Instances, ); // the empty name generator keeps clang from warning

TYPED_TEST(ArrayTable, CopiesEveryValueBehindTheOffsetAndNothingElse) {
  using Tuple = typename TypeParam::Tuple;
  using Component = typename TypeParam::Component;
  const ReportCapture reports;
  const auto source = Source<typename TypeParam::Scalar>();
  const std::size_t tuples = source.size() / TypeParam::Count;
  Tuple mark;
  mark.fill(Component(77));
  std::vector<Tuple> dest(tuples + 5, mark);
  Copy<Tuple>(source, dest, 3);

  for (const std::size_t outside : {std::size_t(0), std::size_t(1), std::size_t(2), tuples + 3, tuples + 4})
    EXPECT_EQ(dest[outside], mark) << outside;
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < tuples * TypeParam::Count; ++i)
    wrong += !SameBits(dest[3 + i / TypeParam::Count][i % TypeParam::Count], Expected<Component>(source.begin() + i));
  EXPECT_EQ(wrong, 0u);
  EXPECT_TRUE(reports.Texts().empty());
}

TYPED_TEST(ArrayTable, ReadsSingleTuplesAsTheCopyDoes) {
  using Tuple = typename TypeParam::Tuple;
  const ReportCapture reports;
  const auto source = Source<typename TypeParam::Scalar>();
  std::vector<Tuple> dest(source.size() / TypeParam::Count);
  Copy<Tuple>(source, dest, 0);
  const InterpretedArrayConverter<typename TypeParam::Scalar, Tuple> read(source.begin(), dest.size());
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < dest.size(); ++i)
    wrong += !SameBits(read(i), dest[i]);
  EXPECT_EQ(wrong, 0u);
  ASSERT_TRUE(reports.Texts().empty());

  EXPECT_EQ(read(dest.size()), Tuple{});
  EXPECT_EQ(read(Huge), Tuple{});
  EXPECT_EQ(reports.Texts().size(), 2u);
}

TYPED_TEST(ArrayTable, ReportsAnEmptySourceOnceAndTouchesNothing) {
  using Tuple = typename TypeParam::Tuple;
  for (const std::uint64_t offset : {std::uint64_t(0), std::uint64_t(2)}) {
    const ReportCapture reports;
    std::vector<Tuple> dest(2);
    dest[0].fill(7);
    const std::vector<Tuple> before = dest;
    Copy<Tuple>(Array<typename TypeParam::Scalar, 0>(), dest, offset);
    EXPECT_EQ(dest, before);
    ASSERT_EQ(reports.Texts().size(), 1u);
    EXPECT_NE(reports.Texts()[0].find("operator []"), std::string::npos);
  }
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
  EXPECT_EQ(view[0], 1.5f);
  EXPECT_EQ(view[1], 2.5f);
  EXPECT_EQ(view.end() - view.begin(), 2);
  view = {};
  EXPECT_TRUE(storage.expired());
}

TEST(ArrayView, YieldsZeroOutsideAfterAReport) {
  const ReportCapture reports;
  const double values[] = {4, 5};
  const Array<double, 0> view(values, 2);
  EXPECT_EQ(view[2], 0.0);
  EXPECT_EQ(view[Huge], 0.0);
  EXPECT_EQ((Array<float, 0>(nullptr, 9)[0]), 0.0f);
  EXPECT_FALSE((Array<bool, 0>()[0]));
  EXPECT_EQ(reports.Texts(),
            (std::vector<std::string>{
                "\"p_index < _count\" - const double &__cdecl Vek::Chart::DataInterface::Array<double,0>::operator "
                "[](const unsigned __int64) const",
                "\"p_index < _count\" - const double &__cdecl Vek::Chart::DataInterface::Array<double,0>::operator "
                "[](const unsigned __int64) const",
                FloatAccess,
                "\"p_index < _count\" - const bool &__cdecl Vek::Chart::DataInterface::Array<bool,0>::operator "
                "[](const unsigned __int64) const"}));
}

TEST(InterpretArray, TakesWholeTuplesOnlyAndWhatFits) {
  const float values[] = {1, 2, 3, 4, 5, 6, 7};
  struct Case {
    const char* name;
    std::uint64_t scalars;
    std::size_t size;
    std::uint64_t offset;
    std::vector<float> expected; // the first components
    std::vector<std::string> reports;
  };
  const Case cases[] = {
      {"seven scalars are two tuples", 7, 2, 0, {1, 4}, {}},
      {"two scalars are none", 2, 2, 0, {0, 0}, {}},
      {"none at the end", 2, 2, 2, {0, 0}, {}},
      {"none behind the end", 2, 2, 3, {0, 0}, {Float3Copy}},
      {"an exact fit behind an offset", 6, 3, 1, {0, 1, 4}, {}},
      {"one too many", 6, 3, 2, {0, 0, 1}, {Float3Copy}},
      {"no room at all", 6, 2, 2, {0, 0}, {Float3Copy}},
      {"an empty destination", 6, 0, 0, {}, {Float3Copy}},
      {"a sum that wraps to 1", 6, 3, Huge, {0, 0, 0}, {Float3Copy}},
      {"a sum that wraps to 0", 6, 3, Huge - 1, {0, 0, 0}, {Float3Copy}},
      {"an empty source", 0, 2, 0, {0, 0}, {FloatAccess}},
      {"an empty source behind the end", 0, 1, 2, {0}, {FloatAccess, Float3Copy}},
  };
  for (const Case& row : cases) {
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

TEST(InterpretArray, HoldsItsReaderInAFunction) {
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

TEST(InterpretArray, RoundsDoublesToTheNearestFloat) {
  struct Case {
    double value;
    float expected;
  };
  const Case cases[] = {{0.1, 0x1.99999ap-4f},
                        {1e39, std::numeric_limits<float>::infinity()},
                        {-1e39, -std::numeric_limits<float>::infinity()},
                        {1.0 + 1.0 / (1 << 24), 1.0f},               // a tie goes to the even neighbour,
                        {1.0 + 3.0 / (1 << 24), 0x1.000004p+0f},     // up or down
                        {0x1.fffffefffffffp+127, 0x1.fffffep+127f}}; // just below the tie with infinity
  for (const Case& row : cases) {
    std::vector<boost::array<float, 1>> dest(1);
    Copy<boost::array<float, 1>>(Array<double, 0>(&row.value, 1), dest, 0);
    EXPECT_EQ(dest[0][0], row.expected) << row.value;
  }
}
