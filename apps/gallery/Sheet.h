#pragma once

#include "scene/Camera.h"
#include "scene/Canvas.h"
#include "scene/Figure.h"
#include "scene/LegendBlock.h"
#include "scene/TextRenderer.h"
#include "scene/Theme.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Size.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QImage>
#include <QString>

#include <functional>

namespace Vek::Chart::Gallery {

using namespace Scene;

/// The dark theme of all pictures, for figures that are drawn with FigurePoint pixels a thousandth of the height.
Theme FigureTheme();
constexpr double FigurePoint = 1.5;

/// An image that is made of several parts: flat figures, models, charts. Lengths are in thousandths of its height, from
/// the lower left corner.
struct Sheet {
  using Rect = Canvas::Rect;

  Utility::Scoped<Rgl>& scope; ///< for drawing beside what is on the canvas, in any order
  Types::Viewport<0> viewport; ///< of the whole image, in pixels
  Theme theme;                 ///< FigureTheme in the lengths of the sheet
  Canvas canvas;               ///< over the whole image

  /// For drawing over what was drawn on the canvas so far.
  Utility::Scoped<Rgl>& Gl();
  /// Draws a figure into a part, without the gap between figures and their borders.
  void Draw(Figure& p_figure, const Rect& p_rect);
  /// Draws into a part under a camera.
  void Draw(const Camera& p_camera, const Rect& p_rect, const std::function<void(const View&)>& p_draw);
  /// A string in the small size.
  void Label(const QString& p_text, double p_x, double p_y, TextRenderer::Anchor p_anchor = {0, 0.5});
  /// Likewise, in the colour of remarks.
  void Remark(const QString& p_text, double p_x, double p_y, TextRenderer::Anchor p_anchor = {0, 0.5});
  /// Bold, in the size of text.
  void Heading(const QString& p_text, double p_x, double p_y, TextRenderer::Anchor p_anchor = {0, 0.5});
};

/// Draws a sheet with a background and titles.
///
/// \param p_isSmooth whether it is drawn at twice the size and averaged; otherwise each pixel is as it was drawn
QImage DrawSheet(const QString& p_title, const QString& p_subtitle, Types::Size p_size,
                 const std::function<void(Sheet&)>& p_draw, bool p_isSmooth = true);

} // namespace Vek::Chart::Gallery
