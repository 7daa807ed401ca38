#include "platform/utility/Calendar.h"

namespace Vek::Chart::Utility {

namespace {

constexpr std::int64_t EraDays = 146097, EraYears = 400; // after which the calendar repeats
constexpr std::int64_t EpochDay = 719468;                // 1970-01-01, counted from March of the year 0

/// The days from the first of March to that of a month, which is counted from March. Five months from March or August
/// on have 153 days.
constexpr std::int64_t DaysBefore(std::int64_t p_month) {
  return (153 * p_month + 2) / 5;
}

} // namespace

// Years begin in March, so that leap days end them.

std::int64_t DayOfMonth(std::int64_t p_month) {
  const std::int64_t shifted = p_month - 2;
  const std::int64_t year = FloorDivided(shifted, 12);
  const std::int64_t leapDays = FloorDivided(year, 4) - FloorDivided(year, 100) + FloorDivided(year, 400);
  return year * 365 + leapDays + DaysBefore(shifted - year * 12) - EpochDay;
}

Date DateOf(std::int64_t p_day) {
  const std::int64_t shifted = p_day + EpochDay;
  const std::int64_t era = FloorDivided(shifted, EraDays);
  const std::int64_t day = shifted - era * EraDays;
  // The last days of 4, 100 and 400 years are leap days or none.
  const std::int64_t year = (day - day / 1460 + day / 36524 - day / 146096) / 365;
  const std::int64_t dayOfYear = day - (365 * year + year / 4 - year / 100);
  const std::int64_t month = (5 * dayOfYear + 2) / 153;
  const bool isNextYear = month >= 10;
  return {era * EraYears + year + (isNextYear ? 1 : 0), static_cast<int>(month + (isNextYear ? -9 : 3)),
          static_cast<int>(dayOfYear - DaysBefore(month) + 1)};
}

} // namespace Vek::Chart::Utility
