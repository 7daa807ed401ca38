#include "scene/SurfacePlot.h"

#include "scene/private/SurfaceContent.h"

#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

Private::SurfaceContent& Surface(Private::PlotContent& p_content) {
  return static_cast<Private::SurfaceContent&>(p_content);
}

} // namespace

SurfacePlot::SurfacePlot(const Array1& p_x, const Array1& p_y, const Array1& p_heights)
    : ColoredPlot(std::make_unique<Private::SurfaceContent>(p_x, p_y, p_heights)) {}

SurfacePlot& SurfacePlot::ColorByHeight() {
  Surface(Content()).ColorByHeight();
  return *this;
}

SurfacePlot& SurfacePlot::Contours(int p_most) {
  if (p_most < 0)
    throw std::invalid_argument("Contours: expected 0 or more lines, got " + std::to_string(p_most));
  Surface(Content()).SetContours(static_cast<std::size_t>(p_most));
  return *this;
}

SurfacePlot& SurfacePlot::Contours(const Array1& p_heights) {
  Surface(Content()).SetContours(Values(p_heights));
  return *this;
}

SurfacePlot& SurfacePlot::Contours(std::initializer_list<double> p_heights) {
  Surface(Content()).SetContours(p_heights);
  return *this;
}

SurfacePlot& SurfacePlot::UpdateHeights(const Array1& p_heights) {
  Surface(Content()).UpdateHeights(p_heights);
  return *this;
}

} // namespace Vek::Chart::Scene
