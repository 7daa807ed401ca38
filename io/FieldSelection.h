#pragma once

#include "io/Export.h"
#include "io/GridRegion.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Vek::Chart::Io {

/// Which values of a file with several variables, times and levels are read: by ReadVectorField and ReadHeights.
/// \ingroup files
struct VEK_IO_API FieldSelection {
  /// The names of the variables or columns: two or three components of vectors, or one of heights. Empty for those that
  /// are found by their standard names, then by their names.
  std::vector<std::string> variables;
  std::size_t time = 0;  ///< the step of time, from 0
  std::size_t level = 0; ///< the level of heights, from 0; vector fields have all levels
  /// The part of a vector field in a NetCDF file that is read, alone (of NetCDF-4, the file is read as a whole). Other
  /// files are refused.
  std::optional<GridRegion> region{};
};

} // namespace Vek::Chart::Io
