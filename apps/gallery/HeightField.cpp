#include "apps/gallery/HeightField.h"

#include "apps/gallery/TextTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

namespace Vek::Chart::Gallery {

namespace {

/// Cuts the next word from a line; empty at the end.
std::string_view NextWord(std::string_view& p_line) {
  constexpr std::string_view Blanks = " \t\r";
  p_line.remove_prefix(std::min(p_line.find_first_not_of(Blanks), p_line.size()));
  const std::string_view word = p_line.substr(0, p_line.find_first_of(Blanks));
  p_line.remove_prefix(word.size());
  return word;
}

std::array<double, 6> ReadLayout(const std::string& p_line, const std::string& p_name) {
  std::array<double, 6> layout{};
  std::string_view rest = p_line;
  for (double& value : layout)
    if (!ParseNumber(NextWord(rest), value))
      throw InputError(p_name, 1, "\"nx ny x0 dx y0 dy\"", p_line);
  const auto isCount = [](double p_value) {
    return p_value >= 2 && p_value <= 65536 && p_value == std::floor(p_value);
  };
  if (!isCount(layout[0]) || !isCount(layout[1]) || layout[3] == 0 || layout[5] == 0 || !NextWord(rest).empty())
    throw InputError(p_name, 1, "\"nx ny x0 dx y0 dy\" with whole nx, ny from 2 to 65536 and steps that are not 0",
                     p_line);
  return layout;
}

} // namespace

HeightField HeightField::Read(std::istream& p_stream, const std::string& p_name) {
  std::string line;
  std::getline(p_stream, line);
  const std::array<double, 6> layout = ReadLayout(line, p_name);
  HeightField field;
  field._columns = static_cast<std::size_t>(layout[0]);
  field._rows = static_cast<std::size_t>(layout[1]);
  field._x0 = layout[2];
  field._dx = layout[3];
  field._y0 = layout[4];
  field._dy = layout[5];
  // Memory grows with what the file really holds, whatever its first line claims.
  for (std::size_t row = 0; row < field._rows; ++row) {
    if (!std::getline(p_stream, line))
      throw InputError(p_name + ": expected " + std::to_string(field._rows) + " rows of heights, got " +
                       std::to_string(row));
    std::string_view rest = line;
    for (std::size_t column = 0; column < field._columns; ++column) {
      double height = 0;
      const std::string_view word = NextWord(rest);
      if (!ParseNumber(word, height) || std::abs(height) > 1e9)
        throw InputError(p_name, row + 2, "a height in column " + std::to_string(column + 1), word);
      field._heights.push_back(static_cast<float>(height));
      field._range += height;
    }
    if (const std::string_view word = NextWord(rest); !word.empty())
      throw InputError(p_name, row + 2, "the end of the line after " + std::to_string(field._columns) + " heights",
                       word);
  }
  return field;
}

HeightField HeightField::ReadFile(const std::string& p_path, Loading& p_loading) {
  return Read(*p_loading.Open(p_path), p_path);
}

bool HeightField::Wraps() const {
  return std::abs(std::abs(_dx) * static_cast<double>(_columns) - 360.0) < 1e-6;
}

double HeightField::Cell(long p_column, long p_row) const {
  const long columns = static_cast<long>(_columns);
  const long column = Wraps() ? (p_column % columns + columns) % columns : std::clamp(p_column, 0L, columns - 1);
  const long row = std::clamp(p_row, 0L, static_cast<long>(_rows) - 1);
  return static_cast<double>(_heights[static_cast<std::size_t>(row) * _columns + static_cast<std::size_t>(column)]);
}

double HeightField::At(double p_x, double p_y) const {
  // Far outside, the border's height counts anyway; the bound keeps the conversion to integers defined.
  const double x = std::clamp((p_x - _x0) / _dx, -1e6, 1e6);
  const double y = std::clamp((p_y - _y0) / _dy, -1e6, 1e6);
  const long column = static_cast<long>(std::floor(x));
  const long row = static_cast<long>(std::floor(y));
  const double s = x - static_cast<double>(column);
  const double t = y - static_cast<double>(row);
  const double south = Cell(column, row) * (1 - s) + Cell(column + 1, row) * s;
  const double north = Cell(column, row + 1) * (1 - s) + Cell(column + 1, row + 1) * s;
  return south * (1 - t) + north * t;
}

Types::MinMax_Base<double> HeightField::RangeX() const {
  const double last = _x0 + _dx * static_cast<double>(_columns - 1);
  return {std::min(_x0, last) - std::abs(_dx) / 2, std::max(_x0, last) + std::abs(_dx) / 2};
}

Types::MinMax_Base<double> HeightField::RangeY() const {
  const double last = _y0 + _dy * static_cast<double>(_rows - 1);
  return {std::min(_y0, last) - std::abs(_dy) / 2, std::max(_y0, last) + std::abs(_dy) / 2};
}

} // namespace Vek::Chart::Gallery
