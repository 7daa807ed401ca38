#pragma once

#include "io/GridRegion.h"
#include "io/private/NetCdf.h"
#include "io/private/RectilinearGrid.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Vek::Chart::Io::Private {

/// Variables of a NetCDF file on one rectilinear grid at one time, by the CF conventions 1.10.
struct NetCdfGrid : RectilinearGrid {
  std::array<std::vector<double>, 3> wholeAxes; ///< where a region is read
  std::vector<double> levels;                   ///< all positions along z; empty without such an axis
  std::vector<std::string> times;
};

constexpr std::size_t AllLevels = ~std::size_t(0);

/// Reads the variables, which must have the same dimensions, at a step of time, with all levels or one of them, or a
/// region with all levels of it. Throws FileError for a variable, step, level or region that does not exist, and for
/// grids that are not rectilinear.
NetCdfGrid ReadGrid(const NetCdfFile& p_file, const std::vector<std::string>& p_variables, std::size_t p_time,
                    std::size_t p_level, const Progress& p_progress, const std::optional<GridRegion>& p_region = {});

/// The variables with values on a grid: numbers with two dimensions or more that are no coordinates or bounds of
/// others.
std::vector<const NetCdfVariable*> GridVariables(const NetCdfFile& p_file);
/// Their names.
std::vector<std::string> NamesOfGrids(const NetCdfFile& p_file);
/// Whether a variable has several positions along z.
bool HasLevels(const NetCdfFile& p_file, const NetCdfVariable& p_variable);
/// The two or three components of the first vector field, by standard names, otherwise by names such as u and v. Throws
/// FileError if there is none.
std::vector<std::string> FindComponents(const NetCdfFile& p_file);

/// An axis of a role, recognised by its attributes, otherwise by its name.
enum class NetCdfRole : int { X, Y, Z, Time, Other, Unknown };
NetCdfRole RoleOf(const NetCdfVariable& p_coordinate);
/// Likewise, of an axis of which only the name is known.
NetCdfRole RoleOfName(const std::string& p_name);
/// Whether a unit is one of pressure.
bool IsPressure(const std::string& p_unit);
/// The values of a variable with missing ones as NaN, scaled and offset. In place.
void Unpack(const NetCdfVariable& p_variable, std::vector<double>& p_values);
/// Steps of time as "1987-01-17 12:00" (UTC), with seconds where they are not 0; in another calendar than the usual one
/// as "6 hours since 2000-01-01". The standard calendar is the Julian one before 1582-10-15.
std::vector<std::string> TimeStrings(const NetCdfVariable& p_coordinate, const std::vector<double>& p_values);

} // namespace Vek::Chart::Io::Private
