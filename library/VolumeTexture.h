#pragma once

#include "library/Export.h"
#include "library/TextureSettings.h"
#include "library/VolumeImage.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <cstdint>

namespace Vek::Chart::Library {

/// A 3-D texture made from a volume.
///
/// Axes: the texture coordinate s runs along the volume's fastest extent, `VolumeImage::Height()`, t along its
/// `Width()` and r along its `Depth()`. Voxel (0, 0, 0) lies at (0, 0, 0). A TexturedCube thus shows the volume's x
/// along x, and so on.
///
/// Texels: one channel is stored as luminance, which fixed-function drawing shows as grey and a shader reads as `.r`
/// (and `.g` and `.b`; alpha is 1); four channels as RGBA. 8-bit values are sampled as 0 to 1, floats as they are.
/// There are no mip-maps.
///
/// Ownership: the volume is shared and must not change before its upload. The first bind creates and uploads the GL
/// texture, which lives as long as a VolumeTexture or another holder of `Handle()`. Its last holder must release it
/// while the context that made it is current. Copies share a GL texture that exists already and have their own
/// settings. Devices without 3-D textures (GL before 1.2) are not supported.
///
/// Errors: a null volume goes to the pointer check. One without voxels is reported as "sizeS > 0 && sizeT > 0 && sizeR
/// > 0 && "Invalid Volume Size"", one that is larger than the device takes with the sizes: "largest <=
/// GL_MAX_3D_TEXTURE_SIZE && "600 x 3 x 2 voxels, the limit is 512"", one whose channels are neither 1 nor 4 as
/// "format", one with fewer bytes than its extents need as "bytes <= p_image->Bytes().size()". All of these can be
/// bound, but nothing is uploaded for them. When an upload fails, the GL error is reported, and the next bind tries
/// again, as for `Texture`.
///
/// \snippet ImageSnippets.cpp VolumeTexture
/// \image html volume.jpg
/// \ingroup images
class VEK_LIBRARY_API VolumeTexture : public TextureSettings {
public:
  std::uint32_t wrapR = ClampToEdge; ///< a Wrap, along the texture coordinate r

  /// A texture of the volume; nothing is uploaded yet. The scope's device limits its size.
  VolumeTexture(boost::shared_ptr<const VolumeImage> p_image, Utility::Scoped<Rgl>& p_gl);

  /// Binds on the texture unit `p_unit` (a token: RGL_TEXTURE0 + n), which becomes the active one, applies the settings
  /// and enables 3-D texturing there. The first call creates and uploads the GL texture. While 3-D texturing is
  /// enabled, GL ignores 2-D textures on that unit; binds of this library's 2-D textures disable it.
  void operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;

  // Voxels along the texture coordinates.
  int SizeS() const { return _sizeS; } ///< the volume's Height()
  int SizeT() const { return _sizeT; } ///< the volume's Width()
  int SizeR() const { return _sizeR; } ///< the volume's Depth()
  /// Empty before the first bind.
  const boost::shared_ptr<Ogl::Texture>& Handle() const { return _handle; }

private:
  bool Upload(Utility::Scoped<Rgl>& p_gl) const;

  mutable boost::shared_ptr<Ogl::Texture> _handle;
  boost::shared_ptr<const VolumeImage> _image; ///< null when there is nothing to upload
  int _sizeS = 0;
  int _sizeT = 0;
  int _sizeR = 0;
};

} // namespace Vek::Chart::Library
