#include "scene/OrientationTriad.h"
#include "tests/support/Test.h"

TEST(OrientationTriad, PointsAlongTheAxesFromFarToNear) {
  OrientationTriad triad;
  triad.length = 10;
  using Standard = Camera::StandardView;
  // Views, the axes from far to near, and the tips of x, y and z.
  const std::tuple<Standard, std::array<std::size_t, 3>, std::array<Canvas::Position, 3>> cases[] = {
      {Standard::Front, {1, 0, 2}, {{{10, 0}, {0, 0}, {0, 10}}}},
      {Standard::Top, {0, 1, 2}, {{{10, 0}, {0, 10}, {0, 0}}}},
      {Standard::Right, {1, 2, 0}, {{{0, 0}, {10, 0}, {0, 10}}}},
      {Standard::Left, {0, 1, 2}, {{{0, 0}, {-10, 0}, {0, 10}}}},
      {Standard::Chart, {1, 0, 2}, {{{8.660, -2.5}, {5, 4.330}, {0, 8.660}}}},
  };
  for (const auto& [view, order, tips] : cases) {
    SCOPED_TRACE(static_cast<int>(view));
    Camera camera;
    camera.Look(view);
    const auto arms = triad.Arms(camera);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(arms[i].axis, order[i]) << i;
      EXPECT_LT(Length(arms[i].tip - tips[arms[i].axis]), 1e-3) << arms[i].axis;
    }
  }
}

namespace {

class OrientationTriadPixels : public PixelScopeFixture {
protected:
  OrientationTriadPixels()
      : PixelScopeFixture({101, 101}) {}
};

} // namespace

TEST_F(OrientationTriadPixels, DrawsNearDiscsOverFarOnes) {
  MakeApplication();
  const TextRenderer text;
  OrientationTriad triad;
  triad.colors = {Qt::red, Qt::yellow, Qt::blue};
  triad.radius = 12;
  Camera camera; // y and z appear above each other: y away, z towards the viewer
  camera.elevation = 45;
  {
    Canvas canvas(gl, {0, 0, 101, 101}, text);
    triad.Draw(canvas, camera, {50.5, 50.5}, Theme::Light());
  }
  const int height = static_cast<int>(50.5 + 32 * std::sqrt(0.5));
  EXPECT_EQ(At(50 + 9, height), QColor(Qt::blue));
  EXPECT_EQ(At(50 + 32 + 8, 50), QColor(Qt::red));
  EXPECT_EQ(At(50 - 32, 50).alpha(), 0);
  // The letters on red are black (5.3 : 1), those on blue white (8.6 : 1).
  int black = 0, white = 0;
  for (int x = 50 - 8; x <= 50 + 8; ++x)
    for (int y = -8; y <= 8; ++y) {
      black += At(x + 32, 50 + y) == QColor(Qt::black) ? 1 : 0;
      white += At(x, height + y) == QColor(Qt::white) ? 1 : 0;
    }
  EXPECT_GT(black, 3);
  EXPECT_GT(white, 3);
}
