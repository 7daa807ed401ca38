#pragma once

#include "platform/types/Size.h"

#include <algorithm>

namespace Vek::Chart::Library {

/// The mip-map levels of a 2-D texture, and their sizes. Level 0 has the size of the texture; each further level halves
/// width and height, rounded down and at least 1, down to 1 × 1.
///
/// \snippet PickingSnippets.cpp MipInfo
/// \ingroup picking
class MipInfo {
public:
  /// The levels of a texture of `p_size` texels.
  explicit MipInfo(Types::Size p_size)
      : _size(p_size) {}

  /// The number of levels: 3 for 5 × 3; 0 if the texture is empty.
  int Levels() const {
    int levels = 0;
    for (int edge = std::min(_size.width, _size.height) < 1 ? 0 : std::max(_size.width, _size.height); edge > 0;
         edge /= 2)
      ++levels;
    return levels;
  }

  /// The size of a level, in texels: 5 × 3, 2 × 1, 1 × 1. 0 × 0 for a level that does not exist.
  Types::Size LevelSize(int p_level) const {
    if (p_level < 0 || p_level >= Levels())
      return {};
    return {std::max(_size.width >> p_level, 1), std::max(_size.height >> p_level, 1)};
  }

private:
  Types::Size _size;
};

} // namespace Vek::Chart::Library
