#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__linux__)
#include <unistd.h>
#endif

namespace Vek::Chart::Library::Private {

/// The size of the processor's last cache; 1 MiB where that is not known. A test defines VEK_CACHE_BYTES.
inline std::size_t CacheBytes() {
#if defined(VEK_CACHE_BYTES)
  return VEK_CACHE_BYTES;
#else
  constexpr std::size_t Least = std::size_t{1} << 20;
#if defined(_SC_LEVEL3_CACHE_SIZE)
  static const long Known = std::max(sysconf(_SC_LEVEL2_CACHE_SIZE), sysconf(_SC_LEVEL3_CACHE_SIZE));
  return Known > 0 ? std::max(Least, static_cast<std::size_t>(Known)) : Least;
#else
  return Least;
#endif
#endif
}

/// Whether arrays that are computed on that many threads are better written past the caches: those that stay in the
/// last cache until they are read are not. One thread writes no more than a processor with a large cache evicts beside
/// it, where the detour past it costs 1.2 to 1.4 times the time (measured with 32 and 105 MiB); several threads share
/// the rate of the memory.
inline bool IsWorthStreaming(std::size_t p_bytes, int p_threads) {
  constexpr std::size_t LargeCache = std::size_t{16} << 20;
  return p_bytes > CacheBytes() && (p_threads > 1 || CacheBytes() < LargeCache);
}

/// Fills an array from front to back, either directly or through a small buffer, which is written past the caches by
/// non-temporal stores of whole cache lines.
template <class T>
class StreamedArray {
public:
  /// The largest number of elements of one `Take`.
  static constexpr std::size_t Capacity = 8192 / sizeof(T);

  /// `p_pastCaches`: write past the caches.
  StreamedArray(T* p_target, bool p_pastCaches)
      : _target(p_target)
      , _pastCaches(p_pastCaches) {}
  ~StreamedArray() {
    if (!_pastCaches)
      return;
    Flush(_fill);
#if defined(__SSE2__)
    _mm_sfence(); // orders the non-temporal stores before later ones
#endif
  }
  StreamedArray(const StreamedArray&) = delete;
  StreamedArray& operator=(const StreamedArray&) = delete;

  /// Memory for the next `p_count` elements, which must be written before the next call.
  T* Take(std::size_t p_count) {
    if (!_pastCaches)
      return std::exchange(_target, _target + p_count);
    if (_fill + p_count > Capacity)
      FlushLines();
    T* const room = _buffer + _fill;
    _fill += p_count;
    return room;
  }

private:
  static constexpr std::size_t Line = 64;

  /// Writes everything up to the last cache line boundary of the target.
  void FlushLines() {
    const std::size_t pastLine = reinterpret_cast<std::uintptr_t>(_target + _fill) % Line / sizeof(T);
    Flush(_fill - std::min(pastLine, _fill));
  }
  void Flush(std::size_t p_count) {
    Copy(p_count);
    _target += p_count;
    _fill -= p_count;
    std::memmove(_buffer, _buffer + p_count, _fill * sizeof(T));
  }
  void Copy(std::size_t p_count) {
    std::size_t done = 0;
#if defined(__SSE2__)
    const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(_target) % Line;
    const std::size_t head = misaligned == 0 ? 0 : std::min((Line - misaligned) / sizeof(T), p_count);
    std::memcpy(_target, _buffer, head * sizeof(T));
    constexpr std::size_t Step = sizeof(__m128i) / sizeof(T);
    for (done = head; done + Step <= p_count; done += Step)
      _mm_stream_si128(reinterpret_cast<__m128i*>(_target + done),
                       _mm_loadu_si128(reinterpret_cast<const __m128i*>(_buffer + done)));
#endif
    std::memcpy(_target + done, _buffer + done, (p_count - done) * sizeof(T));
  }

  T* _target;
  bool _pastCaches;
  std::size_t _fill = 0;
  alignas(Line) T _buffer[Capacity + Line / sizeof(T)];
};

} // namespace Vek::Chart::Library::Private
