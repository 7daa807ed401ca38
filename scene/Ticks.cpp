#include "scene/Ticks.h"

#include "scene/private/DateTicks.h"
#include "scene/private/Decimal.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Scene {

namespace {

using namespace Private;

constexpr std::size_t MostLabelled = 1000;
constexpr QChar Degree(0x00B0);
constexpr QChar Infinity(0x221E);

/// The power of ten to be taken out of all strings; 0 mostly.
int CommonExponent(const Decimals& p_ticks) {
  std::int64_t most = 0;
  for (const std::int64_t tick : p_ticks.mantissas)
    most = std::max(most, std::abs(tick));
  const int first = p_ticks.exponent + DigitCount(most) - 1;
  return most != 0 && NeedsPower(first) ? static_cast<int>(std::floor(first / 3.0)) * 3 : 0;
}

std::vector<QString> StringsOf(const Decimals& p_ticks, int p_commonExponent) {
  std::vector<QString> strings;
  for (const std::int64_t tick : p_ticks.mantissas)
    strings.push_back(Fixed({tick, p_ticks.exponent - p_commonExponent}));
  return strings;
}

int MostDigits(const std::vector<QString>& p_strings) {
  int most = 0;
  for (const QString& string : p_strings)
    most = std::max(most, static_cast<int>(std::count_if(string.begin(), string.end(),
                                                         [](QChar p_char) { return p_char.isDigit(); })));
  return most;
}

/// The leading digits that all ticks of one sign have in common, up to one count of the last of them; 0 if there are
/// none.
std::int64_t CommonOffset(const std::vector<std::int64_t>& p_ticks) {
  const auto [least, most] = std::minmax_element(p_ticks.begin(), p_ticks.end());
  if (*least <= 0 && *most >= 0)
    return 0;
  const std::int64_t low = std::min(std::abs(*least), std::abs(*most));
  const std::int64_t high = std::max(std::abs(*least), std::abs(*most));
  std::int64_t unit = 1;
  while (high / unit - low / unit > 1)
    unit *= 10;
  return (*least < 0 ? -1 : 1) * (high / unit) * unit;
}

/// A lower bound of the step of so many ticks; no less than the distance of neighbouring doubles, and normal.
double LeastStep(double p_low, double p_high, std::size_t p_most) {
  const double largest = std::max(std::abs(p_low), std::abs(p_high));
  const double distance = largest - std::nextafter(largest, 0.0);
  const double parts = static_cast<double>(p_most) + 1;
  return std::max({p_high / parts - p_low / parts, distance, std::numeric_limits<double>::min()});
}

/// The multiples of the smallest round step that are `p_most` at most; the range is finite and ascending.
template <class Steps>
Decimals Multiples(double p_low, double p_high, std::size_t p_most, const Steps& p_steps) {
  const double least = LeastStep(p_low, p_high, p_most);
  for (int exponent = static_cast<int>(std::floor(std::log10(least)));; ++exponent)
    for (const Decimal& step : p_steps(exponent)) {
      if (ValueOf(step) < least)
        continue;
      Decimals ticks = MultiplesOf(step, p_low, p_high);
      if (ticks.mantissas.size() <= p_most)
        return ticks;
    }
}

std::vector<Decimal> RoundSteps(int p_exponent) {
  return {{1, p_exponent}, {2, p_exponent}, {25, p_exponent - 1}, {5, p_exponent}};
}

std::vector<Decimal> DegreeSteps(int p_exponent) {
  if (p_exponent < 1)
    return {{1, p_exponent}, {2, p_exponent}, {5, p_exponent}};
  if (p_exponent == 1)
    return {{10, 0}, {15, 0}, {30, 0}, {45, 0}, {60, 0}, {90, 0}};
  if (p_exponent == 2)
    return {{180, 0}, {360, 0}};
  return {{36, p_exponent - 1}};
}

/// The ticks of `p_make`, which takes a finite, ascending range, for a range of any kind.
template <class Make>
Decimals ForAnyRange(double p_low, double p_high, std::size_t p_most, const Make& p_make) {
  if (p_most == 0 || !std::isfinite(p_low) || !std::isfinite(p_high))
    return {};
  Decimals ticks;
  if (p_low != p_high)
    ticks = p_make(std::min(p_low, p_high), std::max(p_low, p_high), std::min(p_most, MostLabelled));
  if (ticks.mantissas.empty()) { // no round number lies between neighbouring doubles
    const Decimal only = DecimalOf(p_low, QLocale::FloatingPointShortest);
    return {{only.mantissa}, only.exponent};
  }
  if (p_low > p_high)
    std::reverse(ticks.mantissas.begin(), ticks.mantissas.end());
  return Shortened(ticks);
}

/// A longitude from -180 up to 180 degrees; as it is where whole turns are below its precision.
Decimal WithoutTurns(Decimal p_longitude) {
  constexpr std::int64_t Most = 100'000'000'000'000'000;
  for (; p_longitude.exponent > 0 && std::abs(p_longitude.mantissa) < Most; --p_longitude.exponent)
    p_longitude.mantissa *= 10;
  if (p_longitude.exponent > 0 || p_longitude.exponent < -15)
    return p_longitude;
  std::int64_t turn = 360;
  for (int i = p_longitude.exponent; i < 0; ++i)
    turn *= 10;
  std::int64_t& angle = p_longitude.mantissa;
  angle = (angle % turn + turn) % turn;
  angle -= angle >= turn / 2 ? turn : 0;
  return p_longitude;
}

QString AngleString(const Decimal& p_degrees, Ticks::Angle p_angle) {
  if (p_angle == Ticks::Angle::Plain)
    return Readable(p_degrees) + Degree;
  const Decimal angle = p_angle == Ticks::Angle::Longitude ? WithoutTurns(p_degrees) : p_degrees;
  const QString number = Readable({std::abs(angle.mantissa), angle.exponent}) + Degree;
  const double value = ValueOf(angle);
  if (value == 0 || (p_angle == Ticks::Angle::Longitude && std::abs(value) == 180))
    return number;
  if (p_angle == Ticks::Angle::Longitude)
    return number + (value < 0 ? " W" : " E");
  return number + (value < 0 ? " S" : " N");
}

} // namespace

Ticks::Ticks(std::vector<double> p_values, std::vector<QString> p_strings, QString p_note)
    : _values(std::move(p_values))
    , _strings(std::move(p_strings))
    , _note(std::move(p_note)) {
  if (_values.size() != _strings.size())
    throw std::invalid_argument("Ticks need one string for each value: " + std::to_string(_values.size()) +
                                " values, " + std::to_string(_strings.size()) + " strings");
}

Ticks Ticks::Linear(double p_low, double p_high, std::size_t p_most) {
  const Decimals all = ForAnyRange(p_low, p_high, p_most, [](double p_least, double p_largest, std::size_t p_count) {
    return Multiples(p_least, p_largest, p_count, RoundSteps);
  });
  Ticks ticks;
  ticks._values = ValuesOf(all);
  ticks._style = Style::Decimals;
  ticks._digits = all.exponent;
  ticks._exponent = CommonExponent(all);
  ticks._strings = StringsOf(all, ticks._exponent);
  if (ticks._exponent != 0)
    ticks._note = Times(ticks._exponent);

  const std::int64_t offset = all.mantissas.size() < 2 ? 0 : CommonOffset(all.mantissas);
  if (offset == 0)
    return ticks;
  Decimals rest = all;
  for (std::int64_t& tick : rest.mantissas)
    tick -= offset;
  rest = Shortened(rest);
  const int exponent = CommonExponent(rest);
  std::vector<QString> shorter = StringsOf(rest, exponent);
  constexpr int Worthwhile = 4;
  if (MostDigits(ticks._strings) - MostDigits(shorter) < Worthwhile)
    return ticks;
  ticks._strings = std::move(shorter);
  const QString number = Readable(DecimalOf(std::abs(ValueOf({offset, all.exponent})), QLocale::FloatingPointShortest));
  ticks._note = (exponent != 0 ? Times(exponent) + ' ' : QString()) + (offset < 0 ? Minus : QChar('+')) + ' ' + number;
  return ticks;
}

Ticks Ticks::Degrees(double p_low, double p_high, std::size_t p_most, Angle p_angle) {
  const Decimals all = ForAnyRange(p_low, p_high, p_most, [](double p_least, double p_largest, std::size_t p_count) {
    return Multiples(p_least, p_largest, p_count, DegreeSteps);
  });
  Ticks ticks;
  ticks._values = ValuesOf(all);
  ticks._style = Style::Degrees;
  ticks._digits = std::min(all.exponent, 0);
  ticks._angle = p_angle;
  for (const std::int64_t tick : all.mantissas)
    ticks._strings.push_back(AngleString({tick, all.exponent}, p_angle));
  return ticks;
}

Ticks Ticks::Dates(double p_low, double p_high, std::size_t p_most) {
  Ticks ticks;
  if (p_most == 0 || !std::isfinite(p_low) || !std::isfinite(p_high))
    return ticks;
  DateTicks dates = MakeDateTicks(std::min(p_low, p_high), std::max(p_low, p_high), std::min(p_most, MostLabelled));
  if (p_low > p_high) {
    std::reverse(dates.values.begin(), dates.values.end());
    std::reverse(dates.strings.begin(), dates.strings.end());
  }
  ticks._style = Style::Dates;
  ticks._values = std::move(dates.values);
  ticks._strings = std::move(dates.strings);
  ticks._note = std::move(dates.note);
  ticks._digits = dates.digits;
  return ticks;
}

namespace {

/// Which multiples of powers of ten have strings: of every `decades`-th power, those by these digits.
struct LogarithmicStep {
  const char* digits;
  int decades;
};

bool Has(const LogarithmicStep& p_step, const Decimal& p_tick) {
  return p_tick.exponent % p_step.decades == 0 && std::strchr(p_step.digits, static_cast<int>('0' + p_tick.mantissa));
}

/// All 1 to `p_mostDigit` times a power of ten in a range above 0.
std::vector<Decimal> LogarithmicTicks(double p_low, double p_high, std::int64_t p_mostDigit) {
  std::vector<Decimal> ticks;
  const int last = static_cast<int>(std::floor(std::log10(p_high))) + 1;
  for (int decade = static_cast<int>(std::floor(std::log10(p_low))) - 1; decade <= last; ++decade)
    for (std::int64_t digit = 1; digit <= p_mostDigit; ++digit) {
      const double value = ValueOf({digit, decade});
      if (value >= p_low && value <= p_high)
        ticks.push_back({digit, decade});
    }
  return ticks;
}

/// The finest step of which `p_most` are in the range at most.
LogarithmicStep StepOf(const std::vector<Decimal>& p_ticks, bool p_isShort, std::size_t p_most) {
  const auto fits = [&](const LogarithmicStep& p_step) {
    const auto count =
        std::count_if(p_ticks.begin(), p_ticks.end(), [&](const Decimal& p_tick) { return Has(p_step, p_tick); });
    return static_cast<std::size_t>(count) <= p_most;
  };
  for (const char* digits : {"125", "13"})
    if (p_isShort && fits({digits, 1}))
      return {digits, 1};
  LogarithmicStep step{"1", 1};
  while (!fits(step))
    ++step.decades;
  return step;
}

} // namespace

Ticks Ticks::Logarithmic(double p_low, double p_high, std::size_t p_most) {
  if (!(p_low > 0 && p_high > 0) || p_most == 0 || !std::isfinite(p_low) || !std::isfinite(p_high))
    return {};
  const double low = std::min(p_low, p_high), high = std::max(p_low, p_high);
  const double decades = std::log10(high) - std::log10(low);
  if (decades < 1)
    return Linear(p_low, p_high, p_most);

  // There may be hundreds of decades, of which the powers of ten suffice.
  const bool isShort = decades < 2;
  std::vector<Decimal> all = LogarithmicTicks(low, high, isShort ? 9 : 1);
  const LogarithmicStep step = StepOf(all, isShort, std::min(p_most, MostLabelled));
  if (!isShort && step.decades == 1)
    all = LogarithmicTicks(low, high, 9);
  const bool needsPower = std::any_of(
      all.begin(), all.end(), [&](const Decimal& p_tick) { return Has(step, p_tick) && NeedsPower(p_tick.exponent); });
  Ticks ticks;
  ticks._digits = 3;
  for (const Decimal& tick : all) {
    if (step.decades > 1 && tick.mantissa != 1)
      continue;
    ticks._values.push_back(ValueOf(tick));
    ticks._strings.push_back(!Has(step, tick) ? QString() : needsPower ? Scientific(tick) : Fixed(tick));
  }
  if (p_low > p_high) {
    std::reverse(ticks._values.begin(), ticks._values.end());
    std::reverse(ticks._strings.begin(), ticks._strings.end());
  }
  return ticks;
}

Ticks Ticks::OfBounds(const std::vector<double>& p_bounds, std::size_t p_most) {
  if (p_most == 0 ||
      !std::all_of(p_bounds.begin(), p_bounds.end(), [](double p_bound) { return std::isfinite(p_bound); }))
    return {};
  Ticks ticks;
  auto& bounds = ticks._values = p_bounds;
  std::sort(bounds.begin(), bounds.end());
  bounds.erase(std::unique(bounds.begin(), bounds.end()), bounds.end());

  const std::size_t each = (bounds.size() + p_most - 1) / p_most;
  constexpr double Largest = std::numeric_limits<double>::max();
  ticks._digits = 1;
  for (std::size_t i = 0; i < bounds.size(); ++i) {
    const double below = i > 0 ? std::min(bounds[i] - bounds[i - 1], Largest) : Largest;
    const double above = i + 1 < bounds.size() ? std::min(bounds[i + 1] - bounds[i], Largest) : Largest;
    const double tolerance = bounds.size() > 1 ? std::min(below, above) / 1000 : 0;
    int digits = 1;
    while (digits < 17 && !(std::abs(ValueOf(DecimalOf(bounds[i], digits)) - bounds[i]) <= tolerance))
      ++digits;
    ticks._strings.push_back(i % each == 0 ? Readable(DecimalOf(bounds[i], digits)) : QString());
    ticks._digits = std::max(ticks._digits, digits);
  }
  return ticks;
}

QString Ticks::Format(double p_value, const QString& p_unit, int p_moreDigits) const {
  if (std::isnan(p_value))
    return "no data";
  const QString unit = p_unit.isEmpty() ? QString() : ' ' + p_unit;
  if (std::isinf(p_value))
    return (p_value < 0 ? QString(Minus) : QString()) + Infinity + unit;
  if (_style == Style::Dates && std::abs(p_value) <= MostSeconds)
    return DateString(p_value, _digits + p_moreDigits) + unit;
  const int last = _digits - p_moreDigits;
  const double count = Scaled(p_value, -last);
  constexpr double MostExact = 9e15;
  const bool isSignificant = _style == Style::Significant || _style == Style::Dates;
  if (isSignificant || !(std::abs(count) < MostExact))
    return Readable(DecimalOf(p_value, isSignificant ? _digits + p_moreDigits : QLocale::FloatingPointShortest)) + unit;
  const Decimal rounded{std::llround(count), last};
  if (_style == Style::Degrees)
    return AngleString(rounded, _angle) + unit;
  if (_exponent == 0)
    return Fixed(rounded) + unit;
  if (rounded.mantissa == 0)
    return '0' + unit;
  return Fixed({rounded.mantissa, rounded.exponent - _exponent}) + Times(_exponent) + unit;
}

} // namespace Vek::Chart::Scene
