#include "scene/Camera.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

namespace {

using Point = Types::Vector3_Base<double>;

/// Pixels and depth of a point as GL's matrices give them.
std::pair<Camera::Pixel, double> ThroughMatrices(const Camera& p_camera, const Point& p_point,
                                                 const Types::Viewport<0>& p_viewport) {
  const double width = p_viewport.width, height = p_viewport.height;
  std::array<double, 4> v = {p_point.x, p_point.y, p_point.z, 1};
  for (const std::array<double, 16>& m : {p_camera.ViewMatrix(), p_camera.ProjectionMatrix(width / height)}) {
    std::array<double, 4> product = {};
    for (std::size_t i = 0; i < 16; ++i)
      product[i % 4] += m[i] * v[i / 4];
    v = product;
  }
  return {{p_viewport.x + (v[0] / v[3] + 1) * width / 2, p_viewport.y + (v[1] / v[3] + 1) * height / 2, v[3] > 0},
          (v[2] / v[3] + 1) / 2};
}

} // namespace

TEST(Camera, LooksWhereItsAnglesSay) {
  const Types::Viewport<0> viewport(0, 0, 300, 200);
  // Angles, the eye at distance 10 from the origin, points that appear to the right of the middle and above it.
  const std::tuple<double, double, Point, Point, Point> cases[] = {
      {0, 0, {0, -10, 0}, {1, 0, 0}, {0, 0, 1}},
      {90, 0, {-10, 0, 0}, {0, -1, 0}, {0, 0, 1}},
      {0, 90, {0, 0, 10}, {1, 0, 0}, {0, 1, 0}},
  };
  for (const auto& [azimuth, elevation, eye, right, upper] : cases) {
    SCOPED_TRACE(std::to_string(azimuth) + ' ' + std::to_string(elevation));
    Camera camera;
    camera.azimuth = azimuth;
    camera.elevation = elevation;
    EXPECT_NEAR(Length(camera.Eye() - eye), 0, 1e-12);
    EXPECT_GT(camera.Project(right, viewport).x, 160);
    EXPECT_NEAR(camera.Project(right, viewport).y, 100, 1e-9);
    EXPECT_GT(camera.Project(upper, viewport).y, 110);
    EXPECT_NEAR(camera.Project(upper, viewport).x, 150, 1e-9);
    EXPECT_FALSE(camera.Project(eye * 2.0, viewport).visible);
  }
}

TEST(Camera, ProjectsAndUnprojectsAsItsMatricesDo) {
  const Types::Viewport<0> viewport(7, 11, 290, 140);
  for (unsigned int seed = 0; seed < 50; ++seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> number(-4, 4);
    Camera camera;
    camera.target = {number(random), number(random), number(random)};
    camera.Orbit(number(random) * 100, number(random) * 20);
    const Point point(number(random), number(random), number(random));
    const auto [expected, depth] = ThroughMatrices(camera, point, viewport);
    const Camera::Pixel pixel = camera.Project(point, viewport);
    ASSERT_EQ(pixel.visible, expected.visible) << seed;
    EXPECT_NEAR(pixel.x, expected.x, 1e-6) << seed;
    EXPECT_NEAR(pixel.y, expected.y, 1e-6) << seed;
    EXPECT_LT(Length(camera.Unproject(expected, depth, viewport) - point), 1e-6) << seed;
  }
}
