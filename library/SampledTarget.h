#pragma once

#include "library/Export.h"
#include "library/RenderTexture.h"
#include "platform/ogl/Rgl.h"
#include "platform/ogl/ShaderProgram.h"
#include "platform/types/Size.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QImage>

#include <optional>
#include <vector>

namespace Vek::Chart::Library {

/// An off-screen target whose samples are read and written one by one: for images that are composited of several
/// drawings, sample by sample, as if all had been drawn into one frame buffer.
///
///     const auto bound = target.BindForDraw(gl);
///     Draw(gl);
///     for (int sample = 0; sample < target.Count(); ++sample)
///       Composite(target.Read(gl, sample));
///
/// Colours have 8 bits per channel, depths 24, beside 8 of a stencil. Needs a context of GL 4.0 that is GL's own, as
/// that of an `Ogl::OffscreenContext`. GL objects are released with the target, when the context must be current.
/// Except for the guard of BindForDraw, the host's state stays as it was.
///
/// Errors: std::runtime_error if GL makes no target, or reports an error for a transfer; std::invalid_argument for
/// values of another size.
///
/// \snippet PickingSnippets.cpp SampledTarget
/// \ingroup picking
class VEK_LIBRARY_API SampledTarget {
public:
  /// One sample of each pixel, the lower left pixel first.
  struct Samples {
    std::vector<unsigned char> colors; ///< red, green, blue and alpha of each
    std::vector<float> depths;         ///< 0 (near) to 1 (far); 1 where nothing was drawn
  };
  /// What Write writes.
  enum class Written {
    Colors, ///< colours where the depth is below 1
    Depths, ///< all depths
    Blended ///< colours that are multiplied by their alpha, over those that are there
  };

  /// \param p_gl an open scope of the context
  /// \param p_size in pixels
  /// \param p_samples samples of a pixel, 0 for none; limited to the maximum of the device
  SampledTarget(Utility::Scoped<Rgl>& p_gl, Types::Size p_size, int p_samples);

  /// How many `Samples` there are: as many as samples of a pixel, or one.
  int Count() const { return _samples > 0 ? _samples : 1; }
  /// Makes the target the current frame buffer, with a viewport of its size. Releasing the guard restores both.
  boost::shared_ptr<void> BindForDraw(Utility::Scoped<Rgl>& p_gl) const;
  /// A sample of all pixels, by its number.
  Samples Read(Utility::Scoped<Rgl>& p_gl, int p_sample) const;
  /// Writes a sample of all pixels into the target.
  void Write(Utility::Scoped<Rgl>& p_gl, int p_sample, const Samples& p_values, Written p_written) const;
  /// The mean of the samples of each pixel, the first row on top, format ARGB32.
  QImage Image(Utility::Scoped<Rgl>& p_gl) const;

private:
  void MakeSamples(Utility::Scoped<Rgl>& p_gl);

  Types::Size _size;
  int _samples;
  RenderTexture _plain; ///< the target without samples; one sample of it otherwise
  boost::shared_ptr<Ogl::Texture> _colors, _depths;
  boost::shared_ptr<Ogl::FrameBufferObject> _frame;
  std::optional<Ogl::ShaderProgram> _reading;
  Ogl::ShaderProgram _writing;
};

} // namespace Vek::Chart::Library
