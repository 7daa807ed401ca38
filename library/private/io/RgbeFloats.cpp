#include "library/private/io/RgbeFloats.h"

#include <cstdint>
#include <cstring>

// A test defines VEK_WITHOUT_AVX2 to build the code of other processors.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(VEK_WITHOUT_AVX2)
#define VEK_HAS_AVX2_CLONES
#define VEK_ALWAYS_INLINE inline __attribute__((always_inline))
#else
#define VEK_ALWAYS_INLINE inline
#endif

namespace Vek::Chart::Library::Private {

namespace {

/// 2^(e − 128) for an exponent byte e, composed from its bits; subnormal for e = 1, 0 for e = 0. Products with it are
/// exact, like products with a power computed by repeated squaring.
VEK_ALWAYS_INLINE float Power(unsigned char p_exponent) {
  const std::uint32_t exponent = p_exponent;
  const std::uint32_t bits = exponent > 1 ? (exponent - 1) << 23 : exponent << 22;
  float power;
  std::memcpy(&power, &bits, sizeof power);
  return power;
}

/// Has no branches and no tables, so that the compiler vectorises the loop.
template <std::size_t Stride>
VEK_ALWAYS_INLINE void Convert(const RgbeBytes& p_bytes, std::size_t p_count, float* __restrict p_pixels) {
  const unsigned char* const red = p_bytes.red;
  const unsigned char* const green = p_bytes.green;
  const unsigned char* const blue = p_bytes.blue;
  const unsigned char* const exponent = p_bytes.exponent;
  for (std::size_t x = 0; x < p_count; ++x) {
    const float power = Power(exponent[Stride * x]);
    p_pixels[3 * x] = static_cast<float>(red[Stride * x]) * 0.00390625f * power;
    p_pixels[3 * x + 1] = static_cast<float>(green[Stride * x]) * 0.00390625f * power;
    p_pixels[3 * x + 2] = static_cast<float>(blue[Stride * x]) * 0.00390625f * power;
  }
}

using Converter = void (*)(const RgbeBytes&, std::size_t, float*);

template <std::size_t Stride>
void ConvertAnywhere(const RgbeBytes& p_bytes, std::size_t p_count, float* p_pixels) {
  Convert<Stride>(p_bytes, p_count, p_pixels);
}

#ifdef VEK_HAS_AVX2_CLONES
template <std::size_t Stride>
__attribute__((target("avx2"))) void ConvertByAvx2(const RgbeBytes& p_bytes, std::size_t p_count, float* p_pixels) {
  Convert<Stride>(p_bytes, p_count, p_pixels);
}
#endif

/// The function compiled for the processor's instructions.
template <std::size_t Stride>
Converter BestConverter() {
#ifdef VEK_HAS_AVX2_CLONES
  if (__builtin_cpu_supports("avx2"))
    return &ConvertByAvx2<Stride>;
#endif
  return &ConvertAnywhere<Stride>;
}

} // namespace

void ConvertPlanes(const RgbeBytes& p_bytes, std::size_t p_count, float* p_pixels) {
  static const Converter Convert = BestConverter<1>();
  Convert(p_bytes, p_count, p_pixels);
}

void ConvertRecords(const unsigned char* p_records, std::size_t p_count, float* p_pixels) {
  static const Converter Convert = BestConverter<4>();
  Convert({p_records, p_records + 1, p_records + 2, p_records + 3}, p_count, p_pixels);
}

} // namespace Vek::Chart::Library::Private
