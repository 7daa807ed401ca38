#include "io/ReadHeights.h"

#include "io/FileError.h"
#include "io/ReadTable.h"
#include "io/private/NetCdfGrid.h"
#include "io/private/TableGrid.h"
#include "io/private/Words.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

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
  if (p_selection.region)
    throw FileError(p_name, "expected no region of heights");
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
  grid.variables = Private::NamesOfGrids(*file);
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

/// What the first line or lines of a text describe: the centre of the first cell, and steps to the next column and row.
struct TextLayout {
  double columns = 0, rows = 0;
  double x = 0, xStep = 0;
  double y = 0, yStep = 0;
  double noData = std::numeric_limits<double>::quiet_NaN();
};

/// Takes the heights of a text one after the other, on several threads.
class HeightReader {
public:
  HeightReader(std::string_view p_text, const std::string& p_name, const TextLayout& p_layout,
               const Progress& p_progress, std::vector<double>& p_heights)
      : _text(p_text)
      , _name(p_name)
      , _columns(static_cast<std::size_t>(p_layout.columns))
      , _count(_columns * static_cast<std::size_t>(p_layout.rows))
      , _noData(p_layout.noData)
      , _progress(p_progress)
      , _heights(p_heights) {}

  /// Reads all heights, from a position on, which ends up behind them.
  void Read(std::size_t& p_at, Utility::Threads p_threads);

private:
  struct Block {
    std::size_t first = 0, last = 0;
    std::vector<double> heights;
    bool whole = false; ///< whether it has nothing but numbers
  };

  void ReadBlocks(std::size_t& p_at, Utility::Threads p_threads);
  void ReadBlock(Block& p_block) const;
  double Height(double p_number) const;
  void ReportRow() {
    if (_heights.size() % _columns == 0)
      Private::Report(_progress, _name, double(_heights.size() / _columns) / double(_count / _columns));
  }

  std::string_view _text;
  const std::string& _name;
  const std::size_t _columns, _count;
  const double _noData;
  const Progress& _progress;
  std::vector<double>& _heights;
};

double HeightReader::Height(double p_number) const {
  // One program writes a float with seven digits, and another one with seventeen.
  constexpr double FloatDigits = 2e-7;
  const bool isMissing = std::abs(p_number - _noData) <= FloatDigits * std::abs(_noData);
  return isMissing ? std::numeric_limits<double>::quiet_NaN() : p_number;
}

void HeightReader::ReadBlock(Block& p_block) const {
  p_block.heights.clear();
  p_block.whole = false;
  Private::Words words(_text.substr(0, p_block.last), _name, p_block.first);
  for (std::string_view word = words.Next(); !word.empty(); word = words.Next()) {
    const std::optional<double> number = Private::ParseNumber(word);
    if (!number)
      return;
    p_block.heights.push_back(Height(*number));
  }
  p_block.whole = true;
}

/// Reads whole blocks as far as they have nothing but heights.
void HeightReader::ReadBlocks(std::size_t& p_at, Utility::Threads p_threads) {
  constexpr std::size_t BlockBytes = std::size_t{1} << 16;
  std::vector<Block> blocks(2 * static_cast<std::size_t>(p_threads.Count()));
  std::size_t next = p_at;
  bool ended = false;
  Utility::BlockSteps steps;
  steps.fill = [&](std::size_t p_slot) {
    Block& block = blocks[p_slot];
    block.first = next;
    next = std::min(next + BlockBytes, _text.size());
    while (next < _text.size() && !Private::IsBlank(_text[next]))
      ++next;
    block.last = next;
    return !ended && block.first < block.last;
  };
  steps.work = [&](std::size_t p_slot) { ReadBlock(blocks[p_slot]); };
  steps.join = [&](std::size_t p_slot) {
    const Block& block = blocks[p_slot];
    ended = ended || !block.whole || block.heights.size() > _count - _heights.size();
    if (ended)
      return;
    for (auto from = block.heights.begin(); from != block.heights.end();) {
      ReportRow();
      const auto left = static_cast<std::ptrdiff_t>(_columns - _heights.size() % _columns);
      const auto to = from + std::min(left, block.heights.end() - from);
      _heights.insert(_heights.end(), from, to);
      from = to;
    }
    p_at = block.last;
  };
  Utility::RunBlocks(p_threads, blocks.size(), steps);
}

void HeightReader::Read(std::size_t& p_at, Utility::Threads p_threads) {
  constexpr std::size_t WorthThreads = std::size_t{1} << 20;
  if (p_threads.Count() > 1 && _text.size() >= WorthThreads)
    ReadBlocks(p_at, p_threads);
  Private::Words words(_text, _name, p_at);
  while (_heights.size() < _count) {
    ReportRow();
    _heights.push_back(Height(words.Number()));
  }
  p_at = words.Position();
}

/// The heights of a text, row by row, to its end.
HeightGrid ReadRows(std::string_view p_text, std::size_t p_at, const TextLayout& p_layout, const std::string& p_name,
                    const Progress& p_progress, Utility::Threads p_threads) {
  const auto columns = static_cast<std::size_t>(p_layout.columns), rows = static_cast<std::size_t>(p_layout.rows);
  if (columns * rows > p_text.size() / 2) // a digit and a blank each
    throw FileError(p_name, "expected " + std::to_string(columns * rows) + " heights, got a file of " +
                                std::to_string(p_text.size()) + " bytes");
  HeightGrid grid;
  for (std::size_t i = 0; i < columns; ++i)
    grid.x.push_back(p_layout.x + double(i) * p_layout.xStep);
  for (std::size_t i = 0; i < rows; ++i)
    grid.y.push_back(p_layout.y + double(i) * p_layout.yStep);
  grid.heights.reserve(columns * rows);
  HeightReader(p_text, p_name, p_layout, p_progress, grid.heights).Read(p_at, p_threads);
  Private::Words words(p_text, p_name, p_at);
  if (!words.AtEnd()) {
    words.Next();
    words.Fail("the end of the file after " + std::to_string(columns * rows) + " heights");
  }
  Private::Report(p_progress, p_name, 1);
  return grid;
}

bool IsCount(double p_value) {
  return p_value >= 1 && p_value <= 1e6 && p_value == std::floor(p_value);
}

HeightGrid ReadText(std::istream& p_stream, const std::string& p_name, const Progress& p_progress,
                    Utility::Threads p_threads) {
  const std::string text = Private::ReadAll(p_stream, p_name);
  Private::Words words(text, p_name);
  TextLayout layout;
  for (double* const number : {&layout.columns, &layout.rows, &layout.x, &layout.xStep, &layout.y, &layout.yStep})
    *number = words.Number();
  const bool steps = std::isnormal(layout.xStep) && std::isnormal(layout.yStep);
  if (!IsCount(layout.columns) || !IsCount(layout.rows) || !steps || !std::isfinite(layout.x) ||
      !std::isfinite(layout.y))
    throw FileError(p_name, 1, "\"nx ny x0 dx y0 dy\" with whole nx and ny from 1 to 1000000 and steps that are not 0",
                    text.substr(0, text.find_first_of("\n\r")));
  return ReadRows(text, words.Position(), layout, p_name, p_progress, p_threads);
}

/// The lines of the header of an ESRI ASCII grid, in any order and any case: a word and a number each.
constexpr std::array<std::string_view, 10> EsriWords{"ncols",     "nrows",    "xllcorner", "xllcenter", "yllcorner",
                                                     "yllcenter", "cellsize", "dx",        "dy",        "nodata_value"};

/// The index of a word of the header; its size for another word.
std::size_t EsriWord(std::string_view p_word) {
  std::size_t i = 0;
  while (i < EsriWords.size() && !Private::IsSameWord(p_word, EsriWords[i]))
    ++i;
  return i;
}

/// Whether a text starts as an ESRI ASCII grid does: a word of the header and a number.
bool IsEsriGrid(const std::string& p_start) {
  const std::string noName;
  Private::Words words(p_start, noName);
  return EsriWord(words.Next()) < EsriWords.size() && Private::ParseNumber(words.Next()).has_value();
}

HeightGrid ReadEsriGrid(std::istream& p_stream, const std::string& p_name, const Progress& p_progress,
                        Utility::Threads p_threads) {
  const std::string text = Private::ReadAll(p_stream, p_name);
  Private::Words words(text, p_name);
  std::array<std::optional<double>, EsriWords.size()> found;
  for (std::size_t word = 0; (word = EsriWord(words.Peek())) < EsriWords.size();) {
    words.Next();
    found[word] = words.Number();
    if (word < 2 ? !IsCount(*found[word]) : word < 9 && !std::isfinite(*found[word]))
      words.Fail(word < 2 ? "a whole number from 1 to 1000000" : "a finite number");
    if (word >= 6 && word < 9 && !(std::isnormal(*found[word]) && *found[word] > 0))
      words.Fail("a size above 0");
  }
  const auto [columns, rows, left, leftCentre, bottom, bottomCentre, size, width, height, noData] = found;
  const bool isPlaced = (left || leftCentre) && (bottom || bottomCentre);
  if (!columns || !rows || !isPlaced || !(size || (width && height)))
    words.Next(), words.Fail("ncols, nrows, xllcorner, yllcorner and cellsize in front of the heights");
  TextLayout layout;
  layout.columns = *columns;
  layout.rows = *rows;
  layout.xStep = width ? *width : *size;
  layout.yStep = -(height ? *height : *size); // the first row is the northernmost one
  layout.x = leftCentre ? *leftCentre : *left + layout.xStep / 2;
  layout.y = (bottomCentre ? *bottomCentre : *bottom - layout.yStep / 2) - (layout.rows - 1) * layout.yStep;
  constexpr double UsualNoData = -9999;
  layout.noData = noData.value_or(UsualNoData);
  return ReadRows(text, words.Position(), layout, p_name, p_progress, p_threads);
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
                       const Progress& p_progress, Utility::Threads p_threads) {
  if (p_selection.variables.size() > 1)
    throw FileError(p_name,
                    "expected one variable to be selected, got " + std::to_string(p_selection.variables.size()));
  constexpr std::size_t StartSize = 4096;
  Private::Restarted input(p_stream, p_name, StartSize);
  if (Private::IsClassicNetCdf(input.Start()) || Private::IsHdf5(input.Start()))
    return ReadNetCdf(input.Stream(), p_name, p_selection, p_progress);
  if (p_selection.time != 0 || p_selection.level != 0)
    throw FileError(p_name, "expected step 0 and level 0 of a file without time and levels");
  if (IsEsriGrid(input.Start()))
    return ReadEsriGrid(input.Stream(), p_name, p_progress, p_threads);
  if (IsHeightText(input.Start()))
    return ReadText(input.Stream(), p_name, p_progress, p_threads);
  return ReadColumns(ReadTable(input.Stream(), p_name, p_progress, p_threads), p_name, p_selection);
}

HeightGrid ReadHeights(const std::string& p_path, const FieldSelection& p_selection, const Progress& p_progress,
                       Utility::Threads p_threads) {
  std::ifstream file = Private::OpenFile(p_path);
  return ReadHeights(file, p_path, p_selection, p_progress, p_threads);
}

} // namespace Vek::Chart::Io
