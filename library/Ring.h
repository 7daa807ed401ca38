#pragma once

#include "library/Export.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Property.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

#include <cstdint>
#include <vector>

namespace Vek::Chart::Ogl::Library {

/// A flat ring around the z axis with walls, in model units: a closed solid of triangles, counter-clockwise seen from
/// outside. Radii are halved, so that a ring of outer radius 1 fits the unit box.
///
/// The mesh is built by the constructor from the default fields; changing a field later does not rebuild it. What
/// drawing reads are `position`, `vertices` and `indices`; indices that name no vertex are reported and left out.
///
/// Drawn with the current colour and material. Leaves the current normal changed, and at the origin nothing else.
/// Elsewhere the translation back is issued before `End`, where GL refuses it (GL_INVALID_OPERATION) and the matrix
/// stays moved; callers that move a ring save the matrix themselves.
///
/// \snippet DrawingSnippets.cpp Ring
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Ring {
public:
  /// Builds the mesh of the default ring.
  Ring();

  Types::Vector3_Base<double> position; ///< the centre
  std::int32_t style = 1;               ///< kept for the engine; not read here
  double innerRadius = 0.9;             ///< of the hole, before it is halved
  double outerRadius = 1.0;             ///< of the rim, before it is halved
  /// The extent along z; when not set, outer − inner radius.
  Types::Property<double> thickness{0.0, Types::Property<double>::ChangedBit};
  std::uint32_t segments = 36; ///< around the axis
  std::vector<Types::Vector3_Base<double>>
      vertices;                       ///< four a segment: inner top, outer top, inner bottom, outer bottom
  std::vector<std::uint32_t> indices; ///< eight triangles a segment

  /// Draws the mesh under a scope of its own on the handle.
  void operator()(const Utility::Unscoped<Rgl>& p_gl) const;

private:
  void BuildMesh();
};

} // namespace Vek::Chart::Ogl::Library
