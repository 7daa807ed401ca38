#include "library/private/io/FloatBytes.h"

#include "library/private/Avx2.h"

namespace Vek::Chart::Library::Private {

namespace {

/// By comparisons and an int, since the compiler vectorises these.
VEK_INLINE void Convert(const float* p_numbers, std::size_t p_count, float p_scale, unsigned char* p_bytes) {
  for (std::size_t i = 0; i < p_count; ++i) {
    const double scaled = static_cast<double>(p_numbers[i] * p_scale) * 255.0;
    const double positive = 0.0 < scaled ? scaled : 0.0;
    p_bytes[i] = static_cast<unsigned char>(static_cast<int>(positive < 255.0 ? positive : 255.0));
  }
}

#if defined(VEK_AVX2)
VEK_AVX2 void ConvertWide(const float* p_numbers, std::size_t p_count, float p_scale, unsigned char* p_bytes) {
  Convert(p_numbers, p_count, p_scale, p_bytes);
}
#endif

} // namespace

void BytesFromFloats(const float* p_numbers, std::size_t p_count, float p_scale, unsigned char* p_bytes) {
#if defined(VEK_AVX2)
  if (__builtin_cpu_supports("avx2"))
    return ConvertWide(p_numbers, p_count, p_scale, p_bytes);
#endif
  Convert(p_numbers, p_count, p_scale, p_bytes);
}

} // namespace Vek::Chart::Library::Private
