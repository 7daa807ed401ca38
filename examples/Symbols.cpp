// The built-in glyph models. Shows how a SymbolRegistry hands out GPU buffers, and how many instances of a model are
// drawn from them in one call. A model of the user's, an OBJ file, joins them.

#include "examples/SceneMakers.h"

#include "examples/scene/Files.h"
#include "examples/scene/Instances.h"
#include "examples/scene/Lettering.h"
#include "examples/scene/Light.h"
#include "examples/scene/ModelFile.h"
#include "examples/scene/Overlay.h"
#include "examples/scene/Palettes.h"
#include "examples/scene/Theme.h"

#include "library/ColorMap.h"
#include "library/ModelCache.h"
#include "library/SymbolRegistry.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Library::ModelCache;
using Library::SymbolRegistry;
using Types::Angle;
using Types::Matrix3;
using Point = Types::Vector3_Base<double>;

/// The shapes of the registry, in their order, and by how many degrees the large copy leans towards the viewer: flat
/// shapes lean back to catch the light, open ones show their inside.
struct Shape {
  const char* name;
  double lean;
};
constexpr Shape Models[] = {{"ArrowHead1D", -20}, {"Arrow1D", -20},        {"ArrowHead2D", -40}, {"Arrow2D", -40},
                            {"Plane", 35},        {"ArrowHead3D", 0},      {"Arrow3D", -15},     {"Cylinder", 15},
                            {"Cone", 0},          {"CircularArrow3D", 35}, {"Crosshair", -20},   {"Cube", 15},
                            {"Sphere", 0},        {"Custom (torus)", 35}};
constexpr int FirstShape = Model::Symbol::ShapeArrowHead1D;

constexpr int Columns = 5;
constexpr int Rows = 3;
constexpr double CellWidth = 3.75;
constexpr double CellHeight = 3.35;

/// The middle of a cell of the wall that faces south; cell 0 is on the upper left.
Point CellCenter(int p_cell) {
  return {(p_cell % Columns - (Columns - 1) / 2.0) * CellWidth, 0,
          ((Rows - 1) / 2.0 - static_cast<double>(p_cell / Columns)) * CellHeight};
}

/// A large copy in the middle of a cell, turned by `p_large`, and a ring of small ones around it. `p_small` turns the
/// copy in the east of the ring; the others turn with their place.
std::vector<Instance> Carousel(const Point& p_center, const Matrix3& p_large, const Matrix3& p_small) {
  constexpr int Ring = 16;
  constexpr double Radius = 1.42;
  std::vector<Instance> instances = {{p_center + Point(0, 0, 0.3), 1.75, 0.7, p_large}};
  for (int i = 0; i < Ring; ++i) {
    const Matrix3 around = Matrix3::Rotation(Angle::FromDegrees(360.0 * (i + 0.5) / Ring), {0, 0, 1});
    const Point place = around * Point(Radius, 0, -0.25);
    // Far ones are dark, near ones light.
    instances.push_back({p_center + place, 0.5, 0.5 - 0.5 * place.y / Radius, around * p_small});
  }
  return instances;
}

std::vector<Instance> GlyphCarousel(int p_cell) {
  const Matrix3 lean = Matrix3::Rotation(Angle::FromDegrees(Models[p_cell].lean), {1, 0, 0}) *
                       Matrix3::Rotation(Angle::FromDegrees(30), {0, 1, 0});
  // The glyph's axis, +z, points outwards, its +y up.
  return Carousel(CellCenter(p_cell), lean, Matrix3::FromColumns({0, 1, 0}, {0, 0, 1}, {1, 0, 0}));
}

/// Models of other programs have y up and mostly look towards +z: here they stand upright and look outwards.
std::vector<Instance> ModelCarousel(int p_cell) {
  const Matrix3 upright = Matrix3::Rotation(Angle::FromDegrees(90), {1, 0, 0});
  return Carousel(CellCenter(p_cell), Matrix3::Rotation(Angle::FromDegrees(30), {0, 0, 1}) * upright,
                  Matrix3::Rotation(Angle::FromDegrees(90), {0, 0, 1}) * upright);
}

class SymbolsScene : public Scene {
public:
  SymbolsScene(const Inputs& p_inputs, Loading& p_loading)
      : _folder(p_inputs.symbols) {
    int cell = 0;
    for (const Shape& entry : Models)
      _symbols.push_back({entry.name, {}, InstanceBuffers(GlyphCarousel(cell++))});
    if (p_inputs.model.empty())
      return;
    _model = ReadModelFile(p_inputs.model, p_loading);
    _symbols.push_back({QString::fromStdString(FileName(p_inputs.model)), {}, InstanceBuffers(ModelCarousel(cell))});
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, 0, 0.4};
    camera.elevation = 24;
    camera.field_of_view = 12;
    camera.distance = 58;
    camera.radius = 14;
    return camera;
  }

  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) override {
    DrawBackground(p_gl, p_view, _lettering);
    Prepare(p_gl);
    {
      const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
      Light bright;
      bright.ambient = 0.5;
      const auto light = bright.Apply(p_gl);
      const auto lines = p_gl->PushAttribScope(RGL_LINE_BIT);
      p_gl->LineWidth(static_cast<float>(std::max(1.0, 3.0 * p_view.PointSize())));
      for (Symbol& symbol : _symbols)
        _painter.Draw(p_gl, symbol.mesh, symbol.instances, _colors);
    }
    DrawLabels(p_gl, p_view);
  }

private:
  struct Symbol {
    QString name;
    Mesh mesh;
    InstanceBuffers instances;
  };

  void Prepare(Utility::Scoped<Rgl>& p_gl) {
    if (_registry)
      return;
    const auto cache = boost::make_shared<ModelCache>(p_gl.Handle());
    _registry = std::make_unique<SymbolRegistry>(cache, _folder);
    for (std::size_t i = 0; i < std::size(Models); ++i) {
      const auto shape = static_cast<Model::Symbol::Shape>(FirstShape + i);
      _symbols[i].mesh = {_registry->GetVertexBuffer(shape), _registry->GetIndexBuffer(shape),
                          _registry->GetBoundingBox(shape)};
    }
    if (_model) {
      const std::size_t id = cache->Register(*_model);
      _symbols.back().mesh = {cache->GetVertexBuffer(id), cache->GetIndexBuffer(id), cache->GetBoundingBox(id)};
      _model.reset();
    }
  }

  void DrawLabels(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
    Overlay overlay(p_gl, p_view, _lettering);
    overlay.Title("Symbols", "The built-in glyph models, each with all its copies in one draw call");
    int cell = 0;
    for (const Symbol& symbol : _symbols)
      LabelCell(overlay, cell++, symbol.name, Theme::Text);
    if (cell < Columns * Rows)
      LabelCell(overlay, cell, "yours: --model FILE.obj", Theme::Faint);
  }

  static void LabelCell(Overlay& p_overlay, int p_cell, const QString& p_text, const QColor& p_color) {
    p_overlay.TextAt(p_text, CellCenter(p_cell) + Point(0, 0, -0.44 * CellHeight), 0, 0, {0.5, 0.5},
                     {Theme::SmallSize, p_color, false});
  }

  std::string _folder;                               ///< of the built-in models
  boost::shared_ptr<const Library::ObjModel> _model; ///< the user's, until it is in GPU buffers
  std::unique_ptr<SymbolRegistry> _registry;
  InstancePainter _painter;
  std::vector<Symbol> _symbols;
  Library::ColorMap _colors{Palettes::Plasma(0.25, 0.95), Library::ColorMap::Interpolated};
  Lettering _lettering;
};

} // namespace

std::unique_ptr<Scene> LoadSymbols(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<SymbolsScene>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
