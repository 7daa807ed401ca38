// A week of earthquakes below a map that lets the light through. Shows how spheres of any size and colour are drawn as
// instances of one model, and how a ColorMap with transparent colours makes a surface that is seen through.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/GalleryBars.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Glyphs.h"
#include "apps/gallery/HeightField.h"
#include "apps/gallery/MapAxes.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/Quakes.h"
#include "apps/gallery/Relief.h"
#include "apps/gallery/SpacePicture.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"
#include "scene/InstancedMesh.h"

#include "library/ColorMap.h"
#include "library/ModelCache.h"
#include "library/SymbolRegistry.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::ColorMap;
using Library::ModelCache;
using Library::SymbolRegistry;
using Point = Types::Vector3_Base<double>;

constexpr double DeepestColored = 600; ///< km
constexpr double UnitsPerKilometre = 0.1;
constexpr double BoxDepth = -700 * UnitsPerKilometre;

/// Units of the picture. Each step of magnitude is half as wide again, so that small ones stay visible beside large
/// ones.
double Diameter(double p_magnitude) {
  return 1.25 * std::pow(1.5, p_magnitude - 2);
}

/// Shallow earthquakes, by far the most, get most of the colours.
double ColorPlace(double p_depth) {
  return std::sqrt(std::clamp(p_depth / DeepestColored, 0.0, 1.0));
}

/// What can mark an earthquake, in their middle upright.
struct Marker {
  Model::Symbol::Shape shape;
};
constexpr Marker Markers[] = {{Model::Symbol::ShapeSphere},      {Model::Symbol::ShapeCube},
                              {Model::Symbol::ShapeCone},        {Model::Symbol::ShapeCylinder},
                              {Model::Symbol::ShapeArrowHead3D}, {Model::Symbol::ShapeCircularArrow3D},
                              {Model::Symbol::ShapeCrosshair}};

class EarthquakesPicture : public SpacePicture {
public:
  EarthquakesPicture(const Inputs& p_inputs, Loading& p_loading)
      : SpacePicture(Palettes::Plasma(0.97, 0.2))
      , _quakes(ReadQuakesFile(p_inputs.quakes, p_loading.Stage(0.5)))
      , _file(QString::fromStdString(FileName(p_inputs.quakes)))
      , _relief(HeightField::ReadFile(p_inputs.relief, p_loading.Stage(0.9)), _map, 3e-4)
      , _symbols(p_inputs.symbols) {}

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, -8, -30};
    camera.elevation = 42;
    camera.fieldOfView = 14;
    camera.distance = 1105;
    camera.radius = 260;
    return camera;
  }

  std::vector<std::string> Shapes() const override { return ShapeNames(Markers); }
  void SetShape(std::size_t p_index) override {
    if (p_index < std::size(Markers))
      _shape = Markers[p_index].shape;
    SetLevels();
  }

protected:
  void Prepare(Utility::Scoped<Rgl>& p_gl) override {
    const auto cache = boost::make_shared<ModelCache>(p_gl.Handle());
    _registry = std::make_unique<SymbolRegistry>(cache, _symbols);
    _quakeMarkers = Instanced(QuakeMarks());
    _keyMarkers = Instanced(KeyMarks());
    SetLevels();
  }

  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    DrawBox(p_gl, p_world);
    DirectionalLight bright;
    bright.ambient = 0.55;
    const auto light = bright.Apply(p_gl);
    DrawStems(p_gl, p_world);
    const auto lines = p_gl->PushAttribScope(RGL_LINE_BIT);
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 2 * PointSize(p_world))));
    _quakeMarkers.Draw(p_gl, Colors());
    _keyMarkers.Draw(p_gl, Colors());
    DrawSurface(p_gl, p_world);
  }

  /// The map lets what lies below shine through, so that is what one points at.
  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override {
    _relief.DrawSurface(p_gl, _reliefColors);
    p_gl->Clear(RGL_DEPTH_BUFFER_BIT);
    _quakeMarkers.DrawDepths(p_gl);
    _keyMarkers.DrawDepths(p_gl);
  }

  void DrawLegends(Utility::Scoped<Rgl>&, const View& p_view, Canvas& p_canvas) override {
    LabelMeridians(p_canvas, p_view, _map, BoxDepth);
    LabelParallels(p_canvas, p_view, _map, 0);
    if (_file == "earthquakes.csv")
      DrawTitle(p_canvas, "A week of earthquakes", "31 January to 7 February 2018, as they lie below the surface");
    else
      DrawTitle(p_canvas, "Earthquakes", _file);
    std::vector<double> places;
    std::vector<QString> strings;
    for (const double depth : {0.0, 10.0, 50.0, 100.0, 200.0, 400.0, 600.0}) {
      places.push_back(ColorPlace(depth));
      strings.push_back(QString::number(depth));
    }
    DrawBar(p_canvas, {60, 62, 520, 78}, {Colors(), {0, 1}}, "Depth in km", {places, strings});
    const TextRenderer::Style style{GalleryTheme::SmallSize, GalleryTheme::Text, false};
    for (int magnitude = 2; magnitude <= 6; ++magnitude)
      p_canvas.TextAt(QString::number(magnitude), p_view, KeyPlace(magnitude), {0, -30}, {0.5, 0.5}, style);
    p_canvas.TextAt("Magnitude", p_view, KeyPlace(2), {-30, -30}, {1, 0.5}, style);
    for (int depth = 200; depth <= 600; depth += 200)
      p_canvas.TextAt(QString::number(depth) + " km", p_view,
                      _map.Place(_map.East(), _map.South(), -depth * UnitsPerKilometre), {10, 0}, {0, 0.5},
                      {GalleryTheme::SmallSize, GalleryTheme::Faint, false});
  }

private:
  Point PlaceOf(const Quake& p_quake) const {
    return _map.Place(p_quake.lon, p_quake.lat, -p_quake.depth * UnitsPerKilometre);
  }

  /// What is shown of an earthquake.
  struct Mark {
    Point position;
    double size;
    double value;
  };

  static InstancedMesh Instanced(const std::vector<Mark>& p_marks) {
    InstancedMesh::Instances instances;
    std::vector<Point> positions;
    for (const Mark& mark : p_marks)
      positions.push_back(mark.position);
    instances.positions = positions;
    instances.sizes = Array1(p_marks, &Mark::size);
    instances.values = Array1(p_marks, &Mark::value);
    return {std::vector<InstancedMesh::Level>(), instances};
  }

  /// Sets the models of the marker that is chosen, once there are models.
  void SetLevels() {
    if (!_registry)
      return;
    std::vector<InstancedMesh::Level> levels;
    if (_shape == Model::Symbol::ShapeSphere) {
      levels = InstancedMesh::Spheres();
      levels.pop_back(); // the built-in model is finer
      for (InstancedMesh::Level& level : levels) {
        level.scale /= BoxOfSphere;
        level.mostPixels *= BoxOfSphere;
      }
    }
    levels.push_back(InstancedMesh::Level::Centered(GpuMesh(*_registry, _shape)));
    _quakeMarkers.SetLevels(levels);
    _keyMarkers.SetLevels(std::move(levels));
  }

  std::vector<Mark> QuakeMarks() const {
    std::vector<Mark> marks;
    for (const Quake& quake : _quakes)
      if (_map.Contains(quake.lon, quake.lat))
        marks.push_back({PlaceOf(quake), Size(quake.magnitude), ColorPlace(quake.depth)});
    return marks;
  }

  /// The diagonal of the box of a sphere of diameter 1.
  static constexpr double BoxOfSphere = 1.7320508075688772;
  /// The diagonal of a marker's box.
  static double Size(double p_magnitude) { return Diameter(p_magnitude) * BoxOfSphere; }

  static Point KeyPlace(int p_magnitude) { return {66.0 + 19.0 * (p_magnitude - 1), -112, BoxDepth}; }

  static std::vector<Mark> KeyMarks() {
    std::vector<Mark> marks;
    for (int magnitude = 2; magnitude <= 6; ++magnitude)
      marks.push_back({KeyPlace(magnitude), Size(magnitude), ColorPlace(10)});
    return marks;
  }

  /// The floor of the box and its edges.
  void DrawBox(Utility::Scoped<Rgl>& p_gl, const View& p_view) const {
    DrawGraticule(p_gl, _map, BoxDepth);
    const auto guard = LineScope(p_gl, p_view, GalleryTheme::Line);
    p_gl->Begin(RGL_LINES);
    for (const double z : {0.0, BoxDepth}) {
      p_gl->Vertex(_map.Place(_map.West(), _map.South(), z));
      p_gl->Vertex(_map.Place(_map.East(), _map.South(), z));
    }
    for (const double lon : {_map.West(), _map.East()})
      for (const double lat : {_map.South(), _map.North()}) {
        p_gl->Vertex(_map.Place(lon, lat, 0));
        p_gl->Vertex(_map.Place(lon, lat, BoxDepth));
      }
    for (int depth = 200; depth <= 600; depth += 200)
      for (const double lon : {_map.West(), _map.East()}) {
        p_gl->Vertex(_map.Place(lon, _map.South(), -depth * UnitsPerKilometre));
        p_gl->Vertex(_map.Place(lon, _map.North(), -depth * UnitsPerKilometre));
      }
    p_gl->End();
  }

  /// Deep earthquakes hang from the place on the surface that they lie below.
  void DrawStems(Utility::Scoped<Rgl>& p_gl, const View& p_view) const {
    const auto guard = LineScope(p_gl, p_view, QColor(255, 255, 255, 70));
    p_gl->Begin(RGL_LINES);
    for (const Quake& quake : _quakes)
      if (quake.depth > 50 && _map.Contains(quake.lon, quake.lat)) {
        p_gl->Vertex(PlaceOf(quake));
        p_gl->Vertex(_map.Place(quake.lon, quake.lat, 0));
      }
    p_gl->End();
  }

  boost::shared_ptr<void> LineScope(Utility::Scoped<Rgl>& p_gl, const View& p_view, const QColor& p_color) const {
    auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT | RGL_COLOR_BUFFER_BIT);
    p_gl->Disable(RGL_LIGHTING);
    p_gl->Enable(RGL_BLEND);
    p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
    p_gl->LineWidth(static_cast<float>(std::max(1.0, PointSize(p_view))));
    p_gl->Color(p_color);
    return guard;
  }

  /// Drawn last, so that the spheres below shine through.
  void DrawSurface(Utility::Scoped<Rgl>& p_gl, const View& p_world) const {
    const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_COLOR_BUFFER_BIT);
    p_gl->Enable(RGL_BLEND);
    p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
    _relief.DrawSurface(p_gl, _reliefColors, p_world.camera.PixelsPerUnit(p_world.camera.target, p_world.viewport));
  }

  MapFrame _map{-25, 335, -70, 84}; ///< the Pacific with its rim of earthquakes in the middle
  std::vector<Quake> _quakes;
  QString _file;
  Relief _relief;
  std::string _symbols; ///< the folder of the models
  std::unique_ptr<SymbolRegistry> _registry;
  InstancedMesh _quakeMarkers;
  InstancedMesh _keyMarkers;
  Model::Symbol::Shape _shape = Markers[0].shape;
  ColorMap _reliefColors = Relief::MutedColors(0.45, 1.7);
};

} // namespace

std::unique_ptr<Picture> LoadEarthquakes(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<EarthquakesPicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
