#pragma once

#include "library/Export.h"
#include "library/MipInfo.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QImage>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Library {

/// An off-screen target: a colour texture and a depth-stencil texture (24 + 8 bits) of one size in a frame-buffer
/// object.
///
/// With samples, drawing goes to multisampled storage beside the textures; every access that reads resolves it first.
/// What is drawn under BindForRead goes to the textures only, and is lost at the next resolve.
///
/// GL objects are made by the first operation that takes a scope, in a context that knows frame-buffer objects. They
/// are shared by copies, and their last holder must let go while that context is current. Apart from what an operation
/// says it binds, the host's state stays as it was, pixel store settings included.
///
/// A frame buffer that GL finds incomplete, for a size of 0 or one beyond the device's limit, say, is reported with the
/// status by name: "status == RGL_FRAMEBUFFER_COMPLETE && "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, 0 x 3, 0 samples"". It
/// can be bound, but GL refuses to draw to it, and reading yields an empty result. When only the multisampled storage
/// is incomplete, drawing goes on without samples.
///
/// \snippet PickingSnippets.cpp RenderTexture
/// \image html picking.jpg
/// \ingroup picking
class VEK_LIBRARY_API RenderTexture {
public:
  /// What the colour texture stores.
  enum ColorFormat : std::uint32_t {
    Rgba8 = 0,     ///< 8 bits a channel; also any number that is not listed
    RgbaHalf = 1,  ///< 16-bit floats
    RgbaFloat = 2, ///< 32-bit floats
    Float = 3,     ///< one channel, a 32-bit float
  };
  /// How 8-bit colours are stored.
  enum Space : std::uint32_t {
    Linear = 0, ///< stored as written
    Srgb = 1,   ///< 8-bit colours stored as sRGB: sampling yields linear light, and so does writing while
                ///< RGL_FRAMEBUFFER_SRGB is enabled. Without meaning for float formats.
  };

  /// `p_samples`: samples a pixel, 0 for none; lowered to what the device can do.
  explicit RenderTexture(Types::Size p_size, ColorFormat p_format = Rgba8, Space p_space = Linear, int p_samples = 0);

  /// In pixels.
  Types::Size Size() const;

  /// Makes the single-sampled target the current frame buffer, for reading and drawing. Releasing the guard restores
  /// what was bound before.
  boost::shared_ptr<void> BindForRead(Utility::Scoped<Rgl>& p_gl) const;
  /// Makes the target the current frame buffer for drawing (the multisampled one, if there is one) and covers it with
  /// the viewport. Releasing the guard restores frame buffer and viewport.
  boost::shared_ptr<void> BindForDraw(Utility::Scoped<Rgl>& p_gl) const;

  /// The colour texture, for drawing with it elsewhere; not to be sampled while it is drawn to.
  boost::shared_ptr<Ogl::Texture> ColorTexture(Utility::Scoped<Rgl>& p_gl) const;
  /// The depth-stencil texture, likewise.
  boost::shared_ptr<Ogl::Texture> DepthTexture(Utility::Scoped<Rgl>& p_gl) const;
  /// Binds the colour texture on the unit `p_unit` (RGL_TEXTURE0 + n), makes that unit active and enables 2-D
  /// texturing.
  void BindColor(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;
  /// Binds the depth texture on the unit `p_unit` (RGL_TEXTURE0 + n), makes that unit active and enables 2-D
  /// texturing.
  void BindDepth(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;

  /// The levels that the colour texture can have.
  MipInfo Mips() const { return MipInfo(Size()); }
  /// Computes all levels of the colour texture from what was drawn, and lets minification use them from now on.
  void GenerateMips(Utility::Scoped<Rgl>& p_gl) const;

  /// The colours as bytes, the top row first, format ARGB32; sRGB colours as stored, floats held to 0 and 1, the format
  /// Float as red.
  QImage ToImage(Utility::Scoped<Rgl>& p_gl) const;
  /// The colours of all pixels, the bottom row first: four floats a pixel, one for the format Float.
  std::vector<float> ReadColors(Utility::Scoped<Rgl>& p_gl) const;
  /// The depths of all pixels, 0 (near) to 1 (far), the bottom row first.
  std::vector<float> ReadDepths(Utility::Scoped<Rgl>& p_gl) const;

private:
  std::vector<float> ReadFloats(Utility::Scoped<Rgl>& p_gl, Ogl::GlEnum p_format, std::size_t p_count) const;

  struct State;
  boost::shared_ptr<State> _state;
};

} // namespace Vek::Chart::Library
