#include "scene/private/FieldLines.h"

#include "scene/Graticule.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

bool Contains(const Range& p_range, double p_number) {
  return p_range.min <= p_number && p_number <= p_range.max;
}

/// The mean distance of nodes along each axis in the scene, the smallest that is not 0.
double CellOf(const VectorField& p_field, const Point& p_extent) {
  double cell = Length(p_extent);
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (const std::size_t count = p_field.Size()[axis]; count > 1 && At(p_extent, axis) > 0)
      cell = std::min(cell, At(p_extent, axis) / static_cast<double>(count - 1));
  return cell;
}

Range Common(const Range& p_a, const Range& p_b) {
  return {std::max(p_a.min, p_b.min), std::min(p_a.max, p_b.max)};
}

/// The longitudes of a field that lie on a map in any turn: as the map has them if the field goes around the world.
Range OnMap(const Range& p_field, const Range& p_map, bool p_goesAround) {
  if (p_goesAround)
    return p_map;
  constexpr int MostTurns = 3; // longitudes go from -360 to 720
  Range common;
  for (int turn = -MostTurns; turn <= MostTurns; ++turn) {
    const double shift = turn * Graticule::Turn;
    const Range part = Common(p_field, {p_map.min + shift, p_map.max + shift});
    if (part.min <= part.max)
      common += part.min, common += part.max;
  }
  return common;
}

} // namespace

Box RegionOf(const VectorField& p_field, const AxisRules& p_rules) {
  if (p_field.NodeCount() == 0)
    return {};
  Point low, high;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::vector<double>& nodes = p_field.Axis(axis);
    Range range;
    for (const double node : nodes)
      if (!p_rules.logarithmic[axis] || node > 0)
        range += node;
    if (!range.Empty() && axis == 0 && p_field.Period() > 0 && nodes.size() > 1)
      range.max = std::max(range.max, std::min(nodes.front(), nodes.back()) + p_field.Period());
    if (const auto& limits = p_rules.limits[axis])
      range = axis == 0 && p_rules.isMap ? OnMap(range, *limits, p_field.Period() > 0) : Common(range, *limits);
    if (!(range.min <= range.max))
      return {};
    At(low, axis) = range.min, At(high, axis) = range.max;
  }
  return {low, high};
}

bool SampleAt(const VectorField& p_field, const DataTransform& p_transform, const Point& p_scene, Point& p_vector) {
  Point data = p_transform.Inverse(p_scene);
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (p_field.Size()[axis] == 1) // rounding must not leave the layer
      At(data, axis) = p_field.Axis(axis).front();
  return p_field.Sample(data, p_vector);
}

std::vector<Streamline> TracedLines(const VectorField& p_field, const Box& p_region, const DataTransform& p_transform,
                                    double p_spacing, double p_shortest) {
  const Box box = p_transform(p_region);
  const Point extent = box.Empty() ? Point() : box.Extent();
  const double diagonal = Length(extent);
  if (!(diagonal > 0 && std::isfinite(diagonal)))
    return {};
  const auto field = [&](const Point& p_scene, Point& p_vector) {
    Point vector;
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (p_field.Size()[axis] > 1 && !Contains(Along(box, axis), At(p_scene, axis)))
        return false;
    if (!SampleAt(p_field, p_transform, p_scene, vector))
      return false;
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (p_field.Size()[axis] == 1)
        At(vector, axis) = 0;
    const Point data = p_transform.Inverse(p_scene);
    p_vector = Normalize(p_transform.Direction(data, vector)) * Length(vector);
    return true;
  };
  StreamlineTracer::Options options;
  options.length = 2 * diagonal;
  options.largestStep = std::clamp(CellOf(p_field, extent) / 2, diagonal / 600, diagonal / 60);
  options.smallestStep = options.largestStep * 1e-3;
  options.tolerance = diagonal * 1e-5;
  options.stagnation = 1e-6 * std::max(p_field.Speeds().max, 0.0);
  const double seeds = p_spacing * diagonal;
  return StreamlineTracer(field, options).Filled(box, {seeds, seeds / 2, p_shortest * seeds});
}

ArcLine::ArcLine(const Streamline& p_line)
    : _line(p_line)
    , _arcs(p_line.size()) {
  for (std::size_t i = 1; i < p_line.size(); ++i)
    _arcs[i] = _arcs[i - 1] + Types::Length(p_line[i] - p_line[i - 1]);
}

Point ArcLine::At(double p_arc) const {
  const auto next = static_cast<std::size_t>(std::upper_bound(_arcs.begin(), _arcs.end(), p_arc) - _arcs.begin());
  if (next == 0 || next == _arcs.size())
    return next == 0 ? _line.front() : _line.back();
  const double share = (p_arc - _arcs[next - 1]) / (_arcs[next] - _arcs[next - 1]);
  return _line[next - 1] + (_line[next] - _line[next - 1]) * share;
}

std::size_t ArcLine::Nearest(double p_arc) const {
  const auto next = static_cast<std::size_t>(std::lower_bound(_arcs.begin(), _arcs.end(), p_arc) - _arcs.begin());
  if (next == 0 || next == _arcs.size())
    return next == 0 ? 0 : next - 1;
  return p_arc - _arcs[next - 1] < _arcs[next] - p_arc ? next - 1 : next;
}

} // namespace Vek::Chart::Scene::Private
