#include "library/VectorSymbol.h"

#include "platform/ogl/Vec.h"
#include "tests/support/RecordingFixture.h"
#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace Vek::Chart;
using Library::VectorSymbol;
using Model::Symbol::Shape;
using Ogl::VertexData;
using Types::Matrix3;
using Types::Vector3_Base;
using Vek::Test::ReportCapture;

namespace {

/// A layer with its arrays; some sizes are not positive, some NaN.
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
    if (p_count > 5) {
      sizes[1] = 0.0;
      sizes[2] = std::numeric_limits<double>::quiet_NaN();
      sizes[3] = std::numeric_limits<double>::infinity();
      sizes[p_count - 1] = 1.0;
    }
  }

  VectorSymbol::Instances View() const {
    VectorSymbol::Instances view;
    view.count = sizes.size();
    view.positions = positions.data();
    view.rotations = rotations.data();
    view.sizes = sizes.data();
    view.tex_coords = values.data();
    return view;
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

struct LayerWords {
  std::size_t written = 0;
  Words vertices;
  Words normals;
  Words tex_coords;
  Words indices;
};

LayerWords InstanceByInstance(const VectorSymbol& p_symbol, const VectorSymbol::Instances& p_view, double p_anchor,
                              double p_scale) {
  LayerWords all;
  const auto append = [](Words& p_to, const Words& p_more) { p_to.insert(p_to.end(), p_more.begin(), p_more.end()); };
  for (std::size_t i = 0; i < p_view.count; ++i) {
    VertexData one;
    if (!p_symbol.OrientShape(p_view.sizes[i], p_anchor, p_view.positions[i], true, p_view.tex_coords[i], p_scale,
                              p_view.rotations[i], one))
      continue;
    for (const std::uint32_t index : WordsOf(one.Indices()))
      all.indices.push_back(static_cast<std::uint32_t>(index + all.vertices.size() / 3));
    append(all.vertices, WordsOf(one.Vertices()));
    append(all.normals, WordsOf(one.Normals()));
    append(all.tex_coords, WordsOf(one.TexCoords()));
    ++all.written;
  }
  return all;
}

void ExpectSame(const VertexData& p_data, const LayerWords& p_expected, const std::string& p_name) {
  EXPECT_TRUE(WordsOf(p_data.Vertices()) == p_expected.vertices) << p_name;
  EXPECT_TRUE(WordsOf(p_data.Normals()) == p_expected.normals) << p_name;
  EXPECT_TRUE(WordsOf(p_data.TexCoords()) == p_expected.tex_coords) << p_name;
  EXPECT_TRUE(WordsOf(p_data.Indices()) == p_expected.indices) << p_name;
}

constexpr const char* Count = "unsigned __int64 __cdecl Vek::Chart::Library::VectorSymbol::CountShown(const struct "
                              "Vek::Chart::Library::VectorSymbol::Instances &,double,unsigned int) const";
constexpr const char* Orient = "unsigned __int64 __cdecl Vek::Chart::Library::VectorSymbol::OrientShapes(const struct "
                               "Vek::Chart::Library::VectorSymbol::Instances &,double,double,const struct "
                               "Vek::Chart::Library::VectorSymbol::LayerMemory &) const";

} // namespace

TEST(VectorSymbolLayer, HasTheBitsOfInstanceByInstance) {
  // From one instance to layers that are written past the caches; spheres longer than any buffer in between.
  struct Row {
    Shape shape;
    unsigned int resolution;
    std::size_t count;
  };
  std::vector<Row> rows = {{Model::Symbol::ShapeSphere, 64, 30},
                           {Model::Symbol::ShapeArrow3D, 8, 2000},
                           {Model::Symbol::ShapePoint, 8, 50000},
                           {Model::Symbol::ShapeCrosshair, 8, 9001}};
  for (int shape = 1; shape <= 14; ++shape)
    for (const std::size_t count : {1, 7, 100})
      rows.push_back({static_cast<Shape>(shape), 12, count});
  for (const Row& row : rows) {
    const std::string name = "shape " + std::to_string(row.shape) + " × " + std::to_string(row.count);
    const VectorSymbol symbol(row.shape, row.resolution);
    const Layer layer(row.count);
    const LayerWords expected = InstanceByInstance(symbol, layer.View(), 0.3, 1.7);
    VertexData data;
    EXPECT_EQ(symbol.OrientShapes(layer.View(), 0.3, 1.7, data), expected.written) << name;
    ExpectSame(data, expected, name);
    VertexData single;
    symbol.BuildShape(single);
    EXPECT_EQ(data.PrimitiveType().Value(), single.PrimitiveType().Value()) << name;
  }
}

TEST(VectorSymbolLayer, LeavesTheTargetWhenNothingIsShown) {
  const VectorSymbol cone(Model::Symbol::ShapeCone, 8);
  const Layer layer(3);
  VertexData data;
  ASSERT_EQ(cone.OrientShapes(layer.View(), 0, 1, data), 3u);
  const void* before = data.Vertices().data.get();
  EXPECT_EQ(cone.OrientShapes(layer.View(), 0, -0.0, data), 0u);
  EXPECT_EQ(cone.OrientShapes({}, 0, 1, data), 0u);
  ReportCapture reports;
  EXPECT_EQ(VectorSymbol(Model::Symbol::ShapeCustom, 8).OrientShapes(layer.View(), 0, 1, data), 0u);
  reports.Clear();
  EXPECT_EQ(data.Vertices().data.get(), before);
  EXPECT_EQ(data.Vertices().count, 3 * 16u);

  VectorSymbol::Instances broken = layer.View();
  broken.positions = nullptr;
  EXPECT_EQ(cone.OrientShapes(broken, 0, 1, data), 0u);
  broken = layer.View();
  broken.rotations = nullptr;
  EXPECT_EQ(cone.OrientShapes(broken, 0, 1, data), 0u);
  broken = layer.View();
  broken.sizes = nullptr;
  EXPECT_EQ(cone.OrientShapes(broken, 0, 1, data), 0u);
  EXPECT_EQ(reports.Texts(), std::vector<std::string>(3, std::string("\"void*(obj)\" - ") + Count));
  EXPECT_EQ(data.Vertices().data.get(), before);
}

TEST(VectorSymbolLayer, WritesItsOwnArraysAgainWhenNobodyElseHoldsThem) {
  const VectorSymbol arrow(Model::Symbol::ShapeArrow3D, 8);
  const Layer layer(100);
  const Layer other = [] {
    Layer result(100);
    for (Vector3_Base<double>& position : result.positions)
      position = position * 2.0;
    return result;
  }();
  VertexData data;
  ASSERT_NE(arrow.OrientShapes(layer.View(), 0, 1, data), 0u);
  const void* const vertices = data.Vertices().data.get();
  const void* const indices = data.Indices().data.get();
  const boost::shared_ptr<const void> held = data.Normals().data;
  const Words held_words = WordsOf(data.Normals());
  data.PrimitiveType().ClearChanged();

  ASSERT_NE(arrow.OrientShapes(other.View(), 0, 1, data), 0u);
  ExpectSame(data, InstanceByInstance(arrow, other.View(), 0, 1), "again");
  EXPECT_EQ(data.Vertices().data.get(), vertices);
  EXPECT_EQ(data.Indices().data.get(), indices);
  EXPECT_NE(data.Normals().data, held) << "somebody holds the old one";
  EXPECT_EQ(std::memcmp(held.get(), held_words.data(), held_words.size() * 4), 0);
  EXPECT_FALSE(data.PrimitiveType().Changed());

  // Arrays of the host's may not even be writable, so they are never written.
  static const std::vector<float> constant(3 * data.Vertices().count, 7.f);
  data.SetVertices(boost::shared_ptr<const void>(constant.data(), [](const void*) {}), data.Vertices().count, 3,
                   VertexData::Float);
  ASSERT_NE(arrow.OrientShapes(layer.View(), 0, 1, data), 0u);
  EXPECT_NE(data.Vertices().data.get(), constant.data());
  EXPECT_EQ(constant, std::vector<float>(constant.size(), 7.f));

  // Another size takes new arrays, and what the new layer does not have goes.
  VectorSymbol::Instances fewer = layer.View();
  fewer.count = 50;
  fewer.tex_coords = nullptr;
  const VectorSymbol point;
  const std::size_t written = point.OrientShapes(fewer, 0, 1, data);
  EXPECT_EQ(data.Vertices().count, written);
  EXPECT_TRUE(data.TexCoords().Empty());
  EXPECT_TRUE(data.Indices().Empty());
  EXPECT_EQ(data.PrimitiveType().Value(), Ogl::VertexBuffer::Points);
}

TEST(VectorSymbolLayer, FillsTheCallersMemory) {
  const VectorSymbol sphere(Model::Symbol::ShapeSphere, 32);
  const Layer layer(300);
  LayerWords expected = InstanceByInstance(sphere, layer.View(), 0.5, 1);
  for (std::uint32_t& index : expected.indices)
    index += 1000;
  constexpr std::uint32_t Guard = 0xABCDEF01;
  for (const std::size_t misaligned : {0, 1, 3, 15}) {
    // what lies before and behind must stay as it is
    const auto guarded = [&](const Words& p_words) { return Words(p_words.size() + misaligned + 16, Guard); };
    Words vertices = guarded(expected.vertices);
    Words normals = guarded(expected.normals);
    Words tex_coords = guarded(expected.tex_coords);
    Words indices = guarded(expected.indices);
    const auto target = [&](Words& p_words, std::size_t p_count) {
      return VectorSymbol::Target<float>(reinterpret_cast<float*>(p_words.data() + misaligned), p_count);
    };
    VectorSymbol::LayerMemory memory;
    memory.vertices = target(vertices, expected.vertices.size());
    memory.normals = target(normals, expected.normals.size());
    memory.tex_coords = target(tex_coords, expected.tex_coords.size());
    memory.indices = {indices.data() + misaligned, expected.indices.size()};
    memory.first_vertex = 1000;
    ASSERT_EQ(sphere.OrientShapes(layer.View(), 0.5, 1, memory), expected.written);
    const auto same = [&](const Words& p_words, const Words& p_expected) {
      Words framed(misaligned, Guard);
      framed.insert(framed.end(), p_expected.begin(), p_expected.end());
      framed.insert(framed.end(), 16, Guard);
      return p_words == framed;
    };
    EXPECT_TRUE(same(vertices, expected.vertices)) << misaligned;
    EXPECT_TRUE(same(normals, expected.normals)) << misaligned;
    EXPECT_TRUE(same(tex_coords, expected.tex_coords)) << misaligned;
    EXPECT_TRUE(same(indices, expected.indices)) << misaligned;
  }
}

TEST(VectorSymbolLayer, RefusesMemoryThatIsTooSmall) {
  const VectorSymbol cone(Model::Symbol::ShapeCone, 4); // 8 vertices, 12 indices
  const Layer layer(3);
  std::vector<float> floats(72, -1.f);
  std::vector<unsigned int> numbers(36, 5);
  const auto full = [&] {
    VectorSymbol::LayerMemory memory;
    memory.vertices = memory.normals = {floats.data(), 72};
    memory.tex_coords = {floats.data(), 24};
    memory.indices = {numbers.data(), 36};
    return memory;
  };
  ReportCapture reports;
  const auto refused = [&](const VectorSymbol::LayerMemory& p_memory) {
    reports.Clear();
    EXPECT_EQ(cone.OrientShapes(layer.View(), 0, 1, p_memory), 0u);
    EXPECT_EQ(floats, std::vector<float>(72, -1.f));
    EXPECT_EQ(numbers, std::vector<unsigned int>(36, 5));
    return reports.Texts();
  };
  const auto report = [](const std::string& p_expression, const char* p_signature) {
    return std::vector<std::string>{"\"" + p_expression + "\" - " + p_signature};
  };
  VectorSymbol::LayerMemory memory = full();
  memory.vertices.count = 71;
  EXPECT_EQ(refused(memory), report("p_memory.vertices.count >= 3 * vertices", Orient));
  memory = full();
  memory.normals.count = 71;
  EXPECT_EQ(refused(memory), report("p_memory.normals.count >= 3 * vertices", Orient));
  memory = full();
  memory.tex_coords.count = 23;
  EXPECT_EQ(refused(memory), report("p_memory.tex_coords.count >= vertices", Orient));
  memory = full();
  memory.indices.count = 35;
  EXPECT_EQ(refused(memory), report("p_memory.indices.count >= indices", Orient));
  memory = full();
  memory.first_vertex = std::numeric_limits<unsigned int>::max() - 22;
  EXPECT_EQ(refused(memory), report("shown * VertexCount() <= max_index - first_vertex", Count));

  // Attributes without memory are left out.
  reports.Clear();
  memory = {};
  memory.indices = {numbers.data(), 36};
  EXPECT_EQ(cone.OrientShapes(layer.View(), 0, 1, memory), 3u);
  EXPECT_EQ(numbers[35], 16u + 7);
  EXPECT_EQ(floats, std::vector<float>(72, -1.f));
  EXPECT_TRUE(reports.Texts().empty());
}

class VectorSymbolLayerCalls : public Vek::Test::RecordingFixture {};

TEST_F(VectorSymbolLayerCalls, FillsMappedBuffersAndReportsThoseThatAreNot) {
  using Position = Ogl::Attribute<Ogl::Vec3<float>>;
  using Index = Ogl::Attribute<Ogl::Vec1<unsigned int>>;
  const VectorSymbol arrow(Model::Symbol::ShapeArrow3D, 8);
  const Layer layer(20);
  const LayerWords expected = InstanceByInstance(arrow, layer.View(), 0, 1);
  const Utility::Scoped<Rgl> gl(recorder.Handle());
  const auto positions =
      gl->GetBufferPool().CreateBuffer<Position>(expected.vertices.size() / 3, Ogl::BufferUsage::Default);
  const auto indices = gl->GetBufferPool().CreateBuffer<Index>(expected.indices.size(), Ogl::BufferUsage::Default);
  {
    const Ogl::BufferPool::WriteArray<Position> vertex_array(positions, 0, positions.Count(), RGL_ARRAY_BUFFER);
    const Ogl::BufferPool::WriteArray<Index> index_array(indices, 0, indices.Count(), RGL_ELEMENT_ARRAY_BUFFER);
    VectorSymbol::LayerMemory memory;
    memory.vertices = vertex_array;
    memory.indices = index_array;
    EXPECT_EQ(arrow.OrientShapes(layer.View(), 0, 1, memory), expected.written);
  }
  const auto words = [&](unsigned int p_buffer) {
    const std::vector<unsigned char> bytes = recorder.BufferBytes(p_buffer);
    Words result(bytes.size() / 4);
    std::memcpy(result.data(), bytes.data(), bytes.size());
    return result;
  };
  EXPECT_TRUE(words(positions.Name()) == expected.vertices);
  EXPECT_TRUE(words(indices.Name()) == expected.indices);

  const ReportCapture reports;
  const Ogl::BufferPool::WriteArray<Position> outside(positions, 1, positions.Count(), RGL_ARRAY_BUFFER);
  VectorSymbol::LayerMemory memory;
  memory.vertices = outside;
  EXPECT_EQ(arrow.OrientShapes(layer.View(), 0, 1, memory), 0u);
  ASSERT_FALSE(reports.Texts().empty());
  EXPECT_EQ(reports.Texts().back(), std::string("\"p_memory.vertices.count >= 3 * vertices\" - ") + Orient);
}
