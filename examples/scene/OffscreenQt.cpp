#include "examples/scene/OffscreenQt.h"

#include <cstdio>

namespace Vek::Chart::Gallery {

namespace {

/// Readies the environment, and keeps to itself what Qt says about lacking a desktop; errors end the program anyway.
int& Prepared(int& p_argc) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  qInstallMessageHandler([](QtMsgType p_type, const QMessageLogContext&, const QString& p_text) {
    if (p_type == QtFatalMsg || p_type == QtCriticalMsg)
      std::fprintf(stderr, "%s\n", qPrintable(p_text));
  });
  return p_argc;
}

} // namespace

OffscreenQt::OffscreenQt()
    : _application(Prepared(_argc), _argv.data()) {
  qInstallMessageHandler(nullptr);
}

} // namespace Vek::Chart::Gallery
