// Everything of the library that draws itself: unit shapes from display lists, solids with fields of their own, boxes
// in window pixels, nine-patch panels and quads with layers of textures.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/ShapeTextures.h"
#include "apps/gallery/SpacePicture.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"

#include "library/Arrow3D.h"
#include "library/Box.h"
#include "library/Cuboid.h"
#include "library/Cylinder.h"
#include "library/Disk.h"
#include "library/FilledBox.h"
#include "library/Geometry.h"
#include "library/Ring.h"
#include "library/Sphere.h"
#include "library/TexturedQuad.h"

#include <boost/make_shared.hpp>

#include <cmath>
#include <optional>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::Geometry;
using Types::Angle;
using Types::Matrix3;
using Point = Types::Vector3_Base<double>;
using Rect = Canvas::Rect;

/// A solid in a cell of the wall; the middle of the cell is its origin.
struct Solid {
  const char* name;
  double lean; ///< degrees that its +z turns towards the viewer
  void (*draw)(Utility::Scoped<Rgl>& p_gl, const Geometry& p_geometry, bool p_filled);
};

constexpr Solid UnitShapes[] = {
    {"Cube", 0, [](Utility::Scoped<Rgl>& p_gl, const Geometry& p_shapes, bool) { p_shapes.Cube(p_gl); }},
    {"Sphere", 0, [](Utility::Scoped<Rgl>& p_gl, const Geometry& p_shapes, bool) { p_shapes.Sphere(p_gl); }},
    {"Cylinder", 10,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry& p_shapes, bool) {
       p_gl->Translate({0, 0, -0.5});
       p_shapes.Cylinder(p_gl);
     }},
    {"Cone", 0,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry& p_shapes, bool) {
       p_gl->Translate({0, 0, -0.5});
       p_shapes.Cone(p_gl);
     }},
    {"Disk", 50, [](Utility::Scoped<Rgl>& p_gl, const Geometry& p_shapes, bool) { p_shapes.Disk(p_gl); }},
    {"CircularArrow", 50,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry& p_shapes, bool) {
       p_gl->Scale({1, 1, 0.25}); // as thick as it is wide else
       p_shapes.CircularArrow(p_gl);
     }},
};
/// Draws nothing, on purpose.
constexpr Solid UnitRing = {"Ring", 50,
                            [](Utility::Scoped<Rgl>& p_gl, const Geometry& p_shapes, bool) { p_shapes.Ring(p_gl); }};

constexpr Solid Drawables[] = {
    {"Arrow3D", 0,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry&, bool p_filled) {
       Library::Arrow3D arrow;
       arrow.position = {0, 0, -0.6};
       arrow.length = 1.2;
       arrow.shaftRadius = 0.12;
       arrow.headRadius = 0.28;
       arrow.segments = 24;
       arrow.filled = p_filled;
       arrow(p_gl.Handle());
     }},
    {"Cylinder", 10,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry&, bool p_filled) {
       Library::Cylinder cylinder;
       cylinder.position = {0, 0, -0.5};
       cylinder.baseRadius = 0.5;
       cylinder.topRadius = 0.25;
       cylinder.slices = 24;
       cylinder.stacks = 6;
       cylinder.filled = p_filled;
       cylinder(p_gl.Handle());
     }},
    {"Disk", 50,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry&, bool p_filled) {
       Library::Disk disk;
       disk.outerRadius = 0.55;
       disk.slices = 48;
       disk.filled = p_filled;
       disk(p_gl.Handle());
     }},
    {"Disk, hole", 50,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry&, bool p_filled) {
       Library::Disk disk;
       disk.innerRadius = 0.25;
       disk.outerRadius = 0.55;
       disk.slices = 48;
       disk.filled = p_filled;
       disk(p_gl.Handle());
     }},
    {"Disk, part", 50,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry&, bool p_filled) {
       Library::Disk disk;
       disk.innerRadius = 0.25;
       disk.outerRadius = 0.55;
       disk.slices = 48;
       disk.startAngle = 30; // clockwise from +y
       disk.sweepAngle = 270;
       disk.filled = p_filled;
       disk(p_gl.Handle());
     }},
    {"Sphere", 0,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry&, bool p_filled) {
       Library::Sphere sphere;
       sphere.radius = 0.55;
       if (!p_filled)
         sphere.slices = sphere.stacks = 18;
       sphere.filled = p_filled;
       sphere(p_gl.Handle());
     }},
    {"Cuboid", 0,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry& p_shapes, bool p_filled) {
       Library::Cuboid cuboid;
       cuboid.size = Point(1.1, 0.6, 0.7);
       cuboid.filled = p_filled;
       cuboid(p_gl.Handle(), p_shapes);
     }},
    {"Ring", 50,
     [](Utility::Scoped<Rgl>& p_gl, const Geometry&, bool p_filled) {
       if (p_filled) // it has no outline
         Ogl::Library::Ring()(p_gl.Handle());
     }},
};

constexpr std::size_t VoxelColumn = std::size(UnitShapes);
constexpr std::size_t RingColumn = VoxelColumn + 1; ///< of both rings
constexpr double UnitsAPoint = 0.01;
constexpr double Elevation = 18;

/// The middle of the cell of a column, where the wall that faces south shows the height `p_y` in points.
Point CellCenter(std::size_t p_column, double p_y) {
  const double upright = std::cos(Angle::FromDegrees(Elevation).Radians());
  return {(306 + 163 * static_cast<double>(p_column) - 800) * UnitsAPoint, 0, (p_y - 500) * UnitsAPoint / upright};
}
constexpr double UnitRow = 752; ///< the rows' heights
constexpr double FilledRow = 580;
constexpr double OutlinedRow = 408;

QColor ColumnColor(std::size_t p_column) {
  static const std::vector<QColor> Colors = Palettes::Plasma(0.38, 0.95);
  return Colors[p_column * (Colors.size() - 1) / 7];
}

class ShapesPicture : public SpacePicture {
public:
  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, 0, 0};
    camera.elevation = Elevation;
    camera.fieldOfView = 3; // nearly parallel, so that columns stay upright
    // A thousand points are the height of the view.
    camera.distance = 500 * UnitsAPoint / std::tan(Angle::FromDegrees(camera.fieldOfView / 2).Radians());
    camera.radius = 20;
    return camera;
  }

protected:
  void Prepare(Utility::Scoped<Rgl>& p_gl) override {
    _geometry.emplace(p_gl.Handle());
    _voxels = VoxelTexture(p_gl);
    _ground = boost::make_shared<Library::Texture>(GroundImage(), p_gl);
    for (const std::uint32_t blending :
         {Library::Texture::Replace, Library::Texture::Decal, Library::Texture::Modulate}) {
      _layers.push_back(boost::make_shared<Library::Texture>(DiskImage(), p_gl));
      _layers.back()->environment = blending;
    }
  }

  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    const auto state = p_gl->PushAttribScope(RGL_CURRENT_BIT | RGL_LINE_BIT);
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 1.2 * PointSize(p_world))));
    {
      DirectionalLight bright;
      bright.ambient = 0.5;
      const auto light = bright.Apply(p_gl);
      p_gl->Enable(RGL_COLOR_MATERIAL);
      DrawSolids(p_gl);
    }
    DrawVoxel(p_gl);
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override {
    DrawSolids(p_gl);
    DrawVoxel(p_gl);
  }

  void DrawLegends(Utility::Scoped<Rgl>& p_gl, const View& p_view, Canvas& p_canvas) override {
    const auto lines = p_gl->PushAttribScope(RGL_LINE_BIT);
    DrawLabels(p_canvas, p_view);
    DrawBoxes(p_gl, p_canvas);
    DrawPanels(p_gl, p_canvas);
    DrawLayers(p_gl, p_canvas);
  }

private:
  void DrawSolids(Utility::Scoped<Rgl>& p_gl) const {
    std::size_t column = 0;
    for (const Solid& solid : UnitShapes)
      DrawSolid(p_gl, solid, column++, UnitRow, true);
    DrawSolid(p_gl, UnitRing, RingColumn, UnitRow, true);
    column = 0;
    for (const Solid& solid : Drawables) {
      DrawSolid(p_gl, solid, column, FilledRow, true);
      DrawSolid(p_gl, solid, column++, OutlinedRow, false);
    }
  }

  void DrawSolid(Utility::Scoped<Rgl>& p_gl, const Solid& p_solid, std::size_t p_column, double p_y,
                 bool p_filled) const {
    p_gl->PushMatrix();
    p_gl->Translate(CellCenter(p_column, p_y));
    p_gl->Rotate(Angle::FromDegrees(p_solid.lean), {1, 0, 0});
    p_gl->Rotate(Angle::FromDegrees(30), {0, 0, 1});
    p_gl->Color(ColumnColor(p_column));
    p_solid.draw(p_gl, *_geometry, p_filled);
    p_gl->PopMatrix();
  }

  /// The voxel has texture coordinates and no normals.
  void DrawVoxel(Utility::Scoped<Rgl>& p_gl) const {
    const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
    p_gl->Enable(RGL_DEPTH_TEST);
    p_gl->Bind(_voxels, Rgl::Sampler3D);
    p_gl->Enable(RGL_TEXTURE_3D);
    p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE);
    p_gl->PushMatrix();
    p_gl->Translate(CellCenter(VoxelColumn, UnitRow));
    p_gl->Rotate(Angle::FromDegrees(30), {0, 0, 1});
    p_gl->Translate({-0.5, -0.5, -0.5});
    _geometry->Voxel(p_gl);
    p_gl->PopMatrix();
  }

  static void DrawLabels(Canvas& p_canvas, const View& p_view) {
    DrawTitle(p_canvas, "Shapes", "What draws itself: unit shapes, solids, boxes, panels and layers");
    const TextRenderer::Style heading{GalleryTheme::TextSize, GalleryTheme::Title, true};
    const auto row = [&](const char* p_name, const char* p_line, double p_y) {
      p_canvas.Text(p_name, {48, p_y + 13}, {0, 0.5}, heading);
      p_canvas.Text(p_line, {48, p_y - 15}, {0, 0.5}, {GalleryTheme::SmallSize, GalleryTheme::Text, false});
    };
    row("Geometry", "unit shapes", UnitRow);
    row("Solids", "filled", FilledRow);
    row("Solids", "outlined", OutlinedRow);
    const auto label = [&](const char* p_name, std::size_t p_column, double p_y) {
      p_canvas.TextAt(p_name, p_view, CellCenter(p_column, p_y), {0, -84}, {0.5, 0.5},
                      {GalleryTheme::SmallSize, GalleryTheme::Text, false});
    };
    std::size_t column = 0;
    for (const Solid& solid : UnitShapes)
      label(solid.name, column++, UnitRow);
    label("Voxel", VoxelColumn, UnitRow);
    label(UnitRing.name, RingColumn, UnitRow);
    column = 0;
    for (const Solid& solid : Drawables)
      label(solid.name, column++, FilledRow);
    const auto note = [&](const char* p_text, double p_y) {
      const Point place = CellCenter(RingColumn, p_y);
      p_canvas.TextAt(p_text, p_view, place, {0, 0}, {0.5, 0.5}, {16, GalleryTheme::Faint, false});
    };
    note("empty on purpose", UnitRow);
    note("always filled", OutlinedRow);
    for (const auto& [name, x] : {std::pair("Boxes", 48.0), {"Nine-patch panels", 500}, {"Layers", 1110}})
      p_canvas.Text(name, {x, 282}, {0, 0.5}, heading);
    p_canvas.Text("environment of the upper one:", {1196, 282}, {0, 0.5}, {16, GalleryTheme::Faint, false});
  }

  /// A rectangle in window pixels.
  static Types::Viewport<0> Pixels(const Canvas& p_canvas, const Rect& p_rect) {
    const double point = p_canvas.PointSize();
    return {static_cast<float>(std::round(p_rect.left * point)), static_cast<float>(std::round(p_rect.bottom * point)),
            static_cast<float>(std::round((p_rect.right - p_rect.left) * point)),
            static_cast<float>(std::round((p_rect.top - p_rect.bottom) * point))};
  }

  static void DrawBoxes(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas) {
    const TextRenderer::Style small{16, GalleryTheme::Text, false};
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 2 * p_canvas.PointSize())));
    Library::Box box;
    box.rect = Pixels(p_canvas, {50, 116, 160, 252});
    box.fillColor = ColumnColor(1).darker(160);
    box.lineColor = ColumnColor(1).lighter(140);
    box(p_gl.Handle());
    p_canvas.Text("Box", {105, 88}, {0.5, 0.5}, small);

    Library::FilledBox filled;
    filled.inner = Pixels(p_canvas, {212, 142, 278, 226});
    filled.outer = Pixels(p_canvas, {190, 116, 300, 252});
    filled.fillColor = ColumnColor(3).darker(160);
    filled.lineColor = ColumnColor(3).lighter(130);
    filled(p_gl.Handle());
    p_canvas.Text("FilledBox, inner", {245, 88}, {0.5, 0.5}, small);

    filled.mode = Library::FilledBox::FillFrame;
    filled.inner = Pixels(p_canvas, {354, 142, 420, 226});
    filled.outer = Pixels(p_canvas, {332, 116, 442, 252});
    filled(p_gl.Handle());
    p_canvas.Text("FilledBox, frame", {387, 88}, {0.5, 0.5}, small);
  }

  void DrawPanels(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas) {
    constexpr double Border = 20;
    const int border = std::max(1, static_cast<int>(std::lround(Border * p_canvas.PointSize())));
    if (!_panel || _panel->Width() != 3 * border) // corners keep their size in texels
      _panel = boost::make_shared<Library::Texture>(PanelImage(border), p_gl);
    const struct {
      Rect rect;
      bool patched;
      const char* text;
    } panels[] = {{{500, 116, 548, 164}, true, ""},
                  {{500, 180, 588, 252}, true, "88 × 72"},
                  {{604, 116, 734, 252}, true, "130 × 136"},
                  {{750, 196, 1060, 252}, true, "310 × 56"},
                  {{750, 116, 1060, 180}, false, "border 0: stretched whole"}};
    for (const auto& panel : panels) {
      Library::TexturedQuad quad;
      quad.rect = Pixels(p_canvas, panel.rect);
      quad.border = panel.patched ? static_cast<std::uint32_t>(border) : 0;
      quad(p_gl.Handle(), *_panel);
      p_canvas.Text(panel.text, {(panel.rect.left + panel.rect.right) / 2, (panel.rect.bottom + panel.rect.top) / 2},
                    {0.5, 0.5}, {15, GalleryTheme::Title, false});
    }
    p_canvas.Text("Corners keep their size, edges stretch; the smallest, 48 × 48, is nearly all corners", {500, 88},
                  {0, 0.5}, {14, GalleryTheme::Faint, false});
  }

  void DrawLayers(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas) const {
    const TextRenderer::Style small{16, GalleryTheme::Text, false};
    constexpr const char* Names[] = {"2: off", "1: alpha", "0: multiply"};
    for (std::size_t i = 0; i < _layers.size(); ++i) {
      const double left = 1110 + 150 * static_cast<double>(i);
      const auto state = p_gl->PushAttribScope(RGL_COLOR_BUFFER_BIT); // the layers leave their blend function
      Library::TexturedQuad quad;
      quad.rect = Pixels(p_canvas, {left, 116, left + 136, 252});
      quad(p_gl.Handle(), {_ground, _layers[i]});
      p_canvas.Text(Names[i], {left + 68, 88}, {0.5, 0.5}, small);
    }
  }

  std::optional<Geometry> _geometry;
  boost::shared_ptr<Ogl::Texture> _voxels;
  boost::shared_ptr<Library::Texture> _panel;
  boost::shared_ptr<Library::Texture> _ground;
  std::vector<boost::shared_ptr<Library::Texture>> _layers;
};

} // namespace

std::unique_ptr<Picture> LoadShapes(const Inputs&, Loading&) {
  return std::make_unique<ShapesPicture>();
}

} // namespace Vek::Chart::Gallery
