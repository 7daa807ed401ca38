#include "scene/StreamlinesPlot.h"

#include "scene/private/StreamlinesContent.h"

#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

Private::StreamlinesContent& Streamlines(Private::PlotContent& p_content) {
  return static_cast<Private::StreamlinesContent&>(p_content);
}

} // namespace

StreamlinesPlot::StreamlinesPlot(const VectorField& p_field)
    : ColoredPlot(std::make_unique<Private::StreamlinesContent>(p_field)) {}

StreamlinesPlot& StreamlinesPlot::ColorBySpeed() {
  Streamlines(Content()).ColorBySpeed();
  return *this;
}

StreamlinesPlot& StreamlinesPlot::Spacing(double p_fraction) {
  if (!(p_fraction >= 0.005 && p_fraction <= 0.5))
    throw std::invalid_argument("Spacing: expected a fraction of 0.005 to 0.5, got " + std::to_string(p_fraction));
  Streamlines(Content()).SetSpacing(p_fraction);
  return *this;
}

StreamlinesPlot& StreamlinesPlot::Width(double p_fraction) {
  if (!(p_fraction > 0 && p_fraction <= 1))
    throw std::invalid_argument("Width: expected a fraction above 0 and up to 1, got " + std::to_string(p_fraction));
  Streamlines(Content()).SetWidth(p_fraction);
  return *this;
}

StreamlinesPlot& StreamlinesPlot::WidthBySpeed(bool p_bySpeed) {
  Streamlines(Content()).SetWidthBySpeed(p_bySpeed);
  return *this;
}

StreamlinesPlot& StreamlinesPlot::ArrowHeads(bool p_hasHeads) {
  Streamlines(Content()).SetHeads(p_hasHeads);
  return *this;
}

StreamlinesPlot& StreamlinesPlot::UpdateVectors(const Array3& p_vectors) {
  Streamlines(Content()).UpdateVectors(p_vectors);
  return *this;
}

} // namespace Vek::Chart::Scene
