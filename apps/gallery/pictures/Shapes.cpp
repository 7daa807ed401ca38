// Everything of the library that draws itself: unit shapes from display lists, solids with fields of their own, boxes
// in window pixels, nine-patch panels and quads with layers of textures.

#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/Sheet.h"

#include "scene/DirectionalLight.h"

#include "library/Arrow3D.h"
#include "library/Box.h"
#include "library/Cuboid.h"
#include "library/Cylinder.h"
#include "library/Disk.h"
#include "library/FilledBox.h"
#include "library/Geometry.h"
#include "library/NamedColors.h"
#include "library/Ring.h"
#include "library/Sphere.h"
#include "library/TexturedQuad.h"

#include <boost/make_shared.hpp>

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Library::Geometry;
using Types::Angle;
using Point = Types::Vector3_Base<double>;
using Rect = Sheet::Rect;

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
constexpr std::size_t RingColumn = VoxelColumn + 1;
constexpr double UnitsAPoint = 0.01;
constexpr double Elevation = 18;

/// The middle of the cell of a column, where the wall that faces south shows the height `p_y` in points.
Point CellCenter(std::size_t p_column, double p_y) {
  const double upright = std::cos(Angle::FromDegrees(Elevation).Radians());
  return {(306 + 163 * static_cast<double>(p_column) - 800) * UnitsAPoint, 0, (p_y - 500) * UnitsAPoint / upright};
}
constexpr double UnitRow = 768; ///< the rows' heights
constexpr double FilledRow = 590;
constexpr double OutlinedRow = 412;

QColor ColumnColor(std::size_t p_column) {
  static const std::vector<QColor> Colors = Library::NamedColors::Colors("plasma", 256, 0.38, 0.95);
  return Colors[p_column * (Colors.size() - 1) / 7];
}

/// A 3-D texture whose voxels have their coordinates as colours; empty where GL makes no texture, which is reported.
boost::shared_ptr<Ogl::Texture> VoxelTexture(Utility::Scoped<Rgl>& p_gl) {
  constexpr std::size_t Side = 5;
  std::array<std::array<unsigned char, 4>, Side * Side * Side> texels{};
  const auto level = [](std::size_t p_index) { return static_cast<unsigned char>(60 + p_index * 190 / (Side - 1)); };
  for (std::size_t i = 0; i < texels.size(); ++i)
    texels[i] = {level(i % Side), level(i / Side % Side), level(i / Side / Side), 255};
  const boost::shared_ptr<Ogl::Texture> texture = p_gl->GenTexture();
  if (!texture) // reported; the texels would go into the host's texture
    return {};
  const auto state = p_gl->PushAttribScope(RGL_TEXTURE_BIT);
  p_gl->Bind(texture, Rgl::Sampler3D);
  p_gl->TexImage3D(RGL_TEXTURE_3D, 0, RGL_RGBA8, Side, Side, Side, 0, RGL_RGBA, RGL_UNSIGNED_BYTE, texels.data());
  for (const Ogl::GlEnum filter : {RGL_TEXTURE_MIN_FILTER, RGL_TEXTURE_MAG_FILTER})
    p_gl->TexParameteri(RGL_TEXTURE_3D, filter, RGL_NEAREST);
  for (const Ogl::GlEnum wrap : {RGL_TEXTURE_WRAP_S, RGL_TEXTURE_WRAP_T, RGL_TEXTURE_WRAP_R})
    p_gl->TexParameteri(RGL_TEXTURE_3D, wrap, RGL_CLAMP_TO_EDGE);
  return texture;
}

/// A rounded panel with a dot in each corner, of three by three borders.
QImage PanelImage(int p_border) {
  QImage image(3 * p_border, 3 * p_border, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const double line = p_border / 10.0;
  const QRectF frame = QRectF(image.rect()).adjusted(line, line, -line, -line);
  QLinearGradient shade(frame.topLeft(), frame.bottomLeft());
  shade.setColorAt(0, QColor(0x3D5A78));
  shade.setColorAt(1, QColor(0x22344A));
  painter.setBrush(shade);
  painter.setPen(QPen(QColor(0x8FB4D8), line));
  painter.drawRoundedRect(frame, 0.7 * p_border, 0.7 * p_border);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0xF6B44B));
  for (const double x : {0.6, 2.4})
    for (const double y : {0.6, 2.4})
      painter.drawEllipse(QPointF(x * p_border, y * p_border), 0.12 * p_border, 0.12 * p_border);
  painter.end();
  return image.convertToFormat(QImage::Format_ARGB32);
}

/// A lower layer: a gradient with stripes.
QImage GroundImage() {
  QImage image(256, 256, QImage::Format_ARGB32);
  const std::vector<QColor> colors = Library::NamedColors::Colors("viridis", 256, 0.1, 0.95);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const QColor color = colors[static_cast<std::size_t>(x) * (colors.size() - 1) / 255];
      image.setPixelColor(x, y, (x + y) / 32 % 2 == 0 ? color : color.darker(140));
    }
  return image;
}

/// An upper layer: an opaque disk on transparent light grey.
QImage DiskImage() {
  QImage image(256, 256, QImage::Format_ARGB32);
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const double inside = std::min(1.0, std::max(0.0, 84 - std::hypot(x - 127.5, y - 127.5)));
      const auto mix = [&](int p_disk) { return static_cast<int>(210 + (p_disk - 210) * inside); };
      image.setPixelColor(x, y, QColor(mix(240), mix(110), mix(70), static_cast<int>(255 * inside)));
    }
  return image;
}

void DrawSolid(Utility::Scoped<Rgl>& p_gl, const Geometry& p_geometry, const Solid& p_solid, std::size_t p_column,
               double p_y, bool p_filled) {
  p_gl->PushMatrix();
  p_gl->Translate(CellCenter(p_column, p_y));
  p_gl->Rotate(Angle::FromDegrees(p_solid.lean), {1, 0, 0});
  p_gl->Rotate(Angle::FromDegrees(30), {0, 0, 1});
  p_gl->Color(ColumnColor(p_column));
  p_solid.draw(p_gl, p_geometry, p_filled);
  p_gl->PopMatrix();
}

void DrawSolids(Utility::Scoped<Rgl>& p_gl, const Geometry& p_geometry) {
  DirectionalLight bright;
  bright.ambient = 0.5;
  const auto light = bright.Apply(p_gl);
  p_gl->Enable(RGL_COLOR_MATERIAL);
  std::size_t column = 0;
  for (const Solid& solid : UnitShapes)
    DrawSolid(p_gl, p_geometry, solid, column++, UnitRow, true);
  column = 0;
  for (const Solid& solid : Drawables) {
    DrawSolid(p_gl, p_geometry, solid, column, FilledRow, true);
    DrawSolid(p_gl, p_geometry, solid, column++, OutlinedRow, false);
  }
}

/// The voxel has texture coordinates and no normals.
void DrawVoxel(Utility::Scoped<Rgl>& p_gl, const Geometry& p_geometry) {
  p_gl->Enable(RGL_DEPTH_TEST);
  const boost::shared_ptr<Ogl::Texture> voxels = VoxelTexture(p_gl);
  p_gl->Bind(voxels, Rgl::Sampler3D);
  p_gl->Enable(RGL_TEXTURE_3D);
  p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_REPLACE);
  p_gl->PushMatrix();
  p_gl->Translate(CellCenter(VoxelColumn, UnitRow));
  p_gl->Rotate(Angle::FromDegrees(30), {0, 0, 1});
  p_gl->Translate({-0.5, -0.5, -0.5});
  p_geometry.Voxel(p_gl);
  p_gl->PopMatrix();
}

Camera WallCamera() {
  Camera camera;
  camera.elevation = Elevation;
  camera.projection = Camera::Projection::Parallel;
  // A thousand points are the height of the view.
  camera.distance = 500 * UnitsAPoint / std::tan(Angle::FromDegrees(camera.fieldOfView / 2).Radians());
  camera.radius = camera.distance;
  return camera;
}

void DrawLabels(Sheet& p_sheet, const View& p_view) {
  const auto row = [&](const char* p_name, const char* p_line, double p_y) {
    p_sheet.Heading(p_name, 48, p_y + 13);
    p_sheet.Label(p_line, 48, p_y - 15);
  };
  row("Geometry", "unit shapes", UnitRow);
  row("Solids", "filled", FilledRow);
  row("Solids", "outlined", OutlinedRow);
  const TextStyle style = p_sheet.theme.SmallStyle();
  const auto label = [&](const char* p_name, std::size_t p_column, double p_y) {
    p_sheet.canvas.TextAt(p_name, p_view, CellCenter(p_column, p_y), {0, -84}, {0.5, 0.5}, style);
  };
  std::size_t column = 0;
  for (const Solid& solid : UnitShapes)
    label(solid.name, column++, UnitRow);
  label("Voxel", VoxelColumn, UnitRow);
  column = 0;
  for (const Solid& solid : Drawables)
    label(solid.name, column++, FilledRow);
  p_sheet.canvas.TextAt("always filled", p_view, CellCenter(RingColumn, OutlinedRow), {0, 0}, {0.5, 0.5}, style);
  for (const auto& [name, x] : {std::pair("Boxes", 48.0), {"Nine-patch panels", 500}, {"Layers", 1110}})
    p_sheet.Heading(name, x, 272);
  p_sheet.Remark("by the environment of the upper one", 1202, 272);
}

/// A rectangle in window pixels.
Types::Viewport<0> Pixels(const Canvas& p_canvas, const Rect& p_rect) {
  const double point = p_canvas.PointSize();
  return {static_cast<float>(std::round(p_rect.left * point)), static_cast<float>(std::round(p_rect.bottom * point)),
          static_cast<float>(std::round((p_rect.right - p_rect.left) * point)),
          static_cast<float>(std::round((p_rect.top - p_rect.bottom) * point))};
}

constexpr double LabelRow = 70;

void DrawBoxes(Sheet& p_sheet) {
  const auto lines = p_sheet.Gl()->PushAttribScope(RGL_LINE_BIT);
  p_sheet.Gl()->LineWidth(static_cast<float>(std::max(1.0, 2 * p_sheet.canvas.PointSize())));
  Library::Box box;
  box.rect = Pixels(p_sheet.canvas, {50, 100, 160, 240});
  box.fillColor = ColumnColor(1).darker(160);
  box.lineColor = ColumnColor(1).lighter(140);
  box(p_sheet.Gl().Handle());
  p_sheet.Label("Box", 105, LabelRow, {0.5, 0.5});

  Library::FilledBox filled;
  filled.inner = Pixels(p_sheet.canvas, {212, 126, 278, 214});
  filled.outer = Pixels(p_sheet.canvas, {190, 100, 300, 240});
  filled.fillColor = ColumnColor(3).darker(160);
  filled.lineColor = ColumnColor(3).lighter(130);
  filled(p_sheet.Gl().Handle());
  p_sheet.Label("FilledBox, inner", 245, LabelRow, {0.5, 0.5});

  filled.mode = Library::FilledBox::FillFrame;
  filled.inner = Pixels(p_sheet.canvas, {364, 126, 430, 214});
  filled.outer = Pixels(p_sheet.canvas, {342, 100, 452, 240});
  filled(p_sheet.Gl().Handle());
  p_sheet.Label("frame", 397, LabelRow, {0.5, 0.5});
}

void DrawPanels(Sheet& p_sheet) {
  constexpr double Border = 20;
  const int border = std::max(1, static_cast<int>(std::lround(Border * p_sheet.canvas.PointSize())));
  const Library::Texture panel(PanelImage(border), p_sheet.Gl());
  const struct {
    Rect rect;
    bool patched;
    const char* text;
  } panels[] = {{{500, 100, 548, 148}, true, ""},
                {{500, 164, 588, 240}, true, "88 × 76"},
                {{604, 100, 734, 240}, true, "130 × 140"},
                {{750, 184, 1060, 240}, true, "310 × 56"},
                {{750, 100, 1060, 168}, false, "border 0: all of it stretched"}};
  for (const auto& [rect, patched, text] : panels) {
    Library::TexturedQuad quad;
    quad.rect = Pixels(p_sheet.canvas, rect);
    quad.border = patched ? static_cast<std::uint32_t>(border) : 0;
    quad(p_sheet.Gl().Handle(), panel);
    p_sheet.Label(text, (rect.left + rect.right) / 2, (rect.bottom + rect.top) / 2, {0.5, 0.5});
  }
  p_sheet.Label("Corners keep their size, edges and middle stretch", 500, LabelRow);
}

void DrawLayers(Sheet& p_sheet) {
  const auto ground = boost::make_shared<Library::Texture>(GroundImage(), p_sheet.Gl());
  const std::pair<std::uint32_t, const char*> layers[] = {{Library::Texture::Replace, "2: off"},
                                                          {Library::Texture::Decal, "1: alpha"},
                                                          {Library::Texture::Modulate, "0: multiply"}};
  double left = 1110;
  for (const auto& [environment, name] : layers) {
    const auto disk = boost::make_shared<Library::Texture>(DiskImage(), p_sheet.Gl());
    disk->environment = environment;
    const auto state = p_sheet.Gl()->PushAttribScope(RGL_COLOR_BUFFER_BIT); // the layers leave their blend function
    Library::TexturedQuad quad;
    quad.rect = Pixels(p_sheet.canvas, {left, 100, left + 140, 240});
    quad(p_sheet.Gl().Handle(), {ground, disk});
    p_sheet.Label(name, left + 70, LabelRow, {0.5, 0.5});
    left += 152;
  }
}

} // namespace

QImage ShapesImage(const Inputs&, Types::Size p_size) {
  return DrawSheet("Shapes", "Drawables of the library: unit shapes, solids, boxes, panels and layers", p_size,
                   [](Sheet& p_sheet) {
                     const Rect whole{0, 0, p_sheet.canvas.Width(), p_sheet.canvas.Height()};
                     p_sheet.Draw(WallCamera(), whole, [&](const View&) {
                       const Geometry geometry(p_sheet.Gl().Handle());
                       p_sheet.Gl()->LineWidth(static_cast<float>(std::max(1.0, 1.2 * p_sheet.canvas.PointSize())));
                       DrawSolids(p_sheet.Gl(), geometry);
                       DrawVoxel(p_sheet.Gl(), geometry);
                     });
                     DrawLabels(p_sheet, {WallCamera(), p_sheet.viewport});
                     DrawBoxes(p_sheet);
                     DrawPanels(p_sheet);
                     DrawLayers(p_sheet);
                   });
}

} // namespace Vek::Chart::Gallery
