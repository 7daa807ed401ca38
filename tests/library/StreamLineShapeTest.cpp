#include "library/StreamLineShape.h"
#include "tests/support/Test.h"

namespace {

using Vector3 = Types::Vector3_Base<double>;

struct Ring {
  std::vector<Vector3> vertices;
  std::vector<Vector3> normals;
};

void ExpectNear(const std::vector<Vector3>& p_actual, const std::vector<Vector3>& p_expected,
                const std::string& p_name) {
  ASSERT_EQ(p_actual.size(), p_expected.size()) << p_name;
  for (std::size_t i = 0; i < p_actual.size(); ++i)
    EXPECT_LE(Length(p_actual[i] - p_expected[i]), 1e-15) << p_name << ' ' << i;
}

const double R = std::sqrt(0.5);

TEST(StreamLineShape, Sections) {
  const double h = std::sqrt(0.75);
  const double s5 = std::sqrt(5);
  const std::vector<Vector3> circle{{1, 0, 0},  {h, .5, 0},   {.5, h, 0},   {0, 1, 0},  {-.5, h, 0}, {-h, .5, 0},
                                    {-1, 0, 0}, {-h, -.5, 0}, {-.5, -h, 0}, {0, -1, 0}, {.5, -h, 0}, {h, -.5, 0}};
  std::vector<Vector3> half;
  for (const Vector3& v : circle)
    half.push_back(v * 0.5);
  const Ring line{{{0, 0, 0}}, {{0, 1, 0}}}; // without normals of its own
  const Ring ribbon{{{-0.5, 0, 0}, {0.5, 0, 0}}, {{0, -1, 0}, {0, -1, 0}}};
  constexpr auto Custom = StreamLineShape::ShapeCustom;

  const std::tuple<const char*, StreamLineShape, bool, Ring> cases[] = {
      {"default, a line", StreamLineShape(), false, line},
      {"ribbon, outline ignored", {StreamLineShape::ShapeRibbon, {{1, 1}, {2, 5}, {3, 3}}}, true, ribbon},
      {"tube", {StreamLineShape::ShapeTube, {}}, true, {half, circle}},
      {"one point", {Custom, {{4, 4}}}, false, line},
      {"many equal points", {Custom, {{4, 4}, {4, 4}, {4, 4}, {4, 4}}}, false, line},
      {"nothing but NaN", {Custom, {{NAN, NAN}, {NAN, NAN}, {NAN, NAN}}}, false, line},
      {"two points", {Custom, {{7, 1}, {9, 5}}}, true, ribbon},
      {"clockwise triangle, off centre and higher than wide",
       {Custom, {{1, 1}, {1, 5}, {3, 1}}},
       true,
       {{{0.25, 0.25, 0}, {0.25, 1.25, 0}, {0.75, 0.25, 0}},
        {{R, R, 0}, Normalize(Vector3(1 - 2 / s5, -1 / s5, 0)), Normalize(Vector3(-2 / s5, 1 - 1 / s5, 0))}}},
      {"a repeated point",
       {Custom, {{0, 0}, {4, 0}, {4, 0}, {4, 4}, {0, 4}}},
       true,
       {{{0, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
        {{-R, -R, 0}, {0, -1, 0}, {1, 0, 0}, {R, R, 0}, {-R, R, 0}}}},
  };
  for (const auto& [name, shape, hasNormals, expected] : cases) {
    Ring ring;
    EXPECT_TRUE(shape.OrientShape(1, {}, 1, {}, ring.vertices, ring.normals)) << name;
    EXPECT_EQ(shape.NumVertices(), expected.vertices.size()) << name;
    EXPECT_EQ(shape.HasNormals(), hasNormals) << name;
    ExpectNear(ring.vertices, expected.vertices, name);
    ExpectNear(ring.normals, expected.normals, name);
  }
}

TEST(StreamLineShape, OrientsByFactorThenRotationThenPosition) {
  // x to y, y to z, z to x, scaled by 2, so that a normalised normal would be seen.
  const Types::Matrix3 rotation({0, 0, 2}, {2, 0, 0}, {0, 2, 0});
  Ring ring;
  const StreamLineShape square(StreamLineShape::ShapeCustom, {{0, 0}, {2, 0}, {2, 2}, {0, 2}});
  EXPECT_TRUE(square.OrientShape(3, {10, 20, 30}, 0.5, rotation, ring.vertices, ring.normals));
  ExpectNear(ring.vertices, {{10, 20, 30}, {10, 23, 30}, {10, 23, 33}, {10, 20, 33}}, "square");
  ExpectNear(ring.normals, {{0, -2 * R, -2 * R}, {0, 2 * R, -2 * R}, {0, 2 * R, 2 * R}, {0, -2 * R, 2 * R}}, "square");

  EXPECT_TRUE(StreamLineShape().OrientShape(3, {10, 20, 30}, 0.5, rotation, ring.vertices, ring.normals));
  ExpectNear(ring.vertices, {{10, 20, 30}}, "line");
  ExpectNear(ring.normals, {{0, 0, 2}}, "line");
}

TEST(StreamLineShape, NonPositiveFactorsAndUnknownShapesLeaveTheOutput) {
  constexpr int Tube = StreamLineShape::ShapeTube;
  const std::tuple<int, double, double, bool> cases[] = {
      {Tube, 0, 1, false},  {Tube, 1, 0, false},           {Tube, -1, 1, false},
      {Tube, 1, -2, false}, {Tube, 1e-200, 1e-200, false}, {Tube, -1, -1, true},
      {Tube, NAN, 1, true}, {Tube, 1e-300, 1, true},       {0, 1, 1, false},
      {5, 1, 1, false},     {1 << 30, 1, 1, false}};
  for (const auto& [value, size, scale, written] : cases) {
    const StreamLineShape shape(static_cast<StreamLineShape::Shape>(value), {{0, 0}, {1, 0}, {0, 1}});
    EXPECT_EQ(shape.NumVertices(), value == Tube ? 12u : 0u);
    EXPECT_EQ(shape.HasNormals(), value == Tube);
    std::vector<Vector3> vertices(3), normals(2);
    EXPECT_EQ(shape.OrientShape(size, {}, scale, {}, vertices, normals), written) << value << ' ' << size;
    EXPECT_EQ(vertices.size(), written ? 12u : 3u);
    EXPECT_EQ(normals.size(), written ? 12u : 2u);
  }
}

TEST(StreamLineShape, ReusesMemoryAndAcceptsItsOutputAsPosition) {
  const StreamLineShape tube(StreamLineShape::ShapeTube, {});
  std::vector<Vector3> vertices(1, {4, 5, 6});
  std::vector<Vector3> normals;
  EXPECT_TRUE(tube.OrientShape(1, vertices[0], 1, {}, vertices, normals)); // reallocates the referenced vector
  ExpectNear({vertices[3]}, {{4, 5.5, 6}}, "position");
  const Vector3* const data = vertices.data();
  EXPECT_TRUE(StreamLineShape().OrientShape(1, {}, 1, {}, vertices, normals));
  EXPECT_TRUE(tube.OrientShape(2, {}, 1, {}, vertices, normals));
  EXPECT_EQ(vertices.data(), data);
}

} // namespace
