#pragma once

#include "apps/viewer/Loader.h"

#include <QProgressBar>
#include <QTimer>
#include <QWidget>

namespace Vek::Chart::Viewer {

/// Shows how far a loader has come, with a button that cancels. It appears for loads that take longer than a moment.
class LoadBar : public QWidget {
  Q_OBJECT
public:
  explicit LoadBar(Loader& p_loader, QWidget* p_parent = nullptr);

private:
  QProgressBar* _bar;
  QTimer _appear;
};

} // namespace Vek::Chart::Viewer
