#include "scene/ScatterPlot.h"

#include "scene/private/ScatterContent.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace Vek::Chart::Scene {

namespace {

Private::ScatterContent& Scatter(Private::PlotContent& p_content) {
  return static_cast<Private::ScatterContent&>(p_content);
}

} // namespace

ScatterPlot::ScatterPlot(const Array3& p_positions)
    : ColoredPlot(std::make_unique<Private::ScatterContent>(p_positions)) {}

ScatterPlot& ScatterPlot::Diameter(double p_fraction) {
  if (!(p_fraction > 0 && p_fraction <= 1))
    throw std::invalid_argument("Diameter: expected a fraction above 0 and up to 1, got " + std::to_string(p_fraction));
  Scatter(Content()).SetDiameter(p_fraction);
  return *this;
}

ScatterPlot& ScatterPlot::SizeBy(const Array1& p_values) {
  if (p_values.Count() != 0)
    RequireCount("SizeBy", p_values.Count(), Count());
  Scatter(Content()).SetSizes(Values(p_values));
  return *this;
}

ScatterPlot& ScatterPlot::SizeGrowth(double p_factor) {
  if (p_factor != 0 && !(p_factor > 1 && std::isfinite(p_factor)))
    throw std::invalid_argument("SizeGrowth: expected a factor above 1, or 0, got " + std::to_string(p_factor));
  Scatter(Content()).SetSizeGrowth(p_factor);
  return *this;
}

ScatterPlot& ScatterPlot::SizeTitle(const QString& p_title) {
  Scatter(Content()).SetSizeTitle(p_title);
  return *this;
}

ScatterPlot& ScatterPlot::ColorEach(const std::vector<QColor>& p_colors) {
  if (!p_colors.empty())
    RequireCount("ColorEach", p_colors.size(), Count());
  if (!std::all_of(p_colors.begin(), p_colors.end(), [](const QColor& p_color) { return p_color.isValid(); }))
    throw std::invalid_argument("ColorEach: expected valid colours");
  ChangeValues(Array1());
  Scatter(Content()).SetColors(p_colors);
  return *this;
}

ScatterPlot& ScatterPlot::Symbol(Model::Symbol::Shape p_shape) {
  Scatter(Content()).SetSymbol(p_shape);
  return *this;
}

ScatterPlot& ScatterPlot::UpdatePositions(const Array3& p_positions) {
  Scatter(Content()).UpdatePositions(p_positions);
  return *this;
}

} // namespace Vek::Chart::Scene
