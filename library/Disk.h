#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <cstdint>

namespace Vek::Chart::Library {

/// A disk, or a part of one, in the plane z = position.z, in model units; it faces +z. Not filled, only its silhouette
/// is drawn. A new disk is empty until it gets a radius.
///
/// Drawn with the current colour and material and smooth normals. Leaves the current normal changed, and nothing
/// else: the translation is undone by its inverse, so that the matrix returns but for rounding. A quadric that GL
/// cannot make is reported and nothing is drawn.
class VEK_LIBRARY_API Disk {
public:
  Types::Vector3_Base<double> position; ///< the centre
  double innerRadius = 0.0;
  double outerRadius = 0.0;
  std::uint32_t slices = 25;
  std::uint32_t loops = 1;
  double startAngle = 0.0;   ///< degrees, clockwise from +y
  double sweepAngle = 360.0; ///< degrees; exactly 360 draws the whole disk
  bool filled = true;

  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;
};

} // namespace Vek::Chart::Library
