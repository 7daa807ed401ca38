#pragma once

#include "library/Export.h"
#include "library/Geometry.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Property.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

namespace Vek::Chart::Library {

/// An axis-aligned box in model units, drawn by stretching the unit cube of a `Geometry`.
///
/// Drawn with the current colour and material. Leaves the current normal changed, and nothing else: translation and
/// scaling are undone by their inverses, so that the matrix returns but for rounding. An edge of length 0 has no
/// inverse; the matrix is lost then.
///
/// \snippet DrawingSnippets.cpp Cuboid
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Cuboid {
public:
  Types::Property<Types::Vector3_Base<double>> position{Types::Vector3_Base<double>(0, 0, 0)}; ///< the centre
  Types::Property<Types::Vector3_Base<double>> size{Types::Vector3_Base<double>(1, 1, 1)};     ///< edge lengths
  Types::Property<bool> filled{true};      ///< as faces, or as lines
  Types::Vector3_Base<double> inverseSize; ///< 1 / size, brought up to date when the box is drawn

  /// Draws the box with the cube of `p_geometry`, and marks its size as used.
  void operator()(const Utility::Unscoped<Rgl>& p_gl, const Geometry& p_geometry);
};

} // namespace Vek::Chart::Library
