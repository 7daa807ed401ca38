#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"

#include <initializer_list>

namespace Vek::Chart::Scene {

/// A surface of heights over a grid with even or uneven distances. Made by `Figure::Surface`.
///
/// Nodes: heights at all combinations of the positions along x and y, which ascend or descend, row by row, x fastest:
/// node (i, j) is number i + nx · j. Neighbouring nodes are joined by two triangles a cell, as `SurfaceMesh` describes;
/// normals are those of the surface as it is drawn, with its stretched or logarithmic axes.
///
/// Holes: a node whose height is not finite, and one outside of the figure's limits or not above 0 on a logarithmic
/// axis, has no triangles, which the figure notes. A cell with one such node keeps the triangle of the three others.
///
/// Colours: by height, until `ColorBy` or `Color` is called.
///
/// \snippet SceneFigureSnippets.cpp SurfacePlot
/// \image html parts/SurfacePlot.png
/// \ingroup plots
class VEK_SCENE_API SurfacePlot : public ColoredPlot<SurfacePlot> {
public:
  /// Colours by height again, the default.
  SurfacePlot& ColorByHeight();

  /// Lines of equal height on the surface, at round heights, `p_most` at most; the figure notes their distance. 0
  /// removes them. Throws std::invalid_argument for a negative number.
  SurfacePlot& Contours(int p_most = 10);
  /// Lines at these heights; those that are not finite have none.
  SurfacePlot& Contours(const Array1& p_heights);
  SurfacePlot& Contours(std::initializer_list<double> p_heights); ///< `{1}` is the height 1

  /// Replaces the heights by as many others. Where nodes are missing before and after alike, indices are not uploaded.
  SurfacePlot& UpdateHeights(const Array1& p_heights);

private:
  friend class Figure;
  SurfacePlot(const Array1& p_x, const Array1& p_y, const Array1& p_heights);
};

} // namespace Vek::Chart::Scene
