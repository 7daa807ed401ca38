#pragma once

#include "platform/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/utility/Scope.h"

#include <QImage>

#include <memory>

namespace Vek::Chart::Ogl {

/// A GL context (compatibility profile) with its own frame buffer and without a window. EGL makes it without a display,
/// on a hardware device if there is one, otherwise on the software rasteriser.
///
/// The frame buffer (8-bit RGBA, 24-bit depth, 8-bit stencil, optionally multisampled) is bound and the viewport covers
/// it when the constructor returns.
///
/// The context ends with this object, which frees the values of `PerContext` in it. Handles and GL objects that are
/// held longer stay safe: objects released later are reported ("WARNING: OffscreenContext: glDeleteTextures after the
/// end of the context"), a scope opened later is reported, and all calls do nothing.
///
/// \snippet HostSnippets.cpp OffscreenContext
/// \ingroup host
class VEK_PLATFORM_API OffscreenContext {
public:
  /// `p_samples` is the number of samples per pixel, 0 for none, limited to the maximum of the device. Throws
  /// std::runtime_error if no context can be made; the message names the failed step and the packages to install.
  explicit OffscreenContext(Types::Size p_size, int p_samples = 0);
  ~OffscreenContext();
  OffscreenContext(const OffscreenContext&) = delete;
  OffscreenContext& operator=(const OffscreenContext&) = delete;

  /// The handle on which rendering scopes are opened; they make this context current.
  const Utility::Unscoped<Rgl>& Handle() const;
  /// The size of the frame buffer in pixels.
  Types::Size Size() const;
  /// The name of the renderer (GL_RENDERER).
  std::string Renderer() const;
  /// Binds the context's own frame buffer and sets the viewport to it.
  void BindFrameBuffer();
  /// The frame buffer's colours (samples resolved), the first row on top, format ARGB32. GL errors are reported; an
  /// image that could not be read is transparent.
  QImage Image();

private:
  struct State;
  std::unique_ptr<State> _state;
};

} // namespace Vek::Chart::Ogl
