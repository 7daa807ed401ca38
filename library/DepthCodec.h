#pragma once

#include "library/Export.h"

#include <boost/array.hpp>

#include <cstddef>
#include <string>

namespace Vek::Chart::Library {

/// Packs a depth in [0, 1) into the four 8-bit channels of a colour, and unpacks it.
///
/// Each channel holds the next 8 bits of the depth, as far as single precision has them. All arithmetic is in floats,
/// and channels are truncated, not rounded: a channel just below a whole number loses that step, so that 0.123456 is
/// decoded as about 0.1195. `PreciseGlsl` packs without that loss.
///
/// Only static members. Thread-safe.
///
/// \snippet PickingSnippets.cpp DepthCodec
/// \image html picking.jpg
/// \ingroup picking
struct VEK_LIBRARY_API DepthCodec {
  /// The packing that a render callback writes.
  enum Encoding : int {
    EncodingRgba8 = 0 ///< `Encode`, as red, green, blue, alpha
  };

  /// The four bytes, red first. Whole numbers, 1 included, give four zeros, which `Decode` reads as an empty pixel.
  /// Depths outside [0, 1) wrap; negative ones wrap upwards. Infinities and NaN give zeros.
  static boost::array<unsigned char, 4> Encode(float p_depth);

  /// The depth; `Ogl::HitRecord::DepthFarthest` (1) for four zeros.
  static float Decode(const boost::array<unsigned char, 4>& p_bytes);
  /// The depths of `p_count` pixels of four bytes, each as above. `p_depths` may be the memory of the bytes, but must
  /// not overlap it otherwise.
  static void Decode(const unsigned char* p_bytes, std::size_t p_count, float* p_depths);

  /// `Encode` in GLSL: the source of a function for fragment shaders of any version (GLSL 1.10 and newer, ES with
  /// high-precision floats):
  ///
  ///     vec4 EncodeDepth(float depth);
  ///
  /// Its result is the colour to write, unblended, into an RGBA target with 8 bits per channel and without sRGB
  /// conversion:
  ///
  ///     gl_FragColor = EncodeDepth(gl_FragCoord.z);
  ///
  /// The same steps with the same constants. Devices may round products differently, or fuse a product with a
  /// subtraction; channels next to a whole number then differ.
  static std::string Glsl();

  /// A function of the same name for picking: `Decode` of its result is within 2^-23 of the depth, and below 1 for
  /// every depth, where the truncation of `Encode` moves a point by up to 1/255 of the depth range.
  ///
  /// Depths from 1 - 2^-24 up are decoded as 1 - 2^-24, so a surface on the far plane is a hit. A depth of 0 still
  /// packs to four zeros, an empty pixel.
  static std::string PreciseGlsl();
};

} // namespace Vek::Chart::Library
