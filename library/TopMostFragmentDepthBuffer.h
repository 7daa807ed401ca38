#pragma once

#include "library/DepthCodec.h"
#include "library/Export.h"
#include "platform/core/TimeStamp.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <boost/function.hpp>

#include <memory>

namespace Vek::Chart::Library {

/// Answers how deep the nearest surface under a pixel is, for picking. The scene is drawn once into an off-screen
/// target, with every fragment's depth packed into its colour; picks read single pixels of it until the scene changes.
///
/// Owns GL objects from the first pick on; to be destroyed while that context is current. Rendering thread only.
///
/// \snippet PickingSnippets.cpp TopMostFragmentDepthBuffer
/// \image html picking.jpg
/// \ingroup picking
class VEK_LIBRARY_API TopMostFragmentDepthBuffer {
public:
  TopMostFragmentDepthBuffer();
  ~TopMostFragmentDepthBuffer();
  TopMostFragmentDepthBuffer(const TopMostFragmentDepthBuffer&) = delete;
  TopMostFragmentDepthBuffer& operator=(const TopMostFragmentDepthBuffer&) = delete;

  /// Calls `p_result` with 0 and the depth in (0, 1) and returns true when something was drawn under the pixel; returns
  /// false otherwise.
  ///
  /// `p_viewport`: only its width and height count, in pixels, truncated; the target has that size.
  /// `p_position`: a pixel of the target, from its lower left. Outside it, GL does not say what is read.
  /// `p_stamp`: the scene's; `p_render` is called when it differs from the last one, and when the size changed.
  /// `p_render`: draws the scene with the state that it finds (depth test on, stencil test off, viewport set), writing
  /// each fragment's depth as RGBA, packed as `DepthCodec::Encode` or by one of its shaders. The host's scissor,
  /// blending, dithering, multisampling and alpha test would spoil the packing: the callback must switch off what the
  /// host has on. The target is cleared before, under the host's scissor and write masks: with those in use, the
  /// callback clears again. When it throws, the stamp is not taken over, so that the next pick with it draws again.
  ///
  /// Frame buffer, colour-buffer, enable and viewport state are as before when the call returns or throws. GL errors go
  /// to Rgl::CheckError.
  bool GetDepthAt(Utility::Scoped<Rgl>& p_gl, Types::Viewport<0> p_viewport, const Types::Pos& p_position,
                  const Core::TimeStamp& p_stamp, const boost::function<void(DepthCodec::Encoding)>& p_render,
                  const boost::function<void(unsigned int, float)>& p_result);

private:
  struct State;
  std::unique_ptr<State> _state;
};

} // namespace Vek::Chart::Library
