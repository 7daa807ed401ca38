#pragma once

#include "scene/Export.h"

#include "platform/types/Vector.h"

#include <QSizeF>
#include <QString>

#include <array>
#include <cstddef>
#include <functional>
#include <vector>

namespace Vek::Chart::Scene {

/// Where the lines and strings of Axes lie in an image: a plain value, in the units of a Canvas, which are points from
/// the lower left corner of the viewport, x to the right and y upwards. `Axes::Layout` computes it without GL;
/// `Axes::Draw` draws it.
///
/// No two rectangles of labels meet, none meets the projected box, and none leaves the viewport.
///
/// \snippet SceneViewSnippets.cpp AxesLayout
/// \ingroup legends
struct VEK_SCENE_API AxesLayout {
  using Position = Types::Vector2_Base<double>; ///< in points

  /// Which of the theme's fonts a string has.
  enum class Font {
    Tick, ///< values at ticks
    Title ///< titles of axes
  };
  /// The size of a string in points. Called often with equal strings.
  using Measure = std::function<QSizeF(const QString&, Font)>;

  /// A straight line.
  struct Line {
    /// What a line is.
    enum class Kind {
      Grid, ///< across a far face, at a tick
      Edge, ///< an edge of the box
      Tick  ///< a short mark outside of the box
    };
    Position from; ///< one end
    Position to;   ///< the other end
    Kind kind;     ///< what it is
  };
  /// A string in a rectangle.
  struct Label {
    QString text;        ///< one line
    Position center;     ///< of the rectangle
    double rotation = 0; ///< degrees counter-clockwise about the centre, above −80 and up to 100
    QSizeF size;         ///< of the rectangle before it is rotated
    Font font;           ///< of the string
    std::size_t axis;    ///< 0 to 2, for x to z

    /// The corners of the rectangle, counter-clockwise.
    std::array<Position, 4> Corners() const;
  };
  /// An upright rectangle.
  struct Rect {
    double left = 0;   ///< the least x
    double bottom = 0; ///< the least y
    double right = 0;  ///< the greatest x
    double top = 0;    ///< the greatest y
  };

  std::vector<Line> lines;       ///< in the order of drawing
  std::vector<Label> labels;     ///< titles first, then values
  std::vector<Position> corners; ///< the projected corners of the box; none where one of them is behind the eye

  /// The smallest rectangle around labels, tick marks and corners; zeros where there are none.
  Rect Bounds() const;
};

} // namespace Vek::Chart::Scene
