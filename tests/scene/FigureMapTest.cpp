#include "scene/Figure.h"

#include "tests/support/Figures.h"

#include <set>

namespace {

using PointList = std::vector<Point>;
using FigureMapTest = FigureFixture;

/// The limits of the axes of data seen from above: {west, south, east, north}.
std::array<double, 4> Borders(Figure& p_figure, const Viewport& p_viewport) {
  const FigureLayout layout = p_figure.Layout(p_viewport);
  std::array<double, 4> borders{HUGE_VAL, HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
  for (const AxesLayout::Position& corner : layout.axes.corners) {
    const Point data = p_figure.ToData(layout.camera.UnprojectToTarget({corner.x, corner.y, true}, p_viewport));
    borders = {std::min(borders[0], data.x), std::min(borders[1], data.y), std::max(borders[2], data.x),
               std::max(borders[3], data.y)};
  }
  return borders;
}

/// Where a point of the data lies in an image of the size of the viewport.
QPoint PixelOf(Figure& p_figure, const Point& p_data, const Viewport& p_viewport) {
  const auto pixel = p_figure.Layout(p_viewport).camera.Project(p_figure.ToScene(p_data), p_viewport);
  return {static_cast<int>(pixel.x), static_cast<int>(static_cast<double>(p_viewport.height) - pixel.y)};
}

} // namespace

TEST_F(FigureMapTest, BordersAroundTheData) {
  const std::tuple<PointList, std::array<double, 4>> cases[] = {
      {{{-175, -80, 0}, {175, 80, 0}}, {-180, -90, 180, 90}}, // nearly the world
      {{{0, -89, 0}, {357, 89, 0}}, {0, -90, 360, 90}},
      {{{-300, -89, 0}, {57, 89, 0}}, {-180, -90, 180, 90}},
  };
  for (const auto& [points, borders] : cases) {
    Figure figure;
    figure.SetMap().Scatter(points);
    const std::array<double, 4> actual = Borders(figure, wide);
    for (const std::size_t i : {0, 2})
      EXPECT_NEAR(actual[i], borders[i], 1e-6) << points[0].x;
    EXPECT_GE(actual[1], -90 - 1e-6);
    EXPECT_LE(actual[3], 90 + 1e-6);
  }
  Figure part;
  part.SetMap().Scatter(PointList{{170, 50, 0}, {190, 70, 0}});
  const std::array<double, 4> borders = Borders(part, wide);
  EXPECT_GT(borders[0], 160);
  EXPECT_LT(borders[2], 200);
  const Point unit = part.ToScene({181, 61, 0}) - part.ToScene({180, 60, 0});
  EXPECT_NEAR(unit.x / unit.y, 0.5, 0.02); // the cosine of 60 degrees
}

TEST_F(FigureMapTest, NamesAndNotes) {
  Figure figure;
  figure.SetMap().SetLimits(0, 150, 240).SetLimits(1, -30, 30);
  figure.Scatter(PointList{{-170, 10, 0}, {200, 20, 5000}, {100, 10, 0}, {160, 95, 0}, {730, 0, 0}});
  const FigureLayout layout = figure.Layout(wide);
  std::set<QString> labels;
  for (const auto& label : layout.axes.labels)
    labels.insert(label.text);
  for (const char* const name : {"180°", "150° W", "0°", "z"})
    EXPECT_EQ(labels.count(name), 1U) << name;
  EXPECT_EQ(labels.count("x"), 0U);
  EXPECT_EQ(layout.notes, Notes{"3 points outside of the axes"});
}

TEST_F(FigureMapTest, DrawsWhereTheMapHasIt) {
  // A square across the date line, and points one turn off; red on white.
  Figure figure;
  figure.SetMap().SetLimits(0, -180, 180).SetLimits(1, -90, 90);
  MeshPlot& square =
      figure
          .Mesh(
              PointList{
                  {170, -20, 0}, {190, -20, 0}, {190, 20, 0}, {170, 20, 0}, {0, 85, 0}, {5, 100, 0}, {-5, 100, 0}},
              {{0, 1, 2}, {0, 2, 3}})
          .Color(Qt::red);
  ScatterPlot& dots =
      figure.Scatter(PointList{{300, 50, 0}, {-300, -50, 0}, {180, 60, 0}}).Color(Qt::red).Diameter(0.05);
  const QImage with = figure.Image({600, 400});
  const auto isRed = [&](double p_longitude, double p_latitude) {
    const QColor color = with.pixelColor(PixelOf(figure, {p_longitude, p_latitude, 0}, wide));
    return color.red() > 100 && color.green() < 60;
  };
  const std::tuple<double, double, bool> cases[] = {
      {175, 5, true},  {-175, 5, true},   {165, 5, false}, {-165, 5, false}, {-60, 50, true}, {60, 50, false},
      {60, -50, true}, {-60, -50, false}, {178, 60, true}, {-178, 60, true}, {186, 5, false}, {-186, 5, false},
  };
  for (const auto& [longitude, latitude, red] : cases)
    EXPECT_EQ(isRed(longitude, latitude), red) << longitude << ' ' << latitude;

  // Nothing overhangs: beside the map, the image is that without data.
  square.SetVisible(false);
  dots.SetVisible(false);
  figure.SetLimits(2, 0, 1).Look(0, 90, Camera::Projection::Parallel);
  const QPoint lower = PixelOf(figure, {-180, -90, 0}, wide), upper = PixelOf(figure, {180, 90, 0}, wide);
  int red = 0;
  for (int y = 0; y < with.height(); ++y)
    for (int x = 0; x < with.width(); ++x)
      if (x < lower.x() - 2 || x > upper.x() + 2 || y > lower.y() + 2 || y < upper.y() - 2)
        red += with.pixelColor(x, y).red() > with.pixelColor(x, y).green() + 60;
  EXPECT_EQ(red, 0);
}

TEST_F(FigureMapTest, StreamlinesOfAnyTurn) {
  struct Case {
    double first, last, wrap; // longitudes of the field
    Doubles with, without;    // on the map
  };
  for (const auto& [first, last, wrap, with, without] : {Case{20, 350, 360, {-90, 90}, {}},
                                                         {190, 260, 0, {-160, -110}, {-60, 100}},
                                                         {140, 220, 0, {-150, 150}, {0, 60}}}) {
    Doubles longitudes;
    for (double longitude = first; longitude <= last; longitude += 10)
      longitudes.push_back(longitude);
    const Doubles latitudes{-80, 0, 80};
    VectorField field = VectorField::Layer(longitudes, latitudes, PointList(3 * longitudes.size(), {1, 0, 0}));
    if (wrap > 0)
      field.WrapX(wrap);
    Figure figure;
    figure.SetMap().SetLimits(0, -180, 180).SetLimits(1, -90, 90);
    figure.Streamlines(field).Color(Qt::red).Width(0.5);
    const QImage image = figure.Image({600, 400});
    const auto hasLines = [&](double p_longitude) {
      const int x = PixelOf(figure, {p_longitude, 0, 0}, wide).x();
      int red = 0;
      for (int y = 0; y < image.height(); ++y)
        red += image.pixelColor(x, y).red() > image.pixelColor(x, y).green() + 60;
      return red > 20;
    };
    for (const double longitude : with)
      EXPECT_TRUE(hasLines(longitude)) << first << ": " << longitude;
    for (const double longitude : without)
      EXPECT_FALSE(hasLines(longitude)) << first << ": " << longitude;
  }
}

TEST_F(FigureMapTest, CutsSurfacesAtItsBorders) {
  Figure figure;
  figure.SetMap().SetLimits(0, 364, 376).SetLimits(1, 4, 16); // one turn further, between the nodes
  figure.Surface(Doubles{0, 10, 20}, Doubles{0, 10, 20}, Doubles(9)).Color(Qt::red);
  const QImage image = figure.Image({600, 400});
  for (const double longitude : {364.5, 375.5})
    for (const double latitude : {4.5, 15.5}) {
      const QColor color = image.pixelColor(PixelOf(figure, {longitude, latitude, 0}, wide));
      EXPECT_GT(color.red(), color.green() + 60) << longitude << ' ' << latitude;
    }
}

TEST_F(FigureMapTest, RefusesWhatIsNoMap) {
  Figure figure;
  figure.SetMap();
  Figure wideFigure, cut;
  wideFigure.SetLimits(0, 0, 400);
  for (const double position : {1, 2, 3})
    cut.Clip(0, position, Figure::Side::Above);
  ExpectErrors({
      {"SetLimits: expected longitudes from -360 to 720, up to 360 apart, got 0.000000 to 361.000000",
       [&] { figure.SetLimits(0, 0, 361); }},
      {"SetLimits: expected longitudes from -360 to 720, up to 360 apart, got -400.000000 to -300.000000",
       [&] { figure.SetLimits(0, -400, -300); }},
      {"SetLimits: expected latitudes from -90 to 90, got 0.000000 to 91.000000", [&] { figure.SetLimits(1, 0, 91); }},
      {"SetMap: expected longitudes from -360 to 720, up to 360 apart, got 0.000000 to 400.000000",
       [&] { wideFigure.SetMap(); }},
      {"SetMap: expected at most 2 cutting planes, got 3", [&] { cut.SetMap(); }},
      {"Clip: expected at most 2 planes, got another one",
       [&] { figure.Clip(0, 1, Figure::Side::Above).Clip(0, 2, Figure::Side::Above).Clip(0, 3, Figure::Side::Above); }},
  });
}
