#pragma once

#include "scene/Figure.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QMouseEvent>
#include <QThread>
#include <QWidget>

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

inline void SendMouse(QWidget& p_widget, QEvent::Type p_type, const QPointF& p_place, Qt::MouseButton p_button,
                      Qt::MouseButtons p_buttons, Qt::KeyboardModifiers p_modifiers = Qt::NoModifier) {
  QMouseEvent event(p_type, p_place, p_widget.mapToGlobal(p_place.toPoint()), p_button, p_buttons, p_modifiers);
  QApplication::sendEvent(&p_widget, &event);
}

/// In two steps, the first of which is shorter than a click may be.
inline void SendDrag(QWidget& p_widget, const QPointF& p_from, const QPointF& p_by, Qt::MouseButton p_button,
                     Qt::KeyboardModifiers p_modifiers = Qt::NoModifier) {
  SendMouse(p_widget, QEvent::MouseButtonPress, p_from, p_button, p_button, p_modifiers);
  SendMouse(p_widget, QEvent::MouseMove, p_from + QPointF(0, 3), Qt::NoButton, p_button, p_modifiers);
  SendMouse(p_widget, QEvent::MouseMove, p_from + p_by, Qt::NoButton, p_button, p_modifiers);
  SendMouse(p_widget, QEvent::MouseButtonRelease, p_from + p_by, p_button, Qt::NoButton, p_modifiers);
}

inline void SendWheel(QWidget& p_widget, const QPointF& p_place, int p_angle) {
  QWheelEvent event(p_place, p_widget.mapToGlobal(p_place.toPoint()), {}, {0, p_angle}, Qt::NoButton, Qt::NoModifier,
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(&p_widget, &event);
}

} // namespace Vek::Test
