#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <cstdint>

namespace Vek::Chart::Library {

/// An open cylinder or truncated cone along +z, in model units. The default is a frustum whose top has half the radius
/// of its base.
///
/// Drawn with the current colour and material and smooth normals. Leaves the current normal changed. The translation is
/// undone by its inverse, so that the matrix is restored except for rounding. If GL cannot make a quadric, the failure
/// is reported and nothing is drawn.
///
/// \snippet DrawingSnippets.cpp Cylinder
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Cylinder {
public:
  Types::Vector3_Base<double> position; ///< the centre of the base
  double baseRadius = 1.0;              ///< at z = position.z
  double topRadius = 0.5;               ///< at z = position.z + height
  double height = 1.0;                  ///< along z; a negative height extends to −z
  bool filled = true;                   ///< faces if true, otherwise lines
  std::uint32_t slices = 25;            ///< around the axis
  std::uint32_t stacks = 25;            ///< along the axis

  /// Draws the cylinder under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
