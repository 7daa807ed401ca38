// Calls with arguments of any bits: infinities, NaN, enumerators that do not exist, counts that do not fit.

#include "fuzz/FuzzTarget.h"
#include "library/CloneAttribute.h"
#include "library/ColorMap.h"
#include "library/ColorScale.h"
#include "library/Intersect.h"
#include "library/StreamLineShape.h"
#include "library/StreamWriter.h"
#include "library/VectorSymbol.h"
#include "platform/data/VertexAttribute.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace Vek::Chart;
using namespace Vek::Chart::Library;
using Vek::SupportedInterface::AnyInterface;
using Vek::SupportedInterface::InterfaceID;

namespace {

using Vector2 = Types::Vector2_Base<double>;
using Vector3 = Types::Vector3_Base<double>;

/// The bytes of an input, taken from front to back; zeros after the end.
class Bits {
public:
  Bits(const std::uint8_t* p_bytes, std::size_t p_size)
      : _bytes(p_bytes)
      , _size(p_size) {}

  template <class T>
  T Next() {
    T value{};
    const std::size_t count = std::min(sizeof value, _size);
    std::memcpy(&value, _bytes, count);
    _bytes += count;
    _size -= count;
    return value;
  }
  double Double() { return Next<double>(); }
  Vector3 Vector() {
    const double x = Double(), y = Double();
    return {x, y, Double()};
  }
  Types::Plane Plane() {
    const Vector3 point = Vector();
    return {point, Vector()};
  }
  Types::Matrix3 Matrix() {
    const Vector3 row0 = Vector(), row1 = Vector();
    return {row0, row1, Vector()};
  }
  /// At most 15 elements.
  template <class Make>
  auto List(Make p_make) {
    std::vector<decltype(p_make())> list(Next<std::uint8_t>() % 16);
    std::generate(list.begin(), list.end(), p_make);
    return list;
  }
  std::vector<double> Doubles() {
    return List([this] { return Double(); });
  }
  std::vector<QColor> Colors() {
    return List([this] { return QColor::fromRgba(Next<QRgb>()); });
  }

private:
  const std::uint8_t* _bytes;
  std::size_t _size;
};

void UseColorMap(Bits& p_bits) {
  const std::vector<QColor> colors = p_bits.Colors();
  const std::vector<double> weights = p_bits.Doubles();
  const ColorMap map(colors, weights, static_cast<ColorMap::Style>(p_bits.Next<int>()));
  map.Color(p_bits.Next<int>());
  map.Color(p_bits.Next<std::uint64_t>());
  map.Color(p_bits.Double());
  const int count = p_bits.Next<std::int16_t>();
  ColorMap::GenerateColorList(colors, count);
  ColorMap::GenerateWeightList(weights, count);
}

void UseColorScale(Bits& p_bits) {
  const std::vector<QColor> colors = p_bits.Colors();
  const std::vector<double> bounds = p_bits.Doubles();
  const double lower = p_bits.Double();
  const double upper = p_bits.Double();
  const auto spacing = static_cast<ColorScale::Spacing>(p_bits.Next<int>());
  const std::vector<double> values = p_bits.Doubles();
  std::vector<unsigned char> rgba(4 * values.size());
  for (const ColorScale& scale : {ColorScale(colors, lower, upper, spacing), ColorScale(colors, bounds)}) {
    scale.Map(values.data(), values.size(), rgba.data());
    scale.Color(p_bits.Double());
  }
}

void UseStreamLineShape(Bits& p_bits) {
  const auto shape = static_cast<StreamLineShape::Shape>(p_bits.Next<int>());
  const StreamLineShape section(shape, p_bits.List([&p_bits] {
    const double x = p_bits.Double();
    return Vector2(x, p_bits.Double());
  }));
  const double size = p_bits.Double(), scale = p_bits.Double();
  const Vector3 position = p_bits.Vector();
  std::vector<Vector3> vertices, normals;
  if (section.OrientShape(size, position, scale, p_bits.Matrix(), vertices, normals) &&
      (vertices.size() != section.NumVertices() || normals.size() != vertices.size()))
    std::abort();
}

void UseVectorSymbol(Bits& p_bits) {
  const auto shape = static_cast<Model::Symbol::Shape>(p_bits.Next<int>() % 32);
  const VectorSymbol symbol(shape, p_bits.Next<std::uint8_t>());
  const double anchor = p_bits.Double(), scale = p_bits.Double();
  const std::vector<double> sizes = p_bits.Doubles();
  std::vector<Vector3> positions(sizes.size());
  std::vector<Types::Matrix3> rotations(sizes.size());
  std::generate(positions.begin(), positions.end(), [&p_bits] { return p_bits.Vector(); });
  std::generate(rotations.begin(), rotations.end(), [&p_bits] { return p_bits.Matrix(); });
  Ogl::VertexData layer;
  const std::size_t shown = symbol.OrientShapes(
      {sizes.size(), positions.data(), rotations.data(), sizes.data(), sizes.data()}, anchor, scale, layer);
  const Ogl::VertexData::Array& vertices = layer.Vertices();
  const float* const floats = vertices.As<float>();
  if (vertices.count != shown * symbol.VertexCount() ||
      std::any_of(floats, floats + 3 * vertices.count, [](float p_float) { return std::isnan(p_float); }))
    std::abort();
}

void UseIntersect(Bits& p_bits) {
  const Types::Plane first = p_bits.Plane(), second = p_bits.Plane();
  const Vector3 start = p_bits.Vector(), end = p_bits.Vector();
  Types::Line3_Base<double> line;
  Vector3 point;
  std::vector<Vector3> points;
  Intersect::Intersection(first, second, line);
  Intersect::Intersection(first, Types::Ray_Base<double>{start, end}, point);
  Intersect::Intersection(first, start, end, point);
  Intersect::Intersection(Types::BoundingBox_Base<double>(start, end), second, points);
  auto viewport = p_bits.Next<Types::Viewport<0>>();
  Intersect::Intersection(viewport, p_bits.Next<Types::Viewport<0>>(), viewport);
}

/// Writes what the input says, whatever it claims to have.
class Source : public DataInterface::VertexAttribute3 {
public:
  explicit Source(Bits& p_bits)
      : _bits(p_bits) {}

  std::uint32_t Count() const override { return _bits.Next<std::uint16_t>(); }
  boost::shared_array<const char> Attribute3(DataInterface::FloatPrecision&) const override { return {}; }
  void Write(DataInterface::FloatAttributeStreamWriter<3>& p_writer) const override {
    for (int i = 0; i < 4; ++i) {
      const std::vector<double> doubles = _bits.Doubles();
      const std::vector<float> floats(doubles.size() / 2);
      p_writer.Write(doubles.data(), doubles.size());
      p_writer.Write(floats.data(), floats.size());
      p_writer.Skip(_bits.Next<std::uint8_t>() < 200 ? _bits.Next<std::uint8_t>() : _bits.Next<std::uint64_t>());
    }
  }
  bool IsSupportedInterface(const InterfaceID& p_id) const override {
    return p_id == InterfaceID::Of<DataInterface::VertexAttribute3>();
  }
  AnyInterface QuerySupportedInterface(const InterfaceID&) override {
    return AnyInterface::Of<DataInterface::VertexAttribute3>(*this);
  }

private:
  Bits& _bits;
};

void UseWriters(Bits& p_bits) {
  using Element = boost::array<float, 3>;
  std::vector<Element> elements(p_bits.Next<std::uint8_t>());
  ContainerStreamWriter<std::vector<Element>, ContainerOperations::StaticContainer, Element> writer(elements);
  Source(p_bits).Write(writer);
  const auto clone = CloneAttribute(CloneAttribute(boost::make_shared<Source>(p_bits)));
  Vek::SupportedInterface::QueryInterface<DataInterface::VertexAttribute3>(clone)->Write(writer);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  Vek::Fuzz::Silence();
  constexpr void (*Uses[])(Bits&) = {UseColorMap,     UseColorScale, UseStreamLineShape,
                                     UseVectorSymbol, UseIntersect,  UseWriters};
  Bits bits(p_bytes, p_size);
  Uses[bits.Next<std::uint8_t>() % std::size(Uses)](bits);
  return 0;
}
