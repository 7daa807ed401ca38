#include "platform/ogl/TextImage.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>
#include <QStringList>

#include <algorithm>

namespace Vek::Chart::Ogl {

namespace {

/// The positions of the lines in the image.
struct Layout {
  Layout(const QString& p_text, const TextFormat& p_format)
      : lines(p_text.split('\n'))
      , font(TextFont(p_format.size, p_format.bold, p_format.family)) {
    const QFontMetrics metrics(font);
    left = p_format.margin.width();
    lineHeight = metrics.lineSpacing();
    baseLine = p_format.margin.height() + metrics.ascent();
    int width = 0;
    for (const QString& line : lines)
      width = std::max(width, metrics.horizontalAdvance(line));
    // Beyond any image, but within an int.
    const qint64 height = qint64{lineHeight} * (lines.size() - 1) + metrics.height();
    size = QSize(width, static_cast<int>(std::min<qint64>(height, 1 << 30))) + 2 * p_format.margin;
  }
  QStringList lines;
  QFont font;
  int left;
  int baseLine; ///< of the first line, from the top
  int lineHeight;
  QSize size;
};

} // namespace

QFont TextFont(int p_size, bool p_bold, const QString& p_family) {
  QFont font;
  if (!p_family.isEmpty())
    font.setFamily(p_family);
  font.setPixelSize(std::max(1, p_size));
  font.setBold(p_bold);
  font.setHintingPreference(QFont::PreferNoHinting);
  return font;
}

QSize TextImageSize(const QString& p_text, const TextFormat& p_format) {
  return Layout(p_text, p_format).size.expandedTo(QSize(1, 1));
}

QImage TextImage(const QString& p_text, const TextFormat& p_format) {
  const Layout layout(p_text, p_format);
  QImage image(layout.size.expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
  if (image.isNull())
    return image;
  image.fill(p_format.background);
  QPainter painter(&image);
  if (p_format.outline.alpha() != 0 && p_format.outlineWidth > 0) {
    QPainterPath letters;
    for (int i = 0; i < layout.lines.size(); ++i)
      letters.addText(layout.left, layout.baseLine + i * layout.lineHeight, layout.font, layout.lines[i]);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(letters,
                       QPen(p_format.outline, p_format.outlineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setRenderHint(QPainter::Antialiasing, false);
  }
  painter.setRenderHint(QPainter::TextAntialiasing);
  painter.setFont(layout.font);
  painter.setPen(p_format.color);
  for (int i = 0; i < layout.lines.size(); ++i)
    painter.drawText(layout.left, layout.baseLine + i * layout.lineHeight, layout.lines[i]);
  painter.end();
  return image;
}

} // namespace Vek::Chart::Ogl
