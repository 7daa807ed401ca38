#include "scene/Camera.h"
#include "tests/support/Test.h"

namespace {

using Box = Types::BoundingBox_Base<double>;
using Viewport = Types::Viewport<0>;
using View = Camera::StandardView;
constexpr auto Parallel = Camera::Projection::Parallel;

/// Pixels and depth of a point as GL's matrices give them, for vertices relative to an origin.
std::pair<Camera::Pixel, double> ThroughMatrices(const Camera& p_camera, const Point& p_point,
                                                 const Viewport& p_viewport, const Point& p_origin = Point()) {
  const double width = p_viewport.width, height = p_viewport.height;
  const Point relative = p_point - p_origin;
  std::array<double, 4> v = {relative.x, relative.y, relative.z, 1};
  for (const std::array<double, 16>& m : {p_camera.ViewMatrix(p_origin), p_camera.ProjectionMatrix(width / height)}) {
    std::array<double, 4> product = {};
    for (std::size_t i = 0; i < 16; ++i)
      product[i % 4] += m[i] * v[i / 4];
    v = product;
  }
  return {{p_viewport.x + (v[0] / v[3] + 1) * width / 2, p_viewport.y + (v[1] / v[3] + 1) * height / 2, v[3] > 0},
          (v[2] / v[3] + 1) / 2};
}

std::array<Point, 8> CornersOf(const Box& p_box) {
  std::array<Point, 8> corners;
  for (unsigned int i = 0; i < 8; ++i)
    corners[i] = {((i & 1) != 0 ? p_box.Max() : p_box.Min()).x, ((i & 2) != 0 ? p_box.Max() : p_box.Min()).y,
                  ((i & 4) != 0 ? p_box.Max() : p_box.Min()).z};
  return corners;
}

/// A number between two others; the same for the same seed.
class Numbers {
public:
  explicit Numbers(unsigned int p_seed)
      : _random(p_seed) {}
  double operator()(double p_low, double p_high) { return std::uniform_real_distribution<>(p_low, p_high)(_random); }
  Point Vector(double p_size) {
    const double x = (*this)(-p_size, p_size), y = (*this)(-p_size, p_size);
    return {x, y, (*this)(-p_size, p_size)};
  }

private:
  std::mt19937 _random;
};

} // namespace

TEST(Camera, LooksFromItsStandardViews) {
  const double third = std::sqrt(1.0 / 3);
  const double mplot = Types::Angle::FromDegrees(-60).Radians(), rise = Types::Angle::FromDegrees(30).Radians();
  // Directions of the scene from the target to the eye and to the top of the image.
  const std::tuple<View, Point, Point> cases[] = {
      {View::Front, {0, -1, 0}, {0, 0, 1}},
      {View::Back, {0, 1, 0}, {0, 0, 1}},
      {View::Left, {-1, 0, 0}, {0, 0, 1}},
      {View::Right, {1, 0, 0}, {0, 0, 1}},
      {View::Top, {0, 0, 1}, {0, 1, 0}},
      {View::Bottom, {0, 0, -1}, {0, -1, 0}},
      {View::Isometric, {third, -third, third}, Normalize(Point(-1, 1, 2))},
      {View::Chart,
       {std::cos(mplot) * std::cos(rise), std::sin(mplot) * std::cos(rise), std::sin(rise)},
       {-std::cos(mplot) * std::sin(rise), -std::sin(mplot) * std::sin(rise), std::cos(rise)}},
  };
  for (const auto& [view, back, up] : cases) {
    SCOPED_TRACE(static_cast<int>(view));
    Camera camera;
    camera.target = {1, 2, 3};
    camera.roll = 7;
    camera.Look(view);
    EXPECT_LT(Length(camera.Eye() - camera.target - back * 10.0), 1e-12);
    EXPECT_LT(Length(camera.Directions().up - up), 1e-12);
    EXPECT_LT(Length(Cross(camera.Directions().right, up) - back), 1e-12);
    const Viewport viewport(0, 0, 300, 200);
    EXPECT_FALSE(camera.Project(camera.target + back * 20.0, viewport).visible) << "behind the eye";
    EXPECT_EQ(camera.PixelsPerUnit(camera.target + back * 20.0, viewport), 0);
    EXPECT_NEAR(camera.Project(camera.target + up, viewport).x, 150, 1e-9);
    EXPECT_GT(camera.Project(camera.target + up, viewport).y, 110);
  }
}

TEST(Camera, LooksAtATargetWithAnyTop) {
  for (unsigned int seed = 0; seed < 100; ++seed) {
    SCOPED_TRACE(seed);
    Numbers number(seed);
    const Point eye = number.Vector(5), target = number.Vector(5);
    // Every fifth looks straight up or down.
    const Point from = seed % 5 == 0 ? Point(target.x, target.y, target.z + (seed % 2 == 0 ? 3 : -3)) : eye;
    const Point up = number.Vector(1);
    const Camera camera = Camera::LookAt(from, target, up);
    EXPECT_LT(Length(camera.Eye() - from), 1e-9);
    const Point back = Normalize(from - target);
    EXPECT_LT(Length(camera.Directions().up - Normalize(up - back * Dot(up, back))), 1e-9);
    EXPECT_EQ(Camera::LookAt(eye, target).roll, 0);
  }
  EXPECT_EQ(Camera::LookAt({0, 0, 5}, {0, 0, 0}).azimuth, 0);
  EXPECT_THROW(Camera::LookAt({1, 2, 3}, {1, 2, 3}), std::invalid_argument);
  EXPECT_THROW(Camera::LookAt({1, NAN, 3}, {1, 2, 3}), std::invalid_argument);
}

TEST(Camera, ProjectsAndUnprojectsAsItsMatricesDo) {
  const Viewport viewport(7, 11, 290, 140);
  for (unsigned int seed = 0; seed < 200; ++seed) {
    Numbers number(seed);
    Camera camera;
    const bool isFar = seed % 4 == 3;
    const Point origin = isFar ? Point(4.0e9, -7.0e9, 2.0e9) : Point();
    camera.target = origin + number.Vector(4);
    camera.Orbit(number(-400, 400), number(-80, 80));
    camera.roll = seed % 3 == 0 ? 0 : number(-180, 180);
    camera.projection = seed % 2 == 0 ? Parallel : Camera::Projection::Perspective;
    const Point point = origin + number.Vector(4);
    const auto [expected, depth] = ThroughMatrices(camera, point, viewport, origin);
    const Camera::Pixel pixel = camera.Project(point, viewport);
    const double tolerance = isFar ? 1e-3 : 1e-6; // coordinates of 10⁹ have steps of 1e-6
    ASSERT_EQ(pixel.visible, expected.visible) << seed;
    EXPECT_NEAR(pixel.x, expected.x, tolerance) << seed;
    EXPECT_NEAR(pixel.y, expected.y, tolerance) << seed;
    EXPECT_LT(Length(camera.Unproject(expected, depth, viewport) - point), tolerance) << seed;
    const Point inPlane = camera.UnprojectToTarget(expected, viewport);
    EXPECT_NEAR(camera.Project(inPlane, viewport).x, expected.x, tolerance) << seed;
    EXPECT_NEAR(Dot(inPlane - camera.target, camera.Directions().back), 0, tolerance) << seed;
    const Camera::Pixel beside = camera.Project(point + camera.Directions().right, viewport);
    EXPECT_NEAR(beside.x - pixel.x, camera.PixelsPerUnit(point, viewport), tolerance) << seed;
  }
  Camera camera;
  for (const auto projection : {Parallel, Camera::Projection::Perspective}) {
    camera.projection = projection;
    EXPECT_FALSE(camera.Project({0, NAN, 0}, viewport).visible);
    EXPECT_FALSE(camera.Project({0, INFINITY, 0}, viewport).visible);
  }
}

TEST(Camera, FitsAllCornersAsTightAsTheProjectionAllows) {
  const Point extents[] = {{1, 1, 1}, {8, 3, 0.2}, {0.001, 0.002, 0.001}, {5, 0, 0}, {0, 4, 3}, {0, 0, 0}};
  const Viewport viewports[] = {{0, 0, 800, 600}, {20, 30, 400, 700}, {0, 0, 1600, 300}};
  for (unsigned int seed = 0; seed < 600; ++seed) {
    SCOPED_TRACE(seed);
    Numbers number(seed);
    const Point extent = extents[seed % 6];
    const Point low = number.Vector(1) * (seed % 5 == 0 ? 1e6 : 3.0);
    const Viewport& viewport = viewports[seed / 6 % 3];
    const Camera::Margins margins{number(0, 150), number(0, 60), number(0, 50), number(0, 80)};
    Camera camera;
    camera.projection = seed / 18 % 2 == 0 ? Camera::Projection::Perspective : Parallel;
    camera.Orbit(number(-180, 180), seed % 7 == 0 ? 90 : number(-90, 90));
    camera.roll = seed % 4 == 0 ? 30 : 0;
    camera.fieldOfView = number(2, 120);
    const Box box(low, low + extent);
    camera.Fit(box, viewport, margins);
    double left = 1e9, right = 1e9, bottom = 1e9, top = 1e9; // of free pixels between the corners and the margins
    double nearest = 1e9;
    for (const Point& corner : CornersOf(box)) {
      const Camera::Pixel pixel = camera.Project(corner, viewport);
      ASSERT_TRUE(pixel.visible);
      left = std::min(left, pixel.x - viewport.x - margins.left);
      right = std::min(right, viewport.x + viewport.width - margins.right - pixel.x);
      bottom = std::min(bottom, pixel.y - viewport.y - margins.bottom);
      top = std::min(top, viewport.y + viewport.height - margins.top - pixel.y);
      EXPECT_LE(Length(corner - camera.target), camera.radius * (1 + 1e-12)) << "clipped once the camera orbits";
      nearest = std::min(nearest, Dot(camera.Eye() - corner, camera.Directions().back));
      const double depth = ThroughMatrices(camera, corner, viewport, low).second;
      EXPECT_TRUE(depth > -1e-9 && depth < 1 + 1e-9) << depth;
    }
    EXPECT_GT(std::min({left, right, bottom, top}), -1e-3);
    const bool isVolume = extent.x * extent.y * extent.z > 0;
    const bool isTooClose = camera.projection != Parallel && nearest < 0.0501 * Length(extent);
    if (isVolume && !isTooClose) {
      EXPECT_LT(std::min(std::max(left, right), std::max(bottom, top)), 1e-3) << "both sides of one direction touch";
    }
  }
}

TEST(Camera, FitsAPointAndASmallWindowAndRefusesNoBox) {
  Camera camera;
  camera.Fit(Box({3, 4, 5}, {3, 4, 5}), {0, 0, 100, 100});
  EXPECT_LT(Length(camera.target - Point(3, 4, 5)), 0.5);
  EXPECT_TRUE(camera.distance > 1 && camera.distance < 10) << camera.distance;
  for (const Viewport& viewport : {Viewport(0, 0, 10, 10), {0, 0, 0, 0}}) {
    camera.Fit(Box({0, 0, 0}, {1, 1, 1}), viewport, {100, 100, 100, 100});
    EXPECT_TRUE(std::isfinite(camera.distance) && camera.distance > 0);
  }
  for (const Box& box : {Box(), Box({0, 0, 0}, {1, INFINITY, 1}), Box({0, NAN, 0}, {1, 1, 1})})
    EXPECT_THROW(camera.Fit(box, {0, 0, 100, 100}), std::invalid_argument);
}

TEST(Camera, ClampsElevationAndDistance) {
  Camera camera;
  camera.Orbit(725, 100);
  EXPECT_EQ(camera.azimuth, 5);
  EXPECT_EQ(camera.elevation, 90);
  for (const auto& [factor, distance] : {std::pair(0.5, 5.0), {-1.0, 5.0}, {NAN, 5.0}, {1e9, 250.0}, {1e-9, 0.005}}) {
    camera.Zoom(factor);
    EXPECT_EQ(camera.distance, distance) << factor;
  }
}

namespace {
using CameraCalls = RecordingScopeFixture;
using CameraPixels = PixelScopeFixture;
} // namespace

TEST_F(CameraCalls, AppliesBothMatricesAndRestoresTheMode) {
  gl->MatrixMode(RGL_TEXTURE);
  recorder.Clear();
  Camera camera;
  camera.elevation = 0;
  camera.radius = 2;
  camera.target = {1e6, 0, 0};
  camera.projection = Parallel;
  camera.fieldOfView = 90;
  camera.Apply(gl, {0, 0, 200, 100}, {1e6, 0, 0}).reset();
  const Lines lines = recorder.LinesOf({"LoadMatrixd", "MatrixMode", "PushMatrix", "PopMatrix"});
  const std::string mode = "MatrixMode(GL_PROJECTION)", view = "MatrixMode(GL_MODELVIEW)";
  ASSERT_EQ(lines.size(), 10U);
  EXPECT_EQ(Lines({lines[0], lines[1], lines[3], lines[4]}), Lines({mode, "PushMatrix()", view, "PushMatrix()"}));
  EXPECT_EQ(lines[5], "LoadMatrixd([1 0 -0 0 -0 0 -1 0 0 1 0 0 0 0 -10 1])");
  EXPECT_EQ(Lines(lines.begin() + 6, lines.end()), Lines({view, "PopMatrix()", mode, "PopMatrix()"}));
  EXPECT_EQ(recorder.Lines().front(), "PushAttrib(GL_TRANSFORM_BIT)");
  EXPECT_EQ(recorder.Lines().back(), "PopAttrib()");
}

TEST_F(CameraPixels, DrawsWhereItProjects) {
  const Viewport viewport(0, 0, static_cast<float>(FrameSize.width), static_cast<float>(FrameSize.height));
  const Point origin(1e7, -1e7, 3e7);
  const Point local(0.8, -0.4, 0.3);
  for (const auto projection : {Parallel, Camera::Projection::Perspective}) {
    Camera camera;
    camera.target = origin;
    camera.azimuth = 25;
    camera.roll = 20;
    camera.projection = projection;
    gl->Clear(RGL_COLOR_BUFFER_BIT);
    {
      const auto guard = camera.Apply(gl, viewport, origin);
      gl->Begin(RGL_POINTS);
      gl->Vertex(local);
      gl->End();
    }
    const Camera::Pixel pixel = camera.Project(origin + local, viewport);
    const int x = static_cast<int>(pixel.x), y = static_cast<int>(pixel.y);
    const QImage image = Image();
    for (int row = 0; row < FrameSize.height; ++row)
      for (int column = 0; column < FrameSize.width; ++column)
        EXPECT_EQ(qAlpha(PixelAt(image, column, row)) != 0, column == x && row == y) << column << ' ' << row;
  }
}
