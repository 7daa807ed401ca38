#pragma once

#include "platform/ogl/Rgl.h"

#include <QImage>

namespace Vek::Chart::Library::Private {

/// Uploads an image as level 0 of the texture that is bound to RGL_TEXTURE_2D, as bytes in the order RGBA, the lowest
/// row first. A null image uploads nothing. The unpack alignment is 1 afterwards.
void UploadImage(Utility::Scoped<Rgl>& p_gl, const QImage& p_image, Ogl::GlEnum p_internalFormat);

} // namespace Vek::Chart::Library::Private
