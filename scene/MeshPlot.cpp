#include "scene/MeshPlot.h"

#include "scene/private/MeshContent.h"

namespace Vek::Chart::Scene {

MeshPlot::MeshPlot(std::vector<Types::Vector3_Base<double>> p_positions, std::vector<std::uint32_t> p_indices)
    : ColoredPlot(std::make_unique<Private::MeshContent>(std::move(p_positions), std::move(p_indices))) {}

MeshPlot& MeshPlot::UpdatePositions(const Array3& p_positions) {
  static_cast<Private::MeshContent&>(Content()).UpdatePositions(p_positions);
  return *this;
}

} // namespace Vek::Chart::Scene
