#pragma once

#include "algorithms/Array.h"
#include "library/ColorMap.h"
#include "library/Export.h"
#include "platform/utility/Threads.h"

#include <QColor>

#include <cstddef>
#include <memory>
#include <vector>

namespace Vek::Chart::Library {

/// Maps values to colours, one value or an array in one call. A range is divided into classes, one for each colour: of
/// equal width, of equal width in the logarithm, or by given bounds. Values below and above the range and NaN have
/// colours of their own.
///
/// n colours make n classes between n + 1 bounds. Class i has the values v with Bounds()[i] <= v < Bounds()[i + 1]; the
/// last class includes its upper bound. Values are compared exactly, floats and doubles alike: rounding never moves a
/// value over a bound. Bound i lies at lower + (upper - lower) i / n or, on a logarithmic scale, at
/// lower (upper / lower)^(i / n), rounded to double; the outer bounds are the range as given. Smaller values, among
/// them -infinity and, on a logarithmic scale, zero and everything negative, have the colour `below`; larger ones and
/// infinity have `above`; NaN has `nan`.
///
/// With a `ColorMap` the classes are its texels: a value gets the texel that the bound texture shows at the coordinate
/// (v - lower) / (upper - lower). `ColorMap::Color(double)` may yield the texel left of that one, since it divides
/// [0, 1) into Size() - 1 texels.
///
/// A scale never changes. Copies share its tables. Thread-safe.
///
/// Errors: without valid classes all values have the colour `nan`. Reported as "!p_colors.empty()",
/// "std::isfinite(p_lower) && std::isfinite(p_upper)", "p_lower < p_upper" or, on a logarithmic scale, "p_lower > 0".
///
/// \snippet ColorSnippets.cpp ColorScale
/// \image html colors.jpg
/// \ingroup colours
class VEK_LIBRARY_API ColorScale {
public:
  /// Spacing of the class bounds. Numbers that are not listed count as Linear.
  enum Spacing : int {
    Linear = 0,      ///< classes of equal width
    Logarithmic = 1, ///< of equal width in the logarithm; the range must be above 0
  };

  /// The colours of values outside of all classes. QColor() stands for the default.
  struct Outside {
    QColor below; ///< below the range; by default the colour of the first class
    QColor above; ///< above the range; by default the colour of the last class
    QColor nan;   ///< of NaN; by default transparent, (0, 0, 0, 0)
  };

  /// One class for each colour. The range is finite and ascending.
  ColorScale(const std::vector<QColor>& p_colors, double p_lower, double p_upper, Spacing p_spacing = Linear,
             const Outside& p_outside = Outside());
  /// One class for each texel of the map.
  ColorScale(const ColorMap& p_map, double p_lower, double p_upper, Spacing p_spacing = Linear,
             const Outside& p_outside = Outside());
  /// One class between each two neighbours of `p_bounds`, which are finite, ascending, and one more than the colours;
  /// reported otherwise as "p_bounds.size() == p_colors.size() + 1" or "p_bounds[i] <= p_bounds[i + 1]". Equal bounds
  /// make an empty class.
  ColorScale(const std::vector<QColor>& p_colors, const std::vector<double>& p_bounds,
             const Outside& p_outside = Outside());
  ~ColorScale();
  /// Shares the tables.
  ColorScale(const ColorScale&) = default;
  /// Shares the tables.
  ColorScale& operator=(const ColorScale&) = default;

  /// Writes the colours of `p_count` values, four bytes each: red, green, blue, alpha. `p_rgba` holds 4 × `p_count`
  /// bytes, need not be aligned, and must not overlap the values. Large arrays are written past the caches. A null
  /// pointer is reported, and nothing is written; a count of 0 is valid with null pointers.
  void Map(const float* p_values, std::size_t p_count, unsigned char* p_rgba) const;
  /// Maps doubles.
  void Map(const double* p_values, std::size_t p_count, unsigned char* p_rgba) const;
  /// Maps a view of floats or doubles.
  template <class T>
  void Map(const DataInterface::Array<T, 0>& p_values, unsigned char* p_rgba) const {
    Map(p_values.begin(), static_cast<std::size_t>(p_values.size()), p_rgba);
  }
  ///@{
  /// As above, on several threads. Fewer than 100,000 values start none.
  void Map(const float* p_values, std::size_t p_count, unsigned char* p_rgba, Utility::Threads p_threads) const;
  void Map(const double* p_values, std::size_t p_count, unsigned char* p_rgba, Utility::Threads p_threads) const;
  template <class T>
  void Map(const DataInterface::Array<T, 0>& p_values, unsigned char* p_rgba, Utility::Threads p_threads) const {
    Map(p_values.begin(), static_cast<std::size_t>(p_values.size()), p_rgba, p_threads);
  }
  ///@}

  /// The colour of one value, by the same rule.
  QColor Color(double p_value) const;

  /// The bounds of all classes in ascending order, one more than there are classes; empty without valid classes.
  const std::vector<double>& Bounds() const;
  /// The colours of the classes as they are mapped, with 8 bits a channel: Colors()[i] belongs to the values from
  /// Bounds()[i] on. Empty without valid classes.
  const std::vector<QColor>& Colors() const;
  /// The colours of values outside of all classes as they are mapped, defaults replaced; without valid classes, all
  /// three are `nan`.
  const Outside& OutsideColors() const;

private:
  struct Tables;
  std::shared_ptr<const Tables> _tables;
};

} // namespace Vek::Chart::Library
