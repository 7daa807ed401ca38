#pragma once

#include "scene/Array.h"
#include "scene/Export.h"

#include "platform/types/Range.h"
#include "platform/types/Vector.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene {

/// Contour lines of values on a rectilinear grid, joined to polylines.
///
/// Grid: values at all combinations of the positions along two axes of two nodes at least, which ascend or descend,
/// evenly or not. Values are listed row by row, x fastest: node (i, j) is number i + nx · j. Values that are not finite
/// are missing; lines end at cells with such a node.
///
/// Lines: by marching squares (after Lorensen and Cline's Marching cubes, 1987, in two dimensions). Points lie where
/// lines cross the edges between nodes, linearly interpolated, in the coordinates of the axes. Values equal to the
/// level count as above it. In a saddle cell, the mean of its four nodes decides which corners are connected. Lines
/// have larger values on their left, seen from where x grows to the right and y upwards, so that rings around peaks run
/// counter-clockwise; no line branches, and lines of different levels do not cross. Lines come in the order of the rows
/// where they start: for each level first open ones, then rings.
///
/// All data are copied. An object is immutable and can be used by several threads.
///
/// Errors: the constructor throws std::invalid_argument for axes that are not in order or not finite, and for a wrong
/// number of values.
///
/// \snippet SceneFieldSnippets.cpp Isolines
/// \image html parts/Isolines.png
/// \ingroup plots
class VEK_SCENE_API Isolines {
public:
  /// One contour line.
  struct VEK_SCENE_API Line {
    /// A position.
    using Vector = Types::Vector3_Base<double>;

    double level = 0;           ///< the value along the line
    bool isClosed = false;      ///< whether the last point repeats the first one
    std::vector<Vector> points; ///< two at least, neighbours differ

    /// The length of the polyline.
    double Length() const;
  };

  Isolines() = default; ///< without nodes, and lines
  /// From the axes, and nx · ny values.
  Isolines(const Array1& p_x, const Array1& p_y, const Array1& p_values);

  ///@{
  /// The lines of one level, or of several (for example the values of `Ticks`) in their order. Their z is the level, or
  /// a given height.
  std::vector<Line> At(double p_level) const { return At(p_level, p_level); }
  std::vector<Line> At(double p_level, double p_z) const;
  std::vector<Line> AtAll(const Array1& p_levels) const;
  std::vector<Line> AtAll(const Array1& p_levels, double p_z) const;
  ///@}

  /// The smallest and the largest value that is not missing; empty if there is none.
  const Types::MinMax_Base<double>& Range() const { return _range; }

private:
  std::vector<double> _x, _y;
  std::vector<double> _values;
  Types::MinMax_Base<double> _range;
};

} // namespace Vek::Chart::Scene
