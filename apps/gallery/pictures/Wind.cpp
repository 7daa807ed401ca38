// The wind of the world: one lit arrow for each of many places, above the relief of land and sea floor. Shows how
// glyphs of VectorSymbol are oriented as one layer and coloured by a ColorMap that is bound as a texture.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/FlowLines.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Glyphs.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/SpacePicture.h"
#include "apps/gallery/WindMap.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"
#include "scene/GpuMesh.h"

#include "library/VectorSymbol.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::VectorSymbol;
using Point = Types::Vector3_Base<double>;

/// The glyphs that show a direction. They are made stouter or slimmer on the way, so that weak winds are seen too.
struct Glyph {
  Model::Symbol::Shape shape;
  double stoutness;
};
constexpr Glyph Glyphs[] = {{Model::Symbol::ShapeArrow3D, 1.45},    {Model::Symbol::ShapeArrowHead3D, 0.5},
                            {Model::Symbol::ShapeCone, 0.5},        {Model::Symbol::ShapeArrow2D, 1.8},
                            {Model::Symbol::ShapeArrowHead2D, 0.7}, {Model::Symbol::ShapeArrow1D, 1.8},
                            {Model::Symbol::ShapeArrowHead1D, 0.7}};

/// Turns the glyph's axis (+z) into the wind's direction and its +y up.
Types::Matrix3 Heading(const Wind& p_wind, double p_stoutness) {
  const Point ahead = Normalize(Point(p_wind.u, p_wind.v, 0));
  const Point up(0, 0, 1);
  return Types::Matrix3::FromColumns(Cross(up, ahead) * p_stoutness, up * p_stoutness, ahead);
}

class WindPicture : public SpacePicture {
public:
  WindPicture(const Inputs& p_inputs, Loading& p_loading)
      : SpacePicture(Palettes::Inferno(0.45, 1.0))
      , _ground(p_inputs, p_loading, -80, 84)
      , _columns(static_cast<std::size_t>(48 / _ground.Zoom()) + 1)
      , _hover(_ground.Top() + 0.6) {
    BuildGlyphs(Glyphs[0]);
  }

  Camera StartCamera() const override { return _ground.StartCamera(1075); }
  std::vector<std::string> Shapes() const override { return ShapeNames(Glyphs); }
  void SetShape(std::size_t p_index) override {
    if (p_index < std::size(Glyphs))
      BuildGlyphs(Glyphs[p_index]);
  }

protected:
  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    const auto lines = p_gl->PushAttribScope(RGL_LINE_BIT);
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 3 * PointSize(p_world))));
    _ground.Draw(p_gl, p_world);
    DrawShadows(p_gl);
    p_gl->Clear(RGL_DEPTH_BUFFER_BIT); // of the shadows
    if (p_world.camera.Eye().z < _hover)
      DrawReliefDepths(p_gl); // from above, the relief hides no glyph
    DirectionalLight bright;
    bright.ambient = 0.62;
    const auto light = bright.Apply(p_gl);
    DrawColored(p_gl, Colors(), {&_glyphs});
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override {
    _ground.DrawRelief(p_gl);
    _glyphs.Draw(p_gl);
  }

  void DrawLegends(Utility::Scoped<Rgl>&, const View& p_view, Canvas& p_canvas) override {
    _ground.DrawLegends(p_canvas, p_view, Colors(), "Winds of the world", "Surface wind");
    p_canvas.TextAt(QString::number(KeySpeed(), 'g', 3) + " m/s", p_view, KeyPlace(), {0, -14}, {0.5, 1},
                    {GalleryTheme::SmallSize, GalleryTheme::Text, false});
  }

private:
  double LengthOf(double p_speed) const {
    // An arrow at half the top speed just reaches the next one.
    return p_speed / (_ground.Fastest() / 2) * MapFrame::Width / static_cast<double>(_columns);
  }

  void BuildGlyphs(const Glyph& p_glyph) {
    std::vector<Point> positions;
    std::vector<Types::Matrix3> rotations;
    std::vector<double> sizes;
    std::vector<double> values;
    const auto add = [&](const Point& p_position, const Wind& p_wind) {
      positions.push_back(p_position);
      rotations.push_back(Heading(p_wind, p_glyph.stoutness));
      sizes.push_back(LengthOf(p_wind.Speed()));
      values.push_back(p_wind.Speed() / _ground.Fastest());
    };
    for (const Wind& wind : _ground.Field().Thinned(_columns))
      if (_ground.Map().Contains(wind.lon, wind.lat))
        add(_ground.Map().Place(wind.lon, wind.lat, _hover), wind);
    add(KeyPlace(), {0, 0, KeySpeed(), 0});
    VectorSymbol::Instances instances;
    instances.count = positions.size();
    instances.positions = positions.data();
    instances.rotations = rotations.data();
    instances.sizes = sizes.data();
    instances.texCoords = values.data();
    // An anchor of a half centres the glyph.
    const unsigned int slices = _columns > 24 ? 8 : 16; // round enough for so small ones
    const VectorSymbol glyph(p_glyph.shape, slices);
    Ogl::VertexData data;
    glyph.OrientShapes(instances, 0.5, 1.0 / glyph.Length(), data);
    _glyphs = GpuMesh(data);
  }

  double KeySpeed() const { return _ground.Fastest() * 2 / 3; }
  Point KeyPlace() const { return {0.36 * MapFrame::Width, -_ground.Map().Height() / 2 - 27 * _ground.Zoom(), _hover}; }

  /// The glyphs again, flattened onto the sea level and dark: they tell that the glyphs hover.
  void DrawShadows(Utility::Scoped<Rgl>& p_gl) const {
    const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_DEPTH_BUFFER_BIT |
                                             RGL_COLOR_BUFFER_BIT | RGL_TRANSFORM_BIT);
    // With an empty depth buffer and the test "less", no pixel is darkened twice.
    p_gl->Clear(RGL_DEPTH_BUFFER_BIT);
    p_gl->Enable(RGL_DEPTH_TEST);
    p_gl->DepthFunc(RGL_LESS);
    p_gl->Enable(RGL_BLEND);
    p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
    p_gl->Color(QColor(0, 0, 0, 75));
    p_gl->PushMatrix();
    p_gl->MultMatrix({Types::Matrix3::FromColumns({1, 0, 0}, {0, 1, 0}, {0.16, -0.2, 0}), {0, 0, 0}});
    _glyphs.Draw(p_gl);
    p_gl->PopMatrix();
  }

  /// The relief hides what is behind it, though its colours stand already.
  void DrawReliefDepths(Utility::Scoped<Rgl>& p_gl) const {
    const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_COLOR_BUFFER_BIT);
    p_gl->Enable(RGL_DEPTH_TEST);
    p_gl->ColorMask(false, false, false, false);
    _ground.DrawRelief(p_gl);
  }

  WindMap _ground;
  std::size_t _columns; ///< arrows beside each other
  double _hover;        ///< z of the arrows
  GpuMesh _glyphs;
};

} // namespace

std::unique_ptr<Picture> LoadWind(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<WindPicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
