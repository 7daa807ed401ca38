// The built-in glyph models. Shows how a SymbolRegistry hands out GPU buffers, and how many instances of a model are
// drawn from them in one call. A model of the user's, an OBJ file, joins them.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Glyphs.h"
#include "apps/gallery/ModelFile.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/SpacePicture.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"
#include "scene/InstancedMesh.h"

#include "library/ModelCache.h"
#include "library/SymbolRegistry.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::ModelCache;
using Library::SymbolRegistry;
using Types::Angle;
using Types::Matrix3;
using Point = Types::Vector3_Base<double>;

/// The shapes of the registry, and by how many degrees the large copy leans towards the viewer: flat
/// shapes lean back to catch the light, open ones show their inside.
struct Shape {
  Model::Symbol::Shape shape;
  double lean;
};
constexpr Shape Models[] = {{Model::Symbol::ShapeArrowHead1D, -20}, {Model::Symbol::ShapeArrow1D, -20},
                            {Model::Symbol::ShapeArrowHead2D, -40}, {Model::Symbol::ShapeArrow2D, -40},
                            {Model::Symbol::ShapePlane, 35},        {Model::Symbol::ShapeArrowHead3D, 0},
                            {Model::Symbol::ShapeArrow3D, -15},     {Model::Symbol::ShapeCylinder, 15},
                            {Model::Symbol::ShapeCone, 0},          {Model::Symbol::ShapeCircularArrow3D, 35},
                            {Model::Symbol::ShapeCrosshair, -20},   {Model::Symbol::ShapeCube, 15},
                            {Model::Symbol::ShapeSphere, 0},        {Model::Symbol::ShapeCustom, 35}};

constexpr int Columns = 5;
constexpr int Rows = 3;
constexpr double CellWidth = 3.75;
constexpr double CellHeight = 3.35;

/// The middle of a cell of the wall that faces south; cell 0 is on the upper left.
Point CellCenter(int p_cell) {
  return {(p_cell % Columns - (Columns - 1) / 2.0) * CellWidth, 0,
          ((Rows - 1) / 2.0 - static_cast<double>(p_cell / Columns)) * CellHeight};
}

/// The copies of a model.
struct Copies {
  std::vector<Point> positions;
  std::vector<double> sizes;
  std::vector<double> values;
  std::vector<Matrix3> rotations;

  void Add(const Point& p_position, double p_size, double p_value, const Matrix3& p_rotation) {
    positions.push_back(p_position);
    sizes.push_back(p_size);
    values.push_back(p_value);
    rotations.push_back(p_rotation);
  }
  InstancedMesh Of(GpuMesh p_mesh) const {
    InstancedMesh::Instances instances;
    instances.positions = positions;
    instances.sizes = sizes;
    instances.values = values;
    instances.rotations = rotations;
    return {{InstancedMesh::Level::Centered(std::move(p_mesh))}, instances};
  }
};

/// A large copy in the middle of a cell, rotated by `p_large`, and a ring of small ones around it. `p_small` rotates
/// the copy in the east of the ring; the others follow their position.
Copies Carousel(const Point& p_center, const Matrix3& p_large, const Matrix3& p_small) {
  constexpr int Ring = 16;
  constexpr double Radius = 1.42;
  Copies copies;
  copies.Add(p_center + Point(0, 0, 0.3), 1.75, 0.7, p_large);
  for (int i = 0; i < Ring; ++i) {
    const Matrix3 around = Matrix3::Rotation(Angle::FromDegrees(360.0 * (i + 0.5) / Ring), {0, 0, 1});
    const Point place = around * Point(Radius, 0, -0.25);
    // Far ones are dark, near ones light.
    copies.Add(p_center + place, 0.5, 0.5 - 0.5 * place.y / Radius, around * p_small);
  }
  return copies;
}

Copies GlyphCarousel(int p_cell) {
  const Matrix3 lean = Matrix3::Rotation(Angle::FromDegrees(Models[p_cell].lean), {1, 0, 0}) *
                       Matrix3::Rotation(Angle::FromDegrees(30), {0, 1, 0});
  // The glyph's axis, +z, points outwards, its +y up.
  return Carousel(CellCenter(p_cell), lean, Matrix3::FromColumns({0, 1, 0}, {0, 0, 1}, {1, 0, 0}));
}

/// Models of other programs have y up and mostly look towards +z: here they stand upright and look outwards.
Copies ModelCarousel(int p_cell) {
  const Matrix3 upright = Matrix3::Rotation(Angle::FromDegrees(90), {1, 0, 0});
  return Carousel(CellCenter(p_cell), Matrix3::Rotation(Angle::FromDegrees(30), {0, 0, 1}) * upright,
                  Matrix3::Rotation(Angle::FromDegrees(90), {0, 0, 1}) * upright);
}

class SymbolsPicture : public SpacePicture {
public:
  SymbolsPicture(const Inputs& p_inputs, Loading& p_loading)
      : SpacePicture(Palettes::Plasma(0.25, 0.95))
      , _folder(p_inputs.symbols) {
    int cell = 0;
    for (const Shape& entry : Models)
      _symbols.push_back({QString::fromStdString(ShapeName(entry.shape)), {}, GlyphCarousel(cell++)});
    if (p_inputs.model.empty())
      return;
    _model = ReadModelFile(p_inputs.model, p_loading);
    _symbols.push_back({QString::fromStdString(FileName(p_inputs.model)), {}, ModelCarousel(cell)});
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, 0, 0.4};
    camera.elevation = 24;
    camera.fieldOfView = 12;
    camera.distance = 58;
    camera.radius = 14;
    return camera;
  }

protected:
  void Prepare(Utility::Scoped<Rgl>& p_gl) override {
    const auto cache = boost::make_shared<ModelCache>(p_gl.Handle());
    const SymbolRegistry registry(cache, _folder);
    for (std::size_t i = 0; i < std::size(Models); ++i)
      _symbols[i].SetMesh(GpuMesh(registry, Models[i].shape));
    if (_model)
      _symbols.back().SetMesh(GpuMesh(*cache, cache->Register(*_model)));
    _model.reset();
  }

  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    DirectionalLight bright;
    bright.ambient = 0.5;
    const auto light = bright.Apply(p_gl);
    const auto lines = p_gl->PushAttribScope(RGL_LINE_BIT);
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 3.0 * PointSize(p_world))));
    for (const Symbol& symbol : _symbols)
      symbol.mesh.Draw(p_gl, Colors());
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override {
    for (const Symbol& symbol : _symbols)
      symbol.mesh.DrawDepths(p_gl);
  }

  void DrawLegends(Utility::Scoped<Rgl>&, const View& p_view, Canvas& p_canvas) override {
    DrawTitle(p_canvas, "Symbols", "The built-in glyph models, each with all its copies in one draw call");
    int cell = 0;
    for (const Symbol& symbol : _symbols)
      LabelCell(p_canvas, p_view, cell++, symbol.name, GalleryTheme::Text);
    if (cell < Columns * Rows)
      LabelCell(p_canvas, p_view, cell, "yours: --model FILE.obj", GalleryTheme::Faint);
  }

private:
  struct Symbol {
    QString name;
    InstancedMesh mesh;
    Copies copies;

    void SetMesh(GpuMesh p_mesh) { mesh = copies.Of(std::move(p_mesh)); }
  };

  static void LabelCell(Canvas& p_canvas, const View& p_view, int p_cell, const QString& p_text,
                        const QColor& p_color) {
    p_canvas.TextAt(p_text, p_view, CellCenter(p_cell) + Point(0, 0, -0.44 * CellHeight), {0, 0}, {0.5, 0.5},
                    {GalleryTheme::SmallSize, p_color, false});
  }

  std::string _folder;                               ///< of the built-in models
  boost::shared_ptr<const Library::ObjModel> _model; ///< the user's, until it is in GPU buffers
  std::vector<Symbol> _symbols;
};

} // namespace

std::unique_ptr<Picture> LoadSymbols(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<SymbolsPicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
