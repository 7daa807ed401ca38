#include "fuzz/FuzzTarget.h"
#include "library/ObjScene.h"

#include <algorithm>
#include <cstdlib>

using namespace Vek::Chart::Library;

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
  try {
    const ObjScene scene = ReadObjScene(input, "fuzz.obj");
    const std::size_t vertices = scene.positions.size() / 3;
    std::size_t covered = 0;
    for (const ObjScene::Group& group : scene.groups) {
      const std::size_t size = group.primitive == ObjScene::Triangles ? 3 : group.primitive == ObjScene::Lines ? 2 : 1;
      if (group.first != covered || group.count == 0 || group.count % size != 0)
        std::abort();
      covered += group.count;
      if (group.material >= int(scene.materials.size()))
        std::abort();
    }
    if (covered != scene.indices.size())
      std::abort();
    if (!std::all_of(scene.indices.begin(), scene.indices.end(), [&](std::uint32_t p_i) { return p_i < vertices; }))
      std::abort();
    for (const auto& [array, components] : {std::pair(&scene.normals, 3u), {&scene.texCoords, 2u}, {&scene.colors, 4u}})
      if (!array->empty() && array->size() != components * vertices)
        std::abort();
  } catch (const ObjError&) { // documented
  }
  return 0;
}
