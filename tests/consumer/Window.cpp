// Makes a view of a figure, with the installed package only, on a platform without a screen.

#include "widgets/FigureView.h"

#include <QApplication>

#include <iostream>

using namespace Vek::Chart;

int main() {
  char name[] = "window", option[] = "-platform", platform[] = "offscreen";
  char* arguments[] = {name, option, platform, nullptr};
  int count = 3;
  const QApplication application(count, arguments);
  const Widgets::FigureView view(std::make_shared<Scene::Figure>("Title"));
  std::cout << view.Figure().use_count() << '\n';
}
