// The example of the README for a chart in a Qt window. The window is never shown; what Qt would call is called here,
// on an off-screen context.

#include "library/ColorMap.h"
#include "library/NamedColors.h"
#include "platform/ogl/Rgl.h"
#include "tests/support/Test.h"

#include <QApplication>
#include <QOpenGLWidget>

#include <optional>

namespace {

//! [Widget]
class Chart : public QOpenGLWidget {
public:
  Chart() {
    QSurfaceFormat format;
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setDepthBufferSize(24);
    setFormat(format); // before the widget is shown
  }
  ~Chart() override {
    makeCurrent(); // GL objects go while their context is current
    _map.reset();
    doneCurrent();
  }

protected:
  void paintGL() override {
    Utility::Scoped<Rgl> gl(_handle); // Qt has made the context current
    gl->ClearColor(Qt::black);
    gl->Clear(RGL_COLOR_BUFFER_BIT | RGL_DEPTH_BUFFER_BIT);
    if (!_map)
      _map.emplace(Library::NamedColors::Colors("viridis"), Library::ColorMap::Interpolated);
    (*_map)(gl, RGL_TEXTURE0);
    // …
  }

private:
  Utility::Unscoped<Rgl> _handle = Rgl::OnCurrentContext();
  std::optional<Library::ColorMap> _map;
};
//! [Widget]

class QtWidgetSnippetPixels : public Testing::PixelFixture {
protected:
  struct Painted : Chart {
    using Chart::paintGL;
  };
};

TEST_F(QtWidgetSnippetPixels, Widget) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "QtWidgetSnippets";
  static char* argv[] = {name, nullptr};
  [[maybe_unused]] static auto* const Application =
      new QApplication(argc, argv); // never destroyed: the platform would leak its screen
  const Utility::Scoped<Rgl> current(Handle());
  Painted widget;
  widget.paintGL();
  EXPECT_TRUE(current->IsEnabled(RGL_TEXTURE_2D)) << "the map is bound";
}

} // namespace
