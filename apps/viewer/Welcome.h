#pragma once

#include <QWidget>

namespace Vek::Chart::Viewer {

/// What the window shows without a file: where to begin.
class Welcome : public QWidget {
public:
  explicit Welcome(QWidget* p_parent = nullptr);

protected:
  void paintEvent(QPaintEvent* p_event) override;
};

} // namespace Vek::Chart::Viewer
