#pragma once

#include "scene/Export.h"

#include "scene/TextRenderer.h"
#include "scene/View.h"

#include "library/ColorMap.h"

#include "platform/ogl/Rgl.h"

#include <boost/shared_ptr.hpp>

#include <QString>

#include <string>
#include <vector>

namespace Vek::Chart::Scene {

/// What lies flat over a scene: titles, legends, labels of axes. While it lives, one unit is one point from the lower
/// left corner of the view (1000 points are its height), depth and light are off and colours blend.
///
///     Canvas canvas(gl, view, _text);
///     canvas.Title("Wind of the world", "monthly mean, January 1987");
///     canvas.Bar({600, 60, 1000, 76}, _colors, "Speed in m/s", {{0.0, "0"}, {1.0, "15"}});
class VEK_SCENE_API Canvas {
public:
  struct Rect {
    double left = 0;
    double bottom = 0;
    double right = 0;
    double top = 0;
  };
  /// A place on a scale, 0 to 1, and what is written there; a tick is shorter where nothing is.
  struct Tick {
    double place = 0;
    QString text;
  };

  Canvas(Utility::Scoped<Rgl>& p_gl, const View& p_view, TextRenderer& p_text);

  /// The size of the view in points.
  double Width() const { return _width; }
  double Height() const { return 1000; }
  /// Pixels that make one point.
  double PointSize() const { return _point; }

  void Fill(const Rect& p_rect, const QColor& p_lower, const QColor& p_upper);
  void Fill(const Rect& p_rect, const QColor& p_color) { Fill(p_rect, p_color, p_color); }
  /// The border of a rectangle.
  void Frame(const Rect& p_rect, double p_width, const QColor& p_color);
  using Place = Types::Vector2_Base<double>;
  void Triangle(const Place& p_a, const Place& p_b, const Place& p_c, const QColor& p_color);
  void Line(double p_x0, double p_y0, double p_x1, double p_y1, double p_width, const QColor& p_color);
  void Text(const QString& p_text, double p_x, double p_y, TextRenderer::Anchor p_anchor,
            const TextRenderer::Style& p_style);
  /// A text beside the place where a point of the scene appears, moved by points.
  void TextAt(const QString& p_text, const Types::Vector3_Base<double>& p_point, double p_dx, double p_dy,
              TextRenderer::Anchor p_anchor, const TextRenderer::Style& p_style);

  /// Title and line below it in the upper left corner.
  void Title(const QString& p_title, const QString& p_line);
  /// A horizontal colour bar with its title above, if it has one, and its ticks below.
  void Bar(const Rect& p_rect, const Library::ColorMap& p_colors, const QString& p_title,
           const std::vector<Tick>& p_ticks);

private:
  Utility::Scoped<Rgl>& _gl;
  const View& _view;
  TextRenderer& _text;
  double _point;
  double _width;
  boost::shared_ptr<void> _attributes;
  boost::shared_ptr<void> _projection;
};

/// A part of a view, told in points, as pixels of the window.
VEK_SCENE_API Types::Viewport<0> PartOf(const View& p_view, const Canvas::Rect& p_rect);

/// Clears the view and fills it with the theme's background.
VEK_SCENE_API void DrawBackground(Utility::Scoped<Rgl>& p_gl, const View& p_view, TextRenderer& p_text);

} // namespace Vek::Chart::Scene
