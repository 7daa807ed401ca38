#pragma once

class QApplication;

namespace Vek::Chart::Viewer {

/// Gives all windows the colours of the gallery's pictures.
void ApplyDarkTheme(QApplication& p_application);

} // namespace Vek::Chart::Viewer
