#include "library/VectorSymbol.h"

#include "testing/Surface.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Model::Symbol;
using Ogl::VertexData;
using Types::Matrix3;

namespace {

using Vector = Surface::Vector;
using Points = std::vector<Vector>;

Surface Built(const VectorSymbol& p_symbol) {
  VertexData data;
  EXPECT_TRUE(p_symbol.BuildShape(data));
  return SurfaceOf(data);
}

namespace Signature {
const std::string Class = "Vek::Chart::Library::VectorSymbol::";
const std::string Shape = "const enum Vek::Chart::Model::Symbol::Shape";
const std::string IsDirectionalShape = "bool __cdecl `anonymous-namespace'::IsDirectionalShape(" + Shape + ")";
const std::string GeometryDefinedAs =
    "enum " + Class + "TopologyType __cdecl `anonymous-namespace'::GeometryDefinedAs(" + Shape + ")";
const std::string Constructor = "__cdecl " + Class + "VectorSymbol(" + Shape + ",const unsigned int)";
const std::string BuildPredefinedShape = "void __cdecl " + Class + "BuildPredefinedShape(" + Shape + ")";
} // namespace Signature

/// A vertex of OrientShape, one rounded operation at a time.
Vector Oriented(const Vector& p_vertex, double p_shift, double p_factor, const Vector& p_position,
                const Matrix3& p_rotation) {
  const double x = p_vertex.x * p_factor, y = p_vertex.y * p_factor, z = (p_vertex.z - p_shift) * p_factor;
  const auto rotated = [&](std::size_t p_row, double p_offset) {
    const Vector row = p_rotation.Row(p_row);
    const double a = row.x * x, b = row.y * y, c = row.z * z;
    return double(float(((a + b) + c) + p_offset));
  };
  return {rotated(0, p_position.x), rotated(1, p_position.y), rotated(2, p_position.z)};
}

const Vector Origin(0, 0, 0);

} // namespace

TEST(VectorSymbolMesh, SolidsAreClosedAndFaceOutward) {
  // For 4, 8 and 40 segments, from the areas of polygons and the volumes of frustums.
  const std::pair<Shape, std::array<double, 3>> rows[] = {
      {ShapeArrowHead3D, {0.074074074, 0.104756560, 0.115877382}},
      {ShapeArrow3D, {0.123456790, 0.174594267, 0.193128969}},
      {ShapeCube, {1, 1, 1}},
      {ShapeSphere, {1.0 / 6, 0.402368927, 0.518238270}},
      {ShapeCircularArrow3D, {0.27, 0.369411255, 0.402699425}},
  };
  for (const auto& [shape, volumes] : rows)
    for (const unsigned int resolution : {0u, 7u, 8u, 11u, 40u, 43u}) { // rounded down to whole quarters
      SCOPED_TRACE("shape " + std::to_string(shape) + " of " + std::to_string(resolution));
      const Surface mesh = Built(VectorSymbol(shape, resolution));
      EXPECT_TRUE(IsClosed(mesh));
      EXPECT_NEAR(EnclosedVolume(mesh), volumes[resolution < 8 ? 0 : resolution < 40 ? 1 : 2], 1e-6);
      for (const Vector& normal : mesh.normals)
        EXPECT_NEAR(Length(normal), 1, 1e-6);
    }
}

TEST(VectorSymbol, PropertiesOfShapes) {
  const ReportCapture reports;
  using Primitives = Ogl::VertexBuffer;
  const Primitives::PrimitiveType primitives[] = {Primitives::Points, Primitives::LineSegments, Primitives::Triangles};
  const std::string topologies = "?01122222222122"; // by shape
  const std::string lengths = "?01313113111111";
  for (int shape = ShapePoint; shape <= ShapeSphere; ++shape) {
    SCOPED_TRACE(shape);
    const VectorSymbol symbol(static_cast<Shape>(shape), 8);
    const int topology = topologies[std::size_t(shape)] - '0';
    EXPECT_EQ(symbol.GeometryDefinedAs(), static_cast<VectorSymbol::TopologyType>(topology));
    EXPECT_EQ(symbol.IsDirectionalSymbol(), shape >= ShapeArrowHead1D && shape <= ShapeCone);
    EXPECT_EQ(symbol.HasPoints(), shape == ShapePoint);
    EXPECT_EQ(symbol.Length(), lengths[std::size_t(shape)] - '0');
    EXPECT_EQ(symbol.HasNormals(), shape != ShapePoint && shape != ShapeCrosshair);
    VertexData data;
    symbol.BuildShape(data);
    EXPECT_EQ(data.PrimitiveType().Value(), primitives[topology]);
    const Surface mesh = SurfaceOf(data);
    EXPECT_TRUE(symbol.VertexCount() == mesh.positions.size() && symbol.IndexCount() == mesh.indices.size());
    if (topology < 2) {
      EXPECT_EQ(mesh.normals, Points(mesh.positions.size(), {0, 1, 0}));
    }
  }
  EXPECT_EQ(Built(VectorSymbol()).positions, Points{Origin});
  EXPECT_TRUE(reports.Texts().empty());
}

TEST(VectorSymbol, UnknownShapesAreReportedAndEmpty) {
  const std::string defined = Signature::GeometryDefinedAs + " @line";
  const std::string predefined = Signature::BuildPredefinedShape + " @line977";
  const std::string custom = "\"p_shape != Model::Symbol::ShapeCustom\" - " + Signature::Constructor;
  const Texts unknown = {defined + "124", predefined};
  const std::pair<int, Texts> rows[] = {
      {ShapeCustom, {Signature::IsDirectionalShape + " @line92", defined + "122", defined + "124", custom, predefined}},
      {0, unknown},
      {16, unknown},
      {-1, unknown}};
  for (const auto& [shape, texts] : rows) {
    ReportCapture reports;
    VectorSymbol symbol(static_cast<Shape>(shape), 8);
    EXPECT_EQ(reports.Texts(), texts) << shape;
    EXPECT_TRUE(symbol.HasPoints() && !symbol.IsDirectionalSymbol() && symbol.Length() == 0) << shape;
    EXPECT_EQ(symbol.GeometryDefinedAs(), VectorSymbol::TopologyPoints) << shape;
    VertexData data;
    EXPECT_FALSE(symbol.BuildShape(data)) << shape;
    EXPECT_FALSE(symbol.OrientShape(1, 0, Origin, true, 0, 1, Matrix3(), data)) << shape;
    EXPECT_TRUE(data.Vertices().Empty() && !data.PrimitiveType().Defined()) << shape;
  }
}

TEST(VectorSymbol, NoMemoryHoldsTheLargestSphere) {
  EXPECT_THROW(VectorSymbol(ShapeSphere, 2000000000), std::bad_alloc);
}

TEST(VectorSymbolOrient, FloatsOfTheFormula) {
  const VectorSymbol arrow(ShapeArrow2D, 12);
  constexpr double Long = 3, T = 0.3333333333333333, N = 0.1111111111111111;
  const Vector up(0, 1, 0);
  const Points vertices = {{0, 0, Long}, {-T, 0, 2}, {T, 0, 2}, {-N, 0, 0}, {N, 0, 0}, {-N, 0, 2}, {N, 0, 2}};
  for (unsigned int seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(-3.0, 3.0), positive(0.001, 1000.0);
    const auto vector = [&] { return Vector(any(random), any(random), any(random)); };
    const Matrix3 rotation(vector(), vector(), vector());
    const Vector position = vector() * positive(random);
    const double size = positive(random), anchor = any(random), scale = positive(random);
    VertexData data;
    ASSERT_TRUE(arrow.OrientShape(size, anchor, position, true, 0.1, scale, rotation, data));
    Points expected;
    for (const Vector& vertex : vertices)
      expected.push_back(Oriented(vertex, anchor * Long, size * scale, position, rotation));
    const Surface mesh = SurfaceOf(data);
    EXPECT_EQ(mesh.positions, expected);
    EXPECT_EQ(mesh.normals, Points(7, Oriented(up, 0, 1, Origin, rotation)));
    EXPECT_EQ(mesh.indices, Built(arrow).indices);
    const VertexData::Array& coords = data.TexCoords();
    ASSERT_TRUE(coords.type == VertexData::Float && coords.components == 1);
    EXPECT_EQ(std::vector<float>(coords.As<float>(), coords.As<float>() + coords.count), std::vector<float>(7, 0.1f));
    // The default normal is rotated, too.
    ASSERT_TRUE(VectorSymbol().OrientShape(size, anchor, position, false, 0, scale, rotation, data));
    EXPECT_EQ(SurfaceOf(data).normals, Points{Oriented(up, 0, 1, Origin, rotation)});
  }
}

TEST(VectorSymbolOrient, NonPositiveSizesWriteNothingNaNPasses) {
  const VectorSymbol cone(ShapeCone, 8);
  const double tiny = std::numeric_limits<double>::denorm_min();
  const std::pair<double, double> refused[] = {{0, 1}, {1, 0}, {-1, 1}, {1, -2}, {tiny, 0.25}};
  for (const auto& [size, scale] : refused) {
    VertexData data;
    EXPECT_FALSE(cone.OrientShape(size, 0, Origin, true, 1, scale, Matrix3(), data)) << size << " * " << scale;
    EXPECT_TRUE(data.Vertices().Empty() && data.Indices().Empty() && !data.PrimitiveType().Defined());
  }
  VertexData data;
  EXPECT_TRUE(cone.OrientShape(-1, 0, Origin, false, 0, -1, Matrix3(), data)) << "the product counts";
  EXPECT_TRUE(cone.OrientShape(NAN, 0, Origin, true, 1, 1, Matrix3(), data));
  for (const Vector& vertex : SurfaceOf(data).positions)
    EXPECT_TRUE(std::isnan(vertex.x) && std::isnan(vertex.y) && std::isnan(vertex.z));
  EXPECT_EQ(SurfaceOf(data).normals, Built(cone).normals);
}

TEST(VectorSymbolOrient, NewArraysEachTimeChangedPrimitiveMarked) {
  const VectorSymbol cone(ShapeCone, 8), chevron(ShapeArrowHead1D, 8);
  VertexData data;
  ASSERT_TRUE(cone.OrientShape(1, 0, Origin, true, 0.5, 1, Matrix3(), data));
  EXPECT_TRUE(data.PrimitiveType().Changed());
  const VertexData::Array vertices = data.Vertices();
  const Points before = VectorsOf(vertices);
  data.PrimitiveType().ClearChanged();
  ASSERT_TRUE(cone.OrientShape(2, 0, Origin, false, 0, 1, Matrix3(), data));
  EXPECT_FALSE(data.PrimitiveType().Changed());
  EXPECT_EQ(VectorsOf(vertices), before) << "earlier arrays stay unchanged";
  EXPECT_EQ(data.TexCoords().count, 16u) << "stays";
  ASSERT_TRUE(chevron.BuildShape(data));
  EXPECT_TRUE(data.PrimitiveType().Changed());
}
