// Parts without a figure: a tube, axes, a colour bar and a title, placed by the program and drawn into a context
// without a window.
#include <library/ColorMap.h>
#include <platform/ogl/OffscreenContext.h>
#include <scene/Axes.h>
#include <scene/Background.h>
#include <scene/ColorBar.h>
#include <scene/DirectionalLight.h>
#include <scene/GpuMesh.h>
#include <scene/TubeMesh.h>

#include <QGuiApplication>

#include <cmath>

using namespace Vek::Chart::Scene;

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen"); // fonts need an application object, which needs no display
  const QGuiApplication application(argc, argv);

  TubeMesh tube(Vek::Chart::Library::StreamLineShape(Vek::Chart::Library::StreamLineShape::ShapeTube, {}));
  std::vector<TubeMesh::Point> knot; // position, width, value
  for (int i = 0; i <= 1000; ++i) {
    const double t = 2 * M_PI * i / 1000, radius = 2 + std::cos(3 * t);
    knot.push_back({{radius * std::cos(2 * t), radius * std::sin(2 * t), std::sin(3 * t)}, 0.5, radius});
  }
  tube.Add(knot);
  const GpuMesh mesh(tube.TakeMesh());

  const Axes axes{{{-4, -4, -2}, {4, 4, 2}}, {{{"x", "m", -4, 4}, {"y", "m", -4, 4}, {"z", "m", -2, 2}}}};

  Vek::Chart::Ogl::OffscreenContext context({1200, 800}, 4);
  Vek::Chart::Utility::Scoped<Vek::Chart::Rgl> gl(context.Handle());
  const auto colors = Vek::Chart::Library::ColorMap::Named("plasma"); // textures need the context
  ColorBar bar(colors, {1, 3});
  bar.title = "Distance from the axis in m";

  const Theme theme;
  const TextRenderer text;
  const Vek::Chart::Types::Viewport<0> viewport(0, 0, 1200, 800);
  DrawBackground(gl, viewport, theme);
  Camera camera = Camera::LookAt({2, -3, 3}, {0, 0, 0});
  const AxesLayout layout = axes.Fit(camera, {viewport, 1, Axes::MeasureIn(theme, 1)}, {20, 20, 120, 40});
  { // flat
    Canvas canvas(gl, viewport, text);
    Axes::Draw(canvas, layout, theme);
    bar.Layout(400, theme).DrawAt(canvas, {1100, 200});
    canvas.Text("Trefoil knot", {20, 780}, {0, 1}, theme.TitleStyle());
  }
  const auto view = camera.Apply(gl, viewport), light = DirectionalLight().Apply(gl);
  mesh.Draw(gl, colors, {1, 3});
  context.Image().save("parts.png");
}
