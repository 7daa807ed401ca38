#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

namespace Vek::Chart::Library::Private {

// While the guard lives, pixels lie in client memory, rows and images tight and bytes in the machine's order, whatever
// the host has set; its settings would move transfers out of the memory that is meant for them. Releasing the guard
// restores what was there.

/// For what GL writes: ReadPixels, GetTexImage.
boost::shared_ptr<void> PackScope(Utility::Scoped<Rgl>& p_gl);
/// For one pixel of bytes that GL writes. Empty, and much cheaper, where the host has set nothing that moves it.
boost::shared_ptr<void> PixelPackScope(Utility::Scoped<Rgl>& p_gl);
/// For what GL reads: TexImage2D, TexImage3D.
boost::shared_ptr<void> UnpackScope(Utility::Scoped<Rgl>& p_gl);

} // namespace Vek::Chart::Library::Private
