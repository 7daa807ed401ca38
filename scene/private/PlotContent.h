#pragma once

// How a plot is added to Figure:
//
// 1. The public class, `class BarsPlot : public ColoredPlot<BarsPlot>` in scene/BarsPlot.h, has the settings of its own
//    and forwards them to its content. Its constructor is private, with Figure as a friend.
// 2. The content, `class BarsContent : public PlacedContent` in scene/private/BarsContent.h, copies the data in its
//    constructor and implements the functions of PlotContent. Most of them come from PlacedContent, which compares
//    placements and counts what is left out, or from PointsContent, which has positions as well.
// 3. Figure gets `BarsPlot& Bars(...)`, one line: `return _state->Add(std::unique_ptr<BarsPlot>(new BarsPlot(...)))`.
//
// Limits, axes, colour bars, keys, notes, order of drawing, transparency and removal follow from these functions.

#include "scene/Camera.h"
#include "scene/Legend.h"
#include "scene/PeelPass.h"
#include "scene/PickPass.h"
#include "scene/private/Coloring.h"
#include "scene/private/DataTransform.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Geometry.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QColor>
#include <QString>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// What plots are placed by. `Place` is called before each drawing: compare, and do nothing where nothing changed.
struct Placement {
  DataTransform transform; ///< from data to the scene
  AxisRules rules;         ///< points that they do not show are left out
  double diagonal = 1;     ///< of the box of all data, in scene units
  bool isFlat = false;     ///< whether all data lie in one plane, seen from above
  std::size_t most = 0;    ///< glyphs that the image has room for

  bool operator==(const Placement& p_other) const {
    return transform == p_other.transform && rules == p_other.rules && diagonal == p_other.diagonal &&
           isFlat == p_other.isFlat && most == p_other.most;
  }
};

/// What plots are drawn with. The camera's matrices are loaded, and a light is on.
struct Frame {
  Camera camera;
  Types::Viewport<0> viewport;
  double pixelRatio = 1; ///< pixels of a point
  QColor ink;            ///< of lines whose colour means nothing
  QColor line;           ///< of axes and frames
  /// Cutting planes, in scene units. GL's clip planes are set to them, so that only parts that compute their fragments
  /// otherwise need them.
  std::vector<Types::Plane> cuts{};
  bool isMoving = false;           ///< another frame follows soon: coarser may do
  std::size_t mostVertices = 0;    ///< about, of glyphs or lines; 0 for any number
  std::size_t mostMoving = 0;      ///< the same in moving frames; 0 also where there will be none
  std::size_t mostAtOnce = 0;      ///< glyphs that are drawn before others, to save memory; 0 for any number
  std::size_t mostLayers = 0;      ///< of the depth peeling that the drawing belongs to; 0 without one
  const PeelPass* layer = nullptr; ///< of half-transparent plots; for the drawings of parts (see PlotContent::IsPeeled)
};

/// What the length of arrows means (see ArrowKey).
struct LengthKey {
  QString title;
  double scale = 0;   ///< scene units in a unit of the data
  double typical = 0; ///< length of a long arrow, in scene units
  QColor color;       ///< invalid where colours mean values
};
/// What the size of symbols means (see SizeLegend).
struct SizeKey {
  QString title;
  double least = 0;    ///< the smallest value that has a symbol
  double largest = 0;  ///< the largest value
  double diameter = 0; ///< of the largest value, in scene units
  double growth = 0;   ///< of diameters for each unit of a value; 0 where areas are in proportion to values

  /// The diameter of the symbol of a value, relative to that of the largest one.
  double Factor(double p_value) const {
    return growth > 0 ? std::pow(growth, p_value - largest) : p_value > 0 ? std::sqrt(p_value / largest) : 0;
  }
};

/// What lies under a pixel that shows a plot.
struct Picked {
  std::optional<std::size_t> element; ///< empty if unknown
  Point position;                     ///< in data units
  std::optional<double> value;        ///< by which it has its colour; NaN if missing
};

/// What Figure needs of a plot.
class PlotContent {
public:
  PlotContent() = default;
  virtual ~PlotContent() = default;
  PlotContent(const PlotContent&) = delete;
  PlotContent& operator=(const PlotContent&) = delete;

  // Settings, by Plot.
  bool isVisible = true;
  double opacity = 1;
  QString label;
  Coloring coloring;
  std::size_t revision = 0; ///< another one after each change
  Box placedBox;            ///< what Place returned last, kept by Figure
  /// Sets the values of `ColorBy`.
  virtual void SetColorValues(const std::vector<double>& p_values) { coloring.SetPlacedValues(p_values); }
  /// Called after the values changed.
  virtual void ValuesChanged() {}

  /// How many elements there are, which is also how many values `coloring` must have.
  virtual std::size_t Count() const = 0;
  /// The box around the data that the rules show, without glyphs, in data units; empty if there are none.
  virtual Box Bounds(const AxisRules& p_rules) = 0;
  /// Whether vectors leave the plane z = const. (Positions that do are seen by their bounds.)
  virtual bool LeavesPlane() const { return false; }
  /// Places the data and returns the box around whole glyphs, in scene units.
  virtual Box Place(const Placement& p_placement) = 0;
  /// Whether it is cut at the limits of the axes where the rules say so. Others leave out what lies beyond.
  virtual bool IsSurface() const { return false; }
  /// Whether things behind it are seen.
  virtual bool IsTransparent() const { return opacity < 1; }
  /// Whether Draw passes `Frame::layer` on to all parts, so that several layers of a half-transparent plot are seen. Of
  /// other plots, the nearest surface alone is seen, and none of them through another one.
  virtual bool IsPeeled() const { return false; }
  /// Whether Draw blends with what is there and writes no depth: a volume. It is drawn once, after opaque plots and
  /// before half-transparent ones.
  virtual bool IsBlended() const { return false; }
  /// Draws. Called for each frame, several times if the plot is half-transparent.
  virtual void Draw(Utility::Scoped<Rgl>& p_gl, const Frame& p_frame) = 0;
  /// Draws for a Picker. Without an implementation, the plot is never picked.
  virtual void DrawPick(Utility::Scoped<Rgl>& /*p_gl*/, const Frame& /*p_frame*/, const PickPass& /*p_pass*/) {}
  /// What the number that DrawPick drew stands for, at a point of the scene. By default, numbers are those of elements.
  virtual Picked Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const;
  /// Frees what the scope's context has.
  virtual void Release(const Utility::Scoped<Rgl>& p_gl) const = 0;

  /// What the last drawing in this context left out since there was no time for it; empty for nothing.
  virtual QString Shortage(const Utility::Scoped<Rgl>& /*p_gl*/) const { return {}; }

  // What the figure must say.
  virtual std::vector<QString> Notes() const { return {}; }
  virtual Legend::Mark Mark() const { return Legend::Mark::Dot; }
  virtual std::optional<LengthKey> Lengths() const { return {}; }
  virtual std::optional<SizeKey> Sizes() const { return {}; }

protected:
  Placement _placement; ///< of the last placing
  /// An element, at a position in data units.
  Picked PickedAt(std::size_t p_element, const Point& p_position) const;
};

} // namespace Vek::Chart::Scene::Private
