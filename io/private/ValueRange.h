#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <type_traits>

namespace Vek::Chart::Io::Private {

/// Whether a value is none of those that mean "no data": NaN, infinities and one number, rounded to the type.
template <class T>
bool IsPresent(T p_value, const std::optional<double>& p_noData) {
  if constexpr (std::is_floating_point_v<T>)
    return std::isfinite(p_value) && !(p_noData && p_value == static_cast<T>(*p_noData));
  else
    return !(p_noData && double(p_value) == *p_noData);
}

/// The smallest and the largest of many numbers that are present.
class ValueRange {
public:
  explicit ValueRange(std::optional<double> p_noData)
      : _noData(p_noData) {}

  template <class T>
  void Add(const T* p_values, std::size_t p_count) {
    // "No data" between these limits does not matter.
    const std::array<T, 2> limits = Extremes(p_values, p_count);
    if (limits[0] <= limits[1] && IsPresent(limits[0], _noData) && IsPresent(limits[1], _noData)) {
      Include(double(limits[0]));
      Include(double(limits[1]));
      return;
    }
    for (std::size_t i = 0; i < p_count; ++i)
      if (IsPresent(p_values[i], _noData))
        Include(double(p_values[i]));
  }

  /// The numbers of another range.
  void Add(const ValueRange& p_other) {
    _limits = {std::min(_limits[0], p_other._limits[0]), std::max(_limits[1], p_other._limits[1])};
  }
  /// A range without numbers, with the same number for "no data".
  ValueRange None() const { return ValueRange(_noData); }

  /// {0, 0} without any number.
  std::array<double, 2> Limits() const { return _limits[0] <= _limits[1] ? _limits : std::array<double, 2>{0, 0}; }

private:
  void Include(double p_value) { _limits = {std::min(_limits[0], p_value), std::max(_limits[1], p_value)}; }

  /// Skips NaN. In lanes, since the compiler vectorises no reduction of floats that may be NaN.
  template <class T>
  static std::array<T, 2> Extremes(const T* p_values, std::size_t p_count) {
    constexpr std::size_t Lanes = 64; // a shorter loop is unrolled before it is vectorised
    using Limits = std::numeric_limits<T>;
    std::array<T, Lanes> least;
    std::array<T, Lanes> most;
    least.fill(Limits::has_infinity ? Limits::infinity() : Limits::max());
    most.fill(Limits::has_infinity ? -Limits::infinity() : Limits::lowest());
    const auto take = [&](T p_value, std::size_t p_lane) {
      least[p_lane] = p_value < least[p_lane] ? p_value : least[p_lane];
      most[p_lane] = p_value > most[p_lane] ? p_value : most[p_lane];
    };
    std::size_t i = 0;
    for (; i + Lanes <= p_count; i += Lanes)
      for (std::size_t lane = 0; lane < Lanes; ++lane)
        take(p_values[i + lane], lane);
    for (; i < p_count; ++i)
      take(p_values[i], 0);
    return {*std::min_element(least.begin(), least.end()), *std::max_element(most.begin(), most.end())};
  }

  std::optional<double> _noData;
  std::array<double, 2> _limits{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
};

} // namespace Vek::Chart::Io::Private
