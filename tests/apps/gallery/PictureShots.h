#pragma once

#include "apps/gallery/DataFolder.h"
#include "apps/gallery/OffscreenQt.h"
#include "apps/gallery/Picture.h"
#include "apps/gallery/Rendering.h"

#include <QImage>

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

// Pictures of the gallery's pictures, and what tests look at in them.
namespace Vek::Chart::Gallery {

/// Text on pictures needs Qt's fonts.
class QtEnvironment : public testing::Environment {
public:
  void SetUp() override { StartOffscreenQt(); }
};
inline const testing::Environment* const Qt = testing::AddGlobalTestEnvironment(new QtEnvironment);

inline Inputs DataInputs() {
  Inputs inputs;
  FillFromFolder(inputs, VEK_SOURCE_DIR);
  return inputs;
}

inline const PictureEntry& Entry(const std::string& p_name) {
  for (const PictureEntry& entry : Pictures())
    if (entry.name == p_name)
      return entry;
  throw std::logic_error("no scene " + p_name);
}

/// A picture and the camera that it was taken with.
struct Shot {
  QImage image;
  Camera camera;

  /// Where a point of the picture appears on the image, whose first row is on top.
  QPoint At(const Types::Vector3_Base<double>& p_point) const {
    const Types::Viewport<0> viewport(0, 0, static_cast<float>(image.width()), static_cast<float>(image.height()));
    const Camera::Pixel pixel = camera.Project(p_point, viewport);
    return {static_cast<int>(pixel.x), image.height() - 1 - static_cast<int>(pixel.y)};
  }
  /// The mean colour of the square of 2 · p_radius + 1 pixels around a point.
  QColor Mean(const QPoint& p_center, int p_radius) const {
    int red = 0, green = 0, blue = 0, count = 0;
    for (int y = p_center.y() - p_radius; y <= p_center.y() + p_radius; ++y)
      for (int x = p_center.x() - p_radius; x <= p_center.x() + p_radius; ++x, ++count) {
        const QRgb pixel = image.pixel(x, y);
        red += qRed(pixel);
        green += qGreen(pixel);
        blue += qBlue(pixel);
      }
    return QColor(red / count, green / count, blue / count);
  }
};

inline Shot Shoot(const std::string& p_name, Types::Size p_size, const Inputs& p_inputs = DataInputs()) {
  Shot shot;
  shot.image = RenderPicture(Entry(p_name), p_inputs, p_size);
  Loading loading;
  shot.camera = Entry(p_name).load(p_inputs, loading)->StartCamera();
  return shot;
}

inline int Distance(const QColor& p_a, const QColor& p_b) {
  return std::abs(p_a.red() - p_b.red()) + std::abs(p_a.green() - p_b.green()) + std::abs(p_a.blue() - p_b.blue());
}

} // namespace Vek::Chart::Gallery
