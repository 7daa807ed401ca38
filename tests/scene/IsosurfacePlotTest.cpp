#include "scene/Figure.h"

#include "tests/support/Figures.h"

#include <cmath>

namespace {

using Box = Types::BoundingBox_Base<double>;

constexpr int N = 24;
const Point Middle(1e6, -2e6, 50);

/// Distances from the middle of a box of 2 x 2 x 200 units, the last axis in hundredths.
VoxelGrid Distances() {
  Doubles values;
  const auto at = [](int p_i) { return (2 * p_i + 1.0) / N - 1; };
  for (int i = 0; i < N * N * N; ++i)
    values.push_back(std::sqrt(std::pow(at(i % N), 2) + std::pow(at(i / N % N), 2) + std::pow(at(i / N / N), 2)));
  return {values, {N, N, N}, Box(Middle - Point(1, 1, 100), Middle + Point(1, 1, 100))};
}

class IsosurfacePlotPixels : public FigurePixelsFixture {
protected:
  Notes NotesOf(Figure& p_figure) { return p_figure.Layout(viewport).notes; }
};

TEST_F(IsosurfacePlotPixels, LieWhereTheValuesAreAndShowInnerOnes) {
  Figure figure;
  figure.theme.grid = figure.theme.line = figure.theme.title = Qt::white;
  figure.Look(0, 90, Camera::Projection::Parallel);
  IsosurfacePlot& plot = figure.Isosurface(Distances(), {0.8, 0.4}).ColorMap({Qt::red, Qt::blue});
  const auto colors = [&] {
    figure.Draw(gl, viewport);
    std::vector<QColor> found;
    for (const double radius : {0.0, 0.35, 0.45, 0.75, 0.85})
      found.push_back(AtPoint(figure, Middle + Point(radius * 0.6, radius * 0.8, 0)));
    return found;
  };
  const std::vector<QColor> opaque = colors();
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_GT(opaque[i].blue(), 40) << i;
    EXPECT_LT(opaque[i].red(), 0.5 * opaque[i].blue()) << i;
  }
  EXPECT_EQ(opaque[4], QColor(Qt::white));
  const auto pixel = figure.Layout(viewport).camera.Project(figure.ToScene(Middle + Point(0.3, 0, 0)), viewport);
  const auto hit = figure.Pick(gl, viewport, {static_cast<int>(pixel.x), static_cast<int>(pixel.y)});
  ASSERT_TRUE(hit);
  EXPECT_EQ(hit->value, 0.8) << "the level in front";
  EXPECT_NEAR(hit->position.z, Middle.z + 100 * std::sqrt(0.64 - 0.09), 2);
  plot.SetOpacity(0.5);
  const std::vector<QColor> half = colors();
  EXPECT_GT(half[0].red(), half[0].green() + 40) << "the inner surface is seen";
  EXPECT_GT(half[1].red(), half[1].green() + 40);
  EXPECT_NEAR(half[2].red(), half[2].green(), 4) << "only the outer one";

  // Values of another quantity: the share along x.
  Doubles others;
  for (int i = 0; i < N * N * N; ++i)
    others.push_back(i % N);
  plot.SetOpacity(1).Levels({0.8}).ColorBy(others).ColorRange(0, N - 1);
  figure.Draw(gl, viewport);
  const QColor left = AtPoint(figure, Middle - Point(0.6, 0, 0)), right = AtPoint(figure, Middle + Point(0.6, 0, 0));
  EXPECT_GT(left.red(), 2 * left.blue());
  EXPECT_GT(right.blue(), 2 * right.red());
}

TEST_F(IsosurfacePlotPixels, NotesSayLevelsAndWhatIsMissing) {
  Figure figure;
  IsosurfacePlot& plot = figure.Isosurface(Distances(), 0.8);
  const QString stretch = "z \u00D7 0.005";
  EXPECT_EQ(NotesOf(figure), (Notes{"surface at 0.8", stretch}));
  plot.Levels({0.8, 7, -1});
  EXPECT_EQ(NotesOf(figure), (Notes{"no surface at \u22121, 7", stretch})) << "the colour bar has the levels";
  const FigureLayout layout = figure.Layout(viewport);
  std::vector<QString> ticks;
  for (const FigureLayout::Block& block : layout.blocks)
    if (!block.content.Gradients().empty())
      for (const LegendBlock::String& string : block.content.Strings())
        ticks.push_back(string.text);
  EXPECT_EQ(ticks, (std::vector<QString>{"\u22121", "0.8", "7"}));
  plot.Levels({0.5, 0.8}).Color(Qt::red);
  EXPECT_EQ(NotesOf(figure).at(0), "surfaces at 0.5, 0.8");
  figure.SetLimits(0, 1e6, 2e6);
  EXPECT_EQ(NotesOf(figure).at(1), "the volume is cut at the axes");
  EXPECT_EQ(ErrorOf<std::invalid_argument>([&] { plot.Levels({}); }), "Levels: expected one level at least, got none");
  EXPECT_THROW(figure.Isosurface(Distances(), NAN), std::invalid_argument);

  for (const VoxelGrid& grid : {VoxelGrid(Doubles{1, 2}, {2, 1, 1}, Box({0, 0, 0}, {1, 1, 1})),
                                VoxelGrid(Doubles(8, NAN), {2, 2, 2}, Box({0, 0, 0}, {1, 1, 1}))}) {
    Figure none;
    none.Isosurface(grid, 1.5);
    none.Draw(gl, viewport);
    EXPECT_EQ(NotesOf(none).at(0), "no surface at 1.5");
  }
}

} // namespace
