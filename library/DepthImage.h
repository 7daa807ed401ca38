#pragma once

#include "library/Export.h"
#include "platform/types/Size.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library {

/// Depths of a rectangle of pixels in CPU memory, as a TopMostFragmentDepthBuffer reads them.
///
/// Positions are those of the target: in pixels from its lower left corner. A look-up takes a few nanoseconds, makes no
/// GL call and needs no scope; several threads may read one image.
///
/// \snippet PickingSnippets.cpp Snapshot
/// \image html picking.jpg
/// \ingroup picking
class VEK_LIBRARY_API DepthImage {
public:
  /// No pixels.
  DepthImage() = default;
  /// From depths, row after row, the lowest row first. Those that are not below 1 become 1. Throws
  /// std::invalid_argument unless the corner is at 0 or above, the size is not negative, and there are width × height
  /// depths.
  DepthImage(const Types::Pos& p_corner, const Types::Size& p_size, std::vector<float> p_depths);

  /// The position of the lower left pixel.
  const Types::Pos& Corner() const { return _corner; }
  /// In pixels.
  const Types::Size& Size() const { return _size; }
  /// Whether it has no pixels.
  bool Empty() const { return _depths.empty(); }
  /// All depths, row after row, the lowest row first.
  const std::vector<float>& Depths() const { return _depths; }

  /// The depth under a pixel, in (0, 1); 1 where nothing was drawn, and outside the rectangle.
  float DepthAt(const Types::Pos& p_position) const {
    // Differences are taken of ordered numbers, which cannot overflow.
    if (p_position.x < _corner.x || p_position.y < _corner.y || p_position.x - _corner.x >= _size.width)
      return 1;
    const auto row = static_cast<std::size_t>(p_position.y - _corner.y);
    const auto column = static_cast<std::size_t>(p_position.x - _corner.x);
    const std::size_t index = row * static_cast<std::size_t>(_size.width) + column;
    return index < _depths.size() ? _depths[index] : 1; // also where the depths were moved away
  }

private:
  Types::Pos _corner;
  Types::Size _size;
  std::vector<float> _depths;
};

} // namespace Vek::Chart::Library
