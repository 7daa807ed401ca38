// Numbers of texts, two stages at a time: the borders of all words of a piece, then the words, whose places no longer
// depend on each other.

#include "library/private/io/FloatWord.h"

#ifdef VEK_HAS_AVX2

#include <immintrin.h>

#include <algorithm>
#include <limits>

namespace Vek::Chart::Library::Private {

namespace {

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

/// 'E' to 'e'.
VEK_AVX2_INLINE __m128i Small(__m128i p_text) {
  return _mm_or_si128(p_text, _mm_set1_epi8('a' - 'A'));
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
  const double power = FloatPowers[std::size_t(p_power - LeastPower)];
  const double low = static_cast<double>(static_cast<std::int64_t>(p_low)) * power * (1 - Error);
  const double high = static_cast<double>(static_cast<std::int64_t>(p_high)) * power * (1 + Error);
  p_value = static_cast<float>(Scan::Signs[p_negative] * low);
  return static_cast<float>(low) == static_cast<float>(high);
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
      (std::size_t(mantissa) < size && !ReadExponent(p_first + mantissa, p_last, exponent)))
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
         ReadExponent(p_first + mantissa, p_last, exponent) && IsNormal(power + exponent) &&
         RoundedFloat(digits, power + exponent, negative != 0, p_value);
}

/// Four words, given by their starts and ends in turn. Writes those of at most 8 characters without exponent; the bits
/// of the others are set in the result. Integers of 8 digits and quotients of 7 digits and a power of ten up to 1e7 are
/// rounded once.
VEK_AVX2_INLINE unsigned int FourFloats(const char* p_text, const std::uint32_t* p_borders, float* p_numbers) {
  const __m256i one = _mm256_set1_epi64x(1);
  const __m256i zero = _mm256_setzero_si256();
  const __m256i borders = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p_borders));
  const __m256i sizes = _mm256_srli_epi64(_mm256_sub_epi32(borders, _mm256_slli_epi64(borders, 32)), 32);
  const __m256i tooLong = _mm256_cmpgt_epi64(sizes, _mm256_set1_epi64x(8));
  const auto load = [&](int p_word) VEK_AVX2 {
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p_text + p_borders[2 * p_word]));
  };
  const __m256i text = _mm256_set_m128i(_mm_unpacklo_epi64(load(2), load(3)), _mm_unpacklo_epi64(load(0), load(1)));
  // Digits, and a minus as a leading 0, move to the end of eight.
  const __m256i minus = _mm256_and_si256(_mm256_cmpeq_epi8(text, _mm256_set1_epi8('-')), _mm256_set1_epi64x(255));
  const __m256i values = _mm256_sllv_epi64(_mm256_andnot_si256(minus, _mm256_sub_epi8(text, _mm256_set1_epi8('0'))),
                                           _mm256_sub_epi64(_mm256_set1_epi64x(64), _mm256_slli_epi64(sizes, 3)));
  // Those in front of the first point move to its place.
  const __m256i points = _mm256_cmpeq_epi8(values, _mm256_set1_epi8('.' - '0'));
  const __m256i noPoint = _mm256_cmpeq_epi64(points, zero);
  const __m256i whole = _mm256_andnot_si256(_mm256_or_si256(noPoint, points), _mm256_sub_epi64(points, one));
  const __m256i upToPoint =
      _mm256_or_si256(_mm256_slli_epi64(whole, 8), _mm256_andnot_si256(noPoint, _mm256_set1_epi64x(255)));
  const __m256i digits =
      _mm256_or_si256(_mm256_slli_epi64(_mm256_and_si256(values, whole), 8), _mm256_andnot_si256(upToPoint, values));
  // 8 where there is no point, which picks the same power as 0.
  const __m256i decimals = _mm256_sad_epu8(_mm256_andnot_si256(upToPoint, _mm256_set1_epi8(1)), zero);
  const __m256 powers =
      _mm256_permutevar8x32_ps(_mm256_setr_ps(1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f), decimals);
  const __m256i pairs = _mm256_maddubs_epi16(digits, _mm256_set1_epi16(1 << 8 | 10));
  const __m256i fours = _mm256_madd_epi16(pairs, _mm256_set1_epi32(1 << 16 | 100));
  const __m256i packed = _mm256_packus_epi32(fours, fours);
  const __m256i integers = _mm256_madd_epi16(packed, _mm256_set1_epi32(1 << 16 | 10000));
  const __m256i spread = _mm256_shuffle_epi32(integers, _MM_SHUFFLE(1, 1, 0, 0)); // to the lanes of the words
  const __m256 quotients = _mm256_div_ps(_mm256_cvtepi32_ps(spread), powers);
  const __m256 floats = _mm256_or_ps(quotients, _mm256_castsi256_ps(_mm256_slli_epi64(minus, 31)));
  _mm_storeu_ps(p_numbers, _mm_shuffle_ps(_mm256_castps256_ps128(floats), _mm256_extractf128_ps(floats, 1),
                                          _MM_SHUFFLE(2, 0, 2, 0)));
  const __m256i others = _mm256_or_si256(_mm256_subs_epu8(digits, _mm256_set1_epi8(9)), tooLong);
  const __m256i signs = _mm256_and_si256(minus, one);
  const __m256i hasDigits = _mm256_cmpgt_epi64(_mm256_sub_epi64(_mm256_sub_epi64(sizes, signs), noPoint), one);
  const __m256i written = _mm256_and_si256(_mm256_cmpeq_epi64(others, zero), hasDigits);
  return 15U ^ static_cast<unsigned int>(_mm256_movemask_pd(_mm256_castsi256_pd(written)));
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

/// Reads words, given by their starts and ends in turn, up to the first that is no number. Returns how many it read.
VEK_AVX2_INLINE std::size_t ReadWords(const char* p_text, const std::uint32_t* p_borders, std::size_t p_count,
                                      Words p_words, float* p_numbers) {
  constexpr std::size_t Short = 9; // characters of a word and a blank, up to which most words are read by fours
  const auto read = [&](std::size_t p_word) VEK_AVX2 {
    const char* const first = p_text + p_borders[2 * p_word];
    const char* const last = p_text + p_borders[2 * p_word + 1];
    return WordFloat(first, last, p_numbers[p_word]) || OtherFloat(first, last, p_words, p_numbers[p_word]);
  };
  std::size_t i = 0;
  if (p_count >= 4 && p_borders[2 * p_count - 1] - p_borders[0] <= Short * p_count)
    for (; i + 4 <= p_count; i += 4)
      for (unsigned int left = FourFloats(p_text, p_borders + 2 * i, p_numbers + i); left != 0; left &= left - 1)
        if (const std::size_t word = i + static_cast<std::size_t>(__builtin_ctz(left)); !read(word))
          return word;
  while (i < p_count && read(i))
    ++i;
  return i;
}

} // namespace

VEK_AVX2 FloatTexts ReadFloatTextsByAvx2(const char* p_first, const char* p_last, float* p_numbers, std::size_t p_most,
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
    const std::size_t done = ReadWords(p_first, borders, words, p_words, p_numbers + read.count);
    if (done < words)
      return {done == 0 ? read.end : p_first + borders[2 * done - 1], read.count + done};
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

} // namespace Vek::Chart::Library::Private

#endif
