#include "algorithms/InterpretArray.h"
#include "tests/support/Test.h"

#include <boost/weak_ptr.hpp>

using Algorithms::InterpretArray;
using Algorithms::InterpretedArrayConverter;
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

// Every value of the 8- and 16-bit types, bools made of bytes, and bit patterns of all kinds for the wider types.
template <class S>
Array<S, 0> Source() {
  const std::size_t count = sizeof(S) <= 2 ? std::size_t(1) << 8 * sizeof(S) : 10007;
  const auto bytes = boost::make_shared<std::vector<unsigned char>>(count * sizeof(S));
  std::mt19937_64 random(count);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t bits = sizeof(S) <= 2 ? i : random();
    std::memcpy(bytes->data() + i * sizeof(S), &bits, sizeof(S));
  }
  return {reinterpret_cast<const S*>(bytes->data()), count, bytes};
}
// Doubles that a float can hold, or nearly, and ties between two floats.
template <>
Array<double, 0> Source() {
  const double infinity = std::numeric_limits<double>::infinity();
  const auto values = boost::make_shared<std::vector<double>>(std::vector<double>{
      0.1, 1e39, -1e39, 1e-50, -0.0, infinity, 3.4028235677973366e38, 1.0 + 0x1p-24, 1.0 + 0x3p-24});
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> exponent(-46, 39);
  while (values->size() < 10007)
    values->push_back((random() % 2 ? 1 : -1) * std::pow(10.0, exponent(random)));
  return {values->data(), values->size(), values};
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

/// Source scalar, component and number of components of the tuple.
template <class S, class U, std::size_t N>
void ExpectCopied() {
  SCOPED_TRACE(std::string(typeid(S).name()) + " to " + std::to_string(N) + " " + typeid(U).name());
  using Tuple = boost::array<U, N>;
  const ReportCapture reports;
  const auto source = Source<S>();
  const std::size_t tuples = source.size() / N;
  Tuple mark;
  mark.fill(U(77));
  std::vector<Tuple> dest(tuples + 5, mark);
  Copy<Tuple>(source, dest, 3);
  const InterpretedArrayConverter<S, Tuple> read(source.begin(), tuples);

  for (const std::size_t outside : {std::size_t(0), std::size_t(2), tuples + 3, tuples + 4})
    EXPECT_EQ(dest[outside], mark) << outside;
  std::size_t wrong = 0;
  for (std::size_t i = 0; i < tuples; ++i) {
    wrong += !SameBits(dest[i + 3], read(i));
    for (std::size_t c = 0; c < N; ++c)
      wrong += !SameBits(dest[i + 3][c], Expected<U>(source.begin() + i * N + c));
  }
  EXPECT_EQ(wrong, 0u);
  ASSERT_TRUE(reports.Texts().empty());

  EXPECT_EQ(read(tuples), Tuple{});
  EXPECT_EQ(read(Huge), Tuple{});
  EXPECT_EQ(reports.Texts().size(), 2u);
}

} // namespace

TEST(InterpretArray, CopiesEveryValueBehindTheOffsetAndReadsTheSame) {
  ExpectCopied<bool, unsigned char, 1>(), ExpectCopied<unsigned char, unsigned char, 1>();
  ExpectCopied<float, float, 1>(), ExpectCopied<float, float, 2>();
  ExpectCopied<float, float, 3>(), ExpectCopied<float, float, 4>();
  ExpectCopied<double, float, 1>(), ExpectCopied<double, float, 2>();
  ExpectCopied<double, float, 3>(), ExpectCopied<double, float, 4>();
  ExpectCopied<unsigned char, unsigned int, 1>(), ExpectCopied<unsigned short, unsigned int, 1>();
  ExpectCopied<unsigned int, unsigned int, 1>();
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

TEST(ArrayView, YieldsZeroOutsideAfterAReport) {
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

TEST(InterpretArray, TakesWholeTuplesOnlyAndWhatFits) {
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
