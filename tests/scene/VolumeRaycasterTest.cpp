#include "scene/VolumeRaycaster.h"

#include "library/DepthCodec.h"
#include "library/DepthPass.h"
#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "scene/VolumeSlices.h"
#include "tests/support/Test.h"
#include "tests/support/Volumes.h"

namespace {

using Mode = VolumeRaycaster::Mode;
using Box = Types::BoundingBox_Base<double>;

const Box Cube({-1, -1, -1}, {1, 1, 1});

/// A grid whose value at (i, j, k) is p_value(i, j, k).
template <class Value>
VoxelGrid GridOf(const VoxelGrid::Sizes& p_sizes, const Box& p_box, Value p_value) {
  std::vector<float> values;
  for (int k = 0; k < p_sizes[2]; ++k)
    for (int j = 0; j < p_sizes[1]; ++j)
      for (int i = 0; i < p_sizes[0]; ++i)
        values.push_back(static_cast<float>(p_value(i, j, k)));
  return {values, p_sizes, p_box};
}

struct VolumeRaycasterPixels : PixelScopeFixture {
  const Types::Viewport<0> viewport{0, 0, FrameSize.width, FrameSize.height};

  /// Looks along +y, the box in the middle.
  static Camera Front(Camera::Projection p_projection = Camera::Projection::Parallel, double p_distance = 10) {
    Camera camera;
    camera.elevation = 0;
    camera.distance = p_distance;
    camera.projection = p_projection;
    camera.fieldOfView = 2 * std::atan(1.5 / p_distance) * 180 / M_PI; // 3 units from bottom to top at the target
    return camera;
  }
  void Clear() {
    gl->ClearColor(Qt::black);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
  }
  QColor Middle() const { return Image().pixelColor(FrameSize.width / 2, FrameSize.height / 2); }
  /// The middle pixel, drawn over black.
  QColor Drawn(const VolumeRaycaster& p_volume, const VolumeRaycaster::Settings& p_settings, const Camera& p_camera) {
    Clear();
    const auto view = p_camera.Apply(gl, viewport);
    p_volume.Draw(gl, Grey(), p_settings);
    return Middle();
  }
};

TEST_F(VolumeRaycasterPixels, AbsorbsByThicknessWhateverTheStep) {
  const VolumeRaycaster volume(GridOf({8, 8, 8}, Cube, [](int, int, int) { return 5; }));
  VolumeRaycaster::Settings settings;
  settings.scale = Between(0, 5); // white
  for (const double extinction : {0.1, 0.5, 2.0}) {
    settings.opacity = OpacityFunction(1 - std::exp(-extinction));
    settings.unitLength = 1;
    for (const double samples : {0.5, 1.0, 3.7})
      for (const auto projection : {Camera::Projection::Parallel, Camera::Projection::Perspective}) {
        settings.samplesPerVoxel = samples;
        EXPECT_NEAR(Drawn(volume, settings, Front(projection)).redF(), 1 - std::exp(-2 * extinction), 0.5 / 255 + 0.003)
            << extinction << ' ' << samples;
      }
  }
}

TEST_F(VolumeRaycasterPixels, FollowsUnevenCellsAndDrawsAPart) {
  // Values are 4 + 4 y: their mean between two bounds is that in the middle, wherever the nodes lie.
  const Doubles x = {-1, 1}, y = {1, 0.9, 0.7, -0.6, -1};
  Doubles values;
  for (int node = 0; node < 20; ++node)
    values.push_back(4 + 4 * y[static_cast<std::size_t>(node / 2 % 5)]);
  const VolumeRaycaster volume(VoxelGrid(values, x, y, x));
  VolumeRaycaster::Settings settings;
  settings.mode = Mode::Average;
  settings.scale = Between(0, 8);
  settings.opacity = OpacityFunction(1);
  for (const auto& [from, to] : {std::pair(-1.0, 1.0), std::pair(-0.5, 0.7), std::pair(0.75, 5.0)}) {
    settings.part = Box({-1, from, -1}, {1, to, 1});
    EXPECT_NEAR(Drawn(volume, settings, Front()).red(), 255 * (0.5 + (from + std::min(to, 1.0)) / 4), 3) << from;
  }
  settings.part = Box({0.5, -1, -1}, {1, 1, 1});
  EXPECT_EQ(Drawn(volume, settings, Front()).red(), 0); // the part lies beside the middle
}

TEST_F(VolumeRaycasterPixels, ShowsTheMaximumAndTheMean) {
  // A bright voxel in the middle, at an index off the diagonal of the sizes.
  const VolumeRaycaster bright(
      GridOf({9, 5, 7}, Cube, [](int p_i, int p_j, int p_k) { return p_i == 4 && p_j == 1 && p_k == 3 ? 8 : 2; }));
  // Along the ray 0, 1, 2, … 9; across it constant.
  const VolumeRaycaster ramp(GridOf({4, 10, 3}, Cube, [](int, int p_j, int) { return p_j; }));
  VolumeRaycaster::Settings settings;
  settings.opacity = OpacityFunction(1);
  settings.samplesPerVoxel = 32;
  for (const auto projection : {Camera::Projection::Parallel, Camera::Projection::Perspective}) {
    settings.mode = Mode::Maximum;
    settings.scale = Between(0, 10);
    EXPECT_NEAR(Drawn(bright, settings, Front(projection)).redF(), 0.8, 0.02);
    EXPECT_NEAR(Image().pixelColor(FrameSize.width / 2 + 10, FrameSize.height / 2).redF(), 0.2, 0.01); // beside it
    EXPECT_NEAR(Drawn(ramp, settings, Front(projection)).redF(), 0.9, 0.01);
    settings.mode = Mode::Average;
    EXPECT_NEAR(Drawn(ramp, settings, Front(projection)).redF(), 0.45, 0.005);
    settings.opacity = OpacityFunction(0.5);
    EXPECT_NEAR(Drawn(ramp, settings, Front(projection)).redF(), 0.225, 0.005);
    settings.opacity = OpacityFunction(1);
  }
}

TEST_F(VolumeRaycasterPixels, FillsTheSilhouetteOfTheBoxAlone) {
  const VolumeRaycaster volume(GridOf({4, 4, 4}, Box({-1, -1, -0.5}, {0.5, 1, 0.75}), [](int, int, int) { return 1; }));
  VolumeRaycaster::Settings settings;
  settings.mode = Mode::Maximum;
  settings.opacity = OpacityFunction(1);
  Drawn(volume, settings, Front());
  const QImage image = Image();
  const double pixels = FrameSize.height / 3.0; // of a unit
  for (int y = 0; y < FrameSize.height; ++y)
    for (int x = 0; x < FrameSize.width; ++x) {
      const double right = (x + 0.5 - FrameSize.width / 2.0) / pixels, up = (FrameSize.height / 2.0 - y - 0.5) / pixels;
      const bool inside = right > -1 && right < 0.5 && up > -0.5 && up < 0.75;
      ASSERT_EQ(image.pixelColor(x, y).red(), inside ? 255 : 0) << x << ' ' << y;
    }
}

TEST_F(VolumeRaycasterPixels, StartsAtTheCameraInside) {
  const VolumeRaycaster volume(GridOf({4, 4, 4}, Cube, [](int, int, int) { return 1; }));
  VolumeRaycaster::Settings settings;
  settings.unitLength = 1;
  settings.opacity = OpacityFunction(1 - std::exp(-0.5));
  Camera camera = Front(Camera::Projection::Perspective);
  camera.distance = 0.1; // the eye is at y = −0.1, looking along +y
  camera.radius = 4;
  EXPECT_NEAR(Drawn(volume, settings, camera).redF(), 1 - std::exp(-0.5 * 1.1), 0.01);
  EXPECT_GT(Image().pixelColor(0, 0).red(), 100); // all around
  camera.Orbit(180, 0);
  EXPECT_NEAR(Drawn(volume, settings, camera).redF(), 1 - std::exp(-0.5 * 1.1), 0.01);
  camera.target = {0, -3, 0}; // the box lies behind the eye
  EXPECT_EQ(Drawn(volume, settings, camera).red(), 0);
}

TEST_F(VolumeRaycasterPixels, DrawsTheSameInBothProjectionsFromAfar) {
  const VolumeRaycaster volume(GridOf({16, 16, 16}, Cube, [](int p_i, int p_j, int p_k) {
    return std::sin(0.5 * p_i) * std::cos(0.4 * p_j + 0.3 * p_k);
  }));
  VolumeRaycaster::Settings settings;
  settings.scale = Between(-1, 1);
  Camera camera = Front(Camera::Projection::Parallel, 2000);
  camera.azimuth = 33;
  camera.elevation = 21;
  for (const Mode mode : {Mode::Composite, Mode::Maximum, Mode::Average, Mode::Isosurface}) {
    settings.mode = mode;
    camera.projection = Camera::Projection::Parallel;
    Drawn(volume, settings, camera);
    const QImage parallel = Image();
    camera.projection = Camera::Projection::Perspective;
    Drawn(volume, settings, camera);
    const QImage perspective = Image();
    int different = 0, drawn = 0;
    for (int y = 0; y < FrameSize.height; ++y)
      for (int x = 0; x < FrameSize.width; ++x) {
        different += std::abs(parallel.pixelColor(x, y).red() - perspective.pixelColor(x, y).red()) > 2;
        drawn += parallel.pixelColor(x, y).red() > 20;
      }
    EXPECT_LT(different, 20) << static_cast<int>(mode); // at the outline
    EXPECT_GT(drawn, 100) << static_cast<int>(mode);
  }
}

/// A square across the view at that y, black.
void DrawSquare(Utility::Scoped<Rgl>& p_gl, double p_y) {
  p_gl->Color(Qt::black);
  p_gl->Begin(RGL_QUADS);
  for (const auto& [x, z] : {std::pair(-1, -1), std::pair(1, -1), std::pair(1, 1), std::pair(-1, 1)})
    p_gl->Vertex(0.2 * x, p_y, 0.2 * z);
  p_gl->End();
}

TEST_F(VolumeRaycasterPixels, EndsAtOpaqueThings) {
  const VolumeRaycaster volume(GridOf({4, 4, 4}, Cube, [](int, int, int) { return 1; }));
  VolumeRaycaster::Settings settings;
  settings.unitLength = 1;
  settings.opacity = OpacityFunction(1 - std::exp(-0.5));
  // The square's y, whether depths are tested, and the way of the middle ray in the volume.
  const std::tuple<double, bool, double> cases[] = {
      {-2, true, 0}, {-2, false, 2}, {-0.5, true, 0.5}, {0.6, true, 1.6}, {3, true, 2}};
  for (const int samples : {0, 4}) {
    Ogl::OffscreenContext context(FrameSize, samples);
    Utility::Scoped<Rgl> own(context.Handle());
    for (const auto projection : {Camera::Projection::Parallel, Camera::Projection::Perspective})
      for (const auto& [y, tests, way] : cases) {
        own->ClearColor(Qt::black);
        own->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
        const auto view = Front(projection).Apply(own, viewport);
        own->Enable(RGL_DEPTH_TEST);
        DrawSquare(own, y);
        if (!tests)
          own->Disable(RGL_DEPTH_TEST);
        volume.Draw(own, Grey(), settings);
        const QColor middle = context.Image().pixelColor(FrameSize.width / 2, FrameSize.height / 2);
        EXPECT_NEAR(middle.redF(), 1 - std::exp(-0.5 * way), 0.01) << samples << " samples, " << y;
        const QColor beside = context.Image().pixelColor(FrameSize.width / 2 + 8, FrameSize.height / 2);
        EXPECT_NEAR(beside.redF(), 1 - std::exp(-1), 0.02) << samples << " samples, beside " << y;
      }
    EXPECT_TRUE(own->CheckError("occlusion"));
  }
}

TEST_F(VolumeRaycasterPixels, ClipsByPlanesAndLeavesMissingOut) {
  VolumeRaycaster::Settings settings;
  settings.unitLength = 1;
  settings.opacity = OpacityFunction(1 - std::exp(-0.5));
  const VolumeRaycaster full(GridOf({4, 4, 4}, Cube, [](int, int, int) { return 1; }));
  const Types::Plane all({0, -5, 0}, {0, 1, 0});
  const std::pair<std::vector<Types::Plane>, double> cases[] = {
      {{Types::Plane({0, 0.25, 0}, {0, 3, 0})}, 0.75},
      {{Types::Plane({0, 0.25, 0}, {0, -1, 0})}, 1.25},
      {{Types::Plane({0, -0.5, 0}, {0, 1, 0}), Types::Plane({0, 0.5, 0}, {0, -1, 0})}, 1},
      {{Types::Plane({0, 0.5, 0}, {0, 1, 0}), Types::Plane({0, -0.5, 0}, {0, -1, 0})}, 0},
      {{Types::Plane({0.5, 0, 0}, {1, 0, 0})}, 0},
      {{Types::Plane({0.5, 0, 0}, {-1, 0, 0})}, 2},
      {{all, all, all, all, all, Types::Plane({0, 0, 0}, {0, 1, 1e-9})}, 1}};
  for (const auto& [clips, way] : cases) {
    settings.clips = clips;
    EXPECT_NEAR(Drawn(full, settings, Front()).redF(), 1 - std::exp(-0.5 * way), 0.01) << way;
  }
  settings.clips.clear();
  settings.samplesPerVoxel = 16;
  const VolumeRaycaster gap(GridOf({1, 4, 1}, Cube, [](int, int p_j, int) { return p_j == 1 ? NAN : 1; }));
  EXPECT_NEAR(Drawn(gap, settings, Front()).redF(), 1 - std::exp(-0.5 * 1.5), 0.01);
  for (const Mode mode : {Mode::Average, Mode::Maximum}) {
    settings.mode = mode;
    settings.opacity = OpacityFunction(1);
    EXPECT_EQ(Drawn(gap, settings, Front()).red(), 255);
    const VolumeRaycaster none(GridOf({2, 2, 2}, Cube, [](int, int, int) { return NAN; }));
    EXPECT_EQ(Drawn(none, settings, Front()).red(), 0);
  }
}

TEST_F(VolumeRaycasterPixels, RunsLayersDownwards) {
  std::vector<float> values = {1, 9}; // first layer, second layer
  for (const auto layers : {VoxelGrid::Layers::Upwards, VoxelGrid::Layers::Downwards}) {
    const VolumeRaycaster volume(VoxelGrid(values, {1, 1, 2}, Cube, layers));
    VolumeRaycaster::Settings settings;
    settings.mode = Mode::Average;
    settings.scale = Between(0, 10);
    settings.opacity = OpacityFunction(1);
    Drawn(volume, settings, Front());
    const bool up = layers == VoxelGrid::Layers::Upwards;
    EXPECT_NEAR(Image().pixelColor(FrameSize.width / 2, 8).redF(), up ? 0.9 : 0.1, 0.01);
    EXPECT_NEAR(Image().pixelColor(FrameSize.width / 2, 28).redF(), up ? 0.1 : 0.9, 0.01);
  }
}

TEST_F(VolumeRaycasterPixels, LightsIsosurfacesFromTheirFront) {
  // Spheres around the middle; the surface of radius 0.7 is seen from outside, lit along the view.
  const VolumeRaycaster volume(GridOf({32, 32, 32}, Cube, [](int p_i, int p_j, int p_k) {
    const auto at = [](int p_index) { return (p_index + 0.5) / 16 - 1; };
    return std::sqrt(at(p_i) * at(p_i) + at(p_j) * at(p_j) + at(p_k) * at(p_k));
  }));
  VolumeRaycaster::Settings settings;
  settings.mode = Mode::Isosurface;
  settings.isovalue = 0.7;
  settings.scale = Between(0, 0.7); // white
  DirectionalLight light;
  light.direction = {0, 0, 1};
  light.ambient = 0.2;
  light.diffuse = 0.6;
  light.specular = 0;
  const auto lit = light.Apply(gl);
  EXPECT_NEAR(Drawn(volume, settings, Front()).redF(), 0.8, 0.01);
  // At 0.49 beside the middle, the normal has the angle asin(0.7) to the light.
  const int x = static_cast<int>(FrameSize.width / 2.0 + 0.49 * FrameSize.height / 3.0);
  const double right = (x + 0.5 - FrameSize.width / 2.0) * 3 / FrameSize.height / 0.7;
  EXPECT_NEAR(Image().pixelColor(x, FrameSize.height / 2).redF(), 0.2 + 0.6 * std::sqrt(1 - right * right), 0.02);
  EXPECT_EQ(Image().pixelColor(FrameSize.width / 2 + 11, FrameSize.height / 2).red(), 0);
}

TEST_F(VolumeRaycasterPixels, PicksTheDepthOfWhatIsSeen) {
  const VolumeRaycaster ramp(GridOf({2, 20, 2}, Cube, [](int, int p_j, int) { return p_j; }));
  const VolumeRaycaster flat(GridOf({2, 20, 2}, Cube, [](int, int, int) { return 1; }));
  VolumeRaycaster::Settings settings;
  settings.samplesPerVoxel = 8;
  settings.isovalue = 9.5; // at y = 0
  settings.unitLength = 1;
  settings.opacity = OpacityFunction(1 - std::exp(-3));
  const Camera camera = Front(Camera::Projection::Perspective, 4);
  // Half of 1 − exp(−6) is reached after ln(2 / (1 + exp(−6))) / 3.
  const std::tuple<Mode, const VolumeRaycaster*, double> cases[] = {
      {Mode::Isosurface, &ramp, 0},
      {Mode::Maximum, &ramp, 0.95},
      {Mode::Average, &ramp, 0},
      {Mode::Composite, &flat, -1 + std::log(2 / (1 + std::exp(-6))) / 3}};
  for (const auto& [mode, volume, y] : cases) {
    settings.mode = mode;
    const auto view = camera.Apply(gl, viewport);
    {
      const DepthPass pass(gl);
      volume->DrawDepths(gl, settings);
    }
    std::array<unsigned char, 4> bytes{};
    gl->ReadPixels(FrameSize.width / 2, FrameSize.height / 2, 1, 1, RGL_RGBA, RGL_UNSIGNED_BYTE, bytes.data());
    const double depth = DepthCodec::Decode({{bytes[0], bytes[1], bytes[2], bytes[3]}});
    const Camera::Pixel pixel{FrameSize.width / 2.0, FrameSize.height / 2.0, true};
    EXPECT_NEAR(camera.Unproject(pixel, depth, viewport).y, y, 0.02) << static_cast<int>(mode);
  }
  // An id hides what lies behind its depth, and nothing before it.
  gl->ClearColor(QColor(0, 0, 0, 0));
  gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
  gl->Enable(RGL_DEPTH_TEST);
  settings.mode = Mode::Isosurface;
  const auto view = camera.Apply(gl, viewport);
  ramp.Draw(gl, settings, PickPass{PickPass::Ids, 4});
  EXPECT_EQ(Middle(), QColor(255, 255, 255, 5));
  DrawSquare(gl, 0.1);
  EXPECT_EQ(Middle(), QColor(255, 255, 255, 5));
  DrawSquare(gl, -0.1);
  EXPECT_EQ(Middle(), QColor(0, 0, 0, 255));
}

TEST_F(VolumeRaycasterPixels, LeavesTheStateAlone) {
  const VoxelGrid grid = GridOf({4, 4, 4}, Cube, [](int p_i, int, int) { return p_i; });
  const VolumeRaycaster volume(grid);
  const VolumeSlices slices(grid);
  gl->Enable(RGL_DEPTH_TEST);
  gl->Enable(RGL_CULL_FACE);
  gl->Enable(RGL_CLIP_PLANE0);
  gl->PixelStorei(RGL_UNPACK_ALIGNMENT, 8);
  gl->ActiveTexture(RGL_TEXTURE3);
  gl->Color(QColor(10, 20, 30, 40));
  const auto view = Front().Apply(gl, viewport);
  const auto before = StateOf(gl);
  volume.Draw(gl, Grey(), {});
  EXPECT_EQ(StateOf(gl), before);
  volume.Draw(gl, {}, PickPass{PickPass::Ids, 1});
  EXPECT_EQ(StateOf(gl), before);
  slices.Draw(gl, {slices.Cut(1, 0)}, Grey(), Between(0, 1));
  EXPECT_EQ(StateOf(gl), before);
  slices.Draw(gl, {slices.Cut(1, 0)}, PickPass{PickPass::Ids, 1});
  EXPECT_EQ(StateOf(gl), before);
}

TEST_F(VolumeRaycasterPixels, RefusesWhatCannotBeDrawn) {
  const VolumeRaycaster volume(GridOf({2, 2, 2}, Cube, [](int, int, int) { return 1; }));
  using Change = std::function<void(VolumeRaycaster::Settings&)>;
  const Change changes[] = {[](auto& p_s) { p_s.scale = Between(1, 1); },
                            [](auto& p_s) { p_s.scale = Between(0, NAN); },
                            [](auto& p_s) { p_s.quality = 0; },
                            [](auto& p_s) { p_s.samplesPerVoxel = -1; },
                            [](auto& p_s) { p_s.samplesPerVoxel = NAN; },
                            [](auto& p_s) { p_s.unitLength = -0.1; },
                            [](auto& p_s) { p_s.isovalue = INFINITY; },
                            [](auto& p_s) { p_s.clips.resize(7); },
                            [](auto& p_s) {
                              p_s.clips = {Types::Plane({0, 0, 0}, {0, 0, 0})};
                            }};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    VolumeRaycaster::Settings settings;
    changes[i](settings);
    EXPECT_THROW(volume.Draw(gl, Grey(), settings), std::invalid_argument) << i;
    EXPECT_THROW(volume.DrawDepths(gl, settings), std::invalid_argument) << i;
  }
}

} // namespace
