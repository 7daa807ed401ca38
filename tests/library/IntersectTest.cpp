#include "library/Intersect.h"
#include "tests/support/Test.h"

#include <cstdio>
#include <initializer_list>

namespace {

using boost::logic::indeterminate;
using boost::logic::tribool;
using Vector3 = Types::Vector3_Base<double>;
using Line = Types::Line3_Base<double>;
using Ray = Types::Ray_Base<double>;
using Box = Types::BoundingBox_Base<double>;
using Viewport = Types::Viewport<0>;

constexpr double Eps = std::numeric_limits<double>::epsilon();
const Vector3 Untouched(7, 8, 9);

std::string Text(tribool p_value) {
  return indeterminate(p_value) ? "indeterminate" : p_value ? "true" : "false";
}
std::string Text(const Vector3& p_v) {
  char text[128];
  std::snprintf(text, sizeof text, "(%.17g, %.17g, %.17g)", p_v.x, p_v.y, p_v.z);
  return text;
}

// Equal bits; any NaN equals any other.
bool SameBits(double p_a, double p_b) {
  return (std::isnan(p_a) && std::isnan(p_b)) || std::memcmp(&p_a, &p_b, sizeof p_a) == 0;
}
bool SameBits(const Vector3& p_a, const Vector3& p_b) {
  return SameBits(p_a.x, p_b.x) && SameBits(p_a.y, p_b.y) && SameBits(p_a.z, p_b.z);
}

TEST(IntersectPlanes, ParallelPlanesDoNotMeet) {
  const std::tuple<const char*, Types::Plane, Types::Plane, bool> cases[] = {
      {"shifted", {{0, 0, 0}, {0, 0, 1}}, {{0, 0, 1}, {0, 0, 1}}, false},
      {"coincident", {{0, 0, 0}, {0, 0, 1}}, {{5, 5, 0}, {0, 0, 1}}, false},
      {"no normal", {{0, 0, 0}, {0, 0, 0}}, {{0, 0, 1}, {1, 0, 0}}, false},
      // The squared length of the product is compared with epsilon, 2^-52; epsilon itself passes.
      {"just below", {{0, 0, 0}, {0, 0, 1}}, {{0, 0, 0}, {std::nextafter(0x1p-26, 0), 0, 1}}, false},
      {"just epsilon", {{0, 0, 0}, {0, 0, 1}}, {{0, 0, 0}, {0x1p-26, 0, 1}}, true},
      {"short normals", {{0, 0, 0}, {0, 0, 1e-4}}, {{0, 0, 0}, {1e-5, 0, 0}}, false},
  };
  for (const auto& [name, first, second, expected] : cases) {
    Line line(Untouched, Untouched);
    EXPECT_EQ(Text(Intersect::Intersection(first, second, line)), expected ? "true" : "false") << name;
    EXPECT_EQ(SameBits(line.point, Untouched) && SameBits(line.direction, Untouched), !expected) << name;
  }
}

TEST(IntersectPlanes, MeetInALineThroughSinglePrecision) {
  const Types::Plane first({0, 0, 1.0 / 3}, {0, 0, 1});
  const Types::Plane second({0.7, 0, 0}, {1, 0, 1.0 / 3});
  const float b = 1.0F / 3, squared = b * b;
  const auto c = static_cast<float>(1 + (1.0 / 3) * (1.0 / 3));
  const float determinant = c - squared;
  const double d1 = -1.0 / 3, d2 = -0.7;
  const double k1 = static_cast<float>((b * d2 - c * d1) / determinant);
  const double k2 = static_cast<float>((b * d1 - d2) / determinant);
  Line line;
  EXPECT_TRUE(bool(Intersect::Intersection(first, second, line)));
  EXPECT_TRUE(SameBits(line.point, {k2, 0, k1 + 1.0 / 3 * k2})) << Text(line.point);
  EXPECT_NE(line.point.z, 1.0 / 3) << "the loss must show";
  EXPECT_EQ(line.direction, Vector3(0, 1, 0)) << "not normalised";
  EXPECT_TRUE(bool(Intersect::Intersection({{0, 0, 1}, {0, 0, 1}}, {{0, 0, 2}, {1e-7, 0, 1}}, line)));
  EXPECT_FALSE(std::isfinite(line.point.x)) << "nearly parallel";
  EXPECT_EQ(line.direction, Vector3(0, 1e-7, 0));
}

TEST(IntersectSegment, IncludesBothEnds) {
  const Types::Plane ground({4, 4, 0}, {0, 0, 1});
  const Types::Plane longNormal({0, 0, 0}, {0, 0, 8}); // normals are taken as they are, not normalised
  const Types::Plane shortNormal({0, 0, 0}, {0, 0, 1e-17});
  const std::tuple<const char*, Types::Plane, Vector3, Vector3, const char*, Vector3> cases[] = {
      {"crosses", ground, {1, 2, 3}, {1, 2, -1}, "true", {1, 2, 0}},
      {"starts on it", ground, {1, 2, 0}, {1, 5, 6}, "true", {1, 2, 0}},
      {"ends on it", ground, {1, 2, 8}, {1, 5, 0}, "true", {1, 5, 0}},
      {"ends before it", ground, {1, 2, 8}, {1, 5, 1e-12}, "false", Untouched},
      {"leaves it", ground, {1, 2, 1e-12}, {1, 5, 8}, "false", Untouched},
      {"contained", ground, {0, 0, 0}, {1, 1, 0}, "indeterminate", Untouched},
      {"both ends within epsilon", ground, {0, 0, Eps}, {0, 0, Eps}, "indeterminate", Untouched},
      {"an epsilon long", ground, {0, 0, Eps}, {0, 0, 0}, "indeterminate", Untouched},
      {"only the start within epsilon", ground, {0, 0, Eps}, {0, 0, 2 * Eps}, "false", Untouched},
      {"only the end within epsilon", ground, {0, 0, 2 * Eps}, {0, 0, Eps}, "false", Untouched},
      {"parallel", ground, {0, 0, 1}, {1, 1, 1}, "false", Untouched},
      {"long normal", longNormal, {0, 0, Eps}, {0, 0, 0}, "true", {0, 0, 0}},
      {"short normal", shortNormal, {0, 0, 1}, {0, 0, -1}, "indeterminate", Untouched},
      {"not a number", ground, {0, 0, NaN}, {0, 0, 1}, "true", {NaN, NaN, NaN}},
  };
  for (const auto& [name, plane, from, to, result, expected] : cases) {
    Vector3 point = Untouched;
    EXPECT_EQ(Text(Intersect::Intersection(plane, from, to, point)), result) << name;
    EXPECT_TRUE(SameBits(point, expected)) << name << Text(point);
  }
  Vector3 start(1, 2, 3); // takes the point
  EXPECT_TRUE(bool(Intersect::Intersection(Types::Plane(), start, {5, 2, -1}, start)));
  EXPECT_EQ(start, Vector3(4, 2, 0));
}

TEST(IntersectRay, ReachesAsFarAsItsDirection) {
  // The far end is a rounded sum: a direction that is lost in the origin leaves a segment without length.
  const std::array<double, 2> heights[] = {{0, 0.5}, {0, 0}, {0, 1}, {0, 2}, {0, -0.5}, {1e17, 1e17}};
  std::string found;
  for (const auto& [origin, height] : heights) {
    Vector3 point = Untouched;
    found += Text(Intersect::Intersection({{0, 0, height}, {0, 0, 1}}, Ray({0, 0, origin}, {0, 0, 1}), point)) + ' ';
    EXPECT_EQ(point, height >= 0 && height <= 1 ? Vector3(0, 0, height) : Untouched) << height;
  }
  EXPECT_EQ(found, "true true true false false indeterminate ");
}

TEST(IntersectViewports, CommonPart) {
  const std::tuple<const char*, Viewport, Viewport, bool, Viewport> cases[] = {
      {"overlap", {0, 0, 10, 10}, {3, -2, 20, 5}, true, {3, 0, 7, 3}},
      {"touch at the corner", {0, 0, 10, 10}, {10, 10, 5, 5}, true, {10, 10, 0, 0}},
      {"apart in x", {0, 0, 10, 10}, {11, 0, 5, 5}, false, {}},
      {"apart in y", {0, 0, 10, 10}, {0, -6, 5, 5}, false, {}},
      {"negative width", {0, 0, -1, 10}, {0, 0, 5, 5}, false, {}},
      // 16777216 + 3 is no float and rounds to even.
      {"sums in single precision", {16777216, 0, 3, 1}, {0, 0, 16777300, 1}, true, {16777216, 0, 4, 1}},
  };
  for (const auto& [name, first, second, expected, result] : cases)
    for (const int target : {0, 1, 2}) { // also one of the arguments
      Viewport viewports[] = {first, second, {1, 2, 3, 4}};
      EXPECT_EQ(Intersect::Intersection(viewports[0], viewports[1], viewports[target]), expected) << name;
      EXPECT_EQ(viewports[target], result) << name << ", into " << target;
    }
}

// The plain rule for a box and a plane.
bool PlainCut(const Box& p_box, const Types::Plane& p_plane, std::vector<Vector3>& p_points) {
  static const int Rows[8][8] = {{0, 1, 3, 4, 5, 2, 7, 6}, {1, 5, 2, 0, 4, 6, 3, 7}, {2, 3, 1, 6, 7, 0, 5, 4},
                                 {3, 7, 0, 2, 6, 4, 1, 5}, {4, 0, 7, 5, 1, 3, 6, 2}, {5, 4, 6, 1, 0, 7, 2, 3},
                                 {6, 2, 5, 7, 3, 1, 4, 0}, {7, 6, 4, 3, 2, 5, 0, 1}};
  // The edges of a step form one path; the last one that is hit has the point.
  static const std::vector<std::pair<int, int>> Steps[6] = {
      {{1, 4}, {0, 1}, {4, 7}}, {{1, 5}}, {{2, 5}, {0, 2}, {5, 7}}, {{2, 6}}, {{3, 6}, {0, 3}, {6, 7}}, {{3, 4}}};
  p_points.clear();
  const Vector3 lo = p_box.Min(), hi = p_box.Max();
  const Vector3 corners[8] = {{lo.x, lo.y, lo.z}, {hi.x, lo.y, lo.z}, {hi.x, hi.y, lo.z}, {lo.x, hi.y, lo.z},
                              {lo.x, lo.y, hi.z}, {hi.x, lo.y, hi.z}, {hi.x, hi.y, hi.z}, {lo.x, hi.y, hi.z}};
  const Types::Plane working(p_plane.Point(), -Normalize(p_plane.Normal()));
  double distances[8] = {};
  int front = 0;
  bool below = false, above = false;
  for (int i = 0; i < 8; ++i) {
    distances[i] = Dot(working.Equation(), Types::Homogeneous::FromVector3(corners[i]));
    front = distances[i] > distances[front] ? i : front;
    below = below || distances[i] <= 0;
    above = above || distances[i] >= 0;
  }
  if (!(below && above))
    return false;
  for (const auto& step : Steps) {
    Vector3 point;
    bool hit = false;
    for (const auto& [from, to] : step)
      hit |= bool(Intersect::Intersection(working, corners[Rows[front][from]], corners[Rows[front][to]], point));
    if (hit)
      p_points.push_back(point);
  }
  return !p_points.empty();
}

struct CutCase {
  CutCase(const Box& p_box, const Types::Plane& p_plane)
      : box(p_box)
      , plane(p_plane) {}
  CutCase(const Box& p_box, const Vector3& p_fromCentre, const Vector3& p_normal)
      : CutCase(p_box, {p_box.Center() + p_fromCentre, p_normal}) {}
  Box box;
  Types::Plane plane;
};

// Random numbers for one case, seeded by its number.
class Dice {
public:
  explicit Dice(unsigned p_index)
      : _engine(p_index + 1) {}
  int Integer(int p_min, int p_max) { return p_min + static_cast<int>((_engine() >> 8) % (p_max - p_min + 1)); }
  double Real(double p_min, double p_max) { return std::uniform_real_distribution<double>(p_min, p_max)(_engine); }
  /// 2 to a random power.
  double Power(int p_min, int p_max) { return std::ldexp(1.0, Integer(p_min, p_max)); }
  double OneOf(std::initializer_list<double> p_values) {
    return p_values.begin()[Integer(0, static_cast<int>(p_values.size()) - 1)];
  }
  double Special() {
    return OneOf({0.0, -0.0, 1, -1, Infinity, -Infinity, NaN, 1e308, -1e308, 1e-308, 5e-324, -5e-324, 0.5, 1e17});
  }
  // Braces keep the order of the calls.
  Vector3 Reals(double p_min, double p_max) { return {Real(p_min, p_max), Real(p_min, p_max), Real(p_min, p_max)}; }
  Vector3 Integers(int p_min, int p_max) {
    return {1.0 * Integer(p_min, p_max), 1.0 * Integer(p_min, p_max), 1.0 * Integer(p_min, p_max)};
  }
  Vector3 Specials() { return {Special(), Special(), Special()}; }
  Box RealBox(double p_size) {
    const Vector3 min = Reals(-p_size, p_size);
    return {min, min + Reals(0, p_size)};
  }
  Vector3 CornerOf(const Box& p_box) {
    const Vector3 &a = p_box.Min(), &b = p_box.Max();
    return {OneOf({a.x, b.x}), OneOf({a.y, b.y}), OneOf({a.z, b.z})};
  }

private:
  std::minstd_rand _engine; // 31 bits a number, and cheap to seed
};

// Families of random cuts.
CutCase ProperCut(Dice& p_d) {
  return {p_d.RealBox(10), p_d.Reals(-1, 1), p_d.Reals(-3, 3)};
}
CutCase NearACorner(Dice& p_d) {
  const Box box = p_d.RealBox(10);
  const Vector3 hair = p_d.Reals(-1, 1) * (p_d.Integer(0, 1) * p_d.Power(-56, -40));
  return {box, {p_d.CornerOf(box) + hair, p_d.Reals(-1, 1)}};
}
CutCase ThroughThreeCorners(Dice& p_d) {
  const Box box = p_d.RealBox(10);
  return {box, {p_d.CornerOf(box), p_d.CornerOf(box), p_d.CornerOf(box)}};
}
CutCase AlmostAlongAnAxis(Dice& p_d) {
  return {p_d.RealBox(10), {}, Vector3(0, 1, 0) + p_d.Reals(-1, 1) * p_d.Power(-60, -45)};
}
CutCase OnALattice(Dice& p_d) {
  const Vector3 min = p_d.Integers(-2, 2);
  return {{min, min + p_d.Integers(0, 3)}, {p_d.Integers(-2, 4), p_d.Integers(-2, 2)}};
}
CutCase InvertedBox(Dice& p_d) {
  const Vector3 min = p_d.Integers(-2, 2), size = p_d.Reals(-3, 3);
  return {{min, min + size}, {min + size * 0.5, p_d.Reals(-2, 2)}};
}
CutCase TinyBox(Dice& p_d) {
  return {p_d.RealBox(p_d.Power(p_d.Integer(0, 3) == 0 ? -1060 : -51, -20)), {}, p_d.Reals(-1, 1)};
}
CutCase TinyBoxFarOut(Dice& p_d) {
  const Vector3 min = p_d.Reals(1000, 2000);
  const Box box(min, min + p_d.Reals(0, 1) * p_d.Power(-45, -20));
  return {box, {p_d.CornerOf(box), p_d.Reals(-1, 1)}};
}
CutCase HugeBox(Dice& p_d) {
  return {p_d.RealBox(p_d.Power(40, 1022)), {}, p_d.Reals(-1, 1)};
}
CutCase ExtremeNormal(Dice& p_d) {
  return {p_d.RealBox(2), {}, p_d.Reals(-1, 1) * p_d.Power(-1073, 1023)};
}
CutCase SignedZeros(Dice& p_d) {
  const Vector3 zero(p_d.OneOf({0, -0.0}), p_d.OneOf({0, -0.0}), p_d.OneOf({0, -0.0}));
  const Vector3 other = p_d.Integers(0, 1) * 2.0 - Vector3(1, 1, 1);
  return {p_d.Integer(0, 1) == 0 ? Box(zero, other) : Box(other, zero), p_d.Reals(-0.7, 0.7), p_d.Reals(-1, 1)};
}
CutCase BarelyMissing(Dice& p_d) {
  const double scale = p_d.Power(-600, 600), hair = p_d.Integer(-1, 1) * p_d.Power(-54, -1);
  const Vector3 normal = p_d.Reals(-1, 1), min = p_d.Reals(-1, 1);
  const Box box(min * scale, (min + p_d.Reals(0, 1)) * scale);
  const Vector3 support((normal.x > 0 ? box.Max() : box.Min()).x, (normal.y > 0 ? box.Max() : box.Min()).y,
                        (normal.z > 0 ? box.Max() : box.Min()).z);
  return {box, {support + normal * (hair * scale), normal * p_d.Power(-540, 500)}};
}
// A plane that touches a corner, whose distances are small sums of large terms.
CutCase TermsThatCancel(Dice& p_d) {
  const double far = p_d.Power(10, 45);
  const auto extent = [&] { return p_d.OneOf({0, far, -far}) + p_d.Real(0, 1); };
  const Vector3 min(extent(), extent(), extent());
  const Box box(min, min + p_d.Reals(0, 1) +
                         Vector3(p_d.OneOf({0, 0, far}), p_d.OneOf({0, 0, far}), p_d.OneOf({0, 0, far})));
  const Vector3 normal(p_d.OneOf({1, -1}), p_d.OneOf({1, -1}), p_d.OneOf({1, -1, 1e-3}));
  return {box, {p_d.CornerOf(box) + Cross(normal, p_d.Reals(-1, 1)), normal}};
}
// The unit normal loses a part of its y component, which huge coordinates make matter.
CutCase UnderflowingNormal(Dice& p_d) {
  const double small = p_d.Power(-56, -46), far = p_d.Power(1017, 1021);
  const Vector3 min(p_d.Real(-1, 1) * small, p_d.Real(-1, 1) * far, p_d.Real(-1, 1) * small);
  const Box box(min, min + Vector3(p_d.Real(0, 1) * small, p_d.Real(0, 1) * far, p_d.Real(0, 1) * small));
  const Vector3 normal(p_d.Real(-3, 3), 5e-324 * p_d.Integer(-2, 2), p_d.Real(-3, 3));
  Vector3 point = box.Center() + p_d.Reals(-1, 1) * small;
  point.y = p_d.Real(-2, 2) * far;
  return {box, {point, normal}};
}
CutCase SpecialNumbers(Dice& p_d) {
  const Box box{p_d.Specials(), p_d.Specials()};
  return {box, {p_d.Specials(), p_d.Integer(0, 1) == 0 ? p_d.Specials() : p_d.Reals(-1, 1)}};
}
CutCase EmptyBox(Dice& p_d) {
  return {Box(), {{}, p_d.Reals(-1, 1)}};
}

CutCase (*const Families[])(Dice&) = {ProperCut,         NearACorner,        ThroughThreeCorners,
                                      AlmostAlongAnAxis, OnALattice,         InvertedBox,
                                      TinyBox,           TinyBoxFarOut,      HugeBox,
                                      ExtremeNormal,     SignedZeros,        BarelyMissing,
                                      TermsThatCancel,   UnderflowingNormal, SpecialNumbers,
                                      EmptyBox};

TEST(IntersectBox, EqualsThePlainRuleBitForBit) {
  std::vector<Vector3> points, expected;
  for (const auto& make : Families) {
    int cuts = 0;
    for (unsigned i = 0; i < 30000; ++i) {
      Dice dice(i);
      const CutCase c = make(dice);
      const bool cut = PlainCut(c.box, c.plane, expected);
      bool same = Intersect::Intersection(c.box, c.plane, points) == cut && points.size() == expected.size();
      for (std::size_t k = 0; same && k < points.size(); ++k)
        same = SameBits(points[k], expected[k]);
      ASSERT_TRUE(same) << "family " << &make - Families << ' ' << i << ": box " << Text(c.box.Min())
                        << Text(c.box.Max()) << ", plane " << Text(c.plane.Point()) << Text(c.plane.Normal());
      cuts += cut ? 1 : 0;
    }
    EXPECT_GT(cuts, 2000) << "family " << &make - Families << " rarely cuts";
  }
}

// On the plane, convex, and counter-clockwise seen from where the normal points.
TEST(IntersectBox, ProperCutsAreConvexPolygons) {
  std::vector<Vector3> points;
  for (unsigned i = 0; i < 30000; ++i) {
    Dice dice(i);
    const CutCase c = ProperCut(dice);
    if (!Intersect::Intersection(c.box, c.plane, points))
      continue;
    const std::size_t n = points.size();
    ASSERT_TRUE(n >= 3 && n <= 6) << i;
    const Vector3 normal = Normalize(c.plane.Normal());
    const double size = Length(c.box.Extent()), tolerance = 1e-14 * (size + Length(c.box.Min()));
    Vector3 area;
    for (std::size_t k = 0; k < n; ++k) {
      const Vector3 &p = points[k], q = points[(k + 1) % n];
      ASSERT_LE(std::fabs(Dot(normal, p - c.plane.Point())), tolerance) << i;
      ASSERT_GE(Dot(Cross(q - p, points[(k + 2) % n] - q), normal), -tolerance * size) << i;
      area += Cross(p - points[0], q - p);
    }
    ASSERT_GT(Dot(area, normal), 0) << i;
  }
}

} // namespace
