#pragma once

#include "platform/utility/Threads.h"

#include <cstddef>
#include <cstdint>

namespace Vek::Chart::Library::Private {

/// ComputeNormals of positions that are three floats each, into memory for as many normals. No array is null.
void ComputeFloatNormals(const float* p_positions, std::size_t p_positionCount, const std::uint32_t* p_indices,
                         std::size_t p_indexCount, Utility::Threads p_threads, float* p_normals);

} // namespace Vek::Chart::Library::Private
