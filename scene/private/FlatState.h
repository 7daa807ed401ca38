#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Scene {

/// The state for drawing in window pixels over what is there: fixed functions, plain filled polygons, smooth colours,
/// no texture on unit 0, no depth, blending by straight alpha. The scissor, the colour mask, the samples, the texture
/// matrix and the other texture units are the host's. Releasing the guard restores what was.
boost::shared_ptr<void> FlatState(Utility::Scoped<Rgl>& p_gl);

} // namespace Vek::Chart::Scene
