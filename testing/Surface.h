#pragma once

#include "platform/ogl/VertexData.h"
#include "platform/types/Geometry.h"

#include <vector>

namespace Vek::Test {

using Vector = Chart::Types::Vector3_Base<double>;

/// A mesh as tests look at it: three indices a triangle. Vertices at one place count as one where surfaces are judged,
/// since meshes double them for the sake of their normals.
struct Surface {
  std::vector<Vector> positions, normals;
  std::vector<unsigned int> indices;

  Vector Corner(std::size_t p_index) const { return positions.at(indices.at(p_index)); }
};

/// The vectors of an array of floats; the test fails when it is of another type.
std::vector<Vector> VectorsOf(const Chart::Ogl::VertexData::Array& p_array);
/// What somebody has put there, read back.
Surface SurfaceOf(const Chart::Ogl::VertexData& p_data);

Chart::Types::BoundingBox_Base<double> BoundsOf(const std::vector<Vector>& p_positions);
/// Whether there are edges, each walked as often from one place to the other as back.
bool IsClosed(const Surface& p_surface);
/// Positive where a closed surface faces outward.
double EnclosedVolume(const Surface& p_surface);

} // namespace Vek::Test
