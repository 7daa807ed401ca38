#pragma once

#include "library/private/color/ValueKeys.h"
#include "platform/utility/Threads.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>
#include <variant>
#include <vector>

namespace Vek::Chart::Library::Private {

/// Maps values to the colours of classes between ascending thresholds, quickly and exactly. The value's key (see
/// ValueKeys.h) selects a bucket, which holds one threshold at most; one comparison with that threshold decides. Where
/// thresholds lie too close together or too unevenly for that, a binary search decides.
template <class T>
class ValueBuckets {
public:
  /// `p_colors`: for NaN, for values below the first threshold, then for the values from each threshold on.
  /// `p_byMagnitude`: the thresholds are positive and evenly spaced in their logarithms.
  ValueBuckets(std::vector<T> p_thresholds, std::vector<std::uint32_t> p_colors, bool p_byMagnitude)
      : _thresholds(std::move(p_thresholds))
      , _colors(std::move(p_colors)) {
    if (!_thresholds.empty() && !(p_byMagnitude ? FillByBits() : FillBySteps()))
      _limits.clear();
  }

  std::uint32_t Color(T p_value) const {
    const auto threshold = std::upper_bound(_thresholds.begin(), _thresholds.end(), p_value);
    return _colors[p_value == p_value ? 1 + static_cast<std::size_t>(threshold - _thresholds.begin()) : 0];
  }

  /// Writes one colour of four bytes for each value.
  void Map(const T* p_values, std::size_t p_count, unsigned char* p_rgba, Utility::Threads p_threads) const {
    constexpr std::size_t BlockSize = std::size_t(1) << 16;
    const bool pastCaches = p_count > CachedBytes / 4;
    if (p_threads.Count() == 1)
      return MapBlock(p_values, p_count, p_rgba, pastCaches);
    Utility::RunRanges(p_threads, p_count, BlockSize, [&](std::size_t p_first, std::size_t p_last) {
      MapBlock(p_values + p_first, p_last - p_first, p_rgba + 4 * p_first, pastCaches);
    });
  }

private:
  using Limits = std::numeric_limits<T>;

  /// More buckets than this would not stay in the near caches.
  static constexpr std::size_t MostBuckets = std::size_t(1) << 15;
  /// Colours of more bytes than this are written past the caches.
  static constexpr std::size_t CachedBytes = std::size_t(1) << 22;
  /// Values are prefetched that many bytes ahead.
  static constexpr std::size_t FetchedAhead = 4096;

  /// Buckets of equal width, two or more for each class.
  bool FillBySteps() {
    const T low = _thresholds.front();
    for (std::size_t steps = 2 * _thresholds.size(); steps <= MostBuckets; steps *= 2) {
      const T scale = static_cast<T>(steps) / (_thresholds.back() - low);
      if (!(scale > 0 && scale < Limits::infinity()))
        return false;
      if (Fill(StepKey<T>{low, scale, static_cast<T>(steps + 1)}, steps + 1))
        return true;
    }
    return false;
  }

  /// Buckets of 2^shift neighbouring numbers, the widest that separate the thresholds.
  bool FillByBits() {
    using Key = BitKey<T>;
    const auto low = Key::ToBits(_thresholds.front()), high = Key::ToBits(_thresholds.back());
    const auto end = Key::ToBits(Limits::infinity());
    int shift = 0;
    while (static_cast<std::size_t>((high - low) >> shift) > _thresholds.size())
      ++shift;
    for (; shift >= 0; --shift) {
      const auto width = static_cast<typename Key::Bits>(1) << shift;
      const auto base = std::max<typename Key::Bits>(low - width, 0);
      const auto last = std::min(((high - base) >> shift) + 1, (end - base) >> shift);
      if (static_cast<std::size_t>(last) > MostBuckets)
        return false;
      const Key key{Key::FromBits(base), Key::FromBits(base + last * width), base, shift};
      if (Fill(key, static_cast<std::size_t>(last)))
        return true;
    }
    return false;
  }

  /// False if a bucket would hold two different thresholds, or bucket 0, which NaN shares, any.
  template <class Key>
  bool Fill(const Key& p_key, std::size_t p_last) {
    _limits.assign(p_last + 1, Limits::quiet_NaN());
    _colorsBelow.assign(p_last + 2, 0);
    std::size_t next = 0;
    for (std::size_t k = 0; k <= p_last; ++k) {
      _colorsBelow[k] = _colors[1 + next];
      for (; next < _thresholds.size() && p_key(_thresholds[next]) == static_cast<std::int32_t>(k); ++next) {
        if (k == 0 || (_limits[k] == _limits[k] && _limits[k] != _thresholds[next]))
          return false;
        _limits[k] = _thresholds[next];
      }
    }
    _colorsBelow.back() = _colors[1 + next];
    _limits.front() = -Limits::infinity(); // every value but NaN reaches it
    _colorsBelow.front() = _colors[0];
    _key = p_key;
    return next == _thresholds.size();
  }

  void MapBlock(const T* p_values, std::size_t p_count, unsigned char* p_rgba, bool p_pastCaches) const {
    if (_limits.empty())
      return MapOneByOne(p_values, p_count, p_rgba, [this](T p_value) { return Color(p_value); });
    std::visit([&](const auto& p_key) { MapByKey(p_key, p_values, p_count, p_rgba, p_pastCaches); }, _key);
  }

  /// Takes the key by value: the compiler then need not read it again after each write.
  template <class Key>
  void MapByKey(const Key p_key, const T* p_values, std::size_t p_count, unsigned char* p_rgba,
                bool p_pastCaches) const {
    const T* const limits = _limits.data();
    const std::uint32_t* const colorsBelow = _colorsBelow.data();
    const auto color = [limits, colorsBelow](std::uint32_t p_bucket, T p_value) {
      return colorsBelow[p_bucket + (p_value >= limits[p_bucket] ? 1 : 0)];
    };
    const auto one = [&](T p_value) { return color(static_cast<std::uint32_t>(p_key(p_value)), p_value); };
    std::size_t done = 0;
#if defined(__SSE2__)
    constexpr std::size_t Line = 64;
    const auto four = [&](const T* p_four) {
      const __m128i keys = Keys(p_key, p_four);
      const auto a = static_cast<std::uint64_t>(_mm_cvtsi128_si64(keys));
      const auto b = static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(keys, keys)));
      const auto of = [&](std::uint64_t p_bucket, T p_value) {
        return static_cast<int>(color(static_cast<std::uint32_t>(p_bucket), p_value));
      };
      return _mm_setr_epi32(of(a, p_four[0]), of(a >> 32, p_four[1]), of(b, p_four[2]), of(b >> 32, p_four[3]));
    };
    const auto mapSixteens = [&](auto p_store) {
      for (; done + 16 <= p_count; done += 16) {
        for (std::size_t i = 0; i < 16; i += Line / sizeof(T))
          _mm_prefetch(
              reinterpret_cast<const char*>(p_values + std::min(done + i + FetchedAhead / sizeof(T), p_count - 1)),
              _MM_HINT_T0);
        // All four before any is stored: a cache line that is written at once is not read first.
        const __m128i colors[] = {four(p_values + done), four(p_values + done + 4), four(p_values + done + 8),
                                  four(p_values + done + 12)};
        for (std::size_t i = 0; i < 4; ++i)
          p_store(reinterpret_cast<__m128i*>(p_rgba + 4 * done) + i, colors[i]);
      }
    };
    const std::size_t misaligned = reinterpret_cast<std::uintptr_t>(p_rgba) % Line;
    if (p_pastCaches && misaligned % 4 == 0) {
      done = std::min((Line - misaligned) % Line / 4, p_count);
      MapOneByOne(p_values, done, p_rgba, one);
      mapSixteens([](__m128i* p_target, __m128i p_colors) { _mm_stream_si128(p_target, p_colors); });
      _mm_sfence(); // orders the streamed writes before all later ones
    } else {
      mapSixteens([](__m128i* p_target, __m128i p_colors) { _mm_storeu_si128(p_target, p_colors); });
    }
#endif
    MapOneByOne(p_values + done, p_count - done, p_rgba + 4 * done, one);
  }

  template <class ColorOf>
  static void MapOneByOne(const T* p_values, std::size_t p_count, unsigned char* p_rgba, ColorOf p_colorOf) {
    for (std::size_t i = 0; i < p_count; ++i) {
      const std::uint32_t color = p_colorOf(p_values[i]);
      std::memcpy(p_rgba + 4 * i, &color, sizeof color);
    }
  }

  std::vector<T> _thresholds;
  std::vector<std::uint32_t> _colors;
  std::vector<T> _limits; ///< by bucket: its threshold, NaN where there is none. Empty: the thresholds are searched
  std::vector<std::uint32_t> _colorsBelow; ///< by bucket: of values below its threshold; other values have the next one
  std::variant<StepKey<T>, BitKey<T>> _key;
};

} // namespace Vek::Chart::Library::Private
