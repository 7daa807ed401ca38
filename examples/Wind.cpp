// The wind of the world: one lit arrow for each of many places, above the relief of land and sea floor. Shows how
// glyphs of VectorSymbol are oriented as one layer and coloured by a ColorMap that is bound as a texture.

#include "examples/SceneMakers.h"

#include "examples/scene/Files.h"
#include "examples/scene/HeightField.h"
#include "examples/scene/Lettering.h"
#include "examples/scene/Light.h"
#include "examples/scene/MapAxes.h"
#include "examples/scene/Overlay.h"
#include "examples/scene/Palettes.h"
#include "examples/scene/Relief.h"
#include "examples/scene/Theme.h"
#include "examples/scene/WindField.h"

#include "library/ColorMap.h"
#include "library/VectorSymbol.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

using Library::ColorMap;
using Library::VectorSymbol;
using Point = Types::Vector3_Base<double>;

MapFrame FrameOf(const WindField& p_field) {
  if (p_field.IsGlobal())
    return {-180, 180, -80, 84};
  return {p_field.lons.front(), p_field.lons.back(), p_field.lats.front(), p_field.lats.back()};
}

/// Turns the glyph's axis (+z) into the wind's direction and its +y up. The glyph is made stouter on the way, so that
/// weak winds are seen too.
Types::Matrix3 Heading(const Wind& p_wind) {
  constexpr double Stoutness = 1.45;
  const Point ahead = Normalize(Point(p_wind.u, p_wind.v, 0));
  const Point up(0, 0, 1);
  return Types::Matrix3::FromColumns(Cross(up, ahead) * Stoutness, up * Stoutness, ahead);
}

class WindScene : public Scene {
public:
  WindScene(const Inputs& p_inputs, Loading& p_loading)
      : _field(WindField::ReadFile(p_inputs.winds, p_loading.Stage(0.4)))
      , _map(FrameOf(_field))
      , _relief(HeightField::ReadFile(p_inputs.relief, p_loading.Stage(0.6)), _map, 4.5e-4)
      , _is_monthly_mean(FileName(p_inputs.winds) == "noaa_navy_winds_1987-01.csv")
      , _file(QString::fromStdString(FileName(p_inputs.winds)))
      , _fastest(std::max(1.0, std::ceil(_field.SpeedQuantile(0.995) / 5) * 5))
      , _zoom(std::max(1.0, _map.Height() / 190))
      , _columns(static_cast<std::size_t>(48 / _zoom) + 1)
      , _hover(_relief.Top() + 0.6) {
    BuildArrows();
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, -0.05 * _map.Height(), 0};
    camera.elevation = 64;
    camera.field_of_view = 14;
    camera.distance = 1075 * _zoom;
    camera.radius = 260 * _zoom;
    return camera;
  }

  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) override {
    DrawBackground(p_gl, p_view, _lettering);
    {
      const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
      DrawRelief(p_gl);
      DrawShadows(p_gl);
      DrawArrows(p_gl);
    }
    DrawLegends(p_gl, p_view);
  }

private:
  double LengthOf(double p_speed) const {
    // An arrow at half the top speed just reaches the next one.
    return p_speed / (_fastest / 2) * MapFrame::Width / static_cast<double>(_columns);
  }

  void BuildArrows() {
    std::vector<Wind> winds = _field.Thinned(_columns);
    winds.erase(std::remove_if(winds.begin(), winds.end(),
                               [this](const Wind& p_wind) { return !_map.Contains(p_wind.lon, p_wind.lat); }),
                winds.end());
    std::vector<Point> positions;
    std::vector<Types::Matrix3> rotations;
    std::vector<double> sizes;
    std::vector<double> values;
    const auto add = [&](const Point& p_position, const Wind& p_wind) {
      positions.push_back(p_position);
      rotations.push_back(Heading(p_wind));
      sizes.push_back(LengthOf(p_wind.Speed()));
      values.push_back(p_wind.Speed() / _fastest);
    };
    for (const Wind& wind : winds)
      add(_map.Place(wind.lon, wind.lat, _hover), wind);
    add(KeyPlace(), {0, 0, KeySpeed(), 0});
    // The arrow is three units long, so a third of the length is its size; an anchor of a half centres it.
    const VectorSymbol arrow(Model::Symbol::ShapeArrow3D, 16);
    VectorSymbol::Instances instances;
    instances.count = positions.size();
    instances.positions = positions.data();
    instances.rotations = rotations.data();
    instances.sizes = sizes.data();
    instances.tex_coords = values.data();
    arrow.OrientShapes(instances, 0.5, 1.0 / 3.0, _arrows);
  }

  double KeySpeed() const { return _fastest * 2 / 3; }
  Point KeyPlace() const { return {0.36 * MapFrame::Width, -_map.Height() / 2 - 27 * _zoom, _hover}; }

  void DrawRelief(Utility::Scoped<Rgl>& p_gl) const {
    const auto light = Light().Apply(p_gl);
    _relief.Draw(p_gl, _relief_colors);
    DrawGraticule(p_gl, _map, 0);
  }

  /// The arrows again, flattened onto the sea level and dark: they tell that the arrows hover.
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
    _arrows.Draw(p_gl);
    p_gl->PopMatrix();
  }

  void DrawArrows(Utility::Scoped<Rgl>& p_gl) const {
    Light bright;
    bright.ambient = 0.62;
    const auto light = bright.Apply(p_gl);
    const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_TEXTURE_BIT | RGL_COLOR_BUFFER_BIT);
    // The relief hides what is behind it, though its colours stand already.
    p_gl->Clear(RGL_DEPTH_BUFFER_BIT);
    p_gl->ColorMask(false, false, false, false);
    _relief.Draw(p_gl, _relief_colors);
    p_gl->ColorMask(true, true, true, true);
    _colors(p_gl, RGL_TEXTURE0);
    p_gl->TexEnvi(RGL_TEXTURE_ENV, RGL_TEXTURE_ENV_MODE, RGL_MODULATE);
    _arrows.Draw(p_gl);
  }

  void DrawLegends(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
    Overlay overlay(p_gl, p_view, _lettering);
    LabelMeridians(overlay, _map, 0);
    LabelParallels(overlay, _map, 0);
    if (_is_monthly_mean)
      overlay.Title("Winds of the world", "Monthly mean at the surface, January 1987");
    else
      overlay.Title("Surface wind", _file);
    std::vector<Overlay::Tick> ticks;
    const bool clipped = _field.SpeedQuantile(1) > _fastest;
    for (const double speed : RoundTicks(0, _fastest, 6)) {
      const QString beyond = clipped && speed == _fastest ? QString(QChar(0x2265)) + ' ' : QString();
      ticks.push_back({speed / _fastest, beyond + QString::number(speed)});
    }
    overlay.Bar({60, 62, 520, 78}, _colors, "Speed in m/s", ticks);
    overlay.TextAt(QString::number(KeySpeed(), 'g', 3) + " m/s", KeyPlace(), 0, -14, {0.5, 1},
                   {Theme::SmallSize, Theme::Text, false});
  }

  WindField _field;
  MapFrame _map;
  Relief _relief;
  bool _is_monthly_mean;
  QString _file;
  double _fastest;      ///< m/s at the upper end of the colours
  double _zoom;         ///< how much farther the camera stands because the map is tall
  std::size_t _columns; ///< arrows beside each other
  double _hover;        ///< z of the arrows
  ColorMap _colors{Palettes::Inferno(0.45, 1.0), ColorMap::Interpolated};
  ColorMap _relief_colors = Relief::MutedColors();
  Ogl::VertexData _arrows;
  Lettering _lettering;
};

} // namespace

std::unique_ptr<Scene> LoadWind(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<WindScene>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
