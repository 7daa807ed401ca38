#pragma once

namespace Vek::Chart::Gallery {

/// Makes the application object that Qt's fonts need, for a program without windows: unless the environment says
/// otherwise, Qt uses no display. The first call counts; the object stays until the process ends, since the plugin for
/// screens that do not exist loses memory when it is taken down.
void StartOffscreenQt();

} // namespace Vek::Chart::Gallery
