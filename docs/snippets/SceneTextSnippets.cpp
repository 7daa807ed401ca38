// Examples of the reference for themes, strings and canvases; it shows the lines between two marks.

#include "library/ColorMap.h"
#include "scene/Background.h"
#include "scene/Canvas.h"
#include "scene/TextRenderer.h"
#include "scene/Theme.h"
#include "tests/support/Shown.h"
#include "tests/support/Test.h"

using namespace Vek::Chart::Scene;

namespace {

class SceneTextSnippetPixels : public ShownFixture {
public:
  SceneTextSnippetPixels()
      : ShownFixture({1280, 560}) {}
};

TEST_F(SceneTextSnippetPixels, Theme) {
  //! [Theme]
  const TextRenderer text;
  const auto panel = [&](float p_left, const Theme& p_theme, const QString& p_name) {
    const Types::Viewport<0> part(p_left, 0, 426, 560);
    DrawBackground(gl, part, p_theme);
    Canvas canvas(gl, part, text, PointSize); // pixels of a point: the device pixel ratio
    canvas.Text(p_name, {24, 240}, {0, 0.5}, p_theme.TitleStyle());
    canvas.Text("Speed in m/s", {24, 214}, {0, 0.5}, p_theme.BodyStyle());
    for (int i = 0; i <= 4; ++i) {
      const double y = 30 + 40 * i;
      canvas.Line({56, y}, {190, y}, 1, i == 0 ? p_theme.line : p_theme.grid);
      canvas.Text(QString::number(5 * i), {50, y}, {1, 0.5}, p_theme.SmallStyle());
    }
    canvas.Line({56, 30}, {56, 190}, 1, p_theme.line);
  };
  panel(0, Theme::Light(), "Light");
  panel(427, Theme::Dark(), "Dark");
  panel(854, Theme::Print(), "Print");
  //! [Theme]
  Show("Theme");
}

TEST_F(SceneTextSnippetPixels, TextRenderer) {
  const TextRenderer none;
  Canvas canvas(gl, viewport, none, PointSize);
  const Library::ColorMap colors = Library::ColorMap::Named("viridis");
  for (int i = 0; i < 64; ++i) // data, to draw over
    for (int j = 0; j < 28; ++j)
      canvas.Fill({10.0 * i, 10.0 * j, 10.0 * (i + 1), 10.0 * (j + 1)},
                  colors.Color(0.5 + 0.25 * std::sin(0.17 * i + 0.1 * j) + 0.25 * std::sin(0.4 * j - 0.06 * i)));
  canvas.Flush();
  //! [TextRenderer]
  const TextRenderer text; // keeps the letters of all contexts that it draws in
  const auto pixels = gl->PixelProjection(viewport);
  TextRenderer::Style style;
  style.size = 20; // points
  style.color = Qt::black;
  style.halo = QColor(255, 255, 255, 200);
  style.haloWidth = 2.5;
  text.Draw(gl, "Salt flux in 10⁻³ kg m⁻² s⁻¹", {640, 480}, {0.5, 0.5}, style, PointSize);
  for (int degrees = 0; degrees < 360; degrees += 45) // about a point to the left of the box
    text.Draw(gl, QString("%1°").arg(degrees), {640, 240}, {-0.5, 0.5}, style, PointSize, degrees);
  style.halo = Qt::transparent;
  style.color = Qt::white;
  style.bold = true;
  text.Draw(gl, "Depth in m", {60, 280}, {0.5, 0.5}, style, PointSize, 90);
  //! [TextRenderer]
  Show("TextRenderer");
}

TEST_F(SceneTextSnippetPixels, Canvas) {
  const TextRenderer text;
  DrawBackground(gl, viewport, Theme());
  std::vector<Canvas::Position> curve;
  for (int i = 0; i <= 100; ++i)
    curve.push_back({60 + 3.0 * i, 140 - 80 * std::cos(0.09 * i) * std::exp(-0.02 * i)});
  const Library::ColorMap colors = Library::ColorMap::Named("viridis");
  QImage image(50, 50, QImage::Format_ARGB32);
  for (int i = 0; i < 2500; ++i)
    image.setPixelColor(i % 50, i / 50, colors.Color(0.5 + 0.5 * std::sin(0.4 * std::hypot(i % 50 - 35, i / 50 - 15))));
  //! [Canvas]
  const Theme theme = Theme::Light();
  Canvas canvas(gl, viewport, text, PointSize); // from here on, lengths are in points
  const Canvas::Rect panel{60, 40, 360, 240}, map{420, 40, 620, 240};
  canvas.Fill(panel, QColor(0xF4F6F8), QColor(0xDCE6F0));
  canvas.Polyline(curve, 3, QColor(0xC0392B));
  canvas.Frame(panel, 1, theme.line);
  canvas.Text("Damped", {210, 250}, {0.5, 0}, theme.BodyStyle());
  canvas.Image(map, image);
  canvas.Triangle({560, 180}, {540, 150}, {530, 164}, theme.title);
  canvas.Text("Centre", {536, 146}, {1, 0.5}, theme.WithHalo(theme.BodyStyle()));
  canvas.Flush(); // or the end of the canvas: draws all of it
  //! [Canvas]
  Show("Canvas");
}

} // namespace
