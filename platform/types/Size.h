#pragma once

namespace Vek::Chart::Types {

/// A size in pixels.
struct Size {
  int width = 0;  ///< pixels a row
  int height = 0; ///< rows

  constexpr Size() = default; ///< no pixels
  /// From its extents, unchecked.
  constexpr Size(int p_width, int p_height)
      : width(p_width)
      , height(p_height) {}
};
///@{
/// Compares both numbers.
constexpr bool operator==(const Size& p_a, const Size& p_b) {
  return p_a.width == p_b.width && p_a.height == p_b.height;
}
constexpr bool operator!=(const Size& p_a, const Size& p_b) {
  return !(p_a == p_b);
}
///@}

/// A position in pixels, from the lower left corner.
struct Pos {
  int x = 0; ///< to the right
  int y = 0; ///< upwards

  constexpr Pos() = default; ///< the lower left corner
  /// At a column and a row.
  constexpr Pos(int p_x, int p_y)
      : x(p_x)
      , y(p_y) {}
};
///@{
/// Compares both numbers.
constexpr bool operator==(const Pos& p_a, const Pos& p_b) {
  return p_a.x == p_b.x && p_a.y == p_b.y;
}
constexpr bool operator!=(const Pos& p_a, const Pos& p_b) {
  return !(p_a == p_b);
}
///@}

} // namespace Vek::Chart::Types
