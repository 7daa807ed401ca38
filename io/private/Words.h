#pragma once

#include <charconv>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace Vek::Chart::Io::Private {

/// The size of a byte order mark of UTF-8 at the start of a text.
inline std::size_t MarkSize(std::string_view p_text) {
  return p_text.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
}

inline bool IsBlank(char p_character) {
  return p_character == ' ' || (p_character >= '\t' && p_character <= '\r');
}

/// Without blanks at both ends.
std::string_view Trimmed(std::string_view p_text);
/// The words between blanks.
std::vector<std::string> SplitWords(std::string_view p_text);
/// Whether words are equal, whatever their case.
bool IsSameWord(std::string_view p_a, std::string_view p_b);

/// The start of a text, without control characters, which would change the line of a message.
std::string Printable(std::string_view p_text);

/// Whether a cell of a table says that there is no value.
bool IsMissing(std::string_view p_cell);

/// A whole word as a number that its type can have. None for another word.
template <class T>
std::optional<T> Parsed(std::string_view p_word) {
  T value{};
  const char* const last = p_word.data() + p_word.size();
  const auto [end, error] = std::from_chars(p_word.data(), last, value);
  return end == last && error == std::errc() ? std::optional(value) : std::nullopt;
}
/// Without a '+' in front, which std::from_chars does not take. A sign behind it stays refused.
inline std::string_view WithoutPlus(std::string_view p_word) {
  const bool isPlus = p_word.substr(0, 1) == "+" && p_word.substr(1, 1) != "-";
  return p_word.substr(isPlus ? 1 : 0);
}
/// Likewise, with an optional '+'; infinite or 0 where a double has too little range. None for another
/// word.
std::optional<double> ParseNumber(std::string_view p_word);

/// The shortest text that reads back as the same number.
std::string NumberText(double p_number);

/// The words of a text one by one, and where they are.
class Words {
public:
  /// The text and the name must outlive this.
  Words(std::string_view p_text, const std::string& p_name, std::size_t p_at = 0)
      : _text(p_text)
      , _name(p_name)
      , _at(p_at) {}

  /// The next word; empty at the end.
  std::string_view Next();
  /// The next word, without taking it.
  std::string_view Peek();
  /// Takes a word in any case. Throws FileError for another one.
  void Take(std::string_view p_word);
  /// The rest of the line of the last word, trimmed. Moves to the next line.
  std::string_view RestOfLine();
  /// The next word as a number. Throws FileError for another one.
  double Number();

  bool AtEnd() { return Peek().empty(); }
  std::size_t Position() const { return _at; }
  /// Throws FileError with the line of the last word, the expectation and the word.
  [[noreturn]] void Fail(const std::string& p_expected) const;

private:
  std::string_view _text;
  const std::string& _name;
  std::size_t _at;
  std::string_view _last;
};

} // namespace Vek::Chart::Io::Private
