// Preloaded into a program with a window: once the window is shown, saves what it shows as <program>.png, and quits.

#include <QApplication>
#include <QTimer>
#include <QWidget>
#include <QWindow>

namespace {

void Grab() {
  for (QWidget* const widget : QApplication::topLevelWidgets())
    if (widget->windowHandle() != nullptr && widget->windowHandle()->isExposed()) {
      widget->grab().save(QCoreApplication::applicationName() + ".png");
      QApplication::quit();
    }
}

void Start() {
  constexpr int Milliseconds = 200;
  auto* const timer = new QTimer(qApp);
  QObject::connect(timer, &QTimer::timeout, Grab);
  timer->start(Milliseconds);
}
Q_COREAPP_STARTUP_FUNCTION(Start)

} // namespace
