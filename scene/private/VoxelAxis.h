#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Where the cells of a grid lie along one axis, and which texture coordinates belong to positions: cell i of n begins
/// at the coordinate i / n, its centre is at (i + 1/2) / n, and between those coordinates run linearly. Positions
/// descend with the index where the last cell is the lowest one.
class VoxelAxis {
public:
  /// Cells of equal width.
  VoxelAxis(int p_size, double p_low, double p_high, bool p_descends);
  /// The bounds and centres of the cells: 2 n + 1 positions in order. Equal ones are allowed at both ends.
  explicit VoxelAxis(std::vector<double> p_knots);
  /// Values at positions, between which cells end half-way; the first and the last cell end there.
  static VoxelAxis OfNodes(const std::vector<double>& p_nodes);
  /// Cells from one position to the next.
  static VoxelAxis OfBounds(const std::vector<double>& p_bounds);

  int Size() const { return _size; }
  double Low() const { return _low; }
  double High() const { return _high; }
  /// Whether the texture coordinate is a linear function of the position.
  bool IsEven() const { return _knots.empty(); }
  double ShortestCell() const;
  double MeanCell() const;

  /// 0 at the lower end, 1 at the upper one.
  double Share(double p_position) const { return (p_position - _low) / (_high - _low); }
  ///@{
  /// The texture coordinates of the ends.
  double CoordinateOfLow() const { return _first; }
  double CoordinateOfHigh() const { return _last; }
  ///@}
  /// The texture coordinate of a position between the ends.
  double Coordinate(double p_position) const;
  /// The centre of the cell at a position, which is moved between the ends.
  double NearestCenter(double p_position) const;
  /// As the constructor takes them.
  std::vector<double> Knots() const;

private:
  int _size;
  double _low, _high;
  double _first = 0, _last = 1;
  std::vector<double> _knots; ///< none if all are even
};

} // namespace Vek::Chart::Scene::Private
