#pragma once

#include "io/FileError.h"
#include "io/private/Words.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Io::Private {

// Separators that are no single character.
inline constexpr char Blanks = ' ';     // one or more blanks or tabs
inline constexpr char OneColumn = '\n'; // no cell contains it

/// A position in a text, with its line, from 1.
struct Place {
  std::size_t at = 0;
  std::size_t line = 1;
};

/// The rows of a text, one at a time, as cells.
class RowReader {
public:
  /// Reads rows that start from `p_first` on, which is the start of a line, and in front of `p_last`.
  RowReader(std::string_view p_text, const std::string& p_name, char p_separator, Place p_first = {},
            std::size_t p_last = std::string_view::npos)
      : _text(p_text)
      , _name(p_name)
      , _separator(p_separator)
      , _last(std::min(p_last, p_text.size()))
      , _at(p_first.at)
      , _line(p_first.line) {}

  /// Moves to the next row that is neither blank nor a comment; false at the end.
  bool Next() {
    if (!SkipToRow())
      return false;
    _row = _line;
    _cells.clear();
    _unquoted.clear();
    do {
      SkipBlanks();
      _cells.push_back(_at < _text.size() && _text[_at] == '"' ? Quoted() : Plain());
    } while (SkipSeparator());
    return true;
  }

  const std::vector<std::string_view>& Cells() const { return _cells; }
  /// The line on which the row starts, from 1.
  std::size_t Line() const { return _row; }
  /// Where the row starts, and where the line behind it does.
  Place Start() const { return {_start, _row}; }
  Place End() const { return {_at, _line}; }
  /// The last comment before the row, without its '#'.
  std::string_view Comment() const { return _comment; }
  /// The text from the start of the current row to the end of its line.
  std::string_view RestOfLine() const { return _text.substr(_start, LineEnd(_start) - _start); }

private:
  std::size_t LineEnd(std::size_t p_from) const { return std::min(_text.find_first_of("\n\r", p_from), _text.size()); }
  bool AtLineEnd() const { return _at >= _text.size() || _text[_at] == '\n' || _text[_at] == '\r'; }
  bool AtBlank() const {
    return _at < _text.size() && (_text[_at] == ' ' || (_text[_at] == '\t' && _separator != '\t'));
  }
  void SkipBlanks() {
    while (AtBlank())
      ++_at;
  }
  void SkipLineEnd() {
    if (_at < _text.size())
      _at += _text.compare(_at, 2, "\r\n") == 0 ? 2 : 1;
    ++_line;
  }
  bool SkipToRow() {
    for (; _at < _last; SkipLineEnd()) {
      _start = _at;
      const std::size_t first = std::min(_text.find_first_not_of(" \t", _at), _text.size());
      const char character = first < _text.size() ? _text[first] : '\n';
      if (character != '#' && character != '\n' && character != '\r')
        return true;
      if (character == '#')
        _comment = Trimmed(RestOfLine()).substr(1);
      _at = LineEnd(first);
    }
    return false;
  }

  std::string_view Plain() {
    // Most of the time goes here.
    const char* const start = _text.data() + _at;
    const char* const last = _text.data() + _text.size();
    const char separator = _separator, second = _separator == Blanks ? '\t' : _separator;
    const char* end = start;
    while (end != last && *end != separator && *end != second && *end != '\n' && *end != '\r')
      ++end;
    _at += static_cast<std::size_t>(end - start);
    while (end != start && (end[-1] == ' ' || end[-1] == '\t'))
      --end;
    return {start, static_cast<std::size_t>(end - start)};
  }
  std::string_view Quoted() {
    const std::size_t line = _line;
    std::string& cell = _unquoted.emplace_back();
    for (++_at;; ++_at) {
      if (_at >= _text.size())
        throw FileError(_name, line, "a quote that ends", _text.substr(_start));
      if (_text[_at] == '"' && _text.compare(_at, 2, "\"\"") != 0)
        break;
      if (_text[_at] == '"')
        ++_at;
      if (_text[_at] == '\n' || (_text[_at] == '\r' && _text.compare(_at, 2, "\r\n") != 0))
        ++_line;
      cell += _text[_at];
    }
    ++_at;
    return cell;
  }
  /// Whether another cell follows; otherwise moves to the next line.
  bool SkipSeparator() {
    const std::size_t end = _at;
    SkipBlanks();
    if (AtLineEnd()) {
      SkipLineEnd();
      return false;
    }
    if (_separator == Blanks ? _at > end : _text[_at] == _separator) {
      _at += _separator == Blanks ? 0 : 1;
      return true;
    }
    throw FileError(_name, _line, "a separator after a quote", _text.substr(_at, LineEnd(_at) - _at));
  }

  std::string_view _text;
  const std::string& _name;
  char _separator;
  std::size_t _last;
  std::size_t _at;
  std::size_t _start = 0;
  std::size_t _line;
  std::size_t _row = 0;
  std::string_view _comment;
  std::vector<std::string_view> _cells;
  std::deque<std::string> _unquoted; // whose strings stay where they are
};

} // namespace Vek::Chart::Io::Private
