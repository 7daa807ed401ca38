#include "scene/VectorField.h"

#include "tests/support/Grids.h"
#include "tests/support/Test.h"

namespace {

/// A field that is linear in each coordinate, and therefore exact within every cell.
Point Trilinear(const Point& p_at) {
  return {p_at.x + 2 * p_at.y, p_at.z * p_at.x, p_at.x * p_at.y - p_at.z};
}

VectorField FieldOn(const Doubles& p_x, const Doubles& p_y, const Doubles& p_z) {
  return VectorField::Rectilinear(p_x, p_y, p_z, AtNodes(p_x, p_y, p_z, Trilinear));
}

/// The numbers 0, 1, … as the vectors' x.
std::vector<Point> Numbered(std::size_t p_count) {
  std::vector<Point> vectors;
  for (std::size_t i = 0; i < p_count; ++i)
    vectors.emplace_back(i, 0, 0);
  return vectors;
}

/// The x of the vector at a position; NaN where there is none.
double XAt(const VectorField& p_field, const Point& p_position) {
  Point vector(-77, 0, 0);
  if (p_field.Sample(p_position, vector))
    return vector.x;
  EXPECT_EQ(vector.x, -77) << "written";
  return NaN;
}

} // namespace

TEST(VectorField, IsExactForTrilinearFieldsOnAllKindsOfAxes) {
  const std::tuple<const char*, Doubles, Doubles, Doubles> cases[] = {
      {"even", {10, 12, 14}, {20, 23}, {30, 34, 38, 42}},
      {"uneven", {-4, -3.9, 2, 2.125, 9}, {0, 5, 5.5}, {-1, 100, 101}},
      {"descending", {9, 2, -3, -4}, {90, 30, -90}, {5, 0}},
      {"layer", {1, 2, 4}, {3, 7}, {-2}},
      {"section", {1, 2, 4}, {3}, {-2, 0, 8}},
      {"single node", {1}, {3}, {-2}},
  };
  std::mt19937 random(7);
  std::uniform_real_distribution<double> share(0, 1);
  for (const auto& [name, x, y, z] : cases) {
    const VectorField field = FieldOn(x, y, z);
    const Point min = field.Bounds().Min(), extent = field.Bounds().Extent();
    EXPECT_EQ(min, Point(std::min(x.front(), x.back()), std::min(y.front(), y.back()), std::min(z.front(), z.back())));
    for (int i = 0; i < 300; ++i) {
      const Point at = min + Point(share(random) * extent.x, share(random) * extent.y, share(random) * extent.z);
      Point vector;
      ASSERT_TRUE(field.Sample(at, vector)) << name;
      ASSERT_NEAR(Length(vector - Trilinear(at)), 0, 1e-10) << name;
    }
    for (std::size_t k = 0; k < z.size(); ++k)
      for (std::size_t j = 0; j < y.size(); ++j)
        for (std::size_t i = 0; i < x.size(); ++i) {
          Point vector;
          ASSERT_EQ(field.Position(i, j, k), Point(x[i], y[j], z[k])) << name;
          ASSERT_EQ(field.Node(i, j, k), Trilinear({x[i], y[j], z[k]})) << name;
          ASSERT_TRUE(field.Sample({x[i], y[j], z[k]}, vector)) << name;
          ASSERT_EQ(vector, field.Node(i, j, k)) << name;
        }
    const Point cell(field.CellSize() / 100, 0, 0), max = min + extent;
    for (const Point& outside :
         {min - cell, max + cell, Point(min.x, max.y + cell.x, min.z), Point(min.x, min.y, min.z - cell.x),
          Point(NaN, min.y, min.z), Point(min.x, Infinity, min.z)})
      EXPECT_TRUE(std::isnan(XAt(field, outside))) << name;
  }
}

// Steps of a tenth are no binary numbers: origin + 9 · 0.1 exceeds the last node by a rounding.
TEST(VectorField, HoldsOnItsBorderAlsoAtAMillion) {
  for (const double origin : {0.0, 1e6, -4e6}) {
    const VectorField field = VectorField::Regular({10, 2, 2}, {origin, 0, 0}, {0.1, 1, 1}, Numbered(40));
    for (const double x : {origin, origin + 0.9, origin + 9 * 0.1, origin - 1e-11})
      EXPECT_FALSE(std::isnan(XAt(field, {x, 1, 0}))) << origin;
    EXPECT_NEAR(XAt(field, {origin + 0.425, 0, 0}), 4.25, 1e-7) << origin;
    EXPECT_TRUE(std::isnan(XAt(field, {origin + 0.901, 0, 0}))) << origin;
  }
}

TEST(VectorField, MissingNodesTakeTheCellsAroundThem) {
  std::vector<Point> vectors = Numbered(12); // 4 x 3
  vectors[5].y = NaN;
  vectors[11].z = Infinity;
  const VectorField field = VectorField::Layer(Doubles{0, 1, 2, 3}, Doubles{0, 1, 2}, vectors, 7);
  EXPECT_EQ(field.Missing(), 2U);
  EXPECT_EQ(field.Speeds().max, 10);
  EXPECT_EQ(field.SpeedQuantile(1), 10);
  EXPECT_EQ(field.SpeedQuantile(0.5), 4);
  for (const Point& missing :
       {Point(1, 1, 7), Point(0.5, 0.5, 7), Point(1.5, 1.9, 7), Point(2.5, 1.5, 7), Point(1, 0.5, 7), Point(3, 2, 7)})
    EXPECT_TRUE(std::isnan(XAt(field, missing))) << missing.x << ' ' << missing.y;
  EXPECT_EQ(XAt(field, {2.5, 0.5, 7}), 4.5);
  EXPECT_EQ(XAt(field, {2, 0.5, 7}), 4) << "a face beside a cell that is missing";
  EXPECT_EQ(XAt(field, {0.5, 0, 7}), 0.5);
  EXPECT_EQ(XAt(field, {2, 2, 7}), 10) << "a node beside one that is missing";
  EXPECT_TRUE(std::isnan(XAt(field, {2.5, 0.5, 6.9}))) << "beside the layer";
}

TEST(VectorField, WrapsInX) {
  const std::vector<Point> ascending{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}};
  const std::vector<Point> descending{{3, 0, 0}, {2, 0, 0}, {1, 0, 0}, {0, 0, 0}};
  for (const bool descends : {false, true}) {
    VectorField field = descends ? VectorField::Layer(Doubles{270, 180, 90, 0}, Doubles{5}, descending)
                                 : VectorField::Layer(Doubles{0, 90, 180, 270}, Doubles{5}, ascending);
    EXPECT_TRUE(std::isnan(XAt(field, {315, 5, 0})));
    field.WrapX(360);
    for (const auto& [lon, expected] :
         {std::pair(45.0, 0.5), {292.5, 2.25}, {-45.0, 1.5}, {405.0, 0.5}, {720.0, 0.0}, {-90.0, 3.0}})
      EXPECT_NEAR(XAt(field, {lon, 5, 0}), expected, 1e-9) << lon << ' ' << descends;
    EXPECT_TRUE(std::isnan(XAt(field, {Infinity, 5, 0})));
  }
  VectorField closed = VectorField::Layer(Doubles{-180, 0, 180}, Doubles{0}, Numbered(3));
  closed.WrapX(360);
  EXPECT_EQ(XAt(closed, {270, 0, 0}), 0.5) << "the last column repeats the first one";
}

TEST(VectorField, TakesTablesInAnyOrder) {
  // Node (i, j) is number 10 i + j; (2, 1) is not listed, (0, 0) twice.
  const std::vector<Point> points{{5, 1, 0}, {9, 1, 0}, {2, 1, 0}, {2, 8, 0}, {5, 8, 0}, {2, 1, 0}, {NaN, 8, 0}};
  const std::vector<double> numbers{10, 20, -1, 1, 11, 0, -2};
  const VectorField field = VectorField::FromPoints(points, Array3(numbers, numbers, 0));
  EXPECT_EQ(field.Size(), (VectorField::Counts{3, 2, 1}));
  EXPECT_EQ(field.Missing(), 1U);
  EXPECT_EQ(field.Node(0, 0, 0).x, 0) << "the last one of both";
  EXPECT_EQ(field.Node(1, 1, 0).y, 11);
  EXPECT_EQ(field.Node(2, 0, 0).x, 20);
}

TEST(VectorField, NamesWhatIsWrong) {
  const Doubles two{0, 1};
  const std::vector<Point> four = Numbered(4);
  std::vector<Point> scattered;
  for (int i = 0; i < 9; ++i)
    scattered.emplace_back(i, i * i % 10 + 0.1 * i, 0);
  VectorField field = VectorField::Layer(two, two, four);
  const Refusals cases = {
      {"VectorField: x: expected 1 nodes at least, got 0", [&] { VectorField::Layer(Doubles(), two, four); }},
      {"VectorField: y: expected ascending or descending finite numbers, got 2 after 3",
       VEK_CALL(VectorField::Layer(two, Doubles{1, 3, 2}, four))},
      {"VectorField: y: expected ascending or descending finite numbers, got 3 after 3",
       VEK_CALL(VectorField::Layer(two, Doubles{3, 3}, four))},
      {"VectorField: x: expected ascending or descending finite numbers, got nan",
       VEK_CALL(VectorField::Layer(Doubles{NaN, 1}, two, four))},
      {"VectorField: vectors: expected 6 elements, got 4", VEK_CALL(VectorField::Layer(Doubles{1, 2, 3}, two, four))},
      {"VectorField: vectors: expected 0 elements, got 4",
       VEK_CALL(VectorField::Regular({0, 2, 2}, {}, {1, 1, 1}, four))},
      {"VectorField: expected 2^40 nodes at most, got 4294967296 x 4294967296 x 1",
       VEK_CALL(VectorField::Regular({1ULL << 32, 1ULL << 32, 1}, {}, {1, 1, 1}, four))},
      {"VectorField: expected points that form a grid, got 9 with 9 x, 9 y and 1 z",
       [&] { VectorField::FromPoints(scattered, Numbered(9)); }},
      {"VectorField: expected a period that is not shorter than the x axis, 1, got 0.5", [&] { field.WrapX(0.5); }},
  };
  ExpectErrors(cases);
  Point vector;
  EXPECT_FALSE(VectorField().Sample({0, 0, 0}, vector));
  EXPECT_TRUE(VectorField().Bounds().Empty() && std::isnan(VectorField().SpeedQuantile(0.5)));
}
