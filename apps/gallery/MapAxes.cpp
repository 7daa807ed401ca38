#include "apps/gallery/MapAxes.h"

#include "apps/gallery/GalleryTheme.h"

#include "scene/Ticks.h"

#include <cstddef>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

Ticks Meridians(const MapFrame& p_map) {
  return Ticks::Degrees(p_map.West(), p_map.East(), 7, Ticks::Angle::Longitude);
}

Ticks Parallels(const MapFrame& p_map) {
  return Ticks::Degrees(p_map.South(), p_map.North(), 7, Ticks::Angle::Latitude);
}

TextRenderer::Style LabelStyle() {
  return {GalleryTheme::SmallSize, GalleryTheme::Faint, false};
}

} // namespace

void DrawGraticule(Utility::Scoped<Rgl>& p_gl, const MapFrame& p_map, double p_z) {
  const auto guard = p_gl->PushAttribScope(RGL_ENABLE_BIT | RGL_CURRENT_BIT | RGL_LINE_BIT | RGL_COLOR_BUFFER_BIT);
  p_gl->Disable(RGL_LIGHTING);
  p_gl->Disable(RGL_TEXTURE_2D);
  p_gl->Disable(RGL_DEPTH_TEST);
  p_gl->Enable(RGL_BLEND);
  p_gl->BlendFunc(RGL_SRC_ALPHA, RGL_ONE_MINUS_SRC_ALPHA);
  p_gl->LineWidth(1.5f);
  p_gl->Color(QColor(255, 255, 255, 26));
  p_gl->Begin(RGL_LINES);
  for (const double lon : Meridians(p_map).Values()) {
    p_gl->Vertex(p_map.Place(lon, p_map.South(), p_z));
    p_gl->Vertex(p_map.Place(lon, p_map.North(), p_z));
  }
  for (const double lat : Parallels(p_map).Values()) {
    p_gl->Vertex(p_map.Place(p_map.West(), lat, p_z));
    p_gl->Vertex(p_map.Place(p_map.East(), lat, p_z));
  }
  p_gl->End();
}

void LabelMeridians(Canvas& p_canvas, const View& p_view, const MapFrame& p_map, double p_z) {
  const Ticks lon = Meridians(p_map);
  for (std::size_t i = 0; i < lon.Values().size(); ++i)
    p_canvas.TextAt(lon.Strings()[i], p_view, p_map.Place(lon.Values()[i], p_map.South(), p_z), {0, -12}, {0.5, 1},
                    LabelStyle());
}

void LabelParallels(Canvas& p_canvas, const View& p_view, const MapFrame& p_map, double p_z) {
  const Ticks lat = Parallels(p_map);
  for (std::size_t i = 0; i < lat.Values().size(); ++i)
    p_canvas.TextAt(lat.Strings()[i], p_view, p_map.Place(p_map.West(), lat.Values()[i], p_z), {-12, 0}, {1, 0.5},
                    LabelStyle());
}

} // namespace Vek::Chart::Gallery
