// Steps of time by the CF conventions 1.10, 4.4: "hours since 2000-01-01 12:00".

#include "io/private/NetCdfGrid.h"

#include "io/private/Words.h"

#include "platform/utility/Calendar.h"

#include <cmath>
#include <cstdio>

namespace Vek::Chart::Io::Private {

namespace {

// Days count from 1970-01-01.
constexpr long long FirstGregorianDay = -141427; // 1582-10-15
constexpr long long FirstJulianDay = -2440588;   // of the Julian period
constexpr double Minute = 60, Hour = 3600, Day = 86400;

using Utility::Date;

/// The day of a date of the Julian calendar after the year -4800 (E. G. Richards, "Mapping Time", 1998).
long long JulianDay(const Date& p_date) {
  const long long year = p_date.year + 4800 - (p_date.month <= 2);
  const long long month = p_date.month + (p_date.month > 2 ? -3 : 9);
  return p_date.day + (153 * month + 2) / 5 + 365 * year + year / 4 - 32083 + FirstJulianDay;
}

Date JulianDate(long long p_day) {
  const long long shifted = p_day - FirstJulianDay + 32082;
  const long long yearFromMarch = (4 * shifted + 3) / 1461, dayOfYear = shifted - 1461 * yearFromMarch / 4;
  const long long month = (5 * dayOfYear + 2) / 153;
  Date date;
  date.month = static_cast<int>(month < 10 ? month + 3 : month - 9);
  date.year = yearFromMarch - 4800 + (date.month <= 2);
  date.day = static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1);
  return date;
}

/// What dates count in; days without a date, such as those of years of 360 days, are none of these.
enum class Calendar { None, Mixed, Gregorian };

Calendar CalendarOf(const NetCdfVariable& p_coordinate) {
  const std::string& name = p_coordinate.Text("calendar");
  if (name.empty() || IsSameWord(name, "standard") || IsSameWord(name, "gregorian"))
    return Calendar::Mixed;
  return IsSameWord(name, "proleptic_gregorian") ? Calendar::Gregorian : Calendar::None;
}

/// The seconds of a unit of time; 0 for months, years and others, whose lengths vary.
double SecondsOf(std::string_view p_unit) {
  struct Row {
    std::string_view unit;
    double seconds;
  };
  constexpr Row Rows[] = {
      {"s", 1},
      {"sec", 1},
      {"second", 1},
      {"seconds", 1},
      {"min", Minute},
      {"mins", Minute},
      {"minute", Minute},
      {"minutes", Minute},
      {"h", Hour},
      {"hr", Hour},
      {"hrs", Hour},
      {"hour", Hour},
      {"hours", Hour},
      {"d", Day},
      {"day", Day},
      {"days", Day},
      {"week", 7 * Day},
      {"weeks", 7 * Day},
      {"ms", 1e-3},
      {"msec", 1e-3},
      {"millisecond", 1e-3},
      {"milliseconds", 1e-3},
  };
  for (const Row& row : Rows)
    if (IsSameWord(p_unit, row.unit))
      return row.seconds;
  return 0;
}

/// Takes numbers from the front of a text, with a format of scanf.
class Scanner {
public:
  explicit Scanner(const char* p_text)
      : _at(p_text) {}

  template <class Number>
  bool Take(const char* p_format, Number& p_number) {
    int length = 0;
    Number number{};
    if (std::sscanf(_at, (p_format + std::string("%n")).c_str(), &number, &length) != 1 || length == 0)
      return false;
    p_number = number;
    _at += length;
    return true;
  }
  void SkipBlanks() {
    while (*_at == ' ' || *_at == 'T')
      ++_at;
  }
  bool AtDigit() const { return *_at >= '0' && *_at <= '9'; }
  bool AtSign() const { return *_at == '+' || *_at == '-'; }
  std::string_view Rest() const { return _at; }

private:
  const char* _at;
};

/// The seconds of a time with zone, such as "2000-1-1", "2000-01-01T12:00:00.0Z" and "2000-01-01 00:00 -6:00". False
/// for other texts.
bool ReadTime(const std::string& p_text, Calendar p_calendar, double& p_seconds) {
  Scanner scanner(p_text.c_str());
  Date date;
  long long year = 0;
  if (!scanner.Take("%5lld", year))
    return false;
  date.year = year;
  if (scanner.Take("-%2d", date.month))
    scanner.Take("-%2d", date.day);
  if (date.month < 1 || date.month > 12 || date.day < 1 || date.day > 31 || scanner.AtDigit())
    return false;
  scanner.SkipBlanks();
  int hour = 0, minute = 0;
  double second = 0;
  if (scanner.AtDigit() && scanner.Take("%2d", hour) && scanner.Take(":%2d", minute))
    scanner.Take(":%lf", second);
  scanner.SkipBlanks();
  int zoneHour = 0, zoneMinute = 0;
  const bool isWest = scanner.Rest().substr(0, 1) == "-";
  if (scanner.AtSign() && scanner.Take("%3d", zoneHour) && !scanner.Take(":%2d", zoneMinute))
    scanner.Take("%2d", zoneMinute);
  if (const std::string_view rest = scanner.Rest(); !rest.empty() && rest != "Z" && rest != "UTC" && rest != "GMT")
    return false;
  const bool isJulian = p_calendar == Calendar::Mixed && Utility::DayOf(date) < FirstGregorianDay;
  const long long day = isJulian ? JulianDay(date) : Utility::DayOf(date);
  const double zone = zoneHour * Hour + (isWest ? -zoneMinute : zoneMinute) * Minute;
  p_seconds = double(day) * Day + hour * Hour + minute * Minute + second - zone;
  return true;
}

/// "1987-01-17 12:00", with seconds where they are not 0.
std::string TimeString(double p_seconds, Calendar p_calendar) {
  const double seconds = std::round(p_seconds);
  const long long day = static_cast<long long>(std::floor(seconds / Day));
  const int ofDay = static_cast<int>(seconds - double(day) * Day);
  const bool isJulian = p_calendar == Calendar::Mixed && day < FirstGregorianDay;
  const Date date = isJulian ? JulianDate(day) : Utility::DateOf(day);
  char text[64];
  int length = std::snprintf(text, sizeof text, "%04lld-%02d-%02d %02d:%02d", static_cast<long long>(date.year),
                             date.month, date.day, ofDay / 3600, ofDay / 60 % 60);
  if (ofDay % 60 != 0)
    length += std::snprintf(text + length, sizeof text - std::size_t(length), ":%02d", ofDay % 60);
  return std::string(text, std::size_t(length));
}

} // namespace

std::vector<std::string> TimeStrings(const NetCdfVariable& p_coordinate, const std::vector<double>& p_values) {
  const std::string& unit = p_coordinate.Text("units");
  const std::string noName;
  Words words(unit, noName);
  const double length = SecondsOf(words.Next());
  const Calendar calendar = CalendarOf(p_coordinate);
  double start = 0;
  const bool isDate = length > 0 && IsSameWord(words.Next(), "since") && calendar != Calendar::None &&
                      ReadTime(std::string(words.RestOfLine()), calendar, start);
  constexpr double Latest = 1e14; // within the years that are printed
  std::vector<std::string> times;
  for (const double value : p_values) {
    const double seconds = start + value * length;
    char number[64];
    std::snprintf(number, sizeof number, "%.10g", value);
    times.push_back(isDate && seconds > double(FirstJulianDay) * Day && seconds < Latest
                        ? TimeString(seconds, calendar)
                        : number + (unit.empty() ? "" : ' ' + unit));
  }
  return times;
}

} // namespace Vek::Chart::Io::Private
