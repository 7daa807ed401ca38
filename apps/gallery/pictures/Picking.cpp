// Picking by depth. A Picker draws the models once with their depths as colours, and finds the position of the surface
// under a pixel. The panels show all decoded depths and the depth buffer of the same drawing.

#include "apps/gallery/PictureFunctions.h"
#include "apps/gallery/Sheet.h"

#include "scene/ColorBar.h"
#include "scene/DepthShader.h"
#include "scene/DirectionalLight.h"
#include "scene/Picker.h"

#include "library/DepthCodec.h"
#include "library/RenderTexture.h"
#include "library/VectorSymbol.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

namespace Vek::Chart::Gallery {

namespace {

using Library::RenderTexture;
using Point = Types::Vector3_Base<double>;
using Rect = Sheet::Rect;

/// A glyph's mesh: scaled, rotated about z, and moved to its position.
struct Item {
  Model::Symbol::Shape shape;
  Point position;
  Point scale;
  double turn; ///< degrees
  QColor color;
};

const QColor Gold(0xE3B04B);
const QColor Teal(0x3FA7A0);
const QColor Coral(0xE0705A);
const QColor Violet(0x9A7BD0);
const QColor Blue(0x5B8FD9);
const QColor Stone(0x8B93A0);

const std::vector<Item>& Items() {
  using namespace Model::Symbol;
  static const std::vector<Item> Items = {
      {ShapeCube, {0, 0, -0.1}, {12, 9, 0.2}, 0, Stone},
      {ShapeSphere, {-3.2, 1.4, 1.3}, {2.6, 2.6, 2.6}, 0, Gold},
      {ShapeCube, {0.6, 2.4, 1.1}, {2.2, 2.2, 2.2}, 28, Teal},
      {ShapeArrowHead3D, {3.7, 0.9, 0}, {4.4, 4.4, 3.4}, 0, Coral},
      {ShapeArrow3D, {-0.6, -0.6, 0}, {2.2, 2.2, 0.95}, 0, Blue},
      {ShapeCircularArrow3D, {1.9, -2.2, 0.6}, {2.6, 2.6, 1.2}, 40, Violet},
      {ShapeCube, {-3.4, -2.3, 0.5}, {1, 1, 1}, 15, Coral},
      {ShapeCube, {-3.3, -2.25, 1.4}, {0.8, 0.8, 0.8}, 50, Gold},
      {ShapeSphere, {-1.6, -2.7, 0.45}, {0.9, 0.9, 0.9}, 0, Teal},
      {ShapeSphere, {4.6, -2.6, 0.6}, {1.2, 1.2, 1.2}, 0, Gold},
  };
  return Items;
}

/// A point whose pixel is picked; the last one lies beside all surfaces.
struct Target {
  const char* name;
  Point point;
};
constexpr Target Targets[] = {{"sphere", {-3.2, 1.4, 1.9}},       {"cube", {0.6, 2.4, 2.2}},
                              {"cone", {3.7, 0.9, 1.4}},          {"arrow", {-0.6, -0.6, 2.4}},
                              {"small cube", {-3.3, -2.25, 1.5}}, {"small sphere", {4.6, -2.6, 0.7}},
                              {"beside them", {5.4, 3.5, 4.2}}};

constexpr Rect MainPart{0, 30, 1090, 870};
constexpr double PanelWidth = 460, PanelHeight = PanelWidth * 840 / 1090;
constexpr Rect DecodedPart{1092, 926 - PanelHeight, 1092 + PanelWidth, 926};
constexpr Rect TruePart{1092, 520 - PanelHeight, 1092 + PanelWidth, 520};

class Scene3D {
public:
  Scene3D() {
    for (const Item& item : Items())
      if (_meshes.find(item.shape) == _meshes.end())
        Library::VectorSymbol(item.shape, 64).BuildShape(_meshes[item.shape]);
  }

  void Draw(Utility::Scoped<Rgl>& p_gl) const {
    for (const Item& item : Items()) {
      p_gl->PushMatrix();
      p_gl->Translate(item.position);
      p_gl->Rotate(Types::Angle::FromDegrees(item.turn), {0, 0, 1});
      p_gl->Scale(item.scale);
      p_gl->Color(item.color);
      _meshes.at(item.shape).Draw(p_gl);
      p_gl->PopMatrix();
    }
  }

private:
  std::map<Model::Symbol::Shape, Ogl::VertexData> _meshes;
};

/// Depths of a drawing in the size of a panel: as decoded from colours, and as the depth buffer has them.
struct Depths {
  Types::Size size;
  std::vector<double> decoded, truth; ///< row by row from the bottom; 1 where nothing was drawn
  double nearest = 1, farthest = 0, largestError = 0;

  Depths(Utility::Scoped<Rgl>& p_gl, const Scene3D& p_scene, const View& p_view, const Types::Size& p_size)
      : size(p_size) {
    const DepthShader shader(p_gl);
    RenderTexture target(size);
    {
      const auto bound = target.BindForDraw(p_gl);
      const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
      shader.Draw(p_gl, [&] { p_scene.Draw(p_gl); });
    }
    const QImage packed = target.ToImage(p_gl).convertToFormat(QImage::Format_RGBA8888);
    const std::vector<float> buffer = target.ReadDepths(p_gl);
    for (int y = 0; y < packed.height(); ++y)
      for (int x = 0; x < packed.width(); ++x) {
        const uchar* const pixel = packed.constScanLine(packed.height() - 1 - y) + 4 * x;
        decoded.push_back(static_cast<double>(Library::DepthCodec::Decode({{pixel[0], pixel[1], pixel[2], pixel[3]}})));
        truth.push_back(static_cast<double>(buffer.at(truth.size())));
        largestError = std::max(largestError, std::abs(decoded.back() - truth.back()));
        if (truth.back() < 1) {
          nearest = std::min(nearest, truth.back());
          farthest = std::max(farthest, truth.back());
        }
      }
  }

  Library::ColorMap Colors() const {
    return Library::ColorMap({QColor(0xF5F5F5), QColor(0x2D2D2D)}, Library::ColorMap::Interpolated);
  }

  QImage ImageOf(const std::vector<double>& p_depths) const {
    const Library::ColorMap colors = Colors();
    QImage image(size.width, size.height, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int y = 0; y < size.height; ++y)
      for (int x = 0; x < size.width; ++x)
        if (const double depth = p_depths[std::size_t(y) * std::size_t(size.width) + std::size_t(x)]; depth < 1)
          image.setPixelColor(x, size.height - 1 - y, colors.Color((depth - nearest) / (farthest - nearest)));
    return image;
  }
};

void DrawPanel(Sheet& p_sheet, const QImage& p_image, const Rect& p_rect, const QString& p_title) {
  p_sheet.canvas.Fill(p_rect, p_sheet.theme.backgroundBottom);
  p_sheet.canvas.Image(p_rect, p_image);
  p_sheet.canvas.Frame(p_rect, 1, p_sheet.theme.line);
  p_sheet.Label(p_title, p_rect.left, p_rect.top + 18);
}

/// Which depths the greys of the panels are.
void DrawKey(Sheet& p_sheet, const Depths& p_depths) {
  ValueScale scale;
  scale.lower = p_depths.nearest;
  scale.upper = p_depths.farthest;
  ColorBar bar(p_depths.Colors(), scale);
  bar.orientation = ColorBar::Orientation::Horizontal;
  bar.title = "Depth, from 0 (near plane) to 1 (far plane)";
  bar.Layout(PanelWidth, p_sheet.theme, p_sheet.canvas.PointSize()).Draw(p_sheet.canvas, {TruePart.left, 88});
  p_sheet.Label("Largest difference: " + QString::number(p_depths.largestError * 1e6, 'f', 2) + " millionths",
                TruePart.left, 32);
}

QString Coordinates(const Point& p_point) {
  QString text;
  for (const double part : {p_point.x, p_point.y, p_point.z})
    text += (text.isEmpty() ? "" : ", ") + QString::number(part, 'f', 2).replace('-', QChar(0x2212));
  return text;
}

/// Picks all targets, marks their pixels, and lists the positions found there.
void DrawPicks(Sheet& p_sheet, const Scene3D& p_scene, const View& p_view) {
  Picker picker;
  const Core::TimeStamp stamp; // all picks share one drawing
  int number = 0;
  p_sheet.Heading("Picked positions", 48, 836);
  for (const Target& target : Targets) {
    const Camera::Pixel pixel = p_view.Project(target.point);
    const auto hit = picker.PickSurface(p_sheet.Gl(), p_view.camera, p_view.viewport,
                                        {int(std::floor(pixel.x)), int(std::floor(pixel.y))}, stamp,
                                        [&](Utility::Scoped<Rgl>& p_gl, const PickPass&) { p_scene.Draw(p_gl); });
    const Canvas::Position at = p_sheet.canvas.PositionOf(pixel);
    const QColor dark(10, 14, 20, 230);
    for (const auto& [width, length, color] : {std::tuple(5.0, 13.0, dark), {2.0, 11.5, QColor(Qt::white)}}) {
      p_sheet.canvas.Line({at.x - length, at.y}, {at.x + length, at.y}, width, color);
      p_sheet.canvas.Line({at.x, at.y - length}, {at.x, at.y + length}, width, color);
    }
    const QString name = QString::number(++number);
    TextStyle style = p_sheet.theme.WithHalo(p_sheet.theme.SmallStyle());
    style.color = p_sheet.theme.title;
    style.bold = true;
    p_sheet.canvas.Text(name, {at.x + 8, at.y + 16}, {0, 0.5}, style);
    const double y = 836 - 28.0 * number;
    p_sheet.Label(name + "  " + target.name, 48, y);
    p_sheet.Label(hit ? Coordinates(hit->position) : QString("nothing"), 212, y);
  }
}

} // namespace

QImage PickingImage(const Inputs&, Types::Size p_size) {
  return DrawSheet("Picking", "Positions of surfaces under seven pixels, from the depths of one drawing", p_size,
                   [](Sheet& p_sheet) {
                     const Scene3D scene;
                     Camera camera;
                     camera.target = {0, 0, 0.75};
                     camera.azimuth = 24;
                     camera.elevation = 30;
                     camera.fieldOfView = 22;
                     camera.distance = 31;
                     camera.radius = 8.5;
                     p_sheet.Draw(camera, MainPart, [&](const View&) {
                       const auto light = DirectionalLight().Apply(p_sheet.Gl());
                       p_sheet.Gl()->Enable(RGL_COLOR_MATERIAL);
                       scene.Draw(p_sheet.Gl());
                     });
                     const View view{camera, p_sheet.canvas.Part(MainPart)};
                     const double point = p_sheet.canvas.PointSize();
                     const Depths depths(p_sheet.Gl(), scene, view,
                                         {std::max(1, int(PanelWidth * point)), std::max(1, int(PanelHeight * point))});
                     DrawPanel(p_sheet, depths.ImageOf(depths.decoded), DecodedPart, "Depths decoded from colours");
                     DrawPanel(p_sheet, depths.ImageOf(depths.truth), TruePart, "The depth buffer");
                     DrawKey(p_sheet, depths);
                     DrawPicks(p_sheet, scene, view);
                   });
}

} // namespace Vek::Chart::Gallery
