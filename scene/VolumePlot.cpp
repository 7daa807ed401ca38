#include "scene/VolumePlot.h"

#include "scene/private/VolumeContent.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

Private::VolumeContent& Volume(Private::PlotContent& p_content) {
  return static_cast<Private::VolumeContent&>(p_content);
}

} // namespace

VolumePlot::VolumePlot(const VoxelGrid& p_volume)
    : ColoredPlot(std::make_unique<Private::VolumeContent>(p_volume)) {}

VolumePlot& VolumePlot::Composite() {
  Volume(Content()).SetMode(VolumeRaycaster::Mode::Composite);
  return *this;
}

VolumePlot& VolumePlot::Maximum() {
  Volume(Content()).SetMode(VolumeRaycaster::Mode::Maximum);
  return *this;
}

VolumePlot& VolumePlot::Average() {
  Volume(Content()).SetMode(VolumeRaycaster::Mode::Average);
  return *this;
}

VolumePlot& VolumePlot::OpacityBy(const OpacityFunction& p_opacity) {
  Volume(Content()).SetOpacities(p_opacity);
  return *this;
}

VolumePlot& VolumePlot::OpacityBy(std::vector<OpacityFunction::Point> p_points) {
  return OpacityBy(OpacityFunction(std::move(p_points)));
}

VolumePlot& VolumePlot::LayerThickness(double p_share) {
  if (!(p_share > 0 && p_share <= 1))
    throw std::invalid_argument("LayerThickness: expected a share above 0 to 1, got " + std::to_string(p_share));
  Volume(Content()).SetLayer(p_share);
  return *this;
}

VolumePlot& VolumePlot::Shading(bool p_shading) {
  Volume(Content()).SetShading(p_shading);
  return *this;
}

VolumePlot& VolumePlot::SamplesPerVoxel(double p_samples) {
  if (!(p_samples > 0 && std::isfinite(p_samples)))
    throw std::invalid_argument("SamplesPerVoxel: expected a finite number above 0, got " + std::to_string(p_samples));
  Volume(Content()).SetSamples(p_samples);
  return *this;
}

VolumePlot& VolumePlot::Filter(VoxelGrid::Filter p_filter) {
  Volume(Content()).SetFilter(p_filter);
  return *this;
}

VolumePlot& VolumePlot::Block(const Types::BoundingBox_Base<double>& p_part,
                              const std::array<std::vector<double>, 3>& p_knots) {
  Volume(Content()).SetBlock(p_part, p_knots);
  return *this;
}

VolumePlot& VolumePlot::ColorByValue() {
  Volume(Content()).ColorByValue();
  return *this;
}

VolumePlot& VolumePlot::UpdateValues(const Array1& p_values) {
  Volume(Content()).UpdateValues(p_values);
  return *this;
}

} // namespace Vek::Chart::Scene
