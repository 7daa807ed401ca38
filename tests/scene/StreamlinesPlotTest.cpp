#include "scene/Figure.h"

#include "tests/support/Figures.h"

namespace {

using Points = std::vector<Point>;
using Bytes = std::vector<std::size_t>;

using Vector = VectorField::Vector;

/// A flow along x over [0, 4] x [0, 2], ten times as fast at the upper edge as at the lower one.
const Doubles X = Ascending(9, 0, 0.5), Y = Ascending(5, 0, 0.5);
Points Shear(double p_factor = 1) {
  Points vectors;
  for (const double y : Y)
    for (std::size_t i = 0; i < X.size(); ++i)
      vectors.emplace_back(p_factor * (1 + 4.5 * y), 0, 0);
  return vectors;
}

using StreamlinesPlotCalls = FigureCallsFixture;

TEST_F(StreamlinesPlotCalls, RefusesWrongArguments) {
  Figure figure;
  StreamlinesPlot& plot = figure.Streamlines(VectorField::Layer(X, Y, Shear()));
  ExpectErrors({
      {"Streamlines: expected a field with nodes, got an empty one", [&] { figure.Streamlines(VectorField()); }},
      {"Spacing: expected a fraction of 0.005 to 0.5, got 0.001000", [&] { plot.Spacing(0.001); }},
      {"Width: expected a fraction above 0 and up to 1, got 0.000000", [&] { plot.Width(0); }},
      {"UpdateVectors: expected 45 elements, got 3", [&] { plot.UpdateVectors(Points(3)); }},
      {"ColorBy: expected 45 elements, got 3", [&] { plot.ColorBy(Doubles(3)); }},
  });
}

TEST_F(StreamlinesPlotCalls, NotesWhatIsLeftOut) {
  const auto notes = [](Figure& p_figure) { return p_figure.Layout({0, 0, 600, 400}).notes; };
  Points vectors = Shear();
  vectors[3].x = NaN;
  vectors[5].z = 1;
  Figure figure;
  StreamlinesPlot& plot = figure.Streamlines(VectorField::Layer(X, Y, vectors));
  const QString shortest = "lines shorter than 3.3 % of the diagonal left out";
  EXPECT_EQ(notes(figure), (Notes{"1 node missing", "flow across the layer not shown", "width by speed", shortest}));
  EXPECT_EQ(plot.ColorRange().max, 10) << "by speed";
  plot.WidthBySpeed(false).Spacing(0.1).UpdateVectors(Shear());
  EXPECT_EQ(notes(figure), (Notes{"equal widths", "lines shorter than 20 % of the diagonal left out"}));
  figure.SetLimits(1, 0, 1.2);
  EXPECT_EQ(notes(figure).at(0), "18 nodes outside of the axes");

  for (const Vector& vector : {Vector(NaN, 0, 0), Vector(0, 0, 0)}) {
    ReportCapture reports;
    Figure still;
    still.Streamlines(VectorField::Layer(X, Y, Points(45, vector)));
    EXPECT_EQ(notes(still), std::isnan(vector.x) ? Notes{"45 nodes missing"} : Notes());
    EXPECT_EQ(reports.Texts().size(), std::isnan(vector.x) ? 1U : 0U);
  }
}

TEST_F(StreamlinesPlotCalls, UploadWhatChanged) {
  Figure figure;
  StreamlinesPlot& plot = figure.Streamlines(VectorField::Layer(X, Y, Shear()));
  const std::size_t all = UploadsOf(figure).size();
  EXPECT_GE(all, 8U) << "lines and heads";
  plot.ColorMap("inferno").ColorRange(2, 3).LogScale().SetOpacity(0.5).ColorTitle("Title").MissingColor(Qt::red);
  EXPECT_EQ(UploadsOf(figure), Bytes()) << "settings";
  plot.ColorBy(Doubles(45, 1));
  EXPECT_EQ(UploadsOf(figure).size(), 2U) << "values of lines and heads";
  plot.ColorMap("magma");
  EXPECT_EQ(UploadsOf(figure), Bytes());
  plot.UpdateVectors(Shear(-1));
  EXPECT_GE(UploadsOf(figure).size(), all - 1);
  plot.ArrowHeads(false);
  UploadsOf(figure);
  plot.ColorBySpeed();
  EXPECT_EQ(UploadsOf(figure).size(), 1U) << "no heads";
}

TEST_F(StreamlinesPlotCalls, TheBarIsOfTheSpeedUntilThereAreValues) {
  Figure figure;
  StreamlinesPlot& plot = figure.Streamlines(VectorField::Layer(X, Y, Shear()));
  const auto hasTitle = [&](const QString& p_title) {
    for (const FigureLayout::Block& block : figure.Layout({0, 0, 600, 400}).blocks)
      for (const LegendBlock::String& string : block.content.Strings())
        if (string.text == p_title)
          return true;
    return false;
  };
  EXPECT_TRUE(hasTitle("Speed"));
  plot.ColorBy(Doubles(45, 1));
  EXPECT_FALSE(hasTitle("Speed"));
  plot.ColorBySpeed().ColorTitle("Speed in knots");
  EXPECT_TRUE(hasTitle("Speed in knots"));
}

class StreamlinesPlotPixels : public FigurePixelsFixture {
protected:
  /// The share of red pixels in a rectangle of the data.
  double RedIn(Figure& p_figure, const Point& p_from, const Point& p_to) {
    const Camera::Pixel low = PixelOf(p_figure, p_from), high = PixelOf(p_figure, p_to);
    const QImage image = Image();
    int red = 0, all = 0;
    for (int y = static_cast<int>(low.y) + 1; y < static_cast<int>(high.y); ++y)
      for (int x = static_cast<int>(low.x) + 1; x < static_cast<int>(high.x); ++x, ++all)
        red += qRed(PixelAt(image, x, y)) > 200 && qGreen(PixelAt(image, x, y)) < 60 ? 1 : 0;
    EXPECT_GT(all, 50) << "the case is one";
    return static_cast<double>(red) / all;
  }
};

TEST_F(StreamlinesPlotPixels, LinesAreWiderWhereTheFlowIsFaster) {
  for (const bool isBySpeed : {true, false}) {
    Figure figure;
    StreamlinesPlot& plot = figure.Streamlines(VectorField::Layer(X, Y, Shear())).Color(Qt::red).Width(0.6);
    plot.Spacing(0.1).WidthBySpeed(isBySpeed).ArrowHeads(false);
    Draw(figure);
    const double slow = RedIn(figure, {1, 0, 0}, {3, 0.8, 0}), fast = RedIn(figure, {1, 1.2, 0}, {3, 2, 0});
    // Lines through 1 and multiples of 0.447 beside it: widths of 0.36 and 0.51 against 0.81 and 0.96 of the largest.
    EXPECT_NEAR(fast / slow, isBySpeed ? 2 : 1, 0.2);
  }
}

/// Lines begin and end at the border of the field, and at that of the limits.
TEST_F(StreamlinesPlotPixels, LinesEndAtTheBorder) {
  const Point far(1e6, -3e6, 0);
  const Doubles x = Ascending(9, far.x, 0.5), y = Ascending(5, far.y, 0.5);
  for (const bool isLimited : {false, true}) {
    Figure figure;
    figure.Scatter(Points{far + Point(-1, 0, 0), far + Point(5, 2, 0)}).Color(Qt::white);
    figure.Streamlines(VectorField::Layer(x, y, Shear())).Color(Qt::red).Width(0.5);
    figure.SetLimits(0, far.x + (isLimited ? 1 : -1), far.x + (isLimited ? 3 : 5));
    Draw(figure);
    const double left = isLimited ? 1 : 0, right = isLimited ? 3 : 4;
    const auto red = [&](double p_from, double p_to) {
      return RedIn(figure, far + Point(p_from, 0, 0), far + Point(p_to, 2, 0));
    };
    EXPECT_EQ(red(left - 0.5, left), 0);
    EXPECT_GT(red(left, left + 0.2), 0.1);
    EXPECT_GT(red(right - 0.2, right), 0.1);
    EXPECT_EQ(red(right, right + 0.5), 0);
  }
}

/// A scalar of the nodes is blended along the lines, and heads have the colour of their line.
TEST_F(StreamlinesPlotPixels, ColorsAreThoseOfTheNodes) {
  Doubles values;
  for (std::size_t i = 0; i < 45; ++i)
    values.push_back(X[i % 9]);
  Figure figure;
  figure.Streamlines(VectorField::Layer(X, Y, Shear()))
      .ColorBy(values)
      .ColorMap({Qt::blue, Qt::red})
      .Width(1)
      .WidthBySpeed(false);
  figure.Look(0, 90, Camera::Projection::Parallel);
  Draw(figure);
  const QImage image = Image();
  for (const double x : {0.5, 2.0, 3.5}) {
    const Camera::Pixel pixel = PixelOf(figure, {x, 1, 0});
    int colored = 0;
    for (int y = 0; y < 200; ++y) {
      const QColor color = image.pixelColor(static_cast<int>(pixel.x), y);
      if (color.green() < 8) { // on a line
        EXPECT_NEAR(color.redF() / (color.redF() + color.blueF()), x / 4, 0.06) << x << ", row " << y;
        ++colored;
      }
    }
    EXPECT_GT(colored, 10);
  }
}

} // namespace
