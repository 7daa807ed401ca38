#include "apps/viewer/WindowIcon.h"

#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace Vek::Chart::Viewer {

QIcon WindowIcon() {
  constexpr int Size = 64;
  QPixmap image(Size, Size);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0x1A, 0x21, 0x2B));
  painter.drawRoundedRect(1, 1, 62, 62, 12, 12);
  const QPointF middle(32, 33), left(10, 21), right(54, 21), below(32, 57);
  painter.setBrush(QColor(0xFD, 0xE7, 0x25));
  painter.drawPolygon(QPolygonF({QPointF(32, 9), right, middle, left}));
  painter.setBrush(QColor(0x21, 0x91, 0x8C));
  painter.drawPolygon(QPolygonF({left, middle, below, QPointF(10, 45)}));
  painter.setBrush(QColor(0x3B, 0x52, 0x8B));
  painter.drawPolygon(QPolygonF({right, middle, below, QPointF(54, 45)}));
  painter.setPen(QPen(QColor(255, 255, 255, 178), 2));
  painter.drawPolyline(QPolygonF({QPointF(10, 33), QPointF(32, 45), QPointF(54, 33)}));
  return QIcon(image);
}

} // namespace Vek::Chart::Viewer
