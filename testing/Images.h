#pragma once

#include <QColor>
#include <QImage>

#include <string>

namespace Vek::Chart::Testing {

// Images, as tests look at them. None of this needs a test framework.

/// The colour of a pixel, counted from the lower left corner as GL counts. Throws std::out_of_range outside the image.
/// \ingroup testing
QRgb PixelAt(const QImage& p_image, int p_x, int p_y);

/// The rows of an image from top to bottom, one character a pixel and a line break after each row: '.' for
/// `p_background`, '#' for `p_foreground`, '?' for all other colours. A small image then is its own expected value.
/// \ingroup testing
std::string Map(const QImage& p_image, const QColor& p_foreground, const QColor& p_background = Qt::transparent);

/// Empty if no channel, alpha included, differs by more than `p_tolerance` (0 to 255); otherwise a message with both
/// colours.
/// \ingroup testing
std::string ColorDifference(QRgb p_actual, const QColor& p_expected, int p_tolerance = 0);
/// Empty if both images have one size and no channel of any pixel differs by more than `p_tolerance` (0 to 255);
/// otherwise a message with the sizes, or with the first such pixel (counted from the upper left corner) and the number
/// of such pixels.
/// \ingroup testing
std::string ImageDifference(const QImage& p_actual, const QImage& p_expected, int p_tolerance = 0);

} // namespace Vek::Chart::Testing
