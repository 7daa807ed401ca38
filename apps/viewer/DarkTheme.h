#pragma once

class QApplication;

namespace Vek::Chart::Viewer {

/// Gives all windows the colours of dark figures.
void ApplyDarkTheme(QApplication& p_application);

} // namespace Vek::Chart::Viewer
