#include "library/VectorSymbol.h"

#include "tests/support/Surface.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Model::Symbol;
using Ogl::VertexData;
using Types::Matrix3;

namespace {

using Points = std::vector<Vector>;
using Indices = std::vector<unsigned int>;

Surface Built(const VectorSymbol& p_symbol) {
  VertexData data;
  EXPECT_TRUE(p_symbol.BuildShape(data));
  return SurfaceOf(data);
}

void ExpectNear(const Points& p_actual, const Points& p_expected, const std::string& p_what,
                double p_tolerance = 1e-7) {
  ASSERT_EQ(p_actual.size(), p_expected.size()) << p_what;
  for (std::size_t i = 0; i < p_actual.size(); ++i)
    EXPECT_LE(Length(p_actual[i] - p_expected[i]), p_tolerance) << p_what << ", element " << i;
}

const std::string OfShape = "(const enum Vek::Chart::Model::Symbol::Shape) ";
const std::string Method = "void __cdecl Vek::Chart::Library::VectorSymbol::";

// Points of the circle that the small meshes below are written with.
constexpr float T = 1.f / 3; // a third
constexpr float N = 1.f / 9; // a ninth
constexpr float H = 0.5f;

// clang-format off
/// All but the circular arrow, of four segments where they are round.
const std::tuple<const char*, Shape, Points, Indices> SmallMeshes[] = {
    {"point", ShapePoint, {{0, 0, 0}}, {}},
    {"line chevron", ShapeArrowHead1D, {{0, 0, 1}, {-T, 0, 0}, {T, 0, 0}}, {1, 0, 2, 0}},
    {"line arrow", ShapeArrow1D, {{0, 0, 0}, {0, 0, 3}, {-T, 0, 2}, {T, 0, 2}}, {0, 1, 2, 1, 3, 1}},
    {"flat head", ShapeArrowHead2D, {{0, 0, 1}, {-T, 0, 0}, {T, 0, 0}}, {0, 2, 1}},
    {"flat arrow", ShapeArrow2D,
     {{0, 0, 3}, {-T, 0, 2}, {T, 0, 2}, {-N, 0, 0}, {N, 0, 0}, {-N, 0, 2}, {N, 0, 2}}, {0, 2, 1, 3, 5, 6, 3, 6, 4}},
    {"plane", ShapePlane, {{-H, -H, 0}, {H, -H, 0}, {H, H, 0}, {-H, H, 0}}, {0, 1, 2, 0, 2, 3}},
    {"solid head", ShapeArrowHead3D,
     {{0, 0, 0}, {T, 0, 0}, {T, 0, 0}, {0, 0, 1}, {0, T, 0}, {0, T, 0}, {0, 0, 1},
      {-T, 0, 0}, {-T, 0, 0}, {0, 0, 1}, {0, -T, 0}, {0, -T, 0}, {0, 0, 1}},
     {0, 4, 1, 2, 5, 3, 0, 7, 4, 5, 8, 6, 0, 10, 7, 8, 11, 9, 0, 1, 10, 11, 2, 12}},
    {"solid arrow", ShapeArrow3D,
     {{0, 0, 0},
      {N, 0, 0}, {N, 0, 0}, {N, 0, 2}, {N, 0, 2}, {T, 0, 2}, {T, 0, 2}, {0, 0, 3},
      {0, N, 0}, {0, N, 0}, {0, N, 2}, {0, N, 2}, {0, T, 2}, {0, T, 2}, {0, 0, 3},
      {-N, 0, 0}, {-N, 0, 0}, {-N, 0, 2}, {-N, 0, 2}, {-T, 0, 2}, {-T, 0, 2}, {0, 0, 3},
      {0, -N, 0}, {0, -N, 0}, {0, -N, 2}, {0, -N, 2}, {0, -T, 2}, {0, -T, 2}, {0, 0, 3}},
     {0, 8, 1, 2, 9, 10, 2, 10, 3, 5, 11, 12, 5, 4, 11, 6, 13, 7,
      0, 15, 8, 9, 16, 17, 9, 17, 10, 12, 18, 19, 12, 11, 18, 13, 20, 14,
      0, 22, 15, 16, 23, 24, 16, 24, 17, 19, 25, 26, 19, 18, 25, 20, 27, 21,
      0, 1, 22, 23, 2, 3, 23, 3, 24, 26, 4, 5, 26, 25, 4, 27, 6, 28}},
    {"cylinder", ShapeCylinder,
     {{H, 0, -H}, {H, 0, H}, {0, H, -H}, {0, H, H}, {-H, 0, -H}, {-H, 0, H}, {0, -H, -H}, {0, -H, H}},
     {0, 2, 1, 1, 2, 3, 2, 4, 3, 3, 4, 5, 4, 6, 5, 5, 6, 7, 6, 0, 7, 7, 0, 1}},
    {"cone", ShapeCone,
     {{H, 0, 0}, {0, 0, 1}, {0, H, 0}, {0, 0, 1}, {-H, 0, 0}, {0, 0, 1}, {0, -H, 0}, {0, 0, 1}},
     {0, 2, 1, 2, 4, 3, 4, 6, 5, 6, 0, 7}},
    {"crosshair", ShapeCrosshair,
     {{-H, 0, 0}, {H, 0, 0}, {0, -H, 0}, {0, H, 0}, {0, 0, -H}, {0, 0, H}}, {0, 1, 2, 3, 4, 5}},
    {"cube", ShapeCube,
     {{-H, -H, H}, {H, -H, H}, {H, H, H}, {-H, H, H}, {H, -H, -H}, {-H, -H, -H}, {-H, H, -H}, {H, H, -H},
      {-H, H, -H}, {-H, -H, -H}, {-H, -H, H}, {-H, H, H}, {H, -H, -H}, {H, H, -H}, {H, H, H}, {H, -H, H},
      {-H, -H, -H}, {H, -H, -H}, {H, -H, H}, {-H, -H, H}, {H, H, -H}, {-H, H, -H}, {-H, H, H}, {H, H, H}},
     {0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7, 8, 9, 10, 8, 10, 11,
      12, 13, 14, 12, 14, 15, 16, 17, 18, 16, 18, 19, 20, 21, 22, 20, 22, 23}},
    {"sphere", ShapeSphere, {{0, 0, -H}, {0, 0, H}, {H, 0, 0}, {0, H, 0}, {-H, 0, 0}, {0, -H, 0}},
     {0, 3, 2, 0, 4, 3, 0, 5, 4, 0, 2, 5, 2, 3, 1, 3, 4, 1, 4, 5, 1, 5, 2, 1}},
};
// clang-format on

/// The mean of the unit normals of the triangles around each vertex.
Points MeanNormals(const Surface& p_mesh) {
  Points sums(p_mesh.positions.size());
  for (std::size_t i = 0; i < p_mesh.indices.size(); i += 3) {
    const Vector first = p_mesh.Corner(i);
    const Vector face = Normalize(Cross(p_mesh.Corner(i + 1) - first, p_mesh.Corner(i + 2) - first));
    for (std::size_t k = i; k < i + 3; ++k)
      sums[p_mesh.indices[k]] += face;
  }
  for (Vector& sum : sums)
    sum = Normalize(sum);
  return sums;
}

// The rule, one rounded operation at a time.
Vector Oriented(const Vector& p_vertex, double p_shift, double p_factor, const Vector& p_position,
                const Matrix3& p_rotation) {
  const double x = p_vertex.x * p_factor, y = p_vertex.y * p_factor, z = (p_vertex.z - p_shift) * p_factor;
  const auto turned = [&](std::size_t p_row, double p_offset) {
    const Vector row = p_rotation.Row(p_row);
    const double a = row.x * x, b = row.y * y, c = row.z * z;
    return double(float(((a + b) + c) + p_offset));
  };
  return {turned(0, p_position.x), turned(1, p_position.y), turned(2, p_position.z)};
}

const Vector Origin(0, 0, 0);

} // namespace

TEST(VectorSymbolMesh, SmallMeshesAreWrittenOut) {
  for (const auto& [name, shape, vertices, indices] : SmallMeshes) {
    const Surface mesh = Built(VectorSymbol(shape, 4));
    ExpectNear(mesh.positions, vertices, name);
    EXPECT_EQ(mesh.indices, indices) << name;
  }
}

TEST(VectorSymbolMesh, SolidsAreClosedAndFaceOutward) {
  const struct {
    const char* name;
    Shape shape;
    double volumes[3]; // of 4, 8 and 40 segments, from the areas of polygons and the volumes of frustums
  } rows[] = {
      {"solid head", ShapeArrowHead3D, {0.074074074, 0.104756560, 0.115877382}},
      {"solid arrow", ShapeArrow3D, {0.123456790, 0.174594267, 0.193128969}},
      {"cube", ShapeCube, {1, 1, 1}},
      {"sphere", ShapeSphere, {1.0 / 6, 0.402368927, 0.518238270}},
      {"circular arrow", ShapeCircularArrow3D, {0.27, 0.369411255, 0.402699425}},
  };
  for (const auto& row : rows)
    for (const unsigned int resolution : {0u, 7u, 8u, 11u, 40u, 43u}) { // rounded down to whole quarters
      const Surface mesh = Built(VectorSymbol(row.shape, resolution));
      EXPECT_TRUE(IsClosed(mesh)) << row.name << " of " << resolution;
      const double volume = row.volumes[resolution < 8 ? 0 : resolution < 40 ? 1 : 2];
      EXPECT_NEAR(EnclosedVolume(mesh), volume, 1e-6) << row.name << " of " << resolution;
    }
}

TEST(VectorSymbolMesh, NormalsAreTheMeanOfTheFacesAround) {
  for (int shape = ShapePoint; shape <= ShapeSphere; ++shape)
    for (const unsigned int resolution : {8u, 24u}) {
      const VectorSymbol symbol(static_cast<Shape>(shape), resolution);
      const Surface mesh = Built(symbol);
      EXPECT_TRUE(symbol.VertexCount() == mesh.positions.size() && symbol.IndexCount() == mesh.indices.size());
      const bool triangles = symbol.GeometryDefinedAs() == VectorSymbol::TopologyTriangles;
      ExpectNear(mesh.normals, triangles ? MeanNormals(mesh) : Points(mesh.positions.size(), {0, 1, 0}),
                 "shape " + std::to_string(shape), 2e-6);
    }
}

TEST(VectorSymbolMesh, TheCircularArrowIsARingOfThreeQuarters) {
  const float d = 0.5f / std::sqrt(2.f);
  // clang-format off
  const Points face = {
      {d, d, H}, {1.2f * d, 1.2f * d, H}, {0.4f * d, 1.2f * d, H}, {0.4f * d, 0.4f * d, H}, {0.6f * d, 0.6f * d, H},
      {d, d, H}, {0.6f * d, 0.6f * d, H}, {d, -d, H}, {0.6f * d, -0.6f * d, H}, // the band
      {-d, -d, H}, {-0.6f * d, -0.6f * d, H}, {-d, d, H}, {-0.6f * d, 0.6f * d, H},
      {-d, 0.6f * d, H}, // the notch of the tail
  };
  // clang-format on
  const Indices triangles = {2, 0, 1, 2, 4, 0,  2,  3, 4,  7,  5, 6,  7,  6,  8,
                             9, 7, 8, 9, 8, 10, 11, 9, 13, 13, 9, 10, 13, 10, 12};
  const Surface mesh = Built(VectorSymbol(ShapeCircularArrow3D, 4));
  const auto vertex = mesh.positions.begin();
  const auto indices = [&mesh](std::size_t p_begin, std::size_t p_end) {
    return Indices(mesh.indices.begin() + p_begin, mesh.indices.begin() + p_end);
  };
  const std::size_t f = face.size(), t = triangles.size();
  ExpectNear({vertex, vertex + f}, face, "front");
  EXPECT_EQ(indices(0, t), triangles);
  for (std::size_t i = 0; i < f; ++i)
    EXPECT_EQ(vertex[f + i], Vector(vertex[i].x, vertex[i].y, -H));
  // the back, then the walls of the head's first edge, the band's second step and the tail
  ASSERT_EQ(mesh.indices.size(), t + 102);
  EXPECT_EQ(indices(t, t + 3), (Indices{16, 15, 14}));
  EXPECT_EQ(indices(t + 30, t + 36), (Indices{28, 30, 31, 28, 31, 29}));
  EXPECT_EQ(indices(t + 54, t + 66), (Indices{48, 44, 45, 48, 45, 49, 50, 51, 47, 50, 47, 46}));
  EXPECT_EQ(indices(t + 90, t + 102), (Indices{62, 64, 63, 63, 64, 65, 66, 60, 67, 60, 61, 67}));
  EXPECT_EQ(vertex[29], vertex[0]);
  EXPECT_EQ(vertex[66], vertex[27]);
}

TEST(VectorSymbol, AnswersByShape) {
  const ReportCapture reports;
  const Ogl::VertexBuffer::PrimitiveType primitives[] = {Ogl::VertexBuffer::Points, Ogl::VertexBuffer::LineSegments,
                                                         Ogl::VertexBuffer::Triangles};
  const std::string topologies = "?01122222222122"; // by shape
  for (int shape = ShapePoint; shape <= ShapeSphere; ++shape) {
    SCOPED_TRACE(shape);
    const VectorSymbol symbol(static_cast<Shape>(shape), 8);
    const int topology = topologies[std::size_t(shape)] - '0';
    EXPECT_EQ(symbol.GeometryDefinedAs(), static_cast<VectorSymbol::TopologyType>(topology));
    EXPECT_EQ(symbol.IsDirectionalSymbol(), shape >= ShapeArrowHead1D && shape <= ShapeCone);
    EXPECT_EQ(symbol.HasPoints(), shape == ShapePoint);
    EXPECT_EQ(symbol.HasNormals(), shape != ShapePoint && shape != ShapeCrosshair);
    VertexData data;
    symbol.BuildShape(data);
    EXPECT_EQ(data.PrimitiveType().Value(), primitives[topology]);
  }
  EXPECT_EQ(Built(VectorSymbol()).positions, Points{Origin});
  EXPECT_TRUE(reports.Texts().empty());
}

TEST(VectorSymbol, ReportsWhatItCannotBuildAndStaysEmpty) {
  const std::string directional = "bool __cdecl `anonymous-namespace'::IsDirectionalShape" + OfShape + "@line92";
  const std::string defined = "enum Vek::Chart::Library::VectorSymbol::TopologyType __cdecl "
                              "`anonymous-namespace'::GeometryDefinedAs" +
                              OfShape;
  const std::string predefined = Method + "BuildPredefinedShape" + OfShape + "@line977";
  const std::string custom =
      "\"p_shape != Model::Symbol::ShapeCustom\" - __cdecl Vek::Chart::Library::VectorSymbol::VectorSymbol(const enum "
      "Vek::Chart::Model::Symbol::Shape,const unsigned int)";
  const std::vector<std::string> unknown = {defined + "@line124", predefined};
  const std::pair<int, std::vector<std::string>> rows[] = {
      {ShapeCustom, {directional, defined + "@line122", defined + "@line124", custom, predefined}},
      {0, unknown},
      {16, unknown},
      {-1, unknown}};
  for (const auto& [shape, texts] : rows) {
    ReportCapture reports;
    VectorSymbol symbol(static_cast<Shape>(shape), 8);
    EXPECT_EQ(reports.Texts(), texts) << shape;
    EXPECT_TRUE(symbol.HasPoints() && !symbol.IsDirectionalSymbol()) << shape;
    EXPECT_EQ(symbol.GeometryDefinedAs(), VectorSymbol::TopologyPoints) << shape;
    VertexData data;
    EXPECT_FALSE(symbol.BuildShape(data)) << shape;
    EXPECT_FALSE(symbol.OrientShape(1, 0, Origin, true, 0, 1, Matrix3(), data)) << shape;
    EXPECT_TRUE(data.Vertices().Empty() && !data.PrimitiveType().Defined()) << shape;
  }
}

TEST(VectorSymbolOrient, GivesTheFloatsOfTheRule) {
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
    // Shapes without normals have their default turned as well.
    ASSERT_TRUE(VectorSymbol().OrientShape(size, anchor, position, false, 0, scale, rotation, data));
    EXPECT_EQ(SurfaceOf(data).normals, Points{Oriented(up, 0, 1, Origin, rotation)});
  }
}

TEST(VectorSymbolOrient, SizesThatAreNotPositiveWriteNothingButNaNPasses) {
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

TEST(VectorSymbolOrient, HandsOverNewArraysAndMarksThePrimitiveOnlyWhenItChanges) {
  const VectorSymbol cone(ShapeCone, 8), chevron(ShapeArrowHead1D, 8);
  VertexData data;
  ASSERT_TRUE(cone.OrientShape(1, 0, Origin, true, 0.5, 1, Matrix3(), data));
  EXPECT_TRUE(data.PrimitiveType().Changed());
  const VertexData::Array vertices = data.Vertices();
  const Points before = VectorsOf(vertices);
  data.PrimitiveType().ClearChanged();
  ASSERT_TRUE(cone.OrientShape(2, 0, Origin, false, 0, 1, Matrix3(), data));
  EXPECT_FALSE(data.PrimitiveType().Changed());
  EXPECT_NE(data.Vertices().data, vertices.data);
  EXPECT_EQ(VectorsOf(vertices), before) << "arrays handed over earlier stay as they are";
  EXPECT_EQ(data.TexCoords().count, 16u) << "not written, so left";
  ASSERT_TRUE(chevron.BuildShape(data));
  EXPECT_TRUE(data.PrimitiveType().Changed());

  // A value that is there but not set is assigned even if it is the same.
  VertexData preset;
  preset.PrimitiveType() = Types::Property<Ogl::VertexBuffer::PrimitiveType>(Ogl::VertexBuffer::Triangles, 0);
  ASSERT_TRUE(cone.BuildShape(preset));
  EXPECT_TRUE(preset.PrimitiveType().Changed() && preset.PrimitiveType().Defined());
}
