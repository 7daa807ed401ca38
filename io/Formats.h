#pragma once

#include "io/Export.h"

#include <string>
#include <string_view>
#include <vector>

namespace Vek::Chart::Io {

/// A format of files and what is read of it. The list of all is `Formats()`.
/// \ingroup files
struct VEK_IO_API Format {
  /// What a file of the format holds.
  enum Kind {
    Meshes,  ///< polygons, lines and points in space
    Volumes, ///< values on a grid in space
    Vectors, ///< vectors on a grid: winds, flows
    Heights, ///< values on a grid in a plane
    Tables,  ///< columns of numbers and strings
    Images,  ///< pixels of high dynamic range
  };
  Kind kind;                 ///< several formats may have one kind
  std::string_view name;     ///< such as "PLY"; unique among the formats of a kind
  std::string_view suffixes; ///< of names of files, lower case, with blanks between: "nc nc4 cdf"
  std::string_view reader;   ///< the function that reads it, with its namespace below Vek::Chart
  std::string_view read;     ///< what is read, as a phrase
  std::string_view omitted;  ///< what is not read; empty if nothing is left out
  std::string_view package;  ///< the Debian package to build with; empty where none is needed
  bool isAvailable;          ///< whether this build reads the format
};

/// All formats, grouped by kind. Those that need a library which this build lacks are listed as well, so that programs
/// can name the package.
///
/// \snippet FileSnippets.cpp Formats
/// \ingroup files
VEK_IO_API const std::vector<Format>& Formats();
/// A kind as the title of a list: "Meshes", "Height grids".
/// \ingroup files
VEK_IO_API std::string_view KindName(Format::Kind p_kind);
/// The suffixes of all formats of a kind that this build reads, as patterns of a file dialog: "*.obj *.ply *.stl".
/// \ingroup files
VEK_IO_API std::string FilePatterns(Format::Kind p_kind);

} // namespace Vek::Chart::Io
