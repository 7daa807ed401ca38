#include "io/private/Words.h"

#include "io/FileError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <limits>
#include <locale>
#include <sstream>

namespace Vek::Chart::Io::Private {

namespace {

char Lower(char p_character) {
  return p_character >= 'A' && p_character <= 'Z' ? static_cast<char>(p_character - 'A' + 'a') : p_character;
}

} // namespace

std::string_view Trimmed(std::string_view p_text) {
  constexpr const char* Blanks = " \t\r";
  const std::size_t first = p_text.find_first_not_of(Blanks);
  return first == std::string_view::npos ? std::string_view()
                                         : p_text.substr(first, p_text.find_last_not_of(Blanks) - first + 1);
}

std::vector<std::string> SplitWords(std::string_view p_text) {
  std::istringstream stream{std::string(p_text)};
  return {std::istream_iterator<std::string>(stream), {}};
}

bool IsSameWord(std::string_view p_a, std::string_view p_b) {
  return std::equal(p_a.begin(), p_a.end(), p_b.begin(), p_b.end(),
                    [](char p_x, char p_y) { return Lower(p_x) == Lower(p_y); });
}

std::string Printable(std::string_view p_text) {
  constexpr std::size_t Longest = 40;
  std::string text(p_text.substr(0, Longest));
  for (char& c : text)
    if (static_cast<unsigned char>(c) < ' ')
      c = ' ';
  return p_text.size() <= Longest ? text : text + "...";
}

bool IsMissing(std::string_view p_cell) {
  constexpr std::array<std::string_view, 8> Missing{"", "na", "n/a", "#n/a", "null", "none", "-", "--"};
  return std::any_of(Missing.begin(), Missing.end(),
                     [&](std::string_view p_word) { return IsSameWord(p_cell, p_word); });
}

std::optional<double> ParseNumber(std::string_view p_word) {
  p_word = WithoutPlus(p_word);
  double number = 0;
  const char* const last = p_word.data() + p_word.size();
  const auto [end, error] = std::from_chars(p_word.data(), last, number);
  if (p_word.empty() || end != last || error == std::errc::invalid_argument)
    return {};
  if (error == std::errc::result_out_of_range) {
    std::istringstream stream{std::string(p_word)}; // stores 0 or the largest double, with the sign
    stream.imbue(std::locale::classic());
    stream >> number;
    if (std::abs(number) > 1)
      number = std::copysign(std::numeric_limits<double>::infinity(), number);
  }
  return number;
}

std::string NumberText(double p_number) {
  char text[64];
  return std::string(text, std::to_chars(text, text + sizeof text, p_number).ptr);
}

std::string_view Words::Peek() {
  while (_at < _text.size() && IsBlank(_text[_at]))
    ++_at;
  std::size_t end = _at;
  while (end < _text.size() && !IsBlank(_text[end]))
    ++end;
  return _text.substr(_at, end - _at);
}

std::string_view Words::Next() {
  _last = Peek();
  _at += _last.size();
  return _last;
}

void Words::Take(std::string_view p_word) {
  if (!IsSameWord(Next(), p_word))
    Fail('"' + std::string(p_word) + '"');
}

std::string_view Words::RestOfLine() {
  const std::size_t end = std::min(_text.find_first_of("\n\r", _at), _text.size());
  std::string_view rest = _text.substr(_at, end - _at);
  _at = end;
  while (!rest.empty() && IsBlank(rest.front()))
    rest.remove_prefix(1);
  while (!rest.empty() && IsBlank(rest.back()))
    rest.remove_suffix(1);
  return rest;
}

double Words::Number() {
  const std::optional<double> number = ParseNumber(Next());
  if (!number)
    Fail("a number");
  return *number;
}

void Words::Fail(const std::string& p_expected) const {
  const std::string_view before = _text.substr(0, _at - _last.size());
  std::size_t line = 1;
  for (std::size_t i = 0; i < before.size(); ++i)
    line += before[i] == '\n' || (before[i] == '\r' && before.substr(i + 1, 1) != "\n");
  if (_last.empty())
    throw FileError(_name, line, p_expected, "the end of the file");
  throw FileError(_name, line, p_expected, _last);
}

} // namespace Vek::Chart::Io::Private
