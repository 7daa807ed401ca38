#include "scene/FigureGrid.h"

#include "testing/TempFolder.h"
#include "tests/support/Figures.h"

#include <QFile>
#include <QPainter>

#include <cmath>
#include <cstdlib>

namespace {

using Points = std::vector<Point>;
using FigurePdfTest = FigureFixture;

/// A half-transparent square that faces the viewer.
void AddSquare(Figure& p_figure) {
  p_figure.Mesh(Points{{0, 0, 0}, {3, 0, 0}, {3, 2, 0}, {0, 2, 0}}, {{0, 1, 2}, {0, 2, 3}})
      .ColorBy(std::vector<double>{1, 2, 3, 4})
      .ColorTitle("Height in m")
      .SetOpacity(0.5);
}

double NumberAfter(const QByteArray& p_pdf, const QByteArray& p_key) {
  const auto at = p_pdf.indexOf(p_key);
  return at < 0 ? -1 : std::atof(p_pdf.constData() + at + p_key.size());
}

/// All compressed streams of a PDF that are not images, as they were before.
QByteArray Contents(const QByteArray& p_pdf) {
  QByteArray contents;
  for (auto at = p_pdf.indexOf("\nstream\n"); at >= 0; at = p_pdf.indexOf("\nstream\n", at)) {
    const QByteArray dictionary = p_pdf.mid(p_pdf.lastIndexOf(" obj", at), at - p_pdf.lastIndexOf(" obj", at));
    at = p_pdf.indexOf('\n', at + 1) + 1;
    if (!dictionary.contains("/FlateDecode") || dictionary.contains("/Image"))
      continue;
    // qUncompress reads the length first; what it is given beyond the stream is ignored.
    contents += qUncompress(QByteArray("\0\x10\0\0", 4) + p_pdf.mid(at, p_pdf.indexOf("endstream", at) - at));
  }
  return contents;
}

} // namespace

TEST_F(FigurePdfTest, LettersAreTextAndDataAnImage) {
  Testing::TempFolder folder;
  const QString path = QString::fromStdString((folder.Path() / "figure.pdf").string());
  Figure figure("Title", "Subtitle");
  AddSquare(figure);
  figure.Save(path, {400, 300}, 144);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray pdf = file.readAll();
  EXPECT_TRUE(pdf.startsWith("%PDF-"));
  EXPECT_EQ(NumberAfter(pdf, "/MediaBox [0 0 "), 400);
  EXPECT_EQ(NumberAfter(pdf, "/MediaBox [0 0 400.000000 "), 300);
  EXPECT_GE(pdf.count("/FontFile2"), 1); // embedded

  // One image, which covers the square at two pixels a point: smaller than the page, and of its scale.
  const auto corners = figure.Layout({0, 0, 800, 600}, 2).axes.corners;
  EXPECT_NEAR(NumberAfter(pdf, "/Width "), 2 * std::abs(corners[1].x - corners[0].x), 2);

  const FigureLayout layout = figure.Layout({0, 0, 400, 300});
  std::size_t strings = layout.axes.labels.size();
  for (const FigureLayout::Block& block : layout.blocks)
    strings += block.content.Strings().size();
  EXPECT_GT(strings, 10U);
  EXPECT_GE(static_cast<std::size_t>(Contents(pdf).count("BT\n")), strings - 4); // ticks may differ by the resolution
}

TEST_F(FigurePdfTest, PaintsWhatIsDrawn) {
  Figure figure("Title");
  figure.theme = Theme::Dark();
  AddSquare(figure);
  const QImage drawn = figure.Image({300, 200});
  QImage painted(300, 200, QImage::Format_RGB32);
  painted.fill(Qt::green);
  {
    QPainter painter(&painted);
    figure.Paint(painter, {300, 200}, 144); // as images with half-transparent plots are drawn
  }
  int different = 0;
  for (int y = 0; y < 200; ++y)
    for (int x = 0; x < 300; ++x)
      for (const int shift : {0, 8, 16})
        different += std::abs(static_cast<int>(drawn.pixel(x, y) >> shift & 0xFF) -
                              static_cast<int>(painted.pixel(x, y) >> shift & 0xFF)) > 6;
  EXPECT_LT(different, 300 * 200 * 3 / 25); // letters and edges are smoothed otherwise
}

TEST_F(FigurePdfTest, GridsHaveOnePage) {
  Testing::TempFolder folder;
  const QString path = QString::fromStdString((folder.Path() / "grid.PDF").string());
  FigureGrid grid(2, 2, "Title");
  for (const std::size_t cell : {0, 1, 2, 3})
    AddSquare(grid.At(cell / 2, cell % 2));
  grid.Save(path, {600, 400}, 72);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray pdf = file.readAll();
  EXPECT_EQ(pdf.count("/MediaBox"), 1);
  EXPECT_EQ(pdf.count("/SMask") - pdf.count("/SMask /None"), 4); // images with alpha
}

TEST_F(FigurePdfTest, RefusesWrongArguments) {
  Figure figure;
  ExpectErrors({{"Paint: expected 1 to 32768 pixels a side, got 0.000000 x 0.000000",
                 VEK_CALL(figure.Save("/no/such/folder/a.pdf", {400, 300}, 0))}});
  ExpectErrors<std::runtime_error>({{"/no/such/folder/a.pdf: the PDF cannot be written: No such file or directory",
                                     VEK_CALL(figure.Save("/no/such/folder/a.pdf", {40, 30}))}});
}
