#pragma once

#include "scene/StreamlineTracer.h"
#include "scene/VectorField.h"
#include "scene/private/DataTransform.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// The box in which a field has streamlines: around its nodes, with the gap that wraps, within the limits and the
/// positive part of logarithmic axes. Empty if nothing is left.
Box RegionOf(const VectorField& p_field, const AxisRules& p_rules);

/// Evenly spaced streamlines of a field within a region of the data, traced in the scene, so that they are even as they
/// are seen. `p_spacing` is the distance of neighbouring lines, a fraction of the region's diagonal; `p_shortest` the
/// length of the shortest ones, in such distances. Lines of a layer stay in it.
std::vector<Streamline> TracedLines(const VectorField& p_field, const Box& p_region, const DataTransform& p_transform,
                                    double p_spacing, double p_shortest);

/// The vectors of a field at a point of a line; false where there is none.
bool SampleAt(const VectorField& p_field, const DataTransform& p_transform, const Point& p_scene, Point& p_vector);

/// Where an arrow head sits on a line.
struct LineHead {
  Point base;              ///< on the line
  Point direction;         ///< from the base to where the line is a length further
  std::size_t nearest = 0; ///< the point of the line nearest to its middle
};
/// Heads along a line, one for each `p_distance` of it and at least one, on straight parts. `p_length(i)` is the length
/// of a head near point i. None where a line is shorter than a head, or bends within each.
template <class Length>
std::vector<LineHead> HeadsOf(const Streamline& p_line, double p_distance, Length&& p_length);

/// A line by its arc length.
class ArcLine {
public:
  explicit ArcLine(const Streamline& p_line);
  double Length() const { return _arcs.empty() ? 0 : _arcs.back(); }
  Point At(double p_arc) const;
  /// The point nearest to an arc length.
  std::size_t Nearest(double p_arc) const;

private:
  const Streamline& _line;
  std::vector<double> _arcs;
};

template <class Length>
std::vector<LineHead> HeadsOf(const Streamline& p_line, double p_distance, Length&& p_length) {
  const ArcLine arc(p_line);
  const double count = std::max(1.0, std::floor(arc.Length() / p_distance));
  const double interval = arc.Length() / count;
  std::vector<LineHead> heads;
  for (double i = 0; i < count; ++i) {
    constexpr double LeastStraightness = 0.9; // chord by arc
    LineHead best;
    double straightest = LeastStraightness;
    for (const double share : {0.5, 0.4, 0.6, 0.3, 0.7, 0.2, 0.8}) {
      const double middle = (i + share) * interval;
      const std::size_t nearest = arc.Nearest(middle);
      const double length = p_length(nearest);
      if (!(middle - length / 2 >= 0 && middle + length / 2 <= arc.Length()))
        continue;
      const Point base = arc.At(middle - length / 2), tip = arc.At(middle + length / 2);
      const double straightness = Types::Length(tip - base) / length;
      if (straightness <= straightest + 0.02) // rather in the middle
        continue;
      straightest = straightness;
      best = {base, tip - base, nearest};
    }
    if (straightest > LeastStraightness)
      heads.push_back(best);
  }
  return heads;
}

} // namespace Vek::Chart::Scene::Private
