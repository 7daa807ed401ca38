#include "library/VectorSymbol.h"

#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace Vek::Chart;
using namespace Vek::Chart::Model::Symbol;
using Library::VectorSymbol;
using Ogl::VertexData;
using Types::Matrix3;
using Types::Vector3_Base;
using Vek::Test::ReportCapture;

namespace {

using Point = std::array<float, 3>;
using Indices = std::vector<unsigned int>;

/// What a glyph wrote, read back from the arrays that it handed over.
struct Mesh {
  std::vector<Point> vertices;
  std::vector<Point> normals;
  Indices indices;
};

std::vector<Point> Points(const VertexData::Array& p_array) {
  EXPECT_EQ(p_array.components, 3u);
  EXPECT_EQ(p_array.type, VertexData::Float);
  std::vector<Point> points;
  for (std::size_t i = 0; i < p_array.count; ++i) {
    const float* p = p_array.As<float>() + 3 * i;
    points.push_back({p[0], p[1], p[2]});
  }
  return points;
}

Mesh MeshOf(const VertexData& p_data) {
  const VertexData::Array& indices = p_data.Indices();
  EXPECT_TRUE(indices.Empty() || indices.type == VertexData::UnsignedInt);
  const unsigned int* const first = indices.As<unsigned int>();
  return {Points(p_data.Vertices()), Points(p_data.Normals()), Indices(first, first + indices.count)};
}

Mesh Built(const VectorSymbol& p_symbol) {
  VertexData data;
  EXPECT_TRUE(p_symbol.BuildShape(data));
  return MeshOf(data);
}

void ExpectNear(const std::vector<Point>& p_actual, const std::vector<Point>& p_expected, const std::string& p_what,
                double p_tolerance = 1e-7) {
  ASSERT_EQ(p_actual.size(), p_expected.size()) << p_what;
  for (std::size_t i = 0; i < p_actual.size(); ++i)
    for (int axis = 0; axis < 3; ++axis)
      EXPECT_NEAR(p_actual[i][axis], p_expected[i][axis], p_tolerance)
          << p_what << ", element " << i << ", axis " << axis;
}

const std::string OfShape = "(const enum Vek::Chart::Model::Symbol::Shape) ";
const std::string Method = "void __cdecl Vek::Chart::Library::VectorSymbol::";

// Points of the circle that the small meshes below are written with.
constexpr float T = 1.f / 3; // a third
constexpr float N = 1.f / 9; // a ninth
constexpr float H = 0.5f;

struct SmallMesh {
  const char* name;
  Shape shape;
  std::vector<Point> vertices;
  Indices indices;
};

// clang-format off
/// All but the circular arrow, of four segments where they are round.
const SmallMesh SmallMeshes[] = {
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

/// Reaches the private builders: the constructor never calls them with some of the values that they report.
template <class Tag, typename Tag::Type Member>
struct Opened {
  friend typename Tag::Type Get(Tag) { return Member; }
};
struct ArrowBuilder {
  using Type = void (VectorSymbol::*)(Shape);
  friend Type Get(ArrowBuilder);
};
struct RingBuilder {
  using Type = void (VectorSymbol::*)(Shape);
  friend Type Get(RingBuilder);
};
template struct Opened<ArrowBuilder, &VectorSymbol::BuildShapeArrow>;
template struct Opened<RingBuilder, &VectorSymbol::BuildCircularArrow>;

/// Whether each edge is walked as often from one place to the other as back.
bool IsClosed(const Mesh& p_mesh) {
  std::map<std::pair<Point, Point>, int> edges;
  for (std::size_t i = 0; i < p_mesh.indices.size(); ++i) {
    const Point& a = p_mesh.vertices[p_mesh.indices[i]];
    const Point& b = p_mesh.vertices[p_mesh.indices[i % 3 == 2 ? i - 2 : i + 1]];
    edges[std::minmax(a, b)] += a < b ? 1 : -1;
  }
  return std::all_of(edges.begin(), edges.end(), [](const auto& p_edge) { return p_edge.second == 0; });
}

Vector3_Base<double> Corner(const Mesh& p_mesh, std::size_t p_index) {
  const Point& p = p_mesh.vertices[p_mesh.indices[p_index]];
  return {p[0], p[1], p[2]};
}

double EnclosedVolume(const Mesh& p_mesh) {
  double six_volumes = 0;
  for (std::size_t i = 0; i < p_mesh.indices.size(); i += 3)
    six_volumes += Dot(Corner(p_mesh, i), Cross(Corner(p_mesh, i + 1), Corner(p_mesh, i + 2)));
  return six_volumes / 6;
}

/// The mean of the unit normals of the triangles around each vertex.
std::vector<Point> MeanNormals(const Mesh& p_mesh) {
  std::vector<Vector3_Base<double>> sums(p_mesh.vertices.size());
  for (std::size_t i = 0; i < p_mesh.indices.size(); i += 3) {
    const Vector3_Base<double> first = Corner(p_mesh, i);
    const Vector3_Base<double> face = Cross(Corner(p_mesh, i + 1) - first, Corner(p_mesh, i + 2) - first);
    for (std::size_t k = 0; k < 3; ++k)
      sums[p_mesh.indices[i + k]] += face / Length(face);
  }
  std::vector<Point> normals;
  for (const Vector3_Base<double>& sum : sums) {
    const Vector3_Base<double> mean = sum / Length(sum);
    normals.push_back({float(mean.x), float(mean.y), float(mean.z)});
  }
  return normals;
}

// The rule, one rounded operation at a time.
Point Oriented(const Vector3_Base<double>& p_vertex, double p_shift, double p_factor,
               const Vector3_Base<double>& p_position, const Matrix3& p_rotation) {
  const double x = p_vertex.x * p_factor;
  const double y = p_vertex.y * p_factor;
  const double z = (p_vertex.z - p_shift) * p_factor;
  const double position[] = {p_position.x, p_position.y, p_position.z};
  Point result{};
  for (std::size_t r = 0; r < 3; ++r) {
    const double a = p_rotation.Row(r).x * x;
    const double b = p_rotation.Row(r).y * y;
    const double c = p_rotation.Row(r).z * z;
    const double sum = (a + b) + c;
    result[r] = static_cast<float>(sum + position[r]);
  }
  return result;
}

const Vector3_Base<double> Origin(0, 0, 0);

} // namespace

TEST(VectorSymbolMesh, SmallMeshesAreWrittenOut) {
  for (const SmallMesh& row : SmallMeshes) {
    const Mesh mesh = Built(VectorSymbol(row.shape, 4));
    ExpectNear(mesh.vertices, row.vertices, row.name);
    EXPECT_EQ(mesh.indices, row.indices) << row.name;
    EXPECT_EQ(mesh.normals.size(), row.vertices.size()) << row.name;
  }
}

TEST(VectorSymbolMesh, RoundShapesGrowByFourSegments) {
  const struct {
    Shape shape;
    std::size_t vertices_8, indices_8, vertices_100, indices_100;
  } rows[] = {
      {ShapeArrowHead3D, 25, 48, 301, 600}, {ShapeArrow3D, 57, 144, 701, 1800},
      {ShapeCylinder, 16, 48, 200, 600},    {ShapeCone, 16, 24, 200, 300},
      {ShapeSphere, 26, 144, 4902, 29400},  {ShapeCircularArrow3D, 92, 204, 188, 492}, // 24 segments at most
  };
  for (const auto& row : rows) {
    for (const unsigned int resolution : {8u, 11u, 100u, 103u}) {
      SCOPED_TRACE("shape " + std::to_string(row.shape) + " at " + std::to_string(resolution));
      const VectorSymbol symbol(row.shape, resolution);
      const Mesh mesh = Built(symbol);
      EXPECT_EQ(mesh.vertices.size(), resolution < 100 ? row.vertices_8 : row.vertices_100);
      EXPECT_EQ(mesh.indices.size(), resolution < 100 ? row.indices_8 : row.indices_100);
      EXPECT_EQ(symbol.VertexCount(), mesh.vertices.size());
      EXPECT_EQ(symbol.IndexCount(), mesh.indices.size());
    }
    for (const unsigned int resolution : {0u, 3u, 7u})
      EXPECT_EQ(Built(VectorSymbol(row.shape, resolution)).vertices, Built(VectorSymbol(row.shape, 4)).vertices);
  }
  EXPECT_EQ(Built(VectorSymbol(ShapeCircularArrow3D, 100)).vertices,
            Built(VectorSymbol(ShapeCircularArrow3D, 24)).vertices);
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
    for (int i = 0; i < 3; ++i) {
      const Mesh mesh = Built(VectorSymbol(row.shape, std::array{4u, 8u, 40u}[i]));
      EXPECT_TRUE(IsClosed(mesh)) << row.name << ", row " << i;
      EXPECT_NEAR(EnclosedVolume(mesh), row.volumes[i], 1e-6) << row.name << ", row " << i;
    }
}

TEST(VectorSymbolMesh, NormalsAreTheMeanOfTheFacesAround) {
  for (int shape = ShapePoint; shape <= ShapeSphere; ++shape)
    for (const unsigned int resolution : {8u, 24u}) {
      const VectorSymbol symbol(static_cast<Shape>(shape), resolution);
      const Mesh mesh = Built(symbol);
      const bool triangles = symbol.GeometryDefinedAs() == VectorSymbol::TopologyTriangles;
      ExpectNear(mesh.normals, triangles ? MeanNormals(mesh) : std::vector<Point>(mesh.vertices.size(), {0, 1, 0}),
                 "shape " + std::to_string(shape), 2e-6);
    }
  // Each vertex of the cylinder has three triangles, two of one face and one of the other.
  const float one = 1 / std::sqrt(10.f);
  const float three = 3 * one;
  const std::vector<Point> cylinder = Built(VectorSymbol(ShapeCylinder, 4)).normals;
  ExpectNear({cylinder.begin(), cylinder.begin() + 4},
             {{three, -one, 0}, {three, one, 0}, {one, three, 0}, {-one, three, 0}}, "cylinder");
}

TEST(VectorSymbolMesh, TheCircularArrowIsARingOfThreeQuarters) {
  const float d = 0.5f / std::sqrt(2.f);
  // clang-format off
  const std::vector<Point> face = {
      {d, d, H}, {1.2f * d, 1.2f * d, H}, {0.4f * d, 1.2f * d, H}, {0.4f * d, 0.4f * d, H}, {0.6f * d, 0.6f * d, H},
      {d, d, H}, {0.6f * d, 0.6f * d, H}, {d, -d, H}, {0.6f * d, -0.6f * d, H}, // the band
      {-d, -d, H}, {-0.6f * d, -0.6f * d, H}, {-d, d, H}, {-0.6f * d, 0.6f * d, H},
      {-d, 0.6f * d, H}, // the notch of the tail
  };
  // clang-format on
  const Indices triangles = {2, 0, 1, 2, 4, 0,  2,  3, 4,  7,  5, 6,  7,  6,  8,
                             9, 7, 8, 9, 8, 10, 11, 9, 13, 13, 9, 10, 13, 10, 12};
  const Mesh mesh = Built(VectorSymbol(ShapeCircularArrow3D, 4));
  const std::size_t f = face.size();
  ExpectNear({mesh.vertices.begin(), mesh.vertices.begin() + f}, face, "front");
  EXPECT_EQ(Indices(mesh.indices.begin(), mesh.indices.begin() + triangles.size()), triangles);
  for (std::size_t i = 0; i < f; ++i)
    EXPECT_EQ(mesh.vertices[f + i], (Point{mesh.vertices[i][0], mesh.vertices[i][1], -H}));
  // the back, then the walls of the head's first edge, the band's second step and the tail
  const Indices rest(mesh.indices.begin() + triangles.size(), mesh.indices.end());
  ASSERT_EQ(rest.size(), 30u + 24 + 36 + 12);
  EXPECT_EQ(Indices(rest.begin(), rest.begin() + 3), (Indices{16, 15, 14}));
  EXPECT_EQ(Indices(rest.begin() + 30, rest.begin() + 36), (Indices{28, 30, 31, 28, 31, 29}));
  EXPECT_EQ(Indices(rest.begin() + 54, rest.begin() + 66), (Indices{48, 44, 45, 48, 45, 49, 50, 51, 47, 50, 47, 46}));
  EXPECT_EQ(Indices(rest.end() - 12, rest.end()), (Indices{62, 64, 63, 63, 64, 65, 66, 60, 67, 60, 61, 67}));
  EXPECT_EQ(mesh.vertices[29], mesh.vertices[0]);
  EXPECT_EQ(mesh.vertices[66], mesh.vertices[27]);
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
  EXPECT_EQ(Built(VectorSymbol()).vertices, (std::vector<Point>{{0, 0, 0}}));
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
      {-1, unknown},
  };
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

TEST(VectorSymbol, BuildersReportShapesThatAreNotTheirs) {
  const ReportCapture reports;
  VectorSymbol arrow(ShapePoint, 8);
  (arrow.*Get(ArrowBuilder()))(ShapeCube);
  EXPECT_EQ(arrow.VertexCount(), 1u) << "nothing is added to the point";

  VectorSymbol ring(ShapePoint, 4);
  (ring.*Get(RingBuilder()))(ShapePlane);
  const Mesh face = Built(ring);
  EXPECT_EQ(face.vertices.size(), 1u + 14);
  EXPECT_EQ(face.indices.size(), 30u);
  for (const Point& vertex : face.vertices)
    EXPECT_EQ(vertex[2], 0.f);
  EXPECT_EQ(reports.Texts(), (std::vector<std::string>{Method + "BuildShapeArrow" + OfShape + "@line422",
                                                       Method + "BuildCircularArrow" + OfShape + "@line927"}));
}

TEST(VectorSymbolOrient, GivesTheFloatsOfTheRule) {
  const VectorSymbol arrow(ShapeArrow2D, 12);
  constexpr double length = 3, t = 0.3333333333333333, n = 0.1111111111111111;
  const Vector3_Base<double> up(0, 1, 0);
  const Vector3_Base<double> vertices[] = {{0, 0, length}, {-t, 0, 2}, {t, 0, 2}, {-n, 0, 0},
                                           {n, 0, 0},      {-n, 0, 2}, {n, 0, 2}};
  for (unsigned int seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> any(-3.0, 3.0), positive(0.001, 1000.0);
    const auto vector = [&] { return Vector3_Base<double>(any(random), any(random), any(random)); };
    const Matrix3 rotation(vector(), vector(), vector());
    const Vector3_Base<double> position = vector() * positive(random);
    const double size = positive(random), anchor = any(random), scale = positive(random);
    VertexData data;
    ASSERT_TRUE(arrow.OrientShape(size, anchor, position, true, 0.1, scale, rotation, data));
    std::vector<Point> expected;
    for (const Vector3_Base<double>& vertex : vertices)
      expected.push_back(Oriented(vertex, anchor * length, size * scale, position, rotation));
    const Mesh mesh = MeshOf(data);
    EXPECT_EQ(mesh.vertices, expected);
    EXPECT_EQ(mesh.normals, std::vector<Point>(7, Oriented(up, 0, 1, Origin, rotation)));
    EXPECT_EQ(mesh.indices, Built(arrow).indices);
    const VertexData::Array& coords = data.TexCoords();
    ASSERT_TRUE(coords.type == VertexData::Float && coords.components == 1);
    EXPECT_EQ(std::vector<float>(coords.As<float>(), coords.As<float>() + coords.count), std::vector<float>(7, 0.1f));
    // Shapes without normals have their default turned as well.
    ASSERT_TRUE(VectorSymbol().OrientShape(size, anchor, position, false, 0, scale, rotation, data));
    EXPECT_EQ(MeshOf(data).normals, std::vector<Point>{Oriented(up, 0, 1, Origin, rotation)});
  }
}

TEST(VectorSymbolOrient, SizesThatAreNotPositiveWriteNothingButNaNPasses) {
  const VectorSymbol cone(ShapeCone, 8);
  const double tiny = std::numeric_limits<double>::denorm_min();
  const std::pair<double, double> refused[] = {{0, 1}, {1, 0}, {-1, 1}, {1, -2}, {tiny, 0.25}};
  for (const auto& [size, scale] : refused) {
    VertexData data;
    EXPECT_FALSE(cone.OrientShape(size, 0, Origin, true, 1, scale, Matrix3(), data)) << size << " * " << scale;
    EXPECT_TRUE(data.Vertices().Empty() && data.Normals().Empty() && data.Indices().Empty());
    EXPECT_FALSE(data.PrimitiveType().Defined());
  }
  VertexData data;
  EXPECT_TRUE(cone.OrientShape(-1, 0, Origin, false, 0, -1, Matrix3(), data)) << "the product counts";
  EXPECT_TRUE(cone.OrientShape(NAN, 0, Origin, true, 1, 1, Matrix3(), data));
  for (const Point& vertex : MeshOf(data).vertices)
    EXPECT_TRUE(std::isnan(vertex[0]) && std::isnan(vertex[1]) && std::isnan(vertex[2]));
  EXPECT_EQ(MeshOf(data).normals, Built(cone).normals);
}

TEST(VectorSymbolOrient, HandsOverNewArraysAndMarksThePrimitiveOnlyWhenItChanges) {
  const VectorSymbol cone(ShapeCone, 8);
  const VectorSymbol chevron(ShapeArrowHead1D, 8);
  VertexData data;
  ASSERT_TRUE(cone.OrientShape(1, 0, Origin, true, 0.5, 1, Matrix3(), data));
  EXPECT_TRUE(data.PrimitiveType().Changed());
  const VertexData::Array vertices = data.Vertices();
  const std::vector<Point> before = Points(vertices);
  data.PrimitiveType().ClearChanged();
  ASSERT_TRUE(cone.OrientShape(2, 0, Origin, false, 0, 1, Matrix3(), data));
  EXPECT_FALSE(data.PrimitiveType().Changed());
  EXPECT_NE(data.Vertices().data, vertices.data);
  EXPECT_EQ(Points(vertices), before) << "arrays handed over earlier stay as they are";
  EXPECT_EQ(data.TexCoords().count, 16u) << "not written, so left";
  ASSERT_TRUE(chevron.BuildShape(data));
  EXPECT_TRUE(data.PrimitiveType().Changed());

  // A value that is there but not set is assigned even if it is the same.
  VertexData preset;
  preset.PrimitiveType() = Types::Property<Ogl::VertexBuffer::PrimitiveType>(Ogl::VertexBuffer::Triangles, 0);
  ASSERT_TRUE(cone.BuildShape(preset));
  EXPECT_TRUE(preset.PrimitiveType().Changed() && preset.PrimitiveType().Defined());
}
