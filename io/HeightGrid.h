#pragma once

#include "io/Export.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Vek::Chart::Io {

/// Values at the nodes of a rectilinear grid in a plane, with names and units: a relief, a layer of temperatures. What
/// ReadHeights returns.
///
/// Node (i, j), at x[i], y[j], has the index i + nx · j, which is the order of `Scene::Figure::Surface(x, y, heights)`.
/// Axes ascend or descend. A plain value: any field may be changed.
///
/// \snippet FileSnippets.cpp ReadHeights
/// \ingroup files
struct VEK_IO_API HeightGrid {
  std::vector<double> x;          ///< the positions of the columns
  std::vector<double> y;          ///< the positions of the rows
  std::vector<double> heights;    ///< one a node; NaN where missing
  std::string xName;              ///< of the columns, such as "lon"; empty where not known
  std::string yName;              ///< of the rows, such as "lat"; empty where not known
  std::string xUnit;              ///< such as "degrees_east"; empty where not known
  std::string yUnit;              ///< such as "degrees_north"; empty where not known
  std::string name;               ///< of the values, such as "sea surface temperature"; empty where not known
  std::string unit;               ///< of the values, such as "m"; empty where not known
  std::vector<std::string> times; ///< all steps of the file; empty for a file without time
  std::vector<double> levels;     ///< the positions along z of all levels of the file; empty for a file without levels
  std::vector<std::string> variables; ///< all of a file that has several, each of which can be read
  double period = 0;                  ///< 360 for longitudes that go around the globe, otherwise 0

  /// The same with the first column once more behind the last one, where columns of equal distances fill `p_period`:
  /// the 360° of a map, on which a surface of the columns alone has a gap of one cell. Otherwise an equal copy. Throws
  /// std::invalid_argument for a period that is not finite and above 0.
  HeightGrid Closed(double p_period = 360) const;
};

} // namespace Vek::Chart::Io
