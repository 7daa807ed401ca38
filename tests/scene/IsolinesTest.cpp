#include "scene/Isolines.h"

#include "scene/Ticks.h"
#include "tests/support/Grids.h"
#include "tests/support/Test.h"

namespace {

using Line = Isolines::Line;

/// The area inside a closed line, positive where it runs counter-clockwise.
double Area(const Line& p_line) {
  double area = 0;
  for (std::size_t i = 1; i < p_line.points.size(); ++i)
    area += Cross(p_line.points[i - 1], p_line.points[i]).z / 2;
  return area;
}

double Hill(double p_x, double p_y) {
  return -p_x * p_x - p_y * p_y;
}

} // namespace

TEST(Isolines, ContoursOfAHillAreCircles) {
  Doubles uneven = Even(161, -2, 2);
  for (double& x : uneven)
    x *= std::abs(x) / 2; // denser in the middle
  Doubles down = Even(151, 2, -2);
  const std::tuple<const char*, Doubles, Doubles> cases[] = {
      {"even", Even(121, -2, 2), Even(131, -2, 2)},
      {"uneven", uneven, Even(131, -2, 2)},
      {"y descends", Even(121, -2, 2), down},
      {"both descend", down, down},
  };
  for (const auto& [name, x, y] : cases) {
    const Isolines hill(x, y, AtNodes(x, y, Hill));
    for (const double radius : {0.3, 1.0, 1.9}) {
      const std::vector<Line> lines = hill.At(-radius * radius);
      ASSERT_EQ(lines.size(), 1U) << name;
      EXPECT_TRUE(lines[0].isClosed && lines[0].points.front() == lines[0].points.back()) << name;
      for (const Point& point : lines[0].points) {
        ASSERT_NEAR(std::hypot(point.x, point.y), radius, 1e-3) << name;
        ASSERT_EQ(point.z, -radius * radius) << name;
      }
      EXPECT_NEAR(lines[0].Length(), 2 * M_PI * radius, 3e-3) << name;
      EXPECT_NEAR(Area(lines[0]), M_PI * radius * radius, 3e-3) << name << ": counter-clockwise";
    }
    const std::vector<Line> cut = hill.At(-6.25, 9); // a radius of 2.5, beyond the sides and within the corners
    ASSERT_EQ(cut.size(), 4U) << name;
    for (const Line& line : cut) {
      EXPECT_FALSE(line.isClosed) << name;
      EXPECT_EQ(line.points.front().z, 9) << name;
      EXPECT_TRUE(std::abs(std::abs(line.points.front().x) - 2) < 1e-12 ||
                  std::abs(std::abs(line.points.front().y) - 2) < 1e-12)
          << name;
      EXPECT_NEAR(line.Length(), 2.5 * (M_PI / 2 - 2 * std::acos(2 / 2.5)), 5e-3) << name;
    }
  }
}

// Random values have saddles, touching rings and short lines of every kind. Each crossed edge is passed once, by one
// line; all that is checked here follows from the values alone.
TEST(Isolines, PassEveryCrossedEdgeOnceAndOnTheRightSide) {
  for (unsigned int seed = 0; seed < 40; ++seed) {
    std::mt19937 random(seed);
    const bool integers = seed % 2 == 1; // many values equal the level
    const Doubles x = Even(12, 0, 11), y = Even(9, 0, 8);
    const std::vector<double> values = AtNodes(x, y, [&](double, double) {
      const auto number = static_cast<double>(random() % 4096);
      return integers ? std::floor(number / 1024) : number / 1024;
    });
    const auto at = [&](std::size_t p_i, std::size_t p_j) { return values[p_i + 12 * p_j]; };
    constexpr double Level = 2;
    std::map<std::pair<double, double>, int> crossings;
    for (std::size_t j = 0; j < 9; ++j)
      for (std::size_t i = 0; i < 12; ++i)
        for (const auto& [di, dj] : {std::pair<std::size_t, std::size_t>(1, 0), {0, 1}}) {
          if (i + di > 11 || j + dj > 8 || (at(i, j) >= Level) == (at(i + di, j + dj) >= Level))
            continue;
          const double share = (Level - at(i, j)) / (at(i + di, j + dj) - at(i, j));
          ++crossings[{x[i] + share * static_cast<double>(di), y[j] + share * static_cast<double>(dj)}];
        }
    std::map<std::pair<double, double>, int> passed;
    for (const Line& line : Isolines(x, y, values).At(Level)) {
      ASSERT_GE(line.points.size(), 2U);
      for (std::size_t i = line.isClosed ? 1 : 0; i < line.points.size(); ++i)
        ++passed[{line.points[i].x, line.points[i].y}];
      for (const Point& end : {line.points.front(), line.points.back()})
        EXPECT_TRUE(line.isClosed || end.x == 0 || end.x == 11 || end.y == 0 || end.y == 8) << seed;
      for (std::size_t i = 1; i < line.points.size() && !integers; ++i) {
        // Within a cell, the corner that lies most to the left of the line is above the level.
        const Point a = line.points[i - 1], b = line.points[i], middle = (a + b) * 0.5;
        const std::size_t ci = static_cast<std::size_t>(middle.x), cj = static_cast<std::size_t>(middle.y);
        double most = -1, value = NaN;
        for (const auto& [di, dj] : {std::pair<std::size_t, std::size_t>(0, 0), {1, 0}, {0, 1}, {1, 1}}) {
          const double side = Cross(b - a, Point(x[ci + di], y[cj + dj], 2) - a).z;
          if (side > most) {
            most = side;
            value = at(ci + di, cj + dj);
          }
        }
        const int above = (at(ci, cj) >= Level) + (at(ci + 1, cj) >= Level) + (at(ci, cj + 1) >= Level) +
                          (at(ci + 1, cj + 1) >= Level);
        EXPECT_TRUE(above == 2 || value >= Level) << seed;
      }
    }
    if (integers) { // crossings at nodes coincide
      for (const auto& [position, count] : passed)
        EXPECT_TRUE(crossings.count(position) == 1 && count <= crossings[position]) << seed;
    } else {
      EXPECT_EQ(passed, crossings) << seed;
    }
  }
}

TEST(Isolines, SaddlesFollowTheMeanOfTheirNodes) {
  const Doubles two{0, 1};
  for (const double level : {0.4, 0.6}) {
    // Above at (0, 0) and (1, 1); the mean is a half.
    const std::vector<Line> lines = Isolines(two, two, Doubles{1, 0, 0, 1}).At(level);
    ASSERT_EQ(lines.size(), 2U);
    // A high middle connects the corners above: lines go around those below, (1, 0) and (0, 1).
    const bool connected = level < 0.5;
    for (const Line& line : lines) {
      ASSERT_EQ(line.points.size(), 2U);
      const Point middle = (line.points[0] + line.points[1]) * 0.5;
      EXPECT_EQ((middle.x < 0.5) == (middle.y < 0.5), !connected) << level;
      const Point toLeft = Cross(Point(0, 0, 1), line.points[1] - line.points[0]);
      const Point center(0.5, 0.5, level);
      EXPECT_EQ(Dot(toLeft, center - middle) > 0, connected) << "above at the left";
    }
  }
}

TEST(Isolines, EndAtMissingNodes) {
  const Doubles x = Even(41, -2, 2);
  const Isolines hill(x, x, AtNodes(x, x, [](double p_x, double p_y) {
                        return std::abs(p_x - 1) < 0.15 && std::abs(p_y) < 0.15 ? NaN : Hill(p_x, p_y);
                      }));
  EXPECT_EQ(hill.Range().max, 0);
  const std::vector<Line> ring = hill.At(-1);
  ASSERT_EQ(ring.size(), 1U);
  EXPECT_FALSE(ring[0].isClosed);
  for (const Point& end : {ring[0].points.front(), ring[0].points.back()})
    EXPECT_NEAR(std::abs(end.y), 0.2, 1e-12) << "where the missing cells begin";
  EXPECT_GT(ring[0].points.front().y, 0) << "counter-clockwise";
  EXPECT_NEAR(ring[0].Length(), 2 * M_PI - 0.4, 0.02);
  EXPECT_TRUE(Isolines(x, x, std::vector<double>(x.size() * x.size(), NaN)).At(0).empty());
}

TEST(Isolines, SeveralLevelsComeInTheirOrder) {
  const Doubles x = Even(41, -2, 2);
  const Isolines hill(x, x, AtNodes(x, x, Hill));
  std::vector<double> levels;
  for (const Line& line : hill.AtAll(Ticks::Linear(-3, -1, 5).Values(), 0)) {
    levels.push_back(line.level);
    EXPECT_EQ(line.points.front().z, 0);
  }
  EXPECT_EQ(levels, (std::vector<double>{-3, -2.5, -2, -1.5, -1}));
  EXPECT_EQ(hill.AtAll(levels).back().points.front().z, -1);
  // Nothing at a peak, on a plateau, beyond the values, or at NaN.
  for (const double level : {0.0, -8.0, 1.0, -9.0, NaN})
    EXPECT_TRUE(hill.At(level).empty()) << level;
  EXPECT_TRUE(Isolines(x, x, Array1::Constant(5, x.size() * x.size())).At(5).empty());
  EXPECT_TRUE(Isolines().At(0).empty());
}

TEST(Isolines, NameWhatIsWrong) {
  const Doubles two{0, 1};
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { Isolines(two, Doubles{1}, two); }),
            "Isolines: y: expected 2 nodes at least, got 1");
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] {
              Isolines(two, two, Doubles{1, 2, 3});
            }),
            "Isolines: values: expected 4 elements, got 3");
}
