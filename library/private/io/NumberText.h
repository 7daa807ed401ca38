#pragma once

#include <boost/endian/conversion.hpp>

#include <QtAlgorithms>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Vek::Chart::Library::Private {

// Fast conversion of short, plain strings to numbers, with the results and exceptions of boost::lexical_cast under the
// classic locale, whatever the process's locale is.

/// The value of boost::lexical_cast<double>(text); throws boost::bad_lexical_cast.
double DoubleFromText(std::string_view p_text);
/// The value of boost::lexical_cast<int>(text); throws boost::bad_lexical_cast.
int IntFromText(std::string_view p_text);

// The conversion of `std::istream >> float` under the classic locale, for strings without white space in front.

/// The number of characters that it extracts: those at the front that may belong to a number.
std::size_t FloatTextLength(std::string_view p_text);
/// Converts the extracted characters. False where it fails, with the value that it stores then: 0, or the largest float
/// for a number beyond it.
bool StreamFloatFromText(std::string_view p_text, float& p_value);

// Fast conversions of a number at the front of a longer string, [p_first, p_last). They return the end of the number,
// or null where it needs the general conversion above. Their values equal the general ones, provided that the number is
// followed by the end of the string or a character that belongs to no number.

namespace Scan {

inline constexpr std::ptrdiff_t MostDigits = 19; // more might overflow 64 bits
inline constexpr double PowersOfTen[MostDigits + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                                       1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
inline constexpr double Signs[] = {1.0, -1.0};

/// White space of the classic locale.
inline bool IsBlank(char p_character) {
  return p_character == ' ' || (p_character >= '\t' && p_character <= '\r');
}

/// Appends the digits at the front to p_value, modulo 2^64, and returns their end. One by one: the processor predicts
/// their count and continues with the next characters, which is faster than converting eight digits at once.
inline const char* Digits(const char* p_first, const char* p_last, std::uint64_t& p_value) {
  for (; p_first != p_last && *p_first >= '0' && *p_first <= '9'; ++p_first)
    p_value = 10 * p_value + std::uint64_t(*p_first - '0');
  return p_first;
}

/// An unsigned number of too few digits to overflow an int.
inline const char* ShortInt(const char* p_first, const char* p_last, int& p_value) {
  std::uint64_t value = 0;
  const char* const end = Digits(p_first, p_last, value);
  if (end == p_first || end - p_first > 9)
    return nullptr;
  p_value = static_cast<int>(value);
  return end;
}

/// A decimal number without exponent whose digits, as an integer, are an exact double. Its value is the quotient of
/// that integer and an exact power of ten, hence correctly rounded.
inline const char* ShortDouble(const char* p_first, const char* p_last, double& p_value) {
  constexpr std::uint64_t LargestExact = std::uint64_t(1) << 53;
  const bool negative = p_first != p_last && *p_first == '-';
  const char* const whole = p_first + negative;
  std::uint64_t digits = 0;
  const char* end = Digits(whole, p_last, digits);
  std::ptrdiff_t count = end - whole;
  std::ptrdiff_t decimals = 0;
  if (end != p_last && *end == '.') {
    const char* const fraction = end + 1;
    end = Digits(fraction, p_last, digits);
    decimals = end - fraction;
    count += decimals;
  }
  if (count == 0 || count > MostDigits || digits > LargestExact)
    return nullptr;
  // Signs are random: a look-up avoids mispredicted branches.
  p_value = Signs[negative] * (static_cast<double>(static_cast<std::int64_t>(digits)) / PowersOfTen[decimals]);
  return end;
}

/// As ShortDouble, correctly rounded to float.
inline const char* ShortFloat(const char* p_first, const char* p_last, float& p_value) {
  constexpr std::uint64_t LostBits = (std::uint64_t(1) << 29) - 1;
  constexpr std::uint64_t Middle = std::uint64_t(1) << 28;
  double value = 0.0;
  const char* const end = ShortDouble(p_first, p_last, value);
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  // A double half-way between two floats may be a rounded one: rounding it again could be wrong.
  if ((bits & LostBits) == Middle)
    return nullptr;
  p_value = static_cast<float>(value);
  return end;
}

/// ShortFloat for a number of up to seven characters with a blank behind it; reads eight characters at once. The start
/// of the next number is known early and without branch prediction, which matters for numbers of random lengths. Seven
/// digits and powers of ten up to 1e7 are exact floats, so that their quotient is correctly rounded.
inline const char* TinyFloat(const char* p_first, float& p_value) {
  constexpr float FloatSigns[] = {1.0f, -1.0f};
  constexpr float FloatPowersOfTen[] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f};
  constexpr std::uint64_t Ones = 0x0101010101010101;
  constexpr std::uint64_t Tops = 0x8080808080808080; // the highest bit of each character
  const std::uint64_t text = boost::endian::load_little_u64(reinterpret_cast<const unsigned char*>(p_first));
  // The top bit of each blank or control character. Borrows disturb what is behind the first one only.
  const std::uint64_t blanks = (text - '!' * Ones) & ~text & Tops;
  if (blanks == 0)
    return nullptr;
  unsigned int bits = qCountTrailingZeroBits(static_cast<quint64>(blanks)) - 7; // of the number, eight a character
  const char* const end = p_first + bits / 8;

  // Digits become 0 to 9, and a sign a leading zero.
  const unsigned int sign = (text & 255) == '-' ? 1 : 0;
  std::uint64_t digits = text ^ ('0' * Ones) ^ (sign * ('-' ^ '0'));
  unsigned int decimals = 0;
  const std::uint64_t differences = text ^ ('.' * Ones);
  const std::uint64_t number = blanks ^ (blanks - 1);
  if (const std::uint64_t points = (differences - Ones) & ~differences & Tops & number) {
    const std::uint64_t whole = ((points & (~points + 1)) >> 7) - 1; // what is in front of the first point
    digits = (digits & whole) | ((digits >> 8) & ~whole);
    bits -= 8;
    decimals = (bits + 7 - qCountTrailingZeroBits(static_cast<quint64>(points))) / 8;
  }
  if (bits <= 8 * sign)
    return nullptr;
  digits <<= 64 - bits; // the last digit to the last place
  if (((digits | (digits + 0x76 * Ones)) & Tops) != 0)
    return nullptr; // something above 9
  // Neighbours join: to pairs, to fours, to one.
  digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FF;
  digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFF;
  digits = (digits * 10000 + (digits >> 32)) & 0x00000000FFFFFFFF;
  p_value = FloatSigns[sign] * (static_cast<float>(static_cast<std::int32_t>(digits)) / FloatPowersOfTen[decimals]);
  return end;
}

} // namespace Scan

} // namespace Vek::Chart::Library::Private
