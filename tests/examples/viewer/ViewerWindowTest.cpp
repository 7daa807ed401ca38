// The viewer's window, driven as a user does. Needs an X server, which may be virtual.

#include "examples/viewer/ViewerWindow.h"
#include "examples/scene/DataFolder.h"
#include "examples/viewer/DarkTheme.h"
#include "examples/viewer/FileKind.h"

#include "platform/ogl/OffscreenContext.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <boost/make_shared.hpp>

#include <QApplication>
#include <QDropEvent>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QPushButton>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>

using namespace Vek::Chart;
using namespace Vek::Chart::Viewer;
using Vek::Test::TempFolder;

namespace {

// GL objects that live, of all kinds together.
int live = 0;

/// GL's own functions, which count what they make and delete.
boost::shared_ptr<const Ogl::GlFunctions> CountingGl() {
  const auto table = boost::make_shared<Ogl::GlFunctions>(Ogl::NativeGl());
#define VEK_COUNTED(p_name)                                                                                            \
  table->Gen##p_name = [](int p_count, unsigned int* p_names) {                                                        \
    live += p_count;                                                                                                   \
    Ogl::NativeGl().Gen##p_name(p_count, p_names);                                                                     \
  };                                                                                                                   \
  table->Delete##p_name = [](int p_count, const unsigned int* p_names) {                                               \
    live -= p_count;                                                                                                   \
    Ogl::NativeGl().Delete##p_name(p_count, p_names);                                                                  \
  };
  VEK_COUNTED(Textures)
  VEK_COUNTED(Buffers)
  VEK_COUNTED(Framebuffers)
  VEK_COUNTED(Renderbuffers)
#undef VEK_COUNTED
  table->GenLists = [](int p_count) {
    live += p_count;
    return Ogl::NativeGl().GenLists(p_count);
  };
  table->DeleteLists = [](unsigned int p_name, int p_count) {
    live -= p_count;
    Ogl::NativeGl().DeleteLists(p_name, p_count);
  };
  table->CreateProgram = [] {
    ++live;
    return Ogl::NativeGl().CreateProgram();
  };
  table->DeleteProgram = [](unsigned int p_name) {
    --live;
    Ogl::NativeGl().DeleteProgram(p_name);
  };
  return table;
}

Gallery::Inputs DataInputs() {
  Gallery::Inputs inputs;
  Gallery::FillFromFolder(inputs, VEK_SOURCE_DIR);
  return inputs;
}

QApplication& Application() {
  static int argc = 1;
  static char name[] = "viewer-test";
  static char* argv[] = {name, nullptr};
  static QApplication* const application = [] {
    QSurfaceFormat::setDefaultFormat(SceneView::Format());
    auto* const made = new QApplication(argc, argv); // never destroyed, as drivers end before static objects do
    ApplyDarkTheme(*made);
    return made;
  }();
  return *application;
}

/// Lets the window live until something holds; false when it does not within a minute.
template <class Condition>
bool WaitFor(const Condition& p_condition) {
  QElapsedTimer timer;
  timer.start();
  while (!p_condition()) {
    if (timer.elapsed() > 60000)
      return false;
    QApplication::processEvents();
    QThread::msleep(1);
  }
  return true;
}

void Rest(int p_ms) {
  QElapsedTimer timer;
  timer.start();
  WaitFor([&] { return timer.elapsed() >= p_ms; });
}

/// The share of pixels of which a channel differs by more than a sixteenth.
double Difference(const QImage& p_a, const QImage& p_b) {
  if (p_a.size() != p_b.size())
    return 1;
  int count = 0;
  for (int y = 0; y < p_a.height(); ++y)
    for (int x = 0; x < p_a.width(); ++x) {
      const QRgb a = p_a.pixel(x, y);
      const QRgb b = p_b.pixel(x, y);
      const int most =
          std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
      count += most > 16 ? 1 : 0;
    }
  return static_cast<double>(count) / (p_a.width() * p_a.height());
}

/// A cube of side 2 around the origin, as an OBJ file.
std::string CubeText() {
  std::string text;
  for (int i = 0; i < 8; ++i)
    text += "v " + std::string(i & 1 ? "1" : "-1") + (i & 2 ? " 1" : " -1") + (i & 4 ? " 1" : " -1") + "\n";
  for (const char* face :
       {"1 3 4", "1 4 2", "5 6 8", "5 8 7", "1 2 6", "1 6 5", "3 7 8", "3 8 4", "1 5 7", "1 7 3", "2 4 8", "2 8 6"})
    text += "f " + std::string(face) + "\n";
  return text;
}

class ViewerTest : public testing::Test {
protected:
  void SetUp() override {
    Application();
    live = 0;
    _window =
        std::make_unique<ViewerWindow>(DataInputs(), Utility::Unscoped<Rgl>(boost::make_shared<Rgl>(CountingGl())));
    QObject::connect(&View(), &SceneView::Shown, [this] { ++_shown; });
    _window->resize(1000, 700);
    _window->show();
    ASSERT_TRUE(WaitFor([this] { return View().isValid(); }));
  }

  void TearDown() override {
    EXPECT_EQ(Reports().Lines().filter("WARNING: "), QStringList()) << "GL errors";
    _window.reset();
    EXPECT_EQ(live, 0) << "GL objects outlive the window";
  }

  SceneView& View() { return _window->View(); }
  ReportPanel& Reports() { return _window->Reports(); }

  template <class Start>
  bool ShownAfter(const Start& p_start) {
    const int before = _shown;
    p_start();
    const bool shown = WaitFor([&] { return _shown > before; });
    Rest(50); // the choosers find their places
    return shown;
  }
  bool Show(const std::string& p_name) {
    for (int row = 0; row < _window->List().count(); ++row)
      if (_window->List().At(row).name == p_name)
        return ShownAfter([&] { _window->List().setCurrentRow(row); }) || _window->List().currentRow() == row;
    return false;
  }
  bool Open(const std::string& p_path) {
    return ShownAfter([&] { _window->OpenFile(QString::fromStdString(p_path)); });
  }

  void Mouse(QEvent::Type p_type, const QPointF& p_place, Qt::MouseButton p_button, Qt::MouseButtons p_buttons,
             Qt::KeyboardModifiers p_modifiers = Qt::NoModifier) {
    QMouseEvent event(p_type, p_place, View().mapToGlobal(p_place.toPoint()), p_button, p_buttons, p_modifiers);
    QApplication::sendEvent(&View(), &event);
  }
  void Drag(Qt::MouseButton p_button, const QPointF& p_by, Qt::KeyboardModifiers p_modifiers = Qt::NoModifier) {
    const QPointF from = View().rect().center();
    Mouse(QEvent::MouseButtonPress, from, p_button, p_button, p_modifiers);
    Mouse(QEvent::MouseMove, from + p_by, Qt::NoButton, p_button, p_modifiers);
    Mouse(QEvent::MouseButtonRelease, from + p_by, p_button, Qt::NoButton, p_modifiers);
  }
  void Press(int p_key) {
    for (const QEvent::Type type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
      QKeyEvent event(type, p_key, Qt::NoModifier);
      QApplication::sendEvent(&View(), &event);
    }
  }
  QAction* Action(const QString& p_text) {
    for (QAction* action : _window->findChildren<QAction*>())
      if (action->text().contains(p_text))
        return action;
    return nullptr;
  }

  TempFolder _folder;
  std::unique_ptr<ViewerWindow> _window;
  int _shown = 0;
};

/// The scene off-screen, as large as the view and with as many samples.
QImage OffScreen(const ShownScene& p_shown, const SceneView& p_view) {
  const double ratio = p_view.devicePixelRatioF();
  const Types::Size size(qRound(p_view.width() * ratio), qRound(p_view.height() * ratio));
  if (QOpenGLContext::currentContext() != nullptr)
    QOpenGLContext::currentContext()->doneCurrent(); // one at a time on a thread
  Ogl::OffscreenContext context(size, p_shown.true_pixels ? 0 : 4);
  Gallery::Loading loading;
  const std::unique_ptr<Gallery::Scene> scene = p_shown.load(loading);
  QImage image;
  {
    Utility::Scoped<Rgl> gl(context.Handle());
    context.BindFrameBuffer();
    const Types::Viewport<0> frame = p_view.View().viewport;
    gl->Viewport(frame);
    scene->Draw(gl, {scene->StartCamera(), frame});
    image = context.Image().convertToFormat(QImage::Format_RGB32);
    // The part that is the picture; around it the view continues the background.
    image = image.copy(0, size.height - static_cast<int>(frame.y + frame.height), static_cast<int>(frame.width),
                       static_cast<int>(frame.height));
  }
  return image;
}

QImage PicturePart(SceneView& p_view) {
  const Types::Viewport<0> frame = p_view.View().viewport;
  const QImage image = p_view.Picture();
  return image.copy(0, image.height() - static_cast<int>(frame.y + frame.height), static_cast<int>(frame.width),
                    static_cast<int>(frame.height));
}

} // namespace

TEST_F(ViewerTest, ShowsEverySceneAsItIsDrawnOffScreenAndLeavesNothingBehind) {
  for (const Gallery::SceneEntry& entry : Gallery::Scenes()) {
    ASSERT_TRUE(Show(entry.name)) << entry.name;
    EXPECT_EQ(View().About().name, entry.name);
    EXPECT_LT(Difference(PicturePart(View()), OffScreen(View().About(), View())), 0.005) << entry.name;
    EXPECT_EQ(Reports().Count(), 0u) << entry.name << ": " << Reports().Lines().join('\n').toStdString();
  }
  // The same two scenes again and again take no more than they took first.
  int first = 0;
  for (int round = 0; round < 3; ++round) {
    ASSERT_TRUE(Show("symbols"));
    ASSERT_TRUE(Show("hdr"));
    first = round == 0 ? live : first;
    EXPECT_EQ(live, first) << "round " << round;
  }
}

TEST_F(ViewerTest, TurnsMovesComesNearerAndReturns) {
  ASSERT_TRUE(Show("picking"));
  const QImage start = View().Picture();
  const auto wheel = [this] {
    const QPoint center = View().rect().center();
    QWheelEvent event(center, View().mapToGlobal(center), {}, {0, 240}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(&View(), &event);
  };
  const std::pair<const char*, std::function<void()>> moves[] = {
      {"orbit",
       [this] {
         Drag(Qt::LeftButton, {60, 20});
       }},
      {"pan",
       [this] {
         Drag(Qt::MiddleButton, {50, 30});
       }},
      {"pan with shift",
       [this] {
         Drag(Qt::LeftButton, {50, 30}, Qt::ShiftModifier);
       }},
      {"zoom",
       [this] {
         Drag(Qt::RightButton, {0, 60});
       }},
      {"wheel", wheel},
  };
  for (const auto& [name, move] : moves) {
    move();
    EXPECT_GT(Difference(View().Picture(), start), 0.02) << name;
    Action("Reset view")->trigger();
    EXPECT_EQ(View().Picture(), start) << name << " and back";
  }
}

TEST_F(ViewerTest, TellsTheSurfaceBelowThePointer) {
  ASSERT_TRUE(Open(_folder.Write("cube.obj", CubeText())));
  const Gallery::View view = View().View();
  const double ratio = View().devicePixelRatioF();
  // Middles of the faces that the start camera sees, and where they are in the scene, whose z is up.
  for (const Types::Vector3_Base<double>& place : {Types::Vector3_Base<double>(0, -1, 0), {0, 0, 1}, {-1, 0, 0}}) {
    const Gallery::Camera::Pixel pixel = view.Project(place);
    const QPointF pointer(pixel.x / ratio, View().height() - pixel.y / ratio);
    const std::optional<SurfacePoint> found = View().SurfaceAt(pointer);
    ASSERT_TRUE(found) << place.x << " " << place.y << " " << place.z;
    // A packed depth may lose one step of its first byte.
    EXPECT_LT(Length(found->position - place), 0.06);
    Mouse(QEvent::MouseMove, pointer, Qt::NoButton, Qt::NoButton);
    Rest(50);
    const QString z = QString::number(found->position.z, 'f', 3);
    EXPECT_TRUE(_window->findChild<QLabel*>("point")->text().contains("z " + z)) << z.toStdString();
  }
  EXPECT_EQ(View().PickDrawings(), 1) << "of one view of one scene";
  EXPECT_FALSE(View().SurfaceAt({3, View().height() / 2.0})) << "beside the model";
  Drag(Qt::LeftButton, {30, 0});
  View().SurfaceAt(View().rect().center());
  EXPECT_EQ(View().PickDrawings(), 2) << "of another view";
}

TEST_F(ViewerTest, OpensFilesByMenuAndByDrop) {
  const std::string cube = _folder.Write("cube.obj", CubeText());
  ASSERT_TRUE(ShownAfter([&] {
    Action("Open")->trigger();
    auto* const dialog = _window->findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    emit dialog->fileSelected(QString::fromStdString(cube));
    dialog->reject();
  }));
  EXPECT_EQ(View().About().name, "cube.obj");
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(DataInputs().salinity))});
  QDragEnterEvent enter(QPoint(500, 300), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(_window.get(), &enter);
  ASSERT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(500, 300), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  ASSERT_TRUE(ShownAfter([&] { QApplication::sendEvent(_window.get(), &drop); }));
  EXPECT_EQ(View().About().name, "ocean_salinity.txt");
  EXPECT_LT(Difference(PicturePart(View()), OffScreen(View().About(), View())), 0.005);
}

TEST_F(ViewerTest, KeepsTheSceneWhenAFileIsBroken) {
  ASSERT_TRUE(Show("picking"));
  const QImage before = View().Picture();
  const int row = _window->List().currentRow();
  const std::pair<const char*, const char*> files[] = {
      {"cut.hdr", "#?RADIANCE\n\n-Y 400 +X 300\nnothing"},
      {"words.obj", "v 1 2 three\nf 1 1 1\n"},
      {"empty.obj", "v 1 2 3\n"},
      {"short.txt", "TextArray 4 1 4 4 1 2 3"},
      {"wind.csv", "lon,lat,u,v\n1,2,much,3\n"},
      {"notes.doc", "nothing of the kind"},
      {"nobody", ""},
  };
  std::size_t count = Reports().Count();
  for (const auto& [name, text] : files) {
    _window->OpenFile(QString::fromStdString(_folder.Write(name, text)));
    EXPECT_TRUE(WaitFor([&] { return Reports().Count() > count && !_window->Loader().IsLoading(); })) << name;
    count = Reports().Count();
    EXPECT_TRUE(Reports().Lines().last().contains(name)) << Reports().Lines().last().toStdString();
    EXPECT_EQ(_window->List().currentRow(), row) << name;
    EXPECT_EQ(View().Picture(), before) << name;
  }
  EXPECT_TRUE(Reports().windowTitle().contains(QString::number(count)));
}

TEST_F(ViewerTest, StaysAwakeWhileItLoadsAndCancels) {
  ASSERT_TRUE(Show("picking"));
  auto* const cancel = _window->findChild<QPushButton*>("cancel");
  ASSERT_NE(cancel, nullptr);
  QElapsedTimer timer;
  qint64 last = 0;
  qint64 longest = 0;
  int turns = 0;
  _window->Loader().Start([](Gallery::Loading& p_loading) {
    QElapsedTimer busy;
    busy.start();
    while (busy.elapsed() < 1500)
      p_loading.Advance(static_cast<double>(busy.elapsed()) / 1500);
    throw std::runtime_error("nothing came of it");
  });
  timer.start();
  bool offered = false;
  ASSERT_TRUE(WaitFor([&] {
    longest = std::max(longest, timer.elapsed() - last);
    last = timer.elapsed();
    offered = offered || cancel->isVisible();
    ++turns;
    return !_window->Loader().IsLoading();
  }));
  EXPECT_TRUE(offered);
  EXPECT_GT(turns, 10);
  EXPECT_LT(longest, std::max<qint64>(250, timer.elapsed() / 4)) << "ms, of " << timer.elapsed();
  EXPECT_TRUE(Reports().Lines().last().contains("nothing came of it"));

  _window->Loader().Start([](Gallery::Loading& p_loading) {
    for (;; QThread::msleep(1))
      p_loading.Advance(0.5); // until it is cancelled
  });
  ASSERT_TRUE(WaitFor([&] { return cancel->isVisible(); }));
  cancel->click();
  EXPECT_FALSE(_window->Loader().IsLoading());
  EXPECT_FALSE(cancel->isVisible());
  EXPECT_EQ(View().About().name, "picking");
  EXPECT_EQ(Reports().Count(), 1u);
}

TEST_F(ViewerTest, SavesThePictureThatIsShown) {
  ASSERT_TRUE(Show("picking"));
  const QString path = QString::fromStdString((_folder.Path() / "picture.png").string());
  _window->SavePicture(path);
  EXPECT_EQ(QImage(path).convertToFormat(QImage::Format_RGB32), View().Picture());
  _window->SavePicture(path + "/inside.png");
  EXPECT_EQ(Reports().Lines().last(), path + "/inside.png: cannot be written");
}
