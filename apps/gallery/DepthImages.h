#pragma once

#include <QImage>

#include <vector>

namespace Vek::Chart::Gallery {

/// The depths of an image as greys (light is near, dark is far, transparent is empty), packed and unpacked as well as
/// from the depth buffer.
struct DepthImages {
  QImage decoded;          ///< from packed colours
  QImage truth;            ///< from the depth buffer
  double largestError = 0; ///< of a packed depth

  /// `p_packed` holds colours of DepthCodec, `p_truth` the depths of the same pixels, bottom row first. If their
  /// numbers differ, both images are empty.
  DepthImages(const QImage& p_packed, const std::vector<float>& p_truth);
};

} // namespace Vek::Chart::Gallery
