#include "library/Icosphere.h"
#include "tests/support/Test.h"

TEST(Icosphere, IsClosedEvenAndFacesOutward) {
  const double flatness[] = {0.149, 0.0489, 0.0133, 0.00339, 0.000853}; // by divisions
  std::vector<Point> coarser;
  for (unsigned int divisions = 0; divisions < 5; ++divisions) {
    SCOPED_TRACE(divisions);
    const Icosphere sphere(divisions);
    const std::size_t triangles = std::size_t(20) << (2 * divisions);
    ASSERT_EQ(sphere.indices.size(), 3 * triangles);
    ASSERT_EQ(sphere.positions.size(), triangles / 2 + 2);
    EXPECT_TRUE(std::equal(coarser.begin(), coarser.end(), sphere.positions.begin()));
    coarser = sphere.positions;
    for (const Point& position : sphere.positions)
      EXPECT_NEAR(Types::Length(position), 1, 1e-15);

    std::set<std::pair<std::uint32_t, std::uint32_t>> edges; // each from one end to the other, once a direction
    double shortest = 2, longest = 0;
    for (std::size_t i = 0; i < sphere.indices.size(); i += 3) {
      const std::uint32_t corners[] = {sphere.indices[i], sphere.indices[i + 1], sphere.indices[i + 2]};
      const Point& a = sphere.positions.at(corners[0]);
      EXPECT_GT(Dot(Cross(sphere.positions.at(corners[1]) - a, sphere.positions.at(corners[2]) - a), a), 0);
      for (int k = 0; k < 3; ++k) {
        const std::uint32_t from = corners[k], to = corners[(k + 1) % 3];
        edges.emplace(from, to);
        const double length = Types::Length(sphere.positions.at(to) - sphere.positions.at(from));
        shortest = std::min(shortest, length);
        longest = std::max(longest, length);
      }
    }
    EXPECT_EQ(edges.size(), 3 * triangles);
    for (const auto& [from, to] : edges)
      EXPECT_EQ(edges.count({to, from}), 1u);
    EXPECT_LT(longest / shortest, 1.25);
    // The middle of the longest edge.
    EXPECT_NEAR(1 - std::sqrt(1 - longest * longest / 4), flatness[divisions], 0.003 * flatness[divisions]);
  }
}

TEST(Icosphere, RefusesTooManyDivisions) {
  EXPECT_EQ(ErrorOf<std::invalid_argument>([] { Icosphere(11); }), "an icosphere of 11 divisions; the most are 10");
}
