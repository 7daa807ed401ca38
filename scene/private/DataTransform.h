#pragma once

#include "scene/private/RoundRange.h"

#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"

#include <array>
#include <optional>

namespace Vek::Chart::Scene::Private {

using Point = Types::Vector3_Base<double>;
using Box = Types::BoundingBox_Base<double>;

///@{
/// A component by the number of its axis, 0 to 2.
inline double& At(Point& p_point, std::size_t p_axis) {
  return p_axis == 0 ? p_point.x : p_axis == 1 ? p_point.y : p_point.z;
}
inline double At(const Point& p_point, std::size_t p_axis) {
  return p_axis == 0 ? p_point.x : p_axis == 1 ? p_point.y : p_point.z;
}
///@}
/// The range of a box along an axis; empty where the box is.
inline Range Along(const Box& p_box, std::size_t p_axis) {
  return {At(p_box.Min(), p_axis), At(p_box.Max(), p_axis)};
}
inline bool IsFinite(const Point& p_point) {
  return std::isfinite(p_point.x) && std::isfinite(p_point.y) && std::isfinite(p_point.z);
}

/// What the user asked of the axes.
struct AxisRules {
  std::array<bool, 3> logarithmic{};
  std::array<bool, 3> dates{}; ///< seconds, which no other axis measures
  bool isMap = false;          ///< whether x is a longitude and y a latitude, in degrees
  std::array<std::optional<Range>, 3> limits;
  std::array<double, 3> stretch{}; ///< factors; 0 for automatic ones
  bool operator==(const AxisRules& p_other) const;
  bool operator!=(const AxisRules& p_other) const { return !(*this == p_other); }
  /// Whether an axis measures what no other one does: logarithms, seconds, heights above a map.
  bool HasOwnUnit(std::size_t p_axis) const { return logarithmic[p_axis] || dates[p_axis] || isMap; }
  /// Whether surfaces are cut at the limits. Otherwise they end at the last vertices within, but are always cut at the
  /// borders of a map.
  bool cutsSurfaces = false;
  /// Whether a point is finite, within the limits, and above 0 on logarithmic axes. Longitudes of a map may be of any
  /// turn from −360 to 720 degrees.
  bool Shows(const Point& p_point) const;
  /// Whether a surface has a vertex there.
  bool HasVertex(const Point& p_point) const;
};

/// From data to scene units, axis by axis: logarithm where the axis is logarithmic, minus an origin, times a factor,
/// all in double. The scene is about as large as 1 and lies around its origin, so that single precision suffices for
/// it.
struct DataTransform {
  struct Axis {
    bool logarithmic = false;
    double origin = 0;  ///< in data units, or their decimal logarithm
    double factor = 1;  ///< scene units in a data unit, or a decade
    double stretch = 1; ///< the factor relative to that of axes with equal units
  };
  std::array<Axis, 3> axes;

  /// The scene position of a point of the data; NaN for numbers without a logarithm.
  Point operator()(const Point& p_data) const;
  Box operator()(const Box& p_data) const;
  /// The data point of a scene position.
  Point Inverse(const Point& p_scene) const;
  Box Inverse(const Box& p_scene) const;
  /// The direction in the scene of a vector at a point of the data.
  Point Direction(const Point& p_data, const Point& p_vector) const;

  /// Scene units in a data unit, or a decade, of an axis that is not stretched.
  double Unit() const { return axes[0].factor / axes[0].stretch; }
  /// Whether some axis is logarithmic, so that directions depend on positions.
  bool IsLogarithmic() const { return axes[0].logarithmic || axes[1].logarithmic || axes[2].logarithmic; }
  bool operator==(const DataTransform& p_other) const;
  bool operator!=(const DataTransform& p_other) const { return !(*this == p_other); }
};

/// Makes a box that has no extent along some axes wider: by a quarter of the longest edge, or by 1 if there is none. An
/// empty box becomes 0 to 1. A flat one stays flat along z. Logarithmic axes get a decade.
Box Widened(const Box& p_box, const std::array<bool, 3>& p_logarithmic, bool p_isFlat);

/// The transformation for a box of data. `p_previous` is returned where it still suits the box, so that what is placed
/// need not be placed again whenever the box changes a little.
///
/// Units are equal on all axes unless spans differ by more than four: then y is stretched against x, and z against the
/// longer one of both, by factors of 1, 2 or 5 × 10^n. Logarithmic axes are about half as long as the longest other
/// one; of dates, x and y are longer than the other ones. On
/// maps, degrees of longitude have their true length (see Graticule).
DataTransform TransformFor(const Box& p_box, const AxisRules& p_rules, const DataTransform& p_previous);

} // namespace Vek::Chart::Scene::Private
