// Examples of the reference for cameras, light and axes; it shows the lines between two marks.

#include "library/Cuboid.h"
#include "library/Geometry.h"
#include "library/Sphere.h"
#include "scene/Axes.h"
#include "scene/Background.h"
#include "scene/Camera.h"
#include "scene/DirectionalLight.h"
#include "scene/OrbitController.h"
#include "scene/OrientationTriad.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

#include <iostream>

using namespace Vek::Chart::Scene;

namespace {

using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

class SceneViewSnippetPixels : public ShownFixture {
public:
  explicit SceneViewSnippetPixels(Types::Size p_size = {1280, 360})
      : ShownFixture(p_size)
      , _shapes(handle) {}

protected:
  /// One of `p_count` equal parts of the frame buffer, side by side, with the background.
  Types::Viewport<0> Panel(int p_index, int p_count) {
    const float width = viewport.width / static_cast<float>(p_count);
    const Types::Viewport<0> panel(width * static_cast<float>(p_index), 0, width, viewport.height);
    DrawBackground(gl, panel, Theme::Light());
    gl->Viewport(panel);
    return panel;
  }
  /// A string below the middle of a panel.
  void Caption(const Types::Viewport<0>& p_panel, const QString& p_text) {
    Canvas canvas(gl, p_panel, _text, PointSize);
    canvas.Text(p_text, {canvas.Width() / 2, 18}, {0.5, 0.5}, Theme::Light().WithHalo(Theme::Light().BodyStyle()));
  }
  /// Three by two bars within `Bounds`, with a light applied.
  void DrawBars() {
    gl->Enable(RGL_COLOR_MATERIAL);
    const double heights[] = {0.5, 1, 0.75, 0.3, 0.6, 0.2};
    const QColor colors[] = {{0x44, 0x77, 0xAA}, {0xEE, 0x66, 0x77}, {0x22, 0x88, 0x33}};
    for (int i = 0; i < 6; ++i) {
      Library::Cuboid bar;
      bar.position = Point(0.5 + i % 3, 1.5 - i / 3, heights[i] / 2);
      bar.size = Point(0.7, 0.7, heights[i]);
      gl->Color(colors[i % 3]);
      bar(handle, _shapes);
    }
  }
  static constexpr Box Bounds{Point(0, 0, 0), Point(3, 2, 1)};

private:
  Library::Geometry _shapes;
  TextRenderer _text;
};

TEST_F(SceneViewSnippetPixels, Camera) {
  using View = Camera::StandardView;
  const auto show = [&](int p_index, const QString& p_name, View p_view, Camera::Projection p_projection) {
    const Types::Viewport<0> panel = Panel(p_index, 4);
    //! [Camera]
    Camera camera;
    camera.Look(p_view); // Camera::StandardView::Chart, for example
    camera.projection = p_projection;
    camera.Fit(Bounds, panel, {30, 60, 30, 30}); // pixels at the left, lower, right and upper border
    {
      const auto guard = camera.Apply(gl, panel);
      const auto light = DirectionalLight().Apply(gl);
      DrawBars();
    } // the matrices are as before
    const Camera::Pixel corner = camera.Project(Bounds.Max(), panel);
    //! [Camera]
    EXPECT_TRUE(corner.visible);
    Caption(panel, p_name);
  };
  show(0, "Chart", View::Chart, Camera::Projection::Perspective);
  show(1, "Isometric", View::Isometric, Camera::Projection::Parallel);
  show(2, "Front", View::Front, Camera::Projection::Parallel);
  show(3, "Top", View::Top, Camera::Projection::Parallel);
  Show("Camera");
}

TEST_F(SceneViewSnippetPixels, OrbitController) {
  const Types::Viewport<0> panel(0, 0, 640, 360);
  Camera start;
  start.Look(Camera::StandardView::Chart);
  start.Fit(Bounds, panel, {40, 60, 40, 40});
  const Point underCursor(1.5, 1.5, 1);
  const Camera::Pixel cursor = start.Project(underCursor, panel);
  //! [OrbitController]
  OrbitController orbit(start);
  orbit.Zoom(4, cursor, panel); // four notches of the wheel: what is under the cursor stays there
  orbit.Rotate(12, -8);         // pixels, y upwards
  orbit.Pan(0, 10, panel);
  const Camera& moved = orbit.Camera();
  //! [OrbitController]
  for (const auto& [index, name, camera] : {std::tuple(0, "Start", start), {1, "Moved", moved}}) {
    const Types::Viewport<0> part = Panel(index, 2);
    {
      const auto guard = camera.Apply(gl, part);
      const auto light = DirectionalLight().Apply(gl);
      DrawBars();
    }
    Caption(part, name);
  }
  Show("OrbitController");
}

TEST_F(SceneViewSnippetPixels, DirectionalLight) {
  const auto show = [&](int p_index, const QString& p_name, DirectionalLight::Frame p_frame, double p_azimuth) {
    const Types::Viewport<0> panel = Panel(p_index, 4);
    Camera camera;
    camera.Look(Camera::StandardView::Chart);
    camera.azimuth = p_azimuth;
    camera.Fit(Box({-1, -1, -1}, {1, 1, 1}), panel, {0, 50, 0, 0});
    const auto drawScene = [&] { Library::Sphere()(handle); };
    //! [DirectionalLight]
    DirectionalLight sun;
    sun.frame = p_frame; // DirectionalLight::Frame::Scene: the light stays with the scene
    sun.direction = {-1, -1, 1};
    sun.ambient = 0.2;
    sun.diffuse = 0.6;
    sun.specular = 0.2;
    {
      const auto view = camera.Apply(gl, panel);
      const auto light = sun.Apply(gl);
      drawScene();
    } // light and matrices are as before
    //! [DirectionalLight]
    Caption(panel, p_name);
  };
  show(0, "Camera, 0°", DirectionalLight::Frame::Camera, 0);
  show(1, "Camera, 70°", DirectionalLight::Frame::Camera, 70);
  show(2, "Scene, 0°", DirectionalLight::Frame::Scene, 0);
  show(3, "Scene, 70°", DirectionalLight::Frame::Scene, 70);
  Show("DirectionalLight");
}

TEST_F(SceneViewSnippetPixels, OrientationTriad) {
  const Types::Viewport<0> panel = Panel(0, 1);
  Camera camera;
  camera.Look(Camera::StandardView::Chart);
  //! [OrientationTriad]
  const TextRenderer text;
  Canvas canvas(gl, panel, text, PointSize);
  OrientationTriad triad;
  triad.Draw(canvas, camera, {120, 80}, Theme::Light());
  triad.names = {"east", "north", "up"};
  triad.length = 70;
  triad.Draw(canvas, camera, {290, 80}, Theme::Light());
  //! [OrientationTriad]
  camera.Look(Camera::StandardView::Top);
  OrientationTriad().Draw(canvas, camera, {500, 80}, Theme::Light());
  canvas.Flush();
  Show("OrientationTriad");
}

class SceneAxesSnippetPixels : public SceneViewSnippetPixels {
public:
  SceneAxesSnippetPixels()
      : SceneViewSnippetPixels({1280, 960}) {}
};

TEST_F(SceneAxesSnippetPixels, Axes) {
  DrawBackground(gl, viewport, Theme::Light());
  Camera camera;
  camera.Look(Camera::StandardView::Chart);
  const TextRenderer text;
  //! [Axes]
  Axes axes;
  axes.box = {{0, 0, 0}, {4, 3, 2}}; // in units of the scene
  axes.axes = {{{"Distance", "km", 0, 400},
                {"Pressure", "hPa", 1000, 10, Axes::Scale::Logarithmic},
                {"Altitude", "m", 0, 32000}}};
  const Axes::Target target{viewport, PointSize, Axes::MeasureIn(Theme::Light(), PointSize)};
  Axes::State edges;                                                           // kept from frame to frame
  const AxesLayout layout = axes.Fit(camera, target, {20, 20, 20, 20}, edges); // moves the camera
  {
    Canvas canvas(gl, viewport, text, PointSize);
    Axes::Draw(canvas, layout, Theme::Light());
  }
  const auto guard = camera.Apply(gl, viewport); // from here on, the data
  //! [Axes]
  const auto light = DirectionalLight().Apply(gl);
  gl->Enable(RGL_COLOR_MATERIAL);
  for (int i = 0; i < 60; ++i) {
    Library::Sphere marker;
    marker.radius = 0.06;
    marker.position = Point(2 + 1.3 * std::cos(0.3 * i), 1.5 + 1.3 * std::sin(0.3 * i), 0.1 + 0.03 * i);
    gl->Color(QColor::fromHsvF(0.55 + 0.005 * i, 0.7, 0.8));
    marker(handle);
  }
  Show("Axes");
}

TEST(SceneViewSnippets, AxesLayout) {
  Axes axes;
  axes.box = {{0, 0, 0}, {4, 3, 2}};
  axes.axes[0] = {"Length", "m", 0, 100};
  //! [AxesLayout]
  // Strings of 7 × 14 points a letter; no GL and no fonts are needed.
  const auto measure = [](const QString& p_text, AxesLayout::Font) { return QSizeF(7.0 * p_text.size(), 14); };
  Camera camera;
  Axes::State edges;
  const AxesLayout layout = axes.Fit(camera, {{0, 0, 800, 600}, 1, measure}, {}, edges);
  for (const AxesLayout::Label& label : layout.labels)
    std::cout << label.text.toStdString() << " at " << label.center.x << ", " << label.center.y << '\n';
  //! [AxesLayout]
  EXPECT_FALSE(layout.labels.empty());
}

} // namespace
