#pragma once

#include "scene/Array.h"
#include "scene/VoxelGrid.h"
#include "scene/private/PlacedContent.h"

#include <array>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// A plot of a volume: its grid in the scene, the part that the axes show, its values in brief, and what a figure says
/// about them.
class GridContent : public PlacedContent {
public:
  /// With `p_isTexture`, grids that are too large for one are drawn in larger voxels.
  explicit GridContent(VoxelGrid p_grid, bool p_isTexture = true);

  /// Colours by the values of the grid.
  void ColorByValue();
  /// Throws std::invalid_argument for another number of values.
  void UpdateValues(const Array1& p_values);
  void SetFilter(VoxelGrid::Filter p_filter);
  /// The part that is drawn, and the knots of the volume that the grid is a block of, in data units. Throws
  /// std::invalid_argument for an empty box and for a grid that is no such block.
  void SetBlock(const Box& p_part, const std::array<std::vector<double>, 3>& p_knots);
  /// As they are: they become those of a grid.
  void SetColorValues(const std::vector<double>& p_values) override { coloring.SetValues(p_values); }
  std::size_t Count() const override { return _grid.Count(); }
  Types::MinMax_Base<double> ValueRange() const { return _grid.Range(); }
  std::vector<QString> Notes() const override;

protected:
  Noun Names() const override { return {"voxel", "voxels"}; }
  Box BoundsOf(const AxisRules& p_rules) const override;
  /// A box without what the axes do not show; empty if that is all of it.
  Box Shown(const Box& p_box, const AxisRules& p_rules) const;
  /// Places the grid by `placement`.
  void PlaceGrid(const Changes& p_changes);
  /// Takes values that `ColorBy` gave.
  void TakeColorValues();
  virtual void ValuesUpdated() {}
  /// The scale of the colours, or of all values where the plot has one colour.
  ValueScale Scale() const;
  /// A position along an axis with the unit, for notes.
  QString Text(std::size_t p_axis, double p_position) const;
  /// What lies at a point of the scene: the nearest voxel, and the value there as it is drawn.
  Picked VoxelAt(const Point& p_scene) const;
  /// The diagonal of the volume in the scene.
  double Diagonal() const;
  bool IsBlock() const { return !_whole.Empty(); }
  /// The edges of the part behind it; none for a block.
  void DrawEdges(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) const;

  VoxelGrid _grid;   ///< in data units
  VoxelGrid _placed; ///< in the scene, of larger voxels where there are too many
  Box _region;       ///< of the placed grid, in the scene; empty if the axes show nothing of it
  Box _wholeRegion;  ///< likewise, of the volume that the grid is a block of; otherwise the same
  VoxelGrid::Filter _filter = VoxelGrid::Filter::Linear;

private:
  void Replace(VoxelGrid p_grid);

  bool _isTexture;
  Box _block, _whole; ///< see SetBlock; empty otherwise
  std::array<std::vector<double>, 3> _wholeKnots;
  ValueSummary _all, _positive;    ///< of the values
  std::optional<VoxelGrid> _drawn; ///< in data units, of larger voxels where there are too many; none after a change
  int _factor = 1;                 ///< voxels along the edge of a larger one
};

} // namespace Vek::Chart::Scene::Private
