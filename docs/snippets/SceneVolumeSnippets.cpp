// Examples of the reference for volumes; it shows the lines between two marks.

#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "scene/OpacityFunction.h"
#include "scene/VolumeRaycaster.h"
#include "scene/VolumeSlices.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

namespace {

using Box = Types::BoundingBox_Base<double>;

/// The density of the orbital 3d(z²) of a hydrogen atom, n × n × n numbers over ±20 Bohr radii, 1 at most.
std::vector<float> Orbital(int p_n) {
  std::vector<float> density;
  const auto at = [&](int p_i) { return 40.0 * (p_i + 0.5) / p_n - 20; };
  for (int k = 0; k < p_n; ++k)
    for (int j = 0; j < p_n; ++j)
      for (int i = 0; i < p_n; ++i) {
        const double x = at(i), y = at(j), z = at(k), r = std::sqrt(x * x + y * y + z * z);
        const double wave = (3 * z * z - r * r) * std::exp(-r / 3);
        density.push_back(static_cast<float>(wave * wave));
      }
  const float most = *std::max_element(density.begin(), density.end());
  for (float& value : density)
    value /= most;
  return density;
}

class SceneVolumeSnippetPixels : public ShownFixture {
public:
  SceneVolumeSnippetPixels()
      : ShownFixture({1000, 800}) {}

protected:
  /// A camera at the usual angles that sees the whole box.
  Camera CameraFor(const Box& p_box, double p_azimuth = -30, double p_elevation = 25) const {
    Camera camera;
    camera.azimuth = p_azimuth;
    camera.elevation = p_elevation;
    camera.Fit(p_box, viewport, {30, 30, 30, 30});
    return camera;
  }
};

TEST_F(SceneVolumeSnippetPixels, VoxelGrid) {
  const std::vector<float> density = Orbital(64);
  //! [VoxelGrid]
  const VoxelGrid::Sizes sizes = {64, 64, 64};
  const VoxelGrid grid(density, sizes, VoxelGrid::CubicBounds(sizes, 2)); // any container of numbers, x fastest
  const double largest = grid.Range().max;

  VolumeRaycaster::Settings settings;
  settings.mode = VolumeRaycaster::Mode::Maximum;
  settings.scale.upper = largest;
  const auto view = CameraFor(Box({-0.6, -0.6, -0.7}, {0.6, 0.6, 0.7})).Apply(gl, viewport);
  VolumeRaycaster(grid).Draw(gl, ColorMap::Named("magma"), settings);
  //! [VoxelGrid]
  Show("VoxelGrid");
}

TEST_F(SceneVolumeSnippetPixels, OpacityFunction) {
  const VoxelGrid grid(Orbital(80), {80, 80, 80}, Box({-20, -20, -20}, {20, 20, 20}));
  //! [OpacityFunction]
  VolumeRaycaster::Settings settings;
  settings.scale.upper = 0.5;
  settings.unitLength = 1; // the opacities are those of a layer of one Bohr radius
  // Two shells: a thin one around the value 0.03, and a dense core.
  settings.opacity = OpacityFunction({{0.02, 0}, {0.03, 0.25}, {0.04, 0}, {0.2, 0}, {0.3, 0.9}});
  settings.shading = true;
  settings.jitter = true; // no rings from the steps of the rays
  //! [OpacityFunction]
  const auto view = CameraFor(Box({-12, -12, -16}, {12, 12, 16})).Apply(gl, viewport);
  const auto light = DirectionalLight().Apply(gl);
  VolumeRaycaster(grid).Draw(gl, ColorMap::Named("plasma"), settings);
  Show("OpacityFunction");
}

TEST_F(SceneVolumeSnippetPixels, VolumeSlices) {
  //! [VolumeSlices]
  const auto image = VolumeImage::LoadFromFile(vekfile::filepath(VEK_SOURCE_DIR "/data/ocean_salinity.txt"),
                                               VolumeImage::TextArray); // bytes; 0 is land
  const VoxelGrid ocean(image, Box({-1.8, -0.9, -0.7}, {1.8, 0.9, 0.7}), VoxelGrid::Layers::Downwards);
  const VolumeSlices slices(ocean);
  const std::vector<Slice> cuts = {slices.Cut(0, 1.3), slices.Cut(1, 0), slices.Cut(2, -0.35),
                                   slices.Cut(Types::Plane({-1, 0, 0}, {1, 1, 0}))};
  ValueScale scale;
  scale.lower = 0.8;
  scale.upper = 0.92;
  const auto view = CameraFor(ocean.Bounds(), -25, 28).Apply(gl, viewport);
  gl->Enable(RGL_DEPTH_TEST);
  slices.Draw(gl, cuts, ColorMap::Named("viridis"), scale);
  gl->Color(Qt::darkGray);
  DrawOutlines(gl, cuts);
  DrawEdges(gl, ocean.Bounds());
  gl->Disable(RGL_DEPTH_TEST);
  //! [VolumeSlices]
  Show("VolumeSlices");
}

TEST_F(SceneVolumeSnippetPixels, VolumeRaycaster) {
  const std::vector<float> density = Orbital(112);
  //! [VolumeRaycaster]
  const VoxelGrid grid(density, {112, 112, 112}, Box({-20, -20, -20}, {20, 20, 20}));
  const VolumeRaycaster volume(grid);
  VolumeRaycaster::Settings settings; // emission and absorption
  settings.scale.upper = 0.3;
  settings.opacity = OpacityFunction::Ramp(0.005, 0.3, 0.7);
  settings.clips = {Types::Plane({0, 0, 0}, {0, 1, 0})}; // the half behind y = 0

  const auto view = CameraFor(Box({-12, -12, -16}, {12, 12, 16})).Apply(gl, viewport);
  volume.Draw(gl, ColorMap::Named("viridis"), settings);
  //! [VolumeRaycaster]
  Show("VolumeRaycaster");
}

} // namespace
