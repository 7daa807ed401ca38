#include "scene/VolumeRaycaster.h"

#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

namespace {

using Mode = VolumeRaycaster::Mode;
using Box = Types::BoundingBox_Base<double>;

const Box Cube({-1, -1, -1}, {1, 1, 1});

ColorMap Grey() {
  return ColorMap({Qt::black, Qt::white}, ColorMap::Interpolated);
}

ValueScale ScaleOf(double p_lower, double p_upper) {
  ValueScale scale;
  scale.lower = p_lower;
  scale.upper = p_upper;
  return scale;
}

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
  settings.scale = ScaleOf(0, 5); // white
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

} // namespace
