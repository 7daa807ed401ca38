#include "library/ComputeNormals.h"
#include "tests/support/Test.h"

namespace {

using Indices = std::vector<std::uint32_t>;

const Point Up(0, 0, 1);

std::vector<Point> NormalsOf(const std::vector<Point>& p_positions, const Indices& p_indices) {
  return ComputeNormals(p_positions.data(), p_positions.size(), p_indices.data(), p_indices.size());
}

void ExpectNear(const Point& p_a, const Point& p_b) {
  EXPECT_LE(Types::Length(p_a - p_b), 1e-12) << p_a.x << ' ' << p_a.y << ' ' << p_a.z;
}

/// The corners of a cube, its faces divided in a way that depends on the number.
Indices Cube(unsigned int p_number) {
  const std::array<std::uint32_t, 4> faces[] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4},
                                                {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  Indices indices;
  for (const auto& q : faces) {
    if ((p_number & 1) != 0)
      indices.insert(indices.end(), {q[0], q[1], q[2], q[0], q[2], q[3]});
    else
      indices.insert(indices.end(), {q[1], q[2], q[3], q[1], q[3], q[0]});
    p_number /= 2;
  }
  return indices;
}

} // namespace

TEST(ComputeNormals, WeightsByAngles) {
  for (const double scale : {1.0, 1e-200, 1e200}) {
    std::vector<Point> corners;
    for (int i = 0; i < 8; ++i)
      corners.push_back(Point(i & 1, i >> 1 & 1, i >> 2) * scale);
    for (unsigned int number = 0; number < 64; ++number) {
      const std::vector<Point> normals = NormalsOf(corners, Cube(number));
      for (std::size_t i = 0; i < 8; ++i)
        ExpectNear(normals[i], Types::Normalize(corners[i] / scale - Point(0.5, 0.5, 0.5)));
    }
  }
  // A right angle of the x-y plane and an eighth of a turn of the x-z plane.
  ExpectNear(NormalsOf({{}, {1, 0, 0}, {0, 2, 0}, {3, 0, 3}}, {0, 1, 2, 0, 1, 3})[0],
             Types::Normalize(Point(0, -1, 2)));
}

TEST(ComputeNormals, LeavesOutWhatIsNoTriangle) {
  const std::vector<Point> points = {{0, 0, 0},   {0, 1, 0},        {0, 0, 1}, {0, 2, 0},
                                     {NAN, 0, 0}, {0, Infinity, 0}, {9, 9, 9}};
  const Indices triangle = {0, 1, 2};
  for (const Indices& more : std::vector<Indices>{{},
                                                  {0, 1, 3},             // on one line
                                                  {0, 0, 0},             // a point
                                                  {0, 1, 4},             // not finite
                                                  {5, 0, 1},             // not finite
                                                  {0, 1, 7},             // past the end
                                                  {0xFFFFFFFF, 0, 1},    // past the end
                                                  {3, 0},                // left over
                                                  {0, 3, 6, 3, 0, 6}}) { // both sides
    Indices indices = triangle;
    indices.insert(indices.end(), more.begin(), more.end());
    const std::vector<Point> normals = NormalsOf(points, indices);
    for (std::size_t i = 0; i < points.size(); ++i)
      ExpectNear(normals[i], i < 3 ? Point(1, 0, 0) : Up);
  }
  // Both sides of a triangle, but for rounding.
  std::mt19937 random(3);
  std::uniform_real_distribution<double> any(-1, 1);
  for (int i = 0; i < 100; ++i) {
    std::vector<Point> corners;
    for (int k = 0; k < 3; ++k)
      corners.emplace_back(any(random), any(random), any(random));
    EXPECT_EQ(NormalsOf(corners, {0, 1, 2, 1, 0, 2}), std::vector<Point>(3, Up));
  }
  // A point on an edge, off the line by the rounding of a float.
  ExpectNear(NormalsOf({{0, 0, 0}, {0, 1, 0}, {0, 0, 1}, {3e-8, 0.5, 0}}, {0, 3, 1, 0, 1, 2})[0], {1, 0, 0});
  EXPECT_TRUE(ComputeNormals(static_cast<const Point*>(nullptr), 3, triangle.data(), 3).empty());
  EXPECT_EQ(ComputeNormals(points.data(), 2, nullptr, 3), std::vector<Point>(2, Up));
}

TEST(ComputeNormals, OfFloatsAndOfModels) {
  std::istringstream stream("g a\nv 0 0 0\nv 0 1 0\nv 0 0 1\nv 5 5 5\nf 1 2 3\nv 0 0 -1\ng b\nf 1 2 5\n");
  const boost::shared_ptr<ObjModel> model = LoadPolygonObj(stream);
  const ObjModel copy = *model;
  ASSERT_TRUE(ComputeNormals(*model));
  const std::vector<Ogl::Vec3<float>> expected = {{0, 0, 1}, {0, 0, 1}, {1, 0, 0}, {0, 0, 1}, {-1, 0, 0}};
  EXPECT_EQ(std::vector<Ogl::Vec3<float>>(model->Normals()->begin(), model->Normals()->end()), expected)
      << "opposite triangles cancel out";
  EXPECT_TRUE(copy.Normals()->empty());

  const std::vector<Ogl::Vec3<float>> positions(model->Vertices()->begin(), model->Vertices()->end());
  const Indices indices = {0, 1, 2, 0, 1, 4};
  EXPECT_EQ(ComputeNormals(positions.data(), positions.size(), indices.data(), indices.size()), expected);

  model->SetPrimitiveType(Ogl::VertexBuffer::LineSegments);
  EXPECT_FALSE(ComputeNormals(*model));
  model->SetPrimitiveType(Ogl::VertexBuffer::Triangles);
  model->Groups()->at(1).reset();
  EXPECT_TRUE(ComputeNormals(*model));
  EXPECT_EQ(model->Normals()->front(), (Ogl::Vec3<float>{-1, 0, 0}));
  model->SetVertices({});
  EXPECT_TRUE(ComputeNormals(*model));
  EXPECT_TRUE(model->Normals()->empty());
}

TEST(ComputeNormals, AreTheSameOnAnyNumberOfThreads) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> any(-1, 1);
  std::vector<Point> points;
  for (int i = 0; i < 20000; ++i)
    points.emplace_back(any(random), any(random), i % 100 == 0 ? NAN : any(random));
  Indices indices;
  for (int i = 0; i < 3 * 120000; ++i)
    indices.push_back(static_cast<std::uint32_t>(random() % (points.size() + 1)));
  const auto normals = [&](int p_threads) {
    return ComputeNormals(points.data(), points.size(), indices.data(), indices.size(),
                          Vek::Chart::Utility::Threads(p_threads));
  };
  const std::vector<Point> expected = normals(1);
  for (const int threads : {2, 3, 7})
    EXPECT_TRUE(normals(threads) == expected) << threads;
}
