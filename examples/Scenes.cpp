#include "examples/SceneMakers.h"

namespace Vek::Chart::Gallery {

const std::vector<SceneEntry>& Scenes() {
  static const std::vector<SceneEntry> scenes = {
      {"wind",
       "The monthly mean wind of the world in January 1987 as arrows above the relief: length and colour tell the "
       "speed. "
       "Glyphs by VectorSymbol, colours by two ColorMaps bound as textures.",
       "examples/Wind.cpp", MakeWind},
  };
  return scenes;
}

} // namespace Vek::Chart::Gallery
