#include "io/ReadTable.h"

#include "io/FileError.h"
#include "io/private/Input.h"
#include "io/private/Words.h"

#include <algorithm>
#include <array>
#include <deque>
#include <fstream>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace Vek::Chart::Io {

namespace {

constexpr std::size_t LongestLine = 16u << 20;
// Separators that are no single character.
constexpr char Blanks = ' ';     // one or more blanks or tabs
constexpr char OneColumn = '\n'; // no cell contains it

/// All of a stream, without a byte order mark. A line without end is refused before it fills the memory.
std::string ReadAll(std::istream& p_stream, const std::string& p_name) {
  std::string text;
  std::vector<char> block(1u << 20);
  std::size_t lineStart = 0;
  while (p_stream) {
    p_stream.read(block.data(), static_cast<std::streamsize>(block.size()));
    const std::string_view read(block.data(), static_cast<std::size_t>(p_stream.gcount()));
    text += read;
    if (Private::IsUtf16(text))
      throw FileError(p_name, "expected UTF-8, got UTF-16; save the file as UTF-8");
    if (read.find('\0') != std::string_view::npos)
      throw FileError(p_name, "expected a table of text, got binary data");
    if (const std::size_t end = read.find_last_of("\n\r"); end != std::string_view::npos)
      lineStart = text.size() - read.size() + end;
    if (text.size() - lineStart > LongestLine)
      throw FileError(p_name, "a line is longer than 16 MiB");
  }
  if (p_stream.bad())
    throw FileError(p_name, "reading failed");
  text.erase(0, Private::MarkSize(text));
  return text;
}

/// The rows of a text, one at a time, as cells.
class RowReader {
public:
  RowReader(std::string_view p_text, const std::string& p_name, char p_separator)
      : _text(p_text)
      , _name(p_name)
      , _separator(p_separator) {}

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
  /// The share of the text that was read, 0 to 1.
  double Share() const { return double(_at) / double(std::max<std::size_t>(_text.size(), 1)); }
  /// The line on which the row starts, from 1.
  std::size_t Line() const { return _row; }
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
    for (; _at < _text.size(); SkipLineEnd()) {
      _start = _at;
      const std::size_t first = std::min(_text.find_first_not_of(" \t", _at), _text.size());
      const char character = first < _text.size() ? _text[first] : '\n';
      if (character != '#' && character != '\n' && character != '\r')
        return true;
      if (character == '#')
        _comment = Private::Trimmed(RestOfLine()).substr(1);
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
  std::size_t _at = 0;
  std::size_t _start = 0;
  std::size_t _line = 1;
  std::size_t _row = 0;
  std::string_view _comment;
  std::vector<std::string_view> _cells;
  std::deque<std::string> _unquoted; // whose strings stay where they are
};

bool IsMissing(std::string_view p_cell) {
  constexpr std::array<std::string_view, 8> Missing{"", "na", "n/a", "#n/a", "null", "none", "-", "--"};
  return std::any_of(Missing.begin(), Missing.end(),
                     [&](std::string_view p_word) { return Private::IsSameWord(p_cell, p_word); });
}

/// A number or NaN for a missing one; none for other cells.
std::optional<double> Number(std::string_view p_cell, bool p_decimalComma) {
  if (const std::optional<double> number = Private::ParseNumber(p_cell))
    return number;
  if (IsMissing(p_cell))
    return std::numeric_limits<double>::quiet_NaN();
  if (!p_decimalComma || std::count(p_cell.begin(), p_cell.end(), ',') != 1)
    return {};
  std::string point(p_cell);
  std::replace(point.begin(), point.end(), ',', '.');
  return Private::ParseNumber(point);
}

/// The number of cells in the first two rows when they are split by a separator.
std::array<std::size_t, 2> CountCells(const std::string& p_text, const std::string& p_name, char p_separator) {
  std::array<std::size_t, 2> counts{};
  try {
    RowReader reader(p_text, p_name, p_separator);
    for (std::size_t& count : counts)
      count = reader.Next() ? reader.Cells().size() : counts[0];
  } catch (const FileError&) {
    return {counts[0], 0}; // a quote within a cell of this separator
  }
  return counts;
}

/// The separator that gives the first two rows as many cells each, most of them if there are several; blanks only if no
/// other one divides them.
char FindSeparator(const std::string& p_text, const std::string& p_name) {
  char separator = OneColumn;
  std::size_t most = 1;
  for (const bool equal : {true, false})
    for (const char candidate : {'\t', ';', ',', '|', Blanks}) {
      const auto [first, second] = CountCells(p_text, p_name, candidate);
      if (first <= most || (candidate == Blanks && (!equal || separator != OneColumn)) || (equal && first != second))
        continue;
      separator = candidate;
      most = first;
    }
  return separator;
}

/// The separator of a first line "sep=;", which spreadsheets write; 0 without one.
char NamedSeparator(const std::string& p_text) {
  constexpr std::string_view Separators = "\t;,|";
  const std::string_view line = std::string_view(p_text).substr(0, p_text.find_first_of("\r\n"));
  const bool isNamed = line.size() == 5 && line.substr(0, 4) == "sep=" && Separators.find(line[4]) < Separators.size();
  return isNamed ? line[4] : '\0';
}

/// What the separators of the rows, or else blanks, divide a comment into: as many names as there are cells, or none.
std::vector<std::string> NamesOf(std::string_view p_comment, char p_separator, std::size_t p_count) {
  std::vector<std::string> names = Private::SplitWords(p_comment);
  if (p_separator != Blanks && p_separator != OneColumn &&
      std::size_t(std::count(p_comment.begin(), p_comment.end(), p_separator)) + 1 == p_count) {
    names.clear();
    for (std::size_t i = 0; i < p_count; ++i) {
      const std::size_t end = std::min(p_comment.find(p_separator), p_comment.size());
      names.emplace_back(Private::Trimmed(p_comment.substr(0, end)));
      p_comment.remove_prefix(std::min(end + 1, p_comment.size()));
    }
  }
  return names.size() == p_count ? names : std::vector<std::string>();
}

/// The names of the columns, and whether the first row has them.
bool TakeNames(const RowReader& p_reader, char p_separator, bool p_decimalComma,
               std::vector<Table::Column>& p_columns) {
  const auto& cells = p_reader.Cells();
  const bool header =
      std::any_of(cells.begin(), cells.end(), [&](std::string_view p_cell) { return !Number(p_cell, p_decimalComma); });
  const std::vector<std::string> comment = NamesOf(p_reader.Comment(), p_separator, cells.size());
  for (std::size_t i = 0; i < cells.size(); ++i) {
    p_columns.emplace_back();
    if (header)
      p_columns[i].name = std::string(cells[i]);
    else
      p_columns[i].name = comment.empty() ? std::to_string(i + 1) : comment[i];
  }
  return header;
}

/// Reads the cells of all rows: as numbers, and as strings where `p_strings`. Columns with another cell are marked.
void ReadRows(RowReader& p_reader, bool p_header, const std::string& p_name, bool p_decimalComma, bool p_strings,
              const Progress& p_progress, std::vector<Table::Column>& p_columns) {
  const std::size_t firstLine = p_reader.Line();
  bool more = !p_header || p_reader.Next();
  for (std::size_t row = 0; more; more = p_reader.Next(), ++row) {
    constexpr std::size_t Often = 4096;
    if (row % Often == 0)
      Private::Report(p_progress, p_name, p_strings ? 1 : p_reader.Share());
    const auto& cells = p_reader.Cells();
    if (cells.size() != p_columns.size())
      throw FileError(p_name, p_reader.Line(),
                      std::to_string(p_columns.size()) + " cells as in line " + std::to_string(firstLine),
                      p_reader.RestOfLine());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      Table::Column& column = p_columns[i];
      if (column.stringLine != 0) {
        if (p_strings)
          column.strings.emplace_back(cells[i]);
      } else if (const std::optional<double> number = Number(cells[i], p_decimalComma); !p_strings && number) {
        column.numbers.push_back(*number);
      } else if (!p_strings) {
        column.stringRow = row;
        column.stringLine = p_reader.Line();
        column.numbers = {};
      }
    }
  }
}

} // namespace

Table ReadTable(std::istream& p_stream, const std::string& p_name, const Progress& p_progress) {
  const std::string text = ReadAll(p_stream, p_name);
  const char named = NamedSeparator(text);
  const char separator = named != '\0' ? named : FindSeparator(text, p_name);
  const bool decimalComma = separator != ',';
  std::vector<Table::Column> columns;
  const auto read = [&](bool p_strings) {
    RowReader reader(text, p_name, separator);
    if ((named != '\0' && !reader.Next()) || !reader.Next())
      throw FileError(p_name, "expected a table, got no rows");
    std::vector<Table::Column> names;
    const bool header = TakeNames(reader, separator, decimalComma, names);
    if (columns.empty())
      columns = names;
    ReadRows(reader, header, p_name, decimalComma, p_strings, p_progress, columns);
  };
  read(false);
  // A column may turn out to have strings late; numbers do not keep their spelling.
  if (std::any_of(columns.begin(), columns.end(),
                  [](const Table::Column& p_column) { return p_column.stringLine != 0; }))
    read(true);
  return Table(p_name, std::move(columns));
}

Table ReadTable(const std::string& p_path, const Progress& p_progress) {
  std::ifstream file = Private::OpenFile(p_path);
  return ReadTable(file, p_path, p_progress);
}

} // namespace Vek::Chart::Io
