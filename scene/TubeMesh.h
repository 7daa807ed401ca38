#pragma once

#include "scene/Export.h"

#include "library/StreamLineShape.h"

#include "platform/ogl/Vec.h"
#include "platform/ogl/VertexData.h"
#include "platform/types/Matrix.h"
#include "platform/types/Vector.h"

#include <vector>

namespace Vek::Chart::Scene {

namespace Private {
struct TubeStation;
}

/// A cross-section swept along lines: tubes, ribbons or a custom outline. All lines make one mesh of triangles,
/// counter-clockwise seen from outside, with positions, unit normals, and one texture coordinate, the value of the
/// point.
///
/// The z axis of the section is the direction of the line. Its x and y axes follow the line as a rotation-minimising
/// frame: each step is the smallest rotation from one direction to the next (R. L. Bishop, "There is more than one way
/// to frame a curve", 1975). Sections are not stretched in corners. A line that turns by more than 120° at a point ends
/// there and starts again. Outlines of three vertices and more have a flat cap at both ends; a ribbon is open and is
/// seen from both sides. A section of one vertex makes no mesh.
///
/// Left out are points with a number that is not finite or above 1e30, with a width that is not above 0, and points
/// closer to the point before than a millionth of its width. A line with fewer than two other points is dropped.
///
/// \snippet SceneMeshSnippets.cpp TubeMesh
/// \image html parts/TubeMesh.png
/// \ingroup plots
class VEK_SCENE_API TubeMesh {
public:
  /// A point of a line.
  struct Point {
    Types::Vector3_Base<double> position; ///< of the line's middle
    double width = 1;                     ///< of the section, in units of the positions
    double value = 0;                     ///< to be looked up on a colour map
  };

  /// The section of all lines.
  explicit TubeMesh(const Library::StreamLineShape& p_shape);

  /// Adds a line. `p_up` is the direction of the section's −y, the face of a ribbon, at the start of the line, as far
  /// as the direction of the line permits.
  void Add(const std::vector<Point>& p_line, const Types::Vector3_Base<double>& p_up = {0, 0, 1});

  /// True if there is no triangle.
  bool Empty() const { return _indices.empty(); }
  /// Moves the mesh out, which leaves this object empty.
  Ogl::VertexData TakeMesh();

  /// The points of a line that a tube needs. Each point that is left out lies within a twentieth of its width from the
  /// straight line between the points that are kept, where the width differs by as much at most, and the value by
  /// `p_valueTolerance`. At most 31 points in a row are left out.
  static std::vector<Point> Thinned(const std::vector<Point>& p_line, double p_valueTolerance = 0.01);

  /// The frame with the z axis `p_direction`, of unit length, by the smallest rotation of `p_frame`. For the opposite
  /// direction, the frame is rotated about its x axis.
  static Types::Matrix3 Transported(const Types::Matrix3& p_frame, const Types::Vector3_Base<double>& p_direction);

private:
  using Record = Ogl::Vec3<float>;

  void AddPiece(const std::vector<Private::TubeStation>& p_piece);
  void AddRing(const Point& p_point, const Types::Matrix3& p_frame);
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

} // namespace Vek::Chart::Scene
