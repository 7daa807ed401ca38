#pragma once

#include "library/Export.h"
#include "library/Geometry.h"
#include "platform/ogl/Rgl.h"
#include "platform/types/Property.h"
#include "platform/types/Vector.h"
#include "platform/utility/Scope.h"

namespace Vek::Chart::Library {

/// An axis-aligned box in model units, drawn by scaling the unit cube of a `Geometry`.
///
/// Drawn with the current colour and material. Leaves the current normal changed. Translation and scaling are undone by
/// their inverses, so that the matrix is restored except for rounding. An edge of length 0 has no finite inverse and
/// leaves an invalid matrix.
///
/// \snippet DrawingSnippets.cpp Cuboid
/// \image html shapes.jpg
/// \ingroup drawables
class VEK_LIBRARY_API Cuboid {
public:
  Types::Property<Types::Vector3_Base<double>> position{Types::Vector3_Base<double>(0, 0, 0)}; ///< the centre
  Types::Property<Types::Vector3_Base<double>> size{Types::Vector3_Base<double>(1, 1, 1)};     ///< edge lengths
  Types::Property<bool> filled{true};      ///< faces if true, otherwise lines
  Types::Vector3_Base<double> inverseSize; ///< 1 / size, updated by drawing

  /// Draws the box with the cube of `p_geometry`, and clears the changed bit of `size`.
  void operator()(const Utility::Unscoped<Rgl>& p_gl, const Geometry& p_geometry);
};

} // namespace Vek::Chart::Library
