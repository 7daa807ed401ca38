#pragma once

#include "fuzz/FuzzTarget.h"
#include "io/FileError.h"
#include "io/ReadMesh.h"

#include <algorithm>
#include <cstdlib>

namespace Vek::Fuzz {

/// Aborts where the arrays of a mesh or a scene do not fit each other.
template <class Mesh>
void CheckArrays(const Mesh& p_mesh) {
  const std::size_t vertices = p_mesh.positions.size() / 3;
  std::size_t covered = 0;
  for (const auto& group : p_mesh.groups) {
    if (group.first != covered || group.count == 0)
      std::abort();
    covered += group.count;
  }
  if (covered != p_mesh.indices.size() ||
      !std::all_of(p_mesh.indices.begin(), p_mesh.indices.end(), [&](std::uint32_t p_i) { return p_i < vertices; }))
    std::abort();
  for (const auto& [array, components] :
       {std::pair(&p_mesh.normals, 3u), {&p_mesh.texCoords, 2u}, {&p_mesh.colors, 4u}})
    if (!array->empty() && array->size() != components * vertices)
      std::abort();
}

/// Reads an input as a mesh of that name.
inline int ReadMesh(const std::uint8_t* p_bytes, std::size_t p_size, const char* p_name) {
  std::istringstream input = Input(p_bytes, p_size);
  try {
    CheckArrays(Chart::Io::ReadMesh(input, p_name));
  } catch (const Chart::Io::FileError&) { // documented
  }
  return 0;
}

} // namespace Vek::Fuzz
