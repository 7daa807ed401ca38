#include "scene/SurfaceMesh.h"

#include "testing/Surface.h"
#include "tests/support/Grids.h"
#include "tests/support/Test.h"

namespace {

Point Widened(const SurfaceMesh::Vector& p_vector) {
  return {p_vector.x, p_vector.y, p_vector.z};
}

/// The area in x and y of the triangles of a level, which all must face up.
double AreaFromAbove(const SurfaceMesh& p_mesh, std::size_t p_level) {
  double area = 0;
  const std::vector<unsigned int>& indices = p_mesh.indices.at(p_level);
  for (std::size_t i = 0; i < indices.size(); i += 3) {
    const Point a = Widened(p_mesh.positions.at(indices[i]));
    const double twice =
        Cross(Widened(p_mesh.positions.at(indices[i + 1])) - a, Widened(p_mesh.positions.at(indices[i + 2])) - a).z;
    EXPECT_GT(twice, 0) << "counter-clockwise seen from above";
    area += twice / 2;
  }
  return area;
}

} // namespace

TEST(SurfaceMesh, HasTheNodesOfItsGrid) {
  const SurfaceMesh mesh(Doubles{10, 12, 16}, Doubles{5, 6}, Doubles{1, 2, 3, 4, 5, 6}, Doubles{10, 20, 30, 40, 50, 60},
                         {{10, 5, 1}, {1, 2, 10}, 1, 0});
  using V = SurfaceMesh::Vector;
  EXPECT_EQ(mesh.positions, (std::vector<V>{{0, 0, 0}, {2, 0, 10}, {6, 0, 20}, {0, 2, 30}, {2, 2, 40}, {6, 2, 50}}));
  EXPECT_EQ(mesh.values, (std::vector<float>{10, 20, 30, 40, 50, 60}));
  EXPECT_EQ(mesh.indices, (std::vector<std::vector<unsigned int>>{{0, 1, 4, 0, 4, 3, 1, 2, 5, 1, 5, 4}}));
  EXPECT_EQ(mesh.bounds, Types::BoundingBox_Base<double>({0, 0, 0}, {6, 2, 50}));
  EXPECT_TRUE(mesh.columns == 3 && mesh.rows == 2 && mesh.missing == 0);
  EXPECT_EQ(SurfaceMesh(Doubles{0, 1}, Doubles{0, 1}, Doubles{1, 2, 3, 4}).values, (std::vector<float>{1, 2, 3, 4}));
}

// Differences of second order are exact for a paraboloid, on uneven axes too; borders are of first order.
TEST(SurfaceMesh, NormalsAreThoseOfTheStretchedSurface) {
  const Doubles up{-3, -2.5, -1, 0, 0.25, 1, 3, 7}, down{4, 2, 1.5, 0, -1, -1.25, -6};
  const Point origin(1e6, -1e6, 30), scale(2, 0.5, 10);
  for (const auto& [x, y] : {std::pair(up, down), std::pair(down, up), std::pair(up, up)}) {
    Doubles farX = x, farY = y;
    for (double& number : farX)
      number += origin.x;
    for (double& number : farY)
      number += origin.y;
    const auto heights =
        AtNodes(x, y, [](double p_x, double p_y) { return 30 + 2 * p_x * p_x - 3 * p_x * p_y + p_y * p_y + 5 * p_y; });
    const SurfaceMesh mesh(farX, farY, heights, {}, {origin, scale, 1, 0});
    AreaFromAbove(mesh, 0);
    for (std::size_t j = 1; j + 1 < y.size(); ++j)
      for (std::size_t i = 1; i + 1 < x.size(); ++i) {
        const double slopeX = (4 * x[i] - 3 * y[j]) * scale.z / scale.x;
        const double slopeY = (-3 * x[i] + 2 * y[j] + 5) * scale.z / scale.y;
        const Point expected = Normalize(Point(-slopeX, -slopeY, 1));
        ASSERT_NEAR(Length(Widened(mesh.normals[i + x.size() * j]) - expected), 0, 1e-6) << i << ' ' << j;
      }
    // A halo gives the same interior, without the border.
    const SurfaceMesh inner(farX, farY, heights, {}, {origin, scale, 1, 1});
    ASSERT_EQ(inner.positions.size(), (x.size() - 2) * (y.size() - 2));
    EXPECT_EQ(inner.positions[0], mesh.positions[x.size() + 1]);
    EXPECT_EQ(inner.normals[0], mesh.normals[x.size() + 1]);
    EXPECT_EQ(inner.values[x.size() - 2], mesh.values[2 * x.size() + 1]);
  }
  const SurfaceMesh plane(up, up, AtNodes(up, up, [](double p_x, double p_y) { return 2 * p_x - p_y; }));
  for (const SurfaceMesh::Vector& normal : plane.normals)
    ASSERT_NEAR(Length(Widened(normal) - Normalize(Point(-2, 1, 1))), 0, 1e-6) << "borders included";
}

TEST(SurfaceMesh, LevelsHalveTheGridAndCoverIt) {
  for (const auto& [columns, rows] : {std::pair<std::size_t, std::size_t>(17, 9), {18, 5}, {2, 2}, {3, 2}, {100, 63}}) {
    Doubles x, y;
    for (std::size_t i = 0; i < columns; ++i)
      x.push_back(static_cast<double>(i * i));
    for (std::size_t i = 0; i < rows; ++i)
      y.push_back(-static_cast<double>(i));
    SurfaceMesh mesh(x, y, Array1::Constant(1, columns * rows), {}, {{}, {1, 1, 1}, 99, 0});
    const double area = x.back() * -y.back();
    std::size_t triangles = 2 * (columns - 1) * (rows - 1);
    for (std::size_t level = 0; level < mesh.indices.size(); ++level) {
      EXPECT_NEAR(AreaFromAbove(mesh, level), area, 1e-9 * area) << columns << ' ' << level;
      EXPECT_LE(mesh.indices[level].size() / 3, triangles) << columns << ' ' << level;
      triangles = level == 0 ? triangles : mesh.indices[level].size() / 3;
    }
    EXPECT_EQ(mesh.indices.front().size(), 6 * (columns - 1) * (rows - 1));
    EXPECT_EQ(mesh.indices.back().size(), 6U) << "the last level is a single cell";
    const std::size_t levels = mesh.indices.size();
    const std::vector<Ogl::VertexData> data = mesh.TakeData();
    ASSERT_EQ(data.size(), levels);
    EXPECT_EQ(data.front().Vertices().data, data.back().Vertices().data) << "shared";
    EXPECT_TRUE(mesh.positions.empty() && mesh.indices.empty());
    EXPECT_EQ(SurfaceOf(data.front()).normals.at(0), Point(0, 0, 1));
  }
}

TEST(SurfaceMesh, MissingHeightsAreHoles) {
  const Doubles axis{0, 1, 2, 3, 4};
  auto heights = AtNodes(axis, axis, [](double p_x, double p_y) { return p_x + 10 * p_y; });
  heights[12] = NaN;     // the middle
  heights[4] = Infinity; // a corner
  const SurfaceMesh mesh(axis, axis, heights);
  EXPECT_EQ(mesh.missing, 2U);
  EXPECT_DOUBLE_EQ(AreaFromAbove(mesh, 0), 16 - 5 * 0.5) << "half of each cell around";
  for (const unsigned int index : mesh.indices[0])
    EXPECT_TRUE(index != 12 && index != 4);
  EXPECT_TRUE(std::isnan(mesh.values[12]) && mesh.positions[12].z == 0 && mesh.normals[12].z == 1);
  EXPECT_NEAR(Length(Widened(mesh.normals[11]) - Normalize(Point(-1, -10, 1))), 0, 1e-6) << "beside the hole";
  SurfaceMesh none(axis, axis, Array1::Constant(NaN, 25));
  EXPECT_TRUE(none.bounds.Empty() && none.indices[0].empty());
  EXPECT_TRUE(none.TakeData().at(0).Vertices().Empty()) << "nothing to draw";
}

TEST(SurfaceMesh, NamesWhatIsWrong) {
  const Doubles two{0, 1}, four{1, 2, 3, 4};
  const Refusals cases = {
      {"SurfaceMesh: heights: expected 4 elements, got 2", [&] { SurfaceMesh(two, two, two); }},
      {"SurfaceMesh: values: expected 4 elements, got 2", [&] { SurfaceMesh(two, two, four, two, {}); }},
      {"SurfaceMesh: y: expected ascending or descending finite numbers, got 1 after 1",
       VEK_CALL(SurfaceMesh(two, Doubles{1, 1}, four))},
      {"SurfaceMesh: expected two rows and columns at least beside a halo of 1, got 2 columns and 2 rows",
       VEK_CALL(SurfaceMesh(two, two, four, {}, {{}, {1, 1, 1}, 1, 1}))},
      {"SurfaceMesh: expected a finite origin, and a finite scale that is not 0 in x and y",
       VEK_CALL(SurfaceMesh(two, two, four, {}, {{}, {0, 1, 1}, 1, 0}))},
  };
  ExpectErrors(cases);
}
