#include "io/private/NetCdfGrid.h"
#include "io/private/VolumeFormats.h"

#include "io/FileError.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Io::Private {

namespace {

/// The first variable with levels, otherwise the first one on a grid.
std::string FindVariable(const NetCdfFile& p_file) {
  const std::vector<const NetCdfVariable*> all = GridVariables(p_file);
  if (all.empty())
    throw FileError(p_file.Name(), "expected a variable with two dimensions or more, got none");
  const auto found = std::find_if(all.begin(), all.end(),
                                  [&](const NetCdfVariable* p_variable) { return HasLevels(p_file, *p_variable); });
  return (found == all.end() ? all.front() : *found)->name;
}

/// Places the voxels along an axis.
void Place(const NetCdfGrid& p_grid, std::size_t p_axis, Volume& p_volume) {
  const std::vector<double>& positions = p_grid.axes[p_axis];
  p_volume.size[p_axis] = positions.size();
  p_volume.origin[p_axis] = positions[0];
  if (positions.size() < 2)
    return;
  const double step = (positions.back() - positions[0]) / double(positions.size() - 1);
  std::vector<double> offsets;
  bool isEven = true;
  for (std::size_t i = 0; i < positions.size(); ++i) {
    offsets.push_back(std::abs(positions[i] - positions[0]));
    isEven = isEven && std::abs(offsets[i] - double(i) * std::abs(step)) <= 0.01 * std::abs(step);
  }
  if (!isEven)
    p_volume.offsets[p_axis] = std::move(offsets);
  p_volume.spacing[p_axis] = std::abs(step);
  p_volume.orientation[p_axis][p_axis] = step < 0 ? -1 : 1;
}

} // namespace

Volume ReadNetCdfVolume(std::istream& p_stream, const std::string& p_name, const VolumeOptions& p_options) {
  const auto file = OpenNetCdf(p_stream, p_name, p_options.region.has_value());
  const std::string name = p_options.variable.empty() ? FindVariable(*file) : p_options.variable;
  NetCdfGrid grid = ReadGrid(*file, {name}, p_options.step, AllLevels, p_options.progress, p_options.region);
  const NetCdfVariable& variable = *file->Find(name);
  Volume volume;
  for (std::size_t axis = 0; axis < 3; ++axis)
    Place(grid, axis, volume);
  const bool fitsFloat = variable.type != NetCdfType::Double && variable.type != NetCdfType::Int &&
                         variable.type != NetCdfType::UInt && variable.type < NetCdfType::Int64;
  if (fitsFloat)
    volume.values = std::vector<float>(grid.values[0].begin(), grid.values[0].end());
  else
    volume.values = std::move(grid.values[0]);
  volume.noData = p_options.noData;
  volume.range = volume.FindRange();
  const auto& units = grid.axisUnits;
  volume.lengthUnit = units[0] == units[1] && units[1] == units[2] ? units[0] : "";
  volume.axisNames = grid.axisNames;
  if (volume.lengthUnit.empty())
    volume.axisUnits = units;
  volume.times = grid.times;
  volume.wholeAxes = std::move(grid.wholeAxes);
  volume.variables = NamesOfGrids(*file);
  volume.steps = std::max<std::size_t>(grid.times.size(), 1);
  volume.unit = variable.Text("units");
  volume.name = variable.Text("long_name").empty() ? variable.name : variable.Text("long_name");
  return volume;
}

} // namespace Vek::Chart::Io::Private
