#pragma once

#include <QGuiApplication>

#include <optional>

namespace Vek::Chart::Scene::Private {

/// Where the program has no application object, makes one without a display, which fonts need, and ends it with this
/// object, so that the program can make its own afterwards.
class OffscreenApplication {
public:
  OffscreenApplication();

private:
  // QGuiApplication keeps references to both and changes them.
  char _name[7] = "figure";
  char _option[10] = "-platform";
  char _platform[10] = "offscreen";
  char* _arguments[4] = {_name, _option, _platform, nullptr};
  int _count = 3;
  std::optional<QGuiApplication> _application;
};

} // namespace Vek::Chart::Scene::Private
