#pragma once

#include "fuzz/FuzzTarget.h"
#include "io/FileError.h"
#include "io/ReadMesh.h"

#include <algorithm>
#include <cstdlib>

namespace Vek::Fuzz {

/// Reads an input as a mesh of that name and aborts where its arrays do not fit each other.
inline int ReadMesh(const std::uint8_t* p_bytes, std::size_t p_size, const char* p_name) {
  std::istringstream input = Input(p_bytes, p_size);
  try {
    const Chart::Io::Mesh mesh = Chart::Io::ReadMesh(input, p_name);
    const std::size_t vertices = mesh.positions.size() / 3;
    std::size_t covered = 0;
    for (const Chart::Io::Mesh::Group& group : mesh.groups) {
      if (group.first != covered || group.count == 0)
        std::abort();
      covered += group.count;
    }
    if (covered != mesh.indices.size())
      std::abort();
    if (!std::all_of(mesh.indices.begin(), mesh.indices.end(), [&](std::uint32_t p_i) { return p_i < vertices; }))
      std::abort();
    for (const auto& [array, components] : {std::pair(&mesh.normals, 3u), {&mesh.texCoords, 2u}, {&mesh.colors, 4u}})
      if (!array->empty() && array->size() != components * vertices)
        std::abort();
  } catch (const Chart::Io::FileError&) { // documented
  }
  return 0;
}

} // namespace Vek::Fuzz
