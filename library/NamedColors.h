#pragma once

#include "library/Export.h"

#include <QColor>

#include <string>
#include <vector>

namespace Vek::Chart::Library {

/// The colour maps that people know by name, as the lists of colours that `ColorMap` and `ColorScale` take.
///
/// Sequential, from dark to light in even steps that survive printing in grey: "viridis", "plasma", "inferno", "magma",
/// "cividis" (also for readers who do not tell red from green), "grey" (black to white). Diverging: "coolwarm", blue
/// through a light grey to red, for values on both sides of a middle. All are opaque. Names are in lower case. The
/// origin and the licence of each map stand beside its figures in the source.
///
/// An unknown name is reported with the names that are known, and gives no colours. Safe from several threads at once.
///
/// \snippet ColorSnippets.cpp NamedColors
/// \image html colors.jpg
/// \ingroup colours
class VEK_LIBRARY_API NamedColors {
public:
  /// All names, in the order of a list to choose from.
  static const std::vector<std::string>& Names();

  /// The map as it was published: 256 colours at even steps from its lowest to its highest value; 257 for "coolwarm",
  /// so that the neutral colour is one of them.
  static std::vector<QColor> Colors(const std::string& p_name);

  /// `p_count` colours at even steps of the map's part from `p_from` to `p_to`, both within [0, 1] and both among the
  /// colours; blended between the published ones. Descending places turn the map around. One colour is that at
  /// `p_from`; a count below 1 gives none. Places that are out of range are reported and clamped, NaN to 0:
  /// "0 <= p_from && p_from <= 1", "0 <= p_to && p_to <= 1".
  static std::vector<QColor> Colors(const std::string& p_name, int p_count, double p_from = 0, double p_to = 1);

  NamedColors() = delete; ///< only static members
};

} // namespace Vek::Chart::Library
