#pragma once

#include <cstddef>

namespace Vek::Chart::Library::Private {

// Radiance pixels from bytes to floats, three a pixel: mantissa / 256 × 2^(exponent − 128), and 0 for an exponent of 0.
// AVX2 is used where the processor has it; results are the same.

/// The bytes of the first pixel.
struct RgbeBytes {
  const unsigned char* red;
  const unsigned char* green;
  const unsigned char* blue;
  const unsigned char* exponent;
};

/// Converts pixels in separated components: the next pixel's byte is the next one.
void ConvertPlanes(const RgbeBytes& p_bytes, std::size_t p_count, float* p_pixels);
/// Converts pixels in records of four bytes.
void ConvertRecords(const unsigned char* p_records, std::size_t p_count, float* p_pixels);

} // namespace Vek::Chart::Library::Private
