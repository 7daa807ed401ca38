#pragma once

#include "scene/AxesLayout.h"
#include "scene/Canvas.h"
#include "scene/LegendBlock.h"
#include "scene/TextStyle.h"
#include "scene/Theme.h"

#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QSizeF>

namespace Vek::Chart::Scene::Private {

/// Paints what lies around the data of a chart by QPainter: what `Canvas` draws by GL. A unit of the painter is a
/// point, its origin is the page's upper left corner. Positions are those of a canvas, from the lower left corner
/// upwards.
class PagePainter {
public:
  PagePainter(QPainter& p_painter, const QSizeF& p_size);

  void Background(const Theme& p_theme);
  void Paint(const AxesLayout& p_axes, const Theme& p_theme);
  void Paint(const LegendBlock& p_block, const Canvas::Position& p_origin);
  /// An image that covers the page, of which only the part with contents is painted.
  void Paint(const QImage& p_image);

private:
  QPointF At(const Canvas::Position& p_position) const { return {p_position.x, _size.height() - p_position.y}; }
  void Line(const std::vector<Canvas::Position>& p_positions, const Canvas::Position& p_origin, double p_width,
            const QColor& p_color);
  void Bands(const LegendBlock::Gradient& p_gradient, const Canvas::Position& p_origin);
  void Text(const QString& p_text, const Canvas::Position& p_position, TextRenderer::Anchor p_anchor,
            const TextStyle& p_style, double p_rotation);

  QPainter& _painter;
  QSizeF _size;
};

/// An image with alpha of what is drawn the same on any background, from one on black and one on white (A. R. Smith and
/// J. F. Blinn, "Blue Screen Matting", SIGGRAPH 1996). Both have the same size.
QImage WithoutBackground(const QImage& p_onBlack, const QImage& p_onWhite);

} // namespace Vek::Chart::Scene::Private
