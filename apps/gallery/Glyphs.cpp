#include "apps/gallery/Glyphs.h"

#include <iterator>

namespace Vek::Chart::Gallery {

std::string ShapeName(Model::Symbol::Shape p_shape) {
  constexpr const char* Names[] = {
      "",        "Point",    "ArrowHead1D", "Arrow1D",         "ArrowHead2D", "Arrow2D", "Plane",  "ArrowHead3D",
      "Arrow3D", "Cylinder", "Cone",        "CircularArrow3D", "Crosshair",   "Cube",    "Sphere", "Custom (torus)"};
  return p_shape >= 0 && static_cast<std::size_t>(p_shape) < std::size(Names) ? Names[p_shape] : "";
}

} // namespace Vek::Chart::Gallery
