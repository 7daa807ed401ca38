#pragma once

// The viewer's window, driven by input events and settings. Needs an X server, which may be virtual.

#include "apps/gallery/DataFolder.h"
#include "apps/viewer/DarkTheme.h"
#include "apps/viewer/ViewerWindow.h"

#include "tests/support/Test.h"
#include "tests/support/Windows.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QSettings>

namespace Vek::Test {

using namespace Vek::Chart::Viewer;

/// A cube of side 2 around the origin, as an OBJ file.
inline std::string CubeText() {
  std::string text;
  for (int i = 0; i < 8; ++i)
    text += "v " + std::string(i & 1 ? "1" : "-1") + (i & 2 ? " 1" : " -1") + (i & 4 ? " 1" : " -1") + "\n";
  return text + "f 1 3 4 2\nf 5 6 8 7\nf 1 2 6 5\nf 3 7 8 4\nf 1 5 7 3\nf 2 4 8 6\n";
}

class ViewerFixture : public testing::Test {
protected:
  void SetUp() override {
    StartApplication();
    ApplyDarkTheme(*qApp);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QString::fromStdString(_folder.Path().string()));
    Gallery::Inputs inputs;
    Gallery::FillFromFolder(inputs, VEK_SOURCE_DIR);
    _window = std::make_unique<ViewerWindow>(inputs);
    QObject::connect(_window.get(), &ViewerWindow::Shown, [this] { ++_shown; });
    _window->resize(1200, 800);
    _window->show();
    QApplication::processEvents();
  }
  void TearDown() override { _window.reset(); }

  /// The chart of a file; null where it is not shown.
  Viewer::Chart* Open(const std::string& p_path) {
    const int before = _shown;
    _window->OpenFile(QString::fromStdString(p_path));
    const bool isShown = WaitFor([&] { return _shown > before || _window->Reports().Count() > _count; }, 20000);
    _count = _window->Reports().Count();
    QApplication::processEvents();
    return isShown && _shown > before ? _window->Chart() : nullptr;
  }
  Viewer::Chart* OpenText(const std::string& p_name, const std::string& p_text) {
    return Open(_folder.Write(p_name, p_text));
  }
  static std::string DataFile(const char* p_name) { return std::string(VEK_SOURCE_DIR) + "/data/" + p_name; }

  template <class Field>
  Field& Find(const char* p_name) {
    Field* const field = _window->findChild<Field*>(p_name);
    if (field == nullptr)
      throw std::runtime_error(std::string("no field ") + p_name);
    return *field;
  }
  QAction* Action(const QString& p_text) {
    for (QAction* action : _window->findChildren<QAction*>())
      if (action->text().remove('&').contains(p_text))
        return action;
    return nullptr;
  }
  Widgets::FigureView& View() { return _window->View(); }
  /// The pixel of the view, in logical coordinates, where a point of the data is drawn.
  QPointF PixelOf(const Types::Vector3_Base<double>& p_data) {
    const Types::Viewport<0> viewport = View().Viewport();
    const auto pixel = View().Camera().Project(_window->Chart()->figure->ToScene(p_data), viewport);
    const double ratio = View().devicePixelRatioF();
    return {pixel.x / ratio, (static_cast<double>(viewport.height) - pixel.y) / ratio};
  }
  /// What the status bar shows for a point of the data.
  std::string ReadOutAt(const Types::Vector3_Base<double>& p_data) {
    auto& label = Find<QLabel>("point");
    label.clear();
    SendMouse(View(), QEvent::MouseMove, PixelOf(p_data), Qt::NoButton, Qt::NoButton);
    WaitFor([&] { return !label.text().isEmpty(); }, 3000);
    return label.text().simplified().toStdString();
  }
  std::string LastReport() {
    const QStringList lines = _window->Reports().Lines();
    return lines.isEmpty() ? std::string() : lines.last().toStdString();
  }
  /// All that a figure says around its data: titles, keys, notes.
  std::string Words() {
    std::string words;
    for (const auto& block : _window->Chart()->figure->Layout(View().Viewport()).blocks)
      for (const auto& string : block.content.Strings())
        words += string.text.toStdString() + "|";
    return words;
  }
  /// Sets a setting as the panel does.
  void Set(const char* p_group, const char* p_name, const Setting::Value& p_value) {
    _window->Chart()->Set(p_group, p_name, p_value);
    View().update();
    QApplication::processEvents();
  }

  TempFolder _folder;
  std::unique_ptr<ViewerWindow> _window;
  int _shown = 0;
  std::size_t _count = 0;
};

} // namespace Vek::Test
