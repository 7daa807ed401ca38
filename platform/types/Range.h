#pragma once

#include <limits>

namespace Vek::Chart::Types {

/// The smallest and the largest of the values added. A new range is empty: its minimum is the largest value of the type
/// (infinity where it has one), its maximum the smallest.
template <class T>
struct MinMax_Base {
  /// The limits of the type.
  using Limits = std::numeric_limits<T>;
  T min = Limits::has_infinity ? Limits::infinity() : Limits::max();     ///< the smallest value added
  T max = Limits::has_infinity ? -Limits::infinity() : Limits::lowest(); ///< the largest value added

  constexpr MinMax_Base() = default; ///< empty
  /// From `p_min` to `p_max`, unchecked.
  constexpr MinMax_Base(T p_min, T p_max)
      : min(p_min)
      , max(p_max) {}

  /// Whether the range is empty: its minimum is above its maximum, or one of them is NaN.
  constexpr bool Empty() const { return !(min <= max); }
  /// Extends the range to the value; NaN changes nothing.
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
  T first{}; ///< the first index
  T last{};  ///< the last index, included

  constexpr Span() = default; ///< from 0 to 0
  /// From `p_first` to `p_last`, both included.
  constexpr Span(T p_first, T p_last)
      : first(p_first)
      , last(p_last) {}
};
/// Compares both ends.
template <class T>
constexpr bool operator==(const Span<T>& p_a, const Span<T>& p_b) {
  return p_a.first == p_b.first && p_a.last == p_b.last;
}

} // namespace Vek::Chart::Types

namespace Vek::Chart {
using Types::Span;
}
