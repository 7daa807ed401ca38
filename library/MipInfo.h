#pragma once

#include "platform/types/Size.h"

#include <algorithm>

namespace Vek::Chart::Library {

/// The mip-map levels of a 2-D texture, and their sizes. Level 0 is the whole picture, each further one half of it in
/// both directions, rounded down and at least 1, down to 1 × 1.
///
/// \snippet PickingSnippets.cpp MipInfo
/// \ingroup picking
class MipInfo {
public:
  /// The levels of a texture of `p_size` texels.
  explicit MipInfo(Types::Size p_size)
      : _size(p_size) {}

  /// How many levels there are: 3 for 5 × 3; none for an empty picture.
  int Levels() const {
    int levels = 0;
    for (int edge = std::min(_size.width, _size.height) < 1 ? 0 : std::max(_size.width, _size.height); edge > 0;
         edge /= 2)
      ++levels;
    return levels;
  }

  /// The size of a level: 5 × 3, 2 × 1, 1 × 1. Levels that do not exist are 0 × 0.
  Types::Size LevelSize(int p_level) const {
    if (p_level < 0 || p_level >= Levels())
      return {};
    return {std::max(_size.width >> p_level, 1), std::max(_size.height >> p_level, 1)};
  }

private:
  Types::Size _size;
};

} // namespace Vek::Chart::Library
