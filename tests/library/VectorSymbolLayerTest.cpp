#include "library/VectorSymbol.h"

#include "platform/ogl/Vec.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Model::Symbol;
using Ogl::VertexData;
using Types::Matrix3;
using Types::Vector3_Base;

namespace {

/// A random layer. Some sizes are not positive; some instances of a long one give a NaN, two are only very large.
struct Layer {
  std::vector<Vector3_Base<double>> positions;
  std::vector<Matrix3> rotations;
  std::vector<double> sizes;
  std::vector<double> values;

  explicit Layer(std::size_t p_count) {
    std::mt19937 random(static_cast<unsigned int>(p_count));
    std::uniform_real_distribution<double> any(-3.0, 3.0);
    const auto vector = [&] { return Vector3_Base<double>(any(random), any(random), any(random)); };
    for (std::size_t i = 0; i < p_count; ++i) {
      positions.push_back(vector() * 100.0);
      rotations.emplace_back(vector(), vector(), vector());
      sizes.push_back(any(random) + 2.0);
      values.push_back(any(random));
    }
    if (p_count > 8) {
      const double first[] = {1, 0, NAN, INFINITY, 1, 1, 1e300, 1, 1};
      std::copy(std::begin(first), std::end(first), sizes.begin());
      positions[4].z = NAN;
      rotations[5] = Matrix3({1, 0, 0}, {0, NAN, 0}, {0, 0, 1});
      positions[7].x = INFINITY;
      if (p_count > 3000)
        sizes[1024] = sizes[3000] = NAN;
      rotations[8] = Matrix3({INFINITY, 0, 0}, {0, 1, 0}, {0, 0, 1}); // NaN normals of a cube, no NaN vertices
    }
  }

  VectorSymbol::Instances View() const {
    return {sizes.size(), positions.data(), rotations.data(), sizes.data(), values.data()};
  }
};

/// Scalars as they are stored, so that comparisons see every bit.
using Words = std::vector<std::uint32_t>;

Words WordsOf(const VertexData::Array& p_array) {
  Words words(p_array.count * p_array.components);
  if (!words.empty())
    std::memcpy(words.data(), p_array.data.get(), words.size() * sizeof words[0]);
  return words;
}

/// Vertices, normals, texture coordinates and indices.
using ArrayWords = std::array<Words, 4>;

ArrayWords WordsOf(const VertexData& p_data) {
  return {WordsOf(p_data.Vertices()), WordsOf(p_data.Normals()), WordsOf(p_data.TexCoords()),
          WordsOf(p_data.Indices())};
}

/// Whether there is a NaN among floats.
bool HasNaN(const Words& p_floats) {
  return std::any_of(p_floats.begin(), p_floats.end(), [](std::uint32_t p_bits) { return p_bits << 1 > 0xFF000000; });
}

struct LayerWords {
  std::size_t written = 0;
  std::size_t leftOut = 0; // because of a NaN
  ArrayWords arrays;
};

LayerWords InstanceByInstance(const VectorSymbol& p_symbol, const VectorSymbol::Instances& p_view, double p_anchor,
                              double p_scale) {
  LayerWords all;
  for (std::size_t i = 0; i < p_view.count; ++i) {
    VertexData one;
    if (!p_symbol.OrientShape(p_view.sizes[i], p_anchor, p_view.positions[i], true, p_view.texCoords[i], p_scale,
                              p_view.rotations[i], one))
      continue;
    ArrayWords words = WordsOf(one);
    if (HasNaN(words[0]) || HasNaN(words[1])) {
      ++all.leftOut;
      continue;
    }
    for (std::uint32_t& index : words[3])
      index += static_cast<std::uint32_t>(all.arrays[0].size() / 3);
    for (std::size_t a = 0; a < words.size(); ++a)
      all.arrays[a].insert(all.arrays[a].end(), words[a].begin(), words[a].end());
    ++all.written;
  }
  return all;
}

namespace Signature {
const std::string Class = "Vek::Chart::Library::VectorSymbol::";
const std::string CountShown =
    "unsigned __int64 __cdecl " + Class + "CountShown(const struct " + Class + "Instances &,double,unsigned int) const";
const std::string OrientShapes = "unsigned __int64 __cdecl " + Class + "OrientShapes(const struct " + Class +
                                 "Instances &,double,double,const struct " + Class + "LayerMemory &) const";
} // namespace Signature

} // namespace

TEST(VectorSymbolLayer, HasTheBitsOfInstanceByInstance) {
  // From one instance to layers that are written past the caches; spheres larger than the buffer in between.
  std::vector<std::tuple<int, unsigned int, std::size_t>> rows = {
      {ShapeSphere, 64, 60}, {ShapeArrow3D, 8, 4000}, {ShapePoint, 8, 120000}};
  for (int shape = ShapePoint; shape <= ShapeSphere; ++shape)
    for (const std::size_t count : {1, 7, 100})
      rows.emplace_back(shape, 12, count);
  for (const auto& [shape, resolution, count] : rows) {
    SCOPED_TRACE("shape " + std::to_string(shape) + " × " + std::to_string(count));
    const VectorSymbol symbol(static_cast<Shape>(shape), resolution);
    const Layer layer(count);
    const LayerWords expected = InstanceByInstance(symbol, layer.View(), 0.3, 1.7);
    VertexData data, single;
    const ReportCapture reports;
    EXPECT_EQ(symbol.OrientShapes(layer.View(), 0.3, 1.7, data), expected.written);
    EXPECT_EQ(expected.leftOut >= 4, count > 8);
    EXPECT_EQ(reports.Texts(), Texts(count > 8, "\"notANumber == 0\" - " + Signature::CountShown));
    EXPECT_EQ(reports.Details(), Texts(count > 8, "index 2, count " + std::to_string(expected.leftOut)));
    EXPECT_TRUE(WordsOf(data) == expected.arrays);
    for (const int threads : {2, 3, 7}) {
      VertexData threaded;
      const Vek::Chart::Utility::Threads number(threads);
      EXPECT_EQ(symbol.OrientShapes(layer.View(), 0.3, 1.7, threaded, number), expected.written);
      EXPECT_TRUE(WordsOf(threaded) == expected.arrays) << threads;
    }
    symbol.BuildShape(single);
    EXPECT_EQ(data.PrimitiveType().Value(), single.PrimitiveType().Value());
  }
}

TEST(VectorSymbolLayer, NothingToWriteLeavesTheTarget) {
  const VectorSymbol cone(ShapeCone, 8);
  const Layer layer(3);
  VertexData data;
  ASSERT_EQ(cone.OrientShapes(layer.View(), 0, 1, data), 3u);
  const void* before = data.Vertices().data.get();
  EXPECT_EQ(cone.OrientShapes(layer.View(), 0, -0.0, data), 0u);
  EXPECT_EQ(cone.OrientShapes({}, 0, 1, data), 0u);
  ReportCapture reports;
  EXPECT_EQ(cone.OrientShapes(layer.View(), 0, NAN, data), 0u);
  EXPECT_EQ(cone.OrientShapes(layer.View(), NAN, 1, data), 0u);
  EXPECT_EQ(reports.Details(), Texts(2, "index 0, count 3"));
  EXPECT_EQ(VectorSymbol(ShapeCustom, 8).OrientShapes(layer.View(), 0, 1, data), 0u);
  reports.Clear();
  const VectorSymbol::Instances view = layer.View();
  for (const VectorSymbol::Instances& broken : {VectorSymbol::Instances{3, nullptr, view.rotations, view.sizes},
                                                {3, view.positions, nullptr, view.sizes},
                                                {3, view.positions, view.rotations, nullptr}})
    EXPECT_EQ(cone.OrientShapes(broken, 0, 1, data), 0u);
  EXPECT_EQ(reports.Texts(), Texts(3, "\"void*(obj)\" - " + Signature::CountShown));
  EXPECT_EQ(data.Vertices().data.get(), before);
}

TEST(VectorSymbolLayer, ReusesItsOwnArraysUnlessShared) {
  const ReportCapture reports;
  const VectorSymbol arrow(ShapeArrow3D, 8);
  const Layer layer(100);
  Layer other(100);
  for (Vector3_Base<double>& position : other.positions)
    position = position * 2.0;
  VertexData data;
  ASSERT_NE(arrow.OrientShapes(layer.View(), 0, 1, data), 0u);
  const void* const vertices = data.Vertices().data.get();
  const boost::shared_ptr<const void> held = data.Normals().data;
  data.PrimitiveType().ClearChanged();

  ASSERT_NE(arrow.OrientShapes(other.View(), 0, 1, data), 0u);
  EXPECT_TRUE(WordsOf(data) == InstanceByInstance(arrow, other.View(), 0, 1).arrays);
  EXPECT_EQ(data.Vertices().data.get(), vertices);
  EXPECT_NE(data.Normals().data, held) << "the old one has another owner";
  EXPECT_FALSE(data.PrimitiveType().Changed());

  // Arrays of the host are never written; they may be read-only.
  static const std::vector<float> Constant(3 * data.Vertices().count, 7.f);
  data.SetVertices(boost::shared_ptr<const void>(Constant.data(), [](const void*) {}), data.Vertices().count, 3,
                   VertexData::Float);
  ASSERT_NE(arrow.OrientShapes(layer.View(), 0, 1, data), 0u);
  EXPECT_NE(data.Vertices().data.get(), Constant.data());
  EXPECT_EQ(Constant, std::vector<float>(Constant.size(), 7.f));

  // Other sizes take new arrays; arrays that the new layer lacks are removed.
  const VectorSymbol::Instances fewer{50, layer.positions.data(), layer.rotations.data(), layer.sizes.data()};
  EXPECT_EQ(VectorSymbol().OrientShapes(fewer, 0, 1, data), data.Vertices().count);
  EXPECT_TRUE(data.TexCoords().Empty() && data.Indices().Empty());
  EXPECT_EQ(data.PrimitiveType().Value(), Ogl::VertexBuffer::Points);
}

TEST(VectorSymbolLayer, FillsMemoryOfTheCaller) {
  const ReportCapture reports;
  const VectorSymbol sphere(ShapeSphere, 32);
  const Layer layer(300);
  LayerWords expected = InstanceByInstance(sphere, layer.View(), 0.5, 1);
  for (std::uint32_t& index : expected.arrays[3])
    index += 1000;
  constexpr std::uint32_t Guard = 0xABCDEF01; // around the memory
  for (const std::size_t misaligned : {0, 1, 3, 15}) {
    ArrayWords arrays, framed;
    for (std::size_t a = 0; a < arrays.size(); ++a) {
      const Words& words = expected.arrays[a];
      arrays[a].assign(words.size() + misaligned + 16, Guard);
      framed[a] = arrays[a];
      std::copy(words.begin(), words.end(), framed[a].begin() + std::ptrdiff_t(misaligned));
    }
    const auto floats = [&](std::size_t p_array) {
      return VectorSymbol::Target<float>(reinterpret_cast<float*>(arrays[p_array].data() + misaligned),
                                         expected.arrays[p_array].size());
    };
    const VectorSymbol::Target<unsigned int> indices(arrays[3].data() + misaligned, expected.arrays[3].size());
    const VectorSymbol::LayerMemory memory{floats(0), floats(1), floats(2), indices, 1000};
    ASSERT_EQ(sphere.OrientShapes(layer.View(), 0.5, 1, memory), expected.written);
    EXPECT_TRUE(arrays == framed) << misaligned;
  }
}

TEST(VectorSymbolLayer, FollowsDirections) {
  const VectorSymbol arrow(ShapeArrow2D, 8);
  const Vector3_Base<double> up(1, 2, 3);
  // Without direction are numbers 1, 3 and 4; number 5 has no size, number 6 no position.
  const std::vector<Vector3_Base<double>> directions = {
      {3, 4, 0}, {}, {0, 0, -2}, {NAN, 1, 1}, {0, Infinity, 0}, {1, 1, 1}, {-1, 0, 5}, {2, 4, 6}, {1e-300, 0, 0}};
  const std::vector<double> sizes = {1, 2, 3, 4, 5, 0, 7, 8, 9}, values = {0, 1, 2, 3, 4, 5, 6, 7, 8};
  std::vector<double> lengths;
  std::vector<Vector3_Base<double>> positions;
  std::vector<Matrix3> rotations;
  for (const Vector3_Base<double>& direction : directions) {
    lengths.push_back(std::hypot(direction.x, direction.y, direction.z));
    positions.emplace_back(3, lengths.size(), 0);
    rotations.push_back(Matrix3::FromAxis(direction, up));
  }
  positions[6].x = NAN;
  for (const bool isSized : {true, false}) {
    std::vector<double> shown = isSized ? sizes : lengths;
    for (const std::size_t i : {1, 3, 4})
      shown[i] = 0;
    const VectorSymbol::DirectedInstances directed{
        shown.size(), positions.data(), directions.data(), isSized ? sizes.data() : nullptr, values.data(), up};
    const VectorSymbol::Instances rotated{shown.size(), positions.data(), rotations.data(), shown.data(),
                                          values.data()};
    VertexData data;
    const ReportCapture reports;
    const VectorSymbol::DirectedCounts counts = arrow.OrientAlong(directed, 0.25, 2, data);
    EXPECT_EQ(std::pair(counts.written, counts.undirected), std::pair(isSized ? 4ul : 5ul, 3ul));
    EXPECT_EQ(reports.Details(), Texts{"index 6, count 1"});
    const ArrayWords expected = InstanceByInstance(arrow, rotated, 0.25, 2).arrays;
    EXPECT_TRUE(WordsOf(data) == expected);
    Words memory(expected[0].size());
    VectorSymbol::LayerMemory target;
    target.vertices = {reinterpret_cast<float*>(memory.data()), memory.size()};
    EXPECT_EQ(arrow.OrientAlong(directed, 0.25, 2, target).written, counts.written);
    EXPECT_EQ(memory, expected[0]);
  }
  const ReportCapture reports;
  VertexData data;
  EXPECT_EQ(arrow.OrientAlong({9, nullptr, directions.data()}, 0, 1, data).undirected, 0u);
  EXPECT_EQ(arrow.OrientAlong({9, positions.data(), nullptr}, 0, 1, data).undirected, 0u);
  EXPECT_EQ(reports.Texts().size(), 2u);
  EXPECT_EQ(arrow.OrientAlong({}, 0, 1, data).written, 0u);
  EXPECT_EQ(VectorSymbol(ShapeCustom, 8).OrientAlong({9}, 0, 1, data).written, 0u);
}

TEST(VectorSymbolLayer, FollowsDirectionsEquallyOnAnyNumberOfThreads) {
  const VectorSymbol lines(ShapeArrow2D, 4);
  constexpr std::size_t Count = 120001;
  std::vector<Vector3_Base<double>> positions(Count), directions(Count);
  for (std::size_t i = 0; i < Count; ++i) {
    positions[i] = {i % 5000 == 7 ? NAN : double(i), 1, 2};
    directions[i] = {i % 1000 < 2 ? 0.0 : std::sin(double(i)), 0, i % 1000 == 0 ? NAN : i % 1000 == 1 ? 0.0 : 1.0};
  }
  const VectorSymbol::DirectedInstances instances{Count, positions.data(), directions.data()};
  const auto along = [&](int p_threads) {
    VertexData data;
    const ReportCapture reports;
    const auto counts = lines.OrientAlong(instances, 0.5, 2, data, Vek::Chart::Utility::Threads(p_threads));
    return std::tuple(counts.written, counts.undirected, WordsOf(data), reports.Details());
  };
  const auto expected = along(1);
  EXPECT_EQ(std::get<1>(expected), 241u);
  EXPECT_EQ(std::get<3>(expected), Texts{"index 7, count 24"});
  for (const int threads : {2, 3, 7})
    EXPECT_TRUE(along(threads) == expected) << threads;
}

TEST(VectorSymbolLayer, RefusesMemoryThatIsTooSmall) {
  const VectorSymbol cone(ShapeCone, 4); // 8 vertices, 12 indices
  const Layer layer(3);
  std::vector<float> floats(72, -1.f);
  std::vector<unsigned int> numbers(36, 5);
  VectorSymbol::LayerMemory full;
  full.vertices = full.normals = {floats.data(), 72};
  full.texCoords = {floats.data(), 24};
  full.indices = {numbers.data(), 36};
  using Memory = VectorSymbol::LayerMemory;
  const std::pair<void (*)(Memory&), std::string> rows[] = {
      {[](Memory& p_memory) { --p_memory.vertices.count; }, "p_memory.vertices.count >= 3 * vertices"},
      {[](Memory& p_memory) { --p_memory.normals.count; }, "p_memory.normals.count >= 3 * vertices"},
      {[](Memory& p_memory) { --p_memory.texCoords.count; }, "p_memory.texCoords.count >= vertices"},
      {[](Memory& p_memory) { --p_memory.indices.count; }, "p_memory.indices.count >= indices"},
      {[](Memory& p_memory) { p_memory.firstVertex = 0xFFFFFFFFu - 22; },
       "shown * VertexCount() <= max_index - firstVertex"},
  };
  ReportCapture reports;
  for (const auto& [spoil, expression] : rows) {
    reports.Clear();
    Memory memory = full;
    spoil(memory);
    EXPECT_EQ(cone.OrientShapes(layer.View(), 0, 1, memory), 0u);
    const std::string signature = memory.firstVertex == 0 ? Signature::OrientShapes : Signature::CountShown;
    EXPECT_EQ(reports.Texts(), Texts{'"' + expression + "\" - " + signature});
  }
  EXPECT_EQ(floats, std::vector<float>(72, -1.f));
  EXPECT_EQ(numbers, std::vector<unsigned int>(36, 5));

  // Attributes without a target are skipped.
  reports.Clear();
  Memory memory;
  memory.indices = full.indices;
  EXPECT_EQ(cone.OrientShapes(layer.View(), 0, 1, memory), 3u);
  EXPECT_EQ(numbers[35], 16u + 7);
  EXPECT_EQ(floats, std::vector<float>(72, -1.f));
  EXPECT_TRUE(reports.Texts().empty());
}

using VectorSymbolLayerCalls = RecordingScopeFixture;

TEST_F(VectorSymbolLayerCalls, FillsMappedBuffersReportsUnmappedOnes) {
  const ReportCapture reports;
  const VectorSymbol arrow(ShapeArrow3D, 8);
  const Layer layer(20);
  const LayerWords expected = InstanceByInstance(arrow, layer.View(), 0, 1);
  using Position = Ogl::Attribute<Ogl::Vec3<float>>;
  const auto positions =
      gl->GetBufferPool().CreateBuffer<Position>(expected.arrays[0].size() / 3, Ogl::BufferUsage::Default);
  for (const std::size_t first : {0, 1}) { // the second range ends past the buffer
    const Ogl::BufferPool::WriteArray<Position> array(positions, first, positions.Count(), RGL_ARRAY_BUFFER);
    VectorSymbol::LayerMemory memory;
    memory.vertices = array;
    EXPECT_EQ(arrow.OrientShapes(layer.View(), 0, 1, memory), first == 0 ? expected.written : 0u);
  }
  const std::vector<unsigned char> bytes = recorder.BufferBytes(positions.Name());
  ASSERT_EQ(bytes.size(), expected.arrays[0].size() * 4);
  EXPECT_EQ(std::memcmp(bytes.data(), expected.arrays[0].data(), bytes.size()), 0);
  EXPECT_EQ(reports.Texts().back(), "\"p_memory.vertices.count >= 3 * vertices\" - " + Signature::OrientShapes);
}
