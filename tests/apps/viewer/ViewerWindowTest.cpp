#include "tests/apps/viewer/ViewerFixture.h"

#include "apps/viewer/SaveDialog.h"

#include <QFileDialog>

namespace {

class ViewerWindows : public ViewerFixture {};

} // namespace

TEST_F(ViewerWindows, EmptyViewInvites) {
  ASSERT_NE(_window->findChild<QWidget*>("welcome"), nullptr);
  EXPECT_TRUE(Find<QWidget>("welcome").isVisible());
  EXPECT_FALSE(_window->Reports().isVisible());
  ASSERT_NE(OpenText("cube.obj", CubeText()), nullptr);
  EXPECT_FALSE(Find<QWidget>("welcome").isVisible());
  EXPECT_EQ(View().size(), _window->centralWidget()->size()) << "the view fills the middle";
  _window->CloseRow(0);
  EXPECT_TRUE(Find<QWidget>("welcome").isVisible());
}

TEST_F(ViewerWindows, StandardViewsAndProjection) {
  ASSERT_NE(OpenText("cube.obj", CubeText()), nullptr);
  struct {
    const char* action;
    double azimuth, elevation;
  } const views[]{{"Front", 0, 0}, {"Right", -90, 0}, {"Top", 0, 90}, {"Bottom", 0, -90}, {"Left", 90, 0}};
  for (const auto& [action, azimuth, elevation] : views) {
    Action(action)->trigger();
    EXPECT_EQ(View().Camera().azimuth, azimuth) << action;
    EXPECT_EQ(View().Camera().elevation, elevation) << action;
  }
  const auto projection = View().Camera().projection;
  Action("Switch projection")->trigger();
  EXPECT_NE(View().Camera().projection, projection);
  Action("Fit")->trigger();
  const QImage fitted = View().Image();
  SendWheel(View(), View().rect().center(), 480);
  EXPECT_GT(Difference(View().Image(), fitted), 0.02);
  Action("Fit")->trigger();
  EXPECT_LT(Difference(View().Image(), fitted), 0.001);
}

TEST_F(ViewerWindows, SavesWithSizeAndWithoutBackground) {
  ASSERT_NE(OpenText("cube.obj", CubeText()), nullptr);
  Action("Save image…")->trigger();
  auto* const how = _window->findChild<SaveDialog*>();
  ASSERT_NE(how, nullptr);
  how->findChild<QSpinBox*>("width")->setValue(400);
  how->findChild<QSpinBox*>("height")->setValue(300);
  how->findChild<QCheckBox*>("transparent")->setChecked(true);
  how->accept();
  const QString path = QString::fromStdString((_folder.Path() / "cube.png").string());
  auto* const where = _window->findChild<QFileDialog*>();
  ASSERT_NE(where, nullptr);
  emit where->fileSelected(path);
  where->reject();
  const QImage image(path);
  ASSERT_EQ(image.size(), QSize(400, 300));
  EXPECT_EQ(image.pixelColor(2, 150).alpha(), 0);
  EXPECT_EQ(image.pixelColor(200, 160).alpha(), 255) << "in the middle of the cube";
  _window->SaveImage(path + "/inside.png", {100, 100});
  EXPECT_NE(LastReport().find("cannot be written"), std::string::npos) << LastReport();
}

TEST_F(ViewerWindows, HelpListsAllKeys) {
  const QString help = _window->HelpText();
  int keys = 0;
  for (const QAction* action : _window->findChildren<QAction*>())
    for (const QKeySequence& key : action->shortcuts())
      if (action->shortcutContext() == Qt::WindowShortcut) {
        EXPECT_TRUE(help.contains(key.toString(QKeySequence::NativeText))) << action->text().toStdString();
        ++keys;
      }
  EXPECT_GE(keys, 15);
}

TEST_F(ViewerWindows, FoldsReportsByFile) {
  ASSERT_NE(OpenText("a.obj", CubeText() + "mtllib nowhere.mtl\ncurv2 1 2\n"), nullptr);
  ASSERT_NE(OpenText("b.obj", CubeText() + "mtllib nobody.mtl\n"), nullptr);
  ASSERT_EQ(_window->Reports().Count(), 3u);
  const auto& tree = *_window->Reports().findChild<QTreeWidget*>();
  ASSERT_EQ(tree.topLevelItemCount(), 2);
  EXPECT_EQ(tree.topLevelItem(0)->text(0).toStdString(), "a.obj (2)");
  EXPECT_EQ(tree.topLevelItem(1)->text(0).toStdString(), "b.obj (1)");
  EXPECT_EQ(tree.topLevelItem(0)->child(0)->text(0).left(8).toStdString(), "line 15:");
  EXPECT_FALSE(tree.topLevelItem(0)->isExpanded());
}
