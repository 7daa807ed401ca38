#include "scene/private/PlotContent.h"

namespace Vek::Chart::Scene::Private {

Picked PlotContent::Identify(std::optional<std::uint32_t> p_number, const Point& p_scene) const {
  const Point position = _placement.transform.Inverse(p_scene);
  return p_number && *p_number < Count() ? PickedAt(*p_number, position) : Picked{{}, position, {}};
}

Picked PlotContent::PickedAt(std::size_t p_element, const Point& p_position) const {
  Picked picked{p_element, p_position, {}};
  if (p_element < coloring.Values().size())
    picked.value = coloring.ValueOf(coloring.Values()[p_element]);
  return picked;
}

} // namespace Vek::Chart::Scene::Private
