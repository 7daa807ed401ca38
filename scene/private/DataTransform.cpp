#include "scene/private/DataTransform.h"

#include "scene/Graticule.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vek::Chart::Scene::Private {

namespace {

constexpr double Ln10 = 2.302585092994045684;
constexpr double MostRatio = 4; // of spans that keep equal units

double ToAxis(const DataTransform::Axis& p_axis, double p_number) {
  return p_axis.logarithmic ? (p_number > 0 ? std::log10(p_number) : NAN) : p_number;
}
double FromAxis(const DataTransform::Axis& p_axis, double p_number) {
  using Limits = std::numeric_limits<double>;
  return p_axis.logarithmic ? std::clamp(std::pow(10, p_number), Limits::denorm_min(), Limits::max()) : p_number;
}

/// The factor that makes a span comparable to `p_reference`; 1 where it is already.
double StretchTo(double p_reference, double p_span) {
  if (p_span <= 0 || p_reference <= 0 || (p_span <= MostRatio * p_reference && p_reference <= MostRatio * p_span))
    return 1;
  return NearestRound(std::clamp(p_reference / 2 / p_span, 1e-200, 1e200));
}

/// The stretch of each axis, for spans in data units or decades.
std::array<double, 3> Stretches(const std::array<double, 3>& p_spans, const AxisRules& p_rules) {
  std::array<double, 3> stretch{1, 1, 1};
  const auto length = [&](std::size_t p_axis) { return p_spans[p_axis] * stretch[p_axis]; };
  const auto isFree = [&](std::size_t p_axis) { return p_rules.stretch[p_axis] == 0; };
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (!isFree(axis))
      stretch[axis] = p_rules.stretch[axis];
  // Axes of one unit first, then others relative to them.
  double reference = 0;
  for (const bool isOther : {false, true})
    for (std::size_t axis = 0; axis < 3; ++axis) {
      if (p_rules.HasOwnUnit(axis) != isOther || p_spans[axis] <= 0)
        continue;
      if (isFree(axis) && reference > 0) {
        // A short first axis is stretched to the second one; everything else to what comes before it.
        const bool firstIsShorter = !isOther && axis == 1 && p_spans[1] > MostRatio * length(0);
        if (firstIsShorter && isFree(0))
          stretch[0] = StretchTo(p_spans[1], p_spans[0]);
        else // time is longer than what it is drawn against, but not higher
          stretch[axis] = StretchTo(p_rules.dates[axis] && axis < 2 ? 3 * reference : reference, p_spans[axis]);
      }
      reference = std::max(reference, length(axis));
    }
  return stretch;
}

/// Whether a longitude of any turn lies within limits.
bool IsWithin(const Range& p_limits, double p_longitude) {
  if (p_limits.min <= p_longitude && p_longitude <= p_limits.max)
    return true;
  const double beyond = std::fmod(p_longitude - p_limits.min, Graticule::Turn);
  return p_limits.min + beyond + (beyond < 0 ? Graticule::Turn : 0) <= p_limits.max;
}

} // namespace

bool AxisRules::operator==(const AxisRules& p_other) const {
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto &a = limits[axis], &b = p_other.limits[axis];
    if (a.has_value() != b.has_value() || (a && (a->min != b->min || a->max != b->max)))
      return false;
  }
  return logarithmic == p_other.logarithmic && dates == p_other.dates && isMap == p_other.isMap &&
         stretch == p_other.stretch && cutsSurfaces == p_other.cutsSurfaces;
}

bool AxisRules::Shows(const Point& p_point) const {
  if (isMap &&
      !(p_point.x >= -Graticule::Turn && p_point.x <= 2 * Graticule::Turn && std::abs(p_point.y) <= Graticule::Pole))
    return false;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double number = At(p_point, axis);
    if (!std::isfinite(number) || (logarithmic[axis] && number <= 0))
      return false;
    if (isMap && axis == 0) {
      if (limits[0] && !IsWithin(*limits[0], number))
        return false;
      continue;
    }
    if (limits[axis] && !(limits[axis]->min <= number && number <= limits[axis]->max))
      return false;
  }
  return true;
}

bool AxisRules::HasVertex(const Point& p_point) const {
  AxisRules rules = *this;
  if (cutsSurfaces)
    rules.limits = {};
  else if (isMap)
    rules.limits[0] = rules.limits[1] = {};
  return rules.Shows(p_point);
}

Point DataTransform::operator()(const Point& p_data) const {
  Point scene;
  for (std::size_t axis = 0; axis < 3; ++axis)
    At(scene, axis) = (ToAxis(axes[axis], At(p_data, axis)) - axes[axis].origin) * axes[axis].factor;
  return scene;
}

Box DataTransform::operator()(const Box& p_data) const {
  return p_data.Empty() ? Box() : Box((*this)(p_data.Min()), (*this)(p_data.Max()));
}

Point DataTransform::Inverse(const Point& p_scene) const {
  Point data;
  for (std::size_t axis = 0; axis < 3; ++axis)
    At(data, axis) = FromAxis(axes[axis], At(p_scene, axis) / axes[axis].factor + axes[axis].origin);
  return data;
}

Box DataTransform::Inverse(const Box& p_scene) const {
  return p_scene.Empty() ? Box() : Box(Inverse(p_scene.Min()), Inverse(p_scene.Max()));
}

Point DataTransform::Direction(const Point& p_data, const Point& p_vector) const {
  Point direction;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double slope = axes[axis].logarithmic ? 1 / (At(p_data, axis) * Ln10) : 1;
    At(direction, axis) = At(p_vector, axis) * slope * axes[axis].factor;
  }
  return direction;
}

bool DataTransform::operator==(const DataTransform& p_other) const {
  return std::equal(axes.begin(), axes.end(), p_other.axes.begin(), [](const Axis& p_a, const Axis& p_b) {
    return p_a.logarithmic == p_b.logarithmic && p_a.origin == p_b.origin && p_a.factor == p_b.factor &&
           p_a.stretch == p_b.stretch;
  });
}

Box Widened(const Box& p_box, const std::array<bool, 3>& p_logarithmic, bool p_isFlat) {
  if (p_box.Empty()) {
    Point low, high(1, 1, p_isFlat ? 0 : 1);
    for (std::size_t axis = 0; axis < 3; ++axis)
      if (p_logarithmic[axis])
        At(low, axis) = 1, At(high, axis) = 10;
    return {low, high};
  }
  double longest = 0;
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (!p_logarithmic[axis])
      longest = std::max(longest, At(p_box.Extent(), axis));
  Point low = p_box.Min(), high = p_box.Max();
  for (std::size_t axis = 0; axis < (p_isFlat ? 2 : 3); ++axis) {
    double &from = At(low, axis), &to = At(high, axis);
    if (to - from > 0)
      continue;
    constexpr double LeastShare = 1e-6; // of the number, so that doubles tell the ends apart
    const double half = std::max(longest > 0 ? longest / 8 : 0.5, std::abs(from) * LeastShare);
    from = p_logarithmic[axis] ? from / std::sqrt(10.0) : from - half;
    to = p_logarithmic[axis] ? to * std::sqrt(10.0) : to + half;
  }
  return {low, high};
}

DataTransform TransformFor(const Box& p_box, const AxisRules& p_rules, const DataTransform& p_previous) {
  DataTransform transform;
  std::array<double, 3> spans{}, centers{};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    transform.axes[axis].logarithmic = p_rules.logarithmic[axis];
    const double low = ToAxis(transform.axes[axis], At(p_box.Min(), axis));
    const double high = ToAxis(transform.axes[axis], At(p_box.Max(), axis));
    spans[axis] = std::min(high - low, 1e300);
    centers[axis] = low / 2 + high / 2;
  }
  AxisRules rules = p_rules;
  if (rules.isMap && rules.stretch[0] == 0)
    rules.stretch = {Graticule::LongitudeScale(spans[0], std::round(p_box.Min().y), std::round(p_box.Max().y)), 1, 0};
  const std::array<double, 3> stretch = Stretches(spans, rules);
  double longest = 0;
  for (std::size_t axis = 0; axis < 3; ++axis)
    longest = std::max(longest, spans[axis] * stretch[axis]);
  const double unit = longest > 0 ? std::exp2(-std::ceil(std::log2(std::max(longest, 1e-280)))) : 1;

  bool keepsPrevious = true;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    DataTransform::Axis& mine = transform.axes[axis];
    mine.stretch = stretch[axis];
    mine.factor = stretch[axis] * unit;
    mine.origin = centers[axis];
    const DataTransform::Axis& previous = p_previous.axes[axis];
    const double moved = std::abs(previous.origin - mine.origin) * mine.factor;
    keepsPrevious = keepsPrevious && previous.logarithmic == mine.logarithmic && previous.stretch == mine.stretch &&
                    previous.factor == mine.factor && moved <= 1;
  }
  return keepsPrevious ? p_previous : transform;
}

} // namespace Vek::Chart::Scene::Private
