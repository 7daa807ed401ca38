#pragma once

#include "scene/Canvas.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"

#include <QColor>
#include <QString>

#include <vector>

namespace Vek::Chart::Gallery {

using namespace Scene;

/// Draws lines and areas in space flat into a part of an canvas, one over the other in the order of the calls.
class Sketch {
public:
  using Point = Types::Vector3_Base<double>;

  /// `p_rect` in points of the canvas, which `p_camera` fills.
  Sketch(Utility::Scoped<Rgl>& p_gl, Canvas& p_canvas, const Canvas::Rect& p_rect, const Camera& p_camera);

  void Line(const Point& p_a, const Point& p_b, double p_width, const QColor& p_color);
  void DashedLine(const Point& p_a, const Point& p_b, double p_width, const QColor& p_color);
  void Outline(const std::vector<Point>& p_corners, double p_width, const QColor& p_color);
  /// A convex polygon.
  void Fill(const std::vector<Point>& p_corners, const QColor& p_color);
  void Dot(const Point& p_center, double p_radius, const QColor& p_color);
  void Text(const QString& p_text, const Point& p_place, double p_dx, double p_dy, const QColor& p_color);

private:
  /// In points of the canvas.
  Types::Vector2_Base<double> At(const Point& p_point) const;
  void Corner(const Types::Vector2_Base<double>& p_point) const;

  Utility::Scoped<Rgl>& _gl;
  Canvas& _canvas;
  Types::Viewport<0> _rect; ///< in points
  Camera _camera;
};

} // namespace Vek::Chart::Gallery
