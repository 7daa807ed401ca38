#pragma once

#include "io/Export.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Io {

/// A table of named columns of equal length: what `ReadTable` returns.
///
/// A column holds numbers or strings. It holds strings if one of its cells is neither a number nor missing. Missing
/// numbers are NaN.
///
/// Errors: std::invalid_argument for a column that does not exist ("wind.csv: no column "w"; there are: lon, lat, u,
/// v"), for the numbers of a column of strings ("wind.csv:17: expected a number in column "u", got "calm""), and for
/// times that are none ("wind.csv: column "day", row 3: expected a time such as 2024-05-01T12:30, got "Monday"").
///
/// \snippet FileSnippets.cpp ReadTable
/// \ingroup files
class VEK_IO_API Table {
public:
  /// A column. The vector that its cells do not use is empty.
  struct Column {
    std::string name;                 ///< as the first line has it
    std::vector<double> numbers;      ///< of a column of numbers; NaN where missing
    std::vector<std::string> strings; ///< of a column of strings
    std::size_t stringRow = 0;        ///< the first row whose cell is neither a number nor missing
    std::size_t stringLine = 0;       ///< its line in the file, from 1; 0 in a column of numbers
  };

  Table() = default; ///< no columns
  /// `p_name` is the name that messages give, usually the path. Columns of different lengths throw
  /// std::invalid_argument.
  Table(std::string p_name, std::vector<Column> p_columns);

  /// The number of rows, without header, comments and blank lines.
  std::size_t Rows() const { return _rows; }
  /// The columns, in the order of the file.
  const std::vector<Column>& Columns() const { return _columns; }
  /// Whether there is a column of that name.
  bool Has(std::string_view p_name) const;

  /// The numbers of a column, by its name.
  const std::vector<double>& operator[](std::string_view p_name) const;
  /// The numbers of a column, by its position from 0.
  const std::vector<double>& operator[](std::size_t p_index) const;
  /// The numbers of a column; without this overload, a literal could also be a position.
  const std::vector<double>& operator[](const char* p_name) const { return (*this)[std::string_view(p_name)]; }
  /// The cells of a column as strings. The numbers of a column of numbers are not kept as strings: it throws.
  const std::vector<std::string>& Strings(std::string_view p_name) const;
  ///@{
  /// A column of strings as times, by its name or its position from 0: seconds since 1970-01-01 00:00 UTC, as
  /// Scene::Figure::SetDateAxis takes them; NaN where missing, which "NaT" and "nan" are as well. Cells have the
  /// extended format of ISO 8601: "2024-05", "2024-05-01", "2024-05-01T12:30", "2024-05-01 12:30:15.25+02:00"; without
  /// a zone they are in UTC.
  std::vector<double> Times(std::string_view p_name) const { return Times(Find(p_name)); }
  std::vector<double> Times(std::size_t p_index) const { return Times(Find(p_index)); }
  ///@}
  ///@{
  /// Whether a column has times alone, of which not all are missing.
  bool HasTimes(std::string_view p_name) const { return HasTimes(Find(p_name)); }
  bool HasTimes(std::size_t p_index) const { return HasTimes(Find(p_index)); }
  ///@}

  ///@{
  /// Two or three columns as points or vectors, one a row; without the third name, z is 0.
  std::vector<std::array<double, 3>> Points(std::string_view p_x, std::string_view p_y,
                                            std::string_view p_z = {}) const;
  std::vector<std::array<double, 3>> Vectors(std::string_view p_x, std::string_view p_y,
                                             std::string_view p_z = {}) const {
    return Points(p_x, p_y, p_z);
  }
  ///@}

private:
  const Column& Find(std::string_view p_name) const;
  const Column& Find(std::size_t p_index) const;
  std::vector<double> Times(const Column& p_column) const;
  static bool HasTimes(const Column& p_column);
  const std::vector<double>& Numbers(const Column& p_column) const;

  std::string _name;
  std::vector<Column> _columns;
  std::size_t _rows = 0;
};

} // namespace Vek::Chart::Io
