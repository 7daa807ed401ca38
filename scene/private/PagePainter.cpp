#include "scene/private/PagePainter.h"

#include "scene/Axes.h"

#include "platform/ogl/TextImage.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainterPath>
#include <QPolygonF>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Vek::Chart::Scene::Private {

namespace {

using Position = Canvas::Position;

constexpr double Detail = 16; // steps of a point in which letters are measured

Position Moved(const Position& p_position, const Position& p_by) {
  return {p_position.x + p_by.x, p_position.y + p_by.y};
}

} // namespace

PagePainter::PagePainter(QPainter& p_painter, const QSizeF& p_size)
    : _painter(p_painter)
    , _size(p_size) {
  _painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
}

void PagePainter::Background(const Theme& p_theme) {
  QLinearGradient gradient(0, 0, 0, _size.height());
  gradient.setColorAt(0, p_theme.backgroundTop);
  gradient.setColorAt(1, p_theme.backgroundBottom);
  const bool isPlain = p_theme.backgroundTop == p_theme.backgroundBottom;
  _painter.fillRect(QRectF(QPointF(0, 0), _size), isPlain ? QBrush(p_theme.backgroundTop) : QBrush(gradient));
}

void PagePainter::Paint(const AxesLayout& p_axes, const Theme& p_theme) {
  for (const AxesLayout::Line& line : p_axes.lines)
    Line({line.from, line.to}, {0, 0}, 1, line.kind == AxesLayout::Line::Kind::Grid ? p_theme.grid : p_theme.line);
  for (const AxesLayout::Label& label : p_axes.labels)
    Text(label.text, label.center, {0.5, 0.5},
         label.font == AxesLayout::Font::Title ? p_theme.BodyStyle() : p_theme.SmallStyle(), label.rotation);
}

void PagePainter::Paint(const LegendBlock& p_block, const Position& p_origin) {
  for (const LegendBlock::Gradient& gradient : p_block.Gradients())
    Bands(gradient, p_origin);
  for (const LegendBlock::Shape& shape : p_block.Shapes()) {
    QPolygonF polygon;
    for (const Position& corner : shape.corners)
      polygon << At(Moved(corner, p_origin));
    _painter.setPen(Qt::NoPen);
    _painter.setBrush(shape.color);
    _painter.drawPolygon(polygon);
  }
  for (const LegendBlock::Line& line : p_block.Lines())
    Line(line.positions, p_origin, line.width, line.color);
  for (const LegendBlock::String& string : p_block.Strings())
    Text(string.text, Moved(string.position, p_origin), string.anchor, string.style, string.rotation);
}

void PagePainter::Paint(const QImage& p_image) {
  int left = p_image.width(), right = -1, top = p_image.height(), bottom = -1;
  for (int y = 0; y < p_image.height(); ++y) {
    const QRgb* const row = reinterpret_cast<const QRgb*>(p_image.constScanLine(y));
    for (int x = 0; x < p_image.width(); ++x)
      if (row[x] != 0) {
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
        bottom = y;
      }
  }
  if (right < left)
    return;
  const QRect part(QPoint(left, top), QPoint(right, bottom));
  const double pixel = _size.width() / p_image.width();
  const QRectF place(left * pixel, top * pixel, part.width() * pixel, part.height() * pixel);
  _painter.drawImage(place, p_image.copy(part));
}

void PagePainter::Line(const std::vector<Position>& p_positions, const Position& p_origin, double p_width,
                       const QColor& p_color) {
  QPolygonF line;
  for (const Position& position : p_positions)
    line << At(Moved(position, p_origin));
  _painter.setBrush(Qt::NoBrush);
  _painter.setPen(QPen(p_color, p_width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
  _painter.drawPolyline(line);
}

/// Each band reaches to the end, below those after it: viewers show seams where bands only touch.
void PagePainter::Bands(const LegendBlock::Gradient& p_gradient, const Position& p_origin) {
  const Canvas::Rect& rect = p_gradient.rect;
  const QRectF place(At(Moved({rect.left, rect.top}, p_origin)), At(Moved({rect.right, rect.bottom}, p_origin)));
  const int count = p_gradient.colors.width();
  for (int i = 0; i < count; ++i) {
    const QColor color = p_gradient.colors.pixelColor(i, 0);
    if (i > 0 && color == p_gradient.colors.pixelColor(i - 1, 0))
      continue;
    const double done = static_cast<double>(i) / count;
    _painter.fillRect(p_gradient.isVertical ? place.adjusted(0, 0, 0, -done * place.height())
                                            : place.adjusted(done * place.width(), 0, 0, 0),
                      color);
  }
}

/// The box of a string is that of TextRenderer.
void PagePainter::Text(const QString& p_text, const Position& p_position, TextRenderer::Anchor p_anchor,
                       const TextStyle& p_style, double p_rotation) {
  const QFont font = Ogl::TextFont(static_cast<int>(std::lround(p_style.size * Detail)), p_style.bold, p_style.family);
  const QFontMetricsF metrics(font);
  const QStringList lines = p_text.split('\n');
  const double margin = font.pixelSize() / 8.0;
  double width = 0;
  for (const QString& line : lines)
    width = std::max(width, metrics.horizontalAdvance(line));
  width += 2 * margin;
  const double height = metrics.lineSpacing() * static_cast<double>(lines.size() - 1) + metrics.height();
  const double left = margin - p_anchor.x * width, base = metrics.ascent() - (1 - p_anchor.y) * height;

  _painter.save();
  _painter.translate(At(p_position));
  _painter.rotate(-p_rotation);
  _painter.scale(1 / Detail, 1 / Detail);
  if (p_style.halo.alpha() != 0 && p_style.haloWidth > 0) {
    QPainterPath letters;
    for (int i = 0; i < lines.size(); ++i)
      letters.addText(left, base + i * metrics.lineSpacing(), font, lines[i]);
    _painter.strokePath(letters,
                        QPen(p_style.halo, 2 * Detail * p_style.haloWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  }
  _painter.setFont(font);
  _painter.setPen(p_style.color);
  for (int i = 0; i < lines.size(); ++i)
    _painter.drawText(QPointF(left, base + i * metrics.lineSpacing()), lines[i]);
  _painter.restore();
}

QImage WithoutBackground(const QImage& p_onBlack, const QImage& p_onWhite) {
  const QImage black = p_onBlack.convertToFormat(QImage::Format_RGB32);
  const QImage white = p_onWhite.convertToFormat(QImage::Format_RGB32);
  QImage result(black.size(), QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < result.height(); ++y) {
    const QRgb* const low = reinterpret_cast<const QRgb*>(black.constScanLine(y));
    const QRgb* const high = reinterpret_cast<const QRgb*>(white.constScanLine(y));
    QRgb* const row = reinterpret_cast<QRgb*>(result.scanLine(y));
    for (int x = 0; x < result.width(); ++x) {
      const int seen =
          (qRed(high[x]) - qRed(low[x]) + qGreen(high[x]) - qGreen(low[x]) + qBlue(high[x]) - qBlue(low[x]) + 1) / 3;
      const int alpha = std::clamp(255 - seen, 0, 255);
      row[x] =
          qRgba(std::min(qRed(low[x]), alpha), std::min(qGreen(low[x]), alpha), std::min(qBlue(low[x]), alpha), alpha);
    }
  }
  return result;
}

} // namespace Vek::Chart::Scene::Private
