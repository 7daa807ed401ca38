#pragma once

#include "scene/Export.h"
#include "scene/TextRenderer.h"
#include "scene/View.h"

#include "library/Texture.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <boost/shared_ptr.hpp>

#include <QColor>
#include <QImage>
#include <QSizeF>
#include <QString>

#include <array>
#include <memory>
#include <vector>

namespace Vek::Chart::Scene {

/// Draws flat figures over a viewport: fills, lines, polygons, strings, images.
///
/// Units: positions and lengths are in points from the viewport's lower left corner, x to the right and y upwards. A
/// point takes as many pixels as the caller states: the device pixel ratio, so that letters keep their size when the
/// window grows, or `ThousandthOfHeight`, so that they grow with it. Lines are at least one pixel wide.
///
/// Order: figures are collected, and are drawn together in the order of the calls, in few calls of GL: by `Flush`,
/// before an image, and at the end of the canvas. Whoever draws by other means in between calls `Flush` first.
///
/// State: the constructor sets GL's viewport, a projection to its pixels and the state to draw over what is there (no
/// depth, light, clip planes or shader; blending by alpha; the scissor is the host's). The destructor restores all GL
/// state. Calls of the host's between both must not change it for longer than they draw.
///
/// Ownership: one canvas lives within one rendering scope, and refers to the scope and the text renderer. It keeps no
/// GL objects. GL needs buffer objects that can be mapped.
///
/// Errors: a viewport without width or height is reported ("p_viewport.width > 0 && p_viewport.height > 0"), and
/// nothing appears. Images and strings that cannot be drawn are reported by Library::Texture and TextRenderer. The
/// destructor draws what is left and throws nothing: call `Flush` before where exceptions of a report's sink matter.
///
/// \snippet SceneTextSnippets.cpp Canvas
/// \image html parts/Canvas.png
/// \ingroup legends
class VEK_SCENE_API Canvas {
public:
  using Position = Types::Vector2_Base<double>; ///< in points

  /// A rectangle in points.
  struct Rect {
    double left = 0;   ///< the least x
    double bottom = 0; ///< the least y
    double right = 0;  ///< the greatest x
    double top = 0;    ///< the greatest y
  };

  /// Pixels of a point of which 1000 make the viewport's height.
  static double ThousandthOfHeight(const Types::Viewport<0>& p_viewport) {
    return static_cast<double>(p_viewport.height) / 1000.0;
  }

  /// Begins to draw over a viewport of the window; a point takes `p_pointSize` pixels.
  Canvas(Utility::Scoped<Rgl>& p_gl, const Types::Viewport<0>& p_viewport, const TextRenderer& p_text,
         double p_pointSize = 1);
  /// Draws what was collected and restores GL's state.
  ~Canvas();
  Canvas(const Canvas&) = delete;
  Canvas& operator=(const Canvas&) = delete;

  /// Draws what was collected since the last time.
  void Flush();

  /// The width of the viewport in points.
  double Width() const { return static_cast<double>(_viewport.width) / _point; }
  /// The height of the viewport in points.
  double Height() const { return static_cast<double>(_viewport.height) / _point; }
  /// Pixels of one point.
  double PointSize() const { return _point; }
  /// A part of the canvas as a viewport of the window, in whole pixels.
  Types::Viewport<0> Part(const Rect& p_rect) const;

  /// Fills a rectangle.
  void Fill(const Rect& p_rect, const QColor& p_color) { Fill(p_rect, p_color, p_color); }
  /// Fills a rectangle with a vertical gradient.
  void Fill(const Rect& p_rect, const QColor& p_lower, const QColor& p_upper);
  /// The border of a rectangle, half of which lies outside; no pixel is drawn twice.
  void Frame(const Rect& p_rect, double p_width, const QColor& p_color);
  /// A straight line with square ends at both positions. Nothing if these are equal.
  void Line(const Position& p_from, const Position& p_to, double p_width, const QColor& p_color);
  /// Straight lines from position to position with mitred joints, which are cut off at sharp angles (below 29 degrees).
  /// A position with a coordinate that is not finite interrupts the line; repeated ones are left out.
  void Polyline(const std::vector<Position>& p_positions, double p_width, const QColor& p_color);
  /// A filled triangle.
  void Triangle(const Position& p_a, const Position& p_b, const Position& p_c, const QColor& p_color);
  /// A filled polygon, with its corners in order; it must be convex, or its inside must contain the lines from the
  /// first corner to all others. Nothing with fewer than three corners.
  void Polygon(const std::vector<Position>& p_corners, const QColor& p_color);

  /// The size in points that a string takes here.
  QSizeF TextSize(const QString& p_text, const TextRenderer::Style& p_style) const {
    return TextRenderer::Size(p_text, p_style, _point);
  }
  /// A string (see TextRenderer::Draw).
  void Text(const QString& p_text, const Position& p_position, TextRenderer::Anchor p_anchor,
            const TextRenderer::Style& p_style, double p_rotation = 0);
  /// A string at the position where a view shows a point of the scene, moved by points. Nothing if that point is behind
  /// the camera.
  void TextAt(const QString& p_text, const View& p_view, const Types::Vector3_Base<double>& p_point,
              const Position& p_offset, TextRenderer::Anchor p_anchor, const TextRenderer::Style& p_style,
              double p_rotation = 0);
  /// The position where a window pixel lies.
  Position PositionOf(const Camera::Pixel& p_pixel) const;

  /// Bands of equal width across a rectangle, in the colours of the first row of an image: from left to right, or from
  /// bottom to top. Each pixel has the colour of the band that its centre lies in. As many bands as the device has
  /// texels in a row.
  void Bands(const Rect& p_rect, const QImage& p_colors, bool p_isVertical);
  /// An image, stretched over a rectangle, filtered linearly. Its texture is made for this call; an image that is drawn
  /// again and again is better kept as a Library::Texture.
  void Image(const Rect& p_rect, const QImage& p_image);
  /// A texture, stretched over a rectangle. Its settings are used.
  void Image(const Rect& p_rect, const Library::Texture& p_texture);

private:
  Position Pixel(const Position& p_position) const { return {p_position.x * _point, p_position.y * _point}; }
  std::array<Position, 4> Corners(const Rect& p_rect) const;
  double LineWidth(double p_width) const;
  void FlushIfLarge();

  Utility::Scoped<Rgl>& _gl;
  const TextRenderer& _text;
  Types::Viewport<0> _viewport;
  double _point;
  std::unique_ptr<Private::FlatBatch> _batch;
  // Guards, released in reverse.
  boost::shared_ptr<void> _viewportGuard;
  boost::shared_ptr<void> _flatGuard;
  boost::shared_ptr<void> _projectionGuard;
};

} // namespace Vek::Chart::Scene
