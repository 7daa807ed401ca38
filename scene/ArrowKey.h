#pragma once

#include "scene/Export.h"
#include "scene/LegendBlock.h"
#include "scene/Theme.h"

#include <QColor>
#include <QString>

namespace Vek::Chart::Scene {

/// What the length of an arrow means: an arrow of a round value at the scale at which arrows are drawn, with the value
/// and its unit below.
///
/// \snippet SceneLegendSnippets.cpp Legend
/// \image html parts/Legend.png
/// \ingroup legends
struct VEK_SCENE_API ArrowKey {
  double pointsPerUnit = 1;        ///< the length of an arrow of value 1; pixels per unit / pixels per point
  QString unit;                    ///< after the value: "m/s"
  QString title;                   ///< above the arrow, if not empty
  double mostLength = 80;          ///< in points; the arrow is longer than 0.4 of it
  QColor color = QColor(Qt::gray); ///< of the arrow

  /// The largest value of 1, 2, 2.5 or 5 × 10^n whose arrow is no longer than `mostLength`. Throws
  /// std::invalid_argument unless both lengths are finite and above 0 and the value is within the range of double.
  double Value() const;
  /// The shapes; the origin is the lower left corner of the arrow's box, which is `Value()` × `pointsPerUnit` points
  /// long. Throws as `Value` does.
  LegendBlock Layout(const Theme& p_theme, double p_pointSize = 1) const;
};

} // namespace Vek::Chart::Scene
