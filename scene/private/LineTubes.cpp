#include "scene/private/LineTubes.h"

#include "scene/Array.h"
#include "scene/private/MeshArrays.h"

#include <stdexcept>
#include <string>

namespace Vek::Chart::Scene::Private {

void LineTubes::SetLines(std::vector<std::vector<TubeMesh::Point>> p_lines, const std::vector<float>& p_values,
                         bool p_isFlat) {
  using Shape = Library::StreamLineShape;
  // Each vertex gets the number of its point, which single precision holds.
  constexpr std::size_t Most = std::size_t{1} << 24;
  TubeMesh tubes(Shape(p_isFlat ? Shape::ShapeRibbon : Shape::ShapeTube, {}));
  std::size_t count = 0;
  for (std::vector<TubeMesh::Point>& line : p_lines) {
    for (TubeMesh::Point& point : line)
      point.value = static_cast<double>(count++);
    if (count > Most)
      throw std::invalid_argument("tubes: expected at most " + std::to_string(Most) + " points");
    tubes.Add(line);
  }
  _mesh = {};
  _points.clear();
  _triangles.clear();
  if (tubes.Empty())
    return;
  const Ogl::VertexData data = tubes.TakeMesh();
  const float* const numbers = data.TexCoords().As<float>();
  _points.assign(numbers, numbers + data.TexCoords().count);
  const std::vector<std::uint32_t> indices = Indices(data.Indices());
  for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
    _triangles.push_back(_points[indices[i]]);
  _mesh = GpuMesh(data);
  SetValues(p_values);
}

std::optional<std::size_t> LineTubes::PointOf(std::uint32_t p_triangle) const {
  return p_triangle < _triangles.size() ? std::optional<std::size_t>(_triangles[p_triangle]) : std::nullopt;
}

void LineTubes::SetValues(const std::vector<float>& p_values) {
  std::vector<float> values;
  if (!p_values.empty())
    for (const std::uint32_t point : _points)
      values.push_back(p_values[point]);
  _mesh.UpdateValues(values);
}

} // namespace Vek::Chart::Scene::Private
