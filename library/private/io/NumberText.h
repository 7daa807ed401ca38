#pragma once

#include <boost/endian/conversion.hpp>

#include <cstddef>
#include <cstdint>
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

/// How many characters behind a text SameDigits may read: they have no meaning, but must be readable.
inline constexpr std::size_t DigitsSlack = 16;

/// Whether the p_length digits at p_first, at most nine, stand at p_other as well, and no further one. Faster than a
/// second conversion.
inline bool SameDigits(const char* p_first, std::size_t p_length, const char* p_other) {
  const auto load = [](const char* p_text) {
    return boost::endian::load_little_u64(reinterpret_cast<const unsigned char*>(p_text));
  };
  const std::uint64_t differences = load(p_first) ^ load(p_other);
  const std::uint64_t counted = p_length >= 8 ? ~std::uint64_t(0) : (std::uint64_t(1) << (8 * p_length)) - 1;
  const char next = p_other[p_length];
  return (differences & counted) == 0 && (p_length <= 8 || p_first[8] == p_other[8]) && (next < '0' || next > '9');
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

} // namespace Scan

} // namespace Vek::Chart::Library::Private
