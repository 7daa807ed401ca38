#pragma once

#include "library/Export.h"

#include <boost/array.hpp>

#include <string>

namespace Vek::Chart::Library {

/// Packs a depth in [0, 1) into the four 8-bit channels of a colour, and unpacks it again.
///
/// Each channel holds 8 further bits of the depth, as far as single precision has them: all arithmetic is in floats,
/// and what is left of a channel is cut off, not rounded. Where a channel lands just below a whole number it loses that
/// step, so that 0.123456 comes back as about 0.1195; `PreciseGlsl` packs without that loss. Only static members; any
/// thread may call them.
///
/// \snippet PickingSnippets.cpp DepthCodec
/// \image html picking.jpg
/// \ingroup picking
struct VEK_LIBRARY_API DepthCodec {
  /// How a render callback is to write depths.
  enum Encoding : int {
    EncodingRgba8 = 0 ///< the packing of `Encode` as red, green, blue, alpha
  };

  /// The four bytes, red first. Whole numbers, 1 among them, give four zeros, which `Decode` takes for an empty pixel;
  /// depths outside [0, 1) wrap, negative ones upwards. What is infinite or not a number gives zeros.
  static boost::array<unsigned char, 4> Encode(float p_depth);

  /// The depth; `Ogl::HitRecord::DepthFarthest` for four zeros.
  static float Decode(const boost::array<unsigned char, 4>& p_bytes);

  /// `Encode` as GLSL, the text of a function for a fragment shader of any version (GLSL 1.10 and newer, ES with high
  /// precision floats):
  ///
  ///     vec4 EncodeDepth(float depth);
  ///
  /// Its result is the colour to write, unblended, into an RGBA target with 8 bits a channel and no sRGB conversion:
  ///
  ///     gl_FragColor = EncodeDepth(gl_FragCoord.z);
  ///
  /// The same steps with the same constants. A device may round its products differently, and may fuse a product with
  /// a subtraction; channels then differ where one lands next to a whole number.
  static std::string Glsl();

  /// A function of the same name that loses next to nothing: what is left of a channel goes on to the next one before
  /// it is cut off, and the last is rounded. `Decode` is within 2^-23 of the depth. For picking, where `Encode`'s lost
  /// steps would move a point by up to 1/255 of the depth range. A depth of 1 is kept, one of 0 is still "nothing".
  static std::string PreciseGlsl();
};

} // namespace Vek::Chart::Library
