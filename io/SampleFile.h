#pragma once

#include "io/Export.h"

#include <string>

namespace Vek::Chart::Io {

/// The path of a data set that comes with the library, by its name in the folder `data/`, whose README lists them: to
/// try the readers and plots with, before you put in the path of your own file.
///
/// The folder is share/vek-chart-library/data below the nearest folder above the loaded library that has it, so that an
/// installation may be moved. Throws FileError with that name for a file that is not there.
/// \ingroup files
VEK_IO_API std::string SampleFile(const std::string& p_name);

} // namespace Vek::Chart::Io
