#pragma once

#include "io/Export.h"

#include <array>
#include <cstddef>

namespace Vek::Chart::Io {

/// A block of the nodes of a grid, for programs that read a part of a file that is larger than their memory.
/// \ingroup files
struct VEK_IO_API GridRegion {
  std::array<std::size_t, 3> first{}; ///< the first node along x, y and z, as they follow each other in the file
  std::array<std::size_t, 3> count{}; ///< nodes, at least 1; along an axis that the file does not have, 1
};

} // namespace Vek::Chart::Io
