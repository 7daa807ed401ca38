#include "widgets/FigureView.h"

#include "tests/support/Shown.h"
#include "tests/support/Test.h"
#include "tests/support/Windows.h"

#include <QApplication>
#include <QLabel>
#include <QVBoxLayout>

namespace {

using Point = std::array<double, 3>;

TEST(FigureViewSnippets, FigureView) {
  StartApplication();
  std::vector<Point> positions, vectors;
  std::vector<double> speed;
  for (int i = 0; i < 110; ++i) {
    const double angle = 0.25 * i, height = 0.02 * i;
    positions.push_back({std::cos(angle) * (3 - height), std::sin(angle) * (3 - height), height});
    vectors.push_back({-std::sin(angle), std::cos(angle), 0.3 * height});
    speed.push_back(std::hypot(1, 0.3 * height));
  }
  QWidget window;
  window.resize(640, 400);
  QVBoxLayout layout(&window);
  layout.setContentsMargins(0, 0, 0, 0);
  QLabel label;
  //! [FigureView]
  auto figure = std::make_shared<Scene::Figure>("An updraft");
  figure->Quiver(positions, vectors).ColorBy(speed).ColorTitle("Speed in m/s");
  auto* const view = new Widgets::FigureView(figure);
  layout.addWidget(view);
  QObject::connect(view, &Widgets::FigureView::Picked, [&](const auto& p_hit) {
    label.setText(p_hit ? QString("%1 m above ground").arg(p_hit->position.z) : "nothing here");
  });
  figure->SetTitle("An updraft", "Measured at noon"); // figures change at any time,
  view->update();                                     // and are drawn on request
  //! [FigureView]
  window.show();
  ASSERT_TRUE(WaitFor([&] { return !view->Image().isNull(); }));
  Shown(view->Image(), "FigureView");
}

} // namespace
