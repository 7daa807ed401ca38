// The wind of the world as streamlines above the relief: fast winds as tubes, calm ones as ribbons. Shows how
// cross-sections of StreamLineShape are swept along lines and coloured by a ColorMap that is bound as a texture.

#include "apps/gallery/PictureLoaders.h"

#include "apps/gallery/FlowLines.h"
#include "apps/gallery/GalleryTheme.h"
#include "apps/gallery/Glyphs.h"
#include "apps/gallery/MapWind.h"
#include "apps/gallery/Palettes.h"
#include "apps/gallery/SpacePicture.h"
#include "apps/gallery/WindMap.h"
#include "scene/Canvas.h"
#include "scene/DirectionalLight.h"
#include "scene/GpuMesh.h"
#include "scene/StreamlineTracer.h"
#include "scene/TubeMesh.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

using Library::StreamLineShape;
using Point = Types::Vector3_Base<double>;

/// Positions all over the map, shuffled.
std::vector<Point> Seeds(const MapFrame& p_map, double p_step) {
  std::mt19937 random(1987);
  std::vector<Point> seeds;
  for (double y = -p_map.Height() / 2 + p_step / 2; y < p_map.Height() / 2; y += p_step)
    for (double x = -MapFrame::Width / 2 + p_step / 2; x < MapFrame::Width / 2; x += p_step)
      seeds.emplace_back(x, y, 0);
  StreamlineTracer::Shuffle(seeds, random);
  return seeds;
}

class StreamlinesPicture : public SpacePicture {
public:
  StreamlinesPicture(const Inputs& p_inputs, Loading& p_loading)
      : SpacePicture(Palettes::Inferno(0.42, 1.0))
      , _ground(p_inputs, p_loading, -78, 82)
      , _wind(_ground.Field(), _ground.Map())
      , _hover(_ground.Top() + 0.8) {
    BuildLines(p_loading);
  }

  Camera StartCamera() const override { return _ground.StartCamera(1060); }
  std::vector<std::string> Shapes() const override { return ShapeNames(ArrowHeads::Glyphs()); }
  void SetShape(std::size_t p_index) override { _heads.SetGlyph(p_index); }

protected:
  void DrawWorld(Utility::Scoped<Rgl>& p_gl, const View& p_world) override {
    _ground.Draw(p_gl, p_world);
    DirectionalLight bright;
    bright.ambient = 0.55;
    const auto light = bright.Apply(p_gl);
    DrawColored(p_gl, Colors(), {&_ribbons, &_tubes, &_heads.Mesh()});
  }

  void DrawDepths(Utility::Scoped<Rgl>& p_gl) override {
    _ground.DrawRelief(p_gl);
    DrawColored(p_gl, Colors(), {&_ribbons, &_tubes, &_heads.Mesh()});
  }

  void DrawLegends(Utility::Scoped<Rgl>&, const View& p_view, Canvas& p_canvas) override {
    _ground.DrawLegends(p_canvas, p_view, Colors(), "Streamlines of the world's wind", "Streamlines of the wind");
    p_canvas.Text("Tubes: faster winds. Ribbons: calmer ones.", {p_canvas.Width() - 60, 70}, {1, 0.5},
                  {GalleryTheme::SmallSize, GalleryTheme::Text, false});
  }

private:
  void BuildLines(Loading& p_loading) {
    const StreamlineTracer::Field flow = [&](const Point& p_place, Point& p_vector) {
      p_loading.CheckCancelled();
      return _wind.Flow(p_place, p_vector);
    };
    StreamlineTracer::Options options;
    options.length = 110;
    options.largestStep = 1;
    options.tolerance = 5e-3;
    options.smallestStep = 0.02;
    options.stagnation = 0.02 * _ground.Fastest();
    const StreamlineTracer tracer(flow, options);
    const std::vector<Point> seeds = Seeds(_ground.Map(), 2.5);
    std::vector<Streamline> lines;
    // Long lines first; shorter ones fill the gaps that these leave.
    for (const double shortest : {100.0, 45.0, 18.0}) {
      p_loading.Stage(p_loading.Progress() + 0.15);
      lines = tracer.Spaced(seeds, {6.4, 3.6, shortest}, std::move(lines));
    }
    p_loading.Stage(1);

    TubeMesh tubes(StreamLineShape(StreamLineShape::ShapeTube, {}));
    TubeMesh ribbons(StreamLineShape(StreamLineShape::ShapeRibbon, {}));
    const double calm = _ground.Field().SpeedQuantile(0.45);
    for (const Streamline& line : lines) {
      double mean = 0;
      for (const Point& place : line)
        mean += _wind.SpeedAt(place) / static_cast<double>(line.size());
      const bool isTube = mean > calm;
      const std::vector<TubeMesh::Point> styled = Styled(line, isTube ? 1.0 : 1.5);
      (isTube ? tubes : ribbons).Add(TubeMesh::Thinned(styled));
      _heads.AddAtEnd(styled, isTube ? 2.4 : 1.9);
      _heads.AddAlong(styled, 46, isTube ? 2.4 : 1.9);
    }
    _tubes = GpuMesh(tubes.TakeMesh());
    _ribbons = GpuMesh(ribbons.TakeMesh());
  }

  /// Thin at its start, and wider where the wind is faster.
  std::vector<TubeMesh::Point> Styled(const Streamline& p_line, double p_stoutness) const {
    std::vector<TubeMesh::Point> styled;
    double arc = 0;
    for (std::size_t i = 0; i < p_line.size(); ++i) {
      arc += i == 0 ? 0 : Length(p_line[i] - p_line[i - 1]);
      const double share = _wind.SpeedAt(p_line[i]) / _ground.Fastest();
      const double taper = 0.25 + 0.75 * std::min(1.0, arc / 14);
      styled.push_back({p_line[i] + Point(0, 0, _hover), p_stoutness * taper * (0.75 + 0.9 * std::min(1.0, share)),
                        std::min(1.0, share)});
    }
    return styled;
  }

  WindMap _ground;
  MapWind _wind;
  double _hover; ///< z of the lines
  GpuMesh _tubes;
  GpuMesh _ribbons;
  ArrowHeads _heads;
};

} // namespace

std::unique_ptr<Picture> LoadStreamlines(const Inputs& p_inputs, Loading& p_loading) {
  return std::make_unique<StreamlinesPicture>(p_inputs, p_loading);
}

} // namespace Vek::Chart::Gallery
