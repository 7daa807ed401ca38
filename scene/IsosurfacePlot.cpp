#include "scene/IsosurfacePlot.h"

#include "scene/private/IsosurfaceContent.h"

namespace Vek::Chart::Scene {

namespace {

Private::IsosurfaceContent& Surfaces(Private::PlotContent& p_content) {
  return static_cast<Private::IsosurfaceContent&>(p_content);
}

} // namespace

IsosurfacePlot::IsosurfacePlot(const VoxelGrid& p_volume, const std::vector<double>& p_levels)
    : ColoredPlot(std::make_unique<Private::IsosurfaceContent>(p_volume, p_levels)) {}

IsosurfacePlot& IsosurfacePlot::Levels(const std::vector<double>& p_levels) {
  Surfaces(Content()).SetLevels(p_levels);
  return *this;
}

IsosurfacePlot& IsosurfacePlot::ColorByLevel() {
  Surfaces(Content()).ColorByLevel();
  return *this;
}

IsosurfacePlot& IsosurfacePlot::UpdateValues(const Array1& p_values) {
  Surfaces(Content()).UpdateValues(p_values);
  return *this;
}

} // namespace Vek::Chart::Scene
