#pragma once

#include "io/Export.h"
#include "io/FieldSelection.h"
#include "io/HeightGrid.h"
#include "io/Progress.h"
#include "io/SampleFile.h"
#include "platform/utility/Threads.h"

#include <istream>
#include <string>

namespace Vek::Chart::Io {

/// Reads values on a rectilinear grid in a plane: a relief, a layer of temperatures. The format is recognised by the
/// content.
///
/// - NetCDF, as ReadVectorField does: the selected variable, or the first one with two dimensions or more, at one step
///   of time and one level.
/// - A height grid: a text whose first line is "nx ny x0 dx y0 dy", the numbers of columns and rows, then the centre of
///   the first cell and the step in x and in y; then nx · ny heights, row by row. Heights may be "nan".
/// - An ESRI ASCII grid: lines "ncols N", "nrows N", "xllcorner X" or "xllcenter X", likewise for y, "cellsize S" (or
///   "dx" and "dy"), and perhaps "NODATA_value V", in any order and case; then the heights, northernmost row first, so
///   that y descends. Heights that equal V to seven digits are missing; without such a line, V is -9999.
/// - A table of nodes in any order: columns x and y (or lon and lat), and the selected column, otherwise the first
///   further one.
///
/// Throws FileError as ReadVectorField does. Neither result nor errors depend on the number of threads; texts below
/// 1 MiB start none.
///
/// \snippet FileSnippets.cpp ReadHeights
/// \ingroup files
VEK_IO_API HeightGrid ReadHeights(const std::string& p_path, const FieldSelection& p_selection = {},
                                  const Progress& p_progress = {},
                                  Utility::Threads p_threads = Utility::Threads::All());
/// Likewise, from a stream; `p_name` takes the place of the path in messages.
/// \ingroup files
VEK_IO_API HeightGrid ReadHeights(std::istream& p_stream, const std::string& p_name,
                                  const FieldSelection& p_selection = {}, const Progress& p_progress = {},
                                  Utility::Threads p_threads = Utility::Threads::All());

} // namespace Vek::Chart::Io
