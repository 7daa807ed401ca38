#pragma once

#include "apps/gallery/Loading.h"

#include "platform/types/Range.h"

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace Vek::Chart::Gallery {

/// Heights on a regular grid of cells. A field whose columns go once around the globe wraps in x.
class HeightField {
public:
  /// Reads a height grid: "nx ny x0 dx y0 dy", then ny lines of nx heights. Throws InputError when the text is none.
  static HeightField Read(std::istream& p_stream, const std::string& p_name);
  static HeightField ReadFile(const std::string& p_path, Loading& p_loading);

  /// The height at a place, interpolated between the centres of the four cells around it; beyond the border of the
  /// field, that of the border.
  double At(double p_x, double p_y) const;

  std::size_t Columns() const { return _columns; }
  std::size_t Rows() const { return _rows; }
  /// The range of x and y that the cells cover, and that of the heights.
  Types::MinMax_Base<double> RangeX() const;
  Types::MinMax_Base<double> RangeY() const;
  const Types::MinMax_Base<double>& Heights() const { return _range; }

private:
  double Cell(long p_column, long p_row) const;
  bool Wraps() const;

  std::size_t _columns = 0;
  std::size_t _rows = 0;
  double _x0 = 0, _dx = 1, _y0 = 0, _dy = 1;
  std::vector<float> _heights;
  Types::MinMax_Base<double> _range;
};

} // namespace Vek::Chart::Gallery
