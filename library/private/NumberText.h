#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Vek::Chart::Library::Private {

// Numbers from text, as fast as possible where texts are short and plain. What is taken, refused and thrown is what
// boost::lexical_cast does under the classic locale; the process's locale changes nothing.

/// The value of boost::lexical_cast<double>(text); throws boost::bad_lexical_cast.
double DoubleFromText(std::string_view p_text);
/// The value of boost::lexical_cast<int>(text); throws boost::bad_lexical_cast.
int IntFromText(std::string_view p_text);

// What `std::istream >> float` does under the classic locale, for texts without white space in front.

/// How many characters it takes from the front of the text: those that may belong to a number.
std::size_t FloatTextLength(std::string_view p_text);
/// What it makes of the characters taken; false where it fails, with the value that it stores then: 0, or the largest
/// float for a number beyond it.
bool StreamFloatFromText(std::string_view p_text, float& p_value);

// The fast ways read a number at the front of a longer text, [p_first, p_last). They return the place behind it, or
// null where the number needs the general way above; a value that they set is exactly the general one, provided that
// the text ends there or goes on with a character that belongs to no number.

namespace Scan {

inline constexpr std::ptrdiff_t MostDigits = 19; // more might overflow 64 bits
inline constexpr double PowersOfTen[MostDigits + 1] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,
                                                       1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19};
inline constexpr double Signs[] = {1.0, -1.0};

/// Appends the digits at the front to p_value, modulo 2^64, and returns the place behind them. One by one: the
/// processor guesses their count and goes on with what follows, which gains more than to convert eight at once.
inline const char* Digits(const char* p_first, const char* p_last, std::uint64_t& p_value) {
  for (; p_first != p_last && *p_first >= '0' && *p_first <= '9'; ++p_first)
    p_value = 10 * p_value + std::uint64_t(*p_first - '0');
  return p_first;
}

/// Digits without sign that cannot overflow an int.
inline const char* ShortInt(const char* p_first, const char* p_last, int& p_value) {
  std::uint64_t value = 0;
  const char* const end = Digits(p_first, p_last, value);
  if (end == p_first || end - p_first > 9)
    return nullptr;
  p_value = static_cast<int>(value);
  return end;
}

/// A decimal number without exponent whose digits, read as an integer, a double holds exactly. Its value is then one
/// division by a power of ten that is exact as well, so it is correctly rounded.
inline const char* ShortDouble(const char* p_first, const char* p_last, double& p_value) {
  constexpr std::uint64_t largestExact = std::uint64_t(1) << 53;
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
  if (count == 0 || count > MostDigits || digits > largestExact)
    return nullptr;
  // Signs come at random: looked up, they cost no mispredicted branch.
  p_value = Signs[negative] * (static_cast<double>(static_cast<std::int64_t>(digits)) / PowersOfTen[decimals]);
  return end;
}

/// As ShortDouble, correctly rounded to float.
inline const char* ShortFloat(const char* p_first, const char* p_last, float& p_value) {
  constexpr std::uint64_t lostBits = (std::uint64_t(1) << 29) - 1;
  constexpr std::uint64_t middle = std::uint64_t(1) << 28;
  double value = 0.0;
  const char* const end = ShortDouble(p_first, p_last, value);
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  // Only a double right between two floats may have been rounded to there, and would be rounded a second time.
  if ((bits & lostBits) == middle)
    return nullptr;
  p_value = static_cast<float>(value);
  return end;
}

} // namespace Scan

} // namespace Vek::Chart::Library::Private
