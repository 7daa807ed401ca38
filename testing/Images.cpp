#include "testing/Images.h"

#include <cstdlib>
#include <stdexcept>

namespace Vek::Chart::Testing {
namespace {

std::string SizeText(const QImage& p_image) {
  return std::to_string(p_image.width()) + " x " + std::to_string(p_image.height());
}

std::string PositionText(int p_x, int p_y) {
  return "(" + std::to_string(p_x) + ", " + std::to_string(p_y) + ")";
}

bool Differ(QRgb p_a, QRgb p_b, int p_tolerance) {
  for (const int shift : {0, 8, 16, 24})
    if (std::abs(int(p_a >> shift & 0xFF) - int(p_b >> shift & 0xFF)) > p_tolerance)
      return true;
  return false;
}

} // namespace

QRgb PixelAt(const QImage& p_image, int p_x, int p_y) {
  const int row = p_image.height() - 1 - p_y;
  if (!p_image.valid(p_x, row))
    throw std::out_of_range("pixel " + PositionText(p_x, p_y) + " of an image of " + SizeText(p_image));
  return p_image.pixel(p_x, row);
}

std::string Map(const QImage& p_image, const QColor& p_foreground, const QColor& p_background) {
  std::string map;
  for (int y = 0; y < p_image.height(); ++y) {
    for (int x = 0; x < p_image.width(); ++x) {
      const QRgb pixel = p_image.pixel(x, y);
      map += pixel == p_background.rgba() ? '.' : pixel == p_foreground.rgba() ? '#' : '?';
    }
    map += '\n';
  }
  return map;
}

std::string ColorDifference(QRgb p_actual, const QColor& p_expected, int p_tolerance) {
  if (!Differ(p_actual, p_expected.rgba(), p_tolerance))
    return {};
  return QColor::fromRgba(p_actual).name(QColor::HexArgb).toStdString() + " is not " +
         p_expected.name(QColor::HexArgb).toStdString() + " (alpha, red, green, blue; tolerance " +
         std::to_string(p_tolerance) + ")";
}

std::string ImageDifference(const QImage& p_actual, const QImage& p_expected, int p_tolerance) {
  if (p_actual.size() != p_expected.size())
    return SizeText(p_actual) + " is not " + SizeText(p_expected);
  std::string first;
  std::size_t count = 0;
  for (int y = 0; y < p_actual.height(); ++y)
    for (int x = 0; x < p_actual.width(); ++x) {
      const QRgb actual = p_actual.pixel(x, y), expected = p_expected.pixel(x, y);
      if (Differ(actual, expected, p_tolerance) && ++count == 1)
        first = "pixel " + PositionText(x, y) + ": " + ColorDifference(actual, QColor::fromRgba(expected), p_tolerance);
    }
  return count < 2 ? first : first + "; " + std::to_string(count) + " pixels differ";
}

} // namespace Vek::Chart::Testing
