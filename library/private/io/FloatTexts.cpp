#include "library/private/io/FloatTexts.h"

#include "library/private/io/FloatWord.h"

#include <boost/endian/conversion.hpp>

#include <QtAlgorithms>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

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

// The code of all processors takes eight characters at once.

constexpr std::uint64_t Ones = 0x0101010101010101;
constexpr std::uint64_t Tops = 0x8080808080808080; // the highest bit of each character

std::uint64_t EightCharacters(const char* p_first) {
  return boost::endian::load_little_u64(reinterpret_cast<const unsigned char*>(p_first));
}

/// The number of characters in front of the first one whose top bit is set in p_tops, in bits.
unsigned int BitsInFront(std::uint64_t p_tops) {
  return qCountTrailingZeroBits(static_cast<quint64>(p_tops)) - 7;
}

/// The top bit of each blank or control character. Borrows disturb what is behind the first one only.
std::uint64_t BlanksOrControls(std::uint64_t p_text) {
  return (p_text - '!' * Ones) & ~p_text & Tops;
}

/// The top bit of each byte above 9. Carries disturb what is behind the first one only.
std::uint64_t AboveNine(std::uint64_t p_digits) {
  return ((p_digits + (0x80 - 10) * Ones) | p_digits) & Tops;
}

/// The integer of eight digits, the first of them in the lowest byte: neighbours join to pairs, to fours, to one.
std::uint64_t Joined(std::uint64_t p_digits) {
  const std::uint64_t pairs = (p_digits * 10 + (p_digits >> 8)) & 0x00FF00FF00FF00FF;
  const std::uint64_t fours = (pairs * 100 + (pairs >> 16)) & 0x0000FFFF0000FFFF;
  return (fours * 10000 + (fours >> 32)) & 0x00000000FFFFFFFF;
}

/// The first blank or control character; p_last or one behind it where there is none in front of p_last.
const char* WordEnd(const char* p_first, const char* p_last) {
  for (; p_first < p_last; p_first += 8)
    if (const std::uint64_t blanks = BlanksOrControls(EightCharacters(p_first)); blanks != 0)
      return p_first + BitsInFront(blanks) / 8;
  return p_last;
}

/// A word of one to seven characters: digits and a point. Seven digits and powers of ten up to 1e7 are exact floats, so
/// that their quotient is correctly rounded.
bool TinyFloat(const char* p_first, std::size_t p_size, float& p_value) {
  constexpr float FloatSigns[] = {1.0f, -1.0f};
  constexpr float Powers[] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f, 1e5f, 1e6f, 1e7f};
  const std::uint64_t text = EightCharacters(p_first);
  unsigned int bits = 8 * static_cast<unsigned int>(p_size);
  // Digits become 0 to 9, and a sign a leading zero.
  const unsigned int sign = (text & 255) == '-' ? 1 : 0;
  std::uint64_t digits = text ^ ('0' * Ones) ^ (sign * ('-' ^ '0'));
  unsigned int decimals = 0;
  const std::uint64_t differences = text ^ ('.' * Ones);
  const std::uint64_t word = (std::uint64_t(1) << bits) - 1;
  if (const std::uint64_t points = (differences - Ones) & ~differences & Tops & word) {
    const std::uint64_t whole = ((points & (~points + 1)) >> 7) - 1; // what is in front of the first point
    digits = (digits & whole) | ((digits >> 8) & ~whole);
    bits -= 8;
    decimals = (bits - BitsInFront(points)) / 8;
  }
  if (bits <= 8 * sign)
    return false;
  digits <<= 64 - bits; // the last digit to the last place
  p_value = FloatSigns[sign] * (static_cast<float>(static_cast<std::int32_t>(Joined(digits))) / Powers[decimals]);
  return AboveNine(digits) == 0;
}

/// Appends the digits at the front to p_value, modulo 2^64, and returns their end.
const char* AppendDigits(const char* p_first, std::uint64_t& p_value) {
  constexpr std::uint64_t Powers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
  for (;; p_first += 8) {
    const std::uint64_t digits = EightCharacters(p_first) ^ ('0' * Ones);
    if (const std::uint64_t others = AboveNine(digits); others != 0) {
      const unsigned int bits = BitsInFront(others);
      p_value = p_value * Powers[bits / 8] + Joined(digits << 8 << (56 - bits));
      return p_first + bits / 8;
    }
    p_value = p_value * Powers[8] + Joined(digits);
  }
}

/// The number of digits without zeros in front.
std::ptrdiff_t CountDigits(const char* p_first, const char* p_last) {
  const char* const first = std::find_if(p_first, p_last, [](char p_c) { return p_c != '0' && p_c != '.'; });
  return std::count_if(first, p_last, [](char p_c) { return p_c != '.'; });
}

/// A word of digits, a point and an exponent, with a blank behind it.
bool WordFloat(const char* p_first, const char* p_last, float& p_value) {
  constexpr std::ptrdiff_t MostDigits = 18; // of a RoundedFloat
  const bool negative = *p_first == '-';
  const char* const whole = p_first + negative;
  std::uint64_t digits = 0;
  const char* end = AppendDigits(whole, digits);
  std::ptrdiff_t count = end - whole;
  int power = 0;
  if (*end == '.') {
    const char* const fraction = end + 1;
    end = AppendDigits(fraction, digits);
    count += end - fraction;
    power = static_cast<int>(fraction - end);
  }
  if (count == 0 || (count > MostDigits && CountDigits(whole, end) > MostDigits))
    return false;
  int exponent = 0;
  if (end != p_last && ReadExponent(end, p_last, exponent))
    end = p_last;
  return end == p_last && IsNormal(power + exponent) && RoundedFloat(digits, power + exponent, negative, p_value);
}

/// One word after the other. The end of a word is found first, so that the next one need not wait for its digits.
[[maybe_unused]] FloatTexts ReadPlainly(const char* p_first, const char* p_last, float* p_numbers, std::size_t p_most,
                                        Words p_words) {
  constexpr std::ptrdiff_t Tiny = 7;
  FloatTexts read{p_first, 0};
  while (read.count < p_most) {
    const char* at = read.end;
    while (at < p_last && Scan::IsBlank(*at))
      ++at;
    const char* end = WordEnd(at, p_last);
    if (end >= p_last)
      break;
    float value = 0;
    const bool isRead = end - at <= Tiny ? TinyFloat(at, std::size_t(end - at), value) : WordFloat(at, end, value);
    if (!isRead || !Scan::IsBlank(*end)) {
      end = std::find_if(end, p_last, Scan::IsBlank);
      if (end == p_last || !AnyFloat({at, std::size_t(end - at)}, p_words, value))
        break;
    }
    p_numbers[read.count] = value;
    ++read.count;
    read.end = end;
  }
  return read;
}

} // namespace

const std::array<double, MostPower - LeastPower + 1> FloatPowers = [] {
  std::array<double, MostPower - LeastPower + 1> powers{};
  for (int i = LeastPower; i <= MostPower; ++i) {
    const std::string text = "1e" + std::to_string(i);
    std::from_chars(text.data(), text.data() + text.size(), powers[std::size_t(i - LeastPower)]);
  }
  return powers;
}();

bool AnyFloat(std::string_view p_word, Words p_words, float& p_value) {
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

FloatTexts ReadFloatTexts(const char* p_first, const char* p_last, float* p_numbers, std::size_t p_most,
                          Words p_words) {
#ifdef VEK_HAS_AVX2
  static const bool Best =
      __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("popcnt");
  if (Best)
    return ReadFloatTextsByAvx2(p_first, p_last, p_numbers, p_most, p_words);
#endif
  return ReadPlainly(p_first, p_last, p_numbers, p_most, p_words);
}

} // namespace Vek::Chart::Library::Private
