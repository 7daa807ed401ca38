#pragma once

#include "scene/Export.h"

#include <vector>

namespace Vek::Chart::Scene {

/// The opacity of values: linear between given points, constant beyond the first and the last one.
///
/// Opacities are 0 (transparent) to 1 (opaque). A VolumeRaycaster that composites takes them as those of a layer of its
/// unit length.
///
/// \ingroup plots
/// \snippet SceneVolumeSnippets.cpp OpacityFunction
/// \image html parts/OpacityFunction.png
class VEK_SCENE_API OpacityFunction {
public:
  /// An opacity and the value that it belongs to.
  struct Point {
    double value = 0;   ///< a value of the volume
    double opacity = 0; ///< 0 to 1
  };

  /// The same opacity for all values.
  explicit OpacityFunction(double p_opacity = 1);
  /// Points by ascending value. Two of the same value make a step, and the second one holds at the value itself. Throws
  /// std::invalid_argument without points, for values that descend or are not finite, and for opacities beyond 0 to 1.
  explicit OpacityFunction(std::vector<Point> p_points);
  /// From 0 at `p_low` to `p_opacity` at `p_high`. Throws as above.
  static OpacityFunction Ramp(double p_low, double p_high, double p_opacity = 1);

  /// The opacity of a value; 0 for NaN.
  double operator()(double p_value) const;
  /// As given.
  const std::vector<Point>& Points() const { return _points; }

private:
  std::vector<Point> _points;
};

} // namespace Vek::Chart::Scene
