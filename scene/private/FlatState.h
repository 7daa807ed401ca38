#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Scene {

/// What drawing starts from, whatever the host's state: fixed functions, unit 0 without a texture, both sides of filled
/// polygons, smooth colours, no fog, stencil, alpha test, logic operation, clip plane or array of a generic attribute.
/// Releasing the guard restores it, the depth test, blending, lights, and the state of `p_more`, bits of PushAttrib.
boost::shared_ptr<void> PlainState(Utility::Scoped<Rgl>& p_gl, unsigned int p_more = 0);

/// The state for drawing in window pixels over what is there: fixed functions, plain filled polygons, smooth colours,
/// no texture on unit 0, no depth, blending by straight alpha. The scissor, the colour mask, the samples, the texture
/// matrix and the other texture units are the host's. Releasing the guard restores what was.
boost::shared_ptr<void> FlatState(Utility::Scoped<Rgl>& p_gl);

} // namespace Vek::Chart::Scene
