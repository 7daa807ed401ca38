#pragma once

#include "platform/ogl/VertexData.h"
#include "platform/types/Geometry.h"

#include <vector>

namespace Vek::Chart::Testing {

/// A mesh of triangles as lists, for tests of its shape.
///
/// Vertices at one position count as one where the surface is judged, since meshes double them for the sake of their
/// normals.
///
/// \snippet HostSnippets.cpp Surface
/// \ingroup testing
struct Surface {
  using Vector = Types::Vector3_Base<double>; ///< a position or a direction

  std::vector<Vector> positions;     ///< one a vertex
  std::vector<Vector> normals;       ///< one a vertex, or none
  std::vector<unsigned int> indices; ///< three a triangle, into both

  /// The position of an index, counted over all triangles. Throws std::out_of_range if there is none.
  const Vector& Corner(std::size_t p_index) const { return positions.at(indices.at(p_index)); }
};

/// The vectors of an array of three floats each; none of an empty one. Throws std::invalid_argument for other types.
/// \ingroup testing
std::vector<Surface::Vector> VectorsOf(const Ogl::VertexData::Array& p_array);
/// The positions, normals and indices of vertex data. Throws std::invalid_argument unless they are three floats each
/// and unsigned int.
/// \ingroup testing
Surface SurfaceOf(const Ogl::VertexData& p_data);

/// The box around all positions; invalid if there are none.
/// \ingroup testing
Types::BoundingBox_Base<double> BoundsOf(const std::vector<Surface::Vector>& p_positions);
/// Whether the surface has edges, and each is walked as often from one end to the other as back: it has no border, and
/// all triangles are wound in one direction.
/// \ingroup testing
bool IsClosed(const Surface& p_surface);
/// The volume that a closed surface encloses, by the divergence theorem; negative if its triangles are wound clockwise
/// as seen from outside.
/// \ingroup testing
double EnclosedVolume(const Surface& p_surface);

} // namespace Vek::Chart::Testing
