#pragma once

#include <QString>

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Ticks at round times; values are seconds since 1970-01-01 00:00. See Ticks::Dates.
struct DateTicks {
  std::vector<double> values;
  std::vector<QString> strings;
  QString note;   ///< what all strings have in common
  int digits = 0; ///< see DateString
};

/// For a finite, ascending range; none beyond `MostSeconds`.
DateTicks MakeDateTicks(double p_low, double p_high, std::size_t p_most);

constexpr double MostSeconds = 1e15; ///< of which doubles still have eighths

/// A time down to a unit: 0 for years, 1 months, 2 days, 3 minutes, 4 seconds, 5 and more for decimals of seconds,
/// which are rounded.
QString DateString(double p_seconds, int p_digits);

} // namespace Vek::Chart::Scene::Private
