#pragma once

#include "parallel/Export.h"
#include "parallel/Processes.h"

#include "platform/types/Geometry.h"
#include "platform/types/Range.h"
#include "scene/Camera.h"
#include "scene/Figure.h"
#include "scene/Theme.h"

#include <QString>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace Vek::Chart::Parallel {

/// What the figures of several processes have in common, so that their shares of the data are drawn alike. Process 0
/// fills it in, `Broadcast` brings it to the others, and each makes its figure and its plot of it.
///
/// A plain value: any field may be changed. The numbers are those of all processes, by `Processes::Union` for example.
///
/// \snippet ParallelSnippets.cpp Compositor
/// \ingroup parallel
struct VEK_PARALLEL_API FigureDescription {
  QString title;                          ///< see Figure
  QString subtitle;                       ///< below the title
  std::array<QString, 3> axisTitles;      ///< see Figure::SetAxisTitles
  std::vector<QString> notes;             ///< see Figure::SetNotes
  Scene::Theme theme;                     ///< see Figure::theme
  Types::BoundingBox_Base<double> extent; ///< of all data, see Figure::SetExtent
  double azimuth = -30;                   ///< see Figure::Look
  double elevation = 30;                  ///< likewise
  bool isParallel = false;                ///< whether the projection is parallel
  std::optional<Scene::Camera> camera;    ///< see Figure::camera

  QString colorTitle;                    ///< see ColoredPlot
  std::string colorMap = "viridis";      ///< a name of Library::NamedColors
  double opacity = 1;                    ///< of the plot
  Types::MinMax_Base<double> values;     ///< of all elements; see ColoredPlot::ColorExtremes
  Types::MinMax_Base<double> colorRange; ///< empty for the default

  /// The description of process 0. Collective.
  static FigureDescription Broadcast(const Processes& p_processes, const FigureDescription& p_description);

  /// A figure without plots.
  Scene::Figure MakeFigure() const;
  /// Sets what concerns a plot, after the values that it is coloured by.
  template <class Plot>
  Plot& Apply(Plot& p_plot) const {
    if (!values.Empty())
      p_plot.ColorExtremes(values.min, values.max);
    if (!colorRange.Empty())
      p_plot.ColorRange(colorRange.min, colorRange.max);
    return p_plot.ColorMap(colorMap).ColorTitle(colorTitle).SetOpacity(opacity);
  }
};

} // namespace Vek::Chart::Parallel
