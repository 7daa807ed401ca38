#include "io/Table.h"

#include "io/FileError.h"
#include "io/private/IsoTime.h"
#include "io/private/Words.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

namespace Vek::Chart::Io {

namespace {

/// The seconds of a cell, NaN for a missing one; none for other cells.
std::optional<double> Time(const std::string& p_cell) {
  if (const std::optional<double> time = Private::ParseTime(p_cell))
    return time;
  const bool isMissing =
      Private::IsMissing(p_cell) || Private::IsSameWord(p_cell, "nat") || Private::IsSameWord(p_cell, "nan");
  return isMissing ? std::optional(std::numeric_limits<double>::quiet_NaN()) : std::nullopt;
}

} // namespace

Table::Table(std::string p_name, std::vector<Column> p_columns)
    : _name(std::move(p_name))
    , _columns(std::move(p_columns)) {
  const auto count = [](const Column& p_column) { return std::max(p_column.numbers.size(), p_column.strings.size()); };
  _rows = _columns.empty() ? 0 : count(_columns.front());
  for (const Column& column : _columns)
    if (count(column) != _rows)
      throw std::invalid_argument(_name + ": column \"" + column.name + "\": expected " + std::to_string(_rows) +
                                  " cells, got " + std::to_string(count(column)));
}

bool Table::Has(std::string_view p_name) const {
  return std::any_of(_columns.begin(), _columns.end(), [&](const Column& p_column) { return p_column.name == p_name; });
}

const std::vector<double>& Table::operator[](std::string_view p_name) const {
  return Numbers(Find(p_name));
}

const std::vector<double>& Table::operator[](std::size_t p_index) const {
  return Numbers(Find(p_index));
}

const std::vector<std::string>& Table::Strings(std::string_view p_name) const {
  const Column& column = Find(p_name);
  if (column.strings.size() != _rows) // a column of numbers
    throw std::invalid_argument(_name + ": column \"" + column.name + "\": expected strings, got numbers");
  return column.strings;
}

std::vector<double> Table::Times(const Column& p_column) const {
  const std::string place = _name + ": column \"" + p_column.name + "\"";
  if (p_column.strings.size() != _rows)
    throw std::invalid_argument(place + ": expected times such as 2024-05-01T12:30, got numbers");
  std::vector<double> times(_rows);
  for (std::size_t row = 0; row < _rows; ++row) {
    const std::optional<double> time = Time(p_column.strings[row]);
    if (!time)
      throw std::invalid_argument(place + ", row " + std::to_string(row + 1) +
                                  ": expected a time such as 2024-05-01T12:30, got \"" +
                                  Private::Printable(p_column.strings[row]) + '"');
    times[row] = *time;
  }
  return times;
}

bool Table::HasTimes(const Column& p_column) {
  bool hasSome = false;
  for (const std::string& cell : p_column.strings) {
    const std::optional<double> time = Time(cell);
    if (!time)
      return false;
    hasSome = hasSome || !std::isnan(*time);
  }
  return hasSome;
}

std::vector<std::array<double, 3>> Table::Points(std::string_view p_x, std::string_view p_y,
                                                 std::string_view p_z) const {
  const std::vector<double>& x = (*this)[p_x];
  const std::vector<double>& y = (*this)[p_y];
  const std::vector<double>* const z = p_z.empty() ? nullptr : &(*this)[p_z];
  std::vector<std::array<double, 3>> points(_rows);
  for (std::size_t i = 0; i < _rows; ++i)
    points[i] = {x[i], y[i], z == nullptr ? 0.0 : (*z)[i]};
  return points;
}

const Table::Column& Table::Find(std::string_view p_name) const {
  std::string names;
  for (const Column& column : _columns) {
    if (column.name == p_name)
      return column;
    names += (names.empty() ? "" : ", ") + column.name;
  }
  throw std::invalid_argument(_name + ": no column \"" + std::string(p_name) + "\"; there are: " + names);
}

const Table::Column& Table::Find(std::size_t p_index) const {
  if (p_index >= _columns.size())
    throw std::invalid_argument(_name + ": no column " + std::to_string(p_index) + "; there are " +
                                std::to_string(_columns.size()));
  return _columns[p_index];
}

const std::vector<double>& Table::Numbers(const Column& p_column) const {
  if (p_column.strings.empty())
    return p_column.numbers;
  const std::string found = p_column.stringRow < _rows ? p_column.strings[p_column.stringRow] : std::string();
  throw std::invalid_argument(
      FileError(_name, p_column.stringLine, "a number in column \"" + p_column.name + "\"", found).what());
}

} // namespace Vek::Chart::Io
