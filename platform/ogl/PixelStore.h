#pragma once

#include "platform/Export.h"
#include "platform/ogl/Rgl.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Ogl {

// Transfers of pixels between client memory and GL, whatever the host has set. While a guard lives, rows and images lie
// tightly in client memory (no skips, alignment 1, no pixel buffer), bytes and bits keep their order, and pixel
// transfer (scale, bias, colour maps) leaves values as they are. Releasing the guard restores the host's settings.

/// For ReadPixels and GetTexImage.
VEK_PLATFORM_API boost::shared_ptr<void> PackScope(const Rgl& p_gl);
/// For ReadPixels of one pixel of bytes. Returns an empty pointer, and changes nothing, where no setting of the host
/// matters.
VEK_PLATFORM_API boost::shared_ptr<void> PixelPackScope(const Rgl& p_gl);
/// For TexImage2D and TexImage3D.
VEK_PLATFORM_API boost::shared_ptr<void> UnpackScope(const Rgl& p_gl);
/// For a TexImage2D with four bytes a texel under alignment 1, and for PolygonStipple. Returns an empty pointer, and
/// changes nothing, where no setting of the host matters.
VEK_PLATFORM_API boost::shared_ptr<void> ImageUnpackScope(const Rgl& p_gl);

} // namespace Vek::Chart::Ogl
