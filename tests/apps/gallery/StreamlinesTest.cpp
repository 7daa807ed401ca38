#include "scene/StreamlineTracer.h"
#include "apps/gallery/TextTable.h"
#include "apps/gallery/VectorGrid.h"
#include "tests/support/ErrorOf.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Gallery;
using namespace Vek::Chart::Scene;

namespace {

using Point = Types::Vector3_Base<double>;

bool Rotation(const Point& p_place, Point& p_vector) {
  p_vector = {-p_place.y, p_place.x, 0};
  return true;
}
bool UniformInBox(const Point& p_place, Point& p_vector) {
  p_vector = {3, 0, 0};
  return std::abs(p_place.x) <= 10 && std::abs(p_place.y) <= 10 && std::abs(p_place.z) <= 10;
}
bool Sink(const Point& p_place, Point& p_vector) {
  p_vector = -p_place;
  return true;
}

TraceOptions Options(double p_length) {
  TraceOptions options;
  options.length = p_length;
  options.largestStep = 0.5;
  options.tolerance = 1e-6;
  return options;
}

std::string ReadError(const std::string& p_text) {
  std::istringstream stream(p_text);
  return ErrorOf<InputError>([&] { VectorGrid::Read(stream, "flow.csv"); });
}

} // namespace

TEST(Streamlines, ARotationKeepsTheRadiusAndCloses) {
  for (const double radius : {0.7, 2.0, 5.0}) {
    const Streamline line = TraceDownstream(Rotation, {radius, 0, 1}, Options(2 * M_PI * radius));
    for (const Point& point : line) {
      EXPECT_NEAR(std::hypot(point.x, point.y), radius, 1e-4) << radius;
      EXPECT_EQ(point.z, 1) << radius;
    }
    EXPECT_NEAR(Length(line.back() - line.front()), 0, 2e-3) << radius;
    EXPECT_GT(line[1].y, 0) << "with the flow";
  }
}

TEST(Streamlines, TheToleranceControlsTheStep) {
  const auto error = [](double p_tolerance) {
    TraceOptions options = Options(20);
    options.tolerance = p_tolerance;
    const Streamline line = TraceDownstream(Rotation, {1, 0, 0}, options);
    return std::pair(std::abs(std::hypot(line.back().x, line.back().y) - 1), line.size());
  };
  const auto [coarse, few] = error(1e-3);
  const auto [fine, many] = error(1e-7);
  EXPECT_LT(fine, coarse / 100);
  EXPECT_GT(many, 4 * few);
}

TEST(Streamlines, EndAtTheBorder) {
  const TraceOptions options = Options(100);
  const Streamline line = TraceBoth(UniformInBox, {0, 1, 2}, options);
  EXPECT_NEAR(line.front().x, -10, 2 * options.smallestStep);
  EXPECT_NEAR(line.back().x, 10, 2 * options.smallestStep);
  for (const Point& point : line)
    EXPECT_TRUE(std::abs(point.x) <= 10 && std::abs(point.y - 1) < 1e-12) << point.x << ' ' << point.y;
  EXPECT_EQ(std::count(line.begin(), line.end(), Point(0, 1, 2)), 1) << "the seed";
  EXPECT_TRUE(TraceBoth(UniformInBox, {11, 0, 0}, options).empty());
}

TEST(Streamlines, EndAtStagnation) {
  TraceOptions options = Options(100);
  options.stagnation = 0.25;
  const Streamline line = TraceDownstream(Sink, {3, 0, 0}, options);
  EXPECT_NEAR(line.back().x, 0.25, 2 * options.smallestStep);
  options.stagnation = 0;
  EXPECT_NEAR(Length(TraceDownstream(Sink, {3, 0, 0}, options).back()), 0, 1e-2);
  EXPECT_TRUE(TraceDownstream(Sink, {0, 0, 0}, options).empty());
  const auto notANumber = [](const Point& p_place, Point& p_vector) {
    p_vector = {p_place.x > 2 ? std::numeric_limits<double>::quiet_NaN() : 1.0, 0, 0};
    return true;
  };
  EXPECT_NEAR(TraceDownstream(notANumber, {0, 0, 0}, options).back().x, 2, 2 * options.smallestStep);
}

TEST(Streamlines, EndAfterTheirLength) {
  for (const double length : {0.3, 1.0, 7.25}) {
    const Streamline line = TraceDownstream(UniformInBox, {-9, 0, 0}, Options(length));
    EXPECT_NEAR(ArcLength(line), length, 1e-9) << length;
    for (std::size_t i = 1; i < line.size(); ++i)
      EXPECT_LE(Length(line[i] - line[i - 1]), 0.5 + 1e-12) << length;
  }
}

TEST(Streamlines, KeepTheirDistance) {
  std::vector<Point> seeds;
  for (unsigned int seed = 0; seed < 400; ++seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> number(-6, 6);
    const double x = number(random);
    seeds.emplace_back(x, number(random), 0);
  }
  TraceOptions options = Options(100);
  options.largestStep = 0.2;
  const std::vector<Streamline> lines = SpacedStreamlines(Rotation, seeds, {1, 0.5, 2}, options);
  EXPECT_TRUE(lines.size() >= 5 && lines.size() <= 9) << lines.size();
  for (std::size_t a = 0; a < lines.size(); ++a) {
    const double radius = Length(lines[a].front());
    // One turn: it neither stops early nor goes over its own beginning.
    EXPECT_NEAR(ArcLength(lines[a]), 2 * M_PI * radius, 1.2) << a;
    for (std::size_t b = 0; b < a; ++b)
      EXPECT_GE(std::abs(Length(lines[b].front()) - radius), 0.5 - 1e-3) << a << ' ' << b;
  }
}

TEST(VectorGrid, IsLinearBetweenItsNodesAndEndsAtItsBorder) {
  const VectorGrid::Counts counts = {3, 2, 4};
  std::vector<Point> vectors;
  // A linear field: (x + 2y, z, x - z).
  const auto field = [](const Point& p_at) { return Point(p_at.x + 2 * p_at.y, p_at.z, p_at.x - p_at.z); };
  for (int k = 0; k < 4; ++k)
    for (int j = 0; j < 2; ++j)
      for (int i = 0; i < 3; ++i)
        vectors.push_back(field({10.0 + 2 * i, 20.0 + 3 * j, 30.0 + 4 * k}));
  const VectorGrid grid(counts, {10, 20, 30}, {2, 3, 4}, vectors);
  EXPECT_EQ(grid.Max(), Point(14, 23, 42));
  for (const Point& place : {Point(10, 20, 30), Point(14, 23, 42), Point(11.3, 22.1, 37.9), Point(13.9, 20, 42)}) {
    Point vector;
    ASSERT_TRUE(grid.At(place, vector));
    EXPECT_NEAR(Length(vector - field(place)), 0, 1e-9);
  }
  Point vector(1, 2, 3);
  for (const Point& place : {Point(9.9, 21, 31), Point(14.1, 21, 31), Point(11, 23.1, 31), Point(11, 21, 29.9),
                             Point(std::numeric_limits<double>::quiet_NaN(), 21, 31)})
    EXPECT_FALSE(grid.At(place, vector)) << place.x << ' ' << place.y << ' ' << place.z;
  EXPECT_EQ(vector, Point(1, 2, 3));
}

TEST(VectorGrid, WrapsInX) {
  const VectorGrid grid({4, 2, 1}, {0, 0, 0}, {90, 1, 1},
                        {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}}, true);
  for (const auto& [lon, expected] : {std::pair(45.0, 0.5), {315.0, 1.5}, {-45.0, 1.5}, {405.0, 0.5}, {720.0, 0.0}}) {
    Point vector;
    ASSERT_TRUE(grid.At({lon, 0.5, 0}, vector)) << lon;
    EXPECT_NEAR(vector.x, expected, 1e-9) << lon;
  }
}

TEST(VectorGrid, ReadsItsFile) {
  std::string text = "# dims 2 2 2 origin 1 2 3 spacing 0.5 1 2\nw,s,u,v\n";
  for (int i = 0; i < 8; ++i)
    text += std::to_string(30 + i) + ",x," + std::to_string(10 + i) + ',' + std::to_string(20 + i) + '\n';
  std::istringstream stream(text);
  const VectorGrid grid = VectorGrid::Read(stream, "flow.csv");
  EXPECT_EQ(grid.Node(1, 0, 0), Point(11, 21, 31));
  EXPECT_EQ(grid.Node(0, 1, 0), Point(12, 22, 32));
  EXPECT_EQ(grid.Node(0, 0, 1), Point(14, 24, 34));
  EXPECT_EQ(grid.Min(), Point(1, 2, 3));
  EXPECT_EQ(grid.Max(), Point(1.5, 3, 5));
}

TEST(VectorGrid, NamesWhatIsWrongWithItsFile) {
  const std::string head = "flow.csv:1: expected \"# dims nx ny nz origin x y z spacing dx dy dz\", got ";
  const std::string rows = "1,1,1\n1,1,1\n1,1,1\n1,1,1\n1,1,1\n1,1,1\n1,1,1\n";
  for (const std::string line : {"", "u,v,w", "# dims 2 2", "# dims 2 2 1", "# dims 2 2 2.5", "# dims 4096 4096 4096",
                                 "# dims 2 2 2 spacing 1 0 1", "# dims 2 2 2 scale 1 1 1"})
    EXPECT_EQ(ReadError(line + "\nu,v,w\n"), head + '"' + line + '"');
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"no table", "# dims 2 2 2\n", "flow.csv: expected a header line with the names of the columns, got nothing"},
      {"no w", "# dims 2 2 2\nu,v\n", "flow.csv:2: expected a column named \"w\", got \"u,v\""},
      {"a word", "# dims 2 2 2\nu,v,w\n1,1,1\n1,x,1\n", "flow.csv:4: expected a number for \"v\", got \"x\""},
      {"too few", "# dims 2 2 2\nu,v,w\n" + rows, "flow.csv:9: expected 8 rows, got \"the end after 7\""},
      {"too many", "# dims 2 2 2\nu,v,w\n" + rows + "1,1,1\n5,1,1\n",
       "flow.csv:11: expected the end after 8 rows, got \"5\""},
  };
  for (const auto& [name, text, error] : cases)
    EXPECT_EQ(ReadError(text), error) << name;
}
