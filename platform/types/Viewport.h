#pragma once

namespace Vek::Chart::Types {

/// A rectangle in window pixels; the origin is the lower left corner of the window. The parameter distinguishes
/// kinds of viewports; the library uses kind 0 only.
template <int Kind>
struct Viewport {
  float x = 0;      ///< left edge
  float y = 0;      ///< lower edge
  float width = 0;  ///< to the right
  float height = 0; ///< upwards

  constexpr Viewport() = default; ///< empty, at the origin
  /// From its numbers, unchecked.
  constexpr Viewport(float p_x, float p_y, float p_width, float p_height)
      : x(p_x)
      , y(p_y)
      , width(p_width)
      , height(p_height) {}
};

///@{
/// Compares all four numbers.
template <int Kind>
constexpr bool operator==(const Viewport<Kind>& p_a, const Viewport<Kind>& p_b) {
  return p_a.x == p_b.x && p_a.y == p_b.y && p_a.width == p_b.width && p_a.height == p_b.height;
}
template <int Kind>
constexpr bool operator!=(const Viewport<Kind>& p_a, const Viewport<Kind>& p_b) {
  return !(p_a == p_b);
}
///@}

} // namespace Vek::Chart::Types
