#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"

#include <boost/shared_ptr.hpp>

#include <QImage>

#include <cstdint>

namespace Vek::Chart::Library {

/// A 2-D texture made from an image.
///
/// Shape: `Width()` × `Height()` texels; the top of the image is at texture coordinate t = 1. From GL 2.0 on that is
/// the image's size; before, the image is scaled (fast, not smooth) so that both are powers of two.
///
/// Ownership: the image is kept (shared, as QImage does). The GL texture is created and uploaded by the first bind and
/// lives as long as a Texture or another holder of `Handle()`; its last holder must let go of it while the context that
/// made it is current. Copies share the GL texture if there is one already, and have settings of their own.
///
/// Errors: an image without texels is reported as "_width > 0 && _height > 0 && "Invalid Texture Size"" (not before GL
/// 2.0, where it is taken as 1 × 1). It can be bound, but nothing is uploaded for it.
///
///     Texture sprite(image, gl);
///     sprite.environment = Texture::Modulate; // the settings count at each bind; sRgb at the first only
///     sprite(gl, RGL_TEXTURE0);
class VEK_LIBRARY_API Texture {
public:
  // The settings are plain numbers; with one that is not listed, a bind leaves that part of the GL state as it is.
  enum Filter : std::uint32_t { Nearest = 0, Linear = 1 };
  enum Wrap : std::uint32_t { ClampToEdge = 0, Repeat = 1 };
  enum Environment : std::uint32_t { Modulate = 0, Decal = 1, Replace = 2 };

  std::uint32_t minFilter = Linear;
  std::uint32_t magFilter = Linear;
  std::uint32_t wrapS = ClampToEdge;
  std::uint32_t wrapT = ClampToEdge;
  std::uint32_t environment = Replace;
  /// Whether the colours are stored as sRGB, so that sampling yields linear light; counts when the texture is uploaded.
  bool sRgb = false;

  Texture(const QImage& p_image, Utility::Scoped<Rgl>& p_gl);
  ~Texture();
  Texture(const Texture&) = default;
  Texture& operator=(const Texture&) = default;

  /// Binds on the texture unit `p_unit` (a token: RGL_TEXTURE0 + n), which becomes the active one, applies the settings
  /// and enables 2-D texturing there. The first call creates and uploads the GL texture.
  void operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;

  int Width() const { return _width; }
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
