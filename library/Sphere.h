#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <cstdint>

namespace Vek::Chart::Library {

/// A sphere, in model units.
///
/// Drawn with the current colour and material and smooth normals. Leaves the current normal changed. The translation is
/// undone by its inverse, so that the matrix is restored except for rounding. If GL cannot make a quadric, the failure
/// is reported and nothing is drawn.
///
/// \snippet DrawingSnippets.cpp Sphere
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Sphere {
public:
  Types::Vector3_Base<double> position; ///< the centre
  double radius = 1.0;                  ///< in model units
  bool filled = true;                   ///< faces if true, otherwise lines
  std::uint32_t slices = 25;            ///< around the z axis
  std::uint32_t stacks = 25;            ///< along the z axis

  /// Draws the sphere under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
