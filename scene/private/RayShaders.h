#pragma once

#include "scene/VolumeRaycaster.h"

#include <string>

namespace Vek::Chart::Scene::Private {

/// What a ray writes to its pixel.
enum class RayOutput { Color, Depth, Id };

/// The vertex shader of rays: its vertices are corners of a rectangle in normalised device coordinates.
extern const char* const RayVertexText;

/// The fragment shader that casts the rays of a mode, lit in Composite mode with `p_shading`, through a grid of
/// even or of uneven cells. Its uniforms are listed at its start.
std::string RayFragmentText(VolumeRaycaster::Mode p_mode, RayOutput p_output, bool p_shading, bool p_isEven);

} // namespace Vek::Chart::Scene::Private
