#pragma once

#include "library/Export.h"
#include "platform/types/Geometry.h"
#include "platform/types/Vector.h"
#include "platform/types/Viewport.h"

#include <boost/logic/tribool.hpp>

#include <vector>

namespace Vek::Chart::Library {

/// Intersections of planes, rays, segments, axis-aligned boxes and viewports.
///
/// Thread-safe. Nothing is reported, and only a vector that grows throws. On a miss the result is false, and the output
/// argument is not written unless stated otherwise. It may be one of the input arguments. Computed in double precision
/// unless stated otherwise. `epsilon` below is the machine epsilon of double, 2^-52.
///
/// \snippet DataSnippets.cpp Intersect
/// \image html cuts.jpg
/// \ingroup cuts
class VEK_LIBRARY_API Intersect {
public:
  /// The line in which two planes meet: a point on both, and as direction the cross product of the two normals, not
  /// normalised. False, never indeterminate, if the squared length of that product is below epsilon: for unit normals,
  /// at angles below about 1.49e-8 radians; also for coincident planes.
  ///
  /// The point is computed through single precision on purpose and has its rounding errors. At small angles (for unit
  /// normals below about 2.4e-4 radians) the determinant may be zero there: the result is then true, with a point whose
  /// components are infinite or NaN.
  static boost::logic::tribool Intersection(const Types::Plane& p_first, const Types::Plane& p_second,
                                            Types::Line3_Base<double>& p_line);

  /// The point in which a plane cuts a ray, that is the segment from its origin to origin + direction.
  static boost::logic::tribool Intersection(const Types::Plane& p_plane, const Types::Ray_Base<double>& p_ray,
                                            Types::Vector3_Base<double>& p_point);

  /// The point in which a plane cuts the segment between two points, both ends included. Indeterminate, without a
  /// point, if the segment lies in the plane; false if it is parallel to the plane or does not reach it.
  static boost::logic::tribool Intersection(const Types::Plane& p_plane, const Types::Vector3_Base<double>& p_start,
                                            const Types::Vector3_Base<double>& p_end,
                                            Types::Vector3_Base<double>& p_point);

  /// The polygon in which a plane cuts a box, as its corners in order; three to six for a proper cut. Seen from where
  /// the plane's normal points, they run counter-clockwise (unless the box is inverted). A cut through corners of the
  /// box repeats points; a plane that only touches the box may yield fewer than three.
  ///
  /// The corners replace the elements of the vector; false if there are none. The capacity is kept, and after the first
  /// cut suffices for all others.
  static bool Intersection(const Types::BoundingBox_Base<double>& p_box, const Types::Plane& p_plane,
                           std::vector<Types::Vector3_Base<double>>& p_points);

  /// The common part of two viewports. Viewports that only touch yield true and a width or height of zero; disjoint
  /// ones yield false and a default-constructed result. The result is always written.
  static bool Intersection(const Types::Viewport<0>& p_first, const Types::Viewport<0>& p_second,
                           Types::Viewport<0>& p_result);
};

} // namespace Vek::Chart::Library
