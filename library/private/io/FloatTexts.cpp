// Numbers of text volumes, two stages at a time: the borders of all words of a piece, then the words, whose places no
// longer depend on each other.

#include "library/private/io/FloatTexts.h"

#include "library/private/io/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>

// A test defines VEK_WITHOUT_AVX2 to build the code of other processors.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(VEK_WITHOUT_AVX2)
#define VEK_HAS_AVX2
#include <immintrin.h>
#endif

namespace Vek::Chart::Library::Private {

namespace {

bool IsUnusual(std::string_view p_word, float& p_value) {
  std::string word(p_word);
  std::transform(word.begin(), word.end(), word.begin(),
                 [](char p_c) { return static_cast<char>(p_c >= 'A' && p_c <= 'Z' ? p_c + 32 : p_c); });
  const bool negative = !word.empty() && word.front() == '-';
  if (!word.empty() && (negative || word.front() == '+'))
    word.erase(0, 1);
  using Limits = std::numeric_limits<float>;
  p_value = word == "nan" ? Limits::quiet_NaN() : negative ? -Limits::infinity() : Limits::infinity();
  return word == "nan" || word == "inf" || word == "infinity";
}

/// A word of any kind.
[[gnu::noinline]] bool AnyFloat(std::string_view p_word, Words p_words, float& p_value) {
  const char* const last = p_word.data() + p_word.size();
  const char start = p_word.substr(0, 1) == "-" ? p_word.data()[1] : p_word.data()[0];
  if ((start >= '0' && start <= '9') || start == '.') { // no "nan" or "inf", which std::from_chars takes as well
    const std::from_chars_result result = std::from_chars(p_word.data(), last, p_value);
    if (result.ec == std::errc() && result.ptr == last)
      return true;
  }
  constexpr std::size_t LongestUnusual = 9; // "-infinity"
  if (FloatTextLength(p_word) == p_word.size() && StreamFloatFromText(p_word, p_value))
    return true;
  return p_words == Words::NumbersOrNaN && p_word.size() <= LongestUnusual && IsUnusual(p_word, p_value);
}

/// The code of all processors: one word after the other.
[[maybe_unused]] FloatTexts ReadPlainly(const char* p_first, const char* p_last, float* p_numbers, std::size_t p_most,
                                        Words p_words) {
  FloatTexts read{p_first, 0};
  while (read.count < p_most) {
    const char* const at = std::find_if_not(read.end, p_last, Scan::IsBlank);
    float value = 0;
    const char* end = p_last - at >= 8 ? Scan::TinyFloat(at, value) : nullptr;
    if (end == nullptr)
      end = Scan::ShortFloat(at, p_last, value);
    if (end == nullptr || end == p_last || !Scan::IsBlank(*end)) {
      end = std::find_if(at, p_last, Scan::IsBlank);
      if (end == p_last || !AnyFloat({at, std::size_t(end - at)}, p_words, value))
        break;
    }
    p_numbers[read.count++] = value;
    read.end = end;
  }
  return read;
}

#ifdef VEK_HAS_AVX2

// Vectors have 16 characters, but the instructions of AVX do not depend on the upper halves of registers, which other
// code may have left in use.
#define VEK_AVX2 __attribute__((target("avx2,bmi,popcnt")))
#define VEK_AVX2_INLINE __attribute__((target("avx2,bmi,popcnt"), always_inline)) inline

/// How the characters of a word of at most 16 move to the end of 16 digits: by the number of characters and the place
/// of the point, which is left out; equal to the number where there is none.
struct alignas(16) Moves {
  unsigned char of[17][17][16];
};
constexpr Moves MakeMoves() {
  Moves moves{};
  for (int size = 0; size <= 16; ++size)
    for (int point = 0; point <= 16; ++point)
      for (int i = 0; i < 16; ++i) {
        const int digits = point < size ? size - 1 : size;
        const int digit = i - (16 - digits);
        moves.of[size][point][i] = static_cast<unsigned char>(digit < 0 ? 0x80 : digit < point ? digit : digit + 1);
      }
  return moves;
}
constexpr Moves DigitMoves = MakeMoves();

VEK_AVX2_INLINE __m128i MovesOf(int p_size, int p_point) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(DigitMoves.of[p_size][p_point]));
}

/// Powers of ten, each the nearest double. Times an integer of up to 16 digits they are 0 or normal floats.
constexpr int LeastPower = -37;
constexpr int MostPower = 22;
const std::array<double, MostPower - LeastPower + 1> PowersOfTen = [] {
  std::array<double, MostPower - LeastPower + 1> powers{};
  for (int i = LeastPower; i <= MostPower; ++i) {
    const std::string text = "1e" + std::to_string(i);
    std::from_chars(text.data(), text.data() + text.size(), powers[std::size_t(i - LeastPower)]);
  }
  return powers;
}();

/// 'E' to 'e'.
VEK_AVX2_INLINE __m128i Small(__m128i p_text) {
  return _mm_or_si128(p_text, _mm_set1_epi8('a' - 'A'));
}

constexpr bool IsNormal(int p_power) {
  return p_power >= LeastPower && p_power <= MostPower;
}

VEK_AVX2_INLINE std::uint32_t Equal(__m128i p_text, char p_character) {
  return static_cast<std::uint32_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(p_text, _mm_set1_epi8(p_character))));
}

/// The integer of sixteen digits, the first of them in the first byte.
VEK_AVX2_INLINE std::uint64_t Joined(__m128i p_digits) {
  const __m128i pairs = _mm_maddubs_epi16(p_digits, _mm_set1_epi16(1 << 8 | 10));
  const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 100));
  const __m128i packed = _mm_packus_epi32(fours, fours);
  const __m128i eights = _mm_madd_epi16(packed, _mm_set1_epi32(1 << 16 | 10000));
  const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  return (both & 0xFFFFFFFF) * 100000000 + (both >> 32);
}

/// The float of a number between p_low and p_high times a power of ten. False where rounding leaves it open.
VEK_AVX2_INLINE bool BoundedFloat(std::uint64_t p_low, std::uint64_t p_high, int p_power, bool p_negative,
                                  float& p_value) {
  constexpr double Error = 4 * std::numeric_limits<double>::epsilon(); // of three roundings, and some more
  if (!IsNormal(p_power))
    return false;
  const double power = PowersOfTen[std::size_t(p_power - LeastPower)];
  const double low = static_cast<double>(static_cast<std::int64_t>(p_low)) * power * (1 - Error);
  const double high = static_cast<double>(static_cast<std::int64_t>(p_high)) * power * (1 + Error);
  p_value = static_cast<float>(Scan::Signs[p_negative] * low);
  return static_cast<float>(low) == static_cast<float>(high);
}

/// The number behind the 'e' of a word. False where it is none, or is long.
VEK_AVX2_INLINE bool ReadExponent(const char* p_first, const char* p_last, int& p_exponent) {
  const int sign = ',' - *p_first; // 1 for '+', -1 for '-'
  const unsigned int tens = static_cast<unsigned char>(p_first[1]) - unsigned('0');
  const unsigned int ones = static_cast<unsigned char>(p_first[2]) - unsigned('0');
  p_exponent = sign * static_cast<int>(10 * tens + ones);
  return p_last - p_first == 3 && sign * sign == 1 && tens <= 9 && ones <= 9;
}

/// A word of 17 to 32 characters without sign: digits, a point and an exponent. Digits beyond the sixteenth only bound
/// the value.
VEK_AVX2_INLINE bool LongFloat(const char* p_first, const char* p_last, bool p_negative, float& p_value) {
  const std::size_t size = std::size_t(p_last - p_first);
  const auto load = [&](std::size_t p_at)
                        VEK_AVX2 { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p_first + p_at)); };
  const __m128i front = load(0), back = load(16);
  const auto bits = [](__m128i p_front, __m128i p_back) VEK_AVX2 {
    return std::uint64_t(static_cast<std::uint32_t>(_mm_movemask_epi8(p_front))) |
           std::uint64_t(static_cast<std::uint32_t>(_mm_movemask_epi8(p_back))) << 16;
  };
  const auto equal = [&](char p_character, __m128i p_front, __m128i p_back) VEK_AVX2 {
    const __m128i wanted = _mm_set1_epi8(p_character);
    return bits(_mm_cmpeq_epi8(p_front, wanted), _mm_cmpeq_epi8(p_back, wanted));
  };
  const auto aboveNine = [](__m128i p_digits)
                             VEK_AVX2 { return _mm_cmpeq_epi8(_mm_max_epu8(p_digits, _mm_set1_epi8(10)), p_digits); };
  const __m128i frontDigits = _mm_sub_epi8(front, _mm_set1_epi8('0'));
  const __m128i backDigits = _mm_sub_epi8(back, _mm_set1_epi8('0'));
  // Characters in front of the exponent.
  const int mantissa = __builtin_ctzll(equal('e', Small(front), Small(back)) | std::uint64_t(1) << size);
  const std::uint64_t inside = (std::uint64_t(1) << mantissa) - 1;
  const std::uint64_t points = equal('.', front, back) & inside;
  const int point = __builtin_ctzll(points | std::uint64_t(1) << mantissa);
  int exponent = 0;
  if ((bits(aboveNine(frontDigits), aboveNine(backDigits)) & inside) != points || (points & (points - 1)) != 0 ||
      mantissa == (points != 0 ? 1 : 0) ||
      (std::size_t(mantissa) < size && !ReadExponent(p_first + mantissa + 1, p_last, exponent)))
    return false;
  const int taken = std::min(mantissa, 16);
  const std::uint64_t digits = Joined(_mm_shuffle_epi8(frontDigits, MovesOf(taken, std::min(point, taken))));
  const int power = point < taken ? point + 1 - taken : point - taken;
  return BoundedFloat(digits, mantissa > taken ? digits + 1 : digits, power + exponent, p_negative, p_value);
}

/// What is neither short nor plain.
VEK_AVX2 __attribute__((noinline)) bool OtherFloat(const char* p_first, const char* p_last, Words p_words,
                                                   float& p_value) {
  const bool negative = *p_first == '-';
  const char* const first = p_first + negative;
  return (p_last - first > 16 && p_last - first <= 32 && LongFloat(first, p_last, negative, p_value)) ||
         AnyFloat({p_first, std::size_t(p_last - p_first)}, p_words, p_value);
}

/// The first characters of a text as an integer times a power of ten. `p_values` are the digits, and 0 for each of
/// `p_signs` characters in front. False where there are others than digits and a point, or no digits.
VEK_AVX2_INLINE bool ReadDigits(__m128i p_text, __m128i p_values, int p_signs, int p_size, std::uint64_t& p_digits,
                                int& p_power) {
  const int point = __builtin_ctz(Equal(p_text, '.') | 1U << p_size);
  const __m128i digits = _mm_shuffle_epi8(p_values, MovesOf(p_size, point));
  const __m128i others = _mm_subs_epu8(digits, _mm_set1_epi8(9));
  const int hasPoint = point < p_size ? 1 : 0;
  p_digits = Joined(digits);
  p_power = point + hasPoint - p_size;
  return _mm_testz_si128(others, others) != 0 && p_size > p_signs + hasPoint;
}

/// The float of an integer times a power of ten. False where rounding leaves it open.
VEK_AVX2_INLINE bool RoundedFloat(std::uint64_t p_digits, int p_power, bool p_negative, float& p_value) {
  constexpr std::uint64_t LostBits = (std::uint64_t(1) << 29) - 1;
  constexpr std::uint64_t Middle = std::uint64_t(1) << 28;
  constexpr std::uint64_t Error = 4; // units of the last place of double: three roundings, of half to one unit each
  const double value =
      static_cast<double>(static_cast<std::int64_t>(p_digits)) * PowersOfTen[std::size_t(p_power - LeastPower)];
  std::uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  p_value = static_cast<float>(Scan::Signs[p_negative] * value);
  // Nearer to the middle of two floats the double may be on the wrong side.
  return ((bits + Error - Middle) & LostBits) > 2 * Error;
}

/// A word of at most 16 characters: digits, a point and an exponent.
VEK_AVX2_INLINE bool WordFloat(const char* p_first, const char* p_last, float& p_value) {
  const std::size_t size = std::size_t(p_last - p_first);
  if (size > 16)
    return false;
  const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p_first));
  // A minus is a leading 0. Found without comparing a character, which would set a part of a register only, and wait
  // for the word before, whose value may be in the other parts.
  const __m128i minus = _mm_and_si128(_mm_cmpeq_epi8(text, _mm_set1_epi8('-')), _mm_cvtsi32_si128(255));
  const int negative = _mm_cvtsi128_si32(minus) & 1;
  const __m128i values = _mm_andnot_si128(minus, _mm_sub_epi8(text, _mm_set1_epi8('0')));
  std::uint64_t digits = 0;
  int power = 0, exponent = 0;
  if (ReadDigits(text, values, negative, static_cast<int>(size), digits, power))
    return RoundedFloat(digits, power, negative != 0, p_value);
  const int mantissa = __builtin_ctz(Equal(Small(text), 'e') | 1U << size);
  return ReadDigits(text, values, negative, mantissa, digits, power) &&
         ReadExponent(p_first + mantissa + 1, p_last, exponent) && IsNormal(power + exponent) &&
         RoundedFloat(digits, power + exponent, negative != 0, p_value);
}

/// A bit for each of 64 characters that is a blank.
VEK_AVX2_INLINE std::uint64_t Blanks(const char* p_first) {
  std::uint64_t blanks = 0;
  for (int i = 0; i < 4; ++i) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p_first + 16 * i));
    // '\t' to '\r' in one comparison.
    const __m128i controls = _mm_sub_epi8(text, _mm_set1_epi8('\t'));
    const __m128i blank = _mm_or_si128(_mm_cmpeq_epi8(text, _mm_set1_epi8(' ')),
                                       _mm_cmpeq_epi8(_mm_min_epu8(controls, _mm_set1_epi8('\r' - '\t')), controls));
    blanks |= static_cast<std::uint64_t>(static_cast<std::uint32_t>(_mm_movemask_epi8(blank))) << (16 * i);
  }
  return blanks;
}

VEK_AVX2 FloatTexts ReadByAvx2(const char* p_first, const char* p_last, float* p_numbers, std::size_t p_most,
                               Words p_words) {
  constexpr std::size_t PieceSize = 2048;
  constexpr std::uint64_t LastBit = std::uint64_t(1) << 63;
  std::uint32_t borders[PieceSize + 16]; // starts and ends of words in turn, from p_first on
  FloatTexts read{p_first, 0};
  const std::size_t size = std::size_t(p_last - p_first);
  std::uint64_t afterBlank = 1;
  std::size_t count = 0; // of borders
  for (std::size_t piece = 0; piece < size; piece += PieceSize) {
    const std::size_t pieceEnd = std::min(piece + PieceSize, size);
    for (std::size_t at = piece; at < pieceEnd; at += 64) {
      const std::uint64_t blanks = Blanks(p_first + at);
      std::uint64_t changes = blanks ^ (blanks << 1 | afterBlank);
      afterBlank = blanks >> 63;
      if (pieceEnd - at < 64)
        changes &= (std::uint64_t(1) << (pieceEnd - at)) - 1;
      const std::size_t changeCount = std::size_t(__builtin_popcountll(changes));
      // Mostly in whole eights, since the processor predicts their number better; what is too many is overwritten.
      // The zeros of 0 cannot be counted: its last bit is set.
      for (std::size_t i = 0; i < changeCount; i += 8)
        for (std::size_t j = 0; j < 8; ++j) {
          borders[count + i + j] =
              static_cast<std::uint32_t>(at) + static_cast<std::uint32_t>(__builtin_ctzll(changes | LastBit));
          changes &= changes - 1;
        }
      count += changeCount;
    }
    const std::size_t words = std::min(count / 2, p_most - read.count);
    for (std::size_t i = 0; i < words; ++i) {
      const char* const first = p_first + borders[2 * i];
      const char* const last = p_first + borders[2 * i + 1];
      float& number = p_numbers[read.count + i];
      if (!WordFloat(first, last, number) && !OtherFloat(first, last, p_words, number))
        return {i == 0 ? read.end : p_first + borders[2 * i - 1], read.count + i};
    }
    read.count += words;
    if (words != 0)
      read.end = p_first + borders[2 * words - 1];
    if (read.count == p_most)
      break;
    borders[0] = borders[count - count % 2]; // of the word that goes on in the next piece
    count %= 2;
  }
  return read;
}

#endif

} // namespace

FloatTexts ReadFloatTexts(const char* p_first, const char* p_last, float* p_numbers, std::size_t p_most,
                          Words p_words) {
#ifdef VEK_HAS_AVX2
  static const bool Best =
      __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("popcnt");
  if (Best)
    return ReadByAvx2(p_first, p_last, p_numbers, p_most, p_words);
#endif
  return ReadPlainly(p_first, p_last, p_numbers, p_most, p_words);
}

} // namespace Vek::Chart::Library::Private
