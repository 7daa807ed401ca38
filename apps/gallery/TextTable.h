#pragma once

#include <cstddef>
#include <istream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Gallery {

/// A file that is not what a picture needs. The text is one line: "file: what is wrong", or, where a line is at fault,
/// "file:line: expected …, got …".
class InputError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
  InputError(const std::string& p_file, std::size_t p_line, const std::string& p_expected, std::string_view p_got);
};

/// The number that the whole of a text spells, blanks around it aside; false when it is none, or not finite.
bool ParseNumber(std::string_view p_text, double& p_value);

/// Reads a table of comma-separated values with a header line, a row at a time. Cells may stand in double quotes (a
/// doubled quote inside is a quote); columns are found by name, so their order and further ones do not matter.
///
///     TextTable table(stream, "winds.csv");
///     const std::size_t u = table.Column("u");
///     while (table.NextRow())
///       sum += table.Number(u);
class TextTable {
public:
  /// Reads the header. `p_name` is the name that errors give, `p_linesBefore` how many lines of the file were read
  /// already; the stream must outlive the table. Throws InputError when there is no header.
  TextTable(std::istream& p_stream, std::string p_name, std::size_t p_linesBefore = 0);

  bool HasColumn(std::string_view p_title) const;
  /// The column of that title; throws InputError when there is none.
  std::size_t Column(std::string_view p_title) const;

  /// Moves to the next row that is not blank; false at the end. Throws InputError for a row with too few or too many
  /// cells.
  bool NextRow();
  /// The number of the line that was read last, from 1.
  std::size_t Line() const { return _line; }
  /// Cells of the current row. `Number` throws InputError for one that is not a finite number in the given range.
  const std::string& Text(std::size_t p_column) const { return _cells[p_column]; }
  double Number(std::size_t p_column, double p_min = -1e300, double p_max = 1e300) const;

private:
  void Split(const std::string& p_line);

  std::istream& _stream;
  std::string _name;
  std::size_t _line;
  std::vector<std::string> _titles;
  std::vector<std::string> _cells;
};

} // namespace Vek::Chart::Gallery
