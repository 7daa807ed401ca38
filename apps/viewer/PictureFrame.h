#pragma once

#include "platform/types/Viewport.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Viewer {

/// The part of a window that shows the picture: all of it, unless it is narrower than the pictures are made for. Then
/// it is as wide as the window and in the middle of its height. All in pixels.
inline Types::Viewport<0> PictureFrame(int p_width, int p_height) {
  constexpr double Narrowest = 1.6; // width to height; legends stand beside each other up to here
  const double width = std::max(p_width, 1);
  const double height = std::clamp(std::floor(width / Narrowest), 1.0, std::max(p_height, 1) * 1.0);
  const double lower = std::floor((std::max(p_height, 1) - height) / 2);
  return {0, static_cast<float>(lower), static_cast<float>(width), static_cast<float>(height)};
}

} // namespace Vek::Chart::Viewer
