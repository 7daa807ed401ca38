#pragma once

#include "library/Export.h"
#include "platform/types/Vector.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Library {

/// A sphere of radius 1 around the origin, made of triangles of even size: an icosahedron whose triangles are divided
/// into four, as often as wanted.
///
/// n divisions make 20 × 4^n triangles between 10 × 4^n + 2 corners. Triangles run counter-clockwise seen from outside
/// and share their corners. Their edges lie within the sphere by up to 0.149, 0.0489, 0.0133, 0.00339, 0.000853 of the
/// radius for 0 to 4 divisions. The first 10 × 4^k + 2 corners are those of k divisions.
///
/// \snippet GlyphSnippets.cpp Icosphere
/// \ingroup glyphs
struct VEK_LIBRARY_API Icosphere {
  /// The largest number of divisions: 21 million triangles.
  static constexpr unsigned int MostDivisions = 10;

  /// Throws std::invalid_argument for more than MostDivisions.
  explicit Icosphere(unsigned int p_divisions);

  std::vector<Types::Vector3_Base<double>> positions; ///< of unit length, so that they are the normals as well
  std::vector<std::uint32_t> indices;                 ///< three for a triangle
};

} // namespace Vek::Chart::Library
