#pragma once

#include <cstdint>

namespace Vek::Chart::Scene::Private {

constexpr std::int64_t DaySeconds = 86400;

/// A day of the proleptic Gregorian calendar, whose year 0 is the one before the year 1.
struct Date {
  std::int64_t year = 1970;
  int month = 1; ///< 1 to 12
  int day = 1;   ///< 1 to 31
};

/// The days from 1970-01-01 to the first of a month, which is counted from January of the year 0.
std::int64_t DayOfMonth(std::int64_t p_month);
/// The date so many days after 1970-01-01.
Date DateOf(std::int64_t p_day);
/// The month of a date, counted from January of the year 0.
inline std::int64_t MonthOf(const Date& p_date) {
  return p_date.year * 12 + p_date.month - 1;
}

/// The quotient rounded down.
inline std::int64_t FloorDivided(std::int64_t p_a, std::int64_t p_b) {
  return p_a / p_b - (p_a % p_b < 0 ? 1 : 0);
}

} // namespace Vek::Chart::Scene::Private
