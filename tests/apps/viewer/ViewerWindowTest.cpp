// The viewer window, driven by user input events. Needs an X server, which may be virtual.

#include "apps/viewer/ViewerWindow.h"
#include "apps/gallery/DataFolder.h"
#include "apps/viewer/DarkTheme.h"

#include "tests/support/Test.h"
#include "tests/support/Windows.h"

#include <QApplication>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>

using namespace Vek::Chart::Viewer;

namespace {

int live = 0; ///< GL objects of all kinds together

/// How many objects a call makes or deletes.
struct NumberOf {
  int operator()(int p_count, const unsigned int*) const { return p_count; }
  int operator()(int p_count) const { return p_count; }
  int operator()(unsigned int, int p_count) const { return p_count; }
  int operator()(unsigned int) const { return 1; }
  int operator()() const { return 1; }
};

/// Wraps a function of the table so that it counts the objects that it creates (1) or deletes (−1).
template <auto PFunction, int PSign, class Result, class... Arguments>
void Count(Ogl::GlFunctions& p_table, Result (*)(Arguments...)) {
  p_table.*PFunction = [](Arguments... p_arguments) -> Result {
    live += PSign * NumberOf()(p_arguments...);
    return (Ogl::NativeGl().*PFunction)(p_arguments...);
  };
}

boost::shared_ptr<const Ogl::GlFunctions> CountingGl() {
  using Gl = Ogl::GlFunctions;
  const auto table = boost::make_shared<Gl>(Ogl::NativeGl());
#define VEK_COUNTED(p_make, p_delete)                                                                                  \
  Count<&Gl::p_make, 1>(*table, table->p_make);                                                                        \
  Count<&Gl::p_delete, -1>(*table, table->p_delete);
  VEK_COUNTED(GenTextures, DeleteTextures)
  VEK_COUNTED(GenBuffers, DeleteBuffers)
  VEK_COUNTED(GenFramebuffers, DeleteFramebuffers)
  VEK_COUNTED(GenRenderbuffers, DeleteRenderbuffers)
  VEK_COUNTED(GenLists, DeleteLists)
  VEK_COUNTED(CreateProgram, DeleteProgram)
#undef VEK_COUNTED
  return table;
}

Gallery::Inputs DataInputs() {
  Gallery::Inputs inputs;
  Gallery::FillFromFolder(inputs, VEK_SOURCE_DIR);
  return inputs;
}

void StartApplication() {
  static int argc = 1;
  static char name[] = "viewer-test";
  static char* argv[] = {name, nullptr};
  if (QApplication::instance() != nullptr)
    return;
  QSurfaceFormat::setDefaultFormat(PictureView::Format());
  ApplyDarkTheme(*new QApplication(argc, argv)); // never destroyed, as drivers end before static objects do
}

/// A cube of side 2 around the origin, as an OBJ file.
std::string CubeText() {
  std::string text;
  for (int i = 0; i < 8; ++i)
    text += "v " + std::string(i & 1 ? "1" : "-1") + (i & 2 ? " 1" : " -1") + (i & 4 ? " 1" : " -1") + "\n";
  return text + "f 1 3 4\nf 1 4 2\nf 5 6 8\nf 5 8 7\nf 1 2 6\nf 1 6 5\nf 3 7 8\nf 3 8 4\nf 1 5 7\nf 1 7 3\nf 2 4 8\n"
                "f 2 8 6\n";
}

/// A sheet with so many vertices along each side, as an OBJ file.
std::string SheetText(int p_side) {
  QString text;
  for (int i = 0; i < p_side * p_side; ++i)
    text += QString("v %1 %2 %3\n").arg(i % p_side).arg(i % 7).arg(i / p_side);
  for (int a = 1; a <= p_side * (p_side - 1); ++a)
    if (a % p_side != 0)
      text += QString("f %1 %2 %3\nf %1 %3 %4\n").arg(a).arg(a + p_side).arg(a + p_side + 1).arg(a + 1);
  return text.toStdString();
}

/// A flow around an axis, with so many nodes along each side.
std::string FlowText(int p_side) {
  QString text = QString("# dims %1 %1 %1\nu,v,w\n").arg(p_side);
  for (int i = 0; i < p_side * p_side * p_side; ++i)
    text += QString("%1.25,%2.5,1.125\n").arg(p_side / 2 - i / p_side % p_side).arg(i % p_side - p_side / 2);
  return text.toStdString();
}

class ViewerTest : public testing::Test {
protected:
  void SetUp() override {
    StartApplication();
    live = 0;
    _window = std::make_unique<ViewerWindow>(DataInputs(), _gl);
    QObject::connect(&View(), &PictureView::Shown, [this] { ++_shown; });
    _window->resize(1000, 700);
    _window->show();
    ASSERT_TRUE(WaitFor([this] { return View().isValid(); }));
  }

  void TearDown() override {
    EXPECT_EQ(Reports().Lines().filter("WARNING: "), QStringList()) << "GL errors";
    _window.reset();
    EXPECT_EQ(live, 0) << "GL objects outlive the window";
  }

  PictureView& View() { return _window->View(); }
  ReportPanel& Reports() { return _window->Reports(); }

  template <class Start>
  bool ShownAfter(const Start& p_start) {
    const int before = _shown;
    p_start();
    const bool shown = WaitFor([&] { return _shown > before; });
    QApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); // lays the choosers out
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

  void Drag(Qt::MouseButton p_button, const QPointF& p_by, Qt::KeyboardModifiers p_modifiers = Qt::NoModifier) {
    SendDrag(View(), View().rect().center(), p_by, p_button, p_modifiers);
  }
  QAction* Action(const QString& p_text) {
    for (QAction* action : _window->findChildren<QAction*>())
      if (action->text().contains(p_text))
        return action;
    return nullptr;
  }

  TempFolder _folder;
  Utility::Unscoped<Rgl> _gl{boost::make_shared<Rgl>(CountingGl())};
  std::unique_ptr<ViewerWindow> _window;
  int _shown = 0;
};

/// The part of the view that shows the picture; the rest continues the background.
QImage Part(const QImage& p_image, const Types::Viewport<0>& p_frame) {
  return p_image.copy(0, p_image.height() - static_cast<int>(p_frame.y + p_frame.height),
                      static_cast<int>(p_frame.width), static_cast<int>(p_frame.height));
}

/// How much the view differs from the same picture off-screen, as large and with as many samples.
double DifferenceFromOffScreen(PictureView& p_view) {
  const QImage shown = p_view.Image();
  p_view.doneCurrent(); // one context at a time on a thread
  Ogl::OffscreenContext context({shown.width(), shown.height()}, p_view.About().truePixels ? 0 : 4);
  Gallery::Loading loading;
  const std::unique_ptr<Gallery::Picture> picture = p_view.About().load(loading);
  Utility::Scoped<Rgl> gl(context.Handle());
  context.BindFrameBuffer();
  const Types::Viewport<0> frame = p_view.View().viewport;
  gl->Viewport(frame);
  picture->Draw(gl, {picture->StartCamera(), frame});
  return Difference(Part(shown, frame), Part(context.Image().convertToFormat(QImage::Format_RGB32), frame));
}

} // namespace

TEST_F(ViewerTest, EveryPictureMatchesOffScreenAndLeaksNothing) {
  for (const Gallery::PictureEntry& entry : Gallery::Pictures()) {
    if (!entry.load)
      continue;
    ASSERT_TRUE(Show(entry.name)) << entry.name;
    EXPECT_EQ(View().About().name, entry.name);
    EXPECT_LT(DifferenceFromOffScreen(View()), 0.005) << entry.name;
    EXPECT_EQ(Reports().Count(), 0u) << entry.name << ": " << Reports().Lines().join('\n').toStdString();
  }
  // Again, each takes no more than it took first, looked at from another side too.
  std::map<std::string, int> first;
  for (int round = 0; round < 2; ++round)
    for (const Gallery::PictureEntry& entry : Gallery::Pictures()) {
      if (!entry.load)
        continue;
      ASSERT_TRUE(Show(entry.name)) << entry.name;
      View().SurfaceAt(View().rect().center());
      EXPECT_EQ(first.try_emplace(entry.name, live).first->second, live) << entry.name;
    }
}

TEST_F(ViewerTest, OrbitPanZoomResetSave) {
  ASSERT_TRUE(Show("picking"));
  const QImage start = View().Image();
  struct Move {
    const char* name;
    Qt::MouseButton button; ///< none: the wheel
    QPointF by;
    Qt::KeyboardModifiers modifiers;
  };
  for (const auto& [name, button, by, modifiers] : {Move{"orbit", Qt::LeftButton, {60, 20}, Qt::NoModifier},
                                                    {"pan", Qt::MiddleButton, {50, 30}, Qt::NoModifier},
                                                    {"pan with shift", Qt::LeftButton, {50, 30}, Qt::ShiftModifier},
                                                    {"zoom", Qt::RightButton, {0, 60}, Qt::NoModifier},
                                                    {"wheel", Qt::NoButton, {}, Qt::NoModifier}}) {
    if (button == Qt::NoButton)
      SendWheel(View(), View().rect().center(), 240);
    else
      Drag(button, by, modifiers);
    EXPECT_GT(Difference(View().Image(), start), 0.02) << name;
    Action("Reset view")->trigger();
    EXPECT_EQ(View().Image(), start) << name << " and back";
  }
  // What lies under the cursor, in the upper left quarter, stays there.
  const QPoint cursor(View().width() / 4, View().height() / 4);
  const Scene::View before = View().View();
  const double ratio = View().devicePixelRatioF();
  const Scene::Camera::Pixel pixel{cursor.x() * ratio, (View().height() - cursor.y()) * ratio, true};
  const Types::Viewport<0> part = View().Picture()->SurfaceViewport(before);
  const auto under = before.camera.UnprojectToTarget(pixel, part);
  SendWheel(View(), cursor, 480);
  const Scene::Camera::Pixel after = View().View().camera.Project(under, part);
  EXPECT_NEAR(after.x, pixel.x, 1);
  EXPECT_NEAR(after.y, pixel.y, 1);
  EXPECT_LT(View().View().camera.distance, before.camera.distance);
  Action("Reset view")->trigger();
  const QString path = QString::fromStdString((_folder.Path() / "picture.png").string());
  _window->SavePicture(path);
  EXPECT_EQ(QImage(path).convertToFormat(QImage::Format_RGB32), start);
  _window->SavePicture(path + "/inside.png");
  EXPECT_EQ(Reports().Lines(), QStringList(path + "/inside.png: cannot be written"));
}

TEST_F(ViewerTest, ShowsTheSurfaceUnderTheCursor) {
  ASSERT_TRUE(Open(_folder.Write("cube.obj", CubeText())));
  const Gallery::View view = View().View();
  const double ratio = View().devicePixelRatioF();
  const QLabel& label = *_window->findChild<QLabel*>("point");
  // Middles of the faces that the start camera sees, and where they are in the picture, whose z is up.
  for (const Types::Vector3_Base<double>& place : {Types::Vector3_Base<double>(0, -1, 0), {0, 0, 1}, {-1, 0, 0}}) {
    const Gallery::Camera::Pixel pixel = view.Project(place);
    const QPointF pointer(pixel.x / ratio, View().height() - pixel.y / ratio);
    const std::optional<SurfacePoint> found = View().SurfaceAt(pointer);
    ASSERT_TRUE(found) << place.x << " " << place.y << " " << place.z;
    // A packed depth may lose one step of its first byte.
    EXPECT_LT(Length(found->position - place), 0.06);
    SendMouse(View(), QEvent::MouseMove, pointer, Qt::NoButton, Qt::NoButton);
    const QString z = "z " + QString::number(found->position.z, 'f', 3);
    EXPECT_TRUE(WaitFor([&] { return label.text().contains(z); })) << z.toStdString() << label.text().toStdString();
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
  const Gallery::Inputs inputs = DataInputs();
  for (const std::string& path : {inputs.salinity, cube, inputs.hdr, inputs.winds, inputs.quakes,
                                  _folder.Write("flow.txt", FlowText(12)), inputs.symbols + "/Arrow1D.obj"}) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    QDragEnterEvent enter(QPoint(500, 300), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(_window.get(), &enter);
    ASSERT_TRUE(enter.isAccepted()) << path;
    QDropEvent drop(QPointF(500, 300), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    ASSERT_TRUE(ShownAfter([&] { QApplication::sendEvent(_window.get(), &drop); })) << path;
    EXPECT_EQ(View().About().name, path.substr(path.rfind('/') + 1));
    EXPECT_LT(DifferenceFromOffScreen(View()), 0.005) << path;
  }
  EXPECT_EQ(Reports().Count(), 0u);
  // Reports of the loading thread reach the panel; the rest of the file is shown.
  ASSERT_TRUE(Open(_folder.Write("odd.obj", CubeText() + "f 1 2 99\n")));
  EXPECT_TRUE(WaitFor([&] { return Reports().Lines().filter("vertexIndex < vertices->size()").size() == 1; }));
}

TEST_F(ViewerTest, KeepsThePictureOnBrokenFiles) {
  ASSERT_TRUE(Show("picking"));
  const int height = View().height();
  Reports().show(); // the panel makes the view smaller
  ASSERT_TRUE(WaitFor([&] { return View().height() < height; }));
  const QImage before = View().Image();
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
    EXPECT_EQ(Reports().Lines().last().endsWith("got words where its numbers should be"),
              name == std::string("words.obj"));
    const QString expected = "expected an OBJ model, a Radiance picture, a TextArray volume, a table of winds or "
                             "earthquakes, or a flow on a grid, a mesh (PLY, STL, glTF) or NetCDF";
    EXPECT_EQ(Reports().Lines().last().contains(expected), name == std::string("notes.doc") || *text == 0) << name;
    EXPECT_EQ(_window->List().currentRow(), row) << name;
    EXPECT_EQ(View().Image(), before) << name;
  }
  EXPECT_TRUE(Reports().windowTitle().contains(QString::number(count)));
}

TEST_F(ViewerTest, CancelsLoading) {
  ASSERT_TRUE(Show("picking"));
  auto* const cancel = _window->findChild<QPushButton*>("cancel");
  ASSERT_NE(cancel, nullptr);
  PictureLoader& loader = _window->Loader();
  for (const std::string& path :
       {_folder.Write("sheet.obj", SheetText(800)), _folder.Write("flow.txt", FlowText(80))}) {
    _window->OpenFile(QString::fromStdString(path));
    ASSERT_TRUE(WaitFor([&] { return cancel->isVisible(); })) << path;
    cancel->click();
    EXPECT_FALSE(loader.IsLoading());
    EXPECT_FALSE(cancel->isVisible());
    EXPECT_EQ(View().About().name, "picking");
    loader.Start([](Gallery::Loading&) { throw std::runtime_error("the thread is free"); });
    ASSERT_TRUE(WaitFor([&] { return !loader.IsLoading(); }));
  }
  EXPECT_EQ(Reports().Count(), 2u);
  EXPECT_TRUE(Reports().Lines().last().contains("the thread is free"));
}
