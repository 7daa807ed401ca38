#pragma once

#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QImage>

namespace Vek::Chart::Library::Private {

// Reports carry the signature of the caller. Errors that were pending in GL before are reported with "before " in front
// of it, so that they are not taken for errors of the upload.

/// Whether a 2-D texture of that size is within the device's limit, which is reported otherwise.
bool FitsDevice(Utility::Scoped<Rgl>& p_gl, int p_width, int p_height, const char* p_signature);

/// A new texture without an image, bound on the active unit. An empty pointer, with nothing bound, where GL makes none,
/// which is reported.
boost::shared_ptr<Ogl::Texture> MakeTexture(Utility::Scoped<Rgl>& p_gl, Rgl::TexSamplerType p_sampler,
                                            const char* p_signature);

/// A new texture, bound to RGL_TEXTURE_2D on the active unit, whose level 0 is the image: bytes in the order RGBA, the
/// lowest row first. A null image uploads nothing. The unpack alignment is 1 afterwards. An empty pointer where the
/// upload failed, which is reported; nothing of it is left in GL then.
boost::shared_ptr<Ogl::Texture> MakeTexture(Utility::Scoped<Rgl>& p_gl, const QImage& p_image,
                                            Ogl::GlEnum p_internalFormat, const char* p_signature);

} // namespace Vek::Chart::Library::Private
