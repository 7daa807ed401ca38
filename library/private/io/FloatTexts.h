#pragma once

#include <cstddef>

namespace Vek::Chart::Library::Private {

/// Words that count as numbers besides those that `std::istream >> float` reads.
enum class Words {
  Numbers,      ///< none
  NumbersOrNaN, ///< "nan", "inf" and "infinity" with any sign and in any case
};

/// What was read of a text.
struct FloatTexts {
  const char* end;   ///< behind the last number
  std::size_t count; ///< of numbers
};

/// Reads numbers separated by blanks from [p_first, p_last) into `p_numbers`: at most `p_most` of them, up to the first
/// word that is no number or goes on at `p_last`. They equal those of `std::istream >> float` under the classic locale.
/// `p_first` is the start of a word or a blank. `FloatTextsSlack` bytes behind p_last may be read; they have no
/// meaning.
FloatTexts ReadFloatTexts(const char* p_first, const char* p_last, float* p_numbers, std::size_t p_most, Words p_words);

constexpr std::size_t FloatTextsSlack = 64;

} // namespace Vek::Chart::Library::Private
