#include "io/private/TableGrid.h"

#include "io/FileError.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vek::Chart::Io::Private {

namespace {

constexpr std::string_view UnitStart = " \t([";

std::string Key(const std::string& p_column) {
  std::string key = p_column.substr(0, p_column.find_first_of(UnitStart));
  std::transform(key.begin(), key.end(), key.begin(),
                 [](unsigned char p_c) { return static_cast<char>(p_c >= 'A' && p_c <= 'Z' ? p_c + 32 : p_c); });
  return key;
}

/// The distinct finite numbers in ascending order.
std::vector<double> Distinct(std::vector<double> p_numbers) {
  p_numbers.erase(std::remove_if(p_numbers.begin(), p_numbers.end(), [](double p_x) { return !std::isfinite(p_x); }),
                  p_numbers.end());
  std::sort(p_numbers.begin(), p_numbers.end());
  p_numbers.erase(std::unique(p_numbers.begin(), p_numbers.end()), p_numbers.end());
  return p_numbers;
}

} // namespace

int FindColumn(const Table& p_table, std::initializer_list<std::string_view> p_names) {
  for (const std::string_view name : p_names)
    for (std::size_t i = 0; i < p_table.Columns().size(); ++i)
      if (Key(p_table.Columns()[i].name) == name)
        return static_cast<int>(i);
  return -1;
}

std::string UnitOf(const std::string& p_column) {
  const std::size_t start = p_column.find_first_of("(["), end = p_column.find_last_of(")]");
  return start == std::string::npos || end == std::string::npos || end < start
             ? std::string()
             : p_column.substr(start + 1, end - start - 1);
}

int SelectColumn(const Table& p_table, const std::string& p_file, const std::string& p_name) {
  std::string names;
  for (const bool exact : {true, false})
    for (std::size_t i = 0; i < p_table.Columns().size(); ++i) {
      const std::string& name = p_table.Columns()[i].name;
      if (exact ? name == p_name : name.substr(0, name.find_first_of(UnitStart)) == p_name)
        return static_cast<int>(i);
      if (exact)
        names += (names.empty() ? "" : ", ") + name;
    }
  throw FileError(p_file, "no column \"" + p_name + "\"; there are: " + names.substr(0, 400));
}

const std::vector<double>& Numbers(const Table& p_table, const std::string& p_file, int p_column) {
  const Table::Column& column = p_table.Columns()[static_cast<std::size_t>(p_column)];
  if (column.stringLine != 0)
    throw FileError(p_file, column.stringLine, "a number in column \"" + column.name + '"',
                    column.strings[column.stringRow]);
  return column.numbers;
}

std::array<int, 3> AxisColumns(const Table& p_table) {
  return {FindColumn(p_table, {"lon", "longitude", "long", "lng", "x", "easting"}),
          FindColumn(p_table, {"lat", "latitude", "y", "northing"}),
          FindColumn(p_table, {"z", "depth", "height", "altitude", "level", "lev"})};
}

double PeriodOf(const std::vector<double>& p_positions, bool p_areDegrees) {
  if (!p_areDegrees || p_positions.size() < 3)
    return 0;
  const double length = std::abs(p_positions.back() - p_positions.front());
  const double step = length / double(p_positions.size() - 1);
  return std::abs(length + step - 360) < 0.01 * step ? 360 : 0;
}

RectilinearGrid GridOf(const Table& p_table, const std::string& p_name,
                       const std::vector<std::vector<double>>& p_values, const std::array<int, 3>& p_axes) {
  if (p_axes[0] < 0 || p_axes[1] < 0)
    throw FileError(p_name, "expected columns of positions, such as x and y or lon and lat");
  RectilinearGrid grid;
  std::size_t nodes = 1;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    grid.axes[axis] = {0};
    if (p_axes[axis] < 0)
      continue;
    const std::string& name = p_table.Columns()[static_cast<std::size_t>(p_axes[axis])].name;
    grid.axes[axis] = Distinct(Numbers(p_table, p_name, p_axes[axis]));
    grid.axisNames[axis] = name.substr(0, name.find_first_of(UnitStart));
    grid.axisUnits[axis] = UnitOf(name);
    const std::size_t count = grid.axes[axis].size();
    if (count == 0)
      throw FileError(p_name, "column \"" + name + "\": expected positions, got none");
    if (nodes > 4 * p_table.Rows() / count)
      throw FileError(p_name, "expected points of a grid, got " + std::to_string(p_table.Rows()) +
                                  " rows for a grid of four times as many nodes or more");
    nodes *= count;
  }
  grid.period = PeriodOf(grid.axes[0], Key(grid.axisNames[0]).compare(0, 3, "lon") == 0);
  grid.values.assign(p_values.size(), std::vector<double>(nodes, std::numeric_limits<double>::quiet_NaN()));
  for (std::size_t row = 0; row < p_table.Rows(); ++row) {
    std::size_t node = 0;
    bool isFinite = true;
    for (std::size_t axis = 3; axis-- > 0;) {
      const double position =
          p_axes[axis] < 0 ? 0 : p_table.Columns()[static_cast<std::size_t>(p_axes[axis])].numbers[row];
      isFinite = isFinite && std::isfinite(position);
      const std::vector<double>& nodesOfAxis = grid.axes[axis];
      const auto at = std::lower_bound(nodesOfAxis.begin(), nodesOfAxis.end(), position);
      node = node * nodesOfAxis.size() + static_cast<std::size_t>(at - nodesOfAxis.begin());
    }
    if (isFinite)
      for (std::size_t i = 0; i < p_values.size(); ++i)
        grid.values[i][node] = p_values[i][row];
  }
  return grid;
}

} // namespace Vek::Chart::Io::Private
