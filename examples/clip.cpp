// A cutting plane: nested shells, opened to look inside.
#include <library/Icosphere.h>
#include <scene/Figure.h>

using namespace Vek::Chart;

int main() {
  const Library::Icosphere sphere(6);
  Scene::Figure figure("Shells of the Earth", "Cut along the plane of 0° and 180°");
  for (const auto& [name, radius, color] : {std::tuple("Inner core", 1221.5, "gold"),
                                            {"Outer core", 3480, "orange"},
                                            {"Lower mantle", 5701, "firebrick"},
                                            {"Upper mantle", 6346.6, "peru"}}) {
    auto positions = sphere.positions;
    for (auto& position : positions)
      position = position * radius; // in km
    figure.Mesh(positions, sphere.indices).Color(color).Label(name);
  }
  figure.Clip(1, 0, Scene::Figure::Side::Above).SetAxisTitles("x in km", "y in km", "z in km").Save("clip.png");
}
