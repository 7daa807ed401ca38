#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"
#include "scene/VoxelGrid.h"

#include <vector>

namespace Vek::Chart::Scene {

/// Lit surfaces on which the values of a volume equal given levels. Made by `Figure::Isosurface`.
///
///     figure.Isosurface(density, {0.02, 0.1, 0.4}).ColorTitle("Density").SetOpacity(0.5);
///
/// Surface: triangles by marching cubes between the centres of voxels, as `Isosurface` describes, with normals by the
/// gradient. Along an axis of one voxel there is none. The surface has a border at missing voxels, at the sides of the
/// volume, and at voxels whose centres lie outside of the figure's limits; the figure notes the number of missing ones,
/// and whether the axes cut the volume.
///
/// Colours: several levels have colours of the map, and the colour bar has a tick at each of them; one level has the
/// colour of the plot. The figure notes the levels of one colour, and those without a surface. `ColorBy` takes the
/// values of another quantity at the same voxels, which are interpolated on the surface.
///
/// Half-transparent surfaces are seen through each other (see ColoredPlot). A pick gives the nearest voxel, and the
/// level or the interpolated value of the colours.
///
/// \snippet SceneFigureSnippets.cpp IsosurfacePlot
/// \image html parts/IsosurfacePlot.png
/// \ingroup plots
class VEK_SCENE_API IsosurfacePlot : public ColoredPlot<IsosurfacePlot> {
public:
  /// Replaces the levels: one at least, finite. Throws std::invalid_argument otherwise.
  IsosurfacePlot& Levels(const std::vector<double>& p_levels);
  /// Colours by the levels again, the default.
  IsosurfacePlot& ColorByLevel();
  /// Replaces the values of the volume by as many others, NaN for missing ones.
  IsosurfacePlot& UpdateValues(const Array1& p_values);

private:
  friend class Figure;
  IsosurfacePlot(const VoxelGrid& p_volume, const std::vector<double>& p_levels);
};

} // namespace Vek::Chart::Scene
