#pragma once

#include <QGuiApplication>

#include <array>

namespace Vek::Chart::Gallery {

/// The application object that Qt's fonts need, for a program without windows: unless the environment says otherwise,
/// Qt uses no display. One at a time.
class OffscreenQt {
public:
  OffscreenQt();

private:
  int _argc = 1;
  std::array<char, 8> _name{'g', 'a', 'l', 'l', 'e', 'r', 'y', '\0'};
  std::array<char*, 2> _argv{_name.data(), nullptr};
  QGuiApplication _application;
};

} // namespace Vek::Chart::Gallery
