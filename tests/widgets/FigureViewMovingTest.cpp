// Frames of many glyphs and segments while a mouse moves the camera, and after it rests. Needs an X server.

#include "widgets/FigureView.h"

#include "tests/support/Test.h"
#include "tests/support/Windows.h"

#include <QApplication>
#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>

using namespace Vek::Chart::Widgets;

namespace {

/// Counts the triangles, lines and points of its last frame.
struct CountedView : FigureView {
  using FigureView::FigureView;
  unsigned int primitives = 0;
  void paintGL() override {
    QOpenGLExtraFunctions& gl = *context()->extraFunctions();
    constexpr unsigned int Generated = 0x8C87; // GL_PRIMITIVES_GENERATED
    unsigned int query = 0;
    gl.glGenQueries(1, &query);
    gl.glBeginQuery(Generated, query);
    FigureView::paintGL();
    gl.glEndQuery(Generated);
    gl.glGetQueryObjectuiv(query, 0x8866, &primitives); // GL_QUERY_RESULT
    gl.glDeleteQueries(1, &query);
  }
};

constexpr int Side = 250; // of a grid of 62,500 glyphs

std::vector<Point> Grid() {
  std::vector<Point> points;
  for (int i = 0; i < Side * Side; ++i)
    points.emplace_back(i % Side, i / Side, 0);
  return points;
}

std::vector<Point> Flow() {
  std::vector<Point> vectors;
  for (const Point& point : Grid())
    vectors.emplace_back(std::sin(point.y / 40), std::cos(point.x / 40), 0);
  return vectors;
}

void AddArrows(Scene::Figure& p_figure) {
  p_figure.Quiver(Grid(), Flow()).Most(Side * Side).ColorByLength();
}
void AddPoints(Scene::Figure& p_figure) {
  p_figure.Scatter(Grid());
}
void AddStreamlines(Scene::Figure& p_figure) {
  constexpr int Cells = 20;
  std::vector<double> axis(Cells);
  std::iota(axis.begin(), axis.end(), 0.0);
  std::vector<Point> vectors;
  for (int i = 0; i < Cells * Cells * Cells; ++i) {
    const double x = i % Cells, y = i / Cells % Cells, z = i / (Cells * Cells);
    vectors.emplace_back(std::sin(y) + 0.3, std::sin(z) + 0.3, std::sin(x) + 0.3);
  }
  p_figure.Streamlines(VectorField::Rectilinear(axis, axis, axis, vectors)).Spacing(0.02).Width(0.8);
}

/// How many pixels in the upper left corner of the scene are dark.
int Ink(const QImage& p_image, const FigureView& p_view) {
  const double ratio = p_view.devicePixelRatioF(); // scenes are in points
  const auto scene = p_view.Figure()->Layout(p_view.Viewport(), ratio).scene;
  const int left = static_cast<int>(ratio * scene.left),
            top = static_cast<int>(p_image.height() - ratio * static_cast<double>(scene.top));
  int ink = 0;
  for (int y = std::max(0, top); y < top + 14 * ratio; ++y)
    for (int x = left; x < left + 150 * ratio; ++x)
      ink += qGray(p_image.pixel(x, y)) < 128 ? 1 : 0;
  return ink;
}

} // namespace

TEST(FigureViewMovingTest, DrawsFewerWithASignUntilTheHandRests) {
  StartApplication();
  struct Case {
    const char* name;
    void (*add)(Scene::Figure&);
  };
  for (const Case& item : {Case{"arrows", AddArrows}, {"points", AddPoints}, {"streamlines", AddStreamlines}}) {
    const auto figure = std::make_shared<Scene::Figure>();
    item.add(*figure);
    CountedView view(figure);
    view.resize(600, 400);
    view.show();
    ASSERT_TRUE(WaitFor([&] { return view.isValid() && view.primitives > 0; }));
    const QImage full = view.Image();
    const unsigned int all = view.primitives;
    const QPointF from(300, 200), away(340, 200);
    SendMouse(view, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    for (const QPointF& place : {away, from})
      SendMouse(view, QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton);
    const QImage moving = view.Image(); // before the event loop sees that the hand rests
    EXPECT_LT(view.primitives, all / 2) << item.name;
    EXPECT_GT(Ink(moving, view), Ink(full, view) + 100) << item.name << ": the sign";
    EXPECT_TRUE(WaitFor([&] { return view.primitives == all; })) << item.name << ", with the button down";
    EXPECT_LT(Difference(view.Image(), full), 0.001) << item.name;
    SendMouse(view, QEvent::MouseButtonRelease, from, Qt::LeftButton, Qt::NoButton);
    EXPECT_LT(Difference(view.Image(), full), 0.001) << item.name;
  }
}
