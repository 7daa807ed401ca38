#pragma once

#include "library/DepthCodec.h"
#include "library/DepthImage.h"
#include "library/Export.h"
#include "platform/core/TimeStamp.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <boost/function.hpp>

#include <memory>
#include <type_traits>

namespace Vek::Chart::Library {

/// Depth of the nearest surface under a pixel, for picking. The scene is drawn once into an off-screen target, with the
/// depth of each fragment packed into its colour; picks read single pixels of it until the scene changes.
///
/// Three ways to read: `GetDepthAt` reads one pixel a call, `Read` a rectangle, for example around the mouse, and
/// `Snapshot` the whole target once per stamp, for many picks on one scene.
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

  /// The depths of the whole target, read once per stamp and size: later calls make no GL call and return the same
  /// image. The reference is valid, and the image unchanged, until a call with another stamp or size.
  ///
  /// Viewport, stamp and render callback as for `GetDepthAt`, with which it shares the target. The callback is called
  /// with or without the encoding, and is not copied. Reading takes memory of 4 bytes a pixel. Errors that are pending
  /// in GL are reported with "before" and the signature. An empty image, to be read again by the next call, where the
  /// target cannot be made or read, which is reported.
  template <class Render>
  const DepthImage& Snapshot(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport,
                             const Core::TimeStamp& p_stamp, Render&& p_render) {
    // Here, and not behind a call: this is all that a pick of an unchanged scene costs, but for its look-up.
    if (_snapshotStamp == p_stamp && _snapshotViewport == p_viewport)
      return _snapshot;
    return MakeSnapshot(p_gl, p_viewport, p_stamp, Reference(p_render));
  }
  /// The depths of a rectangle of the target, as far as it lies within: `p_corner` is its lower left pixel. Everything
  /// else as for `Snapshot`, but that nothing is kept. An empty image, without any call, for a rectangle outside.
  template <class Render>
  DepthImage Read(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const Types::Pos& p_corner,
                  const Types::Size& p_size, const Core::TimeStamp& p_stamp, Render&& p_render) {
    return ReadRectangle(p_gl, p_viewport, p_corner, p_size, p_stamp, Reference(p_render));
  }

private:
  using RenderFunction = boost::function<void(DepthCodec::Encoding)>;

  /// A function of one word, which boost::function holds without memory of its own.
  template <class Render>
  static auto Reference(Render& p_render) {
    return [&p_render](DepthCodec::Encoding p_encoding) {
      if constexpr (std::is_invocable_v<Render&, DepthCodec::Encoding>)
        p_render(p_encoding);
      else
        p_render();
    };
  }
  const DepthImage& MakeSnapshot(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport,
                                 const Core::TimeStamp& p_stamp, const RenderFunction& p_render);
  DepthImage ReadRectangle(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const Types::Pos& p_corner,
                           const Types::Size& p_size, const Core::TimeStamp& p_stamp, const RenderFunction& p_render);

  struct State;
  std::unique_ptr<State> _state;
  DepthImage _snapshot;
  Core::TimeStamp _snapshotStamp;       ///< of the scene that the snapshot holds
  Types::Viewport<0> _snapshotViewport; ///< the last one that it was asked for with
};

} // namespace Vek::Chart::Library
