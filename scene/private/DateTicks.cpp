#include "scene/private/DateTicks.h"

#include "scene/private/Decimal.h"

#include "platform/utility/Calendar.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace Vek::Chart::Scene::Private {

namespace {

using Utility::Date;
using Utility::DateOf;
using Utility::DayOfMonth;
using Utility::DaySeconds;
using Utility::FloorDivided;
using Utility::MonthOf;

/// The unit in which a time ends, or which all times have in common.
enum Unit { None = -1, Year, Month, Day, Minute, Second, Fraction };

/// A time as its parts. Hours and minutes go together: "12:30".
struct Time {
  Date date;
  std::int64_t second = 0;   ///< of the day
  std::int64_t fraction = 0; ///< of a second, in units that all times of a list share

  /// The coarsest unit that the time is a whole number of.
  Unit Finest() const {
    return fraction != 0      ? Fraction
           : second % 60 != 0 ? Second
           : second != 0      ? Minute
           : date.day != 1    ? Day
           : date.month != 1  ? Month
                              : Year;
  }
  /// The finest unit up to which two times are equal.
  Unit Shared(const Time& p_other) const {
    return date.year != p_other.date.year       ? None
           : date.month != p_other.date.month   ? Year
           : date.day != p_other.date.day       ? Month
           : second / 60 != p_other.second / 60 ? Day
                                                : Minute;
  }
};

Time TimeOf(std::int64_t p_seconds, std::int64_t p_fraction = 0) {
  const std::int64_t day = FloorDivided(p_seconds, DaySeconds);
  return {DateOf(day), p_seconds - day * DaySeconds, p_fraction};
}

QString Padded(std::int64_t p_number, int p_digits) {
  return QString::number(static_cast<qlonglong>(p_number)).rightJustified(p_digits, '0');
}

QString YearString(std::int64_t p_year) {
  return (p_year < 0 ? QString(Minus) : QString()) + Padded(std::abs(p_year), 4);
}

/// "2021", "2021-03" or "2021-03-14"
QString DateString(const Date& p_date, Unit p_finest) {
  QString string = YearString(p_date.year);
  if (p_finest > Year)
    string += '-' + Padded(p_date.month, 2);
  if (p_finest > Month)
    string += '-' + Padded(p_date.day, 2);
  return string;
}

/// "05" or "05.250"
QString SecondString(const Time& p_time, int p_decimals) {
  const QString seconds = Padded(p_time.second % 60, 2);
  return p_decimals > 0 ? seconds + '.' + Padded(p_time.fraction, p_decimals) : seconds;
}

/// "12:30", "12:30:05" or "12:30:05.250"
QString ClockString(const Time& p_time, Unit p_finest, int p_decimals) {
  const QString minutes = Padded(p_time.second / 3600, 2) + ':' + Padded(p_time.second / 60 % 60, 2);
  return p_finest > Minute ? minutes + ':' + SecondString(p_time, p_decimals) : minutes;
}

QString Complete(const Time& p_time, Unit p_finest, int p_decimals) {
  const QString date = DateString(p_time.date, p_finest);
  return p_finest > Day ? date + ' ' + ClockString(p_time, p_finest, p_decimals) : date;
}

/// What distinguishes a time from others that share a unit with it: a month or day alone, or both, or a time of day.
QString Rest(const Time& p_time, Unit p_shared, Unit p_finest, int p_decimals) {
  static constexpr std::array<const char*, 12> Months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  if (p_shared == None)
    return Complete(p_time, p_finest, p_decimals);
  if (p_shared == Minute)
    return SecondString(p_time, p_decimals) + " s";
  if (p_shared == Day)
    return ClockString(p_time, p_finest, p_decimals);
  const QString month = QString::fromLatin1(Months[static_cast<std::size_t>(p_time.date.month - 1)]);
  if (p_finest == Month)
    return month;
  if (p_finest == Day && p_shared == Month)
    return QString::number(p_time.date.day);
  const QString day = month + ' ' + QString::number(p_time.date.day);
  return p_finest == Day ? day : day + ' ' + ClockString(p_time, p_finest, p_decimals);
}

/// Times within a range and what they have in common.
class DateList {
public:
  explicit DateList(int p_decimals = 0)
      : _decimals(p_decimals) {}

  void Add(double p_value, const Time& p_time) {
    _values.push_back(p_value);
    _times.push_back(p_time);
  }
  std::size_t Size() const { return _values.size(); }

  DateTicks Ticks() && {
    DateTicks ticks;
    Unit finest = Year, shared = Minute;
    for (const Time& time : _times) {
      finest = std::max(finest, time.Finest());
      shared = std::min(shared, time.Shared(_times.front()));
    }
    if (_times.size() < 2)
      shared = None;
    if (shared == Month && finest > Day) // "Mar 14 12:00"
      shared = Year;
    const int decimals = finest == Fraction ? _decimals : 0;
    for (const Time& time : _times)
      ticks.strings.push_back(Rest(time, shared, finest, decimals));
    if (shared == Minute)
      ticks.note = Complete(_times.front(), Minute, 0);
    else if (shared != None)
      ticks.note = DateString(_times.front().date, shared);
    ticks.values = std::move(_values);
    ticks.digits = finest == Fraction ? Second + decimals : static_cast<int>(finest);
    return ticks;
  }

private:
  std::vector<double> _values;
  std::vector<Time> _times;
  int _decimals;
};

/// Equal steps from midnight on, of days from the first of each month on, or of months from the year 0 on.
struct Step {
  enum Kind { Seconds, Days, Months } kind;
  std::int64_t count;

  /// About, in seconds.
  double Length() const {
    constexpr double MonthSeconds = 2629746;
    const double unit = kind == Seconds ? 1 : kind == Days ? static_cast<double>(DaySeconds) : MonthSeconds;
    return unit * static_cast<double>(count);
  }
};

constexpr std::int64_t Hour = 3600;
constexpr Step Steps[] = {
    {Step::Seconds, 1},        {Step::Seconds, 2},        {Step::Seconds, 5},
    {Step::Seconds, 10},       {Step::Seconds, 15},       {Step::Seconds, 30},
    {Step::Seconds, 60},       {Step::Seconds, 2 * 60},   {Step::Seconds, 5 * 60},
    {Step::Seconds, 10 * 60},  {Step::Seconds, 15 * 60},  {Step::Seconds, 30 * 60},
    {Step::Seconds, Hour},     {Step::Seconds, 2 * Hour}, {Step::Seconds, 3 * Hour},
    {Step::Seconds, 4 * Hour}, {Step::Seconds, 6 * Hour}, {Step::Seconds, 12 * Hour},
    {Step::Days, 1},           {Step::Days, 2},           {Step::Days, 4},
    {Step::Days, 7},           {Step::Days, 14},          {Step::Months, 1},
    {Step::Months, 2},         {Step::Months, 3},         {Step::Months, 4},
    {Step::Months, 6},
};

/// Calls with each multiple of a step from `p_low` to `p_high`, in whole seconds.
template <class Function>
void ForEach(const Step& p_step, std::int64_t p_low, std::int64_t p_high, const Function& p_function) {
  if (p_step.kind == Step::Seconds) {
    for (std::int64_t i = -FloorDivided(-p_low, p_step.count); i * p_step.count <= p_high; ++i)
      p_function(i * p_step.count);
    return;
  }
  const std::int64_t count = p_step.kind == Step::Months ? p_step.count : 1;
  std::int64_t month = MonthOf(DateOf(FloorDivided(p_low, DaySeconds)));
  month -= month - FloorDivided(month, count) * count;
  for (std::int64_t next = month + count;; month = next, next += count) {
    const std::int64_t first = DayOfMonth(month), end = DayOfMonth(next);
    if (first * DaySeconds > p_high)
      return;
    const std::int64_t step = p_step.kind == Step::Months ? end - first : p_step.count;
    for (std::int64_t day = first; day + step <= end; day += step) // the last interval of a month is never short
      if (day * DaySeconds >= p_low && day * DaySeconds <= p_high)
        p_function(day * DaySeconds);
  }
}

DateList WholeSeconds(const Step& p_step, double p_low, double p_high) {
  DateList list;
  ForEach(p_step, static_cast<std::int64_t>(std::ceil(p_low)), static_cast<std::int64_t>(std::floor(p_high)),
          [&](std::int64_t p_second) { list.Add(static_cast<double>(p_second), TimeOf(p_second)); });
  return list;
}

/// Multiples of a step that divides a second, counted from a whole second, so that none is rounded away.
DateList Fractions(const Decimal& p_step, double p_low, double p_high) {
  const double base = std::floor(p_low);
  const Decimals multiples = MultiplesOf(p_step, p_low - base, p_high - base);
  std::int64_t second = 1;
  for (int i = p_step.exponent; i < 0; ++i)
    second *= 10;
  DateList list(-p_step.exponent);
  for (const std::int64_t multiple : multiples.mantissas)
    list.Add(base + ValueOf({multiple, p_step.exponent}),
             TimeOf(static_cast<std::int64_t>(base) + multiple / second, multiple % second));
  return list;
}

/// The ticks of the finest step that has no more than `p_most`, but has some.
class Search {
public:
  Search(double p_low, double p_high, std::size_t p_most)
      : _low(p_low)
      , _high(p_high)
      , _most(p_most)
      , _least((p_high - p_low) / (static_cast<double>(p_most) + 1)) {}

  DateList Found() && {
    constexpr int Finest = -9;
    const double distance =
        std::nextafter(std::max(std::abs(_low), std::abs(_high)), HUGE_VAL) - std::max(std::abs(_low), std::abs(_high));
    for (int exponent = Finest; exponent < 0; ++exponent)
      for (const std::int64_t count : {1, 2, 5}) {
        const Decimal step{count, exponent};
        if (ValueOf(step) >= std::max(_least, distance) && Take(Fractions(step, _low, _high)))
          return std::move(_found);
      }
    for (const Step& step : Steps)
      if (TakeStep(step))
        return std::move(_found);
    for (std::int64_t years = 1;; years *= 10)
      for (const std::int64_t count : {1, 2, 5})
        if (TakeStep({Step::Months, 12 * count * years}))
          return std::move(_found);
  }

private:
  bool TakeStep(const Step& p_step) {
    constexpr double Variation = 0.8; // of the length of months and their last intervals
    return p_step.Length() >= Variation * _least && Take(WholeSeconds(p_step, _low, _high));
  }

  bool Take(DateList p_list) {
    if (p_list.Size() > _most)
      return false;
    _found = std::move(p_list);
    return true;
  }

  double _low, _high;
  std::size_t _most;
  double _least; ///< length of a step
  DateList _found;
};

/// One time, as exact as it is.
DateList Only(double p_value) {
  const double base = std::floor(p_value);
  const Decimal exact = DecimalOf(p_value, QLocale::FloatingPointShortest);
  const int decimals = std::clamp(-exact.exponent, 0, 9);
  DateList list(decimals);
  const auto scale = static_cast<std::int64_t>(std::pow(10, decimals));
  const std::int64_t fraction = std::llround((p_value - base) * static_cast<double>(scale));
  list.Add(p_value, TimeOf(static_cast<std::int64_t>(base), std::min(fraction, scale - 1)));
  return list;
}

} // namespace

DateTicks MakeDateTicks(double p_low, double p_high, std::size_t p_most) {
  if (!(p_low >= -MostSeconds && p_high <= MostSeconds))
    return {};
  if (p_low < p_high)
    if (DateList found = Search(p_low, p_high, p_most).Found(); found.Size() > 0)
      return std::move(found).Ticks();
  return Only(p_low).Ticks();
}

QString DateString(double p_seconds, int p_digits) {
  const int decimals = std::clamp(p_digits - Second, 0, 9);
  const auto scale = static_cast<std::int64_t>(std::pow(10, decimals));
  auto whole = static_cast<std::int64_t>(std::floor(p_seconds));
  const double rest = (p_seconds - std::floor(p_seconds)) * static_cast<double>(scale);
  std::int64_t fraction = decimals > 0 ? std::llround(rest) : 0; // the decimals of a double are not exact
  if (fraction == scale) {
    ++whole;
    fraction = 0;
  }
  const int finest = std::clamp(p_digits, static_cast<int>(Year), static_cast<int>(Fraction));
  return Complete(TimeOf(whole, fraction), static_cast<Unit>(finest), decimals);
}

} // namespace Vek::Chart::Scene::Private
