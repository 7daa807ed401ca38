// Examples of the reference for cameras, light and axes; it shows the lines between two marks.

#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "scene/OrbitController.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

namespace {

using SceneViewSnippetPixels = Testing::PixelScopeFixture;

TEST(SceneViewSnippets, Camera) {
  const Types::BoundingBox_Base<double> bounds({0, 0, 0}, {4, 2, 1});
  const Types::Viewport<0> viewport(0, 0, 800, 600);
  //! [Camera]
  Camera camera;
  camera.Look(Camera::StandardView::Chart);
  camera.Fit(bounds, viewport, {60, 40, 20, 50}); // pixels at the left, lower, right and upper border
  const Camera::Pixel corner = camera.Project(bounds.Max(), viewport);
  //! [Camera]
  EXPECT_TRUE(corner.visible && corner.y < 550.001);
}

TEST(SceneViewSnippets, OrbitController) {
  const Types::Viewport<0> viewport(0, 0, 800, 600);
  const Camera::Pixel cursor{200, 450, true};
  //! [OrbitController]
  OrbitController orbit(Camera::LookAt({0, -8, 3}, {0, 0, 0}));
  orbit.Rotate(40, 10);            // pixels, y upwards
  orbit.Zoom(2, cursor, viewport); // two notches of the wheel, to the cursor
  const Camera& camera = orbit.Camera();
  //! [OrbitController]
  EXPECT_LT(camera.distance, 8);
}

TEST_F(SceneViewSnippetPixels, DirectionalLight) {
  const Types::Viewport<0> viewport(0, 0, 61, 37);
  const Camera camera;
  const auto drawScene = [] {};
  //! [DirectionalLight]
  DirectionalLight sun;
  sun.frame = DirectionalLight::Frame::Scene; // the light stays with the scene
  sun.direction = {1, -1, 2};
  {
    const auto view = camera.Apply(gl, viewport);
    const auto light = sun.Apply(gl);
    drawScene();
  } // light and matrices are as before
  //! [DirectionalLight]
  EXPECT_TRUE(gl->CheckError("DirectionalLight"));
}

} // namespace
