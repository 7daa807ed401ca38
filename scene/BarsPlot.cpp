#include "scene/BarsPlot.h"

#include "scene/private/BarsContent.h"

#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

Private::BarsContent& Bars(Private::PlotContent& p_content) {
  return static_cast<Private::BarsContent&>(p_content);
}

} // namespace

BarsPlot::BarsPlot(const Array1& p_x, const Array1& p_y, const Array1& p_heights)
    : ColoredPlot(std::make_unique<Private::BarsContent>(p_x, p_y, p_heights)) {}

BarsPlot& BarsPlot::ColorByHeight() {
  Bars(Content()).ColorByHeight();
  return *this;
}

BarsPlot& BarsPlot::Width(double p_fraction) {
  if (!(p_fraction > 0 && p_fraction <= 1))
    throw std::invalid_argument("Width: expected a fraction above 0 and up to 1, got " + std::to_string(p_fraction));
  Bars(Content()).SetWidth(p_fraction);
  return *this;
}

BarsPlot& BarsPlot::UpdateHeights(const Array1& p_heights) {
  Bars(Content()).UpdateHeights(p_heights);
  return *this;
}

} // namespace Vek::Chart::Scene
