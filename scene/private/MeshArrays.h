#pragma once

#include "scene/Array.h"
#include "scene/GpuMesh.h"

#include "library/ObjModel.h"
#include "platform/ogl/VertexData.h"
#include "platform/types/Vector.h"

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Vek::Chart::Scene::Private {

// The arrays of meshes, from what they are given as.

/// An array that copies of a mesh share; null without elements.
template <class T>
boost::shared_ptr<const std::vector<T>> Share(std::vector<T> p_elements) {
  if (p_elements.empty())
    return {};
  return boost::make_shared<const std::vector<T>>(std::move(p_elements));
}

/// Points relative to an origin.
std::vector<GpuMesh::Record> Records(const Array3& p_array, const Types::Vector3_Base<double>& p_origin);
/// The first `p_count` elements of an array of 2 or 3 floats or doubles each. Throws std::invalid_argument for others.
std::vector<GpuMesh::Record> Records(const char* p_name, const Ogl::VertexData::Array& p_array, std::size_t p_count);
/// The scalars of the first `p_count` elements of an array of 1 to 4 floats or doubles each, likewise.
std::vector<float> TexCoords(const Ogl::VertexData::Array& p_array, std::size_t p_count);
/// Throws std::invalid_argument for indices that are not unsigned.
std::vector<std::uint32_t> Indices(const Ogl::VertexData::Array& p_array);
/// The indices of all groups, without primitives that are incomplete or have an index past the end.
std::vector<std::uint32_t> SoundIndices(const Library::ObjModel& p_model);

} // namespace Vek::Chart::Scene::Private
