#pragma once

#include "library/Export.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <vector>

namespace Vek::Chart::Library {

/// The cross-section that is swept along a stream line: a point, a flat ribbon, a round tube or an outline of one's
/// own.
///
/// It lies in its own x-y plane, about one unit wide. `OrientShape` places one copy of it, a ring of vertices with
/// normals, at one point of the line; connecting the rings is the caller's business. A cross-section does not change
/// after its construction and may be read from several threads. Nothing is reported.
///
/// \snippet GlyphSnippets.cpp StreamLineShape
/// \image html streamlines.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API StreamLineShape {
public:
  /// What the cross-section looks like.
  enum Shape : int {
    ShapeLine = 1,   ///< one vertex at the origin; no normals
    ShapeRibbon = 2, ///< (−0.5, 0) and (0.5, 0); both normals (0, −1)
    ShapeTube = 3,   ///< twelve vertices on a circle of radius 0.5, counter-clockwise from (0.5, 0); radial normals
    ShapeCustom = 4  ///< the outline that is passed in
  };

  /// The line.
  StreamLineShape();

  /// The outline counts for `ShapeCustom` only. It is a closed polygon, divided by the larger of its width and height
  /// but not moved. Its vertex normals are the unit means of the normals of the two edges that meet, outward if it runs
  /// counter-clockwise; an edge between equal points has the normal (0, 0). An outline that is empty, has one point or
  /// has all its points in one place gives the line; any other with two points gives the ribbon.
  ///
  /// A shape outside the enumeration has no vertices.
  StreamLineShape(Shape p_shape, const std::vector<Types::Vector2_Base<double>>& p_outline);

  /// The number of vertices in a ring.
  unsigned NumVertices() const;
  /// Whether the shape has normals of its own: all have but the line.
  bool HasNormals() const;

  /// Places a ring: each vertex is (x, y, 0) × size × scale, then rotated, then moved to the position; each normal is
  /// rotated, and is not made a unit vector again. A shape without normals gives rotation × (0, 1, 0) for each vertex.
  ///
  /// Both vectors are resized to the number of vertices; no memory is taken where their capacity is enough. False, with
  /// both left as they are, when there are no vertices or the factor is not above zero (NaN passes).
  bool OrientShape(double p_size, const Types::Vector3_Base<double>& p_position, double p_scale,
                   const Types::Matrix3& p_rotation, std::vector<Types::Vector3_Base<double>>& p_outVertices,
                   std::vector<Types::Vector3_Base<double>>& p_outNormals) const;

private:
  void BuildPredefinedShape(Shape p_shape);
  void BuildCustomShape(const std::vector<Types::Vector2_Base<double>>& p_outline);

  double _extent = 0.0; // part of the factor of OrientShape; 1 for everything that was built
  std::vector<Types::Vector2_Base<double>> _vertices;
  std::vector<Types::Vector2_Base<double>> _normals;
};

} // namespace Vek::Chart::Library
