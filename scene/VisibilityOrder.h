#pragma once

#include "scene/Export.h"

#include "platform/types/Geometry.h"
#include "scene/Camera.h"

#include <cstddef>
#include <vector>

namespace Vek::Chart::Scene {

/// The order in which boxes lie before each other for a camera, nearest first: no box comes behind one that it may
/// hide. Images of half-transparent blocks are blended in this order.
///
/// Boxes that share no more than faces are ordered exactly, as two boxes that are separated along an axis cannot hide
/// each other both ways (H. Fuchs, Z. M. Kedem and B. F. Naylor, "On Visible Surface Generation by A Priori Tree
/// Structures", 1980). Where boxes overlap or hide each other in a circle, the one with the nearest centre comes first.
/// Empty boxes come last.
///
/// \param p_boxes in scene units
/// \param p_camera only where it stands and looks counts
/// \return the indices of all boxes
/// \ingroup view
VEK_SCENE_API std::vector<std::size_t> VisibilityOrder(const std::vector<Types::BoundingBox_Base<double>>& p_boxes,
                                                       const Camera& p_camera);

} // namespace Vek::Chart::Scene
