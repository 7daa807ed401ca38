#pragma once

#include "library/ColorScale.h"
#include "scene/Canvas.h"
#include "scene/ColorBar.h"
#include "scene/Ticks.h"

#include <QString>

#include <cstddef>

namespace Vek::Chart::Gallery {

using namespace Scene;

/// Ticks of a scale from 0 to `p_max` at round values; with `p_open`, the one at the upper end says that there are
/// values beyond it.
Ticks TicksFromZero(double p_max, std::size_t p_most, bool p_open);

/// Logarithmic ticks with strings at both ends.
Ticks LogTicksWithEnds(double p_min, double p_max, std::size_t p_most);

/// A horizontal bar whose colours fill a rectangle, in the letters of all pictures.
void DrawBar(Canvas& p_canvas, const Canvas::Rect& p_colors, ColorBar p_bar, const QString& p_title,
             const Ticks& p_ticks);

/// A horizontal bar with points at both ends that fills a rectangle.
void DrawPointedBar(Canvas& p_canvas, const Canvas::Rect& p_rect, ColorBar p_bar, const QString& p_title,
                    const Ticks& p_ticks);

/// What the colours outside of scales stand for, in a row whose left end is at a place; `p_nan` names what is not a
/// number.
void DrawOutsideKey(Canvas& p_canvas, double p_left, double p_y, const Library::ColorScale::Outside& p_outside,
                    const QString& p_nan);

} // namespace Vek::Chart::Gallery
