#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Library {

/// A guard for drawing packed depths: while it lives, the colours of DepthCodec reach the current frame buffer as they
/// are written, nearest surface on top, whatever state the host has set.
///
/// The constructor saves the host's state, sets GL's initial state wherever another would spoil a packed depth, enables
/// the depth test, and clears colour (transparent black: "nothing here"), depth and stencil. The destructor restores
/// the state. Set or off:
/// - tests and masks: scissor, alpha, stencil and depth test, colour, depth and stencil mask, clear values;
/// - blending, dithering, logic operation, multisampling, sRGB conversion, smoothing;
/// - depth range, depth clamping, polygon offset, polygon mode, polygon and line stipple;
/// - fog and lighting, for scenes that are drawn without a fragment shader.
///
/// What belongs to the scene stays as it is: viewport, matrices, clip planes, face culling, texturing, shader program.
/// The frame buffer needs 8 bits per channel, no sRGB storage and one sample per pixel, as that of a
/// TopMostFragmentDepthBuffer. Uses one level of the attribute stack; must end before the scope closes.
///
/// \snippet PickingSnippets.cpp Callback
/// \ingroup picking
class VEK_LIBRARY_API DepthPass {
public:
  explicit DepthPass(Utility::Scoped<Rgl>& p_gl);
  ~DepthPass();
  DepthPass(const DepthPass&) = delete;
  DepthPass& operator=(const DepthPass&) = delete;

private:
  boost::shared_ptr<void> _state;
};

} // namespace Vek::Chart::Library
