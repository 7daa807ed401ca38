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
/// Only static members, no state: they may be called from any thread. Nothing is reported and nothing is thrown (but
/// by a vector that grows); a miss is the result false, and then the out argument is not written unless a member says
/// so. An out argument may be one of the arguments that are read. All geometry is in double precision except where a
/// member says otherwise. `epsilon` below is the machine epsilon of double, 2^-52.
///
/// \snippet DataSnippets.cpp Intersect
/// \image html cuts.jpg
/// \ingroup cuts
class VEK_LIBRARY_API Intersect {
public:
  /// The line in which two planes meet: a point on both, and as direction the cross product of the two normals,
  /// unnormalised. False, never indeterminate, when the squared length of that product is below epsilon: for unit
  /// normals, angles below about 1.49e-8 radians; coincident planes too.
  ///
  /// The point goes through single precision on purpose and carries its rounding errors. Normals that are just far
  /// enough apart may give a zero determinant there (unit normals closer than about 2.4e-4 radians): the result is then
  /// true with a point whose components are infinite or NaN.
  static boost::logic::tribool Intersection(const Types::Plane& p_first, const Types::Plane& p_second,
                                            Types::Line3_Base<double>& p_line);

  /// The point in which a plane cuts the ray, taken as the segment from its origin to origin + direction: a plane
  /// farther away than the direction is long gives false. Otherwise as for a segment.
  static boost::logic::tribool Intersection(const Types::Plane& p_plane, const Types::Ray_Base<double>& p_ray,
                                            Types::Vector3_Base<double>& p_point);

  /// The point in which a plane cuts the segment between two points, both ends included. Indeterminate, without a
  /// point, when the segment lies in the plane; false when it is parallel to it or does not reach it.
  static boost::logic::tribool Intersection(const Types::Plane& p_plane, const Types::Vector3_Base<double>& p_start,
                                            const Types::Vector3_Base<double>& p_end,
                                            Types::Vector3_Base<double>& p_point);

  /// The polygon in which a plane cuts a box, as its corners in order; three to six for a proper cut. Seen from the
  /// side that the plane's normal points to, they run counter-clockwise (in a box whose minima are not above its
  /// maxima). A cut through corners of the box repeats points; one that only touches the box may give fewer than three.
  ///
  /// The vector is emptied in any case and then takes the corners; false when there are none. It keeps its capacity,
  /// which is enough for every further cut once a plane has met the box.
  static bool Intersection(const Types::BoundingBox_Base<double>& p_box, const Types::Plane& p_plane,
                           std::vector<Types::Vector3_Base<double>>& p_points);

  /// The common part of two viewports. Viewports that only touch give true and a width or height of zero; others
  /// without a common part give false and a default-constructed result, which is written in any case.
  static bool Intersection(const Types::Viewport<0>& p_first, const Types::Viewport<0>& p_second,
                           Types::Viewport<0>& p_result);
};

} // namespace Vek::Chart::Library
