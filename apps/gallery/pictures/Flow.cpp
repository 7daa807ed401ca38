// A flow in space: tubes that start where it enters its box, with arrow heads along them. Shows a Burgers vortex, or a
// grid of the user's own. Tubes are swept from StreamLineShape, heads are glyphs of VectorSymbol.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/FlowLines.h"
#include "apps/gallery/GalleryBars.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Glyphs.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/SpacePicture.h"
#include "apps/gallery/TextTable.h"
#include "apps/gallery/VectorGrid.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"
#include "scene/GpuMesh.h"
#include "scene/StreamlineTracer.h"
#include "scene/TubeMesh.h"
#include "scene/VolumeSlices.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::StreamLineShape;
using Point = Types::Vector3_Base<double>;

// Of the box, in units of the picture.
constexpr double Diagonal = 100;
constexpr double Tallest = 58;

/// A vortex that is drawn in from the sides and stretched along its axis, an exact solution of the Navier-Stokes
/// equations (Burgers 1948).
Point BurgersVortex(const Point& p_place) {
  constexpr double Strain = 0.7;
  constexpr double Circulation = 4;
  constexpr double Viscosity = 0.02;
  const double square = p_place.x * p_place.x + p_place.y * p_place.y;
  const double turns = -Circulation / (2 * M_PI) * std::expm1(-Strain * square / (4 * Viscosity));
  const double swirl = square > 0 ? turns / square : 0;
  return {-Strain / 2 * p_place.x - swirl * p_place.y, -Strain / 2 * p_place.y + swirl * p_place.x, Strain * p_place.z};
}

VectorField BurgersField() {
  constexpr std::size_t Count = 61;
  const Point origin(-1, -1, -0.8);
  const Point spacing(2.0 / (Count - 1), 2.0 / (Count - 1), 1.6 / (Count - 1));
  std::vector<Point> vectors;
  for (std::size_t z = 0; z < Count; ++z)
    for (std::size_t y = 0; y < Count; ++y)
      for (std::size_t x = 0; x < Count; ++x)
        vectors.push_back(
            BurgersVortex(origin + Point(spacing.x * static_cast<double>(x), spacing.y * static_cast<double>(y),
                                         spacing.z * static_cast<double>(z))));
  return VectorField::Regular({Count, Count, Count}, origin, spacing, vectors);
}

/// Nodes where the flow is faster than `p_least`: first those on the border where it enters, then all others; each part
/// shuffled.
std::vector<Point> Seeds(const VectorField& p_field, double p_least) {
  std::vector<Point> inlets;
  std::vector<Point> others;
  const VectorField::Counts& n = p_field.Size();
  for (std::size_t z = 0; z < n[2]; ++z)
    for (std::size_t y = 0; y < n[1]; ++y)
      for (std::size_t x = 0; x < n[0]; ++x) {
        const Point& v = p_field.Node(x, y, z);
        if (!(Length(v) > p_least))
          continue;
        const auto enters = [p_least](std::size_t p_index, std::size_t p_count, double p_component) {
          return (p_index == 0 && p_component > 0.3 * p_least) ||
                 (p_index == p_count - 1 && p_component < -0.3 * p_least);
        };
        const bool inlet = enters(x, n[0], v.x) || enters(y, n[1], v.y) || enters(z, n[2], v.z);
        (inlet ? inlets : others).push_back(p_field.Position(x, y, z));
      }
  std::mt19937 random(3);
  for (std::vector<Point>* seeds : {&inlets, &others})
    StreamlineTracer::Shuffle(*seeds, random);
  inlets.insert(inlets.end(), others.begin(), others.end());
  return inlets;
}

class FlowPicture : public SpacePicture {
public:
  FlowPicture(const Inputs& p_inputs, Loading& p_loading)
      : SpacePicture(Palettes::Plasma(0.12, 1.0))
      , _isOwn(p_inputs.flow.empty())
      , _file(QString::fromStdString(FileName(p_inputs.flow)))
      , _field(_isOwn ? BurgersField() : ReadVectorGridFile(p_inputs.flow, p_loading.Stage(0.5)))
      , _center(_field.Bounds().Center())
      , _scale(std::min(Diagonal / Length(_field.Bounds().Extent()), Tallest / _field.Bounds().Extent().z))
      , _fastest(_field.SpeedQuantile(0.998)) {
    if (!(_fastest > 0))
      throw InputError(p_inputs.flow + ": expected a flow, got vectors that are all zero");
    // A round number at the upper end of the colours.
    const std::vector<double> ticks = Ticks::Linear(0, _fastest, 5).Values();
    if (ticks.size() > 1)
      _fastest = std::ceil(_fastest / ticks[1] - 0.1) * ticks[1];
    _clipped = _field.SpeedQuantile(1) > _fastest * (1 + 1e-9);
    BuildLines(p_loading.Stage(1));
  }

  Camera StartCamera() const override {
    Camera camera;
    camera.target = {0, 0, -2};
    camera.azimuth = 28;
    camera.elevation = 24;
    camera.fieldOfView = 22;
    camera.distance = 236;
    camera.radius = 80;
    return camera;
  }

  std::vector<std::string> Shapes() const override { return ShapeNames(ArrowHeads::Glyphs()); }
  void SetShape(std::size_t p_index) override { _heads.SetGlyph(p_index); }

protected:
  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    DirectionalLight bright;
    bright.ambient = 0.4;
    const auto light = bright.Apply(p_gl);
    DrawBox(p_gl, p_world);
    DrawDepths(p_gl);
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override { DrawColored(p_gl, Colors(), {&_tubes, &_heads.Mesh()}); }

  void DrawLegends(Utility::Scoped<Rgl>&, const View&, Canvas& p_canvas) override {
    if (_isOwn)
      DrawTitle(p_canvas, "A Burgers vortex", "Computed: drawn in from the sides, stretched along its axis");
    else
      DrawTitle(p_canvas, "Flow",
                QString("%1, a grid of %2 × %3 × %4 nodes")
                    .arg(_file)
                    .arg(_field.Size()[0])
                    .arg(_field.Size()[1])
                    .arg(_field.Size()[2]));
    DrawBar(p_canvas, {60, 62, 520, 78}, {Colors(), {0, _fastest}},
            _isOwn ? "Speed (no unit)" : "Speed in the units of the file", TicksFromZero(_fastest, 5, _clipped));
  }

private:
  Point ToPicture(const Point& p_place) const { return (p_place - _center) * _scale; }

  /// What is slower counts as standing still: grids that were measured are full of faint noise.
  double Slowest() const { return (_isOwn ? 0.02 : 0.12) * _fastest; }

  /// The distance between lines at which, all together, they are some fifty diagonals long.
  double Distance(std::size_t p_movingNodes) const {
    const Point cell = _field.Spacing();
    const double volume = static_cast<double>(p_movingNodes) * cell.x * cell.y * cell.z;
    const double length = 50 * Diagonal / _scale;
    return std::max(std::sqrt(volume / length), 1.4 * std::min({cell.x, cell.y, cell.z}));
  }

  void BuildLines(const Loading& p_loading) {
    const StreamlineTracer::Field flow = [&](const Point& p_place, Point& p_vector) {
      p_loading.CheckCancelled();
      return _field.Sample(p_place, p_vector);
    };
    const std::vector<Point> seeds = Seeds(_field, Slowest());
    const double distance = Distance(seeds.size());
    const double diagonal = Diagonal / _scale;
    StreamlineTracer::Options options;
    options.length = 4 * diagonal;
    options.largestStep = diagonal / 160;
    options.smallestStep = diagonal * 1e-5;
    options.tolerance = diagonal * 2e-5;
    options.stagnation = Slowest();
    const std::vector<Streamline> lines =
        StreamlineTracer(flow, options).Spaced(seeds, {distance, 0.2 * distance, diagonal / 6});
    TubeMesh tubes(StreamLineShape(StreamLineShape::ShapeTube, {}));
    for (const Streamline& line : lines) {
      std::vector<TubeMesh::Point> styled;
      for (const Point& place : line) {
        Point vector;
        _field.Sample(place, vector);
        styled.push_back(
            {ToPicture(place), std::min(0.9, 0.26 * distance * _scale), std::min(1.0, Length(vector) / _fastest)});
      }
      tubes.Add(TubeMesh::Thinned(styled));
      _heads.AddAlong(styled, 16, 3);
    }
    _tubes = GpuMesh(tubes.TakeMesh());
  }

  void DrawBox(Utility::Scoped<Rgl>& p_gl, const View& p_view) const {
    const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT);
    p_gl->Disable(RGL_LIGHTING);
    p_gl->LineWidth(static_cast<float>(std::max(1.0, 1.5 * PointSize(p_view))));
    p_gl->Color(GalleryTheme::Line);
    DrawEdges(p_gl, {ToPicture(_field.Bounds().Min()), ToPicture(_field.Bounds().Max())});
  }

  bool _isOwn; ///< the picture's own vortex, no file
  QString _file;
  VectorField _field;
  Point _center;
  double _scale;
  double _fastest; ///< at the upper end of the colours
  bool _clipped;   ///< whether there are faster flows
  GpuMesh _tubes;
  ArrowHeads _heads;
};

} // namespace

std::unique_ptr<Picture> LoadFlow(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<FlowPicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
