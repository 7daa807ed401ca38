#pragma once

#include "scene/Export.h"

#include "library/StreamLineShape.h"

#include "platform/ogl/Vec.h"
#include "platform/ogl/VertexData.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <vector>

namespace Vek::Chart::Scene {

/// A point of a line that is swept: the width of the cross-section there, in units of the scene, and its place on the
/// colour map.
struct VEK_SCENE_API SweepPoint {
  Types::Vector3_Base<double> position;
  double width = 1;
  double value = 0;
};

/// Sweeps a cross-section along lines: one mesh of triangles for all of them, counter-clockwise seen from outside, with
/// positions, unit normals and one texture coordinate, the value of the point.
///
/// The section's z is the direction of the line; its x and y are carried along without twist (each is turned by the
/// smallest rotation that takes one direction to the next). Sections are placed as they are, not stretched in sharp
/// corners. Where a line turns back by more than 120°, it ends and starts anew. Outlines of three vertices and more are
/// closed at both ends by flat fans around their middle; a ribbon is left open, seen from both sides. A section of one
/// vertex sweeps nothing.
///
/// Left out are points with a number that is not finite or above 1e30, with a width that is not above 0, and points
/// nearer to the one before than a millionth of its width. A line of which less than two points are left is
/// dropped.
///
///     Sweep tubes(Library::StreamLineShape(Library::StreamLineShape::ShapeTube, {}));
///     for (const std::vector<SweepPoint>& line : lines)
///       tubes.Add(line);
///     const Ogl::VertexData data = tubes.TakeMesh();
class VEK_SCENE_API Sweep {
public:
  explicit Sweep(const Library::StreamLineShape& p_shape);

  /// `p_up` is where the section's −y, the face of a ribbon, points at the start, as far as the line's direction
  /// permits.
  void Add(const std::vector<SweepPoint>& p_line, const Types::Vector3_Base<double>& p_up = {0, 0, 1});

  bool Empty() const { return _indices.empty(); }
  /// Hands the mesh over; the sweep is empty then.
  Ogl::VertexData TakeMesh();

private:
  using Record = Ogl::Vec3<float>;

  void AddPiece(const std::vector<SweepPoint>& p_piece, Types::Matrix3& p_frame);
  void AddRing(const SweepPoint& p_point, const Types::Matrix3& p_frame);
  void AddCap(unsigned int p_ring, const Types::Vector3_Base<double>& p_normal, bool p_end);
  void AddVertex(const Types::Vector3_Base<double>& p_position, const Types::Vector3_Base<double>& p_normal,
                 double p_value);

  Library::StreamLineShape _shape;
  std::vector<Types::Vector3_Base<double>> _ring; ///< of the section placed last
  std::vector<Types::Vector3_Base<double>> _ringNormals;
  std::vector<Record> _positions;
  std::vector<Record> _normals;
  std::vector<float> _values;
  std::vector<unsigned int> _indices;
};

/// The frame that the smallest rotation makes of one whose z is `p_frame`'s: its z is `p_direction`, of unit length.
/// For the opposite direction, it is turned about its x.
VEK_SCENE_API Types::Matrix3 Transported(const Types::Matrix3& p_frame, const Types::Vector3_Base<double>& p_direction);

} // namespace Vek::Chart::Scene
