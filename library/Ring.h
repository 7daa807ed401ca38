#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Property.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Ogl::Library {

/// A flat ring around the z axis, in model units: a closed solid of triangles, counter-clockwise seen from outside.
/// Radii are halved, so that a ring of outer radius 1 fits the unit box.
///
/// The constructor builds the mesh from the default fields; changing a field later does not rebuild it. Drawing reads
/// `position`, `vertices` and `indices`. Indices beyond the vertices are reported and skipped.
///
/// Drawn with the current colour and material. Leaves the current normal changed. With a `position` other than the
/// origin, the translation back is issued before `End`, where GL rejects it (GL_INVALID_OPERATION), so that the matrix
/// stays translated; save and restore the matrix around such a ring.
///
/// \snippet DrawingSnippets.cpp Ring
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Ring {
public:
  /// Builds the mesh of the default ring.
  Ring();

  Types::Vector3_Base<double> position; ///< the centre
  std::int32_t style = 1;               ///< unused by the mesh and by drawing
  double innerRadius = 0.9;             ///< twice the radius of the hole
  double outerRadius = 1.0;             ///< twice the radius of the rim
  /// The extent along z; if not set, outer − inner radius.
  Types::Property<double> thickness{0.0, Types::Property<double>::ChangedBit};
  std::uint32_t segments = 36; ///< around the axis
  std::vector<Types::Vector3_Base<double>>
      vertices;                       ///< four per segment: inner top, outer top, inner bottom, outer bottom
  std::vector<std::uint32_t> indices; ///< eight triangles per segment

  /// Draws the mesh under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;

private:
  void BuildMesh();
};

} // namespace Vek::Chart::Ogl::Library
