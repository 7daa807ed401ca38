#include "apps/viewer/DarkTheme.h"

#include "scene/Theme.h"

#include <QApplication>
#include <QPalette>
#include <QStyleFactory>

namespace Vek::Chart::Viewer {

void ApplyDarkTheme(QApplication& p_application) {
  const Scene::Theme theme = Scene::Theme::Dark();
  const QColor raised(0x24303D);
  const QColor accent(0x2F5573);
  QPalette palette;
  palette.setColor(QPalette::Window, theme.backgroundTop);
  palette.setColor(QPalette::Base, theme.backgroundBottom);
  palette.setColor(QPalette::AlternateBase, theme.backgroundTop);
  palette.setColor(QPalette::Button, raised);
  palette.setColor(QPalette::ToolTipBase, raised);
  for (const QPalette::ColorRole role :
       {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
    palette.setColor(role, theme.text);
  palette.setColor(QPalette::BrightText, theme.title);
  palette.setColor(QPalette::HighlightedText, theme.title);
  palette.setColor(QPalette::Highlight, accent);
  palette.setColor(QPalette::Link, QColor(0x6FB1DD));
  palette.setColor(QPalette::PlaceholderText, theme.faint);
  for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, theme.line);
  p_application.setStyle(QStyleFactory::create("Fusion"));
  p_application.setPalette(palette);
  p_application.setStyleSheet("QListWidget { border: none; }"
                              "QToolBar { border: none; spacing: 8px; padding: 4px 8px; }"
                              "QDockWidget::title { padding: 5px 8px; background: #24303D; }"
                              "QStatusBar::item { border: none; }"
                              "QToolTip { border: 1px solid #4A5664; padding: 4px; }");
}

} // namespace Vek::Chart::Viewer
