#pragma once

#include "scene/Export.h"

#include <QColor>

namespace Vek::Chart::Scene {

/// Places raw values on a colour map while they are drawn.
///
/// A value between `lower` and `upper` gets the colour at (value - lower) / (upper - lower) of the map, or at the same
/// share of their logarithms.
///
/// Values stay raw in GPU memory (single precision), so that another scale uploads nothing.
///
/// Drawing with limits that are not finite or not ascending, or with a logarithm of limits that are not above 0, throws
/// std::invalid_argument.
///
/// \snippet SceneMeshSnippets.cpp InstancedMesh
/// \ingroup plots
struct VEK_SCENE_API ValueScale {
  double lower = 0;         ///< the value of the first colour
  double upper = 1;         ///< the value of the last colour
  bool logarithmic = false; ///< whether equal ratios of values take equal shares of the map

  /// Of smaller values, among them those without a logarithm; by default the first colour of the map.
  QColor below = {};
  /// Of larger values; by default the last colour of the map.
  QColor above = {};
  /// Of NaN; nothing is drawn where it is transparent.
  QColor missing = {128, 128, 128};

  /// Throws std::invalid_argument for limits that cannot be drawn.
  void Check() const;
};

} // namespace Vek::Chart::Scene
