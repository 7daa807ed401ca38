#pragma once

#include "platform/Export.h"

#include <cstdint>

namespace Vek::Chart::Utility {

/// The seconds of a day.
constexpr std::int64_t DaySeconds = 86400;

/// A date of the proleptic Gregorian calendar.
struct Date {
  std::int64_t year = 1970; ///< 0 is the one before the year 1
  int month = 1;            ///< 1 to 12
  int day = 1;              ///< 1 to 31
};

/// The days from 1970-01-01 to the first of a month, which is counted from January of the year 0.
VEK_PLATFORM_API std::int64_t DayOfMonth(std::int64_t p_month);
/// The month of a date, counted from January of the year 0.
inline std::int64_t MonthOf(const Date& p_date) {
  return p_date.year * 12 + p_date.month - 1;
}
/// The days from 1970-01-01 to a date. Days beyond the month's end go on in the next one.
inline std::int64_t DayOf(const Date& p_date) {
  return DayOfMonth(MonthOf(p_date)) + p_date.day - 1;
}
/// The date so many days after 1970-01-01.
VEK_PLATFORM_API Date DateOf(std::int64_t p_day);

/// The quotient rounded down.
inline std::int64_t FloorDivided(std::int64_t p_a, std::int64_t p_b) {
  return p_a / p_b - (p_a % p_b < 0 ? 1 : 0);
}

} // namespace Vek::Chart::Utility
