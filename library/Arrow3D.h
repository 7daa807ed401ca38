#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <cstdint>

namespace Vek::Chart::Library {

/// An arrow along +z, in model units: a cylindrical shaft and a conical head, both open. The head is always filled.
///
/// Drawn with the current colour and material and smooth normals. Leaves the current normal changed. The translation is
/// undone by its inverse, so that the matrix is restored except for rounding. If GL cannot make a quadric, the failure
/// is reported and the part is not drawn.
///
/// \snippet DrawingSnippets.cpp Arrow3D
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Arrow3D {
public:
  Types::Vector3_Base<double> position; ///< the tail
  double length = 1.0;                  ///< from the tail to the tip
  double headFraction = 0.3;            ///< fraction of the length that the head takes
  double shaftRadius = 0.075;           ///< of the cylinder
  double headRadius = 0.15;             ///< of the cone's base
  std::uint32_t segments = 8;           ///< slices around the axis
  bool filled = true;                   ///< shaft as faces if true, otherwise as lines

  /// Draws the arrow under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
