#pragma once

#include "scene/Figure.h"
#include "tests/support/Test.h"

#include <QPolygonF>

// Data and fixtures of tests that draw figures.

namespace Vek::Test {

using Notes = std::vector<QString>;
using Viewport = Chart::Types::Viewport<0>;

/// Seeded points in a box around a point.
inline std::vector<Point> Cloud(std::size_t p_count, const Point& p_half = {1, 1, 1}, const Point& p_middle = {}) {
  std::mt19937 generator(7);
  std::uniform_real_distribution<double> number(-1, 1);
  std::vector<Point> points(p_count);
  for (Point& point : points)
    point = p_middle + Point(p_half.x * number(generator), p_half.y * number(generator), p_half.z * number(generator));
  return points;
}

inline Doubles Ascending(std::size_t p_count, double p_first = 0, double p_step = 1) {
  Doubles numbers(p_count);
  for (std::size_t i = 0; i < p_count; ++i)
    numbers[i] = p_first + p_step * static_cast<double>(i);
  return numbers;
}

inline QPolygonF PolygonOf(const std::vector<Chart::Types::Vector2_Base<double>>& p_corners) {
  QPolygonF polygon;
  for (const auto& [x, y] : p_corners)
    polygon << QPointF(x, y);
  return polygon;
}

inline QPolygonF PolygonOf(const Chart::Scene::AxesLayout::Label& p_label) {
  const auto corners = p_label.Corners();
  return PolygonOf({corners.begin(), corners.end()});
}

inline double AreaOf(const QPolygonF& p_polygon) {
  double area = 0;
  for (int i = 0; i < p_polygon.size(); ++i) {
    const QPointF a = p_polygon[i], b = p_polygon[(i + 1) % p_polygon.size()];
    area += (a.x() * b.y() - a.y() * b.x()) / 2;
  }
  return std::abs(area);
}

/// Looks at layouts, without GL.
class FigureFixture : public ::testing::Test {
public:
  const Viewport wide{0, 0, 600, 400};
  void SetUp() override { MakeApplication(); }
  Notes NotesOf(Chart::Scene::Figure& p_figure) { return p_figure.Layout(wide).notes; }
};

class FigureCallsFixture : public Chart::Testing::RecordingScopeFixture {
public:
  static constexpr Chart::Ogl::GlEnum ProfileMask = 0x9126;
  void SetUp() override {
    MakeApplication();
    recorder.SetVersion("3.3.0");
    recorder.SetInteger(ProfileMask, {2});
  }
  /// The calls of a drawing.
  Lines CallsOf(Chart::Scene::Figure& p_figure) {
    recorder.Clear();
    p_figure.Draw(gl, {0, 0, 600, 400});
    return recorder.Lines();
  }
  /// The bytes of each upload of a drawing.
  std::vector<std::size_t> UploadsOf(Chart::Scene::Figure& p_figure) {
    CallsOf(p_figure);
    return Vek::Test::UploadsOf(recorder);
  }
};

class FigurePixelsFixture : public Chart::Testing::PixelScopeFixture {
public:
  static constexpr Chart::Types::Size ImageSize{300, 200};
  FigurePixelsFixture()
      : PixelScopeFixture(ImageSize) {}
  const Viewport viewport{0, 0, 300, 200};
  void SetUp() override {
    MakeApplication();
    PixelScopeFixture::SetUp();
  }
  /// Draws with a grid that does not show.
  void Draw(Chart::Scene::Figure& p_figure) {
    p_figure.theme.grid = p_figure.theme.line = Qt::white;
    p_figure.Draw(gl, viewport);
  }
  /// Draws, and returns the colour at a point of the data.
  QColor Drawn(Chart::Scene::Figure& p_figure, const Point& p_data) {
    Draw(p_figure);
    return AtPoint(p_figure, p_data);
  }
  Chart::Scene::Camera::Pixel PixelOf(Chart::Scene::Figure& p_figure, const Point& p_data) {
    return p_figure.Layout(viewport).camera.Project(p_figure.ToScene(p_data), viewport);
  }
  /// The pixel, moved by some, at which a point of the data must appear in what was drawn.
  QColor AtPoint(Chart::Scene::Figure& p_figure, const Point& p_data, int p_x = 0, int p_y = 0) {
    const auto pixel = PixelOf(p_figure, p_data);
    return At(static_cast<int>(pixel.x) + p_x, static_cast<int>(pixel.y) + p_y);
  }
};

} // namespace Vek::Test
