#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <cstdint>

namespace Vek::Chart::Library {

/// A disk or a sector of one, in model units, in the plane z = position.z; it faces +z. Unfilled disks show their
/// silhouette only. The default disk has radius 0 and is invisible.
///
/// Drawn with the current colour and material and smooth normals. Leaves the current normal changed. The translation is
/// undone by its inverse, so that the matrix is restored except for rounding. If GL cannot make a quadric, the failure
/// is reported and nothing is drawn.
///
/// \snippet DrawingSnippets.cpp Disk
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Disk {
public:
  Types::Vector3_Base<double> position; ///< the centre
  double innerRadius = 0.0;             ///< of the hole; 0 for none
  double outerRadius = 0.0;             ///< of the rim
  std::uint32_t slices = 25;            ///< around the centre
  std::uint32_t loops = 1;              ///< from the centre to the rim
  double startAngle = 0.0;              ///< degrees, clockwise from +y
  double sweepAngle = 360.0;            ///< degrees; exactly 360 draws the whole disk
  bool filled = true;                   ///< a face if true, otherwise the silhouette as lines

  /// Draws the disk under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
