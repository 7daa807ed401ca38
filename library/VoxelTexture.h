#pragma once

#include "library/Export.h"
#include "library/TextureSettings.h"
#include "platform/ogl/Rgl.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <array>
#include <cstdint>

namespace Vek::Chart::Library {

/// A 3-D texture of values of 8 or 16 bits or of floats, with one to four channels.
///
/// Layout: the channels of a voxel are adjacent; the texture coordinate s runs along the first size, which varies
/// fastest, t along the second and r along the third. Voxel (0, 0, 0) lies at (0, 0, 0).
///
/// Texels: one channel is stored as luminance, which a shader reads as `.r`, two as luminance and alpha (`.r` and
/// `.a`), three and four as RGB and RGBA. Integers are sampled as 0 to 1, floats as they are: a texel times
/// ValueScale() is the value. There are no mip-maps. A device may store 16 bits with fewer.
///
/// Ownership: the constructor uploads the values and keeps none of them. Copies share the GL texture and have their own
/// settings. The last holder of `Handle()` must be released while the context that made it is current.
///
/// Errors: std::invalid_argument for no values, sizes below 1 and channels other than 1 to 4. A size beyond the
/// device's limit is reported ("largest <= GL_MAX_3D_TEXTURE_SIZE && "600 x 3 x 2 voxels, the limit is 512""), as is a
/// GL error of the upload. Nothing is bound then.
///
/// \snippet ImageSnippets.cpp VoxelTexture
/// \ingroup images
class VEK_LIBRARY_API VoxelTexture : public TextureSettings {
public:
  /// The type of the values.
  enum Type {
    UInt8,   ///< std::uint8_t
    UInt16,  ///< std::uint16_t
    Float32, ///< float
  };
  /// Values in the machine's byte order, size[0] × size[1] × size[2] × channels of them.
  struct Voxels {
    const void* values = nullptr;     ///< the first one
    Type type = UInt8;                ///< of all
    int channels = 1;                 ///< 1 to 4
    std::array<int, 3> size{0, 0, 0}; ///< voxels along s, t and r
  };

  std::uint32_t wrapR = ClampToEdge; ///< a Wrap, along the texture coordinate r

  /// Uploads the values.
  VoxelTexture(const Voxels& p_voxels, Utility::Scoped<Rgl>& p_gl);

  /// Binds on the texture unit `p_unit` (a token: RGL_TEXTURE0 + n), which becomes the active one, applies the settings
  /// and enables 3-D texturing there. False, with nothing bound, where the upload failed.
  bool operator()(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;

  /// Voxels along s, t and r.
  const std::array<int, 3>& Size() const { return _size; }
  /// A texel times this is the value: 255, 65535 or 1.
  double ValueScale() const { return _valueScale; }
  /// Empty where the upload failed.
  const boost::shared_ptr<Ogl::Texture>& Handle() const { return _handle; }

private:
  boost::shared_ptr<Ogl::Texture> _handle;
  std::array<int, 3> _size;
  double _valueScale;
};

} // namespace Vek::Chart::Library
