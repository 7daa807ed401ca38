#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Library {

/// A guard for drawing packed depths: while it lives, no state of the host changes the colours of DepthCodec on their
/// way into the current frame buffer, and the nearest surface wins.
///
/// The constructor saves the host's state, disables or resets what would spoil a packed depth, enables the depth test,
/// and clears colour (to transparent black, an empty pixel), depth and stencil. The destructor restores the state. In
/// detail:
/// - scissor, alpha and stencil test, blending, dithering, logic operation, multisampling, sRGB conversion, depth
///   clamping, polygon offset, stipples and smoothing are off;
/// - fog and lighting are off, for scenes that are drawn without a fragment shader;
/// - colour, depth and stencil are written, the depth function is RGL_LESS, the depth range 0 to 1, polygons are
/// filled.
///
/// What belongs to the scene stays: viewport, matrices, clip planes, face culling, texturing, shader program. The frame
/// buffer must have 8 bits per channel, no sRGB storage and one sample per pixel, as a TopMostFragmentDepthBuffer has.
/// Takes one level of the attribute stack, and must be destroyed within the rendering scope.
///
/// \snippet PickingSnippets.cpp Callback
/// \ingroup picking
class VEK_LIBRARY_API DepthPass {
public:
  /// Saves the host's state, and prepares the current frame buffer.
  explicit DepthPass(Utility::Scoped<Rgl>& p_gl);
  ~DepthPass();
  DepthPass(const DepthPass&) = delete;
  DepthPass& operator=(const DepthPass&) = delete;

private:
  boost::shared_ptr<void> _state;
};

} // namespace Vek::Chart::Library
