#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"
#include "scene/VectorField.h"

namespace Vek::Chart::Scene {

/// Evenly spaced streamlines of a vector field, with arrow heads. Made by `Figure::Streamlines`.
///
/// Lines are traced by `StreamlineTracer` in the scene: even as they are seen, on stretched and logarithmic axes as
/// well. They end at the border of the field and of the figure's limits, at missing nodes, where the field has no
/// speed, and near other lines. Lines of a layer (a field with one node along an axis) stay in it; the figure notes it
/// where vectors do not. A field that wraps in x has lines in the gap as well.
///
/// Lines are tubes, in flat figures ribbons. Their width grows with the speed, from a quarter of the largest width for
/// standing air to all of it for the speed that 2 % of the nodes exceed; or it is the same for all. The figure notes
/// which, and the length of the shortest lines: shorter ones are left out. Arrow heads sit on straight parts of their
/// line, have its colour there, and are three times as wide.
///
/// Elements are the nodes of the field, in its order. Colours are by speed, until `ColorBy` is called with a value for
/// each node, which is interpolated on the lines, or `Color`. Nodes without a vector are noted.
///
/// \snippet SceneFigureSnippets.cpp StreamlinesPlot
/// \image html parts/StreamlinesPlot.png
/// \ingroup plots
class VEK_SCENE_API StreamlinesPlot : public ColoredPlot<StreamlinesPlot> {
public:
  /// Colours by the length of the vectors again, the default. The colour bar has the title "Speed" then, unless it got
  /// one.
  StreamlinesPlot& ColorBySpeed();

  /// The distance of neighbouring lines where they begin, as a fraction of the diagonal of the field: 0.005 to 0.5. By
  /// default 1/60 in a layer, 1/16 in space. Lines come as near as half of it.
  StreamlinesPlot& Spacing(double p_fraction);
  /// The width of the widest lines as a fraction of that distance: above 0, at most 1; by default 0.15.
  StreamlinesPlot& Width(double p_fraction);
  /// Whether widths grow with the speed, the default, or are equal.
  StreamlinesPlot& WidthBySpeed(bool p_bySpeed = true);
  /// Whether there are arrow heads, the default.
  StreamlinesPlot& ArrowHeads(bool p_hasHeads = true);

  /// Replaces the vectors by as many others on the same nodes.
  StreamlinesPlot& UpdateVectors(const Array3& p_vectors);

private:
  friend class Figure;
  explicit StreamlinesPlot(const VectorField& p_field);
};

} // namespace Vek::Chart::Scene
