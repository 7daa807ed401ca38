#pragma once

#include <QIcon>

namespace Vek::Chart::Viewer {

/// The icon of vek-viewer.svg, which needs no plug-in here.
QIcon WindowIcon();

} // namespace Vek::Chart::Viewer
