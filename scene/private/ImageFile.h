#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QImage>
#include <QString>

#include <functional>

namespace Vek::Chart::Scene::Private {

/// An opaque image of what is drawn off-screen, with or without an application object (see Figure::Image).
QImage DrawnImage(Types::Size p_size, int p_samples,
                  const std::function<void(Utility::Scoped<Rgl>&, const Types::Viewport<0>&)>& p_draw);

/// Each pixel is the mean of four of an opaque image.
QImage Halved(const QImage& p_image);

/// Writes an image in the format that the path's suffix names. Throws std::runtime_error with path and reason.
void WriteImage(const QImage& p_image, const QString& p_path);

} // namespace Vek::Chart::Scene::Private
