#include "apps/gallery/OffscreenQt.h"

#include <QGuiApplication>

#include <array>
#include <cstdio>

namespace Vek::Chart::Gallery {

namespace {

QGuiApplication* MakeApplication() {
  static int argc = 1;
  static std::array<char, 8> name{'g', 'a', 'l', 'l', 'e', 'r', 'y', '\0'};
  static std::array<char*, 2> argv{name.data(), nullptr};
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  // What Qt says about the lack of a desktop is of no use here; with an error it ends the program.
  qInstallMessageHandler([](QtMsgType p_type, const QMessageLogContext&, const QString& p_text) {
    if (p_type == QtFatalMsg || p_type == QtCriticalMsg)
      std::fprintf(stderr, "%s\n", qPrintable(p_text));
  });
  QGuiApplication* const application = new QGuiApplication(argc, argv.data());
  qInstallMessageHandler(nullptr);
  return application;
}

} // namespace

void StartOffscreenQt() {
  static const QGuiApplication* const Application = MakeApplication();
  static_cast<void>(Application);
}

} // namespace Vek::Chart::Gallery
