#pragma once

#include "library/private/io/NumberText.h"
#include "library/private/io/ObjSceneBlock.h"

#include <boost/lexical_cast.hpp>

#include <algorithm>
#include <limits>
#include <string_view>

/// The parts of a line of an OBJ file. Functions return the character behind what they have read, null where it is not
/// there; `p_last` is the end of the text.
namespace Vek::Chart::Library::Private::ObjLine {

// Every line ends in LF or CR, which are in no number, so the character behind a number can always be read.

inline bool IsLineEnd(char p_character) {
  return p_character == '\n' || p_character == '\r';
}

inline const char* SkipBlanks(const char* p_at) {
  while (*p_at == ' ' || (Scan::IsBlank(*p_at) && !IsLineEnd(*p_at)))
    ++p_at;
  return p_at;
}

inline const char* FindLineEnd(const char* p_at, const char* p_last) {
  return std::find_if(p_at, p_last, IsLineEnd);
}

inline const char* BehindLineEnd(const char* p_at) {
  return p_at + (p_at[0] == '\r' && p_at[1] == '\n' ? 2 : 1);
}

/// The start of the next line where the rest of this one has no statement; null otherwise.
inline const char* SkipRest(const char* p_at, const char* p_last) {
  p_at = SkipBlanks(p_at);
  if (*p_at == '#')
    p_at = FindLineEnd(p_at, p_last);
  return IsLineEnd(*p_at) ? BehindLineEnd(p_at) : nullptr;
}

inline std::string_view Word(const char* p_at, const char* p_last) {
  return {p_at, std::size_t(std::find_if(p_at, p_last, Scan::IsBlank) - p_at)};
}

/// As old C libraries of Windows write infinities and NaN: "-1.#INF", "1.#QNAN0".
inline bool WindowsNumber(std::string_view p_text, double& p_value) {
  const std::size_t sign = !p_text.empty() && p_text.front() == '-' ? 1 : 0;
  if (p_text.substr(sign, 3) != "1.#")
    return false;
  const double infinity =
      sign == 0 ? std::numeric_limits<double>::infinity() : -std::numeric_limits<double>::infinity();
  p_value = p_text.substr(sign + 3, 3) == "INF" ? infinity : std::numeric_limits<double>::quiet_NaN();
  return true;
}

/// A number in front of white space, any that LoadPolygonObjFile takes; null where there is none.
[[gnu::noinline]] inline const char* ScanAnyNumber(const char* p_at, const char* p_last, double& p_value) {
  const std::string_view word = Word(p_at, p_last);
  try {
    if (!WindowsNumber(word, p_value))
      p_value = DoubleFromText(word);
  } catch (const boost::bad_lexical_cast&) {
    return nullptr;
  }
  return p_at + word.size();
}

inline const char* ScanNumber(const char* p_at, const char* p_last, double& p_value) {
  const char* const end = Scan::ShortDouble(p_at, p_last, p_value);
  return end != nullptr && Scan::IsBlank(*end) ? end : ScanAnyNumber(p_at, p_last, p_value);
}

/// An index, or null. Nine digits are more than there can be elements.
inline const char* ScanIndex(const char* p_at, const char* p_last, int& p_value) {
  const bool negative = *p_at == '-';
  const char* const end = Scan::ShortInt(p_at + negative, p_last, p_value);
  if (negative)
    p_value = -p_value;
  return end;
}

inline std::string_view Trimmed(std::string_view p_text) {
  while (!p_text.empty() && Scan::IsBlank(p_text.back()))
    p_text.remove_suffix(1);
  while (!p_text.empty() && Scan::IsBlank(p_text.front()))
    p_text.remove_prefix(1);
  return p_text;
}

/// Three plain numbers behind a single blank each, and the end of the line: its character, otherwise null.
inline const char* ScanPlainVector(const char* p_at, const char* p_last, double* p_numbers) {
  for (int i = 0; i < 3; ++i) {
    if (*p_at != ' ')
      return nullptr;
    p_at = Scan::ShortDouble(p_at + 1, p_last, p_numbers[i]);
    if (p_at == nullptr)
      return nullptr;
  }
  return IsLineEnd(*p_at) ? p_at : nullptr;
}

/// Up to eight numbers. A line that has more, or anything else, is read up to it.
inline const char* ScanNumbers(const char* p_at, const char* p_last, double* p_numbers, int& p_count) {
  constexpr int Most = 8;
  if (const char* const end = ScanPlainVector(p_at, p_last, p_numbers)) {
    p_count = 3;
    return end;
  }
  for (p_count = 0; p_count < Most; ++p_count) {
    p_at = SkipBlanks(p_at);
    if (IsLineEnd(*p_at) || *p_at == '#')
      break;
    const char* const end = ScanNumber(p_at, p_last, p_numbers[p_count]);
    if (end == nullptr)
      break;
    p_at = end;
  }
  return SkipBlanks(p_at);
}

/// Another number of a corner, where there is one; null for 0, which stands for none.
inline const char* ScanNextIndex(const char* p_at, const char* p_last, int& p_value) {
  if (p_at == nullptr || *p_at != '/')
    return p_at;
  ++p_at;
  if (*p_at == '/' || Scan::IsBlank(*p_at))
    return p_at;
  p_at = ScanIndex(p_at, p_last, p_value);
  return p_value == 0 ? nullptr : p_at;
}

/// A corner: all but the first number may be missing, and with them the slashes behind.
[[gnu::always_inline]] inline const char* ScanCorner(const char* p_at, const char* p_last, ObjCorner& p_corner) {
  p_at = ScanIndex(p_at, p_last, p_corner.position);
  p_at = ScanNextIndex(p_at, p_last, p_corner.texCoord);
  return ScanNextIndex(p_at, p_last, p_corner.normal);
}

} // namespace Vek::Chart::Library::Private::ObjLine
