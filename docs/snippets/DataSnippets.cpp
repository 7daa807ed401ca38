// The examples of the reference for vertex data and cuts: what stands between two marks is shown there.

#include "library/CloneAttribute.h"
#include "library/Intersect.h"
#include "library/StreamWriter.h"
#include "library/VertexSource.h"
#include "platform/data/VertexAttribute.h"
#include "platform/data/VertexIndex.h"
#include "scene/Array.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Library;
using Vek::SupportedInterface::AnyInterface;
using Vek::SupportedInterface::InterfaceID;
using Vek::SupportedInterface::ISupportedInterface;

namespace {

//! [Source]
/// Positions of a host, which the library reads as floats.
class Positions : public DataInterface::VertexAttribute3 {
public:
  std::vector<double> xyz;

  std::uint32_t Count() const override { return static_cast<std::uint32_t>(xyz.size() / 3); }
  boost::shared_array<const char> Attribute3(DataInterface::FloatPrecision&) const override { return {}; }
  void Write(DataInterface::FloatAttributeStreamWriter<3>& p_writer) const override {
    p_writer.Write(xyz.data(), xyz.size()); // scalars, in one call or in several
  }
  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    return p_id == InterfaceID::Of<DataInterface::VertexAttribute3>();
  }
  AnyInterface QuerySupportedInterface(const InterfaceID& p_id) override {
    if (!IsSupportedInterface(p_id))
      throw Vek::SupportedInterface::UnknownInterface(p_id);
    return AnyInterface::Of<DataInterface::VertexAttribute3>(*this);
  }
};
//! [Source]

boost::shared_ptr<Positions> TwoPoints() {
  const auto source = boost::make_shared<Positions>();
  source->xyz = {1, 2, 3, 4, 5, 6};
  return source;
}

TEST(DataSnippets, ContainerStreamWriter) {
  const boost::shared_ptr<DataInterface::VertexAttribute3> source = TwoPoints();
  //! [ContainerStreamWriter]
  using Element = boost::array<float, 3>;
  std::vector<Element> positions(source->Count()); // its final size: writers never grow it
  ContainerStreamWriter<std::vector<Element>, ContainerOperations::StaticContainer, Element> writer(positions);
  source->Write(writer); // doubles of the source become floats
  //! [ContainerStreamWriter]
  EXPECT_EQ(positions, (std::vector<Element>{{{1, 2, 3}}, {{4, 5, 6}}}));
}

TEST(DataSnippets, VertexSource) {
  std::vector<std::array<double, 3>> velocities = {{1, 2, 3}, {4, 5, 6}};
  //! [VertexSource]
  const auto source = VertexSource::Of(std::move(velocities), {"velocity", "m/s"}); // a VertexAttribute3
  const auto floats = Elements<std::array<float, 3>>(*source);                      // a vector, of any source
  //! [VertexSource]
  EXPECT_EQ(floats, (std::vector<std::array<float, 3>>{{1, 2, 3}, {4, 5, 6}}));
}

TEST(DataSnippets, CloneAttribute) {
  const boost::shared_ptr<ISupportedInterface> source = TwoPoints();
  //! [CloneAttribute]
  const boost::shared_ptr<ISupportedInterface> clone = CloneAttribute(source); // asks what the source offers
  const auto positions = Vek::SupportedInterface::QueryInterface<DataInterface::VertexAttribute3>(clone);
  const std::uint32_t count = positions->Count();
  //! [CloneAttribute]
  EXPECT_EQ(count, 2U);
}

TEST(DataSnippets, InterpretArray) {
  const double values[] = {1, 2, 3, 4, 5, 6};
  //! [InterpretArray]
  using Source = DataInterface::Array<double, 0>;
  using Element = boost::array<float, 3>;
  std::vector<Element> positions(2);
  Algorithms::InterpretArray<Source, Source>::CopyArrayToWithOffset<Element>(Source(values, 6), positions, 0);
  //! [InterpretArray]
  EXPECT_EQ(positions[1], (Element{{4, 5, 6}}));
}

TEST(DataSnippets, AnyInterface) {
  Positions positions;
  //! [AnyInterface]
  const AnyInterface any = AnyInterface::Of<DataInterface::VertexAttribute3>(positions);
  const bool held = any.As<DataInterface::VertexAttribute3>() != nullptr; // the object
  const bool other = any.As<DataInterface::VertexIndex>() != nullptr;     // null: another interface
  //! [AnyInterface]
  EXPECT_TRUE(held && !other);
}

TEST(DataSnippets, Array) {
  //! [Array]
  struct Station {
    std::string name;
    double longitude, latitude;
    float height;
  };
  const std::vector<Station> stations = {{"Brocken", 10.62, 51.8, 1142}, {"Zugspitze", 10.99, 47.42, 2962}};

  // What a part of a chart does with its argument, whatever that is.
  const auto boundsOf = [](const Scene::Array3& p_points) { return Scene::FiniteBounds(p_points); };
  boundsOf(std::vector<std::array<double, 3>>{{1, 2, 3}, {4, 5, 6}}); // also of QVector3D, x, y, z or x(), y(), z()
  const std::vector<float> x{1, 4}, y{2, 5};
  boundsOf({x, y, 0}); // flat
  const auto bounds =
      boundsOf({stations, &Station::longitude, &Station::latitude, &Station::height}); // as they lie in memory
  //! [Array]
  EXPECT_EQ(bounds.Max().z, 2962);
}

TEST(DataSnippets, Intersect) {
  std::size_t corners = 0;
  const auto drawPolygon = [&](const std::vector<Types::Vector3_Base<double>>& p_polygon) {
    corners += p_polygon.size();
  };
  //! [Intersect]
  const Types::BoundingBox_Base<double> box({0, 0, 0}, {1, 1, 1});
  const Types::Plane planes[] = {{{0, 0, 0.5}, {0, 0, 1}}, {{0.5, 0.5, 0.5}, {1, 1, 1}}}; // point and normal
  std::vector<Types::Vector3_Base<double>> slice; // kept from one cut to the next
  for (const Types::Plane& plane : planes)
    if (Intersect::Intersection(box, plane, slice))
      drawPolygon(slice); // four corners, then six
  //! [Intersect]
  EXPECT_EQ(corners, 10U);
}

} // namespace
