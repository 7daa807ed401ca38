#pragma once

#include "library/Export.h"

#include <QColor>

#include <string>
#include <vector>

namespace Vek::Chart::Library {

/// Well-known colour maps by name, as lists of colours for `ColorMap` and `ColorScale`.
///
/// Sequential, from dark to light with steadily rising lightness: "viridis", "plasma", "inferno", "magma", "cividis"
/// (also suitable for red-green colour blindness), "grey" (black to white). Diverging: "coolwarm", from blue through a
/// light grey to red, for values on both sides of a middle. All are opaque. Names are in lower case. Origin and licence
/// of each map are given beside its table in the source.
///
/// An unknown name is reported together with the known ones, and yields an empty list. Thread-safe.
///
/// \snippet ColorSnippets.cpp NamedColors
/// \image html colors.jpg
/// \ingroup colours
class VEK_LIBRARY_API NamedColors {
public:
  /// All names, in the order above.
  static const std::vector<std::string>& Names();

  /// The map as published: 256 colours, evenly spaced from the lowest value to the highest; 257 for "coolwarm", whose
  /// middle one is the neutral colour.
  static std::vector<QColor> Colors(const std::string& p_name);

  /// `p_count` colours, evenly spaced from position `p_from` to `p_to` of the map, both included and both within
  /// [0, 1]; blended between the published colours. `p_from` above `p_to` reverses the map. A count of 1 yields the
  /// colour at `p_from`, a count below 1 an empty list. Positions out of range are clamped, NaN to 0, and reported as
  /// "0 <= p_from && p_from <= 1" or "0 <= p_to && p_to <= 1".
  static std::vector<QColor> Colors(const std::string& p_name, int p_count, double p_from = 0, double p_to = 1);

  NamedColors() = delete; ///< only static members
};

} // namespace Vek::Chart::Library
