#include "io/ReadTable.h"

#include "io/FileError.h"
#include "io/private/ByteSource.h"
#include "io/private/Input.h"
#include "io/private/RowReader.h"
#include "io/private/Words.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace Vek::Chart::Io {

namespace {

using Private::Blanks;
using Private::OneColumn;
using Private::Place;
using Private::RowReader;

constexpr std::size_t LongestLine = 16u << 20;

/// All of a stream, without a byte order mark. A line without end is refused before it fills the memory.
std::string ReadAll(std::istream& p_stream, const std::string& p_name) {
  constexpr std::uint64_t MostReserved = std::uint64_t{1} << 30; // a claim may be wrong
  std::string text;
  if (const std::uint64_t size = p_stream ? Private::SizeOf(p_stream) : 0; size != Private::ByteSource::Unknown)
    text.reserve(std::size_t(std::min(size, MostReserved)));
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

/// A number or NaN for a missing one; none for other cells.
std::optional<double> Number(std::string_view p_cell, bool p_decimalComma) {
  if (const std::optional<double> number = Private::ParseNumber(p_cell))
    return number;
  if (Private::IsMissing(p_cell))
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

/// The rows that start in a part of the text. They are read before it is certain that a row starts where the part does.
struct RowBlock {
  Place first; ///< with line 1 as long as the line is unknown
  std::size_t last = 0;
  std::vector<Table::Column> columns; ///< rows and lines of strings count from the block
  std::size_t rows = 0;
  Place end; ///< where the next block starts
  bool failed = false;
};

/// Reads the cells of all rows: as numbers, and as strings those of columns that are marked to have strings.
class CellReader {
public:
  CellReader(std::string_view p_text, const std::string& p_name, char p_separator, std::size_t p_firstLine,
             std::vector<Table::Column>& p_columns)
      : _text(p_text)
      , _name(p_name)
      , _separator(p_separator)
      , _firstLine(p_firstLine)
      , _columns(p_columns) {}

  /// Reads the rows behind a place. Without `p_strings`, columns with a cell that is no number are marked.
  void Read(Place p_first, bool p_strings, const Progress& p_progress, Utility::Threads p_threads);

private:
  void Clear(RowBlock& p_block) const;
  void ReadBlock(RowBlock& p_block, bool p_strings) const;
  void Reserve(const RowBlock& p_first);
  void Append(RowBlock& p_block, std::size_t p_row, std::size_t p_line);
  std::size_t LineAfter(std::size_t p_at) const;

  std::string_view _text;
  const std::string& _name;
  const char _separator;
  const std::size_t _firstLine; ///< of the table
  std::vector<Table::Column>& _columns;
};

/// The start of a line near to a position, or the end of the text.
std::size_t CellReader::LineAfter(std::size_t p_at) const {
  const std::size_t end = _text.find_first_of("\n\r", p_at);
  return end == std::string_view::npos ? _text.size() : end + (_text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
}

/// Empties the columns and marks those that are known to have strings.
void CellReader::Clear(RowBlock& p_block) const {
  p_block.columns.resize(_columns.size());
  for (std::size_t i = 0; i < _columns.size(); ++i) {
    Table::Column& column = p_block.columns[i];
    column.numbers.clear();
    column.strings.clear();
    column.stringLine = _columns[i].stringLine;
  }
}

void CellReader::ReadBlock(RowBlock& p_block, bool p_strings) const {
  RowReader reader(_text, _name, _separator, p_block.first, p_block.last);
  const bool decimalComma = _separator != ',';
  for (p_block.rows = 0; reader.Next(); ++p_block.rows) {
    const auto& cells = reader.Cells();
    if (cells.size() != _columns.size())
      throw FileError(_name, reader.Line(),
                      std::to_string(_columns.size()) + " cells as in line " + std::to_string(_firstLine),
                      reader.RestOfLine());
    for (std::size_t i = 0; i < cells.size(); ++i) {
      Table::Column& column = p_block.columns[i];
      if (p_strings) {
        if (column.stringLine != 0)
          column.strings.emplace_back(cells[i]);
      } else if (column.stringLine != 0) {
        continue;
      } else if (const std::optional<double> number = Number(cells[i], decimalComma)) {
        column.numbers.push_back(*number);
      } else {
        column.stringRow = p_block.rows;
        column.stringLine = reader.Line();
      }
    }
  }
  p_block.end = reader.End();
}

/// Reserves memory for columns of numbers, supposing that all rows are as long as those of the first block.
void CellReader::Reserve(const RowBlock& p_first) {
  const double blocks = double(_text.size() - p_first.first.at) / double(p_first.end.at - p_first.first.at);
  for (Table::Column& column : _columns)
    if (column.stringLine == 0)
      column.numbers.reserve(static_cast<std::size_t>(double(p_first.rows) * blocks * 1.05) + 1);
}

/// Appends the cells of a block, given the row and the number of lines in front of it.
void CellReader::Append(RowBlock& p_block, std::size_t p_row, std::size_t p_line) {
  for (std::size_t i = 0; i < _columns.size(); ++i) {
    Table::Column& column = _columns[i];
    Table::Column& more = p_block.columns[i];
    if (column.stringLine != 0) {
      std::move(more.strings.begin(), more.strings.end(), std::back_inserter(column.strings));
    } else if (more.stringLine != 0) {
      column.stringRow = p_row + more.stringRow;
      column.stringLine = p_line + more.stringLine;
      column.numbers = {};
    } else {
      column.numbers.insert(column.numbers.end(), more.numbers.begin(), more.numbers.end());
    }
  }
}

void CellReader::Read(Place p_first, bool p_strings, const Progress& p_progress, Utility::Threads p_threads) {
  constexpr std::size_t BlockBytes = std::size_t{1} << 17, WorthThreads = std::size_t{1} << 20;
  const Utility::Threads threads = _text.size() < WorthThreads ? Utility::Threads() : p_threads;
  std::vector<RowBlock> blocks(2 * std::size_t(threads.Count()));
  const auto report = [&](std::size_t p_at) {
    Private::Report(p_progress, _name, p_strings ? 1 : double(p_at) / double(_text.size()));
  };
  report(p_first.at);
  std::size_t next = p_first.at, row = 0;
  Place at = p_first;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    RowBlock& block = blocks[p_slot];
    block.first = {next, 1};
    block.last = next = LineAfter(std::min(next + BlockBytes, _text.size()));
    Clear(block);
    return block.first.at < _text.size();
  };
  steps.work = [&](std::size_t p_slot) {
    try {
      ReadBlock(blocks[p_slot], p_strings);
      blocks[p_slot].failed = false;
    } catch (const FileError&) {
      blocks[p_slot].failed = true;
    }
  };
  steps.join = [&](std::size_t p_slot) {
    RowBlock& block = blocks[p_slot];
    if (block.failed || block.first.at != at.at) { // a cell in quotes went on, or the line of an error is missing
      Clear(block);
      block.first = at;
      ReadBlock(block, p_strings);
    }
    if (row == 0 && block.rows != 0)
      Reserve(block);
    Append(block, row, at.line - block.first.line);
    row += block.rows;
    at = {block.end.at, at.line + block.end.line - block.first.line};
    report(at.at);
  };
  Utility::RunBlocks(threads, blocks.size(), steps);
}

} // namespace

Table ReadTable(std::istream& p_stream, const std::string& p_name, const Progress& p_progress,
                Utility::Threads p_threads) {
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
    CellReader(text, p_name, separator, reader.Line(), columns)
        .Read(header ? reader.End() : reader.Start(), p_strings, p_progress, p_threads);
  };
  read(false);
  // A column may turn out to have strings late; numbers do not keep their spelling.
  if (std::any_of(columns.begin(), columns.end(),
                  [](const Table::Column& p_column) { return p_column.stringLine != 0; }))
    read(true);
  return Table(p_name, std::move(columns));
}

Table ReadTable(const std::string& p_path, const Progress& p_progress, Utility::Threads p_threads) {
  std::ifstream file = Private::OpenFile(p_path);
  return ReadTable(file, p_path, p_progress, p_threads);
}

} // namespace Vek::Chart::Io
