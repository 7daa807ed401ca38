#pragma once

#include "io/FileError.h"
#include "io/private/ByteSource.h"
#include "io/private/Words.h"

#include "platform/utility/Threads.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace Vek::Chart::Io::Private {

/// Whether a character lies between values.
inline bool IsSeparator(char p_character) {
  return IsBlank(p_character) || p_character == ',';
}

/// Some bytes of a source, up to a separator.
struct TextPiece {
  static constexpr std::size_t Most = std::size_t{1} << 16;

  std::unique_ptr<char[]> bytes; ///< room for `Most`
  std::size_t size = 0;
  std::string_view Text() const { return {bytes.get(), size}; }
};

/// The bytes of a source in pieces.
class TextPieces {
public:
  explicit TextPieces(ByteSource& p_source)
      : _source(p_source) {}

  /// Reads the next piece; false at the end. A word that no piece has room for is cut.
  bool Next(TextPiece& p_piece);

private:
  ByteSource& _source;
  std::string _rest; ///< behind the last separator
};

/// Values that are written as text, separated by white space and commas. Those next to 0 are rounded.
template <class T>
class TextValues {
public:
  /// `p_line` is the first value's. The source and the name must outlive this.
  TextValues(ByteSource& p_source, const std::string& p_name, std::size_t p_line)
      : _source(p_source)
      , _name(p_name)
      , _line(p_line) {}

  /// A digit and a separator each, but for the last one.
  std::uint64_t Most() const {
    const std::uint64_t bytes = _source.MostLeft();
    return bytes == ByteSource::Unknown ? bytes : bytes / 2 + 1;
  }

  /// Calls p_take(values, count, number of the first one) for the first p_count values, in order and in the calling
  /// thread, which also reads the source, somewhat ahead. Throws FileError for what is no value, and at the end.
  template <class Take>
  void ForEach(std::uint64_t p_count, Utility::Threads p_threads, const Take& p_take) {
    constexpr std::uint64_t WorthThreads = std::uint64_t{1} << 20; // bytes
    const Utility::Threads threads = _source.MostLeft() < WorthThreads ? Utility::Threads() : p_threads;
    std::vector<Piece> pieces(3 * std::size_t(threads.Count()));
    TextPieces source(_source);
    std::exception_ptr failure; // of what is behind the pieces
    std::uint64_t taken = 0;
    Utility::BlockSteps steps;
    steps.fill = [&](std::size_t p_slot) {
      try {
        return taken < p_count && source.Next(pieces[p_slot].text);
      } catch (...) {
        failure = std::current_exception();
        return false;
      }
    };
    steps.work = [&](std::size_t p_slot) { pieces[p_slot].Parse(); };
    steps.join = [&](std::size_t p_slot) {
      const Piece& piece = pieces[p_slot];
      const auto count = std::size_t(std::min<std::uint64_t>(p_count - taken, piece.values.size()));
      if (count != 0)
        p_take(piece.values.data(), count, taken);
      taken += count;
      _line += piece.lines;
      if (taken < p_count && !piece.failed.empty())
        Fail(piece.failed);
    };
    Utility::RunBlocks(threads, pieces.size(), steps);
    if (taken < p_count && failure)
      std::rethrow_exception(failure);
    if (taken < p_count)
      throw FileError(_name, _line, "a number", "the end of the file");
  }

private:
  struct Piece {
    TextPiece text;
    std::vector<T> values;
    std::size_t lines = 0;   ///< up to its end, or to its first word that is no value
    std::string_view failed; ///< that word

    void Parse();
  };
  static bool ParseValue(std::string_view p_word, T& p_value);
  [[noreturn]] void Fail(std::string_view p_word) const {
    throw FileError(_name, _line, std::is_integral_v<T> ? "an integer of the file's type" : "a number", p_word);
  }

  ByteSource& _source;
  const std::string& _name;
  std::size_t _line;
};

template <class T>
void TextValues<T>::Piece::Parse() {
  constexpr std::size_t LongestWord = 1024; // shorter than any that was cut
  values.clear();
  lines = 0;
  failed = {};
  const char* at = text.Text().data();
  const char* const end = at + text.size;
  for (;;) {
    for (; at != end && IsSeparator(*at); ++at)
      lines += *at == '\n' ? 1 : 0;
    if (at == end)
      return;
    const char* const first = at;
    while (at != end && !IsSeparator(*at))
      ++at;
    const std::string_view word(first, std::size_t(at - first));
    T value{};
    if (word.size() > LongestWord || !ParseValue(word, value)) {
      failed = word;
      return;
    }
    values.push_back(value);
  }
}

template <class T>
bool TextValues<T>::ParseValue(std::string_view p_word, T& p_value) {
  const std::optional<T> value = Parsed<T>(WithoutPlus(p_word));
  p_value = value.value_or(T());
  if constexpr (std::is_floating_point_v<T>) // below the range of the type
    if (!value)
      if (const std::optional<double> wide = ParseNumber(p_word); wide && std::abs(*wide) < 1) {
        p_value = static_cast<T>(*wide);
        return true;
      }
  return value.has_value();
}

} // namespace Vek::Chart::Io::Private
