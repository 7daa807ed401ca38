#pragma once

#include "scene/Export.h"
#include "scene/LegendBlock.h"
#include "scene/Theme.h"

#include <QString>

#include <functional>

namespace Vek::Chart::Scene {

/// What the size of a symbol means: disks of three round sizes with their values.
///
/// Values: the first, the middle and the last of the fewest round values between `least` and `largest` of which three
/// have a diameter above 0; fewer where the range has fewer. Disks stand below each other, smallest first, as large as
/// the symbols are drawn.
///
/// \snippet SceneLegendSnippets.cpp Legend
/// \image html parts/Legend.png
/// \ingroup legends
struct VEK_SCENE_API SizeLegend {
  QString title;      ///< above the disks, with the unit: "Magnitude"
  double least = 0;   ///< of the data
  double largest = 1; ///< of the data
  std::function<double(double)> diameter =
      {}; ///< of the symbol of a value, in points; not finite or below 0 is left out

  /// The shapes; the origin is the upper left corner. Throws std::invalid_argument without a diameter.
  LegendBlock Layout(const Theme& p_theme, double p_pointSize = 1) const;
};

} // namespace Vek::Chart::Scene
