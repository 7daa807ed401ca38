#pragma once

#include "platform/Export.h"
#include "platform/ogl/DeviceFeatures.h"
#include "platform/ogl/GlFunctions.h"
#include "platform/ogl/GlTokens.h"
#include "platform/ogl/Objects.h"
#include "platform/types/Angle.h"
#include "platform/types/Matrix.h"
#include "platform/types/Transformation.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"
#include "platform/utility/VersionNo.h"

#include <boost/function.hpp>
#include <boost/noncopyable.hpp>
#include <boost/shared_ptr.hpp>

#include <QColor>

#include <memory>
#include <string>

namespace Vek::Chart::Ogl {

class BufferPool;
class ContextStore;

/// The rendering interface of one GL context, and the only class that calls GL. It is used through a rendering scope,
/// `Utility::Scoped<Rgl>`.
///
/// There are two kinds of operations. Those declared below take the project's value types. All GL functions of
/// GlFunctionList.h are members as well, under GL's name without "gl" (`Enable`, `TexParameteri`, `ReadPixels`,
/// `Sphere`, …), and behave as GL specifies. Rgl keeps no copy of any GL state, so the context may be shared with other
/// code such as Qt's.
///
/// Not thread-safe: to be called on the thread that owns the context.
///
/// \snippet HostSnippets.cpp Rgl
/// \ingroup host
class VEK_PLATFORM_API Rgl : private boost::noncopyable {
public:
  /// The target that a texture is bound to; the values are those of GL.
  enum TexSamplerType : GlEnum {
    Sampler1D = RGL_TEXTURE_1D, ///< a row of texels
    Sampler2D = RGL_TEXTURE_2D, ///< an image
    Sampler3D = RGL_TEXTURE_3D, ///< a volume
  };
  /// The number of a texture coordinate set, from 0; it is added to RGL_TEXTURE0.
  using TexCoordIndex = unsigned int;

  /// `p_gl` is the table that all calls go through; it is copied, and held for as long as the copy. Functions that it
  /// lacks are reported by name ("WARNING: Rgl: the function table lacks glMapBufferRange") and do nothing when they
  /// are called.
  ///
  /// `p_makeCurrent` is called when the outermost scope opens and must make the context current; `p_release` is called
  /// when it closes. Both may be empty if the context is current whenever a scope is open.
  explicit Rgl(boost::shared_ptr<const GlFunctions> p_gl, boost::function<void()> p_makeCurrent = {},
               boost::function<void()> p_release = {});
  /// Values of `PerContext` that are left are destroyed without a call of GL, and reported by their number.
  ~Rgl();

  /// A handle for hosts that make their own context current before they open a scope, a Qt widget for example.
  static Utility::Unscoped<Rgl> OnCurrentContext();

  ///@{
  /// Opens and closes the rendering scope; called by Utility::Scoped only.
  void ScopeBegin();
  void ScopeEnd();
  ///@}
  /// The number of open scopes.
  unsigned int ScopeDepth() const { return _scopeDepth; }

  // The GL functions by their own names, the raw entry points.
#define VEK_GL(p_result, p_name, p_parameters, p_arguments)                                                            \
  p_result p_name p_parameters const {                                                                                 \
    return _gl->p_name p_arguments;                                                                                    \
  }
#include "platform/ogl/GlFunctionList.h"

  // Immediate mode.

  ///@{
  /// A vertex, in model units.
  void Vertex(const Types::Vector3_Base<double>& p_position) const {
    Vertex3d(p_position.x, p_position.y, p_position.z);
  }
  void Vertex(double p_x, double p_y, double p_z) const {
    Vertex3d(p_x, p_y, p_z);
  }
  ///@}
  ///@{
  /// Sets the current normal. GL normalises it only while RGL_NORMALIZE is enabled.
  void Normal(const Types::Vector3_Base<double>& p_normal) const {
    Normal3d(p_normal.x, p_normal.y, p_normal.z);
  }
  void Normal(double p_x, double p_y, double p_z) const {
    Normal3d(p_x, p_y, p_z);
  }
  ///@}
  /// Sets the current colour from the colour's floating-point fractions.
  void Color(const QColor& p_color) const;
  /// Sets the current texture coordinate of unit 0.
  void TexCoord(double p_s, double p_t) const {
    TexCoord2d(p_s, p_t);
  }
  /// Sets the current texture coordinate of a unit; `p_unit` is a token: RGL_TEXTURE0 + n.
  void MultiTexCoord(GlEnum p_unit, const Types::Vector3_Base<double>& p_coordinate) const {
    MultiTexCoord3d(p_unit, p_coordinate.x, p_coordinate.y, p_coordinate.z);
  }
  /// A vertex at a corner of the pixel grid, in window pixels from the lower left. The projection must map pixels to
  /// the viewport, as `PixelProjection` does.
  void Pixel(int p_x, int p_y) const {
    Vertex2i(p_x, p_y);
  }

  // Matrices. Each operation multiplies the current matrix from the right, so that the last one is applied first.

  /// Multiplies by a translation, in model units.
  void Translate(const Types::Vector3_Base<double>& p_offset) const {
    Translated(p_offset.x, p_offset.y, p_offset.z);
  }
  /// Multiplies by a scaling along the axes.
  void Scale(const Types::Vector3_Base<double>& p_factors) const {
    Scaled(p_factors.x, p_factors.y, p_factors.z);
  }
  /// Multiplies by a right-handed rotation about an axis through the origin.
  void Rotate(Types::Angle p_angle, const Types::Vector3_Base<double>& p_axis) const {
    Rotated(p_angle.Degrees(), p_axis.x, p_axis.y, p_axis.z);
  }
  /// Multiplies by a transformation.
  void MultMatrix(const Types::Transformation& p_transformation) const;
  /// Replaces projection and model view so that one unit is one pixel of the viewport, with the origin in its lower
  /// left corner. A viewport without area is reported and gives the identity. Releasing the guard restores both
  /// matrices and the matrix mode.
  boost::shared_ptr<void> PixelProjection(const Types::Viewport<0>& p_viewport) const;

  // State.

  /// Sets the viewport; all four numbers are truncated to whole pixels and limited to the range of int. NaN becomes 0.
  void Viewport(const Types::Viewport<0>& p_viewport) const;
  /// Sets the colour that Clear fills the frame buffer with.
  void ClearColor(const QColor& p_color) const;
  /// Pushes the attribute groups of the mask; releasing the guard pops them.
  boost::shared_ptr<void> PushAttribScope(GlBitfield p_mask) const;

  // Objects of this context. When GL makes none, the failure is reported and the pointer is empty.

  /// A new texture name, without contents.
  boost::shared_ptr<Texture> GenTexture() const;
  /// Binds a texture to the active unit. An empty pointer is reported and unbinds.
  void Bind(const boost::shared_ptr<Texture>& p_texture, TexSamplerType p_sampler) const;
  /// A new, empty display list.
  boost::shared_ptr<DisplayList> GenDisplayList() const;
  /// A new frame-buffer object without attachments.
  boost::shared_ptr<FrameBufferObject> GenFrameBufferObject() const;
  /// A new renderbuffer without storage.
  boost::shared_ptr<RenderBuffer> GenRenderBuffer() const;
  /// Binds for drawing and reading; releasing the guard restores both previous bindings. An empty pointer, or an object
  /// without a name, is reported and the bindings stay.
  boost::shared_ptr<void> BindScope(const boost::shared_ptr<FrameBufferObject>& p_target) const;
  /// The pool that makes GPU buffers in this context.
  BufferPool& GetBufferPool() const;

  // The device.

  /// The version number at the start of GL_VERSION; 0.0.0 if there is none.
  Utility::VersionNo GlVersion() const;
  /// The features of the device, read at the first call.
  const DeviceFeatures& Features() const;
  /// The largest width and height of a 2-D texture, in texels.
  int GetMaxTextureSize() const;

  /// Takes and reports all pending GL errors, each as "WARNING: ", its name, " - " and `p_location`. Returns true if
  /// there was none.
  bool CheckError(const std::string& p_location) const;

  /// The table that all calls go through.
  const boost::shared_ptr<const GlFunctions>& Functions() const {
    return _gl;
  }

private:
  friend class ContextValues;
  friend class OffscreenContext;

  /// Frees the values of `PerContext`. The context must be current.
  void FreeValues();
  /// Destroys them without a call of GL.
  void ForgetValues();
  /// The context ends: forgets the values and sends later calls to another table.
  void EndContext(const GlFunctions& p_functions);

  boost::shared_ptr<GlFunctions> _table; // of this Rgl alone
  boost::shared_ptr<const GlFunctions> _gl;
  boost::function<void()> _makeCurrent;
  boost::function<void()> _release;
  unsigned int _scopeDepth = 0;
  std::unique_ptr<BufferPool> _bufferPool;
  boost::shared_ptr<ContextStore> _store;
  mutable std::unique_ptr<const DeviceFeatures> _features; // empty until they are read
};

} // namespace Vek::Chart::Ogl

namespace Vek::Chart {
using Ogl::Rgl;
}
