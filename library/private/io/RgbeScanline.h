#pragma once

#include "library/private/io/ByteSource.h"
#include "platform/debug/Logger.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Decodes the scanlines of a Radiance image one by one into pixels of three floats.
class RgbeScanline {
public:
  /// Reports and exceptions carry `p_where`; its index is the scanline, from 0. The path must outlive the decoder.
  RgbeScanline(std::size_t p_width, const vekdebug::detail& p_where);

  /// Decodes the next scanline and sets all its pixels. False where the data end too early: reports it, and missing
  /// pixels are 0. Throws std::out_of_range where the data exceed the scanline, whose pixels are undefined then.
  bool Decode(ByteSource& p_source, float* p_pixels);

private:
  bool DecodeComponentRun(ByteSource& p_source, float* p_pixels);
  bool DecodeComponent(ByteSource& p_source, unsigned char* p_component);
  bool DecodePixelRun(ByteSource& p_source, float* p_pixels);
  std::size_t TakeRunCount(ByteSource& p_source) const;
  void CheckRoom(std::size_t p_position, std::size_t p_count) const;

  std::size_t _width;
  vekdebug::detail _where;
  std::vector<unsigned char> _planes; ///< the four components of a scanline in a row, and room for one code
};

} // namespace Vek::Chart::Library::Private
