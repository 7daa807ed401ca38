#include "scene/SlicesPlot.h"

#include "scene/private/SlicesContent.h"

#include <cmath>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene {

namespace {

Private::SlicesContent& Slices(Private::PlotContent& p_content) {
  return static_cast<Private::SlicesContent&>(p_content);
}

void RequireFinite(const char* p_function, double p_position) {
  if (!std::isfinite(p_position))
    throw std::invalid_argument(std::string(p_function) + ": expected a finite position, got " +
                                std::to_string(p_position));
}

} // namespace

SlicesPlot::SlicesPlot(const VoxelGrid& p_volume)
    : ColoredPlot(std::make_unique<Private::SlicesContent>(p_volume)) {}

SlicesPlot& SlicesPlot::At(int p_axis, double p_position) {
  if (p_axis < 0 || p_axis > 2)
    throw std::invalid_argument("At: expected an axis of 0 to 2, got " + std::to_string(p_axis));
  RequireFinite("At", p_position);
  Slices(Content()).Add({static_cast<std::size_t>(p_axis), p_position});
  return *this;
}

SlicesPlot& SlicesPlot::At(const Types::Plane& p_plane) {
  const Private::Point point = p_plane.Point(), normal = p_plane.Normal();
  const double length = Length(normal);
  if (!std::isfinite(point.x + point.y + point.z) || !std::isfinite(length) || !(length > 0))
    throw std::invalid_argument("At: expected a finite plane with a normal");
  Slices(Content()).Add({0, 0, p_plane});
  return *this;
}

SlicesPlot& SlicesPlot::Move(std::size_t p_slice, double p_position) {
  RequireFinite("Move", p_position);
  Slices(Content()).Move(p_slice, p_position);
  return *this;
}

SlicesPlot& SlicesPlot::Clear() {
  Slices(Content()).Clear();
  return *this;
}

std::size_t SlicesPlot::SliceCount() const {
  return Slices(const_cast<SlicesPlot*>(this)->Content()).Slices().size();
}

SlicesPlot::Slice SlicesPlot::SliceAt(std::size_t p_slice) const {
  const auto& slices = Slices(const_cast<SlicesPlot*>(this)->Content()).Slices();
  if (p_slice >= slices.size())
    throw std::invalid_argument("SliceAt: expected a number below " + std::to_string(slices.size()) + ", got " +
                                std::to_string(p_slice));
  const Private::PlaneSlice& slice = slices[p_slice];
  return slice.plane ? Slice{-1, 0} : Slice{static_cast<int>(slice.axis), slice.position};
}

SlicesPlot& SlicesPlot::Filter(VoxelGrid::Filter p_filter) {
  Slices(Content()).SetFilter(p_filter);
  return *this;
}

SlicesPlot& SlicesPlot::Show(double p_low, double p_high) {
  if (!(p_low <= p_high))
    throw std::invalid_argument("Show: expected ascending limits, got " + std::to_string(p_low) + " and " +
                                std::to_string(p_high));
  Slices(Content()).Show({p_low, p_high});
  return *this;
}

SlicesPlot& SlicesPlot::Block(const Types::BoundingBox_Base<double>& p_part,
                              const std::array<std::vector<double>, 3>& p_knots) {
  Slices(Content()).SetBlock(p_part, p_knots);
  return *this;
}

SlicesPlot& SlicesPlot::ColorByValue() {
  Slices(Content()).ColorByValue();
  return *this;
}

SlicesPlot& SlicesPlot::UpdateValues(const Array1& p_values) {
  Slices(Content()).UpdateValues(p_values);
  return *this;
}

} // namespace Vek::Chart::Scene
