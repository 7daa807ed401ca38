#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Scene::Private {

/// Whether fixed functions are there; reports a core context.
bool HasFixedFunctions(const Utility::Scoped<Rgl>& p_gl);

/// The state for drawing solids in a viewport, whatever the host's: depth test and masks on, filled polygons, both
/// sides; no blending, clip planes, stencil, fog, texture or shader. The scissor is the host's. Releasing the guard
/// restores all.
boost::shared_ptr<void> SceneState(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport);

} // namespace Vek::Chart::Scene::Private
