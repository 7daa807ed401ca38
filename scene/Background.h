#pragma once

#include "scene/Export.h"
#include "scene/Theme.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

namespace Vek::Chart::Scene {

/// Begins an image in a viewport of the window: clears depth (to 1) and stencil (to 0) there and fills it with the
/// theme's background. What lies around the viewport stays as it is, and so does all GL state.
///
/// \ingroup legends
VEK_SCENE_API void DrawBackground(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport,
                                  const Theme& p_theme);

} // namespace Vek::Chart::Scene
