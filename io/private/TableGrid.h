#pragma once

#include "io/Table.h"
#include "io/private/Input.h"
#include "io/private/RectilinearGrid.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Io::Private {

/// The index of the first column with one of the names, in any case and without a unit behind it; -1 without any.
int FindColumn(const Table& p_table, std::initializer_list<std::string_view> p_names);
/// "m/s" of "u (m/s)" and "u [m/s]"; empty without a unit.
std::string UnitOf(const std::string& p_column);
/// The index of a column with that very name, or with that name and a unit. Throws FileError without one.
int SelectColumn(const Table& p_table, const std::string& p_file, const std::string& p_name);
/// The numbers of a column. Throws FileError with the line of the first cell that is a string.
const std::vector<double>& Numbers(const Table& p_table, const std::string& p_file, int p_column);
/// The columns of x, y and z; -1 for one that does not exist.
std::array<int, 3> AxisColumns(const Table& p_table);
/// Values of the rows on the grid of the distinct positions along each axis. Throws FileError for a table without
/// columns of x and y, and where fewer than a quarter of the nodes have a row.
RectilinearGrid GridOf(const Table& p_table, const std::string& p_name,
                       const std::vector<std::vector<double>>& p_values, const std::array<int, 3>& p_axes);
/// 360 for positions that are degrees and evenly go around the globe, otherwise 0.
double PeriodOf(const std::vector<double>& p_positions, bool p_areDegrees);

} // namespace Vek::Chart::Io::Private
