#pragma once

#include "io/Export.h"
#include "io/Progress.h"
#include "io/SampleFile.h"
#include "io/Table.h"
#include "platform/utility/Threads.h"

#include <istream>
#include <string>

namespace Vek::Chart::Io {

/// Reads a table of text: CSV and its relatives, in UTF-8 or ASCII.
///
/// - Cells are separated by commas, semicolons, tabs, bars ('|') or blanks, whichever gives the first two rows as many
///   cells, or by the character that a first line "sep=;" names, as spreadsheets write it. A cell may stand in double
///   quotes, in which a doubled quote is a quote and line breaks are part of the cell. Lines end in LF, CR LF or CR.
///   Blank lines and lines that start with '#' are skipped.
/// - The first line has the names of the columns, unless all its cells are numbers or missing; the names are then those
///   of the last comment before it if that has as many cells or words ("# lon lat speed"), otherwise "1", "2", ….
/// - A cell is a number as std::from_chars reads it, with an optional '+'; where the separator is not a comma, with a
///   decimal comma as well. Numbers beyond the range of doubles are infinite or 0. Empty cells, "NA", "N/A", "#N/A",
///   "null" and "none" in any case, "-" and "--" are missing: NaN. A column with any other cell has strings.
///
/// Throws FileError with path and line for a file that cannot be opened or read, is empty, in UTF-16 or binary, has a
/// row with more or fewer cells than the first line, a quote that does not end, or a line beyond 16 MiB, and if
/// p_progress cancels. Neither result nor errors depend on the number of threads; tables below 1 MiB start none.
/// \ingroup files
VEK_IO_API Table ReadTable(const std::string& p_path, const Progress& p_progress = {},
                           Utility::Threads p_threads = Utility::Threads::All());
/// Likewise, from a stream; `p_name` takes the place of the path in messages.
/// \ingroup files
VEK_IO_API Table ReadTable(std::istream& p_stream, const std::string& p_name, const Progress& p_progress = {},
                           Utility::Threads p_threads = Utility::Threads::All());

} // namespace Vek::Chart::Io
