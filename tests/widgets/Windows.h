#pragma once

#include "scene/Figure.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QThread>

#include <array>
#include <cstdlib>
#include <vector>

namespace Vek::Test {

/// Makes the application object of a test of windows, after a figure was drawn without one.
inline void StartApplication() {
  static int argc = 1;
  static char name[] = "window-test";
  static char* argv[] = {name, nullptr};
  if (QCoreApplication::instance() != nullptr)
    return;
  Chart::Scene::Figure figure;
  figure.Scatter(std::vector<std::array<double, 3>>{{0, 0, 0}, {1, 1, 1}});
  EXPECT_FALSE(figure.Image({60, 40}).isNull());
  EXPECT_EQ(QCoreApplication::instance(), nullptr);
  new QApplication(argc, argv); // never destroyed, as drivers end before static objects do
}

/// Processes events until a condition holds; false if it does not in time.
template <class Condition>
bool WaitFor(const Condition& p_condition, qint64 p_ms = 60000) {
  QElapsedTimer timer;
  timer.start();
  while (!p_condition()) {
    if (timer.elapsed() > p_ms)
      return false;
    QApplication::processEvents();
    QThread::msleep(1);
  }
  return true;
}

/// The share of pixels of which a channel differs by more than a sixteenth.
inline double Difference(const QImage& p_a, const QImage& p_b) {
  if (p_a.size() != p_b.size())
    return 1;
  int count = 0;
  for (int y = 0; y < p_a.height(); ++y)
    for (int x = 0; x < p_a.width(); ++x) {
      const QRgb a = p_a.pixel(x, y), b = p_b.pixel(x, y);
      constexpr int Most = 16;
      count += std::abs(qRed(a) - qRed(b)) > Most || std::abs(qGreen(a) - qGreen(b)) > Most ||
               std::abs(qBlue(a) - qBlue(b)) > Most;
    }
  return static_cast<double>(count) / (p_a.width() * p_a.height());
}

} // namespace Vek::Test
