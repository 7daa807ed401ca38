#pragma once

#include <QImage>

#include <vector>

namespace Vek::Chart::Gallery {

/// The depths of a whole picture as greys, light is near, dark is far, transparent where nothing was drawn; and what
/// came of packing them.
struct DepthImages {
  QImage decoded; ///< from packed colours
  QImage truth;   ///< from the depth buffer
  double largestError = 0;

  /// `p_packed` holds colours of DepthCodec, `p_truth` the depths of the same pixels, the lowest row first. Empty
  /// pictures when there are not as many of both.
  DepthImages(const QImage& p_packed, const std::vector<float>& p_truth);
};

} // namespace Vek::Chart::Gallery
