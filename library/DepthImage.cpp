#include "library/DepthImage.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace Vek::Chart::Library {

DepthImage::DepthImage(const Types::Pos& p_corner, const Types::Size& p_size, std::vector<float> p_depths)
    : _corner(p_corner)
    , _size(p_size)
    , _depths(std::move(p_depths)) {
  const bool valid = _corner.x >= 0 && _corner.y >= 0 && _size.width >= 0 && _size.height >= 0;
  if (!valid || _depths.size() != static_cast<std::size_t>(_size.width) * static_cast<std::size_t>(_size.height))
    throw std::invalid_argument("DepthImage: " + std::to_string(_depths.size()) + " depths for " +
                                std::to_string(_size.width) + " x " + std::to_string(_size.height) + " pixels at (" +
                                std::to_string(_corner.x) + ", " + std::to_string(_corner.y) + ")");
  for (float& depth : _depths)
    depth = depth < 1 ? depth : 1;
}

} // namespace Vek::Chart::Library
