#pragma once

#include "io/Export.h"

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace Vek::Chart::Io {

/// An image of floats, row by row from the bottom: channel c of the pixel at column x, row y has the index c + channels
/// · (x + width · y). What `ReadImage` returns. \ingroup files
struct VEK_IO_API Image {
  std::size_t width = 0;                 ///< pixels per row
  std::size_t height = 0;                ///< rows
  std::size_t channels = 0;              ///< numbers per pixel
  std::vector<std::string> channelNames; ///< "R", "G", "B" and "A", "X", "Y" and "Z", or those of the file
  std::vector<float> pixels;             ///< width · height · channels of them; linear, in the unit of the file
  /// What the file says about the image: "EXPOSURE", for example, with one value each.
  std::map<std::string, std::string> values;
};

} // namespace Vek::Chart::Io
