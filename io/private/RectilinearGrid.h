#pragma once

#include <array>
#include <string>
#include <vector>

namespace Vek::Chart::Io::Private {

/// Values of several variables at the nodes of one rectilinear grid.
struct RectilinearGrid {
  std::array<std::vector<double>, 3> axes; ///< positions along x, y and z; none is empty
  std::array<std::string, 3> axisNames;    ///< empty for an axis that the variables do not have
  std::array<std::string, 3> axisUnits;
  std::vector<std::vector<double>> values; ///< of each variable, x fastest, then y; NaN where missing
  double period = 0;                       ///< 360 for longitudes around the globe
};

} // namespace Vek::Chart::Io::Private
