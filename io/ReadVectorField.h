#pragma once

#include "io/Export.h"
#include "io/FieldSelection.h"
#include "io/Progress.h"
#include "io/SampleFile.h"
#include "io/VectorField.h"

#include <istream>
#include <string>

namespace Vek::Chart::Io {

/// Reads a wind or a flow: vectors on a rectilinear grid. The format is recognised by the content.
///
/// - NetCDF, by the CF conventions 1.10: the classic formats (CDF-1, CDF-2, CDF-5), and NetCDF-4 in a build with
///   libnetcdf. The components are found by their standard names (eastward_…, x_…), otherwise by names that differ by
///   u, v and w or x, y and z. Axes are found by attributes, otherwise by names, otherwise x is the last dimension;
///   they may come in any order. Without a coordinate variable, positions are 0, 1, 2, …. Positions that are positive
///   downwards become negative, except for pressures. Longitudes that start again behind the date line go on. Values
///   are multiplied by scale_factor and moved by add_offset; _FillValue, missing_value and values outside of valid_min,
///   valid_max and valid_range are NaN. Steps of time are dates in UTC; the standard calendar is the Julian one before
///   1582-10-15. Steps of other calendars and of months and years are numbers with their unit. Of further dimensions,
///   the first index is read. Curvilinear grids, groups and structures are not read.
/// - A table (see ReadTable) of nodes in any order: columns x, y and perhaps z (or lon, lat, depth, …), and u, v and
///   perhaps w; or dir and speed, the direction in degrees clockwise from north where a wind comes from. A unit may
///   stand behind a name: "u (m/s)". Nodes without a row are missing; of repeated nodes the last one counts.
/// - A table whose first line is "# dims nx ny nz origin x y z spacing dx dy dz", with one row a node, x fastest.
///
/// Throws FileError for a file that cannot be opened or read, has no vectors, or claims more than it contains, for a
/// selection of something that does not exist, for a table whose points form no grid (fewer than a quarter of the nodes
/// have a row), and if p_progress cancels.
///
/// \snippet FileSnippets.cpp ReadVectorField
/// \ingroup files
VEK_IO_API VectorField ReadVectorField(const std::string& p_path, const FieldSelection& p_selection = {},
                                       const Progress& p_progress = {});
/// Likewise, from a stream; `p_name` takes the place of the path in messages.
/// \ingroup files
VEK_IO_API VectorField ReadVectorField(std::istream& p_stream, const std::string& p_name,
                                       const FieldSelection& p_selection = {}, const Progress& p_progress = {});

} // namespace Vek::Chart::Io
