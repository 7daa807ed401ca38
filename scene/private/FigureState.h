#pragma once

#include "scene/Axes.h"
#include "scene/Figure.h"
#include "scene/Picker.h"
#include "scene/View.h"
#include "scene/private/DepthPeeling.h"
#include "scene/private/PlotContent.h"

#include "platform/core/TimeStamp.h"
#include "platform/ogl/PerContext.h"

#include <QStringList>
#include <array>
#include <functional>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

struct VEK_HIDDEN Figure::State {
  /// A plot of the figure.
  struct Entry {
    std::unique_ptr<Plot> plot;
    Private::PlotContent* content;    ///< of the plot
    bool isEmptinessReported = false; ///< whether it was reported that the plot has no point to show
    bool isCountReported = false;     ///< whether it was reported that elements are too many for Pick
  };
  /// All that a layout depends on, but for what the ticks of the host return.
  struct LayoutKey {
    Types::Viewport<0> viewport;
    double pixelRatio = 0;
    Scene::Theme theme;
    std::optional<Scene::Camera> camera, direction;
    QString title, subtitle;
    std::array<QString, 3> axisTitles;
    Private::AxisRules rules;
    Private::Box extent;
    std::optional<std::vector<QString>> notes;
    std::vector<Types::Plane> clips;
    std::vector<std::pair<const Private::PlotContent*, std::size_t>> plots; ///< with their revisions
    std::size_t added = 0, ticksSet = 0;

    bool operator==(const LayoutKey& p_other) const;
  };
  /// All that a picture for Pick depends on.
  struct PickedScene {
    Scene::Camera camera;
    Types::Viewport<0> viewport;
    double pixelRatio = 0;
    Private::DataTransform transform;
    Private::AxisRules rules;
    std::vector<Types::Plane> cuts;
    std::vector<std::pair<const Private::PlotContent*, std::size_t>> plots; ///< with their revisions
    std::size_t added = 0, left = 0; ///< plots that there have been, and that there are

    bool operator==(const PickedScene& p_other) const;
  };

  QString title, subtitle;
  std::array<QString, 3> axisTitles;
  std::array<Axes::TickMaker, 3> ticks; ///< empty for decimal values
  std::size_t ticksSet = 0;             ///< how often
  Private::AxisRules rules;
  Private::Box extent;                       ///< of all data with their glyphs, where it is given; empty otherwise
  std::optional<std::vector<QString>> notes; ///< where they are given
  std::vector<Types::Plane> clips;           ///< cutting planes, in data units
  std::optional<Scene::Camera> direction;    ///< of the own camera; only angles and projection count
  std::vector<Entry> entries;
  std::size_t added = 0; ///< plots that there have been

  bool isMoving = false;
  bool mayMove = false; ///< whether the host ever said that it moves or rests
  bool hasTriad = false;
  Ogl::PerContext<Private::DepthPeeling> peeling;
  Private::DataTransform transform; ///< as of the last layout
  LayoutKey keptKey;
  std::shared_ptr<const FigureLayout> keptLayout; ///< the last one, of that key
  Picker picker;
  PickedScene picked;
  Core::TimeStamp pickedStamp; ///< of that scene
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
  /// The last layout, as long as nothing changed that it depends on; otherwise another one. `p_hasOldTicks` permits one
  /// from before functions of the host returned other ticks.
  std::shared_ptr<const FigureLayout> LayoutFor(const Figure& p_figure, const Types::Viewport<0>& p_viewport,
                                                double p_pixelRatio, bool p_hasOldTicks = false);
  /// Draws the plots, opaque ones first, and the outlines of cuts; or one layer of them.
  void DrawPlots(Utility::Scoped<Rgl>& p_gl, Private::Frame p_frame, std::optional<Layer> p_layer = {});
  /// The plots alone, on no background.
  QImage DataImage(const Figure& p_figure, const FigureLayout& p_layout, const Types::Viewport<0>& p_viewport,
                   double p_pixelRatio);
  std::optional<Hit> Pick(Utility::Scoped<Rgl>& p_gl, Private::Frame p_frame, const Types::Pos& p_pixel);
  /// Whether a visible plot is half-transparent.
  bool HasTransparent() const;
  /// Visible plots of a kind.
  std::vector<Private::PlotContent*> Having(const std::function<bool(const Private::PlotContent&)>& p_isWanted) const;
  /// What the last drawing in this context left out since there was no time for it, line by line.
  QStringList Shortages(const Utility::Scoped<Rgl>& p_gl) const;
  QString AxisName(std::size_t p_axis) const;
  /// Empty for decimal values.
  Axes::TickMaker TicksOf(std::size_t p_axis) const;
  /// The triad, in the lower left corner of the scene, if there is to be one.
  void DrawTriad(Canvas& p_canvas, const FigureLayout& p_layout, const Theme& p_theme) const;
  /// Of the axes, in data units.
  Private::Box Limits() const { return _box.Empty() ? Private::Box() : transform.Inverse(_box); }

private:
  void DrawContents(Utility::Scoped<Rgl>& p_gl, const Private::Frame& p_frame,
                    const std::vector<Private::PlotContent*>& p_contents);
  /// Draws a plot with a frame, lifted; on a map, each part of it that is on the map.
  void ForEachCopy(Utility::Scoped<Rgl>& p_gl, const Private::Frame& p_frame, const Private::PlotContent& p_content,
                   const std::function<void(const Private::Frame&)>& p_draw) const;
  /// How far a plot is drawn above the plane of a flat figure: later ones cover earlier ones.
  double LiftOf(const Private::PlotContent& p_content) const;
  /// The distances in the scene by which copies of a plot are moved.
  std::vector<double> ShiftsOf(const Private::PlotContent& p_content) const;
  /// Cuts at the planes of a frame and at the borders of a map.
  boost::shared_ptr<void> CutScope(const Utility::Scoped<Rgl>& p_gl, const Private::Frame& p_frame,
                                   const Private::PlotContent& p_content) const;
  void DrawTransparent(Utility::Scoped<Rgl>& p_gl, Private::Frame p_frame, const std::function<void()>& p_drawOpaque);
  void Adopt(std::unique_ptr<Plot> p_plot);
  std::vector<Types::Plane> SceneCuts() const;
  bool CutsSurfaces() const;
  std::vector<Private::PlotContent*> Visible() const;
  /// Returns the limits of the axes, in data units.
  Private::Box PlacePlots(const QSizeF& p_size);
  Axes MakeAxes(const Private::Box& p_limits) const;
  std::vector<QString> Notes() const;
  std::vector<LegendBlock> Keys(const Theme& p_theme, const View& p_view, double p_pixelRatio) const;

  void ReportOnce(const std::string& p_text);

  bool _isFlat = false;
  std::set<std::string> _reported; ///< of layouts, without digits
  Private::Box _box;               ///< of the axes, in scene units, as of the last layout
};

} // namespace Vek::Chart::Scene
