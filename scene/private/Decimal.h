#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// The number mantissa × 10^exponent: exact, so that neither the positions of ticks nor their strings collect rounding
/// errors.
struct Decimal {
  std::int64_t mantissa = 0;
  int exponent = 0;
};

/// Infinite where it is beyond the range of double, 0 where it is too small.
double ValueOf(const Decimal& p_decimal);
/// A finite value to a number of digits, `QLocale::FloatingPointShortest` for the fewest that give it back.
Decimal DecimalOf(double p_value, int p_digits);
/// How many digits the mantissa has.
int DigitCount(std::int64_t p_mantissa);
/// p_value × 10^p_power; both halves of the power are in the range of double.
double Scaled(double p_value, int p_power);

/// Whether a number with its first digit there is written with a power of ten.
bool NeedsPower(int p_firstDigit);
/// "−0.025"
QString Fixed(const Decimal& p_decimal);
/// "×10⁻⁸"
QString Times(int p_exponent);
/// "2.5×10⁻⁸"
QString Scientific(const Decimal& p_decimal);
/// With a power of ten where it needs one.
QString Readable(const Decimal& p_decimal);

/// Numbers that share their last digit.
struct Decimals {
  std::vector<std::int64_t> mantissas;
  int exponent = 0;
};

std::vector<double> ValuesOf(const Decimals& p_decimals);
/// Without the zeros at the end that all have.
Decimals Shortened(Decimals p_decimals);
/// The multiples of a step within a range, without those that are equal as doubles.
Decimals MultiplesOf(const Decimal& p_step, double p_low, double p_high);

constexpr QChar Minus(0x2212); ///< the sign

} // namespace Vek::Chart::Scene::Private
