#include "io/ReadHeights.h"

#include "io/FileError.h"
#include "io/ReadTable.h"
#include "io/private/NetCdfGrid.h"
#include "io/private/TableGrid.h"
#include "io/private/Words.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Vek::Chart::Io {

namespace {

/// The layer of the first values of a grid, without the name and unit of the values.
HeightGrid LayerOf(Private::RectilinearGrid&& p_grid) {
  HeightGrid layer;
  layer.x = std::move(p_grid.axes[0]);
  layer.y = std::move(p_grid.axes[1]);
  layer.heights = std::move(p_grid.values[0]);
  layer.xName = p_grid.axisNames[0];
  layer.yName = p_grid.axisNames[1];
  layer.xUnit = p_grid.axisUnits[0];
  layer.yUnit = p_grid.axisUnits[1];
  layer.period = p_grid.period;
  return layer;
}

HeightGrid ReadNetCdf(std::istream& p_stream, const std::string& p_name, const FieldSelection& p_selection,
                      const Progress& p_progress) {
  const auto file = Private::OpenNetCdf(p_stream, p_name);
  std::vector<std::string> names = p_selection.variables;
  if (const auto all = Private::GridVariables(*file); names.empty() && !all.empty())
    names = {all[0]->name};
  if (names.empty())
    throw FileError(p_name, "expected a variable with two dimensions, got none");
  Private::NetCdfGrid read = ReadGrid(*file, names, p_selection.time, p_selection.level, p_progress);
  const Private::NetCdfVariable& variable = *file->Find(names[0]);
  HeightGrid grid = LayerOf(std::move(read));
  grid.name = variable.Text("long_name").empty() ? variable.name : variable.Text("long_name");
  grid.unit = variable.Text("units");
  grid.times = std::move(read.times);
  grid.levels = std::move(read.levels);
  return grid;
}

/// Whether a text starts as a height grid does: six numbers, and nothing else in the line.
bool IsHeightText(const std::string& p_start) {
  const std::string line = p_start.substr(0, p_start.find_first_of("\n\r"));
  const std::string noName;
  Private::Words words(line, noName);
  std::size_t count = 0;
  try {
    for (; !words.AtEnd(); ++count)
      words.Number();
  } catch (const FileError&) {
    return false;
  }
  return count == 6;
}

HeightGrid ReadText(std::istream& p_stream, const std::string& p_name, const Progress& p_progress) {
  const std::string text = Private::ReadAll(p_stream, p_name);
  Private::Words words(text, p_name);
  std::array<double, 6> layout{};
  for (double& number : layout)
    number = words.Number();
  const auto isCount = [](double p_value) { return p_value >= 1 && p_value <= 1e6 && p_value == std::floor(p_value); };
  const bool steps = std::isnormal(layout[3]) && std::isnormal(layout[5]);
  if (!isCount(layout[0]) || !isCount(layout[1]) || !steps || !std::isfinite(layout[2]) || !std::isfinite(layout[4]))
    throw FileError(p_name, 1, "\"nx ny x0 dx y0 dy\" with whole nx and ny from 1 to 1000000 and steps that are not 0",
                    text.substr(0, text.find_first_of("\n\r")));
  const auto columns = static_cast<std::size_t>(layout[0]), rows = static_cast<std::size_t>(layout[1]);
  if (columns * rows > text.size() / 2) // a digit and a blank each
    throw FileError(p_name, "expected " + std::to_string(columns * rows) + " heights, got a file of " +
                                std::to_string(text.size()) + " bytes");
  HeightGrid grid;
  for (std::size_t i = 0; i < columns; ++i)
    grid.x.push_back(layout[2] + double(i) * layout[3]);
  for (std::size_t i = 0; i < rows; ++i)
    grid.y.push_back(layout[4] + double(i) * layout[5]);
  grid.heights.reserve(columns * rows);
  for (std::size_t row = 0; row < rows; ++row) {
    Private::Report(p_progress, p_name, double(row) / double(rows));
    for (std::size_t column = 0; column < columns; ++column)
      grid.heights.push_back(words.Number());
  }
  if (!words.AtEnd()) {
    words.Next();
    words.Fail("the end of the file after " + std::to_string(columns * rows) + " heights");
  }
  Private::Report(p_progress, p_name, 1);
  return grid;
}

HeightGrid ReadColumns(const Table& p_table, const std::string& p_name, const FieldSelection& p_selection) {
  const std::array<int, 3> axes = Private::AxisColumns(p_table);
  int column = -1;
  for (std::size_t i = 0; i < p_table.Columns().size() && column < 0; ++i)
    if (int(i) != axes[0] && int(i) != axes[1])
      column = int(i);
  if (!p_selection.variables.empty())
    column = Private::SelectColumn(p_table, p_name, p_selection.variables[0]);
  if (column < 0)
    throw FileError(p_name, "expected a column of heights beside the positions");
  HeightGrid grid =
      LayerOf(Private::GridOf(p_table, p_name, {Private::Numbers(p_table, p_name, column)}, {axes[0], axes[1], -1}));
  const std::string& name = p_table.Columns()[static_cast<std::size_t>(column)].name;
  grid.name = name.substr(0, name.find_first_of(" \t(["));
  grid.unit = Private::UnitOf(name);
  return grid;
}

} // namespace

HeightGrid ReadHeights(std::istream& p_stream, const std::string& p_name, const FieldSelection& p_selection,
                       const Progress& p_progress) {
  if (p_selection.variables.size() > 1)
    throw FileError(p_name,
                    "expected one variable to be selected, got " + std::to_string(p_selection.variables.size()));
  constexpr std::size_t StartSize = 4096;
  Private::Restarted input(p_stream, p_name, StartSize);
  if (Private::IsClassicNetCdf(input.Start()) || Private::IsHdf5(input.Start()))
    return ReadNetCdf(input.Stream(), p_name, p_selection, p_progress);
  if (p_selection.time != 0 || p_selection.level != 0)
    throw FileError(p_name, "expected step 0 and level 0 of a file without time and levels");
  if (IsHeightText(input.Start()))
    return ReadText(input.Stream(), p_name, p_progress);
  return ReadColumns(ReadTable(input.Stream(), p_name, p_progress), p_name, p_selection);
}

HeightGrid ReadHeights(const std::string& p_path, const FieldSelection& p_selection, const Progress& p_progress) {
  std::ifstream file = Private::OpenFile(p_path);
  return ReadHeights(file, p_path, p_selection, p_progress);
}

} // namespace Vek::Chart::Io
