#pragma once

#include "library/Export.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <vector>

namespace Vek::Chart::Library {

/// The cross-section swept along a stream line: a point, a flat ribbon, a round tube or a custom outline.
///
/// It lies in its own x-y plane, about one unit wide. `OrientShape` places one copy, a ring of vertices with normals,
/// at one point of the line; the caller connects the rings. A cross-section never changes after construction and may be
/// read from several threads. Nothing is reported.
///
/// \snippet GlyphSnippets.cpp StreamLineShape
/// \image html streamlines.jpg
/// \ingroup glyphs
class VEK_LIBRARY_API StreamLineShape {
public:
  /// The form of the cross-section.
  enum Shape : int {
    ShapeLine = 1,   ///< one vertex at the origin; no normals
    ShapeRibbon = 2, ///< (−0.5, 0) and (0.5, 0); both normals (0, −1)
    ShapeTube = 3,   ///< twelve vertices on a circle of radius 0.5, counter-clockwise from (0.5, 0); radial normals
    ShapeCustom = 4  ///< the outline passed to the constructor
  };

  /// The line.
  StreamLineShape();

  /// The outline is used for `ShapeCustom` only. It is a closed polygon, divided by the larger of its width and height
  /// but not centred. Each vertex normal is the normalised mean of the normals of the two adjacent edges, outward for a
  /// counter-clockwise outline; an edge between equal points has the normal (0, 0). An outline without points, with one
  /// point or with equal points gives the line; two different points give the ribbon.
  ///
  /// An unknown shape has no vertices.
  StreamLineShape(Shape p_shape, const std::vector<Types::Vector2_Base<double>>& p_outline);

  /// The number of vertices of a ring.
  unsigned NumVertices() const;
  /// True if the shape has its own normals; false for the line.
  bool HasNormals() const;

  /// Places a ring: each vertex is rotation × ((x, y, 0) × size × scale) + position. Normals are rotated but not
  /// normalised; a shape without normals gives rotation × (0, 1, 0) for each vertex.
  ///
  /// Both vectors are resized to the number of vertices; no memory is allocated if their capacity suffices. Returns
  /// false and leaves both unchanged if there are no vertices or size × scale <= 0. NaN is not refused.
  bool OrientShape(double p_size, const Types::Vector3_Base<double>& p_position, double p_scale,
                   const Types::Matrix3& p_rotation, std::vector<Types::Vector3_Base<double>>& p_outVertices,
                   std::vector<Types::Vector3_Base<double>>& p_outNormals) const;

private:
  void BuildPredefinedShape(Shape p_shape);
  void BuildCustomShape(const std::vector<Types::Vector2_Base<double>>& p_outline);

  double _extent = 0.0; // part of the factor of OrientShape; 1 for all known shapes
  std::vector<Types::Vector2_Base<double>> _vertices;
  std::vector<Types::Vector2_Base<double>> _normals;
};

} // namespace Vek::Chart::Library
