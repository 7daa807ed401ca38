#include "scene/StreamlineTracer.h"

#include "tests/support/Test.h"

namespace {

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

// A circular flow with a hole of missing nodes, and a component across the layer.
VectorField Vortex() {
  std::vector<double> axis;
  for (int i = -20; i <= 20; ++i)
    axis.push_back(1e6 + 0.5 * i);
  std::vector<Point> vectors;
  for (const double y : axis)
    for (const double x : axis) {
      const Point at(x - 1e6, y - 1e6, 0);
      const bool isHole = Length(at - Point(6, 0, 0)) < 1.2;
      vectors.emplace_back(isHole ? NaN : -at.y, at.x, 3);
    }
  return VectorField::Layer(axis, axis, vectors, 5);
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
    p_vector = {p_place.x > 2 ? NaN : 1.0, 0, 0};
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

TEST(StreamlineTracer, SuitsAFieldByItself) {
  const VectorField field = Vortex();
  const StreamlineTracer tracer(field);
  for (const double radius : {2.0, 4.0, 9.0}) {
    const Streamline line = tracer.Through({1e6 + radius, 1e6, 5});
    EXPECT_GT(StreamlineTracer::ArcLength(line), 50) << radius;
    for (const Point& point : line) {
      ASSERT_NEAR(std::hypot(point.x - 1e6, point.y - 1e6), radius, 0.05) << radius;
      ASSERT_EQ(point.z, 5) << "in the layer";
    }
  }
  const Streamline cut = tracer.Through({1e6 - 6, 1e6, 5});
  EXPECT_NEAR(StreamlineTracer::ArcLength(cut), 2 * M_PI * 6 - 3, 0.7) << "ends at the missing nodes";
  EXPECT_NEAR(cut.front().y - 1e6, 1.4, 0.3);
  EXPECT_TRUE(tracer.Through({1e6 + 6, 1e6, 5}).empty());
  EXPECT_TRUE(tracer.Spaced({{NaN, 1e6, 5}, {1 / 0.0, 1e6, 5}}, {1, 0.5, 0}, {{{NaN, NaN, NaN}}}).size() == 1);
}

TEST(StreamlineTracer, FillsALayerEvenly) {
  const VectorField field = Vortex();
  const StreamlineTracer::Spacing spacing(1, 0.5, 3);
  const std::vector<Streamline> lines = StreamlineTracer(field).Filled(field.Bounds(), spacing);
  const auto distance = [](const Point& p_at, const Streamline& p_line) {
    double least = 1e9;
    for (const Point& point : p_line)
      least = std::min(least, Length(point - p_at));
    return least;
  };
  for (std::size_t a = 0; a < lines.size(); ++a) {
    EXPECT_GE(StreamlineTracer::ArcLength(lines[a]), 3) << a;
    for (std::size_t b = 0; b < a; ++b)
      for (const Point& point : lines[a])
        ASSERT_GE(distance(point, lines[b]), 0.5) << a << ' ' << b;
  }
  // No gaps: nowhere in the field is a line farther away than two distances of seeds.
  for (double y = -9.5; y < 10; y += 0.5)
    for (double x = -9.5; x < 10; x += 0.5) {
      const Point at(1e6 + x, 1e6 + y, 5);
      double least = 1e9;
      for (const Streamline& line : lines)
        least = std::min(least, distance(at, line));
      ASSERT_LT(least, std::abs(x) > 8 && std::abs(y) > 8 ? 4 : 2) << x << ' ' << y;
    }
  EXPECT_EQ(StreamlineTracer(field).Filled(field.Bounds(), spacing, lines).size(), lines.size()) << "already full";
}

TEST(StreamlineTracer, FillsBothSidesOfALineFirst) {
  const StreamlineTracer tracer(UniformInBox, Options(100));
  std::vector<double> heights;
  for (const Streamline& line : tracer.Filled({{-5, -3, 0}, {5, 3, 0}}, {1, 0.5, 1}, {tracer.Through({0, 0.3, 0})}))
    heights.push_back(std::round(line.front().y * 1000) / 1000);
  std::sort(heights.begin(), heights.end());
  EXPECT_EQ(heights, (std::vector<double>{-2.7, -1.7, -0.7, 0.3, 1.3, 2.3}));
}

TEST(StreamlineTracer, FillsSpaceAndStaysInTheBox) {
  const std::vector<Streamline> lines =
      StreamlineTracer(UniformInBox, Options(100)).Filled({{-5, -2, -2}, {5, 2, 2}}, {2, 1, 1});
  EXPECT_TRUE(lines.size() >= 7 && lines.size() <= 9) << lines.size(); // on a lattice of 3 x 3 at most
  for (const Streamline& line : lines) {
    EXPECT_TRUE(std::abs(line.front().y) <= 2 && std::abs(line.front().z) <= 2);
    EXPECT_NEAR(StreamlineTracer::ArcLength(line), 20, 1e-3) << "lines end where the field does";
  }
}

// Vortices between uneven axes, sinks beyond the middle, and a hole of missing nodes.
VectorField Vortices() {
  std::vector<double> axis;
  for (int i = 0; i < 60; ++i)
    axis.push_back(i + 0.4 * std::sin(i) + (i > 50 ? 3 * (i - 50) : 0));
  std::vector<Point> vectors;
  for (const double y : axis)
    for (const double x : axis) {
      const double sx = std::sin(0.15 * x), cx = std::cos(0.15 * x), sy = std::sin(0.15 * y), cy = std::cos(0.15 * y);
      const double sink = x > 40 ? 0.15 : 0;
      vectors.emplace_back(std::hypot(x - 20, y - 35) < 4 ? NaN : -sx * cy - sink * cx * sy, cx * sy - sink * sx * cy,
                           0);
    }
  return VectorField::Layer(axis, axis, vectors);
}

// A flow in space along helices of several axes, with a ball of missing nodes.
VectorField Helices() {
  std::vector<double> axis(24);
  std::iota(axis.begin(), axis.end(), -12.0);
  std::vector<Point> vectors;
  for (const double z : axis)
    for (const double y : axis)
      for (const double x : axis)
        vectors.emplace_back(Length(Point(x - 4, y, z)) < 2 ? NaN : std::sin(0.4 * z) + std::cos(0.34 * y),
                             std::sin(0.38 * x) + std::cos(0.4 * z), std::sin(0.36 * y) + std::cos(0.42 * x));
  return VectorField::Rectilinear(axis, axis, axis, vectors);
}

// Spaced lines by their definition: distances to all points.
std::vector<Streamline> SpacedByDefinition(const VectorField& p_field, const std::vector<Point>& p_seeds,
                                           const StreamlineTracer::Spacing& p_spacing) {
  struct Passed {
    Point at;
    double arc;
  };
  const auto isNear = [](const auto& p_points, const Point& p_at, double p_distance) {
    return std::any_of(p_points.begin(), p_points.end(),
                       [&](const Point& p_point) { return Length(p_point - p_at) < p_distance; });
  };
  const auto isNearPassed = [&](const std::vector<Passed>& p_passed, const Point& p_at, double p_arc) {
    return std::any_of(p_passed.begin(), p_passed.end(), [&](const Passed& p_point) {
      return p_arc - p_point.arc > 2 * p_spacing.lines && Length(p_point.at - p_at) < p_spacing.lines;
    });
  };
  std::vector<Point> others;
  std::vector<Streamline> lines;
  for (const Point& seed : p_seeds) {
    if (isNear(others, seed, p_spacing.seeds))
      continue;
    std::vector<Passed> upstream; // with arcs from the seed
    const auto traced = [&](double p_sign) {
      std::vector<Passed> trail;
      const auto field = [&](const Point& p_at, Point& p_vector) {
        const bool isInside = p_field.Sample(p_at, p_vector);
        p_vector = p_vector * p_sign;
        return isInside;
      };
      return StreamlineTracer(field, StreamlineTracer::Options(p_field))
          .Downstream(seed, [&](const Point& p_at, double p_arc) {
            if (isNear(others, p_at, p_spacing.lines) || isNearPassed(trail, p_at, p_arc))
              return true;
            for (const Passed& passed : upstream)
              if ((passed.arc >= 2 * p_spacing.seeds || p_arc >= 2 * p_spacing.seeds) &&
                  Length(passed.at - p_at) < p_spacing.lines)
                return true;
            trail.push_back({p_at, p_arc});
            return false;
          });
    };
    Streamline line = traced(-1);
    double arc = 0;
    for (std::size_t i = 1; i < line.size(); ++i) {
      arc += Length(line[i] - line[i - 1]);
      upstream.push_back({line[i], arc});
    }
    const Streamline downstream = traced(1);
    std::reverse(line.begin(), line.end());
    line.insert(line.end(), downstream.begin() + (downstream.empty() ? 0 : 1), downstream.end());
    if (line.size() < 2 || StreamlineTracer::ArcLength(line) < p_spacing.shortest)
      continue;
    others.insert(others.end(), line.begin(), line.end());
    lines.push_back(line);
  }
  return lines;
}

TEST(StreamlineTracer, KeepsDistancesToTheBit) {
  const struct {
    VectorField field;
    double extent, seeds, lines;
  } cases[] = {{Vortices(), 80, 4, 2}, {Vortices(), 80, 2.5, 2.5}, {Vortices(), 80, 6, 0.7}, {Helices(), 24, 3, 1.5}};
  for (const auto& [field, extent, seedDistance, lineDistance] : cases) {
    std::vector<Point> seeds;
    for (int i = 0; i < 300; ++i) {
      const Point at(std::fmod(7.31 * i, extent), std::fmod(3.97 * i, extent), std::fmod(5.23 * i, extent));
      seeds.push_back(field.Size()[2] == 1 ? Point(at.x, at.y, 0) : at - Point(12, 12, 12));
    }
    const StreamlineTracer::Spacing spacing(seedDistance, lineDistance, seedDistance);
    const std::vector<Streamline> lines = StreamlineTracer(field).Spaced(seeds, spacing);
    EXPECT_GT(lines.size(), 15U);
    EXPECT_EQ(lines, SpacedByDefinition(field, seeds, spacing)) << seedDistance << ' ' << lineDistance;
  }
}

TEST(StreamlineTracer, ThreadsTraceTheSameLines) {
  const VectorField field = Vortices();
  const StreamlineTracer tracer(field);
  std::vector<Point> seeds{{-1, 0, 0}, {NaN, 0, 0}};
  for (int i = 0; i < 200; ++i)
    seeds.emplace_back(std::fmod(7.3 * i, 70), std::fmod(3.9 * i, 70), 0);
  const auto terminates = [](const Point& p_at, double p_arc) { return p_at.y > 50 && p_arc > 20; };
  std::vector<Streamline> through, downstream;
  for (const Point& seed : seeds) {
    through.push_back(tracer.Through(seed, terminates));
    downstream.push_back(tracer.Downstream(seed));
  }
  for (const int threads : {1, 2, 3, 7}) {
    EXPECT_EQ(tracer.Through(seeds, terminates, Utility::Threads(threads)), through) << threads;
    EXPECT_EQ(tracer.Downstream(seeds, {}, Utility::Threads(threads)), downstream) << threads;
  }
  // Cancelled, those before remain.
  StreamlineTracer::Options options(field);
  std::atomic<int> asked{0};
  options.isCancelled = [&] { return ++asked > 20000; };
  for (const int threads : {1, 3}) {
    asked = 0;
    const std::vector<Streamline> lines =
        StreamlineTracer(field, options).Downstream(seeds, {}, Utility::Threads(threads));
    EXPECT_TRUE(!lines.empty() && lines.size() < seeds.size()) << threads;
    EXPECT_TRUE(std::equal(lines.begin(), lines.end(), downstream.begin())) << threads;
  }
}

TEST(StreamlineTracer, CanBeCancelled) {
  int asked = 0, most = 100;
  StreamlineTracer::Options options = Options(1e9);
  options.isCancelled = [&] { return ++asked > most; };
  EXPECT_EQ(StreamlineTracer(Rotation, options).Downstream({1, 0, 0}).size(), 101U);
  asked = 0;
  most = 500;
  options.length = 10;
  const std::vector<Point> seeds{{1, 0, 0}, {5, 0, 0}, {9, 0, 0}, {13, 0, 0}, {17, 0, 0}};
  const std::size_t count = StreamlineTracer(Rotation, options).Spaced(seeds, {1, 0.5, 2}).size();
  EXPECT_TRUE(count > 0 && count < 5) << count;
  EXPECT_LE(asked, most + 5) << "ends at once";
}

TEST(StreamlineTracer, NamesWhatIsWrong) {
  const auto error = [](const std::function<void(StreamlineTracer::Options&)>& p_change) {
    StreamlineTracer::Options options;
    p_change(options);
    return ErrorOf<std::invalid_argument>([&] { StreamlineTracer(Rotation, options); });
  };
  using Options = StreamlineTracer::Options;
  const std::string start = "StreamlineTracer: expected ";
  EXPECT_EQ(error([](Options& p_options) { p_options.smallestStep = 0; }),
            start + "steps above 0, the smallest one not above the largest one");
  EXPECT_EQ(error([](Options& p_options) { p_options.length = 1 / 0.0; }),
            start + "a finite length that is not negative");
  EXPECT_EQ(error([](Options& p_options) { p_options.tolerance = NaN; }), start + "a tolerance above 0");
  EXPECT_EQ(error([](Options& p_options) { p_options.stagnation = NaN; }), start + "a stagnation that is not negative");
  const StreamlineTracer tracer(Rotation, Options{});
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] {
              tracer.Spaced({}, {1, 2, 0});
            }),
            start + "a distance of lines above 0, at most that of seeds");
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { tracer.Filled({}, {}); }), start + "a finite box");
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] {
              tracer.Filled({{0, 0, 0}, {1e5, 1e5, 1}}, {});
            }),
            start + "a box of 2^24 seeds at most");
}
