#pragma once

#include "library/HdrImage.h"
#include "library/private/io/ByteSource.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Decodes the scanlines of a Radiance picture one by one into floating-point pixels.
class RgbeScanline {
public:
  explicit RgbeScanline(std::size_t p_width);

  /// Decodes the next scanline to `p_pixels`, as many as the width; all of them are set. False when the data end before
  /// the scanline does; that is reported, and pixels that are not in the data are 0. Throws std::out_of_range when the
  /// data go on behind the scanline's end; its pixels are not to be used then.
  bool Decode(ByteSource& p_source, HdrImage::Rgb32F* p_pixels);

private:
  bool DecodeComponentRun(ByteSource& p_source, HdrImage::Rgb32F* p_pixels);
  bool DecodeComponent(ByteSource& p_source, unsigned char* p_component);
  bool DecodePixelRun(ByteSource& p_source, HdrImage::Rgb32F* p_pixels);
  void CheckRoom(std::size_t p_position, std::size_t p_count) const;

  std::size_t _width;
  std::vector<unsigned char> _planes; ///< the four components of a scanline, one behind the other, and room for a code
};

} // namespace Vek::Chart::Library::Private
