#include "apps/gallery/MapAxes.h"

#include "apps/gallery/GalleryTheme.h"

#include <cmath>

namespace Vek::Chart::Gallery {

using namespace Scene;

namespace {

QString DegreeText(double p_degrees, QChar p_positive, QChar p_negative) {
  const QString number = QString::number(std::abs(p_degrees), 'g', 6) + QChar(0x00B0);
  if (p_degrees == 0)
    return number;
  return number + ' ' + (p_degrees > 0 ? p_positive : p_negative);
}

std::vector<double> Meridians(const MapFrame& p_map) {
  return RoundTicks(p_map.West(), p_map.East(), 8);
}

std::vector<double> Parallels(const MapFrame& p_map) {
  return RoundTicks(p_map.South(), p_map.North(), 7);
}

TextRenderer::Style LabelStyle() {
  return {GalleryTheme::SmallSize, GalleryTheme::Faint, false};
}

} // namespace

QString LongitudeText(double p_degrees) {
  const double wrapped = p_degrees - 360.0 * std::floor((p_degrees + 180.0) / 360.0);
  return std::abs(wrapped) == 180.0 ? QStringLiteral("180") + QChar(0x00B0) : DegreeText(wrapped, 'E', 'W');
}

QString LatitudeText(double p_degrees) {
  return DegreeText(p_degrees, 'N', 'S');
}

std::vector<double> RoundTicks(double p_min, double p_max, std::size_t p_most) {
  std::vector<double> ticks;
  if (!(p_max > p_min) || p_most < 2)
    return ticks;
  const double coarse = (p_max - p_min) / static_cast<double>(p_most - 1);
  const double decade = std::pow(10.0, std::floor(std::log10(coarse)));
  const std::vector<double> factors =
      decade == 10.0 ? std::vector<double>{1.5, 3, 4.5, 6, 9, 12, 18} : std::vector<double>{1, 2, 5, 10};
  double step = factors.back() * decade;
  for (auto factor = factors.rbegin(); factor != factors.rend() && *factor * decade >= coarse; ++factor)
    step = *factor * decade;
  for (double i = std::ceil(p_min / step - 1e-9); i * step <= p_max + step * 1e-9; ++i)
    ticks.push_back(i * step);
  return ticks;
}

std::vector<Canvas::Tick> TicksFromZero(double p_max, std::size_t p_most, bool p_open) {
  std::vector<Canvas::Tick> ticks;
  for (const double value : RoundTicks(0, p_max, p_most)) {
    const QString beyond = p_open && value == p_max ? QString(QChar(0x2265)) + ' ' : QString();
    ticks.push_back({value / p_max, beyond + QString::number(value)});
  }
  return ticks;
}

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
  for (const double lon : Meridians(p_map)) {
    p_gl->Vertex(p_map.Place(lon, p_map.South(), p_z));
    p_gl->Vertex(p_map.Place(lon, p_map.North(), p_z));
  }
  for (const double lat : Parallels(p_map)) {
    p_gl->Vertex(p_map.Place(p_map.West(), lat, p_z));
    p_gl->Vertex(p_map.Place(p_map.East(), lat, p_z));
  }
  p_gl->End();
}

void LabelMeridians(Canvas& p_canvas, const View& p_view, const MapFrame& p_map, double p_z) {
  for (const double lon : Meridians(p_map))
    p_canvas.TextAt(LongitudeText(lon), p_view, p_map.Place(lon, p_map.South(), p_z), {0, -12}, {0.5, 1}, LabelStyle());
}

void LabelParallels(Canvas& p_canvas, const View& p_view, const MapFrame& p_map, double p_z) {
  for (const double lat : Parallels(p_map))
    p_canvas.TextAt(LatitudeText(lat), p_view, p_map.Place(p_map.West(), lat, p_z), {-12, 0}, {1, 0.5}, LabelStyle());
}

} // namespace Vek::Chart::Gallery
