#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"

#include "platform/types/Vector.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene {

/// Polylines: tracks, trajectories, curves. Made by `Figure::Lines`.
///
/// Elements are points. Lines have one width on the screen whatever their distance, with round joints and ends, and are
/// not lit; or they are tubes of one width in the data, which are. `ColorBy` takes a value for each point, and colours
/// between points are blended along the line; a segment with a missing value has the colour for that.
///
/// A point that is not finite, outside of the figure's limits or not above 0 on a logarithmic axis is left out and ends
/// a line, which goes on behind it; the figure notes those points. A point without a neighbour is not drawn, which it
/// notes as well.
///
/// \snippet SceneFigureSnippets.cpp LinesPlot
/// \image html parts/LinesPlot.png
/// \ingroup plots
class VEK_SCENE_API LinesPlot : public ColoredPlot<LinesPlot> {
public:
  /// Lines on the screen, the default; the width in points, finite and above 0, by default 2.
  LinesPlot& Width(double p_points);
  /// Tubes, in flat figures ribbons. The diameter is finite and above 0, in units of the data (on logarithmic axes, in
  /// decades); tubes are round also where axes are stretched. Takes at most 2^24 points.
  LinesPlot& Tubes(double p_diameter);

  /// Replaces the points by as many others, in lines of the same lengths.
  LinesPlot& UpdatePositions(const Array3& p_positions);

private:
  friend class Figure;
  LinesPlot(std::vector<Types::Vector3_Base<double>> p_positions, std::vector<std::size_t> p_lengths);
};

} // namespace Vek::Chart::Scene
