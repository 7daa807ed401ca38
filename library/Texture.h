#pragma once

#include "library/Export.h"
#include "library/TextureSettings.h"
#include "platform/ogl/Rgl.h"

#include <boost/shared_ptr.hpp>

#include <QImage>

namespace Vek::Chart::Library {

/// A 2-D texture made from an image.
///
/// Shape: `Width()` × `Height()` texels; the top of the image is at texture coordinate t = 1. Before GL 2.0, the image
/// is scaled to powers of two (fast, not smooth); from GL 2.0 on, it keeps its size.
///
/// Ownership: the image is kept (implicitly shared). The first bind creates and uploads the GL texture, which lives as
/// long as a Texture or another holder of `Handle()`. Its last holder must release it while the context that made it is
/// current. Copies share a GL texture that exists already and have their own settings.
///
/// State: the host's pixel store and pixel transfer do not reach the texels; after an upload the unpack alignment is 1,
/// everything else is as before. A bind disables 3-D texturing on its unit, which would hide the texture.
///
/// Errors: an image without texels is reported as "_width > 0 && _height > 0 && "Invalid Texture Size"" (not before GL
/// 2.0, where it is taken as 1 × 1), one beyond the device's limit as "largest <= GL_MAX_TEXTURE_SIZE && "600 x 3
/// texels, the limit is 512"". Both can be bound, but nothing is uploaded for them. When an upload fails, the GL error
/// is reported ("WARNING: GL_OUT_OF_MEMORY - …"), the texture stays without a handle, and the next bind tries again.
/// Errors that are pending in GL before an upload are reported with "before" and the signature.
///
/// \snippet ColorSnippets.cpp Texture
/// \image html shapes.jpg
/// \ingroup colours
class VEK_LIBRARY_API Texture : public TextureSettings {
public:
  /// A texture of the image; nothing is uploaded yet. The scope's GL version decides about the size.
  Texture(const QImage& p_image, Utility::Scoped<Rgl>& p_gl);
  ~Texture();
  /// Shares the GL texture, if there is one already.
  Texture(const Texture&) = default;
  /// Copy assignment; shares the GL texture, if there is one already.
  Texture& operator=(const Texture&) = default;

  /// Binds on the texture unit `p_unit` (a token: RGL_TEXTURE0 + n), which becomes the active one, applies the settings
  /// and enables 2-D texturing there. The first call creates and uploads the GL texture.
  void operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;

  /// Texels a row; 0 for an image without texels.
  int Width() const { return _width; }
  /// Rows; 0 for an image without texels.
  int Height() const { return _height; }
  /// Empty before the first bind.
  const boost::shared_ptr<Ogl::Texture>& Handle() const { return _handle; }

private:
  static Rgl::TexSamplerType Target() { return Rgl::Sampler2D; }
  void UseFilter(Utility::Scoped<Rgl>& p_gl) const;
  void UseWrap(Utility::Scoped<Rgl>& p_gl) const;
  void UseEnvironment(Utility::Scoped<Rgl>& p_gl) const;

  mutable boost::shared_ptr<Ogl::Texture> _handle;
  int _width = 0;
  int _height = 0;
  QImage _image;
};

} // namespace Vek::Chart::Library
