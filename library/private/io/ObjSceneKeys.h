#pragma once

#include "library/private/mesh/CornerVertices.h"

#include <cstdint>

namespace Vek::Chart::Library::Private {

// Normals of corners by one number: those of the file, those of faces, and those to be made, by smoothing group.
constexpr std::uint32_t MostElements = std::uint32_t(1) << 30;
constexpr std::uint32_t FaceNormals = MostElements;
constexpr std::uint32_t SmoothNormalsOf = std::uint32_t(1) << 31;
constexpr std::uint32_t OwnNormal = CornerVertices::None - 1; ///< the one of the position's number

inline bool IsSmooth(std::uint32_t p_normal) {
  return p_normal >= SmoothNormalsOf && p_normal != CornerVertices::None;
}

/// Whether the diagonal between the first and the third corner is the inner one of a quad.
template <class Vector>
bool IsSplitByFirst(const Vector& p_a, const Vector& p_b, const Vector& p_c, const Vector& p_d) {
  const Vector diagonal = p_c - p_a;
  const Vector normal = Cross(diagonal, p_d - p_b);
  return Dot(normal, Cross(p_b - p_a, diagonal)) >= 0 && Dot(normal, Cross(diagonal, p_d - p_a)) >= 0;
}

} // namespace Vek::Chart::Library::Private
