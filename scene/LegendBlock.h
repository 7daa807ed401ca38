#pragma once

#include "scene/Canvas.h"
#include "scene/Export.h"
#include "scene/TextRenderer.h"

#include <QColor>
#include <QImage>
#include <QString>

#include <utility>
#include <vector>

namespace Vek::Chart::Scene {

/// A legend as flat shapes of known extent: what a colour bar, a list of names or a key consists of, before it is
/// drawn. A figure reserves `Width()` and `Height()` in its margins first and draws the block there afterwards; whoever
/// draws by other means than GL takes the shapes from the lists.
///
/// Units: points, x to the right and y upwards, about an origin that the maker of the block states. `bounds` contains
/// all shapes; the functions that add shapes extend it. Strings are measured for the pixels of a point that the
/// constructor takes, which needs a QGuiApplication (see TextRenderer::Size); no function needs GL but `Draw`.
///
/// Order: gradients lie below shapes, these below lines, and those below strings.
///
/// \snippet SceneLegendSnippets.cpp ColorBar
/// \image html parts/ColorBar.png
/// \ingroup legends
class VEK_SCENE_API LegendBlock {
public:
  using Position = Canvas::Position; ///< in points

  /// Bands of equal width across a rectangle.
  struct Gradient {
    Canvas::Rect rect;       ///< in points
    QImage colors;           ///< one row
    bool isVertical = false; ///< whether the first colour lies at the bottom instead of the left
  };
  /// A filled polygon (see Canvas::Polygon).
  struct Shape {
    std::vector<Position> corners; ///< in order
    QColor color;                  ///< of its inside
  };
  /// Straight lines from position to position (see Canvas::Polyline).
  struct Line {
    std::vector<Position> positions; ///< two for a single line
    double width = 1;                ///< in points
    QColor color;                    ///< of the line
  };
  /// A string (see Canvas::Text).
  struct String {
    QString text;                ///< not empty
    Position position;           ///< of the anchor
    TextRenderer::Anchor anchor; ///< the point of its box that lies there
    TextRenderer::Style style;   ///< font and colours
    double rotation = 0;         ///< about the position, counter-clockwise, in degrees
  };

  /// An empty block, whose strings are drawn with `p_pointSize` pixels a point.
  explicit LegendBlock(double p_pointSize = 1)
      : _pointSize(p_pointSize) {}

  ///@{
  /// Appends a shape and extends the bounds.
  void Add(Gradient p_gradient);
  void Add(Shape p_shape);
  void Add(Line p_line);
  ///@}
  /// Appends a string, unless it is empty, and extends the bounds by its box.
  void Add(String p_string);
  /// Appends the shapes of another block, whose origin lies at `p_position` of this one.
  void Add(const LegendBlock& p_block, const Position& p_position);
  /// Extends the bounds.
  void Extend(const Canvas::Rect& p_rect);
  /// The upright rectangle around the box of a string.
  Canvas::Rect BoxOf(const String& p_string) const;

  /// Contains all shapes; empty without any.
  const Canvas::Rect& Bounds() const { return _bounds; }
  /// The width of the bounds.
  double Width() const { return _bounds.right - _bounds.left; }
  /// The height of the bounds.
  double Height() const { return _bounds.top - _bounds.bottom; }
  /// The origin for which the lower left corner of the bounds lies at a position.
  Position OriginFor(const Position& p_lowerLeft) const {
    return {p_lowerLeft.x - _bounds.left, p_lowerLeft.y - _bounds.bottom};
  }

  ///@{
  /// The shapes in the order of drawing. Valid as long as the block, so a temporary block has none.
  const std::vector<Gradient>& Gradients() const& { return _gradients; }
  const std::vector<Shape>& Shapes() const& { return _shapes; }
  const std::vector<Line>& Lines() const& { return _lines; }
  const std::vector<String>& Strings() const& { return _strings; }
  ///@}
  void Gradients() && = delete;
  void Shapes() && = delete;
  void Lines() && = delete;
  void Strings() && = delete;

  /// Draws the shapes on a canvas, with the origin at a position.
  void Draw(Canvas& p_canvas, const Position& p_origin) const;
  /// Draws the shapes with the lower left corner of the bounds at a position.
  void DrawAt(Canvas& p_canvas, const Position& p_lowerLeft) const { Draw(p_canvas, OriginFor(p_lowerLeft)); }

private:
  double _pointSize;
  bool _isEmpty = true;
  Canvas::Rect _bounds;
  std::vector<Gradient> _gradients;
  std::vector<Shape> _shapes;
  std::vector<Line> _lines;
  std::vector<String> _strings;
};

} // namespace Vek::Chart::Scene
