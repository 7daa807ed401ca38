#pragma once

#include "scene/Array.h"
#include "scene/InstancedMesh.h"

#include "platform/ogl/Vec.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Scene::Private {

// The arrays of instances as they lie in GPU buffers.

constexpr std::size_t DirectionFloats = 3; ///< of an instance
constexpr std::size_t RotationFloats = 6;  ///< likewise

/// Positions relative to an origin; (MissingValue, 0, 0) for missing ones.
std::vector<Ogl::Vec3<float>> StoredPositions(const Array3& p_positions, const Types::Vector3_Base<double>& p_origin);
/// Sizes; 0 for those that are not above 0 or not finite.
std::vector<float> StoredSizes(const Array1& p_sizes);
/// Values; MissingValue for NaN.
std::vector<float> StoredValues(const Array1& p_values);
/// Unit vectors; zeros for directions that are zero or not finite.
std::vector<float> StoredDirections(const Array3& p_directions);
/// How many of them are zero.
std::size_t CountUndirected(const std::vector<float>& p_directions);
/// The x and y axes of rotations; zeros for those that are not finite.
std::vector<float> StoredRotations(const std::vector<Types::Matrix3>& p_rotations);
/// The ids of `p_count` instances as colours, lowest byte first; 0, 1, 2, … if there are none. Throws
/// std::invalid_argument for an id from PickPass::NoElement on.
std::vector<GpuMesh::Rgba> StoredIds(const std::vector<std::uint32_t>& p_ids, std::size_t p_count);

} // namespace Vek::Chart::Scene::Private
