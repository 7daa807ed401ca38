#include "scene/DirectionalLight.h"
#include "scene/Camera.h"
#include "tests/support/Test.h"

namespace {

using DirectionalLightCalls = RecordingScopeFixture;

class DirectionalLightPixels : public PixelScopeFixture {
protected:
  /// The grey of a square that fills the view of a camera at elevation 0, with a normal in the scene's coordinates.
  int GreyOf(const DirectionalLight& p_light, double p_azimuth, const Point& p_normal, bool p_isBackFace = false) {
    Camera camera;
    camera.azimuth = p_azimuth;
    camera.elevation = 0;
    const auto guard = camera.Apply(gl, {0, 0, 1, 1});
    const auto light = p_light.Apply(gl);
    const Camera::Basis basis = camera.Directions();
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    gl->Begin(RGL_QUADS);
    gl->Normal3d(p_normal.x, p_normal.y, p_normal.z);
    for (const auto& [x, y] : {std::pair(-9, -9), {9, -9}, {9, 9}, {-9, 9}})
      gl->Vertex(basis.right * static_cast<double>(p_isBackFace ? -x : x) + basis.up * static_cast<double>(y));
    gl->End();
    return At(30, 18).red();
  }
};

} // namespace

TEST_F(DirectionalLightPixels, LightsByItsFrameAndSides) {
  DirectionalLight light;
  light.ambient = 0.2;
  light.diffuse = 0.6;
  light.specular = 0;
  light.direction = {0, 0, 4};
  const int full = 204, ambient = 51; // (0.2 + 0.6) and 0.2 of 255
  // Looking along +y and along +x at a surface that faces the viewer, and at its other side.
  const Point toFirst(0, -1, 0), toSecond(-1, 0, 0);
  EXPECT_NEAR(GreyOf(light, 0, toFirst), full, 1);
  EXPECT_NEAR(GreyOf(light, 90, toSecond), full, 1) << "the light follows the camera";
  light.frame = DirectionalLight::Frame::Scene;
  light.direction = {0, -4, 0};
  EXPECT_NEAR(GreyOf(light, 0, toFirst), full, 1);
  EXPECT_NEAR(GreyOf(light, 90, toSecond), ambient, 1) << "the light stays in the scene";
  EXPECT_NEAR(GreyOf(light, 90, toFirst), full, 1);
  EXPECT_NEAR(GreyOf(light, 0, -toFirst, true), full, 1) << "the back, lit by its own normal";
  light.isTwoSided = false;
  EXPECT_NEAR(GreyOf(light, 0, -toFirst, true), ambient, 1);
  light.isTwoSided = true;
  light.diffuse = 0;
  light.specular = 0.5;
  EXPECT_NEAR(GreyOf(light, 0, toFirst), 179, 2) << "0.2 + 0.5: a mirror towards the viewer";
}

TEST_F(DirectionalLightCalls, RestoresAllThatItChanges) {
  gl->MatrixMode(RGL_TEXTURE);
  recorder.Clear();
  const auto guard = DirectionalLight().Apply(gl);
  const Lines lines = recorder.Lines();
  EXPECT_EQ(lines.front(), "PushAttrib(GL_LIGHTING_BIT|GL_DEPTH_BUFFER_BIT|GL_TRANSFORM_BIT|GL_ENABLE_BIT)");
  EXPECT_EQ(recorder.LinesOf({"Lightfv"}).front(), "Lightfv(GL_LIGHT0, GL_POSITION, [-0.5 0.62 0.6 0])");
  EXPECT_EQ(recorder.LinesOf({"Materialfv"}).back(), "Materialfv(GL_FRONT_AND_BACK, GL_SHININESS, [24])");
}

TEST_F(DirectionalLightCalls, RefusesWrongSettingsBeforeAnyCall) {
  const Point directions[] = {{0, 0, 0}, {0, 0, NAN}, {INFINITY, 0, 0}, {1e-60, 0, 0}};
  for (const Point& direction : directions) {
    DirectionalLight light;
    light.direction = direction;
    EXPECT_THROW(light.Apply(gl), std::invalid_argument);
  }
  for (const double shininess : {-1.0, 129.0, double(NAN)}) {
    DirectionalLight light;
    light.shininess = shininess;
    EXPECT_THROW(light.Apply(gl), std::invalid_argument);
  }
  EXPECT_EQ(Changes(), Lines());
}
