#include "library/CloneAttribute.h"

#include "library/StreamWriter.h"
#include "platform/data/QuantityUnit.h"
#include "platform/data/VertexAttribute.h"
#include "platform/data/VertexIndex.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::DataInterface;
using Vek::SupportedInterface::AnyInterface;
using Vek::SupportedInterface::InterfaceID;
using Vek::SupportedInterface::ISupportedInterface;
using Vek::SupportedInterface::QueryInterface;
using Vek::SupportedInterface::UnknownInterface;

namespace {

using Object = boost::shared_ptr<ISupportedInterface>;

namespace Signature {
const std::string Source = "class boost::shared_ptr<class Vek::SupportedInterface::ISupportedInterface>";
const std::string Clone = Source + " __cdecl Vek::Chart::Library::CloneAttribute(const " + Source + " &) @line500";
const std::string Raw = "const class boost::shared_array<char const > __cdecl `anonymous-namespace'::Cloned";
} // namespace Signature

// Traits of the six interfaces.
template <class W>
struct Kind;

#define VEK_FLOAT_KIND(p_n, p_line)                                                                                    \
  template <>                                                                                                          \
  struct Kind<VertexAttribute##p_n> {                                                                                  \
    using Element = boost::array<float, p_n>;                                                                          \
    using Writer = FloatAttributeStreamWriter<p_n>;                                                                    \
    using OtherScalar = double;                                                                                        \
    static constexpr const char* Name = "VertexAttribute" #p_n;                                                        \
    static constexpr const char* Raw =                                                                                 \
        "Attribute" #p_n "(enum Vek::Chart::DataInterface::FloatPrecision &) const @line" #p_line;                     \
    static bool HasBytes(const VertexAttribute##p_n& p_attribute) {                                                    \
      FloatPrecision precision = DoublePrecision;                                                                      \
      return p_attribute.Attribute##p_n(precision) || precision != DoublePrecision;                                    \
    }                                                                                                                  \
  };
VEK_FLOAT_KIND(1, 132)
VEK_FLOAT_KIND(2, 177)
VEK_FLOAT_KIND(3, 222)
VEK_FLOAT_KIND(4, 267)

template <>
struct Kind<VertexAttribute1B> {
  using Element = boost::array<unsigned char, 1>;
  using Writer = BoolAttributeStreamWriter<1>;
  using OtherScalar = bool;
  static constexpr const char* Name = "VertexAttribute1B";
  static constexpr const char* Raw = "Attribute1B(void) const @line93";
  static bool HasBytes(const VertexAttribute1B& p_attribute) { return bool(p_attribute.Attribute1B()); }
};

template <>
struct Kind<VertexIndex> {
  using Element = boost::array<unsigned int, 1>;
  using Writer = IntegerAttributeStreamWriter<1>;
  using OtherScalar = unsigned short;
  static constexpr const char* Name = "VertexIndex";
  static constexpr const char* Raw = "Indices(enum Vek::Chart::DataInterface::VertexIndex::IndexType &) const @line310";
  static bool HasBytes(const VertexIndex& p_index) {
    VertexIndex::IndexType type = VertexIndex::UnsignedShort;
    return p_index.Indices(type) || type != VertexIndex::UnsignedShort;
  }
};

/// Whether the interface has quantity and unit.
template <class W>
constexpr bool Measured = std::is_same_v<typename Kind<W>::Element::value_type, float>;

const std::vector<InterfaceID> Order = {InterfaceID::Of<VertexAttribute1>(), InterfaceID::Of<VertexAttribute1B>(),
                                        InterfaceID::Of<VertexAttribute2>(), InterfaceID::Of<VertexAttribute3>(),
                                        InterfaceID::Of<VertexAttribute4>(), InterfaceID::Of<VertexIndex>()};

/// Implements every interface, supports those in `offered`, and records queries.
class Everything : public VertexAttribute1,
                   public VertexAttribute1B,
                   public VertexAttribute2,
                   public VertexAttribute3,
                   public VertexAttribute4,
                   public VertexIndex,
                   public QuantityUnit {
public:
  std::set<InterfaceID> offered;
  mutable std::vector<InterfaceID> asked;

  std::uint32_t Count() const override { return 0; }
  boost::shared_array<const char> Attribute1(FloatPrecision&) const override { return {}; }
  boost::shared_array<const char> Attribute1B() const override { return {}; }
  boost::shared_array<const char> Attribute2(FloatPrecision&) const override { return {}; }
  boost::shared_array<const char> Attribute3(FloatPrecision&) const override { return {}; }
  boost::shared_array<const char> Attribute4(FloatPrecision&) const override { return {}; }
  boost::shared_array<const char> Indices(IndexType&) const override { return {}; }
  void Write(FloatAttributeStreamWriter<1>&) const override {}
  void Write(BoolAttributeStreamWriter<1>&) const override {}
  void Write(FloatAttributeStreamWriter<2>&) const override {}
  void Write(FloatAttributeStreamWriter<3>&) const override {}
  void Write(FloatAttributeStreamWriter<4>&) const override {}
  void Write(IntegerAttributeStreamWriter<1>&) const override {}
  QuantityUnitPair GetQuantityUnit() const override { return {"wave height", "m"}; }

  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    asked.push_back(p_id);
    return offered.count(p_id) != 0;
  }
  AnyInterface QuerySupportedInterface(const InterfaceID& p_id) override {
    for (const AnyInterface& answer :
         {AnyInterface::Of<VertexAttribute1>(*this), AnyInterface::Of<VertexAttribute1B>(*this),
          AnyInterface::Of<VertexAttribute2>(*this), AnyInterface::Of<VertexAttribute3>(*this),
          AnyInterface::Of<VertexAttribute4>(*this), AnyInterface::Of<VertexIndex>(*this)})
      if (answer.ID() == p_id)
        return answer;
    return AnyInterface::Of<QuantityUnit>(*this);
  }
};

/// A source of `count` elements with a given Write.
template <class W>
struct Source : Everything {
  using Writer = typename Kind<W>::Writer;
  using Everything::Write;
  std::uint32_t count = 0;
  std::function<void(Writer&)> write;

  std::uint32_t Count() const override { return count; }
  void Write(Writer& p_writer) const override { write(p_writer); }
};

template <class W>
Object MakeSource(std::uint32_t p_count, std::function<void(typename Kind<W>::Writer&)> p_write,
                  bool p_measured = Measured<W>) {
  const auto source = boost::make_shared<Source<W>>();
  source->count = p_count;
  source->write = std::move(p_write);
  source->offered = {InterfaceID::Of<W>(), p_measured ? InterfaceID::Of<QuantityUnit>() : InterfaceID::Of<W>()};
  return source;
}

/// Elements 1, 2, 3, …, scalar by scalar.
template <class E>
std::vector<E> Counted(std::size_t p_count) {
  std::vector<E> elements(p_count);
  for (std::size_t i = 0; i < p_count * E::static_size; ++i)
    elements[i / E::static_size][i % E::static_size] = static_cast<typename E::value_type>(i + 1);
  return elements;
}

/// A source that writes the elements in one run, in their own type.
template <class W>
Object CountedSource(std::size_t p_count, bool p_measured = Measured<W>) {
  using Element = typename Kind<W>::Element;
  const auto write = [p_count](typename Kind<W>::Writer& p_writer) {
    p_writer.Write(Counted<Element>(p_count).front().data(), p_count * Element::static_size);
  };
  return MakeSource<W>(static_cast<std::uint32_t>(p_count), write, p_measured);
}

/// A data writer that takes what a clone writes: all elements in one call.
template <class E>
struct OneCall {
  explicit OneCall(std::vector<E>& p_elements)
      : elements(p_elements) {}
  template <class S>
  void WriteData(const S* p_data, std::uint64_t p_count) {
    EXPECT_TRUE((std::is_same_v<S, typename E::value_type>)&&++calls == 1 && (p_data == nullptr) == (p_count == 0));
    elements.resize(p_count / E::static_size);
    std::copy_n(reinterpret_cast<const E*>(p_data), elements.size(), elements.begin());
  }
  void AdvanceWriteIndex(std::uint64_t) { ADD_FAILURE() << "skips"; }

  std::vector<E>& elements;
  int calls = 0;
};

/// All elements of an object under the interface W.
template <class W>
std::vector<typename Kind<W>::Element> ElementsOf(const Object& p_object) {
  using Element = typename Kind<W>::Element;
  using Base = typename Library::StreamWriterKind<Element, OneCall<Element>>::Base;
  std::vector<Element> elements;
  struct Writer : Base {
    explicit Writer(std::vector<Element>& p_elements)
        : Base(p_elements) {}
  } writer(elements);
  const W& attribute = p_object->QuerySupportedInterface(InterfaceID::Of<W>()).template Get<W>();
  attribute.Write(writer);
  EXPECT_EQ(attribute.Count(), elements.size());
  return elements;
}

/// Opens the debug channel of clones.
struct OpenChannel {
  OpenChannel() { Utility::GetLogger().open("DataRepository"); }
  ~OpenChannel() { Utility::GetLogger().close("DataRepository"); }
};

template <class W>
class CloneOf : public ::testing::Test {};
using Interfaces = ::testing::Types<VertexAttribute1, VertexAttribute1B, VertexAttribute2, VertexAttribute3,
                                    VertexAttribute4, VertexIndex>;
TYPED_TEST_SUITE(CloneOf, Interfaces, ); // the empty name generator keeps clang from warning

} // namespace

TYPED_TEST(CloneOf, IsIndependentOfItsSource) {
  using Element = typename Kind<TypeParam>::Element;
  const ReportCapture reports;
  Object source = CountedSource<TypeParam>(10);
  Object clone = CloneAttribute(source);
  EXPECT_NE(CloneAttribute(source), clone);
  source.reset();
  const Object second = CloneAttribute(clone);
  EXPECT_EQ(ElementsOf<TypeParam>(clone), Counted<Element>(10));
  clone.reset();
  EXPECT_EQ(ElementsOf<TypeParam>(second), Counted<Element>(10));
  EXPECT_EQ(reports.Texts(), Texts()); // nor anything on the channel, which is not open

  EXPECT_FALSE(Kind<TypeParam>::HasBytes(*QueryInterface<TypeParam>(second)));
  ASSERT_EQ(reports.Texts(), Texts{Signature::Raw + Kind<TypeParam>::Name + "::" + Kind<TypeParam>::Raw});
  EXPECT_EQ(reports.Entries()[0].kind, vekdebug::severity::sentry);
}

TYPED_TEST(CloneOf, SupportsItsInterfaceAndForFloatsTheUnit) {
  std::vector<InterfaceID> all = Order;
  all.insert(all.end(), {InterfaceID::Of<QuantityUnit>(), InterfaceID::Of<ElementCount>(),
                         InterfaceID::Of<ISupportedInterface>()});
  // The clone supports QuantityUnit also if the source does not.
  for (const bool measured : {true, false}) {
    const Object clone = CloneAttribute(CountedSource<TypeParam>(2, measured));
    for (const InterfaceID& id : all) {
      const bool offered =
          id == InterfaceID::Of<TypeParam>() || (Measured<TypeParam> && id == InterfaceID::Of<QuantityUnit>());
      EXPECT_EQ(clone->IsSupportedInterface(id), offered) << id.Name();
      if (offered)
        EXPECT_EQ(clone->QuerySupportedInterface(id).ID(), id);
      else
        EXPECT_THROW(clone->QuerySupportedInterface(id), UnknownInterface) << id.Name();
    }
    const QuantityUnitPair expected = measured ? QuantityUnitPair{"wave height", "m"} : QuantityUnitPair();
    for (const Object& object : {clone, CloneAttribute(clone)})
      EXPECT_TRUE(!Measured<TypeParam> || QueryInterface<QuantityUnit>(object)->GetQuantityUnit() == expected);
  }
}

TYPED_TEST(CloneOf, IsDescribedOnTheOpenChannel) {
  const OpenChannel open;
  for (const std::uint32_t count : {0u, 1u, 12345u}) {
    const bool measured = count != 1;
    const ReportCapture reports;
    const Object source = count == 0 ? MakeSource<TypeParam>(0, [](auto&) { ADD_FAILURE() << "asked to write"; })
                                     : CountedSource<TypeParam>(count, measured);
    EXPECT_EQ(ElementsOf<TypeParam>(CloneAttribute(source)).size(), count);
    Texts lines = {"Library::CloneAttribute:", std::string("    type = ") + Kind<TypeParam>::Name,
                   "    count = " + std::to_string(count)};
    if (Measured<TypeParam>)
      lines.insert(lines.end(), {measured ? "    quantity = wave height" : "    quantity = ",
                                 measured ? "    unit = m" : "    unit = "});
    lines.push_back("    bytes = " + std::to_string(count * sizeof(typename Kind<TypeParam>::Element)));
    EXPECT_EQ(reports.Texts(), lines);
    for (const ReportCapture::Entry& entry : reports.Entries()) {
      EXPECT_EQ(entry.kind, vekdebug::severity::debug);
      EXPECT_EQ(entry.channel, "DataRepository");
    }
  }
}

TYPED_TEST(CloneOf, StoresWhatTheSourceWrites) {
  using Element = typename Kind<TypeParam>::Element;
  using Writer = typename Kind<TypeParam>::Writer;
  constexpr std::size_t N = Element::static_size;
  const std::vector<Element> all = Counted<Element>(6);
  const typename Element::value_type* const scalars = all.front().data();
  // The number of each stored element, or 0 for zeros, and of the reports.
  const std::tuple<const char*, std::function<void(Writer&)>, std::array<unsigned, 3>, std::size_t> cases[] = {
      {"too little", [&](Writer& p_w) { p_w.Write(scalars, 2 * N); }, {1, 2, 0}, 0},
      {"too much at once", [&](Writer& p_w) { p_w.Write(scalars, 6 * N); }, {1, 2, 3}, 1},
      {"too much in runs", [&](Writer& p_w) { p_w.Write(scalars, 2 * N), p_w.Write(scalars, 2 * N); }, {1, 2, 1}, 1},
      {"with a gap", [&](Writer& p_w) { p_w.Write(scalars, N), p_w.Skip(1), p_w.Write(scalars + N, N); }, {1, 0, 2}, 0},
      {"beyond the end only", [&](Writer& p_w) { p_w.Skip(~std::uint64_t{0}), p_w.Write(scalars, N); }, {0, 0, 0}, 2},
  };
  for (const auto& [name, write, numbers, count] : cases) {
    const ReportCapture reports;
    const std::vector<Element> stored = ElementsOf<TypeParam>(CloneAttribute(MakeSource<TypeParam>(3, write)));
    EXPECT_EQ(reports.Texts().size(), count) << name;
    ASSERT_EQ(stored.size(), 3u) << name;
    for (std::size_t i = 0; i < 3; ++i)
      EXPECT_EQ(stored[i], numbers[i] == 0 ? Element() : all[numbers[i] - 1]) << name << ' ' << i;
  }
}

TYPED_TEST(CloneOf, ConvertsLongRuns) {
  using Element = typename Kind<TypeParam>::Element;
  using Scalar = typename Kind<TypeParam>::OtherScalar;
  constexpr std::size_t N = Element::static_size, Count = 50000, Written = Count - 5;
  const std::unique_ptr<Scalar[]> scalars(new Scalar[Count * N]);
  std::vector<Element> expected(Count);
  for (std::size_t i = 0; i < Written * N; ++i) {
    scalars[i] = static_cast<Scalar>(i % 3 == 0 ? 0 : 0.1 + static_cast<double>(i % 40000));
    expected[i / N][i % N] = static_cast<typename Element::value_type>(scalars[i]);
  }
  const auto write = [&](auto& p_writer) {
    p_writer.Write(scalars.get(), N);
    p_writer.Write(scalars.get() + N, (Written - 1) * N);
  };
  EXPECT_EQ(ElementsOf<TypeParam>(CloneAttribute(MakeSource<TypeParam>(Count, write))), expected);
}

TEST(CloneAttribute, PassesExceptionsOfTheSource) {
  const Object source = MakeSource<VertexAttribute2>(9, [](auto&) { throw std::runtime_error("the disk is gone"); });
  EXPECT_THROW(CloneAttribute(source), std::runtime_error);
  EXPECT_EQ(source.use_count(), 1);
}

TEST(CloneAttribute, ClonesTheFirstSupportedInterface) {
  for (std::size_t first = 0; first < Order.size(); ++first) {
    const auto source = boost::make_shared<Everything>();
    source->offered.insert(Order.begin() + static_cast<std::ptrdiff_t>(first), Order.end());
    const Object clone = CloneAttribute(source);
    ASSERT_TRUE(clone) << first;
    for (std::size_t i = 0; i < Order.size(); ++i)
      EXPECT_EQ(clone->IsSupportedInterface(Order[i]), i == first) << first << ' ' << i;
    ASSERT_GT(source->asked.size(), first);
    EXPECT_TRUE(
        std::equal(Order.begin(), Order.begin() + static_cast<std::ptrdiff_t>(first + 1), source->asked.begin()));
  }
}

TEST(CloneAttribute, ReportsUnknownSources) {
  const OpenChannel open;
  const auto other = boost::make_shared<Everything>();
  other->offered = {InterfaceID::Of<QuantityUnit>(), InterfaceID::Of<ElementCount>()};
  for (const Object& source : {Object(other), Object()}) {
    const ReportCapture reports;
    EXPECT_FALSE(CloneAttribute(source));
    ASSERT_EQ(reports.Texts(), Texts{Signature::Clone}); // and nothing on the channel
    EXPECT_EQ(reports.Entries()[0].kind, vekdebug::severity::sentry);
  }
}
