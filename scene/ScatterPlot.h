#pragma once

#include "scene/Array.h"
#include "scene/Export.h"
#include "scene/Plot.h"

#include "platform/model/Symbol.h"

#include <QColor>

#include <vector>

namespace Vek::Chart::Scene {

/// Symbols at points: spheres, unless another shape is chosen. Made by `Figure::Scatter`.
///
/// All symbols have a diameter of 1 % of the diagonal of the data, but at least four points, or a diameter of their own
/// by `SizeBy`. A point with a coordinate that is not finite, outside of the figure's limits or not above 0 on a
/// logarithmic axis is left out, which the figure notes.
///
/// \snippet SceneFigureSnippets.cpp ScatterPlot
/// \image html parts/ScatterPlot.png
/// \ingroup plots
class VEK_SCENE_API ScatterPlot : public ColoredPlot<ScatterPlot> {
public:
  /// The diameter of all symbols, or of the largest value of `SizeBy`, as a fraction of the diagonal of the data: above
  /// 0 and at most 1.
  ScatterPlot& Diameter(double p_fraction);
  /// A value for each point, to which the area of its symbol is proportional; the largest value has `Diameter`, by
  /// default 4 %, of more than 250 points less, down to 1.5 %. Symbols of values that are missing or not above 0 are
  /// left out. The figure gets a key. An empty array makes all symbols equal again.
  ScatterPlot& SizeBy(const Array1& p_values);
  /// Likewise, with the title of the key.
  ScatterPlot& SizeBy(const Array1& p_values, const QString& p_title) { return SizeBy(p_values).SizeTitle(p_title); }
  /// Diameters of `SizeBy` grow by this factor, finite and above 1, with each unit of the value, so that the largest
  /// value has `Diameter`: for magnitudes, decibels and other logarithms. All finite values have symbols then. 0 makes
  /// areas proportional again.
  ScatterPlot& SizeGrowth(double p_factor);
  /// The title of the key of the sizes: what the values are, and their unit.
  ScatterPlot& SizeTitle(const QString& p_title);
  /// A colour for each point, as scanners measure them, until `Color` or `ColorBy` is called. Removes the values.
  /// Opacities are multiplied by that of the plot. An empty list removes the colours.
  ScatterPlot& ColorEach(const std::vector<QColor>& p_colors);
  /// The shape of the symbols. Throws std::invalid_argument for ShapeCustom and unknown shapes.
  ScatterPlot& Symbol(Model::Symbol::Shape p_shape);

  /// Replaces the points by as many others.
  ScatterPlot& UpdatePositions(const Array3& p_positions);

private:
  friend class Figure;
  explicit ScatterPlot(const Array3& p_positions);
};

} // namespace Vek::Chart::Scene
