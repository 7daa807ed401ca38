#include "apps/viewer/Welcome.h"

#include "scene/Theme.h"

#include <QPainter>

namespace Vek::Chart::Viewer {

Welcome::Welcome(QWidget* p_parent)
    : QWidget(p_parent) {
  setObjectName("welcome");
}

void Welcome::paintEvent(QPaintEvent*) {
  const Scene::Theme theme = Scene::Theme::Dark();
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  QLinearGradient background(0, 0, 0, height());
  background.setColorAt(0, theme.backgroundTop);
  background.setColorAt(1, theme.backgroundBottom);
  painter.fillRect(rect(), background);

  constexpr int Width = 460, Height = 220;
  const QRectF frame((width() - Width) / 2.0, (height() - Height) / 2.0, Width, Height);
  painter.setPen(QPen(theme.line, 2, Qt::DashLine));
  painter.drawRoundedRect(frame, 14, 14);
  const auto write = [&](double p_top, const QColor& p_color, double p_points, const QString& p_text) {
    QFont letters = font();
    letters.setPointSizeF(p_points);
    painter.setFont(letters);
    painter.setPen(p_color);
    painter.drawText(frame.adjusted(20, p_top, -20, 0), Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, p_text);
  };
  write(52, theme.title, 18, "Drop files here");
  write(100, theme.text, 11, "or open them with Ctrl+O");
  write(144, theme.faint, 10,
        "Meshes, volumes, winds and flows, heights, tables, images.\nThe menu Examples has figures.");
}

} // namespace Vek::Chart::Viewer
