#include "io/private/NetCdfGrid.h"

#include "io/FileError.h"
#include "io/private/TableGrid.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Io::Private {

namespace {

constexpr std::size_t NoDimension = ~std::size_t(0);

const NetCdfVariable& Variable(const NetCdfFile& p_file, const std::string& p_name) {
  if (const NetCdfVariable* const found = p_file.Find(p_name))
    return *found;
  std::string names;
  for (const NetCdfVariable& variable : p_file.Variables())
    names += (names.empty() ? "" : ", ") + variable.name;
  throw FileError(p_file.Name(), "no variable \"" + p_name + "\"; there are: " + names.substr(0, 400));
}

/// The variable with the positions along a dimension: it has the name of the dimension. Null without one.
const NetCdfVariable* Coordinate(const NetCdfFile& p_file, std::size_t p_dimension) {
  const NetCdfVariable* const found = p_file.Find(p_file.Dimensions()[p_dimension].name);
  const bool isNumeric = found != nullptr && found->type != NetCdfType::Char && found->type != NetCdfType::Unknown;
  return isNumeric && found->dimensions == std::vector<std::size_t>{p_dimension} ? found : nullptr;
}

/// Which of the dimensions of a variable run along x, y, z and time; those that neither attributes nor names give
/// away are x, y and z from the last one on.
std::array<std::size_t, 4> FindAxes(const NetCdfFile& p_file, const NetCdfVariable& p_variable) {
  std::array<std::size_t, 4> axes;
  axes.fill(NoDimension);
  std::vector<std::size_t> unknown;
  for (std::size_t i = p_variable.dimensions.size(); i-- > 0;) {
    const NetCdfVariable* const coordinate = Coordinate(p_file, p_variable.dimensions[i]);
    const NetCdfRole role =
        coordinate == nullptr ? RoleOfName(p_file.Dimensions()[p_variable.dimensions[i]].name) : RoleOf(*coordinate);
    if (role == NetCdfRole::Unknown)
      unknown.push_back(i);
    else if (role != NetCdfRole::Other && axes[std::size_t(role)] == NoDimension)
      axes[std::size_t(role)] = i;
  }
  for (const std::size_t dimension : unknown)
    if (const auto free = std::find(axes.begin(), axes.begin() + 3, NoDimension); free != axes.begin() + 3)
      *free = dimension;
  return axes;
}

/// Throws if the positions of the nodes are in variables of two dimensions or more.
void CheckRectilinear(const NetCdfFile& p_file, const NetCdfVariable& p_variable, std::size_t p_dimension) {
  const std::string coordinates = ' ' + p_variable.Text("coordinates") + ' ';
  for (const NetCdfVariable& other : p_file.Variables())
    if (other.dimensions.size() >= 2 && coordinates.find(' ' + other.name + ' ') != std::string::npos &&
        std::count(other.dimensions.begin(), other.dimensions.end(), p_dimension) != 0)
      throw FileError(p_file.Name(), "expected a rectilinear grid, got a curvilinear one: the positions of \"" +
                                         p_variable.name + "\" are in \"" + other.name + "\" of " +
                                         std::to_string(other.dimensions.size()) + " dimensions");
}

/// Adds or subtracts 360 degrees behind the one place where longitudes start again.
void Unwrap(std::vector<double>& p_longitudes) {
  std::array<std::size_t, 2> steps{}; // down and up
  std::array<std::size_t, 2> last{};
  for (std::size_t i = 1; i < p_longitudes.size(); ++i) {
    const bool up = p_longitudes[i] > p_longitudes[i - 1];
    ++steps[up];
    last[up] = i;
  }
  for (const bool up : {false, true}) {
    const std::size_t at = last[up];
    if (steps[up] != 1 || steps[!up] == 0 || !(std::abs(p_longitudes[at] - p_longitudes[at - 1]) > 180))
      continue;
    for (std::size_t i = at; i < p_longitudes.size(); ++i)
      p_longitudes[i] += up ? -360 : 360;
    return;
  }
}

/// Positions along an axis. Longitudes that start again behind the date line go on.
std::vector<double> Positions(const NetCdfFile& p_file, const NetCdfVariable& p_coordinate, NetCdfRole p_role) {
  std::vector<double> positions = p_file.Read(p_coordinate);
  Unpack(p_coordinate, positions);
  const std::string& unit = p_coordinate.Text("units");
  if (p_role == NetCdfRole::X && unit.compare(0, 6, "degree") == 0)
    Unwrap(positions);
  const bool descends = positions.size() > 1 && positions[1] < positions[0];
  for (std::size_t i = 0; i < positions.size(); ++i)
    if (!std::isfinite(positions[i]) ||
        (i > 0 && !(descends ? positions[i] < positions[i - 1] : positions[i] > positions[i - 1])))
      throw FileError(p_file.Name(), "axis \"" + p_coordinate.name +
                                         "\": expected ascending or descending numbers, got " +
                                         std::to_string(positions[i]) + " at " + std::to_string(i));
  // Depths are heights below 0; pressures stay as they are.
  if (p_role == NetCdfRole::Z && !IsPressure(unit) && p_coordinate.Text("positive") == "down")
    for (double& position : positions)
      position = 0 - position;
  return positions;
}

std::vector<std::string> Times(const NetCdfFile& p_file, const NetCdfVariable& p_variable, std::size_t p_axis) {
  if (p_axis == NoDimension)
    return {};
  const NetCdfVariable* const coordinate = Coordinate(p_file, p_variable.dimensions[p_axis]);
  return coordinate == nullptr ? std::vector<std::string>() : TimeStrings(*coordinate, p_file.Read(*coordinate));
}

/// Reads the nodes of an axis into a grid; without a coordinate variable they are 0, 1, 2, ….
void ReadAxis(const NetCdfFile& p_file, const NetCdfVariable& p_variable, std::size_t p_dimension, std::size_t p_axis,
              NetCdfGrid& p_grid) {
  std::vector<double>& axis = p_grid.axes[p_axis];
  axis = {0};
  if (p_dimension == NoDimension)
    return;
  const std::size_t dimension = p_variable.dimensions[p_dimension];
  p_grid.axisNames[p_axis] = p_file.Dimensions()[dimension].name;
  if (const NetCdfVariable* const coordinate = Coordinate(p_file, dimension)) {
    axis = Positions(p_file, *coordinate, static_cast<NetCdfRole>(p_axis));
    p_grid.axisUnits[p_axis] = coordinate->Text("units");
    return;
  }
  if (p_axis < 2)
    CheckRectilinear(p_file, p_variable, dimension);
  axis.resize(p_file.Dimensions()[dimension].size);
  for (std::size_t i = 0; i < axis.size(); ++i)
    axis[i] = double(i);
}

/// The values of a block in the order x, y, z, given the steps from one to the next along each.
std::vector<double> Ordered(std::vector<double> p_block, const std::array<std::size_t, 3>& p_size,
                            const std::array<std::size_t, 3>& p_steps) {
  if ((p_steps[0] == 1 || p_size[0] == 1) && (p_steps[1] == p_size[0] || p_size[1] == 1) &&
      (p_steps[2] == p_size[0] * p_size[1] || p_size[2] == 1))
    return p_block;
  std::vector<double> ordered;
  ordered.reserve(p_block.size());
  for (std::size_t k = 0; k < p_size[2]; ++k)
    for (std::size_t j = 0; j < p_size[1]; ++j)
      for (std::size_t i = 0; i < p_size[0]; ++i)
        ordered.push_back(p_block[i * p_steps[0] + j * p_steps[1] + k * p_steps[2]]);
  return ordered;
}

} // namespace

bool HasLevels(const NetCdfFile& p_file, const NetCdfVariable& p_variable) {
  const std::size_t axis = FindAxes(p_file, p_variable)[2];
  return axis != NoDimension && p_file.Dimensions()[p_variable.dimensions[axis]].size > 1;
}

NetCdfGrid ReadGrid(const NetCdfFile& p_file, const std::vector<std::string>& p_variables, std::size_t p_time,
                    std::size_t p_level, const Progress& p_progress, const std::optional<GridRegion>& p_region) {
  const NetCdfVariable& variable = Variable(p_file, p_variables.at(0));
  for (const std::string& name : p_variables)
    if (Variable(p_file, name).dimensions != variable.dimensions)
      throw FileError(p_file.Name(), "expected components on one grid, got \"" + variable.name + "\" and \"" + name +
                                         "\" with different dimensions");
  const std::array<std::size_t, 4> dimensions = FindAxes(p_file, variable);
  std::size_t nodes = 1; // held against the file before memory is taken for axes
  for (std::size_t axis = 0; axis < 3; ++axis)
    if (dimensions[axis] != NoDimension)
      nodes = p_file.CheckSize(variable, nodes, p_file.Dimensions()[variable.dimensions[dimensions[axis]]].size);
  NetCdfGrid grid;
  std::vector<std::size_t> first(variable.dimensions.size(), 0), count(variable.dimensions.size(), 1);
  for (std::size_t axis = 0; axis < 3; ++axis) {
    ReadAxis(p_file, variable, dimensions[axis], axis, grid);
    if (dimensions[axis] != NoDimension)
      count[dimensions[axis]] = grid.axes[axis].size();
  }
  grid.times = Times(p_file, variable, dimensions[3]);
  grid.period = PeriodOf(grid.axes[0], grid.axisUnits[0].compare(0, 6, "degree") == 0);
  const auto select = [&](std::size_t p_axis, std::size_t p_index, const char* p_what) {
    const std::size_t dimension = dimensions[p_axis];
    const std::size_t size = dimension == NoDimension ? 1 : p_file.Dimensions()[variable.dimensions[dimension]].size;
    if (p_index >= size)
      throw FileError(p_file.Name(), std::string("expected a ") + p_what + " below " + std::to_string(size) + ", got " +
                                         std::to_string(p_index));
    if (dimension != NoDimension) {
      first[dimension] = p_index;
      count[dimension] = 1;
    }
  };
  select(3, p_time, "step of time");
  if (dimensions[2] != NoDimension)
    grid.levels = grid.axes[2];
  if (p_level != AllLevels) {
    select(2, p_level, "level");
    grid.axes[2] = {grid.axes[2].at(p_level)};
  }
  if (p_region) {
    grid.wholeAxes = grid.axes;
    grid.period = 0; // a part does not go around
  }
  for (std::size_t axis = 0; axis < 3 && p_region; ++axis) {
    const std::size_t from = p_region->first[axis], length = p_region->count[axis];
    std::vector<double>& positions = grid.axes[axis];
    if (from > positions.size() || length > positions.size() - from)
      throw FileError(p_file.Name(), "region: expected an end of at most " + std::to_string(positions.size()) +
                                         " along axis " + std::to_string(axis) + ", got " + std::to_string(length) +
                                         " nodes from " + std::to_string(from) + " on");
    positions = {positions.begin() + std::ptrdiff_t(from), positions.begin() + std::ptrdiff_t(from + length)};
    if (dimensions[axis] == NoDimension)
      continue;
    first[dimensions[axis]] = from;
    count[dimensions[axis]] = length;
  }
  std::array<std::size_t, 3> size{}, steps{1, 1, 1};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    size[axis] = grid.axes[axis].size();
    if (dimensions[axis] != NoDimension)
      for (std::size_t i = dimensions[axis] + 1; i < count.size(); ++i)
        steps[axis] *= count[i];
  }
  if (size[0] * size[1] * size[2] == 0)
    throw FileError(p_file.Name(), "variable \"" + variable.name + "\": expected values, got a grid without nodes");
  for (std::size_t i = 0; i < p_variables.size(); ++i) {
    const auto part = [&](double p_share) {
      return p_progress(std::min((double(i) + p_share) / double(p_variables.size()), 1.0));
    };
    const NetCdfVariable& component = Variable(p_file, p_variables[i]);
    std::vector<double> block = p_file.Read(component, first, count, p_progress ? Progress(part) : Progress());
    Unpack(component, block);
    grid.values.push_back(Ordered(std::move(block), size, steps));
  }
  return grid;
}

} // namespace Vek::Chart::Io::Private
