#pragma once

#include "scene/TubeMesh.h"

#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <vector>

namespace Vek::Chart::Scene::Private {

/// A point of a tube, and the frame of its section.
struct TubeStation {
  TubeMesh::Point point;
  Types::Matrix3 frame;
};

/// The pieces of a line that a tube is swept along, as `TubeMesh` describes: of valid points, cut at sharp turns, at
/// least two stations each.
std::vector<std::vector<TubeStation>> TubePieces(const std::vector<TubeMesh::Point>& p_line,
                                                 const Types::Vector3_Base<double>& p_up);

} // namespace Vek::Chart::Scene::Private
