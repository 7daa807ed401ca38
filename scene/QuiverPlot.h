#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"

#include <cstddef>

namespace Vek::Chart::Scene {

/// Arrows: vectors at points. Made by `Figure::Quiver`.
///
/// An arrow starts at its point. Its length is proportional to that of the vector in data units, whatever the stretch
/// of the axes, which acts on directions alone; arrows are never deformed. The figure has an arrow as a key. Arrows of
/// flat data are flat. A zero vector is a dot.
///
/// Where there are more than 10,000 arrows, or more than the image has room for, fewer are drawn, evenly over the data:
/// every second, third, … along each axis of a grid, otherwise one in each cell of a regular lattice. The figure notes
/// how many.
///
/// A point or vector that is not finite is left out, as is a point outside of the figure's limits, or not above 0 on a
/// logarithmic axis; the figure notes how many.
///
/// \snippet SceneFigureSnippets.cpp QuiverPlot
/// \image html parts/QuiverPlot.png
/// \ingroup plots
class VEK_SCENE_API QuiverPlot : public ColoredPlot<QuiverPlot> {
public:
  /// Colours by the lengths of the vectors, also of those that `UpdateVectors` brings, until `ColorBy` or `Color`.
  QuiverPlot& ColorByLength();
  /// The length of an arrow, as a fraction of the diagonal of the data, for each unit of a vector's length; above 0. By
  /// default, the vector longer than 98 % of all gets the median distance between neighbouring arrows.
  QuiverPlot& UnitLength(double p_fraction);
  /// The length of a typical long vector, above 0, and of its arrow as a fraction of the diagonal of the data: instead
  /// of the vector longer than 98 % of all and the median distance between neighbours. For a plot that has a share of
  /// the arrows, since the key, the lengths of arrows and the sizes of dots follow from both.
  QuiverPlot& Typical(double p_length, double p_fraction);
  /// The title of the key: what the vectors are. By default that of the colours.
  QuiverPlot& LengthTitle(const QString& p_title);
  /// The most arrows that are drawn, at least 1, whatever the size of the image.
  QuiverPlot& Most(std::size_t p_count);

  ///@{
  /// Replaces one array by one of the same length.
  QuiverPlot& UpdatePositions(const Array3& p_positions);
  QuiverPlot& UpdateVectors(const Array3& p_vectors);
  ///@}

private:
  friend class Figure;
  QuiverPlot(const Array3& p_positions, const Array3& p_vectors);
};

} // namespace Vek::Chart::Scene
