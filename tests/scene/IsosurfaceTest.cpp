#include "scene/Isosurface.h"

#include "testing/Surface.h"
#include "tests/support/Grids.h"
#include "tests/support/Test.h"

namespace {

Point At(const Isosurface& p_surface, std::size_t p_corner) {
  const Isosurface::Vector& at = p_surface.positions.at(p_surface.indices[p_corner]);
  return {at.x, at.y, at.z};
}

/// The volume inside, if the surface is closed and its triangles face outwards.
double VolumeOf(const Isosurface& p_surface) {
  double volume = 0;
  for (std::size_t i = 0; i < p_surface.indices.size(); i += 3)
    volume += Dot(At(p_surface, i), Cross(At(p_surface, i + 1), At(p_surface, i + 2))) / 6;
  return volume;
}

double AreaOf(const Isosurface& p_surface) {
  double area = 0;
  for (std::size_t i = 0; i < p_surface.indices.size(); i += 3)
    area += Length(Cross(At(p_surface, i + 1) - At(p_surface, i), At(p_surface, i + 2) - At(p_surface, i))) / 2;
  return area;
}

/// Every edge of a triangle is passed once in each direction, or once alone where both ends satisfy `p_isBorder`.
/// Returns the number of edges at borders.
std::size_t ExpectWatertight(const Isosurface& p_surface, const std::string& p_name,
                             const std::function<bool(const Point&)>& p_isBorder) {
  std::map<std::pair<unsigned int, unsigned int>, int> passes;
  for (std::size_t i = 0; i < p_surface.indices.size(); ++i) {
    const std::size_t next = i % 3 == 2 ? i - 2 : i + 1;
    ++passes[{p_surface.indices[i], p_surface.indices[next]}];
  }
  std::size_t borders = 0;
  for (const auto& [edge, count] : passes) {
    EXPECT_EQ(count, 1) << p_name;
    if (passes.count({edge.second, edge.first}) != 0)
      continue;
    ++borders;
    for (const unsigned int end : {edge.first, edge.second}) {
      const Isosurface::Vector& at = p_surface.positions[end];
      EXPECT_TRUE(p_isBorder({at.x, at.y, at.z})) << p_name << ' ' << at.x << ' ' << at.y << ' ' << at.z;
    }
  }
  return borders;
}

} // namespace

// Random nodes meet all 256 cases, and all pairs of them across a face, in a few cells.
TEST(Isosurface, IsWatertightOnRandomValues) {
  for (unsigned int seed = 0; seed < 60; ++seed) {
    std::mt19937 random(seed);
    const std::array<Doubles, 3> axes = {Even(9, 0, 8), Even(8, 0, 7), Even(7, 0, 6)};
    const bool levels = seed % 3 == 0; // many nodes at the level itself
    const auto values = AtNodes(axes[0], axes[1], axes[2], [&](const Point&) {
      return levels ? static_cast<double>(random() % 3) - 1 : static_cast<double>(random() % 1000) / 500 - 1;
    });
    const Isosurface surface(axes[0], axes[1], axes[2], values, 0);
    const auto isOutside = [](const Point& p_at) {
      return p_at.x == 0 || p_at.y == 0 || p_at.z == 0 || p_at.x == 8 || p_at.y == 7 || p_at.z == 6;
    };
    EXPECT_GT(surface.indices.size(), 1000U) << seed;
    EXPECT_GT(ExpectWatertight(surface, std::to_string(seed), isOutside), 50U) << seed;
    // Enclosed by values below the level, it is closed, and the corners above lie inside.
    const auto inner = AtNodes(axes[0], axes[1], axes[2], [&](const Point& p_at) {
      return isOutside(p_at) ? -1 : values[static_cast<std::size_t>(p_at.x + 9 * p_at.y + 72 * p_at.z)];
    });
    const Isosurface closed(axes[0], axes[1], axes[2], inner, 0);
    EXPECT_EQ(ExpectWatertight(closed, std::to_string(seed), [](const Point&) { return false; }), 0U) << seed;
    EXPECT_GT(VolumeOf(closed), 0) << seed;
    const std::size_t above = static_cast<std::size_t>(
        std::count_if(inner.begin(), inner.end(), [](double p_value) { return p_value >= 0; }));
    EXPECT_LT(VolumeOf(closed), static_cast<double>(above)) << "at most a cell around each node above";
  }
}

TEST(Isosurface, SurfaceOfAQuadraticFunctionIsASphere) {
  Doubles uneven = Even(50, -1.2, 1.2);
  for (double& x : uneven)
    x *= std::abs(x) / 1.2 * 0.5 + 0.5;
  const Doubles down = Even(45, 1.2, -1.2);
  const std::tuple<const char*, std::array<Doubles, 3>> cases[] = {
      {"even", {Even(40, -1.2, 1.2), Even(41, -1.2, 1.2), Even(42, -1.2, 1.2)}},
      {"uneven", {uneven, Even(41, -1.2, 1.2), uneven}},
      {"y descends", {uneven, down, Even(42, -1.2, 1.2)}},
      {"all descend", {down, down, down}},
  };
  for (const auto& [name, axes] : cases) {
    const auto values = AtNodes(axes[0], axes[1], axes[2], [](const Point& p_at) { return -Dot(p_at, p_at); });
    const Isosurface sphere(axes[0], axes[1], axes[2], values, -1);
    EXPECT_EQ(ExpectWatertight(sphere, name, [](const Point&) { return false; }), 0U);
    EXPECT_NEAR(VolumeOf(sphere), 4 * M_PI / 3, 0.02) << name << ": outwards";
    EXPECT_NEAR(AreaOf(sphere), 4 * M_PI, 0.04) << name;
    for (std::size_t i = 0; i < sphere.positions.size(); ++i) {
      const Isosurface::Vector& at = sphere.positions[i];
      const Isosurface::Vector& normal = sphere.normals[i];
      const Point position(at.x, at.y, at.z);
      ASSERT_NEAR(Length(position), 1, 1.5e-3) << name;
      ASSERT_NEAR(Length(Point(normal.x, normal.y, normal.z) - Normalize(position)), 0, 0.02) << name;
    }
    EXPECT_NEAR(sphere.bounds.Extent().x, 2, 1e-2) << name;
  }
}

TEST(Isosurface, LiesInTheSceneAndTakesSeveralLevels) {
  const Doubles near = Even(31, -1.5, 1.5);
  Doubles far = near;
  for (double& x : far)
    x += 1e6;
  const auto values = AtNodes(near, near, near, [](const Point& p_at) { return Length(p_at); });
  const Isosurface::Options options{{1e6, 0, 0}, {2, 1, -1}};
  const Isosurface two(far, near, near, values, std::vector<double>{0.5, 1}, options);
  EXPECT_NEAR(two.bounds.Max().x, 2, 1e-3);
  std::map<float, double> radii;
  for (std::size_t i = 0; i < two.positions.size(); ++i) {
    const Isosurface::Vector& at = two.positions[i];
    ASSERT_NEAR(std::hypot(at.x / 2, std::hypot(at.y, at.z)), two.values[i], 0.01);
    const Point expected = -Normalize(Point(at.x / 4, at.y, at.z)); // towards smaller values
    ASSERT_NEAR(Length(Point(two.normals[i].x, two.normals[i].y, two.normals[i].z) - expected), 0, 0.05);
  }
  EXPECT_EQ(two.values.front(), 0.5F);
  EXPECT_EQ(two.values.back(), 1);
  EXPECT_EQ(ExpectWatertight(two, "two levels", [](const Point&) { return false; }), 0U);
  EXPECT_NEAR(VolumeOf(two), -2 * 4 * M_PI / 3 * 1.125, 0.1) << "smaller values are inside";
  Isosurface taken = two;
  const Ogl::VertexData data = taken.TakeData();
  EXPECT_EQ(SurfaceOf(data).positions.size(), two.positions.size());
  EXPECT_TRUE(taken.positions.empty() && taken.indices.empty());
}

// Nodes are random and some are missing, so that planes between slabs have vertices of one slab, of the other, and of
// both.
TEST(Isosurface, ResultsDoNotDependOnThreads) {
  const Doubles x = Even(41, 0, 1), y = Even(43, 0, 1), z = Even(60, 1, 0); // 105,780 nodes
  for (const unsigned int missing : {0U, 1U, 30U}) {
    std::mt19937 random(missing);
    const auto values = AtNodes(
        x, y, z, [&](const Point&) { return random() % 100 < missing ? NaN : static_cast<double>(random() % 1000); });
    const auto made = [&](int p_threads) {
      return Isosurface(x, y, z, values, Doubles{500, 900, 2000}, {}, Utility::Threads(p_threads));
    };
    const Isosurface expected = made(1);
    EXPECT_GT(expected.positions.size(), 10000U);
    for (const int threads : {2, 3, 7}) {
      const Isosurface surface = made(threads);
      EXPECT_TRUE(surface.positions == expected.positions) << threads << ' ' << missing;
      EXPECT_TRUE(surface.normals == expected.normals) << threads << ' ' << missing;
      EXPECT_EQ(surface.values, expected.values) << threads << ' ' << missing;
      EXPECT_EQ(surface.indices, expected.indices) << threads << ' ' << missing;
      EXPECT_TRUE(surface.bounds == expected.bounds) << threads << ' ' << missing;
    }
  }
}

TEST(Isosurface, HasABorderAtMissingNodes) {
  const Doubles axis = Even(21, -1.5, 1.5);
  auto values = AtNodes(axis, axis, axis, [](const Point& p_at) {
    return p_at.x > 0.8 && std::abs(p_at.y) < 0.2 && std::abs(p_at.z) < 0.2 ? NaN : 1 - Length(p_at);
  });
  const Isosurface sphere(axis, axis, axis, values, 0);
  const auto besideHole = [](const Point& p_at) {
    return p_at.x > 0.7 && std::abs(p_at.y) < 0.31 && std::abs(p_at.z) < 0.31;
  };
  EXPECT_GT(ExpectWatertight(sphere, "hole", besideHole), 8U);
  EXPECT_NEAR(AreaOf(sphere), 4 * M_PI - 0.36, 0.15);
  for (const Isosurface::Vector& normal : sphere.normals)
    EXPECT_NEAR(Length(Point(normal.x, normal.y, normal.z)), 1, 1e-5);
  EXPECT_TRUE(Isosurface(axis, axis, axis, values, 5).TakeData().Vertices().Empty());
  EXPECT_TRUE(Isosurface(axis, axis, axis, values, NaN).indices.empty());
}

TEST(Isosurface, NamesWhatIsWrong) {
  const Doubles two{0, 1}, eight(8);
  const Refusals cases = {
      {"Isosurface: values: expected 8 elements, got 2", [&] { Isosurface(two, two, two, two, 0); }},
      {"Isosurface: z: expected 2 nodes at least, got 1", [&] { Isosurface(two, two, Doubles{1}, eight, 0); }},
      {"Isosurface: expected a finite origin, and a finite scale that is not 0",
       VEK_CALL(Isosurface(two, two, two, eight, two, {{}, {1, 1, 0}}))},
  };
  ExpectErrors(cases);
}
