#pragma once

#include "scene/Export.h"

#include "scene/Canvas.h"

#include "library/ColorMap.h"
#include "library/ColorScale.h"

#include <QString>

#include <vector>

namespace Vek::Chart::Scene {

/// Ticks of a logarithmic scale between two values above 0: written at both ends and at the powers of ten between them,
/// bare at 2 to 9 times those.
VEK_SCENE_API std::vector<Canvas::Tick> LogTicks(double p_min, double p_max);

/// Ticks at the bounds of classes that all have the same width on the bar.
VEK_SCENE_API std::vector<Canvas::Tick> ClassTicks(const std::vector<double>& p_bounds);

/// Canvas's bar in the middle of `p_rect`, with an arrow at each end in the colour of what lies beyond it.
VEK_SCENE_API void DrawColorBar(Canvas& p_canvas, const Canvas::Rect& p_rect, const Library::ColorMap& p_colors,
                                const Library::ColorScale::Outside& p_outside, const QString& p_title,
                                const std::vector<Canvas::Tick>& p_ticks);

/// Says what the colours outside of scales stand for, in a row whose left end is at a place; `p_nan` names what is not
/// a number.
VEK_SCENE_API void DrawOutsideKey(Canvas& p_canvas, double p_left, double p_y,
                                  const Library::ColorScale::Outside& p_outside, const QString& p_nan);

} // namespace Vek::Chart::Scene
