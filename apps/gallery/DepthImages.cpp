#include "apps/gallery/DepthImages.h"

#include "library/DepthCodec.h"

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Gallery {

namespace {

QRgb Grey(double p_depth, double p_nearest, double p_farthest) {
  if (!(p_depth < 1))
    return qRgba(0, 0, 0, 0);
  const double far = std::clamp((p_depth - p_nearest) / std::max(p_farthest - p_nearest, 1e-9), 0.0, 1.0);
  const int grey = static_cast<int>(std::lround(245 - 200 * far));
  return qRgb(grey, grey, grey);
}

float Decoded(QRgb p_pixel) {
  const auto byte = [](int p_value) { return static_cast<unsigned char>(p_value); };
  return Library::DepthCodec::Decode(
      {{byte(qRed(p_pixel)), byte(qGreen(p_pixel)), byte(qBlue(p_pixel)), byte(qAlpha(p_pixel))}});
}

QRgb* Line(QImage& p_image, int p_row) {
  return reinterpret_cast<QRgb*>(p_image.scanLine(p_row));
}

} // namespace

DepthImages::DepthImages(const QImage& p_packed, const std::vector<float>& p_truth) {
  const QImage packed = p_packed.convertToFormat(QImage::Format_ARGB32);
  const int width = packed.width();
  const int height = packed.height();
  if (packed.isNull() || p_truth.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    return;
  decoded = QImage(packed.size(), QImage::Format_ARGB32);
  truth = decoded;
  double nearest = 1;
  double farthest = 0;
  for (const float depth : p_truth)
    if (depth < 1.0F) {
      nearest = std::min(nearest, static_cast<double>(depth));
      farthest = std::max(farthest, static_cast<double>(depth));
    }
  for (int y = 0; y < height; ++y) {
    const QRgb* const colors = reinterpret_cast<const QRgb*>(packed.constScanLine(y));
    const float* const depths = p_truth.data() + static_cast<std::ptrdiff_t>(height - 1 - y) * width;
    QRgb* const decodedLine = Line(decoded, y);
    QRgb* const truthLine = Line(truth, y);
    for (int x = 0; x < width; ++x) {
      const double fromColor = static_cast<double>(Decoded(colors[x]));
      const double fromBuffer = static_cast<double>(depths[x]);
      largestError = std::max(largestError, std::abs(fromColor - fromBuffer));
      decodedLine[x] = Grey(fromColor, nearest, farthest);
      truthLine[x] = Grey(fromBuffer, nearest, farthest);
    }
  }
}

} // namespace Vek::Chart::Gallery
