#include "scene/private/RoundRange.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Scene::Private {

namespace {

/// p_number = mantissa × 10^exponent, the mantissa from 1 to 10.
struct Decimal {
  explicit Decimal(double p_number)
      : exponent(static_cast<int>(std::floor(std::log10(p_number))))
      , mantissa(Scaled(p_number, -exponent)) {}
  /// A product that is rounded once where 10^n is exact: 3 × 10^-1 is 0.3.
  static double Scaled(double p_number, int p_exponent) {
    return p_exponent < 0 ? p_number / std::pow(10.0, -p_exponent) : p_number * std::pow(10.0, p_exponent);
  }
  int exponent;
  double mantissa;
};

constexpr double Tolerance = 1e-9; // of a step: limits that are round already, but for rounding errors

/// The multiple of a step of 1, 2, 2.5 or 5 × 10^n below (-1) or above (1) a value.
double Multiple(double p_value, double p_step, int p_side) {
  const Decimal step(p_step);
  const double count = Decimal::Scaled(p_value / step.mantissa, -step.exponent);
  const double whole = p_side < 0 ? std::floor(count + Tolerance) : std::ceil(count - Tolerance);
  const double multiple = Decimal::Scaled(whole * step.mantissa, step.exponent);
  if (!std::isfinite(multiple))
    return p_value;
  return p_side < 0 ? std::min(multiple, p_value) : std::max(multiple, p_value);
}

/// The number of 1, 2 and 5 × 10^n below or above a value.
double RoundPower(double p_value, int p_side) {
  constexpr std::array Mantissas{1.0, 2.0, 5.0, 10.0};
  const Decimal decimal(p_value);
  double result = p_value;
  if (p_side < 0) {
    for (const double mantissa : Mantissas)
      if (mantissa <= decimal.mantissa * (1 + Tolerance))
        result = Decimal::Scaled(mantissa, decimal.exponent);
    return std::min(result, p_value);
  }
  for (auto mantissa = Mantissas.rbegin(); mantissa != Mantissas.rend(); ++mantissa)
    if (*mantissa >= decimal.mantissa * (1 - Tolerance))
      result = Decimal::Scaled(*mantissa, decimal.exponent);
  return std::max(result, p_value);
}

} // namespace

double RoundStep(double p_least) {
  const Decimal decimal(p_least);
  for (const double mantissa : {1.0, 2.0, 2.5, 5.0})
    if (mantissa >= decimal.mantissa * (1 - Tolerance))
      return Decimal::Scaled(mantissa, decimal.exponent);
  return Decimal::Scaled(10, decimal.exponent);
}

double NearestRound(double p_number) {
  const Decimal decimal(p_number);
  double nearest = 1;
  for (const double mantissa : {2.0, 5.0, 10.0})
    if (std::abs(std::log(mantissa / decimal.mantissa)) < std::abs(std::log(nearest / decimal.mantissa)))
      nearest = mantissa;
  return Decimal::Scaled(nearest, decimal.exponent);
}

Range RoundOutward(const Range& p_range, bool p_logarithmic, int p_steps) {
  auto [low, high] = p_range;
  if (low == high) {
    const double half = low == 0 ? 0.5 : std::abs(low) / 10;
    low -= half;
    high += half;
  }
  if (p_logarithmic && high / low > 10) {
    const double roundLow = RoundPower(low, -1), roundHigh = RoundPower(high, 1);
    return {roundLow > 0 ? roundLow : low, std::isfinite(roundHigh) ? roundHigh : high};
  }
  const double span = high - low;
  constexpr double LeastSpan = 1e-290; // below, steps are no normal numbers
  if (!(std::isfinite(span) && span > LeastSpan))
    return {low, high};
  const double step = RoundStep(span / p_steps);
  const double roundLow = Multiple(low, step, -1);
  return {p_logarithmic && roundLow <= 0 ? low : roundLow, Multiple(high, step, 1)};
}

ValueSummary Summarize(const std::vector<double>& p_values, bool p_logarithmic) {
  ValueSummary summary;
  std::vector<double> finite;
  finite.reserve(p_values.size());
  for (const double value : p_values) {
    if (std::isnan(value))
      ++summary.missing;
    else if (p_logarithmic ? value <= 0 : value == -HUGE_VALF)
      summary.hasBelow = true;
    else if (value == HUGE_VALF)
      summary.hasAbove = true;
    else
      finite.push_back(value);
  }
  if (finite.empty())
    return summary;
  const auto [min, max] = std::minmax_element(finite.begin(), finite.end());
  summary.all = {*min, *max};
  // Rounded outward, so that a few values have no outliers.
  const double last = static_cast<double>(finite.size() - 1);
  const auto quantile = [&](double p_position) {
    const auto element = finite.begin() + static_cast<std::ptrdiff_t>(p_position);
    std::nth_element(finite.begin(), element, finite.end());
    return *element;
  };
  summary.most.min = quantile(std::floor(0.02 * last));
  summary.most.max = quantile(std::ceil(0.98 * last));
  return summary;
}

Range DefaultRange(const ValueSummary& p_summary, bool p_logarithmic) {
  constexpr double MostRatio = 4;
  if (p_summary.all.Empty())
    return p_logarithmic ? Range(1, 10) : Range(0, 1);
  const auto span = [&](const Range& p_range) {
    return p_logarithmic ? std::log(p_range.max / p_range.min) : p_range.max - p_range.min;
  };
  const double most = span(p_summary.most);
  const bool hasOutliers = most > 0 && span(p_summary.all) > MostRatio * most;
  constexpr int Steps = 20;
  return RoundOutward(hasOutliers ? p_summary.most : p_summary.all, p_logarithmic, Steps);
}

} // namespace Vek::Chart::Scene::Private
