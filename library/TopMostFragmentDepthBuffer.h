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

/// Depth of the nearest surface under a pixel, for picking. The scene is drawn once into an off-screen target, with the
/// depth of each fragment packed into its colour; picks read single pixels of it until the scene changes.
///
/// Owns GL objects from the first pick on; must be destroyed while their context is current. Rendering thread only.
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

  /// If something was drawn under the pixel, calls `p_result` with 0 and the depth in (0, 1) and returns true;
  /// otherwise returns false.
  ///
  /// `p_viewport`: only width and height are used, in pixels, truncated; the target has that size.
  /// `p_position`: a pixel of the target, from its lower left corner. GL leaves undefined what is read outside.
  /// `p_stamp`: of the scene; `p_render` is called if the target does not hold the scene of this stamp.
  /// `p_render`: draws the scene with the current state (depth test on, stencil test off, viewport set) and writes the
  /// depth of each fragment as RGBA, packed by `DepthCodec::Encode` or by one of its shaders. The target is cleared
  /// before, under the host's scissor and write masks. The host's state can spoil clear and packing: a callback draws
  /// under a DepthPass. After a callback that threw, or that drew to an incomplete target, the next pick calls
  /// `p_render` again, whatever its stamp.
  ///
  /// Frame buffer, colour-buffer, enable and viewport state are restored, even if a callback throws. GL errors go to
  /// Rgl::CheckError. Without a frame buffer, which RenderTexture reports, no callback is called.
  bool GetDepthAt(Utility::Scoped<Rgl>& p_gl, Types::Viewport<0> p_viewport, const Types::Pos& p_position,
                  const Core::TimeStamp& p_stamp, const boost::function<void(DepthCodec::Encoding)>& p_render,
                  const boost::function<void(unsigned int, float)>& p_result);

private:
  struct State;
  std::unique_ptr<State> _state;
};

} // namespace Vek::Chart::Library
