#pragma once

#include "apps/gallery/MapFrame.h"
#include "scene/Canvas.h"

#include "platform/ogl/Rgl.h"

#include <QString>

#include <vector>

namespace Vek::Chart::Gallery {

using namespace Scene;

/// "60° W", "0°", "45.5° N".
QString LongitudeText(double p_degrees);
QString LatitudeText(double p_degrees);

/// Values at a round step (1, 2 or 5 times a power of ten; 15, 30, 60 for degrees in the tens) from `p_min` to `p_max`,
/// `p_most` of them at most.
std::vector<double> RoundTicks(double p_min, double p_max, std::size_t p_most);

/// Ticks of a scale from 0 to `p_max` at such values; with `p_open`, the one at the upper end says that there are
/// values beyond it.
std::vector<Canvas::Tick> TicksFromZero(double p_max, std::size_t p_most, bool p_open);

/// Thin meridians and parallels at round degrees, at height `p_z`.
void DrawGraticule(Utility::Scoped<Rgl>& p_gl, const MapFrame& p_map, double p_z);
/// Their names along the southern border, and along the western one.
void LabelMeridians(Canvas& p_canvas, const View& p_view, const MapFrame& p_map, double p_z);
void LabelParallels(Canvas& p_canvas, const View& p_view, const MapFrame& p_map, double p_z);

} // namespace Vek::Chart::Gallery
