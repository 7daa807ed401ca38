#include "apps/gallery/WindMap.h"
#include "apps/gallery/GalleryTheme.h"

#include "apps/gallery/Files.h"
#include "apps/gallery/GalleryBars.h"
#include "apps/gallery/MapAxes.h"
#include "scene/DirectionalLight.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

MapFrame FrameOf(const WindField& p_field, double p_south, double p_north) {
  if (p_field.IsGlobal())
    return {-180, 180, p_south, p_north};
  return {p_field.lons.front(), p_field.lons.back(), p_field.lats.front(), p_field.lats.back()};
}

} // namespace

WindMap::WindMap(const Inputs& p_inputs, Loading& p_loading, double p_south, double p_north)
    : _field(WindField::ReadFile(p_inputs.winds, p_loading.Stage(0.4), p_inputs.time))
    , _map(FrameOf(_field, p_south, p_north))
    , _relief(HeightField::ReadFile(p_inputs.relief, p_loading.Stage(0.5)), _map, 4.5e-4)
    , _file(QString::fromStdString(FileName(p_inputs.winds)))
    , _fastest(std::max(1.0, std::ceil(_field.SpeedQuantile(0.995) / 5) * 5))
    , _clipped(_field.SpeedQuantile(1) > _fastest)
    , _zoom(std::max(1.0, _map.Height() / 190)) {}

Camera WindMap::StartCamera(double p_distance) const {
  Camera camera;
  camera.target = {0, -0.05 * _map.Height(), 0};
  camera.elevation = 64;
  camera.fieldOfView = 14;
  camera.distance = p_distance * _zoom;
  camera.radius = 260 * _zoom;
  return camera;
}

void WindMap::Draw(Utility::Scoped<Rgl>& p_gl, const View& p_view) const {
  const auto light = DirectionalLight().Apply(p_gl);
  _relief.Draw(p_gl, _reliefColors, p_view.camera.PixelsPerUnit(p_view.camera.target, p_view.viewport));
  DrawGraticule(p_gl, _map, 0);
}

void WindMap::DrawLegends(Canvas& p_canvas, const View& p_view, const Library::ColorMap& p_colors,
                          const QString& p_meanTitle, const QString& p_fileTitle) const {
  LabelMeridians(p_canvas, p_view, _map, 0);
  LabelParallels(p_canvas, p_view, _map, 0);
  if (_file == "noaa_navy_winds_1987-01.csv")
    DrawTitle(p_canvas, p_meanTitle, "Monthly mean at the surface, January 1987");
  else
    DrawTitle(p_canvas, p_fileTitle, _file);
  DrawBar(p_canvas, {60, 62, 520, 78}, {p_colors, {0, _fastest}}, "Speed in m/s", TicksFromZero(_fastest, 6, _clipped));
}

} // namespace Vek::Chart::Gallery
