#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"

namespace Vek::Chart::Scene {

/// Upright bars at positions in a plane. Made by `Figure::Bars`.
///
/// Bars: one height for each pair (x, y), or for each node of a grid of all combinations, row by row, x fastest: node
/// (i, j) is number i + nx · j. A bar goes from 0 to its height, down for a negative one. Where the figure's limits
/// leave out 0, bars start at the limit next to it; on a logarithmic axis they start at the lower limit, or at a power
/// of ten below all of them. The figure notes a base that is not 0, and bars that end beyond the limits, which are cut
/// there.
///
/// Widths along x and y are fractions of the smallest distance between neighbours along that axis; for positions that
/// form no grid, both are taken from the median distance of neighbours.
///
/// A bar with a number that is not finite, outside of the figure's limits or not above 0 on a logarithmic axis is left
/// out, which the figure notes.
///
/// Colours: by height, until `ColorBy` or `Color` is called.
///
/// \snippet SceneFigureSnippets.cpp BarsPlot
/// \image html parts/BarsPlot.png
/// \ingroup plots
class VEK_SCENE_API BarsPlot : public ColoredPlot<BarsPlot> {
public:
  /// Colours by height again, the default.
  BarsPlot& ColorByHeight();
  /// The width as a fraction of the distance of neighbours: above 0 and at most 1, by default 0.8.
  BarsPlot& Width(double p_fraction);

  /// Replaces the heights by as many others.
  BarsPlot& UpdateHeights(const Array1& p_heights);

private:
  friend class Figure;
  BarsPlot(const Array1& p_x, const Array1& p_y, const Array1& p_heights);
};

} // namespace Vek::Chart::Scene
