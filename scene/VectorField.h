#pragma once

#include "scene/Array.h"
#include "scene/Export.h"

#include "platform/types/Geometry.h"
#include "platform/types/Range.h"
#include "platform/types/Vector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene {

/// Vectors at the nodes of a rectilinear grid, interpolated linearly between them.
///
/// Grid: the nodes are all combinations of the positions along three axes, which ascend or descend, evenly or not. An
/// axis may have a single node: the field is a layer then, and holds at that position only. Vectors are listed with x
/// fastest, then y, then z: node (i, j, k) is number i + nx · (j + ny · k). Positions have the unit of the axes,
/// vectors any unit.
///
/// Missing nodes: a vector with a component that is not finite is missing, and so is the field in all cells around that
/// node. Faces and nodes that such cells share with others hold.
///
/// Precision: positions and vectors are kept in double. Positions that rounding brings beyond the border by a billionth
/// of a cell count as on the border.
///
/// All data are copied. A field is immutable but for `WrapX`, and can be sampled by several threads.
///
/// Errors: std::invalid_argument for axes without nodes, axes that are not in order or not finite, and a wrong number
/// of vectors.
///
/// \snippet SceneFieldSnippets.cpp VectorField
/// \image html parts/VectorField.png
/// \ingroup plots
class VEK_SCENE_API VectorField {
public:
  /// A position or a vector.
  using Vector = Types::Vector3_Base<double>;
  /// The numbers of nodes along x, y and z.
  using Counts = std::array<std::size_t, 3>;

  VectorField() = default; ///< without nodes

  /// From the positions along each axis, and nx · ny · nz vectors.
  static VectorField Rectilinear(const Array1& p_x, const Array1& p_y, const Array1& p_z, const Array3& p_vectors);
  /// A layer at a height, from nx · ny vectors.
  static VectorField Layer(const Array1& p_x, const Array1& p_y, const Array3& p_vectors, double p_z = 0);
  /// With nodes at even distances, which may be negative, but not 0 along an axis with more than one node.
  static VectorField Regular(const Counts& p_counts, const Vector& p_origin, const Vector& p_spacing,
                             const Array3& p_vectors);
  /// From a table of nodes in any order, such as the rows of a file. The axes are the ascending distinct coordinates.
  /// Nodes that the table does not list are missing; of repeated ones, the last one counts; points that are not finite
  /// are left out. Throws std::invalid_argument as well where fewer than a quarter of the nodes are listed: such points
  /// form no grid.
  static VectorField FromPoints(const Array3& p_points, const Array3& p_vectors);

  /// Repeats the field in x: the value at x + `p_period` is that at x, and the gap between the last and the first
  /// column is a cell like the others. A grid around the globe has a period of 360 degrees. Throws
  /// std::invalid_argument where the period is not finite or shorter than the x axis.
  void WrapX(double p_period);

  /// Writes the vector at a position; false, and writes nothing, outside of the grid, in cells with a missing node, and
  /// for positions that are not finite.
  bool Sample(const Vector& p_position, Vector& p_vector) const;

  /// The numbers of nodes along each axis; zeros in a field without nodes.
  Counts Size() const;
  /// The number of nodes.
  std::size_t NodeCount() const { return _vectors.size(); }
  /// The number of nodes that have no vector.
  std::size_t Missing() const { return _missing; }
  /// The period in x; 0 if the field does not wrap.
  double Period() const { return _period; }
  /// The positions along an axis in the order given; 0 to 2 for x to z.
  const std::vector<double>& Axis(std::size_t p_axis) const { return _axes.at(p_axis).nodes; }
  ///@{
  /// The position and the vector (NaN where missing) of a node. Indices must be below `Size()`; not checked.
  Vector Position(std::size_t p_x, std::size_t p_y, std::size_t p_z) const {
    return {_axes[0].nodes[p_x], _axes[1].nodes[p_y], _axes[2].nodes[p_z]};
  }
  const Vector& Node(std::size_t p_x, std::size_t p_y, std::size_t p_z) const {
    return _vectors[p_x + _axes[0].nodes.size() * (p_y + _axes[1].nodes.size() * p_z)];
  }
  ///@}
  /// The box around all nodes, missing ones included; empty without nodes. A gap that wraps is not part of it.
  Types::BoundingBox_Base<double> Bounds() const;
  /// The mean distances of nodes along each axis; 0 along an axis of a single node.
  Vector Spacing() const;
  /// The smallest of the distances in `Spacing` that are not 0; 1 if there are none.
  double CellSize() const;

  /// The smallest and the largest length of a vector; empty if all are missing.
  Types::MinMax_Base<double> Speeds() const;
  /// The length that a fraction (0 to 1) of all vectors does not exceed; NaN if all are missing. Takes time in
  /// proportion to the number of nodes.
  double SpeedQuantile(double p_fraction) const;

private:
  // Doxygen would link to a list of nested classes that it does not make when all are private.
  /// \cond
  struct NodeAxis {
    std::vector<double> nodes;
    double low = 0, high = 0;          // the smaller and the larger end
    double cellsPerUnit = 0;           // mean, negative where the axis descends
    double slack = 0;                  // how far beyond the ends positions count as on the border
    std::vector<std::uint32_t> starts; // of an uneven axis: cells by even parts
  };
  /// \endcond

  VectorField(std::array<std::vector<double>, 3> p_axes, const Array3& p_vectors);

  std::array<NodeAxis, 3> _axes;
  std::vector<Vector> _vectors;
  std::size_t _missing = 0;
  double _period = 0;
};

} // namespace Vek::Chart::Scene
