// Picking by depth. A Picker draws the picture once with its depths as colours, and finds the position of the surface
// under a pixel. The panels show all decoded depths and the depth buffer of the same drawing.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/DepthImages.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/SpacePicture.h"
#include "scene/Canvas.h"
#include "scene/DepthShader.h"
#include "scene/DirectionalLight.h"
#include "scene/Picker.h"

#include "library/RenderTexture.h"
#include "library/Texture.h"
#include "library/VectorSymbol.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::RenderTexture;
using Library::VectorSymbol;
using Point = Types::Vector3_Base<double>;

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

/// The positions to pick, as the image shows them; the last one lies beside all surfaces.
constexpr std::array<Point, 7> Targets = {{{-3.2, 1.4, 1.9},
                                           {0.6, 2.4, 2.2},
                                           {3.7, 0.9, 1.4},
                                           {-0.6, -0.6, 2.4},
                                           {-3.3, -2.25, 1.5},
                                           {4.6, -2.6, 0.7},
                                           {5.4, 3.5, 4.2}}};

class PickingPicture : public SpacePicture {
public:
  PickingPicture() {
    for (const Item& item : Items())
      if (_meshes.find(item.shape) == _meshes.end())
        VectorSymbol(item.shape, 64).BuildShape(_meshes[item.shape]);
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, 0, 0.75};
    camera.azimuth = 24;
    camera.elevation = 30;
    camera.fieldOfView = 23;
    camera.distance = 31;
    camera.radius = 8.5;
    return camera;
  }

  Types::Viewport<0> SurfaceViewport(const View& p_view) const override { return PartOf(p_view, MainPart); }

protected:
  void Prepare(Utility::Scoped<Rgl>& p_gl) override { _shader.emplace(p_gl); }

  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    const auto state = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT);
    {
      const auto light = DirectionalLight().Apply(p_gl);
      p_gl->Enable(RGL_COLOR_MATERIAL);
      DrawDepths(p_gl);
    }
    if (_shown && _shown->camera == p_world.camera && _shown->viewport == p_world.viewport)
      return;
    _picks = PickAll(p_gl, p_world);
    ReadAll(p_gl, p_world);
    _shown = p_world;
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override {
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

  void DrawLegends(Utility::Scoped<Rgl>& p_gl, const View& p_view, Canvas& p_canvas) override {
    DrawTitle(p_canvas, "Picking", "World positions from depth");
    DrawPanel(p_gl, p_canvas, _decoded, DecodedPart, "Depths unpacked from the colours of the image");
    DrawPanel(p_gl, p_canvas, _truth, TruePart, "The true depth buffer");
    p_canvas.Text("Largest difference: " + QString::number(_largestError * 1e6, 'f', 2) + " millionths",
                  {TruePart.left, TruePart.bottom - 18}, {0, 1}, {GalleryTheme::SmallSize, GalleryTheme::Title, false});
    p_canvas.Text("Depths run from 0, nearest, to 1, farthest.", {TruePart.left, TruePart.bottom - 44}, {0, 1},
                  {GalleryTheme::SmallSize, GalleryTheme::Faint, false});
    for (const Pick& pick : _picks)
      DrawPick(p_canvas, p_view, pick);
  }

private:
  /// A picked pixel and the position found there.
  struct Pick {
    Camera::Pixel pixel;
    std::optional<Picker::Hit> hit;
  };

  static bool Contains(const Types::Viewport<0>& p_viewport, const Types::Pos& p_pixel) {
    const int x = p_pixel.x - static_cast<int>(p_viewport.x), y = p_pixel.y - static_cast<int>(p_viewport.y);
    return x >= 0 && y >= 0 && x < static_cast<int>(p_viewport.width) && y < static_cast<int>(p_viewport.height);
  }

  static constexpr Canvas::Rect MainPart{0, 30, 1090, 930};
  static constexpr Canvas::Rect DecodedPart{1112, 545, 1552, 545 + 440 * 900.0 / 1090};
  static constexpr Canvas::Rect TruePart{1112, 115, 1552, 115 + 440 * 900.0 / 1090};

  std::vector<Pick> PickAll(Utility::Scoped<Rgl>& p_gl, const View& p_picture) {
    const Core::TimeStamp stamp; // of the current view: all picks share one drawing
    std::vector<Pick> picks;
    for (const Point& target : Targets) {
      Pick pick;
      pick.pixel = p_picture.Project(target);
      const Types::Pos pixel(static_cast<int>(std::floor(pick.pixel.x)), static_cast<int>(std::floor(pick.pixel.y)));
      if (!pick.pixel.visible || !Contains(p_picture.viewport, pixel))
        continue;
      pick.hit = _picker.PickSurface(p_gl, p_picture.camera, p_picture.viewport, pixel, stamp,
                                     [this](Utility::Scoped<Rgl>& p_scope, const PickPass&) { DrawDepths(p_scope); });
      picks.push_back(pick);
    }
    return picks;
  }

  /// Draws once more in the size of a panel, for the decoded colours and the depth buffer.
  void ReadAll(Utility::Scoped<Rgl>& p_gl, const View& p_picture) {
    // The panels have the aspect ratio of the main part.
    const double scale = (DecodedPart.right - DecodedPart.left) / (MainPart.right - MainPart.left);
    const Types::Size size(static_cast<int>(static_cast<double>(p_picture.viewport.width) * scale),
                           static_cast<int>(static_cast<double>(p_picture.viewport.height) * scale));
    _decoded.reset();
    _truth.reset();
    if (size.width < 1 || size.height < 1)
      return;
    if (!_target || _target->Size() != size)
      _target.emplace(size);
    {
      const auto bound = _target->BindForDraw(p_gl);
      _shader->Draw(p_gl, [&] { DrawSurfaces(p_gl, p_picture); });
    }
    const DepthImages images(_target->ToImage(p_gl), _target->ReadDepths(p_gl));
    _decoded.emplace(images.decoded, p_gl);
    _truth.emplace(images.truth, p_gl);
    _largestError = images.largestError;
  }

  static void DrawPanel(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas, const std::optional<Library::Texture>& p_image,
                        const Canvas::Rect& p_rect, const QString& p_title) {
    p_canvas.Fill(p_rect, GalleryTheme::BackgroundBottom);
    const double point = p_canvas.PointSize();
    if (p_image) {
      const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT);
      (*p_image)(p_gl, RGL_TEXTURE0);
      p_gl->Begin(RGL_QUADS);
      for (const auto& [s, t] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
        p_gl->TexCoord(s, t);
        p_gl->Vertex((s == 0 ? p_rect.left : p_rect.right) * point, (t == 0 ? p_rect.bottom : p_rect.top) * point, 0.0);
      }
      p_gl->End();
    }
    DrawEdge(p_canvas, p_rect);
    p_canvas.Text(p_title, {p_rect.left, p_rect.top + 8}, {0, 0}, {GalleryTheme::SmallSize, GalleryTheme::Text, false});
  }

  static void DrawPick(Canvas& p_canvas, const View& p_view, const Pick& p_pick) {
    const double x = (p_pick.pixel.x - static_cast<double>(p_view.viewport.x)) / PointSize(p_view);
    const double y = (p_pick.pixel.y - static_cast<double>(p_view.viewport.y)) / PointSize(p_view);
    const QColor dark(10, 14, 20, 230);
    for (const auto& [width, length, color] : {std::tuple(5.0, 15.0, dark), {2.0, 13.5, QColor(Qt::white)}}) {
      p_canvas.Line({x - length, y}, {x + length, y}, width, color);
      p_canvas.Line({x, y - length}, {x, y + length}, width, color);
    }
    const auto number = [](double p_value) { return QString::number(p_value, 'f', 2).replace('-', QChar(0x2212)); };
    const QString text = p_pick.hit ? number(p_pick.hit->position.x) + ", " + number(p_pick.hit->position.y) + ", " +
                                          number(p_pick.hit->position.z)
                                    : QString("nothing here");
    const bool nearPanels = x > MainPart.right - 200;
    const double textX = nearPanels ? x : x + 12;
    const double textY = nearPanels ? y + 58 : y + 18;
    const TextRenderer::Anchor anchor{nearPanels ? 0.5 : 0.0, 0.5};
    for (const auto& [dx, dy] : {std::pair(-1.5, 0.0), {1.5, 0.0}, {0.0, -1.5}, {0.0, 1.5}})
      p_canvas.Text(text, {textX + dx, textY + dy}, anchor, {GalleryTheme::SmallSize, dark, true});
    p_canvas.Text(text, {textX, textY}, anchor, {GalleryTheme::SmallSize, GalleryTheme::Title, true});
  }

  std::map<Model::Symbol::Shape, Ogl::VertexData> _meshes;
  std::optional<DepthShader> _shader;
  // Of the last view shown.
  std::optional<View> _shown;
  std::vector<Pick> _picks;
  std::optional<RenderTexture> _target;
  std::optional<Library::Texture> _decoded;
  std::optional<Library::Texture> _truth;
  double _largestError = 0;
  Picker _picker;
};

} // namespace

std::unique_ptr<Picture> LoadPicking(const Inputs&, Loading&) {
  return std::make_unique<PickingPicture>();
}

} // namespace Vek::Chart::Gallery
