#pragma once

#include "apps/gallery/MapFrame.h"
#include "scene/Canvas.h"

#include "platform/ogl/Rgl.h"

namespace Vek::Chart::Gallery {

using namespace Scene;

/// Thin meridians and parallels at round degrees, at height `p_z`.
void DrawGraticule(Utility::Scoped<Rgl>& p_gl, const MapFrame& p_map, double p_z);
/// Their names along the southern border, and along the western one.
void LabelMeridians(Canvas& p_canvas, const View& p_view, const MapFrame& p_map, double p_z);
void LabelParallels(Canvas& p_canvas, const View& p_view, const MapFrame& p_map, double p_z);

} // namespace Vek::Chart::Gallery
