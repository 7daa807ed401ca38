#pragma once

#include "platform/Export.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QSize>
#include <QString>

namespace Vek::Chart::Ogl {

// The letters of all text that is drawn by GL: one font by default, and one way to make an image of a string. Qt needs
// a QGuiApplication for fonts (platform "offscreen" will do); without one, only the defaults below can be used.

/// The appearance of a string in an image.
struct TextFormat {
  int size = 12;                                 ///< height of the font in pixels; taken as at least 1
  bool bold = false;                             ///< the weight
  QString family = QLatin1String("DejaVu Sans"); ///< of the font; empty for the application's default font
  QColor color = QColor(Qt::black);              ///< the letters' colour
  QColor outline = QColor(Qt::transparent);      ///< drawn around the letters, behind them
  int outlineWidth = 0;                          ///< the pen of the outline in pixels, half of it outside the letters
  QColor background = QColor(Qt::transparent);   ///< fills the image
  QSize margin = QSize(0, 0);                    ///< pixels to the left and right, above and below
};

/// A font of the family, or what Qt takes where it is not installed, without hinting, so that the shapes of letters do
/// not depend on their size. An empty family is the application's default font.
VEK_PLATFORM_API QFont TextFont(int p_size, bool p_bold = false, const QString& p_family = TextFormat().family);

/// The size of the image in pixels: as wide as the longest line's advance, as high as the font's lines, and the margin
/// on all sides. At least 1 × 1.
VEK_PLATFORM_API QSize TextImageSize(const QString& p_text, const TextFormat& p_format);

/// The string, whose lines are separated by line feeds, as premultiplied ARGB of that size. Letters that lean out of
/// their lines are cut off at the image's edge, unless there is a margin. A null image if there is no memory for it.
VEK_PLATFORM_API QImage TextImage(const QString& p_text, const TextFormat& p_format);

} // namespace Vek::Chart::Ogl
