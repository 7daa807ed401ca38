#include "scene/Figure.h"

#include "library/ObjModel.h"
#include "library/ObjScene.h"
#include "tests/support/Figures.h"

namespace {

using Points = std::vector<Point>;
using Triangles = std::vector<std::array<unsigned, 3>>;

using MeshPlotPixels = FigurePixelsFixture;

/// A square of two triangles in the plane z = 3, and a vertex far away that none has.
const Points Square{{0, 0, 3}, {2, 0, 3}, {2, 2, 3}, {0, 2, 3}, {1000, 0, 0}};
const Triangles Halves{{0, 1, 2}, {0, 2, 3}};

TEST_F(MeshPlotPixels, TrianglesAreWhereTheyBelong) {
  Figure figure;
  MeshPlot& plot = figure.Mesh(Square, Halves).ColorBy(Doubles{0, 0, 0, 1, NaN}).ColorMap({Qt::blue, Qt::red});
  const Point left(0.2, 1.8, 3), right(1.5, 0.5, 3);
  EXPECT_GT(Drawn(figure, left).red(), 180);
  EXPECT_LT(Drawn(figure, right).red(), 60);
  EXPECT_GT(Drawn(figure, right).blue(), 180);

  Points moved = Square;
  moved[3].y = NaN;
  plot.UpdatePositions(moved).Color(Qt::red);
  EXPECT_EQ(figure.Layout(viewport).notes, Notes{"1 vertex missing"});
  EXPECT_EQ(Drawn(figure, left), QColor(Qt::white));
  EXPECT_GT(Drawn(figure, right).red(), 180);
  plot.UpdatePositions(Square);
  EXPECT_GT(Drawn(figure, left).red(), 180);
  EXPECT_EQ(figure.Layout(viewport).notes, Notes());
  moved = Square;
  moved[3] = {1, 1, 3};
  plot.UpdatePositions(moved);
  EXPECT_EQ(Drawn(figure, left), QColor(Qt::white)) << "the triangle has no area now";
  moved[0].x = NaN;
  plot.UpdatePositions(moved);
  EXPECT_EQ(Drawn(figure, {1.8, 1, 3}), QColor(Qt::white)) << "both triangles miss a vertex";
  plot.UpdatePositions(Square);
  figure.SetLimits(0, -1, 1);
  EXPECT_EQ(figure.Layout(viewport).notes, Notes{"2 vertices outside of the axes"});

  Library::ObjScene file; // a line and a triangle
  for (const Point& point : Square)
    file.positions.insert(file.positions.end(), {float(point.x), float(point.y), float(point.z)});
  file.indices = {0, 4, 0, 2, 3};
  file.groups.resize(2);
  file.groups[0].primitive = Library::ObjScene::Lines;
  file.groups[0].count = 2;
  file.groups[1].first = 2;
  file.groups[1].count = 3;
  Figure read;
  read.Mesh(file).Color(Qt::red);
  EXPECT_GT(Drawn(read, left).red(), 180);
  EXPECT_EQ(Drawn(read, right), QColor(Qt::white));

  Library::ObjModel model;
  EXPECT_THROW(read.Mesh(model), std::invalid_argument) << "of no primitive type";
  model.SetPrimitiveType(Ogl::VertexBuffer::Triangles);
  const auto vertices = boost::make_shared<Library::ObjModel::VertexArray>();
  for (const Point& point : Square)
    vertices->push_back(Ogl::Vec3<float>{float(point.x), float(point.y), float(point.z)});
  model.SetVertices(vertices);
  model.DefaultGroup()->indices = {0, 1, 2, 4};
  model.AddGroup()->indices = {0, 2, 3};
  Figure loaded;
  loaded.Mesh(model).Color(Qt::red);
  EXPECT_GT(Drawn(loaded, left).red(), 180);
  EXPECT_GT(Drawn(loaded, right).red(), 180);
}

TEST_F(MeshPlotPixels, RefusesWrongArguments) {
  Figure figure;
  MeshPlot& plot = figure.Mesh(Square, Halves);
  Library::ObjScene file;
  file.positions = {0, 0, 0};
  file.indices = {0, 0, 0};
  file.groups.resize(1);
  file.groups[0].count = 4;
  ExpectErrors({
      {"triangles: expected indices below 5, got 5 in triangle 1",
       VEK_CALL(figure.Mesh(Square, Triangles{{0, 1, 2}, {0, 2, 5}}))},
      {"Mesh: expected three indices for each triangle, got 4 indices",
       VEK_CALL(figure.Mesh(Square, std::vector<std::uint32_t>{0, 1, 2, 0}))},
      {"UpdatePositions: expected 5 elements, got 4", [&] { plot.UpdatePositions(Points(4)); }},
      {"ColorBy: expected 5 elements, got 2", [&] { plot.ColorBy(Doubles(2)); }},
      {"groups: expected indices 0 to 3, got a group from 0 of 4", [&] { figure.Mesh(file); }},
  });
}

/// A ramp of small heights with a stretched axis is lit like one of large heights.
TEST_F(MeshPlotPixels, LightFollowsTheStretchedSurface) {
  const auto color = [&](double p_height, double p_stretch) {
    Figure figure;
    figure.Mesh(Points{{0, 0, 0}, {2, 0, p_height}, {2, 2, p_height}, {0, 2, 0}}, Halves).Color(Qt::green);
    figure.SetAspect(1, 1, p_stretch).Look(0, 90, Camera::Projection::Parallel);
    return Drawn(figure, {1.4, 0.7, 0.7 * p_height});
  };
  EXPECT_TRUE(SameColor(color(0.04, 50).rgb(), color(2, 1).rgb(), 3));
  EXPECT_FALSE(SameColor(color(0.04, 1).rgb(), color(2, 1).rgb(), 20));
}

/// The square as a file, with a group for each triangle.
Library::ObjScene SquareFile(const Point& p_normal, const std::array<int, 2>& p_materials) {
  Library::ObjScene file;
  for (std::size_t i = 0; i < 4; ++i) {
    file.positions.insert(file.positions.end(), {float(Square[i].x), float(Square[i].y), float(Square[i].z)});
    file.normals.insert(file.normals.end(), {float(p_normal.x), float(p_normal.y), float(p_normal.z)});
  }
  file.indices = {0, 1, 2, 0, 2, 3};
  file.materials.resize(2);
  file.materials[0].diffuse = {1, 0, 0};
  file.materials[1].diffuse = {0, 0, 1};
  file.groups.resize(2);
  for (std::size_t i = 0; i < 2; ++i) {
    file.groups[i].first = 3 * i;
    file.groups[i].count = 3;
    file.groups[i].material = p_materials[i];
  }
  return file;
}

TEST_F(MeshPlotPixels, ColorsOfAFileAreThoseOfVerticesTimesMaterials) {
  const Point right(1.2, 0.9, 3), left(0.9, 1.2, 3); // on both sides of the diagonal
  const auto isRed = [](const QColor& p_color) { return p_color.red() > 150 && p_color.blue() < 60; };
  const auto isBlue = [](const QColor& p_color) { return p_color.blue() > 150 && p_color.red() < 60; };
  Library::ObjScene file = SquareFile({0, 0, 1}, {0, 1});
  Figure figure;
  MeshPlot& plot = figure.Mesh(file);
  EXPECT_EQ(plot.Count(), 4U) << "vertices that two materials share count once";
  EXPECT_TRUE(isRed(Drawn(figure, right)));
  EXPECT_TRUE(isBlue(Drawn(figure, left))) << "no blend at the shared edge";
  plot.SetOpacity(0.5);
  EXPECT_NEAR(Drawn(figure, left).red(), 128, 8);
  plot.SetOpacity(1).ColorBy(Doubles{0, 0, 0, 0}).ColorMap({Qt::green, Qt::green});
  EXPECT_GT(Drawn(figure, left).green(), 150);
  plot.Color(Qt::red);
  EXPECT_TRUE(isRed(Drawn(figure, left)));
  plot.ColorByFile();
  EXPECT_TRUE(isBlue(Drawn(figure, left)));

  for (std::size_t i = 0; i < 4; ++i)
    file.colors.insert(file.colors.end(), {0.0F, 1.0F, 1.0F, 1.0F}); // red times cyan is black
  Figure dyed;
  dyed.Mesh(file);
  EXPECT_LT(Drawn(dyed, right).red(), 60);
  EXPECT_TRUE(isBlue(Drawn(dyed, left)));
  Figure plain; // materials without a colour leave the plot its own
  plain.Mesh(SquareFile({0, 0, 1}, {-1, 7})).Color(Qt::red);
  EXPECT_TRUE(isRed(Drawn(plain, left)));
}

/// Normals of a file count until positions change, and lean as the stretched surface does.
TEST_F(MeshPlotPixels, NormalsAreThoseOfTheFile) {
  const auto shade = [&](const Point& p_normal, double p_stretch, bool p_moves) {
    Figure figure;
    MeshPlot& plot = figure.Mesh(SquareFile(p_normal, {-1, -1})).Color(Qt::green);
    figure.SetAspect(1, 1, p_stretch).Look(0, 90, Camera::Projection::Parallel);
    figure.SetLimits(2, 0, 4);
    if (p_moves)
      Drawn(figure, {1, 1, 3}), plot.UpdatePositions(Points(Square.begin(), Square.begin() + 4));
    return Drawn(figure, {1.2, 0.8, 3}).green();
  };
  const int upright = shade({0, 0, 1}, 1, false);
  EXPECT_LT(shade({2, 0, 1}, 1, false), upright - 30);
  EXPECT_NEAR(shade({2, 0, 1}, 0.01, false), upright, 3) << "of a flattened surface";
  EXPECT_NEAR(shade({2, 0, 1}, 1, true), upright, 3) << "computed";
}

/// The lower left of the image is at (0, 0); it is repeated; one that cannot be read leaves the material's colour.
TEST_F(MeshPlotPixels, TexturesOfAFileAreRepeated) {
  TempFolder folder;
  QImage image(2, 2, QImage::Format_RGB32); // red and green above blue and white
  image.setPixel(0, 0, 0xFFFF0000), image.setPixel(1, 0, 0xFF00FF00);
  image.setPixel(0, 1, 0xFF0000FF), image.setPixel(1, 1, 0xFFFFFFFF);
  image = image.scaled(64, 64); // so that texels do not blend where tests look
  ASSERT_TRUE(image.save(QString::fromStdString(folder.File("texture.png"))));
  Library::ObjScene file = SquareFile({0, 0, 1}, {0, 0});
  file.texCoords = {0, 0, 2, 0, 2, 2, 0, 2}; // twice along both edges
  file.materials[0].diffuse = {1, 1, 0.5F};
  file.materials[0].diffuseTexture = folder.File("texture.png");
  Figure figure;
  MeshPlot& plot = figure.Mesh(file);
  for (const double shift : {0.0, 1.0}) {
    const QColor blue = Drawn(figure, {0.25 + shift, 0.25, 3}), red = Drawn(figure, {0.25, 0.75 + shift, 3}),
                 green = Drawn(figure, {0.75 + shift, 0.75, 3});
    EXPECT_GT(red.red(), 180);
    EXPECT_LT(red.green() + red.blue(), 60);
    EXPECT_GT(green.green(), 180);
    EXPECT_NEAR(blue.blue(), 0.5 * red.red(), 15) << "times the colour of the material";
  }
  plot.SetOpacity(0.5);
  EXPECT_NEAR(Drawn(figure, {0.25, 0.75, 3}).green(), 128, 8);
  plot.SetOpacity(1).ColorBy(Doubles(4, 1)).ColorMap({Qt::cyan, Qt::cyan});
  EXPECT_LT(Drawn(figure, {0.25, 0.75, 3}).red(), 60);
  plot.ColorByFile();
  EXPECT_GT(Drawn(figure, {0.25, 0.75, 3}).red(), 180);

  file.materials[0].diffuseTexture = folder.File("none.png");
  Figure unread;
  unread.Mesh(file);
  EXPECT_EQ(unread.Layout(viewport).notes, Notes{"1 texture not read"});
  EXPECT_GT(Drawn(unread, {0.25, 0.75, 3}).green(), 150) << "yellow";
}

class MeshPlotCalls : public FigureCallsFixture {};

TEST_F(MeshPlotCalls, UploadWhatChanged) {
  using Bytes = std::vector<std::size_t>;
  Figure figure;
  MeshPlot& plot = figure.Mesh(SquareFile({0, 0, 1}, {0, 1}));
  EXPECT_EQ(UploadsOf(figure).size(), 4U) << "positions, normals, colours, indices";
  plot.SetOpacity(0.5);
  EXPECT_EQ(UploadsOf(figure), Bytes{4 * 6}) << "colours: two vertices have both materials";
  plot.ColorBy(Doubles(4, 1));
  EXPECT_EQ(UploadsOf(figure), Bytes{4 * 6}) << "values";
  plot.ColorMap("inferno").ColorRange(2, 3).SetOpacity(0.25);
  EXPECT_EQ(UploadsOf(figure), Bytes()) << "settings";
}

} // namespace
