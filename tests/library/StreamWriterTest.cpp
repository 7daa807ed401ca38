#include "library/StreamWriter.h"
#include "tests/support/Test.h"

#include <boost/shared_ptr.hpp>

using namespace Vek::Chart::DataInterface;
using Vek::SupportedInterface::InterfaceID;
using Vek::SupportedInterface::UnknownInterface;

namespace {

constexpr std::uint64_t Huge = std::numeric_limits<std::uint64_t>::max();

template <class E>
using WriterOf = ContainerStreamWriter<std::vector<E>, ContainerOperations::StaticContainer, E>;

// A row of the matrix: source scalar, component and number of components of the elements.
template <class S, class U, std::size_t N, class W>
struct Row {
  using Source = S;
  using Scalar = U;
  using Element = boost::array<U, N>;
  using Interface = W;
  static constexpr std::size_t Width = N;
};

/// The reports of a row.
template <class R>
struct Report {
  const std::string scalar = vekdebug::TypeName<typename R::Source>::Text();
  const std::string source = "class Vek::Chart::DataInterface::Array<" + scalar + ",0>";
  const std::string element =
      "class boost::array<" + vekdebug::TypeName<typename R::Scalar>::Text() + "," + std::to_string(R::Width) + ">";
  const std::string vector = "class std::vector<" + element + ",class std::allocator<" + element + " > >";

  const std::string empty = "\"p_index < _count\" - const " + scalar + " &__cdecl " + source.substr(6) +
                            "::operator [](const unsigned __int64) const";
  const std::string overrun = "\"sourceArray.size() + p_destArrayOffset <= p_destArray.size()\" - void __cdecl "
                              "Vek::Chart::Algorithms::InterpretArray<" +
                              source + "," + source + " >::CopyArrayToWithOffset<" + element + "," + vector +
                              " >(const " + source + " &," + vector + " &,const unsigned __int64)";
  const std::string skipped = "\"_currentIndex + p_offsetInDestinationTypeUnits <= _dest.size()\" - void __cdecl "
                              "Vek::Chart::Library::ContainerDataWriter<" +
                              element + "," + vector +
                              ",class Vek::Chart::Library::ContainerOperations::StaticContainer>::"
                              "AdvanceWriteIndex(const unsigned __int64)";
};
template <class S, std::size_t N>
using Floats = Row<S, float, N, FloatAttributeStreamWriter<N>>;
template <class S, std::size_t N>
using Integers = Row<S, unsigned int, N, IntegerAttributeStreamWriter<N>>;
template <class S>
using Bools = Row<S, unsigned char, 1, BoolAttributeStreamWriter<1>>;

using Rows =
    ::testing::Types<Bools<bool>, Bools<unsigned char>, Floats<float, 1>, Floats<float, 2>, Floats<float, 3>,
                     Floats<float, 4>, Floats<double, 1>, Floats<double, 2>, Floats<double, 3>, Floats<double, 4>,
                     Integers<unsigned char, 1>, Integers<unsigned char, 2>, Integers<unsigned char, 3>,
                     Integers<unsigned char, 4>, Integers<unsigned short, 1>, Integers<unsigned short, 2>,
                     Integers<unsigned short, 3>, Integers<unsigned short, 4>, Integers<unsigned int, 1>,
                     Integers<unsigned int, 2>, Integers<unsigned int, 3>, Integers<unsigned int, 4>>;

/// Scalars other than 0, different where the type allows it; the last one is the largest value.
template <class S>
boost::shared_ptr<S[]> Scalars(std::size_t p_count) {
  boost::shared_ptr<S[]> scalars(new S[p_count]);
  for (std::size_t i = 0; i < p_count; ++i)
    scalars[i] = static_cast<S>(i + 1.1);
  if (p_count != 0)
    scalars[p_count - 1] = std::numeric_limits<S>::max();
  return scalars;
}

template <class S, class U>
bool IsConverted(S p_source, U p_result) {
  if constexpr (std::is_same_v<S, double>) // the nearest float; beyond the range, infinity
    return p_source > 3.5e38 ? std::isinf(p_result) : p_result == static_cast<float>(p_source);
  else
    return p_result == static_cast<U>(p_source);
}

template <class E>
std::vector<E> Filled(std::size_t p_count, typename E::value_type p_value) {
  E element;
  element.fill(p_value);
  return std::vector<E>(p_count, element);
}

template <class RowType>
class StreamWriterMatrix : public ::testing::Test {};
TYPED_TEST_SUITE(StreamWriterMatrix, Rows, ); // the empty name generator keeps clang from warning

} // namespace

TYPED_TEST(StreamWriterMatrix, ConvertsWholeElements) {
  using Source = typename TypeParam::Source;
  constexpr std::size_t N = TypeParam::Width;
  const ReportCapture reports;
  auto dest = Filled<typename TypeParam::Element>(6, 77);
  WriterOf<typename TypeParam::Element> writer(dest);
  typename TypeParam::Interface& target = writer;
  EXPECT_EQ(target.Components(), N);
  const auto source = Scalars<Source>(3 * N);
  target.Write(source.get(), 2 * N + (N - 1)); // what is left over is ignored
  target.Skip(1);
  target.Write(source.get() + N, 2 * N);
  EXPECT_EQ(reports.Texts(), Texts());
  target.Write(static_cast<const Source*>(nullptr), N); // is empty; the position advances all the same
  EXPECT_EQ(reports.Texts(), Texts{Report<TypeParam>().empty});
  EXPECT_EQ(writer.CurrentIndex(), 6u);

  const std::size_t origin[] = {0, 1, 9, 1, 2, 9}; // of each element; 9: none
  for (std::size_t i = 0; i < dest.size() * N; ++i) {
    const std::size_t from = origin[i / N];
    const auto value = dest[i / N][i % N];
    EXPECT_TRUE(from == 9 ? value == 77 : IsConverted(source[from * N + i % N], value)) << i << ": " << +value;
  }
}

TYPED_TEST(StreamWriterMatrix, ReportsAndDropsOverruns) {
  using Element = typename TypeParam::Element;
  constexpr std::size_t N = TypeParam::Width;
  const auto source = Scalars<typename TypeParam::Source>(4 * N);
  const Report<TypeParam> report;
  // Skips, elements that are written after them, and what follows: stored ones of two, position, reports.
  using Skips = std::vector<std::uint64_t>;
  const std::tuple<const char*, Skips, std::size_t, std::size_t, std::uint64_t, Texts> cases[] = {
      {"exact fit", {0}, 2, 2, 2, {}},
      {"one too many", {0}, 3, 2, 3, {report.overrun}},
      {"the last place", {1}, 2, 1, 3, {report.overrun}},
      {"at the end", {2}, 1, 0, 3, {report.overrun}},
      {"past the end", {3}, 1, 0, 4, {report.skipped, report.overrun}},
      {"far past the end", {Huge - 1}, 1, 0, Huge, {report.skipped, report.overrun}},
      {"nothing, at the end", {1, 1, 0}, 0, 0, 2, {report.empty}},
      {"nothing, past the end", {3, 0}, 0, 0, 3, {report.skipped, report.skipped, report.empty, report.overrun}},
      {"the sum of the skips wraps back", {1, Huge}, 0, 0, 0, {report.skipped, report.empty}},
      {"sum of position and elements wraps", {Huge - 1}, 4, 0, 2, {report.skipped, report.overrun}},
  };
  for (const auto& [name, skips, elements, expected, position, texts] : cases) {
    const ReportCapture reports;
    auto dest = Filled<Element>(2, 0);
    WriterOf<Element> writer(dest);
    for (const std::uint64_t count : skips)
      writer.Skip(count);
    writer.Write(source.get(), elements * N);
    EXPECT_EQ(writer.CurrentIndex(), position) << name;
    EXPECT_EQ(reports.Texts(), texts) << name;
    std::size_t stored = 0;
    for (const Element& element : dest)
      stored += element[0] != 0 && element[N - 1] != 0;
    EXPECT_EQ(stored, expected) << name;
  }
}

TYPED_TEST(StreamWriterMatrix, SupportsItsOwnInterfaceOnly) {
  using Element = typename TypeParam::Element;
  using Interface = typename TypeParam::Interface;
  std::vector<Element> dest;
  WriterOf<Element> writer(dest);
  Vek::SupportedInterface::ISupportedInterface& object = writer;
  const InterfaceID own = InterfaceID::Of<Interface>();
  for (const InterfaceID& id :
       {own, InterfaceID::Of<BoolAttributeStreamWriter<1>>(), InterfaceID::Of<FloatAttributeStreamWriter<1>>(),
        InterfaceID::Of<FloatAttributeStreamWriter<4>>(), InterfaceID::Of<IntegerAttributeStreamWriter<1>>(),
        InterfaceID::Of<Vek::SupportedInterface::ISupportedInterface>(), InterfaceID::Of<WriterOf<Element>>()}) {
    EXPECT_EQ(object.IsSupportedInterface(id), id == own) << id.Name();
    if (id == own)
      EXPECT_EQ(&object.QuerySupportedInterface(id).template Get<Interface>(), &writer);
    else
      EXPECT_THROW(object.QuerySupportedInterface(id), UnknownInterface) << id.Name();
  }
}
