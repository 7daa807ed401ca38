#pragma once

#include <limits>

namespace Vek::Chart::Types {

/// The smallest and the largest of the values added; a new one is empty: its minimum is the largest value of the type
/// (infinity where there is one), its maximum the smallest.
template <class T>
struct MinMax_Base {
  using Limits = std::numeric_limits<T>;
  T min = Limits::has_infinity ? Limits::infinity() : Limits::max();
  T max = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();

  constexpr MinMax_Base() = default;
  constexpr MinMax_Base(T p_min, T p_max)
      : min(p_min)
      , max(p_max) {}

  constexpr bool Empty() const { return !(min <= max); }
  /// Grows the range to hold the value; NaN changes nothing.
  constexpr MinMax_Base& operator+=(T p_value) {
    if (p_value < min)
      min = p_value;
    if (p_value > max)
      max = p_value;
    return *this;
  }
};

/// An inclusive range of indices.
template <class T>
struct Span {
  T first{};
  T last{};

  constexpr Span() = default;
  constexpr Span(T p_first, T p_last)
      : first(p_first)
      , last(p_last) {}
};
template <class T>
constexpr bool operator==(const Span<T>& p_a, const Span<T>& p_b) {
  return p_a.first == p_b.first && p_a.last == p_b.last;
}

} // namespace Vek::Chart::Types

namespace Vek::Chart {
using Types::Span;
}
