#pragma once

#include "library/private/io/FloatTexts.h"
#include "library/private/io/NumberText.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// A test defines VEK_WITHOUT_AVX2 to build the code of other processors.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(VEK_WITHOUT_AVX2)
#define VEK_HAS_AVX2
#endif

namespace Vek::Chart::Library::Private {

// What the readers of number texts share.

/// Powers of ten, each the nearest double. Times an integer of up to 18 digits they are 0 or normal floats.
constexpr int LeastPower = -37;
constexpr int MostPower = 20;
extern const std::array<double, MostPower - LeastPower + 1> FloatPowers;

constexpr bool IsNormal(int p_power) {
  return p_power >= LeastPower && p_power <= MostPower;
}

/// The float of an integer of up to 18 digits times a normal power of ten. False where rounding leaves it open.
inline bool RoundedFloat(std::uint64_t p_digits, int p_power, bool p_negative, float& p_value) {
  constexpr std::uint64_t LostBits = (std::uint64_t(1) << 29) - 1;
  constexpr std::uint64_t Middle = std::uint64_t(1) << 28;
  constexpr std::uint64_t Error = 4; // units of the last place of double: three roundings, of half to one unit each
  const double value =
      static_cast<double>(static_cast<std::int64_t>(p_digits)) * FloatPowers[std::size_t(p_power - LeastPower)];
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  p_value = static_cast<float>(Scan::Signs[p_negative] * value);
  // Nearer to the middle of two floats the double may be on the wrong side.
  return ((bits + Error - Middle) & LostBits) > 2 * Error;
}

/// Reads an 'e', a sign and two digits. False where [p_first, p_last) is something else. Four characters may be read.
inline bool ReadExponent(const char* p_first, const char* p_last, int& p_exponent) {
  const int sign = ',' - p_first[1]; // 1 for '+', -1 for '-'
  const unsigned int tens = static_cast<unsigned char>(p_first[2]) - unsigned('0');
  const unsigned int ones = static_cast<unsigned char>(p_first[3]) - unsigned('0');
  p_exponent = sign * static_cast<int>(10 * tens + ones);
  return p_last - p_first == 4 && (*p_first | ('a' - 'A')) == 'e' && sign * sign == 1 && tens <= 9 && ones <= 9;
}

/// A word of any kind.
bool AnyFloat(std::string_view p_word, Words p_words, float& p_value);

#ifdef VEK_HAS_AVX2
/// ReadFloatTexts for processors with AVX2, BMI and POPCNT.
FloatTexts ReadFloatTextsByAvx2(const char* p_first, const char* p_last, float* p_numbers, std::size_t p_most,
                                Words p_words);
#endif

} // namespace Vek::Chart::Library::Private
