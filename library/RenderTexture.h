#pragma once

#include "library/Export.h"
#include "library/MipInfo.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QImage>

#include <cstdint>
#include <vector>

namespace Vek::Chart::Library {

/// An off-screen target: a colour texture and a depth-stencil texture (24 + 8 bits) of one size in a frame-buffer
/// object.
///
/// With samples, BindForDraw draws to multisampled storage beside the textures; the first read access after drawing
/// resolves it. What is drawn under BindForRead goes to the textures only, and the next resolve overwrites it. The
/// contents are undefined until the first drawing.
///
/// The first operation that takes a scope makes the GL objects, in a context with frame-buffer objects. Copies share
/// them; the last copy must be destroyed while that context is current. Except for the bindings that an operation
/// documents, the host's state stays as it was; pixel store and pixel transfer settings have no effect.
///
/// Errors: an incomplete frame buffer is reported with its status, "status == RGL_FRAMEBUFFER_COMPLETE &&
/// "GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT, 0 x 3, 0 samples"", and so is each object or image that GL does not make. GL
/// refuses to draw to an incomplete target, and reading it yields an empty result. A size of 0 or beyond the device's
/// limit is reported once; after any other failure the next operation tries again. If only the multisampled storage
/// fails, the target has no samples.
///
/// \snippet PickingSnippets.cpp RenderTexture
/// \image html picking.jpg
/// \ingroup picking
class VEK_LIBRARY_API RenderTexture {
public:
  /// Storage of the colour texture.
  enum ColorFormat : std::uint32_t {
    Rgba8 = 0,     ///< 8 bits per channel; also stands for unlisted values
    RgbaHalf = 1,  ///< 16-bit floats
    RgbaFloat = 2, ///< 32-bit floats
    Float = 3,     ///< one channel, a 32-bit float
  };
  /// Storage of 8-bit colours.
  enum Space : std::uint32_t {
    Linear = 0, ///< stored as written
    Srgb = 1,   ///< stored as sRGB: sampling yields linear light, and writing converts while RGL_FRAMEBUFFER_SRGB is
                ///< enabled. Ignored for float formats.
  };

  /// `p_samples`: samples per pixel, 0 for none; lowered to the device's limit.
  explicit RenderTexture(Types::Size p_size, ColorFormat p_format = Rgba8, Space p_space = Linear, int p_samples = 0);

  /// In pixels.
  Types::Size Size() const;
  /// Whether the GL objects exist and can be drawn to; false before the first operation that takes a scope.
  bool Complete() const;

  /// Makes the single-sampled target the current frame buffer, for reading and drawing. Releasing the guard restores
  /// the previous binding. Empty, with nothing bound, if GL makes no frame-buffer object.
  boost::shared_ptr<void> BindForRead(Utility::Scoped<Rgl>& p_gl) const;
  /// Makes the target (the multisampled one, if there is one) the current frame buffer for drawing, and sets the
  /// viewport to cover it. Releasing the guard restores both. Empty, with nothing bound, if GL makes no frame-buffer
  /// object.
  boost::shared_ptr<void> BindForDraw(Utility::Scoped<Rgl>& p_gl) const;

  /// The colour texture, to be sampled; not while it is drawn to. Empty if GL makes no texture.
  boost::shared_ptr<Ogl::Texture> ColorTexture(Utility::Scoped<Rgl>& p_gl) const;
  /// The depth-stencil texture, likewise.
  boost::shared_ptr<Ogl::Texture> DepthTexture(Utility::Scoped<Rgl>& p_gl) const;
  /// Binds the colour texture on the unit `p_unit` (RGL_TEXTURE0 + n), makes that unit active, enables 2-D texturing
  /// and disables 3-D texturing, which would hide it.
  void BindColor(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;
  /// Binds the depth texture on the unit `p_unit` (RGL_TEXTURE0 + n), makes that unit active, enables 2-D texturing and
  /// disables 3-D texturing, which would hide it.
  void BindDepth(Utility::Scoped<Rgl>& p_gl, unsigned int p_unit) const;

  /// The mip-map levels that the colour texture can have.
  MipInfo Mips() const { return MipInfo(Size()); }
  /// Computes all levels of the colour texture and enables them for minification. After further drawing, ColorTexture
  /// and BindColor compute them again.
  void GenerateMips(Utility::Scoped<Rgl>& p_gl) const;

  // Reading. Pending GL errors are reported first; if GL reports one for the read, the result is empty.

  /// The colours as bytes, top row first, format ARGB32: sRGB colours as stored, floats clamped to [0, 1], the format
  /// Float as red.
  QImage ToImage(Utility::Scoped<Rgl>& p_gl) const;
  /// The colours of all pixels, bottom row first: four floats per pixel, one for the format Float.
  std::vector<float> ReadColors(Utility::Scoped<Rgl>& p_gl) const;
  /// The depths of all pixels, 0 (near) to 1 (far), bottom row first.
  std::vector<float> ReadDepths(Utility::Scoped<Rgl>& p_gl) const;

private:
  struct State;
  boost::shared_ptr<State> _state;
};

} // namespace Vek::Chart::Library
