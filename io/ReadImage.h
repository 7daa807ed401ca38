#pragma once

#include "io/Export.h"
#include "io/Image.h"
#include "io/Progress.h"

#include <istream>
#include <string>

namespace Vek::Chart::Io {

/// How an image is read.
/// \ingroup files
struct ImageOptions {
  bool applyExposure = false;    ///< divides pixels by the EXPOSURE of a Radiance file, so that they are radiances
  bool convertXyz = false;       ///< X, Y and Z of a Radiance file to red, green and blue
  bool applyOrientation = false; ///< rotates and mirrors a Radiance file's image to the way it is to be seen
  Progress progress;             ///< called during the reading
};

/// Reads an image with high dynamic range, recognised by its content, otherwise by its name.
///
/// - Radiance (.hdr, .pic; "32-bit_rle_rgbe" and "32-bit_rle_xyze"): the pixels of Library::HdrImage. What the file
///   says about exposure, colour space and orientation is applied if the options want it. Red, green and blue are those
///   of Radiance, or of the file's PRIMARIES. The values are those of the header, except that EXPOSURE is the product
///   of all.
/// - Portable float map (.pfm; P. Debevec): one channel or three, either byte order, comments. Its scale is a value,
///   "scale", and is not applied.
/// - OpenEXR (.exr; openexr.com), in builds with its library: the channels of the first part, as floats: R, G, B and A
///   first, others behind them in alphabetical order. The image is the data window. Deep images and those with
///   luminance and chroma are not read.
///
/// `p_name` of a stream takes the place of the path in messages and in the recognition by name.
///
/// Throws FileError for a file that cannot be opened or read, is of no known format, ends too early, claims more pixels
/// than it has, or has something other than expected; its text names the line or the row. Also if the progress cancels.
///
/// \snippet FileSnippets.cpp ReadImage
/// \ingroup files
VEK_IO_API Image ReadImage(const std::string& p_path, const ImageOptions& p_options = {});
/// Likewise, from a stream.
/// \ingroup files
VEK_IO_API Image ReadImage(std::istream& p_stream, const std::string& p_name, const ImageOptions& p_options = {});

} // namespace Vek::Chart::Io
