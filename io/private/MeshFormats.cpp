#include "io/private/MeshFormats.h"

#include "library/ComputeNormals.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Vek::Chart::Io::Private {

void AddNormals(Mesh& p_mesh) {
  std::vector<Ogl::Vec3<float>> positions(p_mesh.positions.size() / 3);
  for (std::size_t i = 0; i < positions.size(); ++i)
    positions[i] = {p_mesh.positions[3 * i], p_mesh.positions[3 * i + 1], p_mesh.positions[3 * i + 2]};
  std::vector<std::uint32_t> triangles;
  for (const Mesh::Group& group : p_mesh.groups)
    if (group.primitive == Mesh::Triangles)
      triangles.insert(triangles.end(), p_mesh.indices.begin() + std::ptrdiff_t(group.first),
                       p_mesh.indices.begin() + std::ptrdiff_t(group.first + group.count));
  if (triangles.empty())
    return;
  p_mesh.normals.reserve(3 * positions.size());
  for (const Ogl::Vec3<float>& normal : Library::ComputeNormals(positions.data(), positions.size(), triangles.data(),
                                                                triangles.size(), Utility::Threads::All()))
    p_mesh.normals.insert(p_mesh.normals.end(), {normal.x, normal.y, normal.z});
}

} // namespace Vek::Chart::Io::Private
