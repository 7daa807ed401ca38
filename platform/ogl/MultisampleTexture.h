#pragma once

#include "platform/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Ogl {

/// GL_TEXTURE_2D_MULTISAMPLE, the target that such textures are bound and attached to.
constexpr GlEnum MultisampleTarget = 0x9100;

/// A texture whose texels have several samples: drawn to as an attachment of a frame-buffer object, and read by shaders
/// sample by sample (`sampler2DMS`, `texelFetch`). It is bound to `MultisampleTarget` on the active unit afterwards.
///
/// The context must be current and GL's own, as that of an `OffscreenContext`: the function is not one of the table
/// that a host may replace. Empty below GL 3.2, and where GL makes no texture.
///
/// \param p_gl the current context
/// \param p_internal a sized format, RGL_RGBA8 or RGL_DEPTH24_STENCIL8 for example
/// \param p_size in pixels
/// \param p_samples at least 1, at most the device's RGL_MAX_SAMPLES
/// \ingroup host
VEK_PLATFORM_API boost::shared_ptr<Texture> MakeMultisampleTexture(const Rgl& p_gl, GlEnum p_internal,
                                                                   Types::Size p_size, int p_samples);

} // namespace Vek::Chart::Ogl
