#pragma once

#include "fuzz/FuzzTarget.h"
#include "io/FileError.h"
#include "io/ReadVolume.h"

#include <cstdlib>

namespace Vek::Fuzz {

/// Reads an input as a volume of that name and aborts where it is not what it claims to be.
inline int ReadVolume(const std::uint8_t* p_bytes, std::size_t p_size, const char* p_name) {
  std::istringstream input = Input(p_bytes, p_size);
  try {
    const Chart::Io::Volume volume = Chart::Io::ReadVolume(input, p_name);
    const auto& size = volume.size;
    if (volume.Count() == 0 || volume.Count() != size[0] * size[1] * size[2] * volume.channels)
      std::abort();
    for (const double spacing : volume.spacing)
      if (!(spacing > 0))
        std::abort();
    if (volume.range != volume.FindRange() ||
        volume.Floats(volume.channels - 1).size() * volume.channels != volume.Count())
      std::abort();
  } catch (const Chart::Io::FileError&) { // documented
  }
  return 0;
}

} // namespace Vek::Fuzz
