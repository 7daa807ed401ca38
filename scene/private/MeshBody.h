#pragma once

#include "scene/GpuMesh.h"

#include "platform/types/Vector.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

/// Triangles around a point.
struct Triangles {
  const std::vector<GpuMesh::Record>& positions;
  const std::vector<std::uint32_t>& indices; ///< if empty, positions in their order
  Types::Vector3_Base<double> origin;
};

/// The distance of the farthest vertex from the origin.
double OuterRadius(const Triangles& p_triangles);
/// The radius of a ball around the origin that the triangles enclose; 0 if they are not a closed surface around it.
double EnclosedRadius(const Triangles& p_triangles);
/// The radius of a disc around the origin that flat triangles, in the plane z = 0, cover; 0 for others.
double CoveredRadius(const Triangles& p_triangles);

} // namespace Vek::Chart::Scene::Private
