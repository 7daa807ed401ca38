#include "scene/StreamlineTracer.h"

#include "tests/support/ErrorOf.h"
#include "tests/support/Test.h"

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

StreamlineTracer::Options Options(double p_length) {
  StreamlineTracer::Options options;
  options.length = p_length;
  options.largestStep = 0.5;
  options.tolerance = 1e-6;
  return options;
}

} // namespace

TEST(StreamlineTracer, ARotationKeepsTheRadiusAndCloses) {
  for (const double radius : {0.7, 2.0, 5.0}) {
    const Streamline line = StreamlineTracer(Rotation, Options(2 * M_PI * radius)).Downstream({radius, 0, 1});
    for (const Point& point : line) {
      EXPECT_NEAR(std::hypot(point.x, point.y), radius, 1e-4) << radius;
      EXPECT_EQ(point.z, 1) << radius;
    }
    EXPECT_NEAR(Length(line.back() - line.front()), 0, 2e-3) << radius;
    EXPECT_GT(line[1].y, 0) << "with the flow";
  }
}

TEST(StreamlineTracer, TheToleranceControlsTheStep) {
  const auto error = [](double p_tolerance) {
    StreamlineTracer::Options options = Options(20);
    options.tolerance = p_tolerance;
    const Streamline line = StreamlineTracer(Rotation, options).Downstream({1, 0, 0});
    return std::pair(std::abs(std::hypot(line.back().x, line.back().y) - 1), line.size());
  };
  const auto [coarse, few] = error(1e-3);
  const auto [fine, many] = error(1e-7);
  EXPECT_LT(fine, coarse / 100);
  EXPECT_GT(many, 4 * few);
}

TEST(StreamlineTracer, EndAtTheBorder) {
  const StreamlineTracer::Options options = Options(100);
  const Streamline line = StreamlineTracer(UniformInBox, options).Through({0, 1, 2});
  EXPECT_NEAR(line.front().x, -10, 2 * options.smallestStep);
  EXPECT_NEAR(line.back().x, 10, 2 * options.smallestStep);
  for (const Point& point : line)
    EXPECT_TRUE(std::abs(point.x) <= 10 && std::abs(point.y - 1) < 1e-12) << point.x << ' ' << point.y;
  EXPECT_EQ(std::count(line.begin(), line.end(), Point(0, 1, 2)), 1) << "the seed";
  EXPECT_TRUE(StreamlineTracer(UniformInBox, options).Through({11, 0, 0}).empty());
}

TEST(StreamlineTracer, EndAtStagnation) {
  StreamlineTracer::Options options = Options(100);
  options.stagnation = 0.25;
  const Streamline line = StreamlineTracer(Sink, options).Downstream({3, 0, 0});
  EXPECT_NEAR(line.back().x, 0.25, 2 * options.smallestStep);
  options.stagnation = 0;
  EXPECT_NEAR(Length(StreamlineTracer(Sink, options).Downstream({3, 0, 0}).back()), 0, 1e-2);
  EXPECT_TRUE(StreamlineTracer(Sink, options).Downstream({0, 0, 0}).empty());
  const auto notANumber = [](const Point& p_place, Point& p_vector) {
    p_vector = {p_place.x > 2 ? std::numeric_limits<double>::quiet_NaN() : 1.0, 0, 0};
    return true;
  };
  EXPECT_NEAR(StreamlineTracer(notANumber, options).Downstream({0, 0, 0}).back().x, 2, 2 * options.smallestStep);
}

TEST(StreamlineTracer, EndAfterTheirLength) {
  for (const double length : {0.3, 1.0, 7.25}) {
    const Streamline line = StreamlineTracer(UniformInBox, Options(length)).Downstream({-9, 0, 0});
    EXPECT_NEAR(StreamlineTracer::ArcLength(line), length, 1e-9) << length;
    for (std::size_t i = 1; i < line.size(); ++i)
      EXPECT_LE(Length(line[i] - line[i - 1]), 0.5 + 1e-12) << length;
  }
}

TEST(StreamlineTracer, KeepTheirDistance) {
  std::vector<Point> seeds;
  for (unsigned int seed = 0; seed < 400; ++seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> number(-6, 6);
    const double x = number(random);
    seeds.emplace_back(x, number(random), 0);
  }
  StreamlineTracer::Options options = Options(100);
  options.largestStep = 0.2;
  const std::vector<Streamline> lines = StreamlineTracer(Rotation, options).Spaced(seeds, {1, 0.5, 2});
  EXPECT_TRUE(lines.size() >= 5 && lines.size() <= 9) << lines.size();
  for (std::size_t a = 0; a < lines.size(); ++a) {
    const double radius = Length(lines[a].front());
    // One turn: it neither stops early nor goes over its own beginning.
    EXPECT_NEAR(StreamlineTracer::ArcLength(lines[a]), 2 * M_PI * radius, 1.2) << a;
    for (std::size_t b = 0; b < a; ++b)
      EXPECT_GE(std::abs(Length(lines[b].front()) - radius), 0.5 - 1e-3) << a << ' ' << b;
  }
}
