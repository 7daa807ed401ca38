#include "scene/TubeMesh.h"

#include "testing/Surface.h"
#include "tests/support/Test.h"

namespace {

using Line = std::vector<TubeMesh::Point>;

struct Mesh : Surface {
  std::vector<float> values;
};

Mesh Swept(StreamLineShape::Shape p_shape, const std::vector<Line>& p_lines) {
  TubeMesh tubes(StreamLineShape(p_shape, {{0, 0}, {2, 0}, {2, 1}, {0, 1}}));
  for (const Line& line : p_lines)
    tubes.Add(line);
  const Ogl::VertexData data = tubes.TakeMesh();
  EXPECT_TRUE(tubes.Empty());
  const Ogl::VertexData::Array& values = data.TexCoords();
  const Mesh mesh{SurfaceOf(data), {values.As<float>(), values.As<float>() + values.count}};
  EXPECT_EQ(mesh.normals.size(), mesh.positions.size());
  EXPECT_EQ(mesh.values.size(), mesh.positions.size());
  return mesh;
}

Line Along(std::size_t p_count, const std::function<Point(double)>& p_place, double p_width = 0.2) {
  Line line;
  for (std::size_t i = 0; i < p_count; ++i) {
    const double t = static_cast<double>(i) / static_cast<double>(p_count - 1);
    line.push_back({p_place(t), p_width, t});
  }
  return line;
}

Point Helix(double p_t) {
  return {std::cos(9 * p_t), std::sin(9 * p_t), 2 * p_t};
}

/// Numbers that are numbers, normals of unit length, and triangles that face where their normals point.
void ExpectSound(const Mesh& p_mesh, const std::string& p_name) {
  for (std::size_t i = 0; i < p_mesh.positions.size(); ++i) {
    ASSERT_TRUE(std::isfinite(Length(p_mesh.positions[i]))) << p_name << ' ' << i;
    ASSERT_NEAR(Length(p_mesh.normals[i]), 1, 1e-6) << p_name << ' ' << i;
  }
  for (std::size_t i = 0; i < p_mesh.indices.size(); i += 3) {
    const Point first = p_mesh.Corner(i), face = Cross(p_mesh.Corner(i + 1) - first, p_mesh.Corner(i + 2) - first);
    for (std::size_t k = i; k < i + 3; ++k)
      ASSERT_GT(Dot(face, p_mesh.normals[p_mesh.indices[k]]), 0) << p_name << ' ' << i / 3;
  }
}

} // namespace

TEST(TubeMesh, TubesAreClosedAndFaceOutward) {
  const std::tuple<const char*, Line, double> cases[] = {
      {"straight", Along(2, [](double p_t) { return Point(0, 0, 4 * p_t); }), 4},
      {"straight against the hint", Along(5, [](double p_t) { return Point(1, 2, -4 * p_t); }), 4},
      {"half circle", Along(200, [](double p_t) { return Point(std::cos(M_PI * p_t), std::sin(M_PI * p_t), 0); }),
       M_PI},
      {"helix", Along(300, Helix), std::hypot(9, 2)},
  };
  for (const auto& [name, line, length] : cases) {
    const Mesh mesh = Swept(StreamLineShape::ShapeTube, {line});
    ExpectSound(mesh, name);
    EXPECT_TRUE(IsClosed(mesh)) << name;
    const double volume = 0.03 * length; // twelve corners on a circle of radius 0.1
    EXPECT_NEAR(EnclosedVolume(mesh), volume, 0.002 * volume) << name;
  }
}

TEST(TubeMesh, WidthAndValueFollowThePoints) {
  const Mesh mesh = Swept(StreamLineShape::ShapeTube, {{{{0, 0, 0}, 1, 0.25}, {{5, 0, 0}, 3, 0.75}}});
  ASSERT_EQ(mesh.positions.size(), 2 * 12 + 2 * 13u);
  for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
    const bool end = mesh.positions[i].x > 2.5;
    EXPECT_EQ(mesh.values[i], end ? 0.75f : 0.25f) << i;
    const double radius = std::hypot(mesh.positions[i].y, mesh.positions[i].z);
    EXPECT_TRUE(std::abs(radius - (end ? 1.5 : 0.5)) < 1e-6 || radius < 1e-6) << i << ' ' << radius;
  }
}

TEST(TubeMesh, RibbonsLieFlatAndFaceUp) {
  const Line curve = Along(60, [](double p_t) { return Point(10 * p_t, std::sin(12 * p_t), 0); });
  const Mesh mesh = Swept(StreamLineShape::ShapeRibbon, {curve});
  ASSERT_EQ(mesh.positions.size(), 120u);
  ASSERT_EQ(mesh.indices.size(), 3 * 118u);
  ExpectSound(mesh, "ribbon");
  for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
    EXPECT_NEAR(mesh.positions[i].z, 0, 1e-6) << i;
    EXPECT_NEAR(mesh.normals[i].z, 1, 1e-6) << i;
  }
}

TEST(TubeMesh, FramesDoNotTwist) {
  // Around a flat circle, a frame comes back as it started; one that is turned by the smallest rotation each time
  // never turns about its direction.
  Types::Matrix3 frame = Types::Matrix3::FromColumns({0, 0.6, 0.8}, {0, -0.8, 0.6}, {1, 0, 0});
  const Types::Matrix3 start = frame;
  for (int i = 1; i <= 64; ++i) {
    const double angle = 2 * M_PI * i / 64;
    const Types::Matrix3 before = frame;
    frame = TubeMesh::Transported(frame, {std::cos(angle), std::sin(angle), 0});
    const Types::Matrix3 turn = frame * before.Transposed();
    // The axis of the rotation (from its antisymmetric part) is upright.
    EXPECT_NEAR(turn.Row(2).y - turn.Row(1).z, 0, 1e-12) << i;
    EXPECT_NEAR(turn.Row(0).z - turn.Row(2).x, 0, 1e-12) << i;
  }
  for (std::size_t row = 0; row < 3; ++row)
    EXPECT_NEAR(Length(frame.Row(row) - start.Row(row)), 0, 1e-12);
}

TEST(TubeMesh, FramesStayRightHandedWhereverTheyAreTaken) {
  std::mt19937 random(1);
  std::normal_distribution<double> number;
  const auto direction = [&] { return Normalize(Point(number(random), number(random), number(random))); };
  Types::Matrix3 frame;
  for (int i = 0; i < 4000; ++i) {
    // Also the opposite direction, the same one, and nearly the opposite one.
    const Point old = frame.Transposed().Row(2);
    const Point targets[] = {direction(), -old, old, Normalize(-old + direction() * 1e-5), direction()};
    const Point& target = targets[i % 5];
    frame = TubeMesh::Transported(frame, target);
    const Types::Matrix3 columns = frame.Transposed();
    EXPECT_NEAR(Length(columns.Row(2) - target), 0, 1e-12) << i;
    EXPECT_NEAR(Length(Cross(columns.Row(0), columns.Row(1)) - target), 0, 1e-12) << i;
    EXPECT_NEAR(Dot(columns.Row(0), columns.Row(1)), 0, 1e-12) << i;
  }
}

TEST(TubeMesh, BrokenLinesStaySound) {
  // The points, the rings of the pieces that are left, and those pieces.
  const std::tuple<const char*, Line, std::size_t, std::size_t> cases[] = {
      {"empty", {}, 0, 0},
      {"one point", {{{1, 2, 3}}}, 0, 0},
      {"all in one place", {{{1, 2, 3}}, {{1, 2, 3}}, {{1, 2, 3}}}, 0, 0},
      {"coincident points", {{{0, 0, 0}}, {{0, 0, 0}}, {{1, 0, 0}}, {{1, 1e-9, 0}}, {{2, 0, 0}}, {{2, 0, 0}}}, 3, 1},
      {"not finite", {{{0, 0, 0}}, {{NAN, 0, 0}}, {{1, 0, INFINITY}}, {{2, 0, 0}}, {{3, 0, 0}, 1, NAN}}, 2, 1},
      {"too far", {{{0, 0, 0}}, {{1e300, 0, 0}}, {{2, 0, 0}}}, 2, 1},
      {"without width",
       {{{0, 0, 0}, 1}, {{1, 0, 0}, 0}, {{2, 0, 0}, -1}, {{3, 0, 0}, NAN}, {{4, 0, 0}, INFINITY}, {{5, 0, 0}, 1}},
       2,
       1},
      {"there and back", {{{0, 0, 0}}, {{5, 0, 0}}, {{0, 0, 0}}}, 4, 2},
      {"to and fro", {{{0, 0, 0}}, {{5, 0, 0}}, {{1, 0, 0}}, {{6, 0, 0}}, {{9, 0, 0}}}, 7, 3},
      {"right angle", {{{0, 0, 0}}, {{5, 0, 0}}, {{5, 5, 0}}}, 3, 1},
  };
  for (const auto& [name, line, rings, pieces] : cases) {
    const Mesh mesh = Swept(StreamLineShape::ShapeTube, {line});
    ExpectSound(mesh, name);
    EXPECT_EQ(mesh.positions.size(), 12 * rings + 26 * pieces) << name;
    EXPECT_EQ(IsClosed(mesh), pieces > 0) << name;
  }
}

TEST(TubeMesh, LinesAreGatheredInOneMesh) {
  const Line line = Along(7, Helix);
  const Mesh one = Swept(StreamLineShape::ShapeTube, {line});
  const Mesh two = Swept(StreamLineShape::ShapeTube, {line, line});
  EXPECT_EQ(two.positions.size(), 2 * one.positions.size());
  EXPECT_NEAR(EnclosedVolume(two), 2 * EnclosedVolume(one), 1e-6);
  EXPECT_TRUE(Swept(StreamLineShape::ShapeLine, {line}).positions.empty());
  EXPECT_TRUE(IsClosed(Swept(StreamLineShape::ShapeCustom, {line})));
  EXPECT_GT(EnclosedVolume(Swept(StreamLineShape::ShapeCustom, {line})), 0);
}
