#include "scene/private/ImageFile.h"

#include "scene/private/OffscreenApplication.h"

#include "platform/ogl/OffscreenContext.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene::Private {

namespace {

/// The mean of each four pixels.
QImage Halved(const QImage& p_image) {
  QImage half(p_image.width() / 2, p_image.height() / 2, QImage::Format_RGB32);
  for (int y = 0; y < half.height(); ++y) {
    const auto* const upper = reinterpret_cast<const QRgb*>(p_image.constScanLine(2 * y));
    const auto* const lower = reinterpret_cast<const QRgb*>(p_image.constScanLine(2 * y + 1));
    auto* const row = reinterpret_cast<QRgb*>(half.scanLine(y));
    for (int x = 0; x < half.width(); ++x) {
      const std::array<QRgb, 4> four{upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]};
      const auto mean = [&](int (*p_channel)(QRgb)) {
        return (p_channel(four[0]) + p_channel(four[1]) + p_channel(four[2]) + p_channel(four[3]) + 2) / 4;
      };
      row[x] = qRgb(mean(qRed), mean(qGreen), mean(qBlue));
    }
  }
  return half;
}

} // namespace

QImage DrawnImage(Types::Size p_size, int p_samples, bool p_hasTransparent, const DrawPage& p_draw) {
  if (p_size.width <= 0 || p_size.height <= 0)
    throw std::invalid_argument("Image: expected a size above 0, got " + std::to_string(p_size.width) + " x " +
                                std::to_string(p_size.height));
  constexpr int LargestTwice = 4096;
  const bool isDoubled = p_hasTransparent && std::max(p_size.width, p_size.height) <= LargestTwice;
  const int factor = isDoubled ? 2 : 1;
  const Types::Size size(factor * p_size.width, factor * p_size.height);
  const OffscreenApplication application;
  Ogl::OffscreenContext context(size, isDoubled ? p_samples / 8 * 2 : p_samples);
  {
    Utility::Scoped<Rgl> gl(context.Handle());
    p_draw(gl, {0, 0, static_cast<float>(size.width), static_cast<float>(size.height)}, factor);
  }
  const QImage image = context.Image().convertToFormat(QImage::Format_RGB32); // opaque: blending has changed alpha
  return isDoubled ? Halved(image) : image;
}

} // namespace Vek::Chart::Scene::Private
