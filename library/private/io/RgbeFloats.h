#pragma once

#include "library/HdrImage.h"

#include <cstddef>

namespace Vek::Chart::Library::Private {

// From the bytes of Radiance pixels to floats: mantissa / 256 × 2^(exponent − 128), and 0 for an exponent of 0.

/// Where the bytes of the first pixel are; those of its neighbours follow.
struct RgbeBytes {
  const unsigned char* red;
  const unsigned char* green;
  const unsigned char* blue;
  const unsigned char* exponent;
};

/// Pixels whose components are apart: the neighbour's byte is the next one.
void ConvertPlanes(const RgbeBytes& p_bytes, std::size_t p_count, HdrImage::Rgb32F* p_pixels);
/// Pixels as records of four bytes each.
void ConvertRecords(const unsigned char* p_records, std::size_t p_count, HdrImage::Rgb32F* p_pixels);

} // namespace Vek::Chart::Library::Private
