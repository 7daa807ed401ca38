#pragma once

#include "scene/Axes.h"
#include "scene/Camera.h"

namespace Vek::Chart::Scene::Private {

/// The layout of axes with a box in a viewport that is not empty. Where it is not bounded, strings may leave the
/// viewport. The state has the edges of the last layout, which stay where others are hardly better.
AxesLayout LaidOut(const Axes& p_axes, const Camera& p_camera, const Axes::Target& p_target, Axes::State& p_state,
                   bool p_isBounded);

} // namespace Vek::Chart::Scene::Private
