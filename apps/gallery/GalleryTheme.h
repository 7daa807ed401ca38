#pragma once

#include "scene/Canvas.h"
#include "scene/View.h"

#include "platform/ogl/Rgl.h"
#include "platform/types/Viewport.h"
#include "platform/utility/Scope.h"

#include <QColor>
#include <QString>

namespace Vek::Chart::Gallery {

using namespace Scene;

/// The colours and sizes that all pictures share.
namespace GalleryTheme {

inline const QColor BackgroundTop(0x18212C);
inline const QColor BackgroundBottom(0x0B1017);
inline const QColor Title(0xF2F0EA);
inline const QColor Text(0xB9C2CC);
inline const QColor Faint(0x74808D);
inline const QColor Line(0x4A5664);

// Sizes of letters in points.
constexpr double TitleSize = 38;
constexpr double TextSize = 21;
constexpr double SmallSize = 18;

} // namespace GalleryTheme

/// Pixels of a point in a picture, of which 1000 make its height.
inline double PointSize(const View& p_view) {
  return Canvas::ThousandthOfHeight(p_view.viewport);
}

/// A part of a view, given in points, in window pixels.
Types::Viewport<0> PartOf(const View& p_view, const Canvas::Rect& p_rect);

/// Clears the view and fills it with the background of all pictures.
void DrawBackground(Utility::Scoped<Rgl>& p_gl, const View& p_view);

/// A title, and a line below it, in the upper left corner.
void DrawTitle(Canvas& p_canvas, const QString& p_title, const QString& p_line);

/// The edge of a panel, one point wide. Its corners are open, other than Canvas::Frame's.
void DrawEdge(Canvas& p_canvas, const Canvas::Rect& p_rect);

} // namespace Vek::Chart::Gallery
