#include "scene/LinesPlot.h"

#include "scene/private/LinesContent.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

Private::LinesContent& Lines(Private::PlotContent& p_content) {
  return static_cast<Private::LinesContent&>(p_content);
}

void RequirePositive(const char* p_function, double p_number) {
  if (!(p_number > 0 && std::isfinite(p_number)))
    throw std::invalid_argument(std::string(p_function) + ": expected a finite number above 0, got " +
                                std::to_string(p_number));
}

} // namespace

LinesPlot::LinesPlot(std::vector<Types::Vector3_Base<double>> p_positions, std::vector<std::size_t> p_lengths)
    : ColoredPlot(std::make_unique<Private::LinesContent>(std::move(p_positions), std::move(p_lengths))) {}

LinesPlot& LinesPlot::Width(double p_points) {
  RequirePositive("Width", p_points);
  Lines(Content()).SetWidth(p_points);
  return *this;
}

LinesPlot& LinesPlot::Tubes(double p_diameter) {
  RequirePositive("Tubes", p_diameter);
  Lines(Content()).SetDiameter(p_diameter);
  return *this;
}

LinesPlot& LinesPlot::UpdatePositions(const Array3& p_positions) {
  Lines(Content()).UpdatePositions(p_positions);
  return *this;
}

} // namespace Vek::Chart::Scene
