// The view of a figure, driven by user input events. Needs an X server, which may be virtual.

#include "widgets/FigureView.h"

#include "tests/support/Test.h"
#include "tests/support/Windows.h"

#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QOpenGLContext>
#include <QRegularExpression>
#include <QToolTip>
#include <QVBoxLayout>

using namespace Vek::Chart::Widgets;
using Scene::Camera;
using Scene::OrbitController;

namespace {

using Hit = std::optional<Scene::Figure::Hit>;

/// A large red sphere in the middle of small ones at the corners of a box.
std::shared_ptr<Scene::Figure> MakeFigure() {
  auto figure = std::make_shared<Scene::Figure>("Spheres");
  std::vector<Point> corners;
  for (int i = 0; i < 8; ++i)
    corners.emplace_back(i & 1 ? 1 : -1, i & 2 ? 1 : -1, i & 4 ? 1 : -1);
  figure->Scatter(corners).Diameter(0.02);
  figure->Scatter(std::vector<Point>{{0, 0, 0}})
      .Diameter(0.3)
      .ColorBy(std::vector<double>{7.5})
      .ColorTitle("Heat in K")
      .Label("Sun");
  return figure;
}

struct PaintedView : FigureView {
  using FigureView::FigureView;
  int paintings = 0;
  void paintGL() override {
    ++paintings;
    FigureView::paintGL();
  }
};

class FigureViewTest : public testing::Test {
public:
  void SetUp() override {
    StartApplication();
    Open();
  }
  void TearDown() override {
    window.reset();
    figure.reset();
    EXPECT_EQ(reports.Texts(), Texts()) << "GL errors, and GL objects that outlive their context";
  }

  /// Shows the figure in a new window.
  void Open() {
    window = std::make_unique<QWidget>();
    window->resize(600, 400);
    auto* const layout = new QVBoxLayout(window.get());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(view = new PaintedView(figure));
    QObject::connect(view, &FigureView::Picked, [this](const Hit& p_hit) { picks.push_back(p_hit); });
    QObject::connect(view, &FigureView::CameraMoved, [this] { ++moves; });
    window->show();
    ASSERT_TRUE(WaitFor([this] { return view->isValid() && view->paintings > 0; }));
  }

  void Drag(Qt::MouseButton p_button, const QPointF& p_by, Qt::KeyboardModifiers p_modifiers = Qt::NoModifier) {
    SendDrag(*view, {100, 120}, p_by, p_button, p_modifiers);
  }
  void Click(const QPointF& p_place, QEvent::Type p_press = QEvent::MouseButtonPress) {
    SendMouse(*view, p_press, p_place, Qt::LeftButton, Qt::LeftButton);
    SendMouse(*view, QEvent::MouseButtonRelease, p_place, Qt::LeftButton, Qt::NoButton);
  }
  bool Press(int p_key, Qt::KeyboardModifiers p_modifiers = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, p_key, p_modifiers);
    QApplication::sendEvent(view, &event);
    return event.isAccepted();
  }
  /// Where a position of the data is in the widget.
  QPointF PlaceOf(const Point& p_data) const {
    const Camera::Pixel pixel = view->Camera().Project(figure->ToScene(p_data), view->Viewport());
    return QPointF(pixel.x, static_cast<double>(view->Viewport().height) - pixel.y) / view->devicePixelRatioF();
  }

  ReportCapture reports;
  std::shared_ptr<Scene::Figure> figure = MakeFigure();
  std::unique_ptr<QWidget> window;
  PaintedView* view = nullptr;
  std::vector<Hit> picks;
  int moves = 0;
};

} // namespace

TEST_F(FigureViewTest, ShowsTheFigureAndPaintsOnlyChanges) {
  const double ratio = view->devicePixelRatioF();
  const Types::Size size{qRound(600 * ratio), qRound(400 * ratio)};
  const QImage shown = view->Image();
  EXPECT_EQ(shown.size(), QSize(size.width, size.height));
  view->makeCurrent();
  if (ratio == 1) { // figures off-screen have one pixel a point
    EXPECT_LT(Difference(shown, figure->Image(size)), 0.005);
  }
  EXPECT_EQ(QOpenGLContext::currentContext(), view->context()) << "images off-screen restore the context of a host";
  view->doneCurrent();

  QApplication::processEvents();
  const int paintings = view->paintings;
  SendMouse(*view, QEvent::MouseMove, {50, 50}, Qt::NoButton, Qt::NoButton);
  EXPECT_FALSE(WaitFor([&] { return view->paintings > paintings; }, 200));
  figure->theme = Scene::Theme::Dark();
  view->update();
  EXPECT_TRUE(WaitFor([&] { return view->paintings > paintings; }));
  EXPECT_GT(Difference(view->Image(), shown), 0.5);
}

TEST_F(FigureViewTest, MouseMovesTheCamera) {
  const double ratio = view->devicePixelRatioF();
  const Types::Viewport<0> viewport = view->Viewport();
  const auto rotate = [](OrbitController& p_orbit) { p_orbit.Rotate(40, -30); };
  const auto pan = [&](OrbitController& p_orbit) { p_orbit.Pan(40 * ratio, -30 * ratio, viewport); };
  const auto zoom = [&](OrbitController& p_orbit) {
    p_orbit.Zoom(2, {100 * ratio, viewport.height - 120 * ratio, true}, viewport);
  };
  OrbitController orbit(view->Camera());
  struct Case {
    const char* name;
    Qt::MouseButton button; ///< none: the wheel
    Qt::KeyboardModifiers modifiers;
    std::function<void(OrbitController&)> expected;
  };
  for (const Case& input : {Case{"left", Qt::LeftButton, Qt::NoModifier, rotate},
                            {"middle", Qt::MiddleButton, Qt::NoModifier, pan},
                            {"right", Qt::RightButton, Qt::NoModifier, pan},
                            {"shift", Qt::LeftButton, Qt::ShiftModifier, pan},
                            {"wheel", Qt::NoButton, Qt::NoModifier, zoom}}) {
    const int before = moves;
    if (input.button == Qt::NoButton)
      SendWheel(*view, {100, 120}, 240);
    else
      Drag(input.button, {40, 30}, input.modifiers);
    input.expected(orbit);
    EXPECT_EQ(figure->camera, orbit.Camera()) << input.name;
    EXPECT_EQ(view->Camera(), orbit.Camera()) << input.name;
    EXPECT_EQ(moves, before + 1) << input.name;
  }
  EXPECT_TRUE(picks.empty()) << "drags are no clicks";

  Camera host;
  host.target = {1, 2, 3};
  figure->camera = host;
  SendWheel(*view, {300, 200}, -120);
  orbit = OrbitController(host);
  orbit.Zoom(-1, {300 * ratio, viewport.height - 200 * ratio, true}, viewport);
  EXPECT_EQ(figure->camera, orbit.Camera()) << "a camera that the host has set is moved on";
}

TEST_F(FigureViewTest, KeysChooseViews) {
  struct Case {
    int key;
    double azimuth, elevation;
    Camera::Projection projection;
  };
  Drag(Qt::LeftButton, {37, 11});
  const Camera dragged = view->Camera();
  constexpr auto Perspective = Camera::Projection::Perspective, Parallel = Camera::Projection::Parallel;
  const auto& [azimuth, elevation] = std::pair(dragged.azimuth, dragged.elevation);
  for (const Case& press : {Case{Qt::Key_R, azimuth, elevation, Perspective},
                            {Qt::Key_5, azimuth, elevation, Parallel},
                            {Qt::Key_R, azimuth, elevation, Parallel},
                            {Qt::Key_1, 0, 0, Parallel},
                            {Qt::Key_3, -90, 0, Parallel},
                            {Qt::Key_5, -90, 0, Perspective},
                            {Qt::Key_7, 0, 90, Perspective}}) {
    SendWheel(*view, {200, 200}, 120);
    const int before = moves;
    EXPECT_TRUE(Press(press.key, Qt::KeypadModifier));
    EXPECT_EQ(moves, before + 1) << press.key;
    const Camera camera = view->Camera();
    EXPECT_DOUBLE_EQ(camera.azimuth, press.azimuth) << press.key;
    EXPECT_DOUBLE_EQ(camera.elevation, press.elevation) << press.key;
    EXPECT_EQ(camera.projection, press.projection) << press.key;
    EXPECT_EQ(!figure->camera, press.key != Qt::Key_5) << press.key << ": fitted, and again when resized";
  }
  const int before = moves;
  EXPECT_FALSE(Press(Qt::Key_R, Qt::ControlModifier));
  EXPECT_FALSE(Press(Qt::Key_2));
  EXPECT_EQ(moves, before);
}

TEST_F(FigureViewTest, FlatFiguresReadNoHeight) {
  figure = std::make_shared<Scene::Figure>();
  figure->Scatter(std::vector<Point>{{0, 0, 0}, {1, 1, 0}}).Diameter(0.3).ColorBy(std::vector<double>{7.5, 8});
  figure->SetAxisTitles("x", "y", "Heat");
  view->SetFigure(figure);
  view->Image();
  Click(PlaceOf({0, 0, 0}));
  const QString text = QToolTip::text().remove(QRegularExpression("\\.0+(?=\n)")); // as many digits as pixels can show
  EXPECT_EQ(text.toStdString(), "element 0\nx 0\ny 0\nvalue: 7.5");
}

TEST_F(FigureViewTest, ClicksPickAndDoubleClicksCenter) {
  const QPointF sphere = PlaceOf({0, 0, 0});
  Click(sphere);
  ASSERT_EQ(picks.size(), 1U);
  ASSERT_TRUE(picks[0]);
  EXPECT_EQ(picks[0]->label, "Sun");
  EXPECT_EQ(picks[0]->position, Point());
  EXPECT_EQ(QToolTip::text().toStdString(), "Sun\nelement 0\nx 0.00\ny 0.00\nz 0.00\nHeat in K: 7.5");

  // A box of axes, titles and letters are no data.
  Click(PlaceOf({1, -1, 0.2}));
  Click({3, 3});
  ASSERT_EQ(picks.size(), 3U);
  EXPECT_FALSE(picks[1] || picks[2]);
  EXPECT_EQ(moves, 0);

  Click(PlaceOf({-1, -1, -1}));
  ASSERT_TRUE(picks.back());
  EXPECT_EQ(picks.back()->position, Point(-1, -1, -1)) << "a small sphere";
  EXPECT_EQ(picks.back()->element, 0U);
  const QPointF corner = PlaceOf({-1, -1, -1});
  Click(corner, QEvent::MouseButtonDblClick);
  EXPECT_EQ(moves, 1);
  EXPECT_EQ(picks.size(), 4U) << "the second click of a double click picks nothing";
  const QPointF distance = PlaceOf({-1, -1, -1}) - QPointF(300, 200);
  EXPECT_LT(std::hypot(distance.x(), distance.y()), 5);

  // What was read is not kept when the figure changes.
  figure->camera.reset();
  EXPECT_FALSE(view->HitAt(PlaceOf({1, -1, 0.2})));
  view->update();
  figure->Scatter(std::vector<Point>{{1, -1, 0.2}}).Diameter(0.1);
  const int paintings = view->paintings;
  ASSERT_TRUE(WaitFor([&] { return view->paintings > paintings; }));
  EXPECT_TRUE(view->HitAt(PlaceOf({1, -1, 0.2})));
  EXPECT_FALSE(view->HitAt({-1, 5})) << "outside of the widget";
  EXPECT_FALSE(view->HitAt({600, 5}));
}

TEST_F(FigureViewTest, PointsAndDragsSlices) {
  std::vector<Hit> points;
  QObject::connect(view, &FigureView::Pointed, [&](const Hit& p_hit) { points.push_back(p_hit); });
  const auto move = [&](const QPointF& p_place) {
    SendMouse(*view, QEvent::MouseMove, p_place, Qt::NoButton, Qt::NoButton);
    QApplication::processEvents();
  };
  view->setMouseTracking(true);
  move(PlaceOf({0, 0, 0}));
  ASSERT_EQ(points.size(), 1U);
  ASSERT_TRUE(points[0]);
  EXPECT_EQ(points[0]->label, "Sun");
  move({3, 3});
  EXPECT_FALSE(points.back());

  figure = std::make_shared<Scene::Figure>();
  std::vector<float> values(1000);
  std::iota(values.begin(), values.end(), 0.0f);
  Scene::SlicesPlot& slices = figure->Slices(VoxelGrid(values, {10, 10, 10}, {{0, 0, 0}, {10, 10, 10}}));
  slices.Clear().At(2, 5).At(0, 5);
  view->SetFigure(figure);
  view->Image();
  const QPointF from = PlaceOf({8, 2, 5}), to = PlaceOf({8, 2, 7});
  SendDrag(*view, from, to - from, Qt::LeftButton, Qt::ControlModifier);
  EXPECT_NEAR(slices.SliceAt(0).position, 7, 0.2);
  EXPECT_EQ(slices.SliceAt(1).position, 5);
  EXPECT_EQ(moves, 0) << "the camera stays";
  SendDrag(*view, to, QPointF(0, -2000), Qt::LeftButton, Qt::ControlModifier);
  EXPECT_EQ(slices.SliceAt(0).position, figure->Limits().Max().z) << "within the axes";
}

TEST_F(FigureViewTest, SavesAndCopies) {
  const TempFolder folder;
  Drag(Qt::LeftButton, {60, 20});
  const QImage image = view->Image();
  Press(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->image().convertToFormat(QImage::Format_RGB32), image);
  Press(Qt::Key_S, Qt::ControlModifier);
  auto* const dialog = view->findChild<QFileDialog*>();
  ASSERT_NE(dialog, nullptr);
  const QString path = QString::fromStdString(folder.File("view.png"));
  emit dialog->fileSelected(path);
  EXPECT_EQ(QImage(path).convertToFormat(QImage::Format_RGB32), image);
  delete dialog;
  const std::string error = ErrorOf<std::runtime_error>([&] { view->Save(path + "/inside.png"); });
  EXPECT_EQ(error.find((path + "/inside.png: the image cannot be written: ").toStdString()), 0U) << error;
}

TEST_F(FigureViewTest, FiguresAndViewsEndInAnyOrder) {
  enum Step { DropFigure, CloseWindow, DropImage, Replace };
  using Steps = std::vector<Step>;
  for (const Steps& steps : {Steps{DropFigure, CloseWindow},
                             {CloseWindow, DropFigure},
                             {Replace, DropFigure, CloseWindow},
                             {Replace, CloseWindow, DropFigure},
                             {DropImage, DropFigure, CloseWindow},
                             {DropImage, CloseWindow, DropImage, DropFigure}}) {
    window.reset();
    figure = MakeFigure();
    Open();
    auto kept = std::make_shared<Scene::Figure>("Other");
    for (const Step step : steps) {
      if (step == DropFigure)
        figure.reset();
      else if (step == CloseWindow)
        window.reset();
      else if (step == DropImage)
        EXPECT_FALSE(figure->Image({300, 200}).isNull());
      else
        view->SetFigure(kept);
      QApplication::processEvents();
    }
  }
  EXPECT_EQ(reports.Texts(), Texts());
}

TEST_F(FigureViewTest, MovesToOtherWindows) {
  const QImage before = view->Image();
  auto other = std::make_unique<QWidget>();
  other->resize(600, 400);
  QOpenGLContext* const context = view->context();
  view->setParent(other.get());
  EXPECT_NE(view->context(), context) << "Qt has kept the context: nothing is tested";
  other->show();
  view->resize(600, 400);
  const int paintings = view->paintings;
  view->show();
  ASSERT_TRUE(WaitFor([&] { return view->paintings > paintings && view->size() == QSize(600, 400); }));
  EXPECT_LT(Difference(view->Image(), before), 0.005);
  Click(PlaceOf({0, 0, 0}));
  EXPECT_TRUE(picks.back());
  other.reset(); // with the view
  view = nullptr;
}

TEST_F(FigureViewTest, ReportsCoreProfiles) {
  FigureView core(figure);
  QSurfaceFormat format = core.format();
  format.setProfile(QSurfaceFormat::CoreProfile);
  format.setVersion(3, 3);
  core.setFormat(format);
  core.resize(200, 100);
  core.show();
  ASSERT_TRUE(WaitFor([&] { return core.isValid() && !reports.Texts().empty(); }));
  ASSERT_EQ(core.context()->format().profile(), QSurfaceFormat::CoreProfile);
  const QImage image = core.Image();
  QImage background(image.size(), QImage::Format_RGB32);
  background.fill(figure->theme.backgroundTop);
  EXPECT_EQ(ImageDifference(image, background), "");
  EXPECT_FALSE(core.HitAt({100, 50}));
  EXPECT_EQ(reports.Texts(),
            Texts{"WARNING: FigureView: a compatibility profile is needed, this context has a core profile"});
  reports.Clear();
}

TEST_F(FigureViewTest, WorksWithoutAFigure) {
  view->SetFigure({});
  figure.reset();
  Drag(Qt::LeftButton, {60, 20});
  SendWheel(*view, {100, 100}, 120);
  Click({300, 200});
  for (const int key : {Qt::Key_R, Qt::Key_1, Qt::Key_5})
    Press(key);
  ASSERT_EQ(picks.size(), 1U);
  EXPECT_FALSE(picks[0]);
  EXPECT_EQ(moves, 0);
  EXPECT_EQ(view->Image().pixelColor(300, 200), Scene::Theme().backgroundTop);
}
