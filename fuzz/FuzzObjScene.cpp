#include "fuzz/FuzzMesh.h"
#include "library/ObjScene.h"

using namespace Vek::Chart::Library;

int LLVMFuzzerTestOneInput(const std::uint8_t* p_bytes, std::size_t p_size) {
  std::istringstream input = Vek::Fuzz::Input(p_bytes, p_size);
  try {
    const ObjScene scene = ReadObjScene(input, "fuzz.obj");
    Vek::Fuzz::CheckArrays(scene);
    for (const ObjScene::Group& group : scene.groups) {
      const std::size_t size = group.primitive == ObjScene::Triangles ? 3 : group.primitive == ObjScene::Lines ? 2 : 1;
      if (group.count % size != 0 || group.material >= int(scene.materials.size()))
        std::abort();
    }
  } catch (const ObjError&) { // documented
  }
  return 0;
}
