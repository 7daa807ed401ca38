#pragma once

#include "scene/VoxelGrid.h"
#include "scene/private/VoxelPlaces.h"

namespace Vek::Chart::Scene::Private {

/// The places that a grid is drawn by: those of the grid of which it is a block (see VoxelGrid::BlockOf), or its own.
/// The texture coordinate of the grid's voxels is scale · coordinate + shift.
struct DrawnPlaces {
  using Point = Types::Vector3_Base<double>;

  explicit DrawnPlaces(const VoxelGrid& p_grid);

  /// What shaders interpolate: the texture coordinate, or the share of the box where cells are uneven.
  Point Coordinate(const Point& p_position) const {
    return places.AreEven() ? places.Coordinate(p_position) : places.Share(p_position);
  }
  Point ShortestVoxel() const {
    return {places.Axis(0).ShortestCell(), places.Axis(1).ShortestCell(), places.Axis(2).ShortestCell()};
  }
  Point MeanVoxel() const { return {places.Axis(0).MeanCell(), places.Axis(1).MeanCell(), places.Axis(2).MeanCell()}; }

  const VoxelPlaces& places;
  Point scale{1, 1, 1}, shift{0, 0, 0};
};

} // namespace Vek::Chart::Scene::Private
