#pragma once

#include "algorithms/Array.h"
#include "library/ColorMap.h"
#include "library/Export.h"

#include <QColor>

#include <cstddef>
#include <memory>
#include <vector>

namespace Vek::Chart::Library {

/// Turns values into colours, one or ten million in one call: cuts a range into classes, evenly, evenly in the
/// logarithm or at given bounds, each with a colour, and has colours for values below and above it and for NaN.
///
/// The rule: n colours make n classes between n + 1 bounds. Class i has the values v with Bounds()[i] <= v and
/// v < Bounds()[i + 1]; the last class has its upper bound, too. Values are compared as the exact numbers that they
/// are, float or double; what is on a bound is never left to rounding. Bound i lies at lower + (upper - lower) i / n
/// or, on a logarithmic scale, at lower (upper / lower)^(i / n), rounded to double; the outer bounds are the range as
/// given. Smaller values, among them -infinity and, on a logarithmic scale, zero and everything negative, have the
/// colour `below`; larger ones and infinity have `above`; NaN has `nan`.
///
/// With a `ColorMap` the classes are its texels: a value gets the texel that the bound texture shows for the coordinate
/// (v - lower) / (upper - lower). `ColorMap::Color(double)` stretches its Size() - 1 leftmost texels over [0, 1), and
/// may name the texel left of that one.
///
/// A scale never changes once it is made; copies share it, and several threads may use it at once.
///
/// A range or list that makes no classes is reported, and all values have the colour `nan`: "!p_colors.empty()",
/// "p_lower < p_upper", "p_lower > 0" on a logarithmic scale,
/// "std::isfinite(p_lower) && std::isfinite(p_upper)".
///
/// \snippet ColorSnippets.cpp ColorScale
/// \image html colors.jpg
/// \ingroup colours
class VEK_LIBRARY_API ColorScale {
public:
  /// What is even about the classes. Any number is allowed; all but 1 are linear.
  enum Spacing : int {
    Linear = 0,      ///< in the values
    Logarithmic = 1, ///< in their logarithms; the range is above 0
  };

  /// The colours of values without a class.
  struct Outside {
    QColor below; ///< invalid (QColor()): that of the first class
    QColor above; ///< invalid: that of the last class
    QColor nan;   ///< invalid: transparent, (0, 0, 0, 0)
  };

  /// One class for each colour, all of the same width.
  ColorScale(const std::vector<QColor>& p_colors, double p_lower, double p_upper, Spacing p_spacing = Linear,
             const Outside& p_outside = Outside());
  /// One class for each texel of the map.
  ColorScale(const ColorMap& p_map, double p_lower, double p_upper, Spacing p_spacing = Linear,
             const Outside& p_outside = Outside());
  /// One class between each two neighbours of `p_bounds`, which are finite, in ascending order, and one more than the
  /// colours: "p_bounds.size() == p_colors.size() + 1", "p_bounds ascend". Equal bounds make an empty class.
  ColorScale(const std::vector<QColor>& p_colors, const std::vector<double>& p_bounds,
             const Outside& p_outside = Outside());
  ~ColorScale();
  /// Shares the classes.
  ColorScale(const ColorScale&) = default;
  /// Shares the classes.
  ColorScale& operator=(const ColorScale&) = default;

  /// Writes the colours of `p_count` values, four bytes each: red, green, blue, alpha. The caller's buffer holds
  /// 4 * `p_count` bytes, need not be aligned, and is not the memory of the values. Large arrays are written past the
  /// caches.
  void Map(const float* p_values, std::size_t p_count, unsigned char* p_rgba) const;
  /// The same for doubles.
  void Map(const double* p_values, std::size_t p_count, unsigned char* p_rgba) const;
  /// The same for a view of floats or doubles.
  template <class T>
  void Map(const DataInterface::Array<T, 0>& p_values, unsigned char* p_rgba) const {
    Map(p_values.begin(), static_cast<std::size_t>(p_values.size()), p_rgba);
  }

  /// The colour of one value, by the same rule.
  QColor Color(double p_value) const;

  /// The bounds of all classes, ascending, for legends: one more than there are classes; none if there is no class.
  const std::vector<double>& Bounds() const;

private:
  struct Tables;
  std::shared_ptr<const Tables> _tables;
};

} // namespace Vek::Chart::Library
