#pragma once

#include "scene/Axes.h"
#include "scene/Figure.h"
#include "scene/View.h"
#include "scene/private/PlotContent.h"

#include <array>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

struct VEK_HIDDEN Figure::State {
  /// A plot of the figure.
  struct Entry {
    std::unique_ptr<Plot> plot;
    Private::PlotContent* content;    ///< of the plot
    bool isEmptinessReported = false; ///< whether it was reported that the plot has no point to show
  };

  QString title, subtitle;
  std::array<QString, 3> axisTitles;
  std::array<Axes::TickMaker, 3> ticks; ///< empty for decimal values
  Private::AxisRules rules;
  std::optional<Scene::Camera> direction; ///< of the own camera; only angles and projection count
  std::vector<Entry> entries;
  std::size_t added = 0; ///< plots that there have been

  Private::DataTransform transform; ///< as of the last layout
  TextRenderer text;
  Axes::State axesState;

  /// Takes over a plot and gives it a colour of its own.
  template <class T>
  T& Add(std::unique_ptr<T> p_plot) {
    T& plot = *p_plot;
    Adopt(std::move(p_plot));
    return plot;
  }

  /// Places plots, axes and legends, and fits the camera.
  FigureLayout Arrange(const Figure& p_figure, const Types::Viewport<0>& p_viewport, double p_pixelRatio);
  /// Draws the plots, opaque ones first.
  void DrawPlots(Utility::Scoped<Rgl>& p_gl, const Private::Frame& p_frame);
  /// The plots alone, on no background.
  QImage DataImage(const Figure& p_figure, const FigureLayout& p_layout, const Types::Viewport<0>& p_viewport,
                   double p_pixelRatio);

private:
  void Adopt(std::unique_ptr<Plot> p_plot);
  std::vector<Private::PlotContent*> Visible() const;
  /// Returns the limits of the axes, in data units.
  Private::Box PlacePlots(const QSizeF& p_size);
  Axes MakeAxes(const Private::Box& p_limits) const;
  std::vector<QString> Notes() const;
  std::vector<LegendBlock> Keys(const Theme& p_theme, const View& p_view, double p_pixelRatio) const;

  bool _isFlat = false;
};

} // namespace Vek::Chart::Scene
