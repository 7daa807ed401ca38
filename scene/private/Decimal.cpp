#include "scene/private/Decimal.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace Vek::Chart::Scene::Private {

double ValueOf(const Decimal& p_decimal) {
  bool ok = false;
  const double value = QString("%1e%2").arg(p_decimal.mantissa).arg(p_decimal.exponent).toDouble(&ok);
  if (ok || p_decimal.mantissa == 0 || p_decimal.exponent < 0)
    return ok ? value : 0;
  return p_decimal.mantissa < 0 ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
}

Decimal DecimalOf(double p_value, int p_digits) {
  QString digits = QLocale::c().toString(p_value, 'e', p_digits < 0 ? p_digits : std::clamp(p_digits, 1, 17) - 1);
  const auto end = digits.indexOf('e');
  const int exponent = digits.mid(end + 1).toInt();
  digits.truncate(end);
  const auto point = digits.indexOf('.');
  const int decimals = point < 0 ? 0 : static_cast<int>(digits.size() - point - 1);
  Decimal decimal{digits.remove('.').toLongLong(), exponent - decimals};
  if (decimal.mantissa == 0)
    return {};
  for (; decimal.mantissa % 10 == 0; ++decimal.exponent)
    decimal.mantissa /= 10;
  return decimal;
}

int DigitCount(std::int64_t p_mantissa) {
  return static_cast<int>(std::to_string(std::abs(p_mantissa)).size());
}

double Scaled(double p_value, int p_power) {
  return p_value * std::pow(10.0, p_power / 2) * std::pow(10.0, p_power - p_power / 2);
}

QString Fixed(const Decimal& p_decimal) {
  QString digits = QString::number(static_cast<qlonglong>(std::abs(p_decimal.mantissa)));
  if (p_decimal.exponent < 0) {
    digits = digits.rightJustified(1 - p_decimal.exponent, '0');
    digits.insert(digits.size() + p_decimal.exponent, '.');
  } else if (p_decimal.mantissa != 0)
    digits += QString(p_decimal.exponent, '0');
  return p_decimal.mantissa < 0 ? Minus + digits : digits;
}

namespace {

constexpr QChar TimesSign(0x00D7);

/// "10⁻⁸"
QString PowerOfTen(int p_exponent) {
  static constexpr char16_t Digits[] = u"⁰¹²³⁴⁵⁶⁷⁸⁹";
  QString power("10");
  for (const QChar digit : QString::number(p_exponent))
    power += digit == '-' ? QChar(0x207B) : QChar(Digits[digit.digitValue()]);
  return power;
}

} // namespace

QString Times(int p_exponent) {
  return TimesSign + PowerOfTen(p_exponent);
}

QString Scientific(const Decimal& p_decimal) {
  const int last = DigitCount(p_decimal.mantissa) - 1;
  const QString times = Times(p_decimal.exponent + last);
  if (std::abs(p_decimal.mantissa) == 1)
    return (p_decimal.mantissa < 0 ? QString(Minus) : QString()) + times.mid(1);
  return Fixed({p_decimal.mantissa, -last}) + times;
}

bool NeedsPower(int p_firstDigit) {
  return p_firstDigit < -5 || p_firstDigit >= 6;
}

QString Readable(const Decimal& p_decimal) {
  const int first = p_decimal.exponent + DigitCount(p_decimal.mantissa) - 1;
  return p_decimal.mantissa != 0 && NeedsPower(first) ? Scientific(p_decimal) : Fixed(p_decimal);
}

std::vector<double> ValuesOf(const Decimals& p_decimals) {
  std::vector<double> values;
  for (const std::int64_t tick : p_decimals.mantissas)
    values.push_back(ValueOf({tick, p_decimals.exponent}));
  return values;
}

Decimals Shortened(Decimals p_decimals) {
  auto& all = p_decimals.mantissas;
  if (std::all_of(all.begin(), all.end(), [](std::int64_t p_tick) { return p_tick == 0; })) {
    p_decimals.exponent = 0;
    return p_decimals;
  }
  while (std::all_of(all.begin(), all.end(), [](std::int64_t p_tick) { return p_tick % 10 == 0; })) {
    std::for_each(all.begin(), all.end(), [](std::int64_t& p_tick) { p_tick /= 10; });
    ++p_decimals.exponent;
  }
  return p_decimals;
}

Decimals MultiplesOf(const Decimal& p_step, double p_low, double p_high) {
  Decimals ticks{{}, p_step.exponent};
  const double mantissa = static_cast<double>(p_step.mantissa);
  // Quotients below 2^53 are off by one at most.
  const double first = std::floor(Scaled(p_low, -p_step.exponent) / mantissa) - 1;
  const double last = std::ceil(Scaled(p_high, -p_step.exponent) / mantissa) + 1;
  double previous = std::numeric_limits<double>::quiet_NaN();
  for (std::int64_t i = static_cast<std::int64_t>(first); i <= static_cast<std::int64_t>(last); ++i) {
    const double value = ValueOf({i * p_step.mantissa, p_step.exponent});
    if (value >= p_low && value <= p_high && value != previous)
      ticks.mantissas.push_back(i * p_step.mantissa);
    previous = value;
  }
  return ticks;
}

} // namespace Vek::Chart::Scene::Private
