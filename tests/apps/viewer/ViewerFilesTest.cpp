#include "tests/apps/viewer/ViewerFixture.h"

#include "apps/viewer/RawDialog.h"

#include <QDropEvent>
#include <QFileDialog>
#include <QMimeData>
#include <QPushButton>

namespace {

class ViewerFiles : public ViewerFixture {};

/// A sheet with so many vertices along each side, as an OBJ file.
std::string SheetText(int p_side) {
  QString text;
  for (int i = 0; i < p_side * p_side; ++i)
    text += QString("v %1 %2 %3\n").arg(i % p_side).arg(i % 7).arg(i / p_side);
  for (int a = 1; a <= p_side * (p_side - 1); ++a)
    if (a % p_side != 0)
      text += QString("f %1 %2 %3\nf %1 %3 %4\n").arg(a).arg(a + p_side).arg(a + p_side + 1).arg(a + 1);
  return text.toStdString();
}

} // namespace

TEST_F(ViewerFiles, RecognisesContentBeforeNames) {
  using Kind = Io::Format::Kind;
  const std::string header(84, '\0');
  struct {
    const char* name;
    std::string begin;
    std::vector<Kind> kinds;
  } const cases[]{
      {"a.txt", "#?RADIANCE\n", {Kind::Images}},
      {"a.hdr", std::string(344, '\0') + std::string("ni1\0", 4), {Kind::Volumes}},
      {"a.csv", "  TextArray 4", {Kind::Volumes}},
      {"a.dat", "CDF\x02", {Kind::Vectors, Kind::Volumes, Kind::Heights}},
      {"a.stl", std::string(80, ' ') + std::string("\1\0\0\0", 4) + std::string(50, 'x'), {Kind::Meshes}},
      {"a.xyz", "# made by hand\rv\t1 2 3\rv 1 2 4\r", {Kind::Meshes}},
      {"a.csv", "4 3 0.5 1 0.5 1\n1 2 3", {Kind::Heights}},
      {"a.asc", "NCOLS 4\r\nnrows 3\r\n", {Kind::Heights}},
      {"a.csv", "ncols nrows\n4 3\n", {Kind::Tables}},
      {"a.csv", "# winds\n\"Lon\";\"U (m/s)\";V\n", {Kind::Vectors, Kind::Tables}},
      {"a.csv", "x,y,z\n1,2,3\n", {Kind::Tables}},
      {"a.nii.gz", "\x1f\x8b", {Kind::Volumes}},
      {"a.PLY", "", {Kind::Meshes}},
      {"a.doc", "words", {}},
  };
  for (const auto& [name, begin, kinds] : cases)
    EXPECT_EQ(KindsOf(name, begin, begin.size()), kinds) << name << ' ' << begin.substr(0, 20);
}

TEST_F(ViewerFiles, OpensByMenuDropAndRecentFiles) {
  const QString cube = QString::fromStdString(_folder.Write("cube.obj", CubeText()));
  Action("Open…")->trigger();
  auto* const dialog = _window->findChild<QFileDialog*>();
  ASSERT_NE(dialog, nullptr);
  emit dialog->filesSelected({cube});
  dialog->reject();
  ASSERT_TRUE(WaitFor([&] { return _shown == 1; }));
  QMimeData data;
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(DataFile("ocean_salinity.txt"))),
                QUrl::fromLocalFile(QString::fromStdString(DataFile("sky.hdr"))),
                QUrl::fromLocalFile(QString::fromStdString(DataFile("earthquakes.csv")))});
  QDragEnterEvent enter(QPoint(500, 300), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(_window.get(), &enter);
  ASSERT_TRUE(enter.isAccepted());
  QDropEvent drop(QPointF(500, 300), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
  QApplication::sendEvent(_window.get(), &drop);
  ASSERT_TRUE(WaitFor([&] { return _shown == 4; }));
  QStringList rows;
  for (int i = 0; i < _window->List().count(); ++i)
    rows << _window->List().item(i)->text();
  EXPECT_EQ(rows.join(' ').toStdString(), "cube.obj ocean_salinity.txt sky.hdr earthquakes.csv");
  EXPECT_EQ(RecentFiles().Paths().mid(3), QStringList(cube)) << "the last one first";
  EXPECT_EQ(_window->Reports().Count(), 0u) << LastReport();

  // A row is closed; opening a file again takes its row.
  _window->CloseRow(1);
  ASSERT_NE(Open(cube.toStdString()), nullptr);
  EXPECT_EQ(_window->List().count(), 3);
  EXPECT_EQ(_window->List().currentRow(), 0);
}

TEST_F(ViewerFiles, KeepsTheChartOnBrokenFiles) {
  ASSERT_NE(OpenText("cube.obj", CubeText()), nullptr);
  const Viewer::Chart* const chart = _window->Chart();
  struct {
    const char* name;
    const char* text;
    const char* report;
  } const cases[]{
      {"cut.hdr", "#?RADIANCE\n\n-Y 400 +X 300\nnothing", "scanline 1: the file ends early"},
      {"words.obj", "v 1 2 three\nf 1 1 1\n", "line 1: expected"},
      {"short.txt", "TextArray 4 1 4 4 1 2 3", "expected"},
      {"notes.doc", "nothing of the kind", "expected OBJ, PLY, STL, glTF, NetCDF"},
      {"empty.obj", "", "empty file"},
  };
  for (const auto& [name, text, report] : cases) {
    EXPECT_EQ(OpenText(name, text), nullptr) << name;
    EXPECT_NE(LastReport().find(report), std::string::npos) << name << ": " << LastReport();
    EXPECT_EQ(_window->Chart(), chart) << name;
  }
  EXPECT_EQ(_window->Reports().Count(), std::size(cases));
  EXPECT_TRUE(_window->Reports().isVisible());
}

TEST_F(ViewerFiles, AsksForTheLayoutOfRawValues) {
  std::string bytes(4, 'h');
  for (int i = 0; i < 3 * 2 * 2; ++i)
    bytes += {'\0', static_cast<char>(i)};
  _window->OpenFile(QString::fromStdString(_folder.Write("a.raw", bytes)));
  auto* const dialog = _window->findChild<RawDialog*>();
  ASSERT_NE(dialog, nullptr);
  dialog->findChild<QSpinBox*>("x")->setValue(3);
  dialog->findChild<QSpinBox*>("y")->setValue(2);
  dialog->findChild<QSpinBox*>("z")->setValue(2);
  dialog->findChild<QComboBox*>("type")->setCurrentIndex(Io::Volume::UInt16);
  auto& header = *dialog->findChild<QSpinBox*>("header");
  auto& open = *dialog->findChild<QPushButton*>("open");
  header.setValue(5);
  EXPECT_FALSE(open.isEnabled()) << "a byte too many";
  header.setValue(4);
  EXPECT_TRUE(open.isEnabled());
  dialog->findChild<QCheckBox*>("bigEndian")->setChecked(true);
  dialog->accept();
  ASSERT_TRUE(WaitFor([&] { return _shown == 1; }, 5000)) << LastReport();
  EXPECT_NE(Words().find("3 × 2 × 2 voxels, 0 to 11"), std::string::npos) << Words();
}

TEST_F(ViewerFiles, CancelsLoading) {
  ASSERT_NE(OpenText("cube.obj", CubeText()), nullptr);
  _window->OpenFile(QString::fromStdString(_folder.Write("sheet.obj", SheetText(900))));
  auto& cancel = Find<QPushButton>("cancel");
  ASSERT_TRUE(WaitFor([&] { return cancel.isVisible(); }, 5000));
  cancel.click();
  EXPECT_FALSE(_window->Loader().IsLoading());
  EXPECT_EQ(_window->List().count(), 1);
  EXPECT_NE(OpenText("again.obj", CubeText()), nullptr) << "the thread is free";
}
