#pragma once

#include "scene/Export.h"

#include <QImage>
#include <QString>

namespace Vek::Chart::Scene {

/// Writes an image in the format that the path's suffix names: PNG and what Qt supports. The file is replaced at the
/// end, so that one that cannot be written whole leaves nothing new, and an older one stays. Devices and pipes are
/// written directly.
///
/// Throws std::runtime_error with path and reason for a file that cannot be written.
/// \ingroup plots
VEK_SCENE_API void SaveImage(const QImage& p_image, const QString& p_path);

} // namespace Vek::Chart::Scene
