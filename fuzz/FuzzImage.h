#pragma once

#include "fuzz/FuzzTarget.h"
#include "io/FileError.h"
#include "io/ReadImage.h"

#include <cstdlib>

namespace Vek::Fuzz {

/// Reads an input as an image of that name and aborts where it is not what it claims to be.
inline int ReadImage(const std::uint8_t* p_bytes, std::size_t p_size, const char* p_name) {
  std::istringstream input = Input(p_bytes, p_size);
  Chart::Io::ImageOptions options;
  options.applyExposure = options.convertXyz = options.applyOrientation = p_size % 2 == 0;
  try {
    const Chart::Io::Image image = Chart::Io::ReadImage(input, p_name, options);
    if (image.pixels.empty() || image.pixels.size() != image.width * image.height * image.channels ||
        image.channelNames.size() != image.channels)
      std::abort();
  } catch (const Chart::Io::FileError&) { // documented
  }
  return 0;
}

} // namespace Vek::Fuzz
