#include "scene/FigureGrid.h"

#include "tests/support/Figures.h"

namespace {

using Points = std::vector<Point>;
using FigureGridTest = FigureFixture;

/// Two figures whose data have other units and places.
FigureGrid Linked() {
  FigureGrid grid(1, 2);
  grid.At(0, 0).Scatter(Points{{0, 0, 0}, {1, 1, 1}});
  grid.At(0, 1).Scatter(Points{{5e6, 0, 0}, {5e6 + 3000, 3000, 3000}});
  grid.LinkCameras();
  return grid;
}

} // namespace

TEST_F(FigureGridTest, CellsTileTheViewport) {
  const Viewport window(10, 20, 301, 203);
  for (const char* const title : {"", "Title"}) {
    FigureGrid grid(2, 3, title);
    float right = 10, area = 0;
    for (std::size_t row = 0; row < 2; ++row)
      for (std::size_t column = 0; column < 3; ++column) {
        const Viewport cell = grid.Cell(row, column, window, 2);
        EXPECT_FLOAT_EQ(cell.x, column == 0 ? 10 : right);
        right = cell.x + cell.width;
        area += cell.width * cell.height;
        const double x = static_cast<double>(cell.x), y = static_cast<double>(cell.y);
        EXPECT_EQ(grid.FigureAt({x, y, true}, window, 2), &grid.At(row, column));
        EXPECT_EQ(grid.FigureAt({x + static_cast<double>(cell.width) - 1, y + static_cast<double>(cell.height) - 1},
                                window, 2),
                  &grid.At(row, column));
      }
    EXPECT_FLOAT_EQ(right, 311);
    EXPECT_GT(grid.Cell(0, 0, window, 2).y, grid.Cell(1, 0, window, 2).y); // rows from the top
    EXPECT_EQ(grid.FigureAt({9, 30}, window), nullptr);
    const float top = grid.Cell(0, 0, window, 2).y + grid.Cell(0, 0, window, 2).height;
    EXPECT_FLOAT_EQ(area, 301 * (top - 20));
    EXPECT_EQ(top < 223 - 40, *title != 0) << top; // letters of 20 points and a margin
  }
}

TEST_F(FigureGridTest, RefusesOtherCells) {
  FigureGrid grid(2, 1);
  ExpectErrors({
      {"FigureGrid: expected a cell of 2 x 1, got row 2, column 0", [&] { grid.At(2, 0); }},
      {"FigureGrid: expected a cell of 2 x 1, got row 0, column 1", VEK_CALL(grid.Cell(0, 1, {0, 0, 10, 10}))},
      {"FigureGrid: expected 1 to 100 rows and columns, got 0 x 5", [] { FigureGrid(0, 5); }},
      {"FigureGrid: expected 1 to 100 rows and columns, got 1 x 101", [] { FigureGrid(1, 101); }},
      {"Image: expected a size above 0, got 0 x 10", VEK_CALL(grid.Image({0, 10}))},
  });
}

TEST_F(FigureGridTest, LinkedCamerasFollowTheChangedOne) {
  constexpr Types::Size Size{160, 90};
  FigureGrid grid = Linked();
  Figure &left = grid.At(0, 0), &right = grid.At(0, 1);
  const Viewport cell(0, 0, 80, 90);
  left.Look(20, 50, Camera::Projection::Parallel);
  grid.Image(Size, 0);
  EXPECT_FALSE(right.camera); // still fitted
  EXPECT_EQ(right.Layout(cell).camera.azimuth, 20);
  EXPECT_EQ(right.Layout(cell).camera.projection, Camera::Projection::Parallel);

  // The right one, closer and panned by half its distance.
  const Camera fitted = right.Layout(cell).camera, fittedLeft = left.Layout(cell).camera;
  right.camera = fitted;
  right.camera->distance /= 4;
  right.camera->target.z += fitted.distance / 2;
  grid.Image(Size, 0);
  ASSERT_TRUE(left.camera);
  EXPECT_NEAR(left.camera->distance, fittedLeft.distance / 4, 1e-9);
  EXPECT_NEAR(left.camera->target.z, fittedLeft.target.z + fittedLeft.distance / 2, 1e-9);
  EXPECT_EQ(right.camera->distance, fitted.distance / 4); // the leader keeps its own

  right.camera.reset(); // fits again
  grid.Image(Size, 0);
  EXPECT_FALSE(left.camera);

  grid.LinkCameras(false);
  left.Look(-70, 10);
  grid.Image(Size, 0);
  EXPECT_EQ(right.Layout(cell).camera.azimuth, 20);
}

TEST_F(FigureGridTest, DrawsEachFigureInItsCell) {
  FigureGrid grid(1, 2);
  grid.SetTheme(Theme::Dark());
  grid.At(0, 1).theme = Theme::Light();
  const QImage image = grid.Image({200, 100}, 0);
  EXPECT_LT(qGray(image.pixel(3, 50)), 80);
  EXPECT_LT(qGray(image.pixel(98, 96)), 80);
  EXPECT_GT(qGray(image.pixel(101, 50)), 200);
  EXPECT_GT(qGray(image.pixel(197, 3)), 200);
}
