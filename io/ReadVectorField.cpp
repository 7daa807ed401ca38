#include "io/ReadVectorField.h"

#include "io/FileError.h"
#include "io/ReadTable.h"
#include "io/private/NetCdfGrid.h"
#include "io/private/TableGrid.h"

#include <algorithm>
#include <cmath>
#include <locale>
#include <sstream>

namespace Vek::Chart::Io {

namespace {

constexpr std::size_t StartSize = 4096;

/// Joins components, which are those of x, y and perhaps z, to vectors.
std::vector<VectorField::Vector> Joined(const std::vector<std::vector<double>>& p_components) {
  std::vector<VectorField::Vector> vectors(p_components[0].size());
  for (std::size_t i = 0; i < vectors.size(); ++i)
    vectors[i] = {p_components[0][i], p_components[1][i], p_components.size() > 2 ? p_components[2][i] : 0};
  return vectors;
}

/// The field whose components are the values of a grid, without their names and unit.
VectorField FieldOf(Private::RectilinearGrid&& p_grid) {
  VectorField field;
  field.vectors = Joined(p_grid.values);
  field.axes = std::move(p_grid.axes);
  field.axisNames = std::move(p_grid.axisNames);
  field.axisUnits = std::move(p_grid.axisUnits);
  field.period = p_grid.period;
  return field;
}

void CheckSelection(const FieldSelection& p_selection, const std::string& p_name) {
  const std::size_t count = p_selection.variables.size();
  if (count == 1 || count > 3)
    throw FileError(p_name, "expected two or three components to be selected, got " + std::to_string(count));
}

VectorField ReadNetCdf(std::istream& p_stream, const std::string& p_name, const FieldSelection& p_selection,
                       const Progress& p_progress) {
  const auto file = Private::OpenNetCdf(p_stream, p_name, p_selection.region.has_value());
  const std::vector<std::string> names =
      p_selection.variables.empty() ? Private::FindComponents(*file) : p_selection.variables;
  Private::NetCdfGrid grid =
      ReadGrid(*file, names, p_selection.time, Private::AllLevels, p_progress, p_selection.region);
  VectorField field = FieldOf(std::move(grid));
  std::copy(names.begin(), names.end(), field.names.begin());
  field.unit = file->Find(names[0])->Text("units");
  field.variables = Private::NamesOfGrids(*file);
  field.times = std::move(grid.times);
  field.wholeAxes = std::move(grid.wholeAxes);
  field.time = p_selection.time;
  return field;
}

/// The components of a table, with their names and unit.
struct Components {
  std::vector<std::vector<double>> values;
  std::array<std::string, 3> names;
  std::string unit;
};

Components FindComponents(const Table& p_table, const std::string& p_name, const FieldSelection& p_selection) {
  std::vector<int> columns;
  for (const std::string& name : p_selection.variables)
    columns.push_back(Private::SelectColumn(p_table, p_name, name));
  const auto find = [&](std::initializer_list<std::string_view> p_names) {
    return Private::FindColumn(p_table, p_names);
  };
  if (columns.empty())
    columns = {find({"u", "vx", "u10", "uwnd", "ugrd", "u-component"}),
               find({"v", "vy", "v10", "vwnd", "vgrd", "v-component"}), find({"w", "vz", "wwnd", "w-component"})};
  while (columns.back() < 0 && columns.size() > 2)
    columns.pop_back();
  Components components;
  const int direction = find({"dir", "direction"}), speed = find({"speed", "spd"});
  if (columns[0] >= 0 && columns[1] >= 0) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
      components.values.push_back(Private::Numbers(p_table, p_name, columns[i]));
      components.names[i] = p_table.Columns()[static_cast<std::size_t>(columns[i])].name;
    }
    components.unit = Private::UnitOf(components.names[0]);
  } else if (direction >= 0 && speed >= 0) {
    const std::vector<double>& from = Private::Numbers(p_table, p_name, direction);
    const std::vector<double>& speeds = Private::Numbers(p_table, p_name, speed);
    components.values.resize(2);
    constexpr double Degree = 3.14159265358979323846 / 180;
    for (std::size_t i = 0; i < from.size(); ++i) {
      components.values[0].push_back(-speeds[i] * std::sin(from[i] * Degree));
      components.values[1].push_back(-speeds[i] * std::cos(from[i] * Degree));
    }
    components.unit = Private::UnitOf(p_table.Columns()[static_cast<std::size_t>(speed)].name);
  } else {
    throw FileError(p_name, "expected the columns of vectors, such as u and v or dir and speed");
  }
  return components;
}

/// What "# dims nx ny nz origin x y z spacing dx dy dz" gives; the last two may be left out.
struct Lattice {
  std::array<double, 3> counts{}, origin{0, 0, 0}, spacing{1, 1, 1};
};

bool IsLattice(const std::string& p_start) {
  std::istringstream words(p_start.substr(0, p_start.find_first_of("\n\r")));
  std::string mark, word;
  return words >> mark >> word && mark == "#" && word == "dims";
}

Lattice ReadLattice(const std::string& p_start, const std::string& p_name) {
  const std::string line = p_start.substr(0, p_start.find_first_of("\n\r"));
  std::istringstream words(line.substr(line.find("dims") + 4));
  words.imbue(std::locale::classic());
  Lattice lattice;
  const auto read = [&](std::array<double, 3>& p_to) { return bool(words >> p_to[0] >> p_to[1] >> p_to[2]); };
  bool good = read(lattice.counts);
  for (std::string word; good && words >> word;)
    good = word == "origin" ? read(lattice.origin) : word == "spacing" && read(lattice.spacing);
  for (const double count : lattice.counts)
    good = good && count >= 1 && count <= 65536 && count == std::floor(count);
  for (const double step : lattice.spacing)
    good = good && step != 0;
  if (!good)
    throw FileError(p_name, 1, "\"# dims nx ny nz origin x y z spacing dx dy dz\"", line);
  return lattice;
}

VectorField ReadLatticeTable(const Table& p_table, const std::string& p_name, const FieldSelection& p_selection,
                             const Lattice& p_lattice) {
  const double nodes = p_lattice.counts[0] * p_lattice.counts[1] * p_lattice.counts[2];
  if (nodes != double(p_table.Rows()))
    throw FileError(p_name, "expected " + std::to_string(static_cast<long long>(nodes)) + " rows, got " +
                                std::to_string(p_table.Rows()));
  const Components components = FindComponents(p_table, p_name, p_selection);
  VectorField field;
  field.names = components.names;
  field.unit = components.unit;
  field.vectors = Joined(components.values);
  field.axisNames = {"x", "y", "z"};
  for (std::size_t axis = 0; axis < 3; ++axis)
    for (double i = 0; i < p_lattice.counts[axis]; ++i)
      field.axes[axis].push_back(p_lattice.origin[axis] + i * p_lattice.spacing[axis]);
  return field;
}

VectorField ReadScattered(const Table& p_table, const std::string& p_name, const FieldSelection& p_selection) {
  const Components components = FindComponents(p_table, p_name, p_selection);
  VectorField field = FieldOf(Private::GridOf(p_table, p_name, components.values, Private::AxisColumns(p_table)));
  field.names = components.names;
  field.unit = components.unit;
  return field;
}

} // namespace

std::vector<VectorField::Vector> VectorField::Positions() const {
  std::vector<Vector> positions;
  positions.reserve(axes[0].size() * axes[1].size() * axes[2].size());
  for (const double z : axes[2])
    for (const double y : axes[1])
      for (const double x : axes[0])
        positions.push_back({x, y, z});
  return positions;
}

VectorField ReadVectorField(std::istream& p_stream, const std::string& p_name, const FieldSelection& p_selection,
                            const Progress& p_progress) {
  CheckSelection(p_selection, p_name);
  Private::Restarted input(p_stream, p_name, StartSize);
  if (Private::IsClassicNetCdf(input.Start()) || Private::IsHdf5(input.Start()))
    return ReadNetCdf(input.Stream(), p_name, p_selection, p_progress);
  if (p_selection.region)
    throw FileError(p_name, "expected a NetCDF file to read a region of, got another format");
  if (p_selection.time != 0)
    throw FileError(p_name, "expected a step of time below 1, got " + std::to_string(p_selection.time));
  const Table table = ReadTable(input.Stream(), p_name, p_progress);
  return IsLattice(input.Start()) ? ReadLatticeTable(table, p_name, p_selection, ReadLattice(input.Start(), p_name))
                                  : ReadScattered(table, p_name, p_selection);
}

VectorField ReadVectorField(const std::string& p_path, const FieldSelection& p_selection, const Progress& p_progress) {
  Private::FileStream file = Private::OpenFile(p_path);
  return ReadVectorField(file, p_path, p_selection, p_progress);
}

} // namespace Vek::Chart::Io
