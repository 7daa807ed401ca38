#pragma once

#include "io/Export.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace Vek::Chart::Io {

/// Vectors at the nodes of a rectilinear grid, with names and units: a wind or a flow of a file, at one time. What
/// ReadVectorField returns.
///
/// Node (i, j, k), at axes[0][i], axes[1][j], axes[2][k], has the index i + nx · (j + ny · k). Axes ascend or descend;
/// a layer has one node along z. The field that is drawn is made of it by `Scene::VectorField::Rectilinear(f.axes[0],
/// f.axes[1], f.axes[2], f.vectors)`; arrows take `f.Positions()` and `f.vectors`. A plain value: any field may be
/// changed.
///
/// \snippet FileSnippets.cpp ReadVectorField
/// \ingroup files
struct VEK_IO_API VectorField {
  using Vector = std::array<double, 3>; ///< x, y, z

  std::array<std::vector<double>, 3> axes; ///< the positions along x, y and z; none is empty
  std::vector<Vector> vectors;             ///< one a node; z is 0 in a file of two components; NaN where missing
  /// The positions of the whole grid, where `axes` are those of a region of it; otherwise empty.
  std::array<std::vector<double>, 3> wholeAxes;
  std::array<std::string, 3> axisNames; ///< such as "lon", "lat", "depth"
  std::array<std::string, 3> axisUnits; ///< such as "degrees_east", "degrees_north", "m"; empty where not known
  std::array<std::string, 3> names;     ///< of the components in the file; empty for one that it does not have
  std::string unit;                     ///< of the vectors, such as "m s-1"; empty where not known
  std::vector<std::string> times;       ///< all steps of the file: "1987-01-17 12:00"; empty for a file without time
  std::size_t time = 0;                 ///< the step that was read
  std::vector<std::string> variables;   ///< all of a file that has several, each of which is a grid of numbers
  double period = 0;                    ///< 360 for longitudes that go around the globe, otherwise 0

  /// The positions of all nodes, in the order of the vectors.
  std::vector<Vector> Positions() const;
};

} // namespace Vek::Chart::Io
