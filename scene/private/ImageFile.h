#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QImage>

#include <functional>

namespace Vek::Chart::Scene::Private {

/// Draws into a viewport with so many pixels a point.
using DrawPage = std::function<void(Utility::Scoped<Rgl>&, const Types::Viewport<0>&, double)>;

/// An opaque image of what is drawn off-screen, with or without an application object (see Figure::Image). Layers of
/// half-transparent things have single samples, so that such images are drawn at twice the size where they can.
QImage DrawnImage(Types::Size p_size, int p_samples, bool p_hasTransparent, const DrawPage& p_draw);

} // namespace Vek::Chart::Scene::Private
