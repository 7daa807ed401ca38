#include "scene/OrbitController.h"
#include "tests/support/Test.h"

namespace {

const Types::Viewport<0> Window(10, 20, 640, 400);

/// A start for each seed: oblique, in both projections, every other one far from the origin.
Camera Start(unsigned int p_seed) {
  Camera camera;
  camera.target = p_seed % 2 == 0 ? Point(1, 2, 3) : Point(1e6, -2e6, 3e5);
  camera.azimuth = 37.0 * p_seed;
  camera.elevation = 20.0 * (p_seed % 9) - 80;
  camera.projection = p_seed / 2 % 2 == 0 ? Camera::Projection::Perspective : Camera::Projection::Parallel;
  camera.roll = p_seed % 3 == 0 ? 15 : 0;
  return camera;
}

::testing::AssertionResult SamePixel(const Camera::Pixel& p_a, const Camera::Pixel& p_b) {
  if (std::hypot(p_a.x - p_b.x, p_a.y - p_b.y) < 1e-5)
    return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << p_a.x << ' ' << p_a.y << " is not " << p_b.x << ' ' << p_b.y;
}

} // namespace

TEST(OrbitController, KeepsThePointUnderTheCursor) {
  for (unsigned int seed = 0; seed < 36; ++seed) {
    SCOPED_TRACE(seed);
    const Camera start = Start(seed);
    const Camera::Pixel cursor{130, 333, true};
    const Point inPlane = start.UnprojectToTarget(cursor, Window);
    const Point surface = start.Unproject(cursor, 0.3, Window);
    for (const double notches : {3.0, -2.5, 0.01}) {
      OrbitController orbit(start);
      orbit.Zoom(notches, cursor, Window);
      EXPECT_TRUE(SamePixel(orbit.Camera().Project(inPlane, Window), cursor));
      EXPECT_NEAR(orbit.Camera().distance / start.distance, std::pow(0.875, notches), 1e-9);
      orbit.Reset();
      EXPECT_EQ(orbit.Camera(), start);
      orbit.ZoomAbout(notches, surface);
      EXPECT_TRUE(SamePixel(orbit.Camera().Project(surface, Window), cursor));
    }
    OrbitController orbit(start);
    orbit.Pan(25, -40, Window);
    EXPECT_TRUE(SamePixel(orbit.Camera().Project(inPlane, Window), {155, 293, true}));
    orbit.CenterOn(surface);
    EXPECT_TRUE(SamePixel(orbit.Camera().Project(surface, Window), {330, 220, true}));
    const double reach = orbit.Camera().radius - Length(orbit.Camera().target - start.target);
    EXPECT_NEAR(reach, start.radius, 1e-6) << "what was drawn is not clipped";
  }
}

TEST(OrbitController, ZoomsOntoASurfaceAndStopsThere) {
  const Point surface(0, 0, 0);
  Camera start;
  start.target = {0, 3, 0};
  OrbitController orbit(start);
  const Camera::Pixel before = start.Project(surface, Window);
  for (int i = 0; i < 200; ++i)
    orbit.ZoomAbout(1, surface);
  EXPECT_TRUE(SamePixel(orbit.Camera().Project(surface, Window), before));
  EXPECT_LT(Length(orbit.Camera().target - surface), 0.01);
  EXPECT_GT(orbit.Camera().distance, 0.001);
}

TEST(OrbitController, RotatesWithThePointerUpToThePoles) {
  Camera start;
  start.elevation = 0;
  OrbitController orbit(start);
  const Point front(0, -1, 0); // what faces the camera follows the pointer
  const Camera::Pixel before = start.Project(front, Window);
  orbit.Rotate(20, 10);
  EXPECT_EQ(orbit.Camera().azimuth, 10);
  EXPECT_EQ(orbit.Camera().elevation, -5);
  EXPECT_GT(orbit.Camera().Project(front, Window).x, before.x);
  EXPECT_GT(orbit.Camera().Project(front, Window).y, before.y);
  orbit.Rotate(0, -1e5);
  EXPECT_EQ(orbit.Camera().elevation, 90);
  orbit.Rotate(0, 1e5);
  EXPECT_EQ(orbit.Camera().elevation, -90);
}

TEST(OrbitController, IgnoresWhatIsNotFinite) {
  const Camera start = Start(5);
  OrbitController orbit(start);
  orbit.Rotate(NAN, 0);
  orbit.Rotate(0, INFINITY);
  orbit.Pan(NAN, 0, Window);
  orbit.Pan(5, 5, {});
  orbit.Zoom(NAN);
  orbit.Zoom(NAN, {1, 2, true}, Window);
  orbit.Zoom(0, {1, 2, true}, {});
  orbit.CenterOn({NAN, 0, 0});
  EXPECT_EQ(orbit.Camera(), start);
}
