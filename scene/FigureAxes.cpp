// The axes of a Figure: their titles, ticks, limits and scales.

#include "scene/Figure.h"

#include "scene/Graticule.h"
#include "scene/private/FigureCuts.h"
#include "scene/private/FigureMap.h"
#include "scene/private/FigureState.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

std::size_t RequireAxis(const char* p_function, int p_axis) {
  if (p_axis < 0 || p_axis > 2)
    throw std::invalid_argument(std::string(p_function) + ": expected an axis of 0 to 2, got " +
                                std::to_string(p_axis));
  return static_cast<std::size_t>(p_axis);
}

/// Throws if there is a map with limits that are not those of one.
void RequireMap(const char* p_function, const Private::AxisRules& p_rules) {
  const auto require = [&](std::size_t p_axis, double p_least, double p_most, const char* p_expected) {
    const auto& limits = p_rules.limits[p_axis];
    if (p_rules.isMap && limits &&
        !(limits->min >= p_least && limits->max <= p_most && limits->max - limits->min <= Graticule::Turn))
      throw std::invalid_argument(std::string(p_function) + ": expected " + p_expected + ", got " +
                                  std::to_string(limits->min) + " to " + std::to_string(limits->max));
  };
  require(0, -Graticule::Turn, 2 * Graticule::Turn, "longitudes from -360 to 720, up to 360 apart");
  require(1, -Graticule::Pole, Graticule::Pole, "latitudes from -90 to 90");
}

} // namespace

Figure& Figure::SetAxisTitles(const QString& p_x, const QString& p_y, const QString& p_z) {
  _state->axisTitles = {p_x, p_y, p_z};
  return *this;
}

Figure& Figure::SetAxisNames(int p_axis, const std::vector<QString>& p_names) {
  RequireAxis("SetAxisNames", p_axis);
  return SetTicks(p_axis, [p_names](double p_low, double p_high, std::size_t p_most) {
    std::vector<double> values; // with at most so many strings
    std::vector<QString> strings;
    const double low = std::ceil(std::min(p_low, p_high)), high = std::floor(std::max(p_low, p_high));
    const auto isShown = [&](std::size_t p_i) {
      return low <= static_cast<double>(p_i) && static_cast<double>(p_i) <= high;
    };
    std::size_t count = 0;
    for (std::size_t i = 0; i < p_names.size(); ++i)
      count += isShown(i) ? 1 : 0;
    const std::size_t step = p_most == 0 ? count + 1 : (count + p_most - 1) / p_most;
    for (std::size_t i = 0; i < p_names.size(); ++i)
      if (isShown(i) && i % std::max<std::size_t>(step, 1) == 0) {
        values.push_back(static_cast<double>(i));
        strings.push_back(p_names[i]);
      }
    return Ticks(std::move(values), std::move(strings));
  });
}

Figure& Figure::SetTicks(int p_axis, Axes::TickMaker p_ticks) {
  _state->ticks[RequireAxis("SetTicks", p_axis)] = std::move(p_ticks);
  ++_state->ticksSet;
  return *this;
}

Figure& Figure::SetLimits(int p_axis, double p_low, double p_high) {
  const std::size_t axis = RequireAxis("SetLimits", p_axis);
  const bool isLogarithmic = _state->rules.logarithmic[axis];
  if (!(std::isfinite(p_low) && std::isfinite(p_high) && p_low < p_high) || (isLogarithmic && p_low <= 0))
    throw std::invalid_argument(std::string("SetLimits: expected finite, ascending limits") +
                                (isLogarithmic ? " above 0" : "") + ", got " + std::to_string(p_low) + " and " +
                                std::to_string(p_high));
  Private::AxisRules rules = _state->rules;
  rules.limits[axis] = Private::Range(p_low, p_high);
  RequireMap("SetLimits", rules);
  _state->rules = rules;
  return *this;
}

Figure& Figure::SetLogAxis(int p_axis, bool p_logarithmic) {
  const std::size_t axis = RequireAxis("SetLogAxis", p_axis);
  const auto& limits = _state->rules.limits[axis];
  if (p_logarithmic && limits && limits->min <= 0)
    throw std::invalid_argument("SetLogAxis: expected limits above 0, got " + std::to_string(limits->min));
  Private::AxisRules rules = _state->rules;
  rules.logarithmic[axis] = p_logarithmic;
  rules.dates[axis] = rules.dates[axis] && !p_logarithmic;
  rules.isMap = rules.isMap && !(p_logarithmic && axis < 2);
  for (const Types::Plane& clip : _state->clips)
    if (!Private::IsCut(clip, rules))
      throw std::invalid_argument("SetLogAxis: expected cutting planes above 0, got one at " +
                                  std::to_string(Private::At(clip.Point(), axis)));
  _state->rules = rules;
  return *this;
}

Figure& Figure::SetDateAxis(int p_axis, bool p_dates) {
  const std::size_t axis = RequireAxis("SetDateAxis", p_axis);
  _state->rules.dates[axis] = p_dates;
  _state->rules.logarithmic[axis] = _state->rules.logarithmic[axis] && !p_dates;
  _state->rules.isMap = _state->rules.isMap && !(p_dates && axis < 2);
  return *this;
}

Figure& Figure::SetMap(bool p_isMap) {
  Private::AxisRules rules = _state->rules;
  rules.isMap = p_isMap;
  for (const std::size_t axis : {0, 1}) {
    rules.logarithmic[axis] = rules.logarithmic[axis] && !p_isMap;
    rules.dates[axis] = rules.dates[axis] && !p_isMap;
  }
  RequireMap("SetMap", rules);
  if (p_isMap && _state->clips.size() > Private::MostCuts - Private::MapBorderCount)
    throw std::invalid_argument("SetMap: expected at most 2 cutting planes, got " +
                                std::to_string(_state->clips.size()));
  _state->rules = rules;
  return *this;
}

Figure& Figure::SetAspect(double p_x, double p_y, double p_z) {
  for (const double factor : {p_x, p_y, p_z})
    if (!(std::isfinite(factor) && factor > 0))
      throw std::invalid_argument("SetAspect: expected factors above 0, got " + std::to_string(factor));
  _state->rules.stretch = {p_x, p_y, p_z};
  return *this;
}

Figure& Figure::Clip(int p_axis, double p_position, Side p_kept) {
  const std::size_t axis = RequireAxis("Clip", p_axis);
  Private::Point point, normal;
  Private::At(point, axis) = p_position;
  Private::At(normal, axis) = p_kept == Side::Above ? 1 : -1;
  return Clip(Types::Plane(point, normal));
}

Types::Vector3_Base<double> Figure::ToScene(const Types::Vector3_Base<double>& p_data) const {
  return _state->transform(p_data);
}

Types::Vector3_Base<double> Figure::ToData(const Types::Vector3_Base<double>& p_scene) const {
  return _state->transform.Inverse(p_scene);
}

Types::BoundingBox_Base<double> Figure::Limits() const {
  return _state->Limits();
}

QString Figure::AxisTitle(int p_axis) const {
  return _state->AxisName(RequireAxis("AxisTitle", p_axis));
}

QString Figure::Format(int p_axis, double p_position, double p_step) const {
  constexpr std::size_t Steps = 10;
  const Axes::TickMaker maker = _state->TicksOf(RequireAxis("Format", p_axis));
  const double half = (p_step != 0 && std::isfinite(p_step) ? std::abs(p_step) : 1) * Steps / 2;
  return (maker ? maker(p_position - half, p_position + half, Steps)
                : Ticks::Linear(p_position - half, p_position + half, Steps))
      .Format(p_position);
}

} // namespace Vek::Chart::Scene
