// The built-in glyph models. Shows how a SymbolRegistry hands out GPU buffers, and how many instances of a model are
// drawn from them in one call. A mesh of the user's joins them.

#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/Sheet.h"

#include "io/FileError.h"
#include "io/ReadMesh.h"
#include "scene/DirectionalLight.h"
#include "scene/InstancedMesh.h"

#include "library/ColorMap.h"
#include "library/ModelCache.h"
#include "library/NamedColors.h"
#include "library/SymbolRegistry.h"

#include <boost/make_shared.hpp>

#include <utility>

namespace Vek::Chart::Gallery {

namespace {

using Types::Angle;
using Types::Matrix3;
using Point = Types::Vector3_Base<double>;

/// A shape of the registry and the angles of its large copy in degrees: how far it leans towards the viewer (flat
/// shapes lean back to catch the light, open ones show their inside), and is turned about its axis before.
struct Shape {
  Model::Symbol::Shape shape;
  const char* name;
  double lean;
  double turn;
};
constexpr Shape Shapes[] = {{Model::Symbol::ShapeArrowHead1D, "ArrowHead1D", -20, 0},
                            {Model::Symbol::ShapeArrow1D, "Arrow1D", -20, 0},
                            {Model::Symbol::ShapeArrowHead2D, "ArrowHead2D", -40, 0},
                            {Model::Symbol::ShapeArrow2D, "Arrow2D", -40, 0},
                            {Model::Symbol::ShapePlane, "Plane", 35, 0},
                            {Model::Symbol::ShapeArrowHead3D, "ArrowHead3D", 0, 0},
                            {Model::Symbol::ShapeArrow3D, "Arrow3D", -15, 0},
                            {Model::Symbol::ShapeCylinder, "Cylinder", 15, 0},
                            {Model::Symbol::ShapeCone, "Cone", 0, 0},
                            {Model::Symbol::ShapeCircularArrow3D, "CircularArrow3D", 35, 0},
                            {Model::Symbol::ShapeCrosshair, "Crosshair", 20, 40},
                            {Model::Symbol::ShapeCube, "Cube", 15, 0},
                            {Model::Symbol::ShapeSphere, "Sphere", 0, 0},
                            {Model::Symbol::ShapeCustom, "Custom (torus)", 35, 0}};

constexpr int Columns = 5;
constexpr int Rows = 3;
constexpr double CellWidth = 3.75;
constexpr double CellHeight = 3.5;

/// The middle of a cell of the wall that faces south; cell 0 is on the upper left.
Point CellCenter(int p_cell) {
  return {(p_cell % Columns - (Columns - 1) / 2.0) * CellWidth, 0,
          ((Rows - 1) / 2.0 - static_cast<double>(p_cell / Columns)) * CellHeight};
}

/// A large copy in the middle of a cell, rotated by `p_large`, and a ring of small ones around it. `p_small` rotates
/// the copy in the east of the ring; the others follow their position.
InstancedMesh Carousel(GpuMesh p_mesh, const Point& p_center, const Matrix3& p_large, const Matrix3& p_small) {
  constexpr int Ring = 16;
  constexpr double Radius = 1.45;
  std::vector<Point> positions = {p_center + Point(0, 0, 0.3)};
  std::vector<double> sizes = {1.75}, values = {0.7};
  std::vector<Matrix3> rotations = {p_large};
  for (int i = 0; i < Ring; ++i) {
    rotations.push_back(Matrix3::Rotation(Angle::FromDegrees(360.0 * (i + 0.5) / Ring), {0, 0, 1}));
    const Point place = rotations.back() * Point(Radius, 0, -0.25);
    rotations.back() = rotations.back() * p_small;
    positions.push_back(p_center + place);
    sizes.push_back(0.5);
    values.push_back(0.5 - 0.5 * place.y / Radius); // far ones are dark, near ones light
  }
  InstancedMesh::Instances instances;
  instances.positions = positions;
  instances.sizes = sizes;
  instances.values = values;
  instances.rotations = rotations;
  return {{InstancedMesh::Level::Centered(std::move(p_mesh))}, instances};
}

InstancedMesh GlyphCarousel(GpuMesh p_mesh, int p_cell) {
  const Matrix3 large = Matrix3::Rotation(Angle::FromDegrees(Shapes[p_cell].lean), {1, 0, 0}) *
                        Matrix3::Rotation(Angle::FromDegrees(30), {0, 1, 0}) *
                        Matrix3::Rotation(Angle::FromDegrees(Shapes[p_cell].turn), {0, 0, 1});
  // The glyph's axis, +z, points outwards, its +y up.
  return Carousel(std::move(p_mesh), CellCenter(p_cell), large, Matrix3::FromColumns({0, 1, 0}, {0, 0, 1}, {1, 0, 0}));
}

/// Models of other programs have y up and mostly look towards +z: here they stand upright and look outwards.
InstancedMesh ModelCarousel(GpuMesh p_mesh, int p_cell) {
  const Matrix3 upright = Matrix3::Rotation(Angle::FromDegrees(90), {1, 0, 0});
  return Carousel(std::move(p_mesh), CellCenter(p_cell), Matrix3::Rotation(Angle::FromDegrees(30), {0, 0, 1}) * upright,
                  Matrix3::Rotation(Angle::FromDegrees(90), {0, 0, 1}) * upright);
}

/// The triangles of a file.
GpuMesh ReadModel(const std::string& p_path) {
  const Io::Mesh mesh = Io::ReadMesh(p_path);
  GpuMesh::Arrays arrays;
  std::vector<Point> positions, normals;
  for (std::size_t i = 0; i + 2 < mesh.positions.size(); i += 3)
    positions.emplace_back(mesh.positions[i], mesh.positions[i + 1], mesh.positions[i + 2]);
  for (std::size_t i = 0; i + 2 < mesh.normals.size(); i += 3)
    normals.emplace_back(mesh.normals[i], mesh.normals[i + 1], mesh.normals[i + 2]);
  for (const Io::Mesh::Group& group : mesh.groups)
    if (group.primitive == Io::Mesh::Triangles)
      arrays.indices.insert(arrays.indices.end(), mesh.indices.begin() + static_cast<std::ptrdiff_t>(group.first),
                            mesh.indices.begin() + static_cast<std::ptrdiff_t>(group.first + group.count));
  if (arrays.indices.empty())
    throw Io::FileError(p_path, "expected triangles, got none");
  arrays.positions = positions;
  arrays.origin = positions.front();
  arrays.normals = normals;
  return GpuMesh(arrays);
}

struct Symbol {
  QString name;
  InstancedMesh mesh;
};

std::vector<Symbol> Symbols(Utility::Scoped<Rgl>& p_gl, const Inputs& p_inputs) {
  const Library::SymbolRegistry registry(boost::make_shared<Library::ModelCache>(p_gl.Handle()), p_inputs.symbols);
  std::vector<Symbol> symbols;
  for (const Shape& shape : Shapes)
    symbols.push_back({shape.name, GlyphCarousel(GpuMesh(registry, shape.shape), static_cast<int>(symbols.size()))});
  if (!p_inputs.model.empty())
    symbols.push_back(
        {NameOfFile(p_inputs.model), ModelCarousel(ReadModel(p_inputs.model), static_cast<int>(symbols.size()))});
  return symbols;
}

} // namespace

QImage SymbolsImage(const Inputs& p_inputs, Types::Size p_size) {
  return DrawSheet("Symbols", "The built-in glyph models, each with all its copies in one draw call", p_size,
                   [&](Sheet& p_sheet) {
                     const std::vector<Symbol> symbols = Symbols(p_sheet.Gl(), p_inputs);
                     const Library::ColorMap colors(Library::NamedColors::Colors("plasma", 256, 0.25, 0.95),
                                                    Library::ColorMap::Interpolated);
                     Camera camera;
                     camera.target = {0, 0, -0.05};
                     camera.elevation = 24;
                     camera.projection = Camera::Projection::Parallel;
                     camera.fieldOfView = 10.8;
                     camera.distance = 58;
                     camera.radius = 14;
                     const Sheet::Rect part{0, 0, p_sheet.canvas.Width(), 890};
                     p_sheet.Draw(camera, part, [&](const View&) {
                       DirectionalLight bright;
                       bright.ambient = 0.5;
                       const auto light = bright.Apply(p_sheet.Gl());
                       p_sheet.Gl()->LineWidth(static_cast<float>(3 * p_sheet.canvas.PointSize()));
                       for (const Symbol& symbol : symbols)
                         symbol.mesh.Draw(p_sheet.Gl(), colors);
                     });
                     const View view{camera, p_sheet.canvas.Part(part)};
                     const auto label = [&](int p_cell, const QString& p_text, const QColor& p_color) {
                       TextStyle style = p_sheet.theme.SmallStyle();
                       style.color = p_color;
                       p_sheet.canvas.TextAt(p_text, view, CellCenter(p_cell) + Point(0, 0, -0.44 * CellHeight), {0, 0},
                                             {0.5, 0.5}, style);
                     };
                     int cell = 0;
                     for (const Symbol& symbol : symbols)
                       label(cell++, symbol.name, p_sheet.theme.text);
                     if (p_inputs.model.empty())
                       label(cell, "yours: --model FILE", p_sheet.theme.faint);
                   });
}

} // namespace Vek::Chart::Gallery
