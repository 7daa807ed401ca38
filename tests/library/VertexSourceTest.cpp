#include "library/VertexSource.h"

#include "library/CloneAttribute.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::DataInterface;
using Vek::SupportedInterface::ISupportedInterface;
using Vek::SupportedInterface::QueryInterface;
using Vek::SupportedInterface::UnknownInterface;

namespace {

using Object = boost::shared_ptr<ISupportedInterface>;

TEST(VertexSource, ElementsComeBackConverted) {
  const std::vector<Types::Vector3_Base<double>> points = {{1, 2, 3}, {0.1, -1e300, 6}};
  const auto source = VertexSource::Of(points, {"velocity", "m/s"});
  static_assert(std::is_same_v<decltype(source), const boost::shared_ptr<VertexAttribute3>>);
  const std::vector<boost::array<float, 3>> expected = {{{1, 2, 3}}, {{0.1F, -INFINITY, 6}}};
  EXPECT_EQ(Elements<decltype(expected)::value_type>(*source), expected);
  const auto arrays = Elements<std::array<float, 3>>(Object(source));
  EXPECT_EQ(arrays, (std::vector<std::array<float, 3>>{{1, 2, 3}, {0.1F, -INFINITY, 6}}));
  EXPECT_EQ(QueryInterface<QuantityUnit>(source)->GetQuantityUnit(), (QuantityUnitPair{"velocity", "m/s"}));
  const Object clone = CloneAttribute(source);
  EXPECT_EQ(Elements<decltype(expected)::value_type>(clone), expected);
  EXPECT_EQ(QueryInterface<QuantityUnit>(clone)->GetQuantityUnit().unit, "m/s");

  EXPECT_EQ(Elements<float>(Object(VertexSource::Of(std::vector<double>{1.5, -2}))), (std::vector<float>{1.5F, -2}));
  EXPECT_EQ(Elements<QVector2D>(*VertexSource::Of(std::vector<QVector2D>{{7, 8}})), std::vector<QVector2D>({{7, 8}}));
  EXPECT_EQ(Elements<QVector4D>(*VertexSource::Of(std::vector<QVector4D>{{1, 2, 3, 4}})).at(0), QVector4D(1, 2, 3, 4));
  const unsigned char flags[] = {1, 0, 1};
  EXPECT_EQ(Elements<unsigned char>(*VertexSource::View(flags, 3)), std::vector<unsigned char>(flags, flags + 3));
  const std::vector<unsigned int> indices = {250, 3, 7};
  const unsigned short shorts[] = {250, 3, 7};
  for (const Object& each : std::initializer_list<Object>{
           VertexSource::OfIndices(indices), VertexSource::OfIndices(std::vector<unsigned char>{250, 3, 7}),
           VertexSource::ViewIndices(shorts, 3)})
    EXPECT_EQ(Elements<unsigned int>(each), indices);
}

TEST(VertexSource, BytesAreTheElementsAndStayWithTheirHolder) {
  std::vector<double> values = {1, 2, 3};
  const void* const first = values.data();
  auto owned = VertexSource::Of(std::move(values));
  FloatPrecision precision = SinglePrecision;
  const boost::shared_array<const char> bytes = owned->Attribute1(precision);
  owned.reset();
  EXPECT_EQ(bytes.get(), first);
  double last = 0;
  std::memcpy(&last, bytes.get() + 16, 8);
  EXPECT_EQ(std::pair(last, precision), std::pair(3.0, DoublePrecision));

  const unsigned short indices[] = {5, 6};
  VertexIndex::IndexType type = VertexIndex::UnsignedInt;
  EXPECT_EQ(static_cast<const void*>(VertexSource::ViewIndices(indices, 2)->Indices(type).get()), indices);
  EXPECT_EQ(type, VertexIndex::UnsignedShort);
  EXPECT_EQ(VertexSource::OfIndices(std::vector<unsigned int>{1})->Count(), 1U);

  const ReportCapture reports;
  const auto empty = VertexSource::Of(std::vector<double>());
  EXPECT_FALSE(empty->Attribute1(precision = SinglePrecision));
  EXPECT_EQ(std::tuple(precision, empty->Count(), Elements<float>(*empty).size()), std::tuple(SinglePrecision, 0U, 0U));
  EXPECT_EQ(reports.Texts(), Texts());
}

TEST(VertexSource, RefusesWhatItCannotServe) {
  const float value = 1;
  EXPECT_THROW(VertexSource::View(&value, std::size_t{1} << 32), std::invalid_argument);
  EXPECT_THROW(VertexSource::View(static_cast<const float*>(nullptr), 1), std::invalid_argument);
  EXPECT_EQ(VertexSource::View(static_cast<const float*>(nullptr), 0)->Count(), 0U);
  const Object source = VertexSource::View(&value, 1);
  EXPECT_THROW(Elements<unsigned int>(source), UnknownInterface);
  EXPECT_THROW(Elements<float>(Object()), UnknownInterface);
  EXPECT_THROW(source->QuerySupportedInterface(Vek::SupportedInterface::InterfaceID::Of<VertexIndex>()),
               UnknownInterface);
}

} // namespace
