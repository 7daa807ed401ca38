#pragma once

#include "io/Export.h"
#include "io/GridRegion.h"
#include "io/Progress.h"
#include "io/SampleFile.h"
#include "io/Volume.h"
#include "platform/utility/Threads.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>

namespace Vek::Chart::Io {

/// What a file without header contains: values of channels × size, in the layout of a Volume.
/// \ingroup files
struct RawLayout {
  std::array<std::size_t, 3> size{}; ///< voxels along the three axes, the fastest first
  Volume::Type type = Volume::UInt8; ///< of the values
  std::size_t channels = 1;          ///< values of a voxel
  bool bigEndian = false;            ///< the byte order of the values
  std::uint64_t headerBytes = 0;     ///< skipped
  Volume::Vector spacing{1, 1, 1};   ///< see Volume
};

/// How a volume is read.
/// \ingroup files
struct VolumeOptions {
  /// The file has no header, whatever it looks like; its values are these.
  std::optional<RawLayout> raw;
  /// Which of several time steps is read, from 0.
  std::size_t step = 0;
  /// The variable of a NetCDF file; empty for the first one with several levels, otherwise the first one on a grid.
  std::string variable;
  /// The part of a volume in a NetCDF file that is read, alone (of NetCDF-4, the file is read as a whole). Other files
  /// are refused.
  std::optional<GridRegion> region{};
  /// The number that means "no data".
  std::optional<double> noData;
  /// Called during the reading.
  Progress progress;
};

/// Reads a volume, recognised by its content, otherwise by its name.
///
/// - TextArray, the text format of Library::VolumeImage: as floats, with all channels; see Library::ReadTextArray for
///   other types and ranges.
/// - NRRD (G. Kindlmann, "Definition of NRRD File Format", 2005), with attached or detached header, the values in one
///   file or in several, raw, as text, hexadecimal or compressed by gzip. Two or three axes are those of the grid; an
///   axis without direction in space or with the kind of a vector or colour is that of the channels if it comes first
///   or has such a kind, and otherwise one of steps. Without directions and kinds, a first axis of four or fewer
///   samples in front of three others is that of the channels.
/// - NIfTI-1 and NIfTI-2 (.nii, or .hdr with .img; nifti.nimh.nih.gov), compressed or not, with the transform of
///   `sform`, else of `qform`, else the spacing alone. Values with `scl_slope` and `scl_inter` are scaled. The fourth
///   axis is that of steps, the fifth one that of channels. RGB and RGBA are channels. `cal_min` and
///   `cal_max` are the range for display. The name of the .img file means that of the .hdr file beside it.
/// - NetCDF: a variable on a regular or rectilinear grid, as ReadVectorField reads it; as floats, or doubles from types
///   of 32 or more bits. Missing values are NaN.
/// - Raw values, if `raw` describes them; decompressed if the name ends in ".gz".
///
/// Values keep their type, but for these: 64-bit integers become doubles, and scaled values floats, or doubles from
/// types of 32 or more bits. Positions of anatomical volumes are in the space "right-anterior-superior"; those of NRRD
/// files in another one are converted. DICOM, Analyze without NIfTI header, and complex values are not read.
///
/// `p_name` of a stream takes the place of the path in messages, in the recognition by name, and for the other files of
/// a detached header, which are looked for beside it.
///
/// Throws FileError for a file that cannot be opened or read, is of no known format, ends too early, claims more values
/// than it has, or has something other than expected; its text names the line, or the byte of a binary header. Also if
/// the progress cancels. Memory: the values, 1 MiB, and 1 MiB for each thread; before it is taken, the claimed size is
/// compared with the size of the file. Neither result nor errors depend on the number of threads; values below 1 MiB
/// start none.
///
/// \snippet FileSnippets.cpp ReadVolume
/// \ingroup files
VEK_IO_API Volume ReadVolume(const std::string& p_path, const VolumeOptions& p_options = {},
                             Utility::Threads p_threads = Utility::Threads::All());
/// Likewise, from a stream.
/// \ingroup files
VEK_IO_API Volume ReadVolume(std::istream& p_stream, const std::string& p_name, const VolumeOptions& p_options = {},
                             Utility::Threads p_threads = Utility::Threads::All());

} // namespace Vek::Chart::Io
