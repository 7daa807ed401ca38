#include "library/VectorSymbol.h"

#include "platform/types/Angle.h"
#include "tests/support/ReportCapture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace Vek::Chart;
using Library::VectorSymbol;
using Model::Symbol::Shape;
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
  std::vector<float> tex_coords;
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
  Mesh mesh{Points(p_data.Vertices()), Points(p_data.Normals()), {}, {}};
  const VertexData::Array& indices = p_data.Indices();
  if (!indices.Empty()) {
    EXPECT_EQ(indices.type, VertexData::UnsignedInt);
    mesh.indices.assign(indices.As<unsigned int>(), indices.As<unsigned int>() + indices.count);
  }
  const VertexData::Array& coords = p_data.TexCoords();
  if (!coords.Empty()) {
    EXPECT_EQ(coords.type, VertexData::Float);
    EXPECT_EQ(coords.components, 1u);
    mesh.tex_coords.assign(coords.As<float>(), coords.As<float>() + coords.count);
  }
  return mesh;
}

Mesh Built(const VectorSymbol& p_symbol) {
  VertexData data;
  EXPECT_TRUE(p_symbol.BuildShape(data));
  return MeshOf(data);
}

void ExpectNear(const std::vector<Point>& p_actual, const std::vector<Point>& p_expected, const std::string& p_what) {
  ASSERT_EQ(p_actual.size(), p_expected.size()) << p_what;
  for (std::size_t i = 0; i < p_actual.size(); ++i)
    for (int axis = 0; axis < 3; ++axis)
      EXPECT_NEAR(p_actual[i][axis], p_expected[i][axis], 1e-7) << p_what << ", element " << i << ", axis " << axis;
}

// Points of the circle that the small meshes below are written with.
constexpr float T = 1.f / 3; // a third
constexpr float N = 1.f / 9; // a ninth
constexpr float H = 0.5f;

struct SmallMesh {
  const char* name;
  Shape shape;
  unsigned int resolution;
  std::vector<Point> vertices;
  Indices indices;
};

// clang-format off
const std::vector<SmallMesh>& SmallMeshes() {
  static const std::vector<SmallMesh> meshes = {
      {"point", Model::Symbol::ShapePoint, 8, {{0, 0, 0}}, {}},
      {"line chevron", Model::Symbol::ShapeArrowHead1D, 8, {{0, 0, 1}, {-T, 0, 0}, {T, 0, 0}}, {1, 0, 2, 0}},
      {"line arrow",
       Model::Symbol::ShapeArrow1D,
       8,
       {{0, 0, 0}, {0, 0, 3}, {-T, 0, 2}, {T, 0, 2}},
       {0, 1, 2, 1, 3, 1}},
      {"flat head", Model::Symbol::ShapeArrowHead2D, 8, {{0, 0, 1}, {-T, 0, 0}, {T, 0, 0}}, {0, 2, 1}},
      {"flat arrow",
       Model::Symbol::ShapeArrow2D,
       8,
       {{0, 0, 3}, {-T, 0, 2}, {T, 0, 2}, {-N, 0, 0}, {N, 0, 0}, {-N, 0, 2}, {N, 0, 2}},
       {0, 2, 1, 3, 5, 6, 3, 6, 4}},
      {"plane",
       Model::Symbol::ShapePlane,
       8,
       {{-H, -H, 0}, {H, -H, 0}, {H, H, 0}, {-H, H, 0}},
       {0, 1, 2, 0, 2, 3}},
      {"solid head",
       Model::Symbol::ShapeArrowHead3D,
       4,
       {{0, 0, 0}, {T, 0, 0}, {T, 0, 0}, {0, 0, 1}, {0, T, 0}, {0, T, 0}, {0, 0, 1},
        {-T, 0, 0}, {-T, 0, 0}, {0, 0, 1}, {0, -T, 0}, {0, -T, 0}, {0, 0, 1}},
       {0, 4, 1, 2, 5, 3, 0, 7, 4, 5, 8, 6, 0, 10, 7, 8, 11, 9, 0, 1, 10, 11, 2, 12}},
      {"solid arrow",
       Model::Symbol::ShapeArrow3D,
       4,
       {{0, 0, 0},
        {N, 0, 0}, {N, 0, 0}, {N, 0, 2}, {N, 0, 2}, {T, 0, 2}, {T, 0, 2}, {0, 0, 3},
        {0, N, 0}, {0, N, 0}, {0, N, 2}, {0, N, 2}, {0, T, 2}, {0, T, 2}, {0, 0, 3},
        {-N, 0, 0}, {-N, 0, 0}, {-N, 0, 2}, {-N, 0, 2}, {-T, 0, 2}, {-T, 0, 2}, {0, 0, 3},
        {0, -N, 0}, {0, -N, 0}, {0, -N, 2}, {0, -N, 2}, {0, -T, 2}, {0, -T, 2}, {0, 0, 3}},
       {0, 8, 1, 2, 9, 10, 2, 10, 3, 5, 11, 12, 5, 4, 11, 6, 13, 7,
        0, 15, 8, 9, 16, 17, 9, 17, 10, 12, 18, 19, 12, 11, 18, 13, 20, 14,
        0, 22, 15, 16, 23, 24, 16, 24, 17, 19, 25, 26, 19, 18, 25, 20, 27, 21,
        0, 1, 22, 23, 2, 3, 23, 3, 24, 26, 4, 5, 26, 25, 4, 27, 6, 28}},
      {"cylinder",
       Model::Symbol::ShapeCylinder,
       4,
       {{H, 0, -H}, {H, 0, H}, {0, H, -H}, {0, H, H}, {-H, 0, -H}, {-H, 0, H}, {0, -H, -H}, {0, -H, H}},
       {0, 2, 1, 1, 2, 3, 2, 4, 3, 3, 4, 5, 4, 6, 5, 5, 6, 7, 6, 0, 7, 7, 0, 1}},
      {"cone",
       Model::Symbol::ShapeCone,
       4,
       {{H, 0, 0}, {0, 0, 1}, {0, H, 0}, {0, 0, 1}, {-H, 0, 0}, {0, 0, 1}, {0, -H, 0}, {0, 0, 1}},
       {0, 2, 1, 2, 4, 3, 4, 6, 5, 6, 0, 7}},
      {"crosshair",
       Model::Symbol::ShapeCrosshair,
       8,
       {{-H, 0, 0}, {H, 0, 0}, {0, -H, 0}, {0, H, 0}, {0, 0, -H}, {0, 0, H}},
       {0, 1, 2, 3, 4, 5}},
      {"cube",
       Model::Symbol::ShapeCube,
       8,
       {{-H, -H, H}, {H, -H, H}, {H, H, H}, {-H, H, H},
        {H, -H, -H}, {-H, -H, -H}, {-H, H, -H}, {H, H, -H},
        {-H, H, -H}, {-H, -H, -H}, {-H, -H, H}, {-H, H, H},
        {H, -H, -H}, {H, H, -H}, {H, H, H}, {H, -H, H},
        {-H, -H, -H}, {H, -H, -H}, {H, -H, H}, {-H, -H, H},
        {H, H, -H}, {-H, H, -H}, {-H, H, H}, {H, H, H}},
       {0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7, 8, 9, 10, 8, 10, 11,
        12, 13, 14, 12, 14, 15, 16, 17, 18, 16, 18, 19, 20, 21, 22, 20, 22, 23}},
      {"sphere",
       Model::Symbol::ShapeSphere,
       4,
       {{0, 0, -H}, {0, 0, H}, {H, 0, 0}, {0, H, 0}, {-H, 0, 0}, {0, -H, 0}},
       {0, 3, 2, 0, 4, 3, 0, 5, 4, 0, 2, 5, 2, 3, 1, 3, 4, 1, 4, 5, 1, 5, 2, 1}},
  };
  return meshes;
}
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

Vector3_Base<double> Vec(const Point& p_point) {
  return {p_point[0], p_point[1], p_point[2]};
}

/// How often each edge is walked from one place to the other, less how often the other way.
std::map<std::pair<Point, Point>, int> OpenEdges(const Mesh& p_mesh) {
  std::map<std::pair<Point, Point>, int> edges;
  for (std::size_t i = 0; i < p_mesh.indices.size(); i += 3)
    for (std::size_t k = 0; k < 3; ++k) {
      const Point& a = p_mesh.vertices[p_mesh.indices[i + k]];
      const Point& b = p_mesh.vertices[p_mesh.indices[i + (k + 1) % 3]];
      if (a < b)
        ++edges[{a, b}];
      else
        --edges[{b, a}];
    }
  for (auto edge = edges.begin(); edge != edges.end();)
    edge = edge->second == 0 ? edges.erase(edge) : std::next(edge);
  return edges;
}

double EnclosedVolume(const Mesh& p_mesh) {
  double six_volumes = 0;
  for (std::size_t i = 0; i < p_mesh.indices.size(); i += 3)
    six_volumes += Dot(Vec(p_mesh.vertices[p_mesh.indices[i]]),
                       Cross(Vec(p_mesh.vertices[p_mesh.indices[i + 1]]), Vec(p_mesh.vertices[p_mesh.indices[i + 2]])));
  return six_volumes / 6;
}

/// The area of a regular polygon with n corners on a circle of radius r.
double PolygonArea(double p_radius, unsigned int p_corners) {
  return p_corners * p_radius * p_radius * std::sin(2 * Types::Angle::Pi / p_corners) / 2;
}

// What the library's own way of writing them must not change: the rule, one operation at a time.
Point Oriented(const Vector3_Base<double>& p_vertex, double p_length, double p_size, double p_anchor,
               const Vector3_Base<double>& p_position, double p_scale, const Matrix3& p_rotation) {
  const double f = p_size * p_scale;
  const double shift = p_anchor * p_length;
  const double px = p_vertex.x * f;
  const double py = p_vertex.y * f;
  const double pz = (p_vertex.z - shift) * f;
  Point result{};
  const double position[] = {p_position.x, p_position.y, p_position.z};
  for (std::size_t r = 0; r < 3; ++r) {
    const double a = p_rotation.Row(r).x * px;
    const double b = p_rotation.Row(r).y * py;
    const double c = p_rotation.Row(r).z * pz;
    const double sum = (a + b) + c;
    result[r] = static_cast<float>(sum + position[r]);
  }
  return result;
}

const Vector3_Base<double> Origin(0, 0, 0);
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(VectorSymbolMesh, SmallMeshesAreWrittenOut) {
  for (const SmallMesh& row : SmallMeshes()) {
    const Mesh mesh = Built(VectorSymbol(row.shape, row.resolution));
    ExpectNear(mesh.vertices, row.vertices, row.name);
    EXPECT_EQ(mesh.indices, row.indices) << row.name;
    EXPECT_EQ(mesh.normals.size(), row.vertices.size()) << row.name;
  }
}

TEST(VectorSymbolMesh, VertexAndIndexCountsOfAllShapesAndResolutions) {
  struct Row {
    int shape;
    // as functions of the segments n, and of the ring's last step q
    std::size_t (*vertices)(std::size_t n, std::size_t q);
    std::size_t (*primitives)(std::size_t n, std::size_t q);
    std::size_t corners;
  };
  const Row rows[] = {
      {1, [](auto, auto) -> std::size_t { return 1; }, [](auto, auto) -> std::size_t { return 0; }, 0},
      {2, [](auto, auto) -> std::size_t { return 3; }, [](auto, auto) -> std::size_t { return 2; }, 2},
      {3, [](auto, auto) -> std::size_t { return 4; }, [](auto, auto) -> std::size_t { return 3; }, 2},
      {4, [](auto, auto) -> std::size_t { return 3; }, [](auto, auto) -> std::size_t { return 1; }, 3},
      {5, [](auto, auto) -> std::size_t { return 7; }, [](auto, auto) -> std::size_t { return 3; }, 3},
      {6, [](auto, auto) -> std::size_t { return 4; }, [](auto, auto) -> std::size_t { return 2; }, 3},
      {7, [](auto n, auto) { return 1 + 3 * n; }, [](auto n, auto) { return 2 * n; }, 3},
      {8, [](auto n, auto) { return 1 + 7 * n; }, [](auto n, auto) { return 6 * n; }, 3},
      {9, [](auto n, auto) { return 2 * n; }, [](auto n, auto) { return 2 * n; }, 3},
      {10, [](auto n, auto) { return 2 * n; }, [](auto n, auto) { return n; }, 3},
      {11, [](auto, auto q) { return 44 + 8 * q; }, [](auto, auto q) { return 20 + 8 * q; }, 3},
      {12, [](auto, auto) -> std::size_t { return 6; }, [](auto, auto) -> std::size_t { return 3; }, 2},
      {13, [](auto, auto) -> std::size_t { return 24; }, [](auto, auto) -> std::size_t { return 12; }, 3},
      {14, [](auto n, auto) { return 2 + n * (n / 2 - 1); }, [](auto n, auto) { return n * (n - 2); }, 3},
  };
  const std::pair<unsigned int, std::size_t> resolutions[] = {{0, 4},   {1, 4},   {3, 4},   {7, 4},    {8, 8},
                                                              {10, 8},  {11, 8},  {12, 12}, {16, 16},  {20, 20},
                                                              {24, 24}, {25, 24}, {28, 28}, {100, 100}};
  for (const Row& row : rows)
    for (const auto& [resolution, n] : resolutions) {
      const VectorSymbol symbol(static_cast<Shape>(row.shape), resolution);
      const Mesh mesh = Built(symbol);
      const std::size_t q = std::min<std::size_t>(n, 24) * 3 / 4;
      const std::string name = "shape " + std::to_string(row.shape) + " at " + std::to_string(resolution);
      EXPECT_EQ(mesh.vertices.size(), row.vertices(n, q)) << name;
      EXPECT_EQ(mesh.normals.size(), row.vertices(n, q)) << name;
      EXPECT_EQ(mesh.indices.size(), row.corners * row.primitives(n, q)) << name;
      EXPECT_EQ(symbol.VertexCount(), mesh.vertices.size()) << name;
      EXPECT_EQ(symbol.IndexCount(), mesh.indices.size()) << name;
      for (const unsigned int index : mesh.indices)
        ASSERT_LT(index, mesh.vertices.size()) << name;
    }
}

TEST(VectorSymbolMesh, SolidsAreClosedAndFaceOutward) {
  struct Row {
    const char* name;
    Shape shape;
    double (*volume)(unsigned int n);
  };
  const Row rows[] = {
      {"solid head", Model::Symbol::ShapeArrowHead3D, [](unsigned int n) { return PolygonArea(1.0 / 3, n) / 3; }},
      {"solid arrow", Model::Symbol::ShapeArrow3D,
       [](unsigned int n) { return PolygonArea(1.0 / 3, n) / 3 + 2 * PolygonArea(1.0 / 9, n); }},
      {"cube", Model::Symbol::ShapeCube, [](unsigned int) { return 1.0; }},
      {"sphere", Model::Symbol::ShapeSphere,
       [](unsigned int n) {
         double volume = 0; // frustums between the rings
         for (unsigned int r = 0; r < n / 2; ++r) {
           const double a = 2 * Types::Angle::Pi * r / n;
           const double b = 2 * Types::Angle::Pi * (r + 1) / n;
           const double low = std::sqrt(PolygonArea(0.5 * std::sin(a), n));
           const double high = std::sqrt(PolygonArea(0.5 * std::sin(b), n));
           volume += (low * low + low * high + high * high) / 3 * 0.5 * (std::cos(a) - std::cos(b));
         }
         return volume;
       }},
      {"circular arrow", Model::Symbol::ShapeCircularArrow3D,
       [](unsigned int resolution) {
         // three quarters of the ring, less the notch, and the head's triangles; one unit thick
         const unsigned int n = std::min(resolution, 24u);
         const unsigned int q = n * 3 / 4;
         const double step = 2 * Types::Angle::Pi / n;
         const double ring = (0.25 - 0.09) * std::sin(step) / 2 * q;
         const double end = Types::Angle::Pi / 4 - q * step;
         const double notch =
             0.5 * 0.2 * 0.2 * std::abs(std::cos(end) * std::sin(end)); // between outer, notch and inner point
         const double head = 0.4 * 0.4 / 4; // base 0.4 on the diagonal, right angle at the tip
         return ring - notch + head;
       }},
  };
  for (const Row& row : rows)
    for (const unsigned int n : {4u, 8u, 12u, 16u, 24u, 40u}) {
      const Mesh mesh = Built(VectorSymbol(row.shape, n));
      EXPECT_TRUE(OpenEdges(mesh).empty()) << row.name << " at " << n;
      EXPECT_NEAR(EnclosedVolume(mesh), row.volume(n), 1e-6) << row.name << " at " << n;
    }
}

TEST(VectorSymbolMesh, NormalsAreUnitAndAgreeWithTheirFaces) {
  for (int shape = 4; shape <= 14; ++shape) {
    if (shape == Model::Symbol::ShapeCrosshair)
      continue;
    for (const unsigned int resolution : {4u, 8u, 24u}) {
      const Mesh mesh = Built(VectorSymbol(static_cast<Shape>(shape), resolution));
      const std::string name = "shape " + std::to_string(shape) + " at " + std::to_string(resolution);
      for (const Point& normal : mesh.normals)
        EXPECT_NEAR(Length(Vec(normal)), 1.0, 1e-6) << name;
      for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
        const Vector3_Base<double> a = Vec(mesh.vertices[mesh.indices[i]]);
        const Vector3_Base<double> face =
            Cross(Vec(mesh.vertices[mesh.indices[i + 1]]) - a, Vec(mesh.vertices[mesh.indices[i + 2]]) - a);
        const bool has_area = Length(face) > 1e-9; // the circular arrow's notch of four segments has none
        for (std::size_t k = 0; has_area && k < 3; ++k)
          EXPECT_GT(Dot(face, Vec(mesh.normals[mesh.indices[i + k]])), 0.0) << name << ", corner " << i + k;
      }
    }
  }
}

TEST(VectorSymbolMesh, NormalsAreTheMeanOfTheFacesAround) {
  const float d = 1 / std::sqrt(2.f);
  const std::vector<Point> up(7, {0, 1, 0});
  ExpectNear(Built(VectorSymbol(Model::Symbol::ShapeArrow1D, 4)).normals, {up.begin(), up.begin() + 4}, "line arrow");
  ExpectNear(Built(VectorSymbol(Model::Symbol::ShapeArrowHead1D, 4)).normals, {up.begin(), up.begin() + 3}, "chevron");
  ExpectNear(Built(VectorSymbol(Model::Symbol::ShapeArrow2D, 4)).normals, up, "flat arrow");
  ExpectNear(Built(VectorSymbol(Model::Symbol::ShapePlane, 4)).normals, std::vector<Point>(4, {0, 0, 1}), "plane");
  ExpectNear(Built(VectorSymbol(Model::Symbol::ShapePoint, 4)).normals, {{0, 1, 0}}, "point, the default");

  // Each vertex of the cylinder has three triangles, two of one face and one of the other.
  const float one = 1 / std::sqrt(10.f);
  const float three = 3 * one;
  ExpectNear(Built(VectorSymbol(Model::Symbol::ShapeCylinder, 4)).normals,
             {{three, -one, 0},
              {three, one, 0},
              {one, three, 0},
              {-one, three, 0},
              {-three, one, 0},
              {-three, -one, 0},
              {-one, -three, 0},
              {one, -three, 0}},
             "cylinder");

  // An apex belongs to one side of the cone, so it has that side's normal; a corner of the base has the mean of two.
  const float side = 2 / 3.f;
  const float rise = 1 / 3.f;
  const float corner = 2 * side / std::sqrt(4 * side * side + 4 * rise * rise);
  const std::vector<Point> cone = Built(VectorSymbol(Model::Symbol::ShapeCone, 4)).normals;
  ExpectNear({cone[0], cone[1], cone[3]}, {{corner, 0, rise / side * corner}, {side, side, rise}, {-side, side, rise}},
             "cone");

  std::vector<Point> cube;
  for (const Point& face : std::vector<Point>{{0, 0, 1}, {0, 0, -1}, {-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}})
    cube.insert(cube.end(), 4, face);
  ExpectNear(Built(VectorSymbol(Model::Symbol::ShapeCube, 4)).normals, cube, "cube");
  const Mesh sphere = Built(VectorSymbol(Model::Symbol::ShapeSphere, 4));
  std::vector<Point> outward;
  for (const Point& p : sphere.vertices)
    outward.push_back({2 * p[0], 2 * p[1], 2 * p[2]});
  ExpectNear(sphere.normals, outward, "octahedron");

  // The walls of the circular arrow keep hard edges at the head: the first one faces along the diagonal's normal.
  const std::vector<Point> ring = Built(VectorSymbol(Model::Symbol::ShapeCircularArrow3D, 4)).normals;
  ExpectNear({ring[0], ring[14], ring[28], ring[32]}, {{0, 0, 1}, {0, 0, -1}, {d, -d, 0}, {0, 1, 0}}, "circular arrow");
}

TEST(VectorSymbolMesh, TheCircularArrowIsARingOfThreeQuarters) {
  const float d = 0.5f / std::sqrt(2.f);
  const std::vector<Point> face = {
      {d, d, H},
      {1.2f * d, 1.2f * d, H},
      {0.4f * d, 1.2f * d, H},
      {0.4f * d, 0.4f * d, H},
      {0.6f * d, 0.6f * d, H},
      {d, d, H},
      {0.6f * d, 0.6f * d, H}, // the band starts
      {d, -d, H},
      {0.6f * d, -0.6f * d, H},
      {-d, -d, H},
      {-0.6f * d, -0.6f * d, H},
      {-d, d, H},
      {-0.6f * d, 0.6f * d, H},
      {-d, 0.6f * d, H}, // the tail with its notch
  };
  const Indices triangles = {2, 0, 1, 2, 4, 0,  2,  3, 4,  7,  5, 6,  7,  6,  8,
                             9, 7, 8, 9, 8, 10, 11, 9, 13, 13, 9, 10, 13, 10, 12};
  const Mesh mesh = Built(VectorSymbol(Model::Symbol::ShapeCircularArrow3D, 4));
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

  // More segments than 24 change nothing.
  EXPECT_EQ(Built(VectorSymbol(Model::Symbol::ShapeCircularArrow3D, 100)).vertices,
            Built(VectorSymbol(Model::Symbol::ShapeCircularArrow3D, 24)).vertices);
}

TEST(VectorSymbol, AnswersByShape) {
  for (int shape = 1; shape <= 14; ++shape) {
    VectorSymbol symbol(static_cast<Shape>(shape), 8);
    const bool lines = shape == 2 || shape == 3 || shape == 12;
    EXPECT_EQ(symbol.IsDirectionalSymbol(), shape >= 2 && shape <= 10) << shape;
    EXPECT_EQ(symbol.GeometryDefinedAs(), shape == 1 ? VectorSymbol::TopologyPoints
                                          : lines    ? VectorSymbol::TopologyLines
                                                     : VectorSymbol::TopologyTriangles)
        << shape;
    EXPECT_EQ(symbol.HasPoints(), shape == 1) << shape;
    EXPECT_EQ(symbol.HasNormals(), shape != 1 && shape != 12) << shape;
    VertexData data;
    symbol.BuildShape(data);
    EXPECT_EQ(data.PrimitiveType().Value(), shape == 1 ? Ogl::VertexBuffer::Points
                                            : lines    ? Ogl::VertexBuffer::LineSegments
                                                       : Ogl::VertexBuffer::Triangles)
        << shape;
  }
  VectorSymbol point;
  EXPECT_FALSE(point.IsDirectionalSymbol());
  EXPECT_FALSE(point.HasNormals());
  EXPECT_TRUE(point.HasPoints());
  EXPECT_EQ(point.GeometryDefinedAs(), VectorSymbol::TopologyPoints);
  EXPECT_EQ(Built(point).vertices, (std::vector<Point>{{0, 0, 0}}));
}

namespace {

const std::string Directional =
    "bool __cdecl `anonymous-namespace'::IsDirectionalShape(const enum Vek::Chart::Model::Symbol::Shape) @line92";
const std::string Defined = "enum Vek::Chart::Library::VectorSymbol::TopologyType __cdecl "
                            "`anonymous-namespace'::GeometryDefinedAs(const enum Vek::Chart::Model::Symbol::Shape) ";
const std::string Predefined = "void __cdecl Vek::Chart::Library::VectorSymbol::BuildPredefinedShape(const enum "
                               "Vek::Chart::Model::Symbol::Shape) @line977";
const std::string Custom =
    "\"p_shape != Model::Symbol::ShapeCustom\" - __cdecl Vek::Chart::Library::VectorSymbol::VectorSymbol(const enum "
    "Vek::Chart::Model::Symbol::Shape,const unsigned int)";

} // namespace

TEST(VectorSymbol, ReportsWhatItCannotBuildAndStaysEmpty) {
  const std::vector<std::string> unknown = {Defined + "@line124", Predefined};
  const std::pair<int, std::vector<std::string>> rows[] = {
      {Model::Symbol::ShapeCustom, {Directional, Defined + "@line122", Defined + "@line124", Custom, Predefined}},
      {0, unknown},
      {-1, unknown},
      {16, unknown},
      {std::numeric_limits<int>::max(), unknown},
      {std::numeric_limits<int>::min(), unknown},
  };
  for (const auto& [shape, texts] : rows) {
    ReportCapture reports;
    VectorSymbol symbol(static_cast<Shape>(shape), 8);
    EXPECT_EQ(reports.Texts(), texts) << shape;
    EXPECT_FALSE(symbol.IsDirectionalSymbol()) << shape;
    EXPECT_TRUE(symbol.HasPoints()) << shape;
    EXPECT_EQ(symbol.GeometryDefinedAs(), VectorSymbol::TopologyPoints) << shape;
    EXPECT_EQ(symbol.VertexCount(), 0u) << shape;
    VertexData data;
    EXPECT_FALSE(symbol.BuildShape(data)) << shape;
    EXPECT_FALSE(symbol.OrientShape(1, 0, Origin, true, 0, 1, Matrix3(), data)) << shape;
    EXPECT_TRUE(data.Vertices().Empty()) << shape;
    EXPECT_FALSE(data.PrimitiveType().Defined()) << shape;
  }
  const ReportCapture reports;
  for (int shape = 1; shape <= 14; ++shape)
    VectorSymbol(static_cast<Shape>(shape), 8);
  EXPECT_TRUE(reports.Texts().empty());
}

TEST(VectorSymbol, BuildersReportShapesThatAreNotTheirs) {
  const ReportCapture reports;
  VectorSymbol arrow(Model::Symbol::ShapePoint, 8);
  (arrow.*Get(ArrowBuilder()))(Model::Symbol::ShapeCube);
  EXPECT_EQ(arrow.VertexCount(), 1u) << "nothing is added to the point";

  VectorSymbol ring(Model::Symbol::ShapePoint, 4);
  (ring.*Get(RingBuilder()))(Model::Symbol::ShapePlane);
  const Mesh face = Built(ring);
  EXPECT_EQ(face.vertices.size(), 1u + 14);
  EXPECT_EQ(face.indices.size(), 30u);
  for (const Point& vertex : face.vertices)
    EXPECT_EQ(vertex[2], 0.f);
  EXPECT_EQ(reports.Texts(),
            (std::vector<std::string>{"void __cdecl Vek::Chart::Library::VectorSymbol::BuildShapeArrow(const enum "
                                      "Vek::Chart::Model::Symbol::Shape) @line422",
                                      "void __cdecl Vek::Chart::Library::VectorSymbol::BuildCircularArrow(const enum "
                                      "Vek::Chart::Model::Symbol::Shape) @line927"}));
}

TEST(VectorSymbolOrient, GivesTheFloatsOfTheRule) {
  // Vertices as doubles: written out for the flat arrow and the cube, by their formula for the cylinder.
  struct Row {
    const char* name;
    Shape shape;
    double length;
    std::vector<Vector3_Base<double>> vertices;
    std::vector<Vector3_Base<double>> normals; // only where they are exact
  };
  constexpr double Third = 0.3333333333333333;
  constexpr double Ninth = 0.1111111111111111;
  std::vector<Row> rows = {
      {"flat arrow",
       Model::Symbol::ShapeArrow2D,
       3,
       {{0, 0, 3}, {-Third, 0, 2}, {Third, 0, 2}, {-Ninth, 0, 0}, {Ninth, 0, 0}, {-Ninth, 0, 2}, {Ninth, 0, 2}},
       std::vector<Vector3_Base<double>>(7, {0, 1, 0})},
      {"crosshair",
       Model::Symbol::ShapeCrosshair,
       1,
       {{-0.5, 0, 0}, {0.5, 0, 0}, {0, -0.5, 0}, {0, 0.5, 0}, {0, 0, -0.5}, {0, 0, 0.5}},
       std::vector<Vector3_Base<double>>(6, {0, 1, 0})},
      {"point", Model::Symbol::ShapePoint, 0, {{0, 0, 0}}, {{0, 1, 0}}},
      {"cylinder", Model::Symbol::ShapeCylinder, 1, {}, {}},
  };
  for (int j = 0; j < 12; ++j) {
    const double radians = Types::Angle::FromDegrees(j * 30.0).Radians();
    rows.back().vertices.emplace_back(0.5 * std::cos(radians), 0.5 * std::sin(radians), -0.5);
    rows.back().vertices.emplace_back(0.5 * std::cos(radians), 0.5 * std::sin(radians), 0.5);
  }
  for (const Row& row : rows) {
    const VectorSymbol symbol(row.shape, 12);
    for (unsigned int seed = 0; seed < 50; ++seed) {
      std::mt19937 random(seed);
      std::uniform_real_distribution<double> any(-3.0, 3.0);
      std::uniform_real_distribution<double> positive(0.001, 1000.0);
      const auto vector = [&] { return Vector3_Base<double>(any(random), any(random), any(random)); };
      const Matrix3 rotation(vector(), vector(), vector());
      const Vector3_Base<double> position = vector() * positive(random);
      const double size = positive(random);
      const double anchor = any(random);
      const double scale = positive(random);
      VertexData data;
      ASSERT_TRUE(symbol.OrientShape(size, anchor, position, true, 0.1, scale, rotation, data));
      const Mesh mesh = MeshOf(data);
      ASSERT_EQ(mesh.vertices.size(), row.vertices.size());
      for (std::size_t i = 0; i < row.vertices.size(); ++i)
        EXPECT_EQ(mesh.vertices[i], Oriented(row.vertices[i], row.length, size, anchor, position, scale, rotation))
            << row.name << ", seed " << seed << ", vertex " << i;
      for (std::size_t i = 0; i < row.normals.size(); ++i)
        EXPECT_EQ(mesh.normals[i], Oriented(row.normals[i], 0, 1, 0, Origin, 1, rotation))
            << row.name << ", seed " << seed << ", normal " << i;
      EXPECT_EQ(mesh.tex_coords, std::vector<float>(row.vertices.size(), 0.1f)) << row.name;
      EXPECT_EQ(mesh.indices, Built(symbol).indices) << row.name;
    }
  }
}

TEST(VectorSymbolOrient, AnchorOnePutsTheTipAtThePosition) {
  const VectorSymbol arrow(Model::Symbol::ShapeArrow1D, 8);
  const Matrix3 z_to_x = Matrix3::FromColumns({0, 0, -1}, {0, 1, 0}, {1, 0, 0});
  VertexData data;
  ASSERT_TRUE(arrow.OrientShape(2, 1, {5, 6, 7}, false, 0, 0.5, z_to_x, data));
  EXPECT_EQ(MeshOf(data).vertices[1], (Point{5, 6, 7}));
  EXPECT_EQ(MeshOf(data).vertices[0], (Point{2, 6, 7}));
  EXPECT_TRUE(data.TexCoords().Empty());
}

TEST(VectorSymbolOrient, SizesThatAreNotPositiveWriteNothingButNaNPasses) {
  const VectorSymbol cone(Model::Symbol::ShapeCone, 8);
  const double tiny = std::numeric_limits<double>::denorm_min();
  const std::pair<double, double> refused[] = {
      {0, 1}, {1, 0}, {-1, 1}, {1, -2}, {-0.0, 5}, {tiny, 0.25}, {-std::numeric_limits<double>::infinity(), 1}};
  for (const auto& [size, scale] : refused) {
    VertexData data;
    EXPECT_FALSE(cone.OrientShape(size, 0, Origin, true, 1, scale, Matrix3(), data)) << size << " * " << scale;
    EXPECT_TRUE(data.Vertices().Empty() && data.Normals().Empty() && data.Indices().Empty());
    EXPECT_FALSE(data.PrimitiveType().Defined());
  }
  VertexData data;
  EXPECT_TRUE(cone.OrientShape(-1, 0, Origin, false, 0, -1, Matrix3(), data)) << "the product counts";
  EXPECT_TRUE(cone.OrientShape(NaN, 0, Origin, true, 1, 1, Matrix3(), data));
  for (const Point& vertex : MeshOf(data).vertices)
    EXPECT_TRUE(std::isnan(vertex[0]) && std::isnan(vertex[1]) && std::isnan(vertex[2]));
  EXPECT_EQ(MeshOf(data).normals, Built(cone).normals);
}

TEST(VectorSymbolOrient, HandsOverNewArraysAndMarksThePrimitiveOnlyWhenItChanges) {
  const VectorSymbol cone(Model::Symbol::ShapeCone, 8);
  const VectorSymbol chevron(Model::Symbol::ShapeArrowHead1D, 8);
  VertexData data;
  ASSERT_TRUE(cone.OrientShape(1, 0, Origin, true, 0.5, 1, Matrix3(), data));
  EXPECT_TRUE(data.PrimitiveType().Changed());
  EXPECT_EQ(data.PrimitiveType().Value(), Ogl::VertexBuffer::Triangles);
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
  EXPECT_EQ(data.PrimitiveType().Value(), Ogl::VertexBuffer::LineSegments);

  // A value that is there but not set is assigned even if it is the same.
  VertexData preset;
  preset.PrimitiveType() = Types::Property<Ogl::VertexBuffer::PrimitiveType>(Ogl::VertexBuffer::Triangles, 0);
  ASSERT_TRUE(cone.BuildShape(preset));
  EXPECT_TRUE(preset.PrimitiveType().Changed());
  EXPECT_TRUE(preset.PrimitiveType().Defined());
}

TEST(VectorSymbolOrient, ACopyGivesTheSame) {
  const VectorSymbol sphere(Model::Symbol::ShapeSphere, 12);
  const VectorSymbol copy(sphere);
  EXPECT_EQ(Built(copy).vertices, Built(sphere).vertices);
  EXPECT_EQ(Built(copy).normals, Built(sphere).normals);
  EXPECT_EQ(Built(copy).indices, Built(sphere).indices);
  EXPECT_FALSE(copy.IsDirectionalSymbol());
}
