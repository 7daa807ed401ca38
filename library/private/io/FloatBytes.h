#pragma once

#include <cstddef>

namespace Vek::Chart::Library::Private {

/// Numbers times a scale as bytes: 0 to 1 become 0 to 255, truncated; what is below or no number 0, what is above 255.
void BytesFromFloats(const float* p_numbers, std::size_t p_count, float p_scale, unsigned char* p_bytes);

} // namespace Vek::Chart::Library::Private
