// A program without an application object writes figures, and makes its QApplication afterwards.

#include "scene/Figure.h"

#include "tests/support/Test.h"

#include <QApplication>
#include <QFontMetrics>
#include <QWidget>

namespace {

TEST(FigureQtWidgetPixels, ApplicationsAreMadeAfterSave) {
  const TempFolder folder;
  Figure figure("Title");
  figure.Scatter(std::vector<std::array<double, 3>>{{0, 0, 0}, {1, 1, 1}});
  const QString path = QString::fromStdString(folder.File("figure.png"));
  figure.Save(path, {300, 200});
  figure.Save(path, {300, 200}); // a second application object
  const QImage saved(path);
  ASSERT_EQ(saved.size(), QSize(300, 200));
  EXPECT_EQ(QCoreApplication::instance(), nullptr);

  static int count = 3;
  static char name[] = "test", option[] = "-platform", platform[] = "offscreen";
  static char* arguments[] = {name, option, platform, nullptr};
  const QApplication application(count, arguments);
  QWidget widget;
  widget.show();
  EXPECT_GT(QFontMetrics(widget.font()).height(), 0);
  EXPECT_EQ(figure.Image({300, 200}), saved.convertToFormat(QImage::Format_RGB32));
}

} // namespace
