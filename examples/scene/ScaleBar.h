#pragma once

#include "examples/scene/Overlay.h"

#include "library/ColorMap.h"
#include "library/ColorScale.h"

#include <QString>

#include <vector>

namespace Vek::Chart::Gallery {

/// Ticks of a logarithmic scale between two values above 0: written at both ends and at the powers of ten between them,
/// bare at 2 to 9 times those.
std::vector<Overlay::Tick> LogTicks(double p_min, double p_max);

/// Ticks at the bounds of classes that all have the same width on the bar.
std::vector<Overlay::Tick> ClassTicks(const std::vector<double>& p_bounds);

/// Overlay's bar in the middle of `p_rect`, with an arrow at each end in the colour of what lies beyond it.
void DrawScaleBar(Overlay& p_overlay, const Overlay::Rect& p_rect, const Library::ColorMap& p_colors,
                  const Library::ColorScale::Outside& p_outside, const QString& p_title,
                  const std::vector<Overlay::Tick>& p_ticks);

/// Says what the colours outside of scales stand for, in a row whose left end is at a place; `p_nan` names what is not
/// a number.
void DrawOutsideKey(Overlay& p_overlay, double p_left, double p_y, const Library::ColorScale::Outside& p_outside,
                    const QString& p_nan);

} // namespace Vek::Chart::Gallery
