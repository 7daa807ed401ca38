#include "testing/Surface.h"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>
#include <string>

namespace Vek::Chart::Testing {

using Ogl::VertexData;
using Vector = Surface::Vector;

namespace {

using Place = std::array<double, 3>;

/// For each pair of places how often it is walked upwards, less how often downwards.
std::map<std::pair<Place, Place>, int> Edges(const Surface& p_surface) {
  std::map<std::pair<Place, Place>, int> edges;
  for (std::size_t i = 0; i < p_surface.indices.size(); ++i) {
    const Vector a = p_surface.Corner(i), b = p_surface.Corner(i % 3 == 2 ? i - 2 : i + 1);
    const Place from{a.x, a.y, a.z}, to{b.x, b.y, b.z};
    edges[std::minmax(from, to)] += from < to ? 1 : -1;
  }
  return edges;
}

void Require(bool p_fits, const std::string& p_expected) {
  if (!p_fits)
    throw std::invalid_argument("the vertex data are not " + p_expected);
}

} // namespace

std::vector<Vector> VectorsOf(const VertexData::Array& p_array) {
  Require(p_array.Empty() || (p_array.components == 3 && p_array.type == VertexData::Float),
          "an array of three floats");
  std::vector<Vector> vectors;
  for (std::size_t i = 0; i < 3 * p_array.count; i += 3)
    vectors.emplace_back(p_array.As<float>()[i], p_array.As<float>()[i + 1], p_array.As<float>()[i + 2]);
  return vectors;
}

Surface SurfaceOf(const VertexData& p_data) {
  const VertexData::Array& indices = p_data.Indices();
  Require(indices.Empty() || indices.type == VertexData::UnsignedInt, "indices of unsigned int");
  const unsigned int* const first = indices.As<unsigned int>();
  return {VectorsOf(p_data.Vertices()), VectorsOf(p_data.Normals()), {first, first + indices.count}};
}

Types::BoundingBox_Base<double> BoundsOf(const std::vector<Vector>& p_positions) {
  Types::BoundingBox_Base<double> bounds;
  for (const Vector& position : p_positions)
    bounds += position;
  return bounds;
}

bool IsClosed(const Surface& p_surface) {
  const auto edges = Edges(p_surface);
  return !edges.empty() &&
         std::all_of(edges.begin(), edges.end(), [](const auto& p_edge) { return p_edge.second == 0; });
}

double EnclosedVolume(const Surface& p_surface) {
  double sixVolumes = 0;
  for (std::size_t i = 0; i < p_surface.indices.size(); i += 3)
    sixVolumes += Dot(p_surface.Corner(i), Cross(p_surface.Corner(i + 1), p_surface.Corner(i + 2)));
  return sixVolumes / 6;
}

} // namespace Vek::Chart::Testing
