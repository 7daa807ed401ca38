#pragma once

#include "scene/Export.h"

#include "scene/AxesLayout.h"
#include "scene/Camera.h"
#include "scene/Canvas.h"
#include "scene/Theme.h"
#include "scene/Ticks.h"

#include "platform/types/Geometry.h"
#include "platform/types/Viewport.h"

#include <QString>

#include <array>
#include <cstddef>
#include <functional>

namespace Vek::Chart::Scene {

/// The box around data, with ticks, values and titles along its outline and a grid on the faces behind the data.
///
/// Values stand at edges that belong to the outline of the projected box, and outside of it, so that none lies over the
/// data, whatever the view. Of the outline edges along z, the leftmost has the values, of those along x and y, the
/// lowest. There are as many ticks as fit, at most MostTicks; an axis that has room for fewer than two, such as
/// one along the line of sight, has no values and no title. Of two strings that meet, titles come before values, z
/// before x before y, and the ends of an axis before its middle; the other one is left out. Flat boxes seen from above
/// have two axes, below and at the left. With the eye inside the box there is nothing, with a corner behind the eye
/// only the grid.
///
/// The box is in units of the scene, the values at its ends are in those of the data, so that axes may be stretched,
/// reversed or logarithmic. What all values of an axis have in common (see Ticks::Note) is shown with the unit, behind
/// the title: "Depth (×10³ m)".
///
/// \snippet SceneViewSnippets.cpp Axes
/// \image html parts/Axes.png
/// \ingroup legends
struct VEK_SCENE_API Axes {
  static constexpr int MostTicks = 9; ///< on one axis

  /// How values lie along an edge.
  enum class Scale {
    Linear,     ///< in proportion
    Logarithmic ///< by their logarithms; both ends must be above 0
  };
  /// Makes the ticks between two values, at most so many with a string; `&Ticks::Linear`, for example.
  using TickMaker = std::function<Ticks(double, double, std::size_t)>;
  /// One of the three axes. One without two different values at its ends, or without ticks, has no values and no title.
  struct Axis {
    QString title;               ///< what the axis measures; may be empty
    QString unit;                ///< of the values; may be empty
    double low = 0;              ///< the value at the lower end of the box
    double high = 0;             ///< the value at the upper end, which may be smaller
    Scale scale = Scale::Linear; ///< see Scale
    TickMaker ticks{};           ///< if empty, Ticks::Linear or Ticks::Logarithmic
  };
  /// Lengths in points.
  struct Lengths {
    double tick = 5; ///< of a tick mark; minor ones are half as long
    double gap = 4;  ///< between marks, values and titles
  };
  /// Which edges had the values last time. An edge is kept until another one is better by five per cent of the
  /// viewport, so that values do not jump to and fro while the camera moves. Start with a new one.
  struct State {
    std::array<int, 3> edges{-1, -1, -1}; ///< for x, y and z: 0 to 3, −1 for none
  };
  /// What a layout is made for.
  struct Target {
    Types::Viewport<0> viewport; ///< in pixels
    double pointSize = 1;        ///< pixels of one point: the device pixel ratio
    AxesLayout::Measure measure; ///< the size of a string; must not be empty
  };

  Types::BoundingBox_Base<double> box; ///< in units of the scene; round limits around whole glyphs look best
  std::array<Axis, 3> axes;            ///< x, y and z
  Lengths lengths{};                   ///< of marks and gaps

  /// Computes lines and strings for a view. Empty boxes give nothing. `p_state` is read and updated. Throws
  /// std::invalid_argument where `p_target.measure` is empty.
  AxesLayout Layout(const Camera& p_camera, const Target& p_target, State& p_state) const;
  /// Moves the camera (see Camera::Fit) so that the box and all strings lie inside the viewport without `p_margins`,
  /// which are pixels, and returns the layout. Strings that the smallest image of the box leaves no room for are left
  /// out. Throws as Camera::Fit and Layout do.
  AxesLayout Fit(Camera& p_camera, const Target& p_target, const Camera::Margins& p_margins, State& p_state) const;

  /// Likewise for a single image, which needs no state.
  AxesLayout Fit(Camera& p_camera, const Target& p_target, const Camera::Margins& p_margins) const;

  /// Measures strings in the fonts of a theme, for Target. Needs a QGuiApplication, as TextRenderer::Size does.
  static AxesLayout::Measure MeasureIn(const Theme& p_theme, double p_pointSize);
  /// Draws a layout in the colours of a theme. The canvas has the viewport and the point size of the layout's target.
  /// Draw the axes before the data: they do not touch the depth buffer, and their grid lies behind everything in the
  /// box.
  static void Draw(Canvas& p_canvas, const AxesLayout& p_layout, const Theme& p_theme);
};

} // namespace Vek::Chart::Scene
