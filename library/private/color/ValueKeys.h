#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Vek::Chart::Library::Private {

/// A value's number of steps above `low`, plus 1: 1 at `low`, at most `last`, 0 far enough below it and for NaN. The
/// operations round, but keep the order: a larger value never has a smaller number.
template <class T>
struct StepKey {
  T low;
  T scale; ///< steps per unit
  T last;

  std::int32_t operator()(T p_value) const {
    const T step = (p_value - low) * scale + 1;
    const T floor = step > 0 ? step : 0; // false for NaN
    return static_cast<std::int32_t>(floor < last ? floor : last);
  }
};

/// A number of positive values by their approximate logarithm: the bits of a positive floating-point number, read as an
/// integer, grow by equal amounts from one power of two to the next, and in proportion to the value in between.
template <class T>
struct BitKey {
  using Bits = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;
  T floor; ///< this, everything below and NaN have the number 0
  T ceiling;
  Bits base; ///< the bits of `floor`
  int shift;

  std::int32_t operator()(T p_value) const {
    const T above = p_value > floor ? p_value : floor;
    return static_cast<std::int32_t>((ToBits(above < ceiling ? above : ceiling) - base) >> shift);
  }

  static Bits ToBits(T p_value) {
    Bits bits;
    std::memcpy(&bits, &p_value, sizeof bits);
    return bits;
  }
  static T FromBits(Bits p_bits) {
    T value;
    std::memcpy(&value, &p_bits, sizeof value);
    return value;
  }
};

#if defined(__SSE2__)

// The numbers of four values at once, bit for bit those of the calls above.

inline __m128i Keys(const StepKey<float>& p_key, const float* p_values) {
  const __m128 distance = _mm_sub_ps(_mm_loadu_ps(p_values), _mm_set1_ps(p_key.low));
  const __m128 step = _mm_add_ps(_mm_mul_ps(distance, _mm_set1_ps(p_key.scale)), _mm_set1_ps(1));
  return _mm_cvttps_epi32(_mm_min_ps(_mm_max_ps(step, _mm_setzero_ps()), _mm_set1_ps(p_key.last)));
}

inline __m128i Keys(const StepKey<double>& p_key, const double* p_values) {
  const auto two = [&](const double* p_two) {
    const __m128d distance = _mm_sub_pd(_mm_loadu_pd(p_two), _mm_set1_pd(p_key.low));
    const __m128d step = _mm_add_pd(_mm_mul_pd(distance, _mm_set1_pd(p_key.scale)), _mm_set1_pd(1));
    return _mm_cvttpd_epi32(_mm_min_pd(_mm_max_pd(step, _mm_setzero_pd()), _mm_set1_pd(p_key.last)));
  };
  return _mm_unpacklo_epi64(two(p_values), two(p_values + 2));
}

inline __m128i Keys(const BitKey<float>& p_key, const float* p_values) {
  const __m128 above = _mm_max_ps(_mm_loadu_ps(p_values), _mm_set1_ps(p_key.floor));
  const __m128i bits = _mm_castps_si128(_mm_min_ps(above, _mm_set1_ps(p_key.ceiling)));
  return _mm_srl_epi32(_mm_sub_epi32(bits, _mm_set1_epi32(p_key.base)), _mm_cvtsi32_si128(p_key.shift));
}

inline __m128i Keys(const BitKey<double>& p_key, const double* p_values) {
  const auto two = [&](const double* p_two) {
    const __m128d above = _mm_max_pd(_mm_loadu_pd(p_two), _mm_set1_pd(p_key.floor));
    const __m128i bits = _mm_castpd_si128(_mm_min_pd(above, _mm_set1_pd(p_key.ceiling)));
    return _mm_castsi128_ps(
        _mm_srl_epi64(_mm_sub_epi64(bits, _mm_set1_epi64x(p_key.base)), _mm_cvtsi32_si128(p_key.shift)));
  };
  return _mm_castps_si128(_mm_shuffle_ps(two(p_values), two(p_values + 2), _MM_SHUFFLE(2, 0, 2, 0)));
}

#endif

} // namespace Vek::Chart::Library::Private
