#pragma once

#include <array>
#include <cstdint>

namespace Vek::Chart::Library::Private {

/// A flat circular arrow that runs counter-clockwise around (0, 0.5) over 270 degrees: x from −0.499 to
/// 0.499, y from 0.011 to 0.95, z from 0 to 0.15. Closed; triangles run counter-clockwise seen from outside.
///
/// The outline has 26 points. Each is stored four times (z = 0 with the wall's normal and with −z, z = 0.15 with the
/// wall's normal and with +z), those at the four hard corners eight times, once for each of the two walls that meet
/// there.
struct CircularArrowMesh {
  using Triple = std::array<float, 3>;

  static constexpr float Thickness = 0.15f;

  std::array<Triple, 120> positions;
  std::array<Triple, 120> normals;       ///< of unit length; either ±z or without z
  std::array<std::int32_t, 300> indices; ///< 100 triangles

  /// The mesh, built on first use.
  static const CircularArrowMesh& Instance();
};

} // namespace Vek::Chart::Library::Private
