// The wind of the world as streamlines above the relief: fast winds as tubes, calm ones as ribbons. Shows how
// cross-sections of StreamLineShape are swept along lines and coloured by a ColorMap that is bound as a texture.

#include "examples/SceneMakers.h"

#include "examples/scene/Files.h"
#include "examples/scene/FlowLines.h"
#include "examples/scene/HeightField.h"
#include "examples/scene/Lettering.h"
#include "examples/scene/Light.h"
#include "examples/scene/MapAxes.h"
#include "examples/scene/Overlay.h"
#include "examples/scene/Palettes.h"
#include "examples/scene/Relief.h"
#include "examples/scene/Streamlines.h"
#include "examples/scene/Sweep.h"
#include "examples/scene/Theme.h"
#include "examples/scene/VectorGrid.h"
#include "examples/scene/WindField.h"

#include "library/ColorMap.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace Vek::Chart::Gallery {

namespace {

using Library::ColorMap;
using Library::StreamLineShape;
using Point = Types::Vector3_Base<double>;

MapFrame FrameOf(const WindField& p_field) {
  if (p_field.IsGlobal())
    return {-180, 180, -78, 82};
  return {p_field.lons.front(), p_field.lons.back(), p_field.lats.front(), p_field.lats.back()};
}

/// Where a value lies among ascending ones: the index of the one before and the share of the next; outside their range,
/// −1 or their number.
double PlaceAmong(const std::vector<double>& p_sorted, double p_value) {
  if (p_value < p_sorted.front())
    return -1;
  const auto next = std::upper_bound(p_sorted.begin(), p_sorted.end(), p_value);
  const auto index = static_cast<double>(next - p_sorted.begin() - 1);
  if (next == p_sorted.end())
    return p_value == p_sorted.back() ? index : index + 1;
  return index + (p_value - *(next - 1)) / (*next - *(next - 1));
}

/// The wind between the places of a table, over the units of a map.
class MapWind {
public:
  MapWind(const WindField& p_field, const MapFrame& p_map)
      : _lons(p_field.lons)
      , _lats(p_field.lats)
      , _global(p_field.IsGlobal())
      , _map(p_map)
      , _grid(GridOf(p_field)) {}

  /// In m/s to the east and the north; false beyond the border of the map.
  bool At(const Point& p_place, Point& p_wind) const {
    if (std::abs(p_place.x) > MapFrame::Width / 2 || std::abs(p_place.y) > _map.Height() / 2)
      return false;
    return _grid.At({ColumnOf(Longitude(p_place)), PlaceAmong(_lats, Latitude(p_place)), 0}, p_wind);
  }

  /// As long as the wind is fast, in the direction it has on the map, where a degree of longitude is as wide
  /// everywhere.
  bool Flow(const Point& p_place, Point& p_vector) const {
    Point wind;
    if (!At(p_place, wind))
      return false;
    const double narrowing = std::cos(Types::Angle::FromDegrees(Latitude(p_place)).Radians());
    const Point heading(wind.x * MapFrame::Width / (_map.East() - _map.West()) / std::max(narrowing, 0.05),
                        wind.y * _map.Height() / (_map.North() - _map.South()), 0);
    p_vector = Normalize(heading) * Length(wind);
    return true;
  }

private:
  static VectorGrid GridOf(const WindField& p_field) {
    std::vector<Point> vectors(p_field.lons.size() * p_field.lats.size());
    for (const Wind& wind : p_field.winds) {
      const auto column = static_cast<std::size_t>(PlaceAmong(p_field.lons, wind.lon));
      const auto row = static_cast<std::size_t>(PlaceAmong(p_field.lats, wind.lat));
      vectors[row * p_field.lons.size() + column] = {wind.u, wind.v, 0};
    }
    return VectorGrid({p_field.lons.size(), p_field.lats.size(), 1}, {0, 0, 0}, {1, 1, 1}, std::move(vectors),
                      p_field.IsGlobal());
  }

  double Longitude(const Point& p_place) const {
    return _map.West() + (p_place.x / MapFrame::Width + 0.5) * (_map.East() - _map.West());
  }
  double Latitude(const Point& p_place) const {
    return _map.South() + (p_place.y / _map.Height() + 0.5) * (_map.North() - _map.South());
  }
  double ColumnOf(double p_lon) const {
    if (!_global)
      return PlaceAmong(_lons, p_lon);
    const double lon = p_lon - std::floor((p_lon - _lons.front()) / 360) * 360;
    if (lon <= _lons.back())
      return PlaceAmong(_lons, lon);
    // Between the last column and the first one.
    return static_cast<double>(_lons.size() - 1) + (lon - _lons.back()) / (_lons.front() + 360 - _lons.back());
  }

  std::vector<double> _lons;
  std::vector<double> _lats;
  bool _global;
  MapFrame _map;
  VectorGrid _grid;
};

/// Places all over the map, in an order without order.
std::vector<Point> Seeds(const MapFrame& p_map, double p_step) {
  std::mt19937 random(1987);
  std::vector<Point> seeds;
  for (double y = -p_map.Height() / 2 + p_step / 2; y < p_map.Height() / 2; y += p_step)
    for (double x = -MapFrame::Width / 2 + p_step / 2; x < MapFrame::Width / 2; x += p_step)
      seeds.emplace_back(x, y, 0);
  // Drawn by hand, since the standard's shuffle differs from library to library.
  for (std::size_t i = seeds.size(); i > 1; --i)
    std::swap(seeds[i - 1], seeds[random() % i]);
  return seeds;
}

class StreamlinesScene : public Scene {
public:
  StreamlinesScene(const Inputs& p_inputs, Loading& p_loading)
      : _field(WindField::ReadFile(p_inputs.winds, p_loading.Stage(0.4)))
      , _map(FrameOf(_field))
      , _wind(_field, _map)
      , _relief(HeightField::ReadFile(p_inputs.relief, p_loading.Stage(0.6)), _map, 4.5e-4)
      , _is_monthly_mean(FileName(p_inputs.winds) == "noaa_navy_winds_1987-01.csv")
      , _file(QString::fromStdString(FileName(p_inputs.winds)))
      , _fastest(std::max(1.0, std::ceil(_field.SpeedQuantile(0.995) / 5) * 5))
      , _zoom(std::max(1.0, _map.Height() / 190))
      , _hover(_relief.Top() + 0.8) {
    BuildLines();
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, -0.05 * _map.Height(), 0};
    camera.elevation = 64;
    camera.field_of_view = 14;
    camera.distance = 1060 * _zoom;
    camera.radius = 260 * _zoom;
    return camera;
  }

  void Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) override {
    DrawBackground(p_gl, p_view, _lettering);
    {
      const auto camera = p_view.camera.Apply(p_gl, p_view.viewport);
      DrawRelief(p_gl);
      Light bright;
      bright.ambient = 0.55;
      const auto light = bright.Apply(p_gl);
      DrawColored(p_gl, _colors, {&_ribbons, &_tubes, &_heads});
    }
    DrawLegends(p_gl, p_view);
  }

private:
  void BuildLines() {
    const FlowFunction flow = [this](const Point& p_place, Point& p_vector) { return _wind.Flow(p_place, p_vector); };
    TraceOptions options;
    options.length = 110;
    options.largest_step = 1;
    options.tolerance = 5e-3;
    options.smallest_step = 0.02;
    options.stagnation = 0.02 * _fastest;
    const std::vector<Point> seeds = Seeds(_map, 2.5);
    std::vector<Streamline> lines;
    // Long lines first; shorter ones fill the gaps that these leave.
    for (const double shortest : {100.0, 45.0, 18.0})
      lines = SpacedStreamlines(flow, seeds, {6.4, 3.6, shortest}, options, std::move(lines));

    Sweep tubes(StreamLineShape(StreamLineShape::ShapeTube, {}));
    Sweep ribbons(StreamLineShape(StreamLineShape::ShapeRibbon, {}));
    ArrowHeads heads;
    const double calm = _field.SpeedQuantile(0.45);
    for (const Streamline& line : lines) {
      double mean = 0;
      for (const Point& place : line)
        mean += SpeedAt(place) / static_cast<double>(line.size());
      const bool is_tube = mean > calm;
      const std::vector<SweepPoint> styled = Styled(line, is_tube ? 1.0 : 1.5);
      (is_tube ? tubes : ribbons).Add(styled);
      heads.AddAtEnd(styled, is_tube ? 2.4 : 1.9);
      heads.AddAlong(styled, 46, is_tube ? 2.4 : 1.9);
    }
    _tubes = tubes.TakeMesh();
    _ribbons = ribbons.TakeMesh();
    _heads = heads.Mesh();
  }

  double SpeedAt(const Point& p_place) const {
    Point wind;
    return _wind.At(p_place, wind) ? Length(wind) : 0;
  }

  /// Thin at its start, and wider where the wind is faster.
  std::vector<SweepPoint> Styled(const Streamline& p_line, double p_stoutness) const {
    std::vector<SweepPoint> styled;
    double arc = 0;
    for (std::size_t i = 0; i < p_line.size(); ++i) {
      arc += i == 0 ? 0 : Length(p_line[i] - p_line[i - 1]);
      const double share = SpeedAt(p_line[i]) / _fastest;
      const double taper = 0.25 + 0.75 * std::min(1.0, arc / 14);
      styled.push_back({p_line[i] + Point(0, 0, _hover), p_stoutness * taper * (0.75 + 0.9 * std::min(1.0, share)),
                        std::min(1.0, share)});
    }
    return styled;
  }

  void DrawRelief(Utility::Scoped<Rgl>& p_gl) const {
    const auto light = Light().Apply(p_gl);
    _relief.Draw(p_gl, _relief_colors);
    DrawGraticule(p_gl, _map, 0);
  }

  void DrawLegends(Utility::Scoped<Rgl>& p_gl, const View& p_view) {
    Overlay overlay(p_gl, p_view, _lettering);
    LabelMeridians(overlay, _map, 0);
    LabelParallels(overlay, _map, 0);
    if (_is_monthly_mean)
      overlay.Title("Streamlines of the world's wind", "Monthly mean at the surface, January 1987");
    else
      overlay.Title("Streamlines of the wind", _file);
    std::vector<Overlay::Tick> ticks;
    const bool clipped = _field.SpeedQuantile(1) > _fastest;
    for (const double speed : RoundTicks(0, _fastest, 6)) {
      const QString beyond = clipped && speed == _fastest ? QString(QChar(0x2265)) + ' ' : QString();
      ticks.push_back({speed / _fastest, beyond + QString::number(speed)});
    }
    overlay.Bar({60, 62, 520, 78}, _colors, "Speed in m/s", ticks);
    overlay.Text("Tubes: faster winds. Ribbons: calmer ones.", overlay.Width() - 60, 70, {1, 0.5},
                 {Theme::SmallSize, Theme::Text, false});
  }

  WindField _field;
  MapFrame _map;
  MapWind _wind;
  Relief _relief;
  bool _is_monthly_mean;
  QString _file;
  double _fastest; ///< m/s at the upper end of the colours
  double _zoom;    ///< how much farther the camera stands because the map is tall
  double _hover;   ///< z of the lines
  ColorMap _colors{Palettes::Inferno(0.42, 1.0), ColorMap::Interpolated};
  ColorMap _relief_colors = Relief::MutedColors();
  Ogl::VertexData _tubes;
  Ogl::VertexData _ribbons;
  Ogl::VertexData _heads;
  Lettering _lettering;
};

} // namespace

std::unique_ptr<Scene> LoadStreamlines(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<StreamlinesScene>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
